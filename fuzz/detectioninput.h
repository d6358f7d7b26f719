#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/rawsamples.h"
#include "platform/otdr/core/trace.h"

#include <gsl/span>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

/// What the search for events is given, as bytes: interval, first time, pulse, scale,
/// backscatter and index in a header, then little-endian samples. Its numbers reach as far as those
/// of files do.
class DetectionInput
{
public:
    /// More would only slow the executions down.
    static constexpr std::size_t kMostSamples = 8192;

    explicit DetectionInput(gsl::span<const std::byte> bytes);

    [[nodiscard]] otdr::RawSamples samples() const { return counts; }

    [[nodiscard]] double dbPerCount() const;
    [[nodiscard]] otdr::TraceAxis axis() const;
    [[nodiscard]] otdr::Measurement measurement() const;

private:
    double interval_ns = 10.0; ///< as in a snapshot: any above 0
    double firstSample_ns = 0.0;
    std::uint32_t pulse_ns = 100;
    std::uint16_t scaleFactor = 1000; ///< x 1000, as in a trace file
    std::uint16_t backscatter = 795; ///< -0.1 dB at 1 ns; 0 = unknown
    std::uint16_t groupIndex = 14680; ///< x 1e-4
    otdr::RawSamples counts;
};

/// The bytes that stand for these samples, taken every 10 ns with a pulse of 100 ns.
[[nodiscard]] std::vector<std::byte> encodeDetectionInput(const std::vector<std::uint16_t>& counts);

} // namespace fuzz
