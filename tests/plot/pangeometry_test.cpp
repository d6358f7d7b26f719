#include "plot/pangeometry.h"

#include <gmock/gmock.h>

namespace {

TEST(PanStep, NeedsMoreThanThirtyPixelsInManhattanLength)
{
    const QPoint last(100, 100);
    EXPECT_FALSE(pan::step(last, last));
    EXPECT_FALSE(pan::step(last, {130, 100}));
    EXPECT_FALSE(pan::step(last, {85, 85}));
    EXPECT_TRUE(pan::step(last, {131, 100}));
    EXPECT_TRUE(pan::step(last, {84, 85}));
    EXPECT_TRUE(pan::step(last, {100, 131}));
}

TEST(PanStep, PointsAgainstTheFinger)
{
    EXPECT_EQ(pan::step({100, 100}, {160, 90}), QPoint(-60, 10));
}

TEST(PanDrag, IsTheWholeWayAgainstTheFinger)
{
    EXPECT_EQ(pan::drag({100, 100}, {101, 100}), QPoint(-1, 0));
    EXPECT_EQ(pan::drag({100, 100}, {40, 300}), QPoint(60, -200));
}

TEST(PanDrag, OfNothingIsATap)
{
    EXPECT_FALSE(pan::drag({100, 100}, {100, 100}));
}

} // namespace
