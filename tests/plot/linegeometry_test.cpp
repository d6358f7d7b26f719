#include "plot/linegeometry.h"

#include <qwt_scale_map.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using namespace linegeometry;

TEST(LineGeometry, FrameLeavesFivePixelsAroundTheLine)
{
    const Framed result = framed(QLineF(100.0, 50.0, 40.0, 80.0));
    EXPECT_EQ(result.geometry, QRect(35, 45, 70, 40));
    EXPECT_EQ(result.line, QLineF(65.0, 5.0, 5.0, 35.0));
}

TEST(LineGeometry, FrameRoundsItsPlaceAndTruncatesItsSize)
{
    const Framed result = framed(QLineF(10.6, 20.4, 20.3, 30.2));
    EXPECT_EQ(result.geometry, QRect(6, 15, 19, 19));
    EXPECT_NEAR(result.line.x1(), 5.0, 1e-12);
    EXPECT_NEAR(result.line.y2(), 14.8, 1e-12);
}

TEST(LineGeometry, LevelLineHasAFrameOfItsMargins)
{
    EXPECT_EQ(framed(QLineF(0.0, 30.0, 50.0, 30.0)).geometry, QRect(-5, 25, 60, 10));
}

TEST(LineGeometry, MappedLineLiesWhereTheScalesSay)
{
    QwtScaleMap x;
    x.setScaleInterval(0.0, 1000.0);
    x.setPaintInterval(0.0, 500.0);
    QwtScaleMap y;
    y.setScaleInterval(0.0, 50.0);
    y.setPaintInterval(300.0, 0.0);
    EXPECT_EQ(mapped(QLineF(100.0, 40.0, 900.0, 20.0), x, y), QLineF(50.0, 60.0, 450.0, 180.0));
}

TEST(LineGeometry, LineWithinReachStaysAsItIs)
{
    const QLineF line(-1e6, 3.0, 1e6, -7.5);
    EXPECT_EQ(withinReach(line), line);
}

TEST(LineGeometry, LongLineIsCutAlongItself)
{
    const QLineF part = withinReach(QLineF(-3e7, -2.95e7, 7e7, 7.05e7));
    EXPECT_NEAR(part.x1(), -1e6, 1e-3);
    EXPECT_NEAR(part.y1(), -5e5, 1e-3);
    EXPECT_NEAR(part.x2(), 5e5, 1e-3);
    EXPECT_NEAR(part.y2(), 1e6, 1e-3);
}

TEST(LineGeometry, LongLevelLineIsCutAtItsEndsOnly)
{
    const QLineF part = withinReach(QLineF(2e8, 40.0, 10.0, 40.0));
    EXPECT_NEAR(part.x1(), 1e6, 1e-3);
    EXPECT_NEAR(part.x2(), 10.0, 1e-3);
    EXPECT_EQ(part.y1(), 40.0);
    EXPECT_EQ(part.y2(), 40.0);
}

TEST(LineGeometry, LineOutOfReachIsNone)
{
    EXPECT_TRUE(withinReach(QLineF(2e6, 0.0, 3e6, 10.0)).isNull());
    EXPECT_TRUE(withinReach(QLineF(-9e6, 2e6, 9e6, 2e6)).isNull());
    EXPECT_TRUE(withinReach(QLineF(-3e6, 0.0, 0.0, 3e6)).isNull()); // passes by a corner
}

TEST(LineGeometry, LineWithAnEndThatIsNoNumberIsNone)
{
    EXPECT_TRUE(withinReach(QLineF(0.0, std::nan(""), 10.0, 10.0)).isNull());
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(withinReach(QLineF(0.0, 0.0, infinity, 10.0)).isNull());
}

TEST(LineGeometry, PressWithinTenPixelsGrabs)
{
    EXPECT_TRUE(grabs(300.0, 290));
    EXPECT_TRUE(grabs(300.0, 310));
    EXPECT_FALSE(grabs(300.0, 289));
    EXPECT_FALSE(grabs(300.0, 311));
    EXPECT_FALSE(grabs(300.4, 290));
    EXPECT_TRUE(grabs(300.0 + 1e-10, 290)); // what a map makes of a whole pixel
}

} // namespace
