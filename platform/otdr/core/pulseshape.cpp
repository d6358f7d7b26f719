#include "platform/otdr/core/pulseshape.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

/// Edges are as long as this, or as the time constant if the receiver shows them to be shorter.
constexpr double kEdgePulses = 0.1;
constexpr double kEdgeTimeConstants = kEdgePulses / PulseShape::kUsualTimeConstant;
constexpr double kLongestTimeConstantPulses = 20.0;

/// Entries of the tables for one width of the pulse.
constexpr std::size_t kCells = 200;

/// The tables end so many time constants behind the edges of the pulse: exp(-9) = 1e-4 is left.
constexpr double kTimeConstants = 9.0;

/// Running mean over the `width` cells before each entry; before the first there is nothing.
std::vector<double> meanOver(const std::vector<double>& values, std::size_t width)
{
    std::vector<double> means(values.size());
    double sum = 0.0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        sum += 0.5 * (values[i - 1] + values[i]);
        if (i > width) {
            sum -= 0.5 * (values[i - width - 1] + values[i - width]);
        }
        means[i] = sum / static_cast<double>(width);
    }
    return means;
}

} // namespace

PulseShape::PulseShape(double pulse, double timeConstant)
    : width(pulse)
    , cell(pulse / kCells)
    , cellsPerSample(kCells / pulse)
{
    const double tau = std::clamp(timeConstant / pulse, 0.01, kLongestTimeConstantPulses) * kCells;
    const double rounded = std::min(kEdgePulses, kEdgeTimeConstants * tau / kCells);
    const auto edge = static_cast<std::size_t>(std::max(1.0, std::round(rounded * kCells)));
    const auto size = kCells + 2 * edge + static_cast<std::size_t>(kTimeConstants * tau) + 2;

    const std::vector<double> sharp(size, 1.0);
    rises = meanOver(meanOver(sharp, edge), edge);
    const double gain = -std::expm1(-1.0 / tau);
    double level = 0.0;
    double before = 0.0;
    for (double& value : rises) {
        level += gain * (0.5 * (before + value) - level);
        before = value;
        value = level;
    }
    steps = meanOver(rises, kCells);
    areas.resize(size);
    for (std::size_t i = 1; i < size; ++i) {
        areas[i] = areas[i - 1] + 0.5 * cell * (steps[i - 1] + steps[i]);
    }
    lastArea = static_cast<double>(size - 1) * cell;
    delay = static_cast<double>(size - 1) * cell - areas.back();
    length = static_cast<double>(size) * cell;
    half = static_cast<double>(std::lower_bound(steps.begin(), steps.end(), 0.5) - steps.begin())
        * cell;
}

// With k(t) for what the receiver has of the light of t samples ago, S the integral of k and M that
// of t k(t), both from 0 to u: the light of u samples of a falling fibre is the integral of k(t)
// exp(decay t), so that its part of the whole is (S + decay M) / (1 + decay M(infinity)). By parts,
// M = u S - (area under S up to u), and M(infinity) is the mean delay.
PulseShape::Fall::Fall(const PulseShape& shape, double decay)
    : tilt(std::clamp(decay, -0.5 / shape.delay, 0.5 / shape.delay))
    , whole(1.0 + tilt * shape.delay)
{
}

double PulseShape::riseTo(double part) const
{
    const auto above = std::lower_bound(rises.begin(), rises.end(), part);
    if (above == rises.begin()) {
        return 0.0;
    }
    if (above == rises.end()) {
        return length;
    }
    const double step = *above - *(above - 1);
    const auto index = static_cast<double>(above - rises.begin());
    return (index - (step > 0.0 ? (*above - part) / step : 0.0)) * cell;
}

} // namespace otdr
