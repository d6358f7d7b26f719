#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "tests/support/tracebuilder.h"

#include <cstdint>

namespace testing_support {

constexpr double kBackscatter_dB = -80.0;
constexpr double kPulse_ns = 100.0;

inline otdr::Measurement measurementOf(const TraceBuilder& builder)
{
    return {kPulse_ns, builder.metresPerNs(), kBackscatter_dB};
}

inline otdr::Detection detect(const TraceBuilder& builder,
                              const otdr::DetectionSettings& settings = {})
{
    const auto trace = builder.build();
    return otdr::detectEvents(*trace, measurementOf(builder), settings);
}

/// 12 km with an end, and noise behind it.
inline TraceBuilder link(std::uint64_t seed = 21)
{
    return TraceBuilder().fibre(12_km).behind(3000).noise(0.01_dB, seed).noiseFloor(8_dB);
}

} // namespace testing_support
