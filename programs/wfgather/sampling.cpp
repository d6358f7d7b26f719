#include "programs/wfgather/sampling.h"

#include <array>
#include <cmath>

namespace gather {

namespace {

constexpr double kShortest_ns = 0.5;
constexpr double kSamplesPerPulse = 5.0;
constexpr double kFewestSamples = 16384.0;
constexpr std::size_t kMostSamples = 131072;

constexpr std::array<double, 4> kRoundFigures {5.0, 10.0, 20.0, 25.0}; // then 50, 100 ...

/// The round figures from kShortest_ns on.
double interval(std::size_t index)
{
    const std::size_t decade = index / kRoundFigures.size();
    return kShortest_ns * kRoundFigures[index % kRoundFigures.size()] / kRoundFigures.front()
        * std::pow(10.0, static_cast<double>(decade));
}

std::size_t countFor(double range_ns, double interval_ns)
{
    return static_cast<std::size_t>(range_ns / interval_ns) + 1;
}

} // namespace

Sampling samplingFor(double range_ns, double pulse_ns)
{
    const double wanted = std::fmin(pulse_ns / kSamplesPerPulse, range_ns / kFewestSamples);
    std::size_t index = 0;
    while (interval(index + 1) <= wanted) {
        ++index;
    }
    while (countFor(range_ns, interval(index)) > kMostSamples) {
        ++index;
    }
    return {interval(index), countFor(range_ns, interval(index))};
}

} // namespace gather
