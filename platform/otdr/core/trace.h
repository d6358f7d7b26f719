#pragma once

#include "platform/otdr/core/prefixsums.h"
#include "platform/otdr/core/pyramid.h"
#include "platform/otdr/core/rawsamples.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>

namespace otdr {

/// The raw count of a sample without signal. Some makers clip at a lower ceiling of their own.
constexpr std::uint16_t kNoSignal = 65535;

/// Decibels of one raw count in nearly every trace.
constexpr double kUsualDbPerCount = 0.001;

/// Where the samples of a trace lie in time; both values are round trip.
struct TraceAxis
{
    double sampleInterval_ns = 1.0;
    double firstSample_ns = 0.0; ///< time of sample 0 relative to 0 m; negative before it

    /// Fractional index of the sample at a distance; metresPerNs as the function of that name gives
    /// it.
    [[nodiscard]] double sampleAt(double distance_m, double metresPerNs) const;

    /// Distance of a sample, m; the index may be fractional or lie outside the trace.
    [[nodiscard]] double distanceAt(double index, double metresPerNs) const;
};

/// The samples of one trace with their level and time axis, and what is computed from them once.
///
/// Immutable: a trace whose samples change is a new Trace. Every query may be called from any
/// thread; the pyramid and the sums are built on their first use, by one thread, while the others
/// that want them wait.
class Trace
{
public:
    /// dbPerCount: decibels of one raw count, > 0.
    Trace(RawSamples samples, double dbPerCount, TraceAxis axis);
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    [[nodiscard]] const RawSamples& samples() const { return counts; }

    [[nodiscard]] std::size_t size() const { return counts.size(); }

    [[nodiscard]] double dbPerCount() const { return decibels; }

    [[nodiscard]] const TraceAxis& axis() const { return time; }

    /// Level of sample i, dB above that of a sample without signal. i < size().
    [[nodiscard]] double level_dB(std::size_t i) const { return toLevel_dB(counts[i]); }

    /// Level of a raw count on the scale of this trace, dB.
    [[nodiscard]] double toLevel_dB(double raw) const { return (kNoSignal - raw) * decibels; }

    /// Level at a fractional index, dB, linear between samples; the first and the last sample
    /// continue beyond the ends. 0 for a trace without samples, NaN for an index that is NaN.
    [[nodiscard]] double levelAt_dB(double index) const;

    /// Mean level of the samples first .. last - 1, dB, as many of them as the trace has; NaN where
    /// it has none there.
    [[nodiscard]] double meanLevel_dB(std::size_t first, std::size_t last) const;

    [[nodiscard]] double sampleAt(double distance_m, double metresPerNs) const
    {
        return time.sampleAt(distance_m, metresPerNs);
    }

    [[nodiscard]] double distanceAt(double index, double metresPerNs) const
    {
        return time.distanceAt(index, metresPerNs);
    }

    [[nodiscard]] const Pyramid& pyramid() const;

    /// Sums for line fits.
    [[nodiscard]] const PrefixSums& sums() const;

    /// Sums of linear power for return loss.
    [[nodiscard]] const PowerSums& powerSums() const;

private:
    RawSamples counts;
    double decibels;
    TraceAxis time;

    mutable std::once_flag pyramidOnce;
    mutable std::once_flag sumsOnce;
    mutable std::once_flag powerOnce;
    mutable std::optional<Pyramid> builtPyramid;
    mutable std::optional<PrefixSums> builtSums;
    mutable std::optional<PowerSums> builtPower;
};

} // namespace otdr
