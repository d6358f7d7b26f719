#include "plot/markergeometry.h"

#include <QGradient>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using namespace markergeometry;

TEST(MarkerGeometry, KnobIsASquareTwelveRowsAboveTheBottom)
{
    const QRect knob = pointerRect(29, 400);
    EXPECT_EQ(knob.left(), 1);
    EXPECT_EQ(knob.right(), 27);
    EXPECT_EQ(knob.top(), 361);
    EXPECT_EQ(knob.bottom(), 387);
    EXPECT_EQ(knob.width(), knob.height());
}

TEST(MarkerGeometry, KnobGoesWithTheSizeOfTheMarker)
{
    EXPECT_EQ(pointerRect(41, 200), QRect(QPoint(1, 149), QPoint(39, 187)));
}

TEST(MarkerGeometry, MarkerStaysRightOfColumnZeroAndLeftOfTheParentsEdge)
{
    const QRect marker(20, 0, 29, 300);
    EXPECT_TRUE(staysInside(marker, -19, 400));
    EXPECT_FALSE(staysInside(marker, -20, 400));
    EXPECT_TRUE(staysInside(marker, 351, 400)); // its last column is the parent's last
    EXPECT_FALSE(staysInside(marker, 352, 400));
    EXPECT_FALSE(staysInside(marker, std::numeric_limits<int>::max(), 400));
    EXPECT_FALSE(staysInside({-20, 0, 29, 300}, std::numeric_limits<int>::min(), 400));
}

TEST(MarkerGeometry, LineIsPutToTheNearestColumn)
{
    EXPECT_EQ(leftEdgeFor(100.0), 86);
    EXPECT_EQ(leftEdgeFor(100.49), 86);
    EXPECT_EQ(leftEdgeFor(100.5), 87);
    EXPECT_EQ(leftEdgeFor(-30.2), -44);
}

TEST(MarkerGeometry, ColumnIsRoundedInSinglePrecision)
{
    EXPECT_EQ(leftEdgeFor(100.49999999), 87);
}

TEST(MarkerGeometry, PlacesFarOutsideAreBoundedAndNoNumberIsNoPlace)
{
    constexpr int kFarthest = 1000000;
    EXPECT_EQ(leftEdgeFor(1e30), kFarthest - kLine);
    EXPECT_EQ(leftEdgeFor(-std::numeric_limits<double>::infinity()), -kFarthest - kLine);
    EXPECT_EQ(leftEdgeFor(std::nan("")), std::nullopt);
}

TEST(MarkerGeometry, DragStartsAtTenPixelsToEitherSide)
{
    EXPECT_FALSE(isDrag(9));
    EXPECT_FALSE(isDrag(-9));
    EXPECT_TRUE(isDrag(10));
    EXPECT_TRUE(isDrag(-10));
}

TEST(MarkerGeometry, TapIsShort)
{
    EXPECT_TRUE(isTap(0));
    EXPECT_TRUE(isTap(69));
    EXPECT_FALSE(isTap(70));
    EXPECT_TRUE(isTap(-1)); // the clock was set back
}

TEST(MarkerGeometry, FingerIsBelowFromThirtyOneRowsOn)
{
    EXPECT_FALSE(isBelow(330, 300));
    EXPECT_TRUE(isBelow(331, 300));
}

TEST(MarkerGeometry, GlowStandsAroundTheLine)
{
    const QLinearGradient gradient = glow(29, QColor(200, 100, 50));
    EXPECT_EQ(gradient.start(), QPointF(21.0, 0.0));
    EXPECT_EQ(gradient.finalStop(), QPointF(7.0, 0.0));
    const QGradientStops stops = gradient.stops();
    ASSERT_EQ(stops.size(), 3);
    EXPECT_EQ(stops.at(0), QGradientStop(0.0, Qt::transparent));
    EXPECT_EQ(stops.at(1).first, 0.5);
    EXPECT_EQ(stops.at(1).second.rgb(), qRgb(200, 100, 50));
    EXPECT_NEAR(stops.at(1).second.alphaF(), 0.25, 1e-4);
    EXPECT_EQ(stops.at(2), QGradientStop(1.0, Qt::transparent));
}

TEST(MarkerGeometry, SymbolIsCentredByWholePixels)
{
    EXPECT_EQ(centred(QSizeF(11.0, 17.0), QRect(1, 361, 27, 27)), QPoint(9, 366));
    EXPECT_EQ(centred(QSizeF(10.0, 16.5), QRect(1, 361, 27, 27)), QPoint(9, 366));
}

} // namespace
