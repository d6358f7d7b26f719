#include "platform/otdr/core/decibels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace otdr;

TEST(Decibels, OfATraceAreOneWay)
{
    // Light that passes twice through what halves it is a quarter: 3.01 dB of the trace.
    EXPECT_NEAR(powerRatio(-10.0 * std::log10(2.0)), 0.25, 1e-15);
    EXPECT_NEAR(levelOfRatio_dB(0.25), -10.0 * std::log10(2.0), 1e-15);
    EXPECT_DOUBLE_EQ(powerRatio(5.0), 10.0);
}

TEST(Decibels, RatioAndLevelAreInverse)
{
    for (const double level_dB : {-60.0, -0.001, 0.0, 0.02, 13.7}) {
        EXPECT_NEAR(levelOfRatio_dB(powerRatio(level_dB)), level_dB, 1e-13);
    }
}

TEST(Decibels, NoLightIsInfinitelyFarDownAndLessIsNoNumber)
{
    EXPECT_EQ(levelOfRatio_dB(0.0), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(levelOfRatio_dB(-1.0)));
}

} // namespace
