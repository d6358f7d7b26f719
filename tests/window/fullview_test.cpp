#include "window/fullview.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using Waveform::fullViewWidth;

TEST(FullView, ReachesAsFarAsItsRange)
{
    EXPECT_EQ(fullViewWidth(10'000.0), 10'000.0);
    EXPECT_EQ(fullViewWidth(0.51), 0.51);
}

TEST(FullView, IsNeverNarrowerThanTheNarrowestView)
{
    for (const double range : {0.5, 0.1, 0.0, -2000.0, std::numeric_limits<double>::quiet_NaN(),
                               -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(fullViewWidth(range), 0.5) << range;
    }
}

TEST(FullView, EndsBeyondAnyFibre)
{
    EXPECT_EQ(fullViewWidth(1e300), 1e7);
    EXPECT_EQ(fullViewWidth(std::numeric_limits<double>::infinity()), 1e7);
}

} // namespace
