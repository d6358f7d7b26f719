#include "programs/wfgather/receiver.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace gather {

namespace {

constexpr double kShortestTimeConstant_ns = 1.0;
constexpr double kTimeConstantPulses = 0.08;

/// The edges of the pulse are rounded by two boxes of this many pulse widths: about a Gaussian, a
/// rise time (10 to 90 %) of 0.11 pulses.
constexpr double kEdgePulses = 0.1;

// The grid on which the signal is formed is finer than the samples.
constexpr double kCellsPerPulse = 40.0;
constexpr double kFewestCells = 4.0; // for each sample
constexpr double kMostCells = 10.0;

/// Energies on an even grid of cells; the first begins at time 0.
class Cells
{
public:
    Cells(std::size_t count, double width_ns)
        : energies(count, 0.0)
        , width_ns(width_ns)
    {
    }

    void add(const Stretch& stretch)
    {
        double at_ns = stretch.from_ns;
        double power = stretch.power_perNs;
        const double wholeFactor = std::exp(-stretch.decay_perNs * width_ns);
        const double wholeEnergy = energyOf(1.0, stretch.decay_perNs, width_ns);
        const auto begin = static_cast<std::size_t>(std::max(0.0, at_ns / width_ns));
        for (std::size_t cell = begin; cell < energies.size() && at_ns < stretch.to_ns; ++cell) {
            const double edge_ns = static_cast<double>(cell + 1) * width_ns;
            if (cell > begin && edge_ns <= stretch.to_ns) { // a whole cell, nearly all of them
                energies[cell] += power * wholeEnergy;
                power *= wholeFactor;
            } else {
                const double part_ns = std::max(0.0, std::min(edge_ns, stretch.to_ns) - at_ns);
                energies[cell] += energyOf(power, stretch.decay_perNs, part_ns);
                power *= std::exp(-stretch.decay_perNs * part_ns);
            }
            at_ns = edge_ns;
        }
    }

    /// Split between two cells, so that its centre of gravity stays where it is.
    void add(const Reflection& reflection)
    {
        const double place = std::max(0.0, reflection.at_ns / width_ns - 0.5);
        if (place + 1.0 < static_cast<double>(energies.size())) {
            const auto cell = static_cast<std::size_t>(place);
            const double share = place - static_cast<double>(cell);
            energies[cell] += (1.0 - share) * reflection.power;
            energies[cell + 1] += share * reflection.power;
        }
    }

    /// Energy up to the edge of each cell; one value more than cells.
    [[nodiscard]] std::vector<double> sums() const
    {
        std::vector<double> running(energies.size() + 1, 0.0);
        for (std::size_t i = 0; i < energies.size(); ++i) {
            running[i + 1] = running[i] + energies[i];
        }
        return running;
    }

private:
    static double energyOf(double power, double decay_perNs, double time_ns)
    {
        const double decay = decay_perNs * time_ns;
        return decay == 0.0 ? power * time_ns : -power * std::expm1(-decay) / decay_perNs;
    }

    std::vector<double> energies;
    double width_ns;
};

/// What has been added to a running sum within the last `lag` places, times a factor.
std::vector<double> addedWithin(const std::vector<double>& sums, double lag, double factor)
{
    std::vector<double> added(sums.size());
    const auto whole = static_cast<std::size_t>(lag);
    const double part = lag - static_cast<double>(whole);
    const auto at = [&sums](std::size_t i, std::size_t back) {
        return i >= back ? sums[i - back] : 0.0;
    };
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const double before = (1.0 - part) * at(i, whole) + part * at(i, whole + 1);
        added[i] = factor * (sums[i] - before);
    }
    return added;
}

/// Mean over the last `width` places.
void smooth(std::vector<double>& signal, double width)
{
    std::vector<double> sums(signal.size(), 0.0);
    for (std::size_t i = 1; i < signal.size(); ++i) {
        sums[i] = sums[i - 1] + 0.5 * (signal[i - 1] + signal[i]);
    }
    signal = addedWithin(sums, width, 1.0 / width);
}

/// The low-pass of the receiver with its slow tail. The step is in time constants.
void lowPass(std::vector<double>& signal, double step)
{
    const double fastGain = -std::expm1(-step);
    const double slowGain = -std::expm1(-step / kTailTimeConstants);
    double fast = 0.0;
    double slow = 0.0;
    double before = 0.0;
    for (double& value : signal) {
        const double mean = 0.5 * (before + value); // of the cell: its end alone would come early
        before = value;
        fast += fastGain * (mean - fast);
        slow += slowGain * (mean - slow);
        value = (1.0 - kTailPart) * fast + kTailPart * slow;
    }
}

/// Clips at the limit. An overload leaves a charge, at most as high as the limit, that the receiver
/// gets rid of by and by.
void saturate(std::vector<double>& signal, double limit, double recoveryStep)
{
    const double kept = std::exp(-recoveryStep);
    double charge = 0.0;
    for (double& value : signal) {
        charge = std::max(charge * kept, std::min(limit, value - limit));
        value = std::min(limit, value + charge);
    }
}

} // namespace

double timeConstant_ns(double pulse_ns)
{
    return std::max(kShortestTimeConstant_ns, kTimeConstantPulses * pulse_ns);
}

std::vector<double> detect(const LinkResponse& response, double pulse_ns, const Sampling& sampling)
{
    const double wanted = std::ceil(kCellsPerPulse * sampling.interval_ns / pulse_ns);
    const double cellsPerSample = std::clamp(wanted, kFewestCells, kMostCells);
    const double cell_ns = sampling.interval_ns / cellsPerSample;
    const auto stride = static_cast<std::size_t>(cellsPerSample);
    Cells cells((sampling.count - 1) * stride + 1, cell_ns);
    for (const Stretch& stretch : response.backscatter) {
        cells.add(stretch);
    }
    for (const Reflection& reflection : response.reflections) {
        cells.add(reflection);
    }
    const double pulseCells = pulse_ns / cell_ns;
    const double launch = response.launch_perNs * pulse_ns;
    std::vector<double> signal = addedWithin(cells.sums(), pulseCells, 1.0 / launch);
    smooth(signal, kEdgePulses * pulseCells);
    smooth(signal, kEdgePulses * pulseCells);
    lowPass(signal, cell_ns / timeConstant_ns(pulse_ns));
    saturate(signal, std::pow(10.0, kSaturation_dB / 5.0), 1.0 / (kRecoveryPulses * pulseCells));

    std::vector<double> power(sampling.count);
    for (std::size_t i = 0; i < power.size(); ++i) {
        power[i] = std::max(0.0, signal[i * stride]);
    }
    return power;
}

} // namespace gather
