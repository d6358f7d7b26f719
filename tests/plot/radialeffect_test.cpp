#include "plot/radialeffect.h"

#include <gmock/gmock.h>

namespace {

QGradientStops from(Qt::GlobalColor color)
{
    return {{0.0, color}, {1.0, Qt::transparent}};
}

TEST(RadialEffect, LiesAroundTheCentreWithTheWidthAsRadius)
{
    RadialEffect effect;
    const QRadialGradient gradient = effect.at(QRectF(10.0, 20.0, 40.0, 60.0), from(Qt::red));
    EXPECT_EQ(gradient.center(), QPointF(30.0, 50.0));
    EXPECT_EQ(gradient.focalPoint(), QPointF(30.0, 50.0));
    EXPECT_EQ(gradient.radius(), 40.0);
    EXPECT_EQ(gradient.stops(), from(Qt::red));
}

TEST(RadialEffect, IsKeptForTheSamePlace)
{
    RadialEffect effect;
    (void)effect.at(QRectF(0.0, 0.0, 27.0, 27.0), from(Qt::red));
    EXPECT_EQ(effect.at(QRectF(0.5e-5, 0.0, 27.0, 27.0), from(Qt::blue)).stops(), from(Qt::red));
}

TEST(RadialEffect, IsMadeAnewWhereTheCentreHasMoved)
{
    RadialEffect effect;
    (void)effect.at(QRectF(0.0, 0.0, 27.0, 27.0), from(Qt::red));
    const QRadialGradient gradient = effect.at(QRectF(0.0, 2e-5, 27.0, 27.0), from(Qt::blue));
    EXPECT_EQ(gradient.stops(), from(Qt::blue));
    EXPECT_EQ(gradient.center().y(), 13.5 + 2e-5);
}

TEST(RadialEffect, IsMadeAnewWhereTheWidthDiffers)
{
    RadialEffect effect;
    (void)effect.at(QRectF(0.0, 0.0, 27.0, 27.0), from(Qt::red));
    const QRadialGradient gradient = effect.at(QRectF(0.5, 0.0, 26.0, 27.0), from(Qt::blue));
    EXPECT_EQ(gradient.radius(), 26.0);
    EXPECT_EQ(gradient.stops(), from(Qt::blue));
}

TEST(RadialEffect, IsMadeForTheFirstPlaceWhateverItIs)
{
    RadialEffect effect;
    EXPECT_EQ(effect.at(QRectF(-0.5, -0.5, 1.0, 1.0), from(Qt::red)).stops(), from(Qt::red));
}

} // namespace
