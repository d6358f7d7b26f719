#include "platform/otdr/core/trace.h"

#include <cmath>
#include <utility>

namespace otdr {

double TraceAxis::sampleAt(double distance_m, double metresPerNs) const
{
    return (distance_m / metresPerNs - firstSample_ns) / sampleInterval_ns;
}

double TraceAxis::distanceAt(double index, double metresPerNs) const
{
    return (firstSample_ns + index * sampleInterval_ns) * metresPerNs;
}

Trace::Trace(RawSamples samples, double dbPerCount, TraceAxis axis)
    : counts(std::move(samples))
    , decibels(dbPerCount)
    , time(axis)
{
}

double Trace::levelAt_dB(double index) const
{
    if (counts.empty()) {
        return 0.0;
    }
    if (std::isnan(index)) {
        return index;
    }
    if (index <= 0.0) {
        return level_dB(0);
    }
    const std::size_t end = size() - 1;
    if (index >= static_cast<double>(end)) {
        return level_dB(end);
    }
    const auto before = static_cast<std::size_t>(index);
    const double part = index - static_cast<double>(before);
    return level_dB(before) + part * (level_dB(before + 1) - level_dB(before));
}

double Trace::meanLevel_dB(std::size_t first, std::size_t last) const
{
    return toLevel_dB(sums().mean(first, last));
}

const Pyramid& Trace::pyramid() const
{
    std::call_once(pyramidOnce, [this] { builtPyramid.emplace(counts); });
    return *builtPyramid;
}

const PrefixSums& Trace::sums() const
{
    std::call_once(sumsOnce, [this] { builtSums.emplace(counts); });
    return *builtSums;
}

const PowerSums& Trace::powerSums() const
{
    std::call_once(powerOnce, [this] { builtPower.emplace(counts, decibels); });
    return *builtPower;
}

} // namespace otdr
