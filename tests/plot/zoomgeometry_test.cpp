#include "plot/zoomgeometry.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using zoom::Bounds;

TEST(ZoomStepIn, IsTheWantedFactorWhileItEndsAboveTheSmallestSpan)
{
    EXPECT_EQ(zoom::inFactor({100.0, 108.0}, 2.0, 1.0), 2.0);
    EXPECT_EQ(zoom::inFactor({100.0, 102.0}, 2.0, 1.0), 2.0);
}

TEST(ZoomStepIn, IsShortenedToEndOnTheSmallestSpan)
{
    EXPECT_EQ(zoom::inFactor({100.0, 101.5}, 2.0, 1.0), 1.5);
}

TEST(ZoomStepIn, IsNoneAtOrBelowTheSmallestSpan)
{
    EXPECT_FALSE(zoom::inFactor({100.0, 101.0}, 2.0, 1.0));
    EXPECT_FALSE(zoom::inFactor({100.0, 100.5}, 2.0, 1.0));
    EXPECT_FALSE(zoom::inFactor({0.0, 0.0}, 2.0, 1.0));
}

TEST(ZoomStepIn, IsNoneWhereOnlyRoundingIsLeftOfTheSpan)
{
    const double centre = 51234.567;
    const Bounds atLimit {centre - 0.15, centre + 0.15};
    ASSERT_NE(atLimit.span(), 0.3) << "the bounds of this test are not rounded";
    EXPECT_FALSE(zoom::inFactor(atLimit, 2.0, 0.3));
    EXPECT_TRUE(zoom::inFactor(atLimit, 2.0, 0.299));
}

TEST(ZoomStep, OfAFactorThatIsNotPositiveIsNone)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double factor : {0.0, -2.0, nan}) {
        EXPECT_FALSE(zoom::inFactor({0.0, 8.0}, factor, 1.0)) << factor;
        EXPECT_FALSE(zoom::outFactor({0.0, 8.0}, factor, 100.0)) << factor;
    }
}

TEST(ZoomStep, OfAFactorBelowOneGoesTheOtherWay)
{
    EXPECT_EQ(zoom::inFactor({100.0, 108.0}, 0.5, 1.0), 0.5);
    EXPECT_EQ(zoom::outFactor({100.0, 108.0}, 0.5, 100.0), 0.5);
}

TEST(ZoomStepOut, IsTheWantedFactorWhileItEndsBelowTheGreatestSpan)
{
    EXPECT_EQ(zoom::outFactor({100.0, 110.0}, 2.0, 100.0), 2.0);
    EXPECT_EQ(zoom::outFactor({100.0, 150.0}, 2.0, 100.0), 2.0);
}

TEST(ZoomStepOut, IsShortenedToEndOnTheGreatestSpan)
{
    EXPECT_EQ(zoom::outFactor({0.0, 80.0}, 2.0, 100.0), 1.25);
}

TEST(ZoomStepOut, IsNoneAtOrAboveTheGreatestSpan)
{
    EXPECT_FALSE(zoom::outFactor({0.0, 100.0}, 2.0, 100.0));
    EXPECT_FALSE(zoom::outFactor({0.0, 120.0}, 2.0, 100.0));
}

TEST(ZoomStepOut, IsNoneWhereOnlyRoundingIsMissingToTheGreatestSpan)
{
    const double centre = 51234.567;
    const Bounds atLimit {centre - 0.15, centre + 0.15};
    EXPECT_FALSE(zoom::outFactor(atLimit, 2.0, atLimit.span() + 1e-11));
    EXPECT_TRUE(zoom::outFactor(atLimit, 2.0, atLimit.span() + 1e-3));
}

TEST(ZoomScaling, KeepsTheCentre)
{
    const Bounds wider = zoom::scaled({100.0, 110.0}, 3.0);
    EXPECT_DOUBLE_EQ(wider.low, 90.0);
    EXPECT_DOUBLE_EQ(wider.up, 120.0);
}

TEST(ZoomScaling, WithinLimitsBoundsOnlyTheSize)
{
    const auto bounds = [](double factor) {
        const Bounds result = zoom::scaledWithin({90.0, 100.0}, factor, 4.0, 50.0);
        EXPECT_DOUBLE_EQ(result.centre(), 95.0);
        return result.span();
    };
    EXPECT_DOUBLE_EQ(bounds(0.5), 5.0);
    EXPECT_DOUBLE_EQ(bounds(0.1), 4.0);
    EXPECT_DOUBLE_EQ(bounds(3.0), 30.0);
    EXPECT_DOUBLE_EQ(bounds(8.0), 50.0);
}

TEST(ZoomScaling, TheFullViewOverrulesTheSmallestSpan)
{
    EXPECT_DOUBLE_EQ(zoom::scaledWithin({0.0, 10.0}, 0.5, 20.0, 8.0).span(), 8.0);
}

TEST(ZoomScaling, ThereAndBackIsWhereItWas)
{
    const Bounds start {1234.5, 6789.25};
    const Bounds back = zoom::scaled(zoom::scaled(start, 0.25), 4.0);
    EXPECT_NEAR(back.low, start.low, 1e-9);
    EXPECT_NEAR(back.up, start.up, 1e-9);
}

TEST(ZoomRect, IsItsBounds)
{
    const QRectF rect = zoom::rectOf({10.0, 40.0}, {5.0, 25.0});
    EXPECT_EQ(rect, QRectF(10.0, 5.0, 30.0, 20.0));
    EXPECT_EQ(zoom::xBounds(rect).low, 10.0);
    EXPECT_EQ(zoom::xBounds(rect).up, 40.0);
    EXPECT_EQ(zoom::yBounds(rect).low, 5.0);
    EXPECT_EQ(zoom::yBounds(rect).up, 25.0);
}

TEST(ZoomedView, DiffersByAWholeUnitInEitherDirection)
{
    const QRectF full(0.0, 0.0, 1000.0, 50.0);
    EXPECT_FALSE(zoom::isZoomed(full, full));
    EXPECT_FALSE(zoom::isZoomed(full, QRectF(0.0, 0.0, 999.01, 49.01)));
    EXPECT_FALSE(zoom::isZoomed(full, QRectF(0.0, 0.0, 1000.99, 50.99)));
    EXPECT_TRUE(zoom::isZoomed(full, QRectF(0.0, 0.0, 999.0, 50.0)));
    EXPECT_TRUE(zoom::isZoomed(full, QRectF(0.0, 0.0, 1001.0, 50.0)));
    EXPECT_TRUE(zoom::isZoomed(full, QRectF(0.0, 0.0, 1000.0, 49.0)));
}

TEST(ZoomedView, OfTheSameSizeElsewhereIsNotZoomed)
{
    EXPECT_FALSE(zoom::isZoomed({0.0, 0.0, 1000.0, 50.0}, {500.0, -20.0, 1000.0, 50.0}));
}

TEST(ZoomedView, StandsSpansThatNoIntegerHolds)
{
    EXPECT_TRUE(zoom::isZoomed({0.0, 0.0, 1e30, 50.0}, {0.0, 0.0, 1.0, 50.0}));
}

TEST(NarrowestView, IsJudgedToHalfACentimetre)
{
    EXPECT_TRUE(zoom::isNarrowest({100.0, 0.0, 0.5, 10.0}, 0.5));
    EXPECT_TRUE(zoom::isNarrowest({100.0, 0.0, 0.5049, 10.0}, 0.5));
    EXPECT_FALSE(zoom::isNarrowest({100.0, 0.0, 0.5051, 10.0}, 0.5));
}

} // namespace
