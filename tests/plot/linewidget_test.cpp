#include "plot/linewidget.h"

#include <QApplication>
#include <QImage>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

QImage picture(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

TEST(LineWidget, IsAsLargeAsTheLineAndItsMargin)
{
    QWidget parent;
    const LineWidget widget(QLineF(100.0, 50.0, 40.0, 80.0), &parent);
    EXPECT_EQ(widget.geometry(), QRect(35, 45, 70, 40));
    EXPECT_EQ(widget.line(), QLineF(65.0, 5.0, 5.0, 35.0));
}

TEST(LineWidget, FollowsANewLine)
{
    QWidget parent;
    LineWidget widget(&parent);
    EXPECT_TRUE(widget.line().isNull());
    widget.setLine(QLineF(10.0, 10.0, 30.0, 20.0));
    EXPECT_EQ(widget.geometry(), QRect(5, 5, 30, 20));
    EXPECT_EQ(widget.line(), QLineF(5.0, 5.0, 25.0, 15.0));
}

TEST(LineWidget, AppearsWithItsParent)
{
    QWidget parent;
    const LineWidget widget(&parent);
    EXPECT_TRUE(widget.testAttribute(Qt::WA_TranslucentBackground));
    parent.show();
    EXPECT_TRUE(widget.isVisible());
}

TEST(LineWidget, LetsTouchesThrough)
{
    class Touched : public QWidget
    {
    public:
        int presses = 0;

    protected:
        void mousePressEvent(QMouseEvent* /*event*/) override { ++presses; }
    };

    Touched parent;
    parent.resize(200, 200);
    const LineWidget widget(QLineF(50.0, 50.0, 150.0, 150.0), &parent);
    parent.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&parent));
    EXPECT_EQ(QApplication::widgetAt(parent.mapToGlobal(QPoint(100, 100))), &parent);
    QTest::mousePress(parent.windowHandle(), Qt::LeftButton, {}, QPoint(100, 100));
    EXPECT_EQ(parent.presses, 1);
    QTest::mouseRelease(parent.windowHandle(), Qt::LeftButton, {}, QPoint(100, 100));
}

TEST(LineWidget, DrawsARedLineFromEndToEnd)
{
    QWidget parent;
    LineWidget widget(QLineF(50.0, 40.0, 90.0, 40.0), &parent);
    const QImage image = picture(widget);
    EXPECT_EQ(image.pixelColor(6, 5), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(44, 5), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(2, 5).alpha(), 0);
    EXPECT_EQ(image.pixelColor(20, 3).alpha(), 0);
    EXPECT_EQ(image.pixelColor(20, 7).alpha(), 0);
}

TEST(LineWidget, LineWithoutLengthIsNotDrawn)
{
    QWidget parent;
    LineWidget widget(QLineF(50.0, 40.0, 50.0, 40.0), &parent);
    QImage nothing(widget.size(), QImage::Format_ARGB32);
    nothing.fill(Qt::transparent);
    EXPECT_EQ(picture(widget), nothing);
}

TEST(LineWidget, VeryLongLineIsStillDrawnOnTheScreen)
{
    QWidget parent;
    parent.resize(100, 100);
    LineWidget widget(QLineF(-5e7, -5e7, 5e7, 5e7), &parent);
    QImage image(100, 100, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    parent.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    EXPECT_EQ(image.pixelColor(30, 30), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(70, 70), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(70, 30).alpha(), 0);
}

} // namespace
