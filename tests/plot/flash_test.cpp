#include "plot/flash.h"

#include <QImage>

#include <gmock/gmock.h>

namespace {

class Light : public testing::Test
{
protected:
    QWidget parent;
    Flash flash {&parent};
};

TEST_F(Light, IsASquareWithAClearWindowColour)
{
    EXPECT_EQ(flash.geometry(), QRect(0, 0, 113, 113));
    EXPECT_FALSE(flash.autoFillBackground());
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor clear = flash.palette().color(group, QPalette::Window);
        EXPECT_EQ(clear.alpha(), 0);
        EXPECT_EQ(clear.rgb(), parent.palette().color(QPalette::Window).rgb());
    }
}

TEST_F(Light, IsCentredOnAPoint)
{
    flash.centerOn(QPoint(200, 150));
    EXPECT_EQ(flash.geometry(), QRect(144, 94, 113, 113));
    flash.centerOn(QPoint(200, 150));
    EXPECT_EQ(flash.pos(), QPoint(144, 94));
}

TEST_F(Light, EvenSizedLightIsCentredByWholePixels)
{
    flash.resize(100, 50);
    flash.centerOn(QPoint(200, 150));
    EXPECT_EQ(flash.geometry().center(), QPoint(200, 150));
    EXPECT_EQ(flash.pos(), QPoint(151, 126));
}

TEST_F(Light, MovesAside)
{
    flash.centerOn(QPoint(200, 150));
    flash.moveByX(-7);
    EXPECT_EQ(flash.pos(), QPoint(137, 94));
}

TEST_F(Light, EffectFadesToHalfTheWidth)
{
    const QRadialGradient effect = flash.pressEffect(QRectF(0.0, 0.0, 113.0, 113.0));
    EXPECT_EQ(effect.center(), QPointF(56.5, 56.5));
    EXPECT_EQ(effect.focalPoint(), QPointF(56.5, 56.5));
    EXPECT_EQ(effect.radius(), 113.0);
    const QGradientStops stops {{0.0, flash.palette().color(QPalette::Button)},
                                {0.5, flash.palette().color(QPalette::Window)},
                                {1.0, Qt::transparent}};
    EXPECT_EQ(effect.stops(), stops);
}

TEST_F(Light, IsStrongestInTheMiddleAndNothingAtItsEdge)
{
    QImage image(flash.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    flash.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_GT(image.pixelColor(56, 56).alpha(), 240);
    EXPECT_LT(image.pixelColor(86, 56).alpha(), 160);
    EXPECT_GT(image.pixelColor(86, 56).alpha(), 80);
    EXPECT_LT(image.pixelColor(112, 56).alpha(), 5);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
}

} // namespace
