#include "platform/launcher/palettefactory.h"
#include "platform/launcher/touchbutton.h"
#include "tests/support/contrast.h"

#include <QtTest>

#include <gtest/gtest.h>

namespace {

using testing_support::contrast;
using Light = PaletteFactory::Light;

TEST(TouchButton, IsLargerThanItsText)
{
    for (const QString& text : {QString("1"), QString("Markers to screen"), QString()}) {
        const TouchButton button(text);
        EXPECT_GE(button.sizeHint().height(), 44);
        EXPECT_GE(button.minimumSizeHint().height(), 44);
        const int width = button.fontMetrics().horizontalAdvance(text);
        EXPECT_GE(button.sizeHint().width(), width + 24);
        EXPECT_GE(button.minimumSizeHint().width(), width + 4) << "its text would be cut";
        EXPECT_LT(button.minimumSizeHint().width(), button.sizeHint().width());
    }
}

TEST(TouchButton, EnterPressesItAsSpaceDoes)
{
    TouchButton button("x");
    button.setCheckable(true);
    bool expected = false;
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&button, static_cast<Qt::Key>(key));
        expected = !expected;
        EXPECT_EQ(button.isChecked(), expected) << key;
    }
}

/// The colour between the edge of a button and its text.
QColor ground(TouchButton& button)
{
    return button.grab().toImage().pixelColor(10, 22);
}

/// The colour in a button that differs most from its ground: that of its text, but for the blur of
/// its edges.
QColor ink(TouchButton& button)
{
    const QImage picture = button.grab(button.rect().adjusted(10, 8, -10, -8)).toImage();
    const QColor paper = ground(button);
    QColor most = paper;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor here = picture.pixelColor(x, y);
            most = contrast(here, paper) > contrast(most, paper) ? here : most;
        }
    }
    return most;
}

class TouchButtonIn : public testing::TestWithParam<Light>
{
};

TEST_P(TouchButtonIn, LooksOtherwiseWhileCheckedAndStaysReadable)
{
    QWidget page;
    page.setPalette(PaletteFactory::getPalette("Application", GetParam()));
    TouchButton button("HHHH", &page);
    button.resize(120, 44);
    const QColor usual = ground(button);
    EXPECT_GE(contrast(ink(button), usual), 4.5);
    button.setCheckable(true);
    button.setChecked(true);
    EXPECT_GE(contrast(ink(button), ground(button)), 4.5);
    EXPECT_GE(contrast(usual, ground(button)), 3.0);
    button.setChecked(false);
    EXPECT_EQ(ground(button), usual);
}

INSTANTIATE_TEST_SUITE_P(Lights, TouchButtonIn, testing::Values(Light::Day, Light::Night));

TEST(TouchButton, FollowsThePageWhileItIsChecked)
{
    QWidget page;
    page.setPalette(PaletteFactory::getPalette("Application", Light::Day));
    TouchButton button("HHHH", &page);
    button.resize(120, 44);
    button.setCheckable(true);
    button.setChecked(true);
    const QColor byDay = ground(button);
    page.setPalette(PaletteFactory::getPalette("Application", Light::Night));
    EXPECT_NE(ground(button), byDay);
    EXPECT_GE(contrast(ink(button), ground(button)), 4.5);
    EXPECT_EQ(button.palette().color(QPalette::Button), page.palette().color(QPalette::Button));
}

} // namespace
