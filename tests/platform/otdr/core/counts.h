#pragma once

#include "platform/otdr/core/trace.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace testing_support {

/// Any counts at all, each as likely as any other.
inline std::vector<std::uint16_t> randomCounts(std::size_t size, unsigned seed)
{
    std::mt19937 generator(seed);
    std::vector<std::uint16_t> counts(size);
    for (std::uint16_t& count : counts) {
        count = static_cast<std::uint16_t>(generator());
    }
    return counts;
}

/// A trace of these counts.
inline otdr::Trace traceOf(const std::vector<std::uint16_t>& counts,
                           double dbPerCount = otdr::kUsualDbPerCount, otdr::TraceAxis axis = {})
{
    return {otdr::RawSamples(counts), dbPerCount, axis};
}

} // namespace testing_support
