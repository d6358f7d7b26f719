#include "plot/legendgeometry.h"
#include "tests/plot/legendsides.h"

#include <QFont>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace legendgeometry;

using testing_support::kLeft;
using testing_support::kRight;

TEST(LegendGeometry, SizeIsThatOfTheLinesAndWhatIsAroundThem)
{
    const QFontMetrics metrics((QFont()));
    const QRect first = metrics.boundingRect("12345 m");
    const QRect second = metrics.boundingRect("-1.50 dB");
    const QSize size = sizeFor("12345 m\n-1.50 dB", metrics);
    EXPECT_EQ(size.width(), std::max(first.width(), second.width()) + 27);
    EXPECT_EQ(size.height(), first.height() + second.height() + 4);
}

TEST(LegendGeometry, EmptyLinesTakeNoRoom)
{
    const QFontMetrics metrics((QFont()));
    EXPECT_EQ(sizeFor("\n5 m\n\n", metrics), sizeFor("5 m", metrics));
    EXPECT_EQ(sizeFor("", metrics), QSize(27, 0));
}

TEST(LegendGeometry, LegendStaysOnTheRightWhileItFits)
{
    EXPECT_EQ(alignmentAt(300, 100, 400, kRight), kRight);
    EXPECT_EQ(alignmentAt(301, 100, 400, kRight), kLeft);
}

TEST(LegendGeometry, LegendOnTheLeftGoesBackTheNextTime)
{
    EXPECT_EQ(alignmentAt(200, 100, 400, kLeft), kRight);
    EXPECT_EQ(alignmentAt(350, 100, 400, kLeft), kRight);
}

TEST(LegendGeometry, LegendStandsBesideItsMarker)
{
    EXPECT_EQ(topLeft(QPoint(200, 30), 100, kRight), QPoint(200, 30));
    EXPECT_EQ(topLeft(QPoint(200, 30), 100, kLeft), QPoint(100, 30));
}

TEST(LegendGeometry, PointerGoesFromTheMarkerToTheBox)
{
    EXPECT_EQ(pointer(QSize(100, 41), kRight), QLine(0, 20, 14, 20));
    EXPECT_EQ(pointer(QSize(100, 41), kLeft), QLine(100, 20, 84, 20));
}

TEST(LegendGeometry, BoxLeavesRoomForThePointer)
{
    EXPECT_EQ(box(QSize(100, 41), kRight), QRectF(15.0, 1.0, 84.0, 39.0));
    EXPECT_EQ(box(QSize(100, 41), kLeft), QRectF(1.0, 1.0, 84.0, 39.0));
}

} // namespace
