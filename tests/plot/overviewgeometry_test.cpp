#include "plot/overviewgeometry.h"

#include <qwt_scale_map.h>

#include <QSize>

#include <gmock/gmock.h>

#include <limits>

namespace {

/// Maps of an overview of 216 x 116 pixels: 10 km wide, 50 dB high, the highest level on top.
class Overview : public testing::Test
{
protected:
    Overview()
    {
        xMap.setScaleInterval(0.0, 10000.0);
        yMap.setScaleInterval(50.0, 0.0);
        overview::fitMaps(xMap, yMap, QSize(216, 116));
    }

    QwtScaleMap xMap; // 50 m a pixel
    QwtScaleMap yMap; // 0.5 dB a pixel
};

TEST_F(Overview, LeavesAMarginOfEightPixels)
{
    EXPECT_EQ(xMap.transform(0.0), 8.0);
    EXPECT_EQ(xMap.transform(10000.0), 208.0);
    EXPECT_EQ(yMap.transform(50.0), 8.0);
    EXPECT_EQ(yMap.transform(0.0), 108.0);
}

TEST_F(Overview, MapsAreNotInverted)
{
    yMap.setScaleInterval(0.0, 50.0);
    EXPECT_EQ(yMap.transform(0.0), 8.0) << "rows grow downwards, and so do levels on this scale";
    EXPECT_EQ(yMap.transform(50.0), 108.0);
}

TEST_F(Overview, AnAreaWithHighLevelsOnTopHasANegativeHeight)
{
    EXPECT_EQ(overview::mapped({1000.0, 10.0, 5000.0, 20.0}, xMap, yMap),
              QRectF(28.0, 88.0, 100.0, -40.0));
}

TEST_F(Overview, TicksStandInTheColumnTheyFallInto)
{
    EXPECT_EQ(overview::tickColumn(0.0, xMap), 8);
    EXPECT_EQ(overview::tickColumn(5049.0, xMap), 108);
    EXPECT_EQ(overview::tickColumn(5050.0, xMap), 109);
}

TEST_F(Overview, TicksOutsideTheScaleStayWhereTheyMapTo)
{
    EXPECT_EQ(overview::tickColumn(10200.0, xMap), 212) << "in the margin";
    EXPECT_EQ(overview::tickColumn(11000.0, xMap), 228) << "beyond the widget";
    EXPECT_EQ(overview::tickColumn(-1000.0, xMap), -12);
}

TEST_F(Overview, TicksThatNoPainterCanTakeAreFarBeyondTheWidget)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_GT(overview::tickColumn(1e300, xMap), 1000000);
    EXPECT_GT(overview::tickColumn(infinity, xMap), 1000000);
    EXPECT_LT(overview::tickColumn(-infinity, xMap), -1000000);
    EXPECT_GT(overview::tickColumn(std::numeric_limits<double>::quiet_NaN(), xMap), 1000000);
}

TEST(OverviewArea, OfSufficientSizeStays)
{
    const QRectF pixels(20.0, 80.0, 16.0, -12.0);
    EXPECT_EQ(overview::withMinimumSize(pixels), pixels);
}

TEST(OverviewArea, NarrowerThanSixteenPixelsIsWidenedAboutItsCentre)
{
    for (const double width : {0.0, 0.01, 7.0, 15.9, -3.0}) {
        const QRectF result = overview::withMinimumSize({100.0, 80.0, width, -40.0});
        EXPECT_DOUBLE_EQ(result.width(), 16.0);
        EXPECT_DOUBLE_EQ(result.center().x(), 100.0 + width / 2.0);
        EXPECT_DOUBLE_EQ(result.y(), 80.0);
        EXPECT_DOUBLE_EQ(result.height(), -40.0);
    }
}

TEST(OverviewArea, LowerThanTwelvePixelsIsWidenedAboutItsCentre)
{
    for (const double height : {0.0, -0.01, -5.0, -11.9}) {
        const QRectF result = overview::withMinimumSize({100.0, 80.0, 40.0, height});
        EXPECT_DOUBLE_EQ(result.height(), -12.0);
        EXPECT_DOUBLE_EQ(result.center().y(), 80.0 + height / 2.0);
        EXPECT_DOUBLE_EQ(result.x(), 100.0);
        EXPECT_DOUBLE_EQ(result.width(), 40.0);
    }
}

TEST(OverviewArea, OfPositiveHeightIsTakenForOneOfNegativeHeight)
{
    EXPECT_EQ(overview::withMinimumSize({100.0, 80.0, 40.0, 12.0}),
              QRectF(100.0, 80.0, 40.0, 12.0));
    EXPECT_EQ(overview::withMinimumSize({100.0, 80.0, 40.0, 4.0}), QRectF(100.0, 84.0, 40.0, -4.0));
}

} // namespace
