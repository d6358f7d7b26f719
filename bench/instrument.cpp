#include "bench/instrument.h"

#include "bench/accuracylinks.h"
#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/reflectance.h"
#include "programs/wfgather/linkresponse.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace accuracy {

namespace {

constexpr double kNoiseLevel_dB = 6.0; // where the axis of levels has it
constexpr double kMostCounts = 65535.0;

constexpr double kEdge = 0.1; // pulses; two such boxes round the pulse
constexpr double kCellsPerPulse = 40.0;
constexpr double kFewestCells = 4.0; // for each sample

constexpr double kDriftPulses = 4.0; // of red noise
constexpr double kHiddenEcho_dB = 3.0; // below the noise: a quarter of it
constexpr double kReflection_dB = 1.0; // from which on light swings below the line behind

double relative(double level_dB)
{
    return std::pow(10.0, level_dB / 5.0);
}

/// Light on an even grid of cells that is finer than the samples.
class Light
{
public:
    Light(const Instrument& instrument, const Record& record)
        : instrument(instrument)
        , first_ns(record.axis.firstSample_ns)
    {
        const double wanted = std::ceil(kCellsPerPulse / instrument.samplesPerPulse);
        stride = static_cast<std::size_t>(std::max(kFewestCells, wanted));
        cell_ns = record.axis.sampleInterval_ns / static_cast<double>(stride);
        pulseCells = instrument.pulse_ns / cell_ns;
        cells.assign((record.counts.size() - 1) * stride + 1, 0.0);
    }

    /// The fibre's, each cell more or less than the mean by the coherence of its light: the pulse
    /// sees many of them.
    void addFibre(const std::vector<gather::Stretch>& stretches, double launch_perNs,
                  std::mt19937_64& random)
    {
        std::normal_distribution<double> normal;
        const double unit = 1.0 / (launch_perNs * instrument.pulse_ns);
        const double fading = instrument.fading_dB / otdr::kDbPerNeper * std::sqrt(pulseCells);
        for (const gather::Stretch& stretch : stretches) {
            const auto begin =
                static_cast<std::size_t>(std::max(0.0, (stretch.from_ns - first_ns) / cell_ns));
            for (std::size_t i = begin; i < cells.size() && timeOf(i) < stretch.to_ns; ++i) {
                const double from_ns = std::max(timeOf(i), stretch.from_ns);
                const double to_ns = std::min(timeOf(i + 1), stretch.to_ns);
                const double middle_ns = 0.5 * (from_ns + to_ns) - stretch.from_ns;
                const double power =
                    stretch.power_perNs * std::exp(-stretch.decay_perNs * middle_ns);
                const double varied = fading > 0.0 ? 1.0 + fading * normal(random) : 1.0;
                cells[i] += unit * power * (to_ns - from_ns) * varied;
            }
        }
    }

    void addReflections(const std::vector<gather::Reflection>& reflections, double launch_perNs)
    {
        const double unit = 1.0 / (launch_perNs * instrument.pulse_ns);
        for (const gather::Reflection& reflection : reflections) {
            const double place = std::max(0.0, (reflection.at_ns - first_ns) / cell_ns - 0.5);
            if (place + 1.0 < static_cast<double>(cells.size())) {
                const auto cell = static_cast<std::size_t>(place);
                const double share = place - static_cast<double>(cell);
                cells[cell] += (1.0 - share) * unit * reflection.power;
                cells[cell + 1] += share * unit * reflection.power;
            }
        }
    }

    void passReceiver()
    {
        sumOver(pulseCells, 1.0, 0.0);
        sumOver(kEdge * pulseCells, 1.0 / (kEdge * pulseCells), 0.5);
        sumOver(kEdge * pulseCells, 1.0 / (kEdge * pulseCells), 0.5);
        lowPass(instrument.timeConstant, instrument.diffusion);
        overload();
        if (instrument.slow.part > 0.0) {
            lowPass(0.0, instrument.slow);
        }
    }

    /// Behind a reflection the receiver shows too little, the less the later.
    void swingBelow(double at_ns)
    {
        const double over_ns =
            at_ns + instrument.pulse_ns * (1.0 + 2.0 * kEdge + 3.0 * instrument.timeConstant);
        const auto begin = static_cast<std::size_t>(std::max(0.0, (over_ns - first_ns) / cell_ns));
        for (std::size_t i = begin; i < cells.size(); ++i) {
            const double pulses = static_cast<double>(i - begin) / pulseCells;
            cells[i] *= relative(-instrument.undershoot_dB
                                 * std::exp(-pulses / instrument.undershootPulses));
        }
    }

    [[nodiscard]] std::vector<double> samples() const
    {
        std::vector<double> sampled;
        for (std::size_t i = 0; i < cells.size(); i += stride) {
            sampled.push_back(cells[i]);
        }
        return sampled;
    }

private:
    [[nodiscard]] double timeOf(std::size_t cell) const
    {
        return first_ns + static_cast<double>(cell) * cell_ns;
    }

    /// What has come within the last `width` cells, times a factor. Of the cell itself counts the
    /// part `now`: none of what comes within it, half of what is at its beginning.
    void sumOver(double width, double factor, double now)
    {
        std::vector<double> sums(cells.size(), 0.0);
        double sum = 0.0;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            sums[i] = sum + now * cells[i];
            sum += cells[i];
        }
        const auto whole = static_cast<std::size_t>(width);
        const double part = width - static_cast<double>(whole);
        const auto before = [&](std::size_t i, std::size_t back) {
            return i >= back ? sums[i - back] : 0.0;
        };
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const double kept = (1.0 - part) * before(i, whole) + part * before(i, whole + 1);
            cells[i] = factor * (sums[i] - kept);
        }
    }

    void lowPass(double timeConstant, const Tail& tail)
    {
        const double fastGain =
            timeConstant > 0.0 ? -std::expm1(-1.0 / (timeConstant * pulseCells)) : 1.0;
        const double slowGain = -std::expm1(-1.0 / (tail.pulses * pulseCells));
        double fast = 0.0;
        double slow = 0.0;
        double before = 0.0;
        for (double& value : cells) {
            const double mean = timeConstant > 0.0 ? 0.5 * (before + value) : value;
            before = value;
            fast += fastGain * (mean - fast);
            slow += slowGain * (mean - slow);
            value = (1.0 - tail.part) * fast + tail.part * slow;
        }
    }

    void overload()
    {
        const double limit = relative(instrument.overload_dB);
        const double kept = std::exp(-1.0 / (instrument.recovery * pulseCells));
        double charge = 0.0;
        for (double& value : cells) {
            charge = std::max(charge * kept, std::min(limit, value - limit));
            value = std::min(limit, value + charge);
        }
    }

    const Instrument& instrument;
    double first_ns;
    double cell_ns = 1.0;
    double pulseCells = 1.0;
    std::size_t stride = 1;
    std::vector<double> cells;
};

/// Mean over `width` neighbours, as many before as behind.
std::vector<double> meansOf(const std::vector<double>& values, double width)
{
    const auto half = static_cast<std::ptrdiff_t>((width - 1.0) / 2.0);
    const auto last = static_cast<std::ptrdiff_t>(values.size()) - 1;
    std::vector<double> means(values.size(), 0.0);
    for (std::ptrdiff_t i = 0; i <= last; ++i) {
        const std::ptrdiff_t from = std::max<std::ptrdiff_t>(0, i - half);
        const std::ptrdiff_t to = std::min(last, i + half);
        for (std::ptrdiff_t k = from; k <= to; ++k) {
            means[static_cast<std::size_t>(i)] += values[static_cast<std::size_t>(k)];
        }
        means[static_cast<std::size_t>(i)] /= static_cast<double>(to - from + 1);
    }
    return means;
}

/// Noise of unit variance whose neighbours are alike by a factor.
std::vector<double> drifting(std::size_t count, double alike, std::mt19937_64& random)
{
    std::normal_distribution<double> normal;
    const double fresh = std::sqrt(1.0 - alike * alike);
    std::vector<double> values(count);
    double value = normal(random);
    for (double& one : values) {
        one = value;
        value = alike * value + fresh * normal(random);
    }
    return values;
}

double receiverAlike(const Instrument& instrument)
{
    return std::exp(-1.0 / (instrument.timeConstant * instrument.samplesPerPulse));
}

/// Unit variance.
std::vector<double> noiseOf(const Instrument& instrument, std::size_t count,
                            std::mt19937_64& random)
{
    if (instrument.noise == NoiseKind::Receiver) {
        return drifting(count, receiverAlike(instrument), random);
    }
    std::vector<double> noise = drifting(count + 1, 0.0, random);
    if (instrument.noise == NoiseKind::Smoothed) {
        noise = meansOf(noise, instrument.smoothed);
        for (double& value : noise) {
            value *= std::sqrt(instrument.smoothed);
        }
    } else if (instrument.noise == NoiseKind::Red) {
        const double alike = std::exp(-1.0 / (kDriftPulses * instrument.samplesPerPulse));
        const std::vector<double> drift = drifting(count + 1, alike, random);
        for (std::size_t i = 0; i < noise.size(); ++i) {
            noise[i] = std::sqrt(0.5) * (noise[i] + drift[i]);
        }
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            noise[i] = std::sqrt(0.5) * (noise[i + 1] - noise[i]);
        }
    }
    noise.resize(count);
    return noise;
}

/// What the kind of noise makes of the variance of a mean; blue noise is taken for white.
double correlationOf(const Instrument& instrument)
{
    switch (instrument.noise) {
    case NoiseKind::Smoothed:
        return instrument.smoothed;
    case NoiseKind::Red:
        return 0.5 + kDriftPulses * instrument.samplesPerPulse;
    case NoiseKind::Blue:
        return 1.0;
    case NoiseKind::Receiver:
        break;
    }
    const double alike = receiverAlike(instrument);
    return (1.0 + alike) / (1.0 - alike);
}

Sight sightOf(const gather::Fibre& fibre, int wavelength_nm, const Instrument& instrument,
              const Record& record)
{
    Sight sight;
    sight.interval_ns = record.axis.sampleInterval_ns;
    sight.firstSample_ns = record.axis.firstSample_ns;
    sight.pulse = instrument.samplesPerPulse;
    const double slower = std::max(0.0, 4.0 * (instrument.timeConstant - 0.08));
    sight.gap = (1.5 + slower) * sight.pulse + 1.0 + instrument.wholeSmoothed;
    sight.noise_dB = kNoiseLevel_dB;
    sight.launch_dB = kNoiseLevel_dB + instrument.range_dB;
    sight.correlation = correlationOf(instrument) * std::max(1.0, instrument.wholeSmoothed);
    sight.rounding_dB = instrument.quantum_dB / std::sqrt(12.0);
    const double slope_dB = fibre.sections.front().attenuation_dBPerKm.at(wavelength_nm) / 1000.0
        * otdr::metresPerNs(kIor) * sight.interval_ns;
    sight.run = std::max(1.0, instrument.quantum_dB / slope_dB);
    sight.fading_dB = instrument.fading_dB;
    sight.offset = instrument.offset;
    sight.overload_dB = instrument.overload_dB;
    sight.recovery = KnownLink::kRecovered * instrument.recovery * sight.pulse;
    sight.leastEcho_dB = kNoiseLevel_dB - kHiddenEcho_dB;
    return sight;
}

std::uint16_t countOf(double power, const Instrument& instrument, double dbPerCount)
{
    const double lowest_dB = std::max(0.0, kNoiseLevel_dB + instrument.floor_dB);
    const double level_dB =
        power > 0.0 ? kNoiseLevel_dB + instrument.range_dB + 5.0 * std::log10(power) : 0.0;
    const double told_dB =
        instrument.quantum_dB * std::round(std::max(lowest_dB, level_dB) / instrument.quantum_dB);
    const double counts = std::clamp(std::round(told_dB / dbPerCount), 0.0, kMostCounts);
    return static_cast<std::uint16_t>(otdr::kNoSignal - static_cast<int>(counts));
}

} // namespace

Record record(const gather::Fibre& fibre, int wavelength_nm, const Instrument& instrument,
              std::mt19937_64& random)
{
    Record made;
    made.dbPerCount = instrument.countsQuanta ? instrument.quantum_dB : otdr::kUsualDbPerCount;
    made.axis.sampleInterval_ns = instrument.pulse_ns / instrument.samplesPerPulse;
    made.axis.firstSample_ns =
        -std::round(instrument.before * instrument.samplesPerPulse) * made.axis.sampleInterval_ns;
    const double end_ns = fibre.length_m() / otdr::metresPerNs(kIor);
    const double last_ns =
        std::max(end_ns * instrument.times, end_ns + instrument.behind * instrument.pulse_ns);
    const double length_ns = last_ns - made.axis.firstSample_ns;
    made.counts.resize(static_cast<std::size_t>(length_ns / made.axis.sampleInterval_ns) + 2);

    const gather::LinkResponse response = gather::responseOf(fibre, wavelength_nm);
    Light light(instrument, made);
    light.addFibre(response.backscatter, response.launch_perNs, random);
    light.addReflections(response.reflections, response.launch_perNs);
    light.passReceiver();
    made.sight = sightOf(fibre, wavelength_nm, instrument, made);
    if (instrument.undershoot_dB > 0.0) {
        const KnownLink known(fibre, wavelength_nm, made.sight);
        for (const gather::TruthEvent& event : known.truth()) {
            if (!event.ghost && known.heightOf(event) >= kReflection_dB) {
                light.swingBelow(event.time_ns);
            }
        }
    }
    std::vector<double> power = light.samples();
    power.resize(made.counts.size(), 0.0);
    const std::vector<double> noise = noiseOf(instrument, power.size(), random);
    const double unit = relative(-instrument.range_dB);
    for (std::size_t i = 0; i < power.size(); ++i) {
        power[i] += unit * (noise[i] + instrument.offset);
    }
    if (instrument.wholeSmoothed > 1.0) {
        power = meansOf(power, instrument.wholeSmoothed);
    }
    for (std::size_t i = 0; i < power.size(); ++i) {
        made.counts[i] = countOf(power[i], instrument, made.dbPerCount);
    }
    return made;
}

} // namespace accuracy
