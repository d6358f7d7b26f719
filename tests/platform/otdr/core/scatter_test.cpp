#include "platform/otdr/core/scatter.h"
#include "platform/otdr/core/trace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

TEST(ScatterOf, KnowsNoSlopeAndNothingOfNoSamples)
{
    std::vector<std::uint16_t> counts(1000);
    std::mt19937_64 random(14);
    std::normal_distribution<double> normal(0.0, 20.0);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i] = static_cast<std::uint16_t>(
            std::lround(20000.0 + 10.0 * static_cast<double>(i) + normal(random)));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
    for (const std::size_t lag : {1U, 10U, 100U}) {
        EXPECT_NEAR(otdr::scatterOf_dB(trace, 0, 1000, lag), 0.02, 0.003) << lag;
    }
    EXPECT_EQ(otdr::scatterOf_dB(trace, 500, 500, 1), 0.0);
    EXPECT_EQ(otdr::scatterOf_dB(trace, 990, 2000, 5), 0.0);
}

TEST(ScatterOf, TellsSecondDifferencesInCounts)
{
    const otdr::Trace trace(otdr::RawSamples(std::vector<std::uint16_t> {10, 0, 50, 0, 30}),
                            otdr::kUsualDbPerCount, {});
    EXPECT_EQ(otdr::secondDifferenceAt(trace, 2, 1), 100);
    EXPECT_EQ(otdr::secondDifferenceAt(trace, 2, 2), 60);
    EXPECT_EQ(otdr::secondDifferenceAt(trace, 1, 1), 60);
}

} // namespace
