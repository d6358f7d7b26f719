#include "platform/otdr/core/overload.h"
#include "platform/otdr/core/trace.h"
#include "tests/platform/otdr/core/counts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using otdr::overloadLevel_dB;
using testing_support::traceOf;

constexpr double kLongPulse = 20.0;

/// Fibre that falls by a count a sample, with tops of this count from some places on.
struct Top
{
    std::size_t from;
    std::size_t samples;
    std::uint16_t count;
};

otdr::Trace withTops(const std::vector<Top>& tops, double dbPerCount = otdr::kUsualDbPerCount)
{
    std::vector<std::uint16_t> counts;
    for (std::uint16_t i = 0; i < 2000; ++i) {
        counts.push_back(static_cast<std::uint16_t>(30000 + i));
    }
    for (const Top& top : tops) {
        std::fill_n(counts.begin() + static_cast<std::ptrdiff_t>(top.from), top.samples, top.count);
    }
    return traceOf(counts, dbPerCount);
}

TEST(Overload, IsTheLevelThatTheHighestSamplesShareInTwoPlaces)
{
    const auto trace = withTops({{500, 6, 20000}, {900, 6, 20001}});
    EXPECT_NEAR(overloadLevel_dB(trace, kLongPulse), 45.535, 0.0021);
    EXPECT_LE(overloadLevel_dB(trace, kLongPulse), trace.level_dB(900));
}

TEST(Overload, IsNotKnownByOnePlace)
{
    EXPECT_TRUE(std::isinf(overloadLevel_dB(withTops({{500, 20, 20000}}), kLongPulse)));
    // Within two pulses they are one.
    EXPECT_TRUE(
        std::isinf(overloadLevel_dB(withTops({{500, 6, 20000}, {546, 6, 20000}}), kLongPulse)));
    EXPECT_FALSE(
        std::isinf(overloadLevel_dB(withTops({{500, 6, 20000}, {547, 6, 20000}}), kLongPulse)));
}

TEST(Overload, IsNotKnownByTopsThatDiffer)
{
    EXPECT_FALSE(
        std::isinf(overloadLevel_dB(withTops({{500, 6, 20000}, {900, 6, 20002}}), kLongPulse)));
    EXPECT_TRUE(
        std::isinf(overloadLevel_dB(withTops({{500, 6, 20000}, {900, 6, 20003}}), kLongPulse)));
}

/// Of coarse counts neighbours are the same.
TEST(Overload, AllowsForTheRoundingOfCoarseCounts)
{
    constexpr double kCoarse = 0.01;
    EXPECT_FALSE(std::isinf(
        overloadLevel_dB(withTops({{500, 6, 2000}, {900, 6, 2001}}, kCoarse), kLongPulse)));
    EXPECT_TRUE(std::isinf(
        overloadLevel_dB(withTops({{500, 6, 2000}, {900, 6, 2002}}, kCoarse), kLongPulse)));
}

/// Peaks of noise are as high as each other for less than a part of a pulse.
TEST(Overload, LastsForAThirdOfAPulseAndTwoSamples)
{
    EXPECT_TRUE(
        std::isinf(overloadLevel_dB(withTops({{500, 5, 20000}, {900, 6, 20000}}), kLongPulse)));
    EXPECT_TRUE(std::isinf(overloadLevel_dB(withTops({{500, 1, 20000}, {900, 2, 20000}}), 1.0)));
    EXPECT_FALSE(std::isinf(overloadLevel_dB(withTops({{500, 2, 20000}, {900, 2, 20000}}), 1.0)));
}

TEST(Overload, OfARecordWithoutSamplesIsNotKnown)
{
    EXPECT_TRUE(std::isinf(overloadLevel_dB(traceOf({}), kLongPulse)));
}

} // namespace
