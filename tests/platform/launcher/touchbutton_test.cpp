#include "platform/launcher/palettefactory.h"
#include "platform/launcher/touchbutton.h"

#include <QtTest>

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(TouchButton, IsLargerThanItsText)
{
    for (const QString& text : {QString("1"), QString("Markers to screen"), QString()}) {
        const TouchButton button(text);
        EXPECT_GE(button.sizeHint().height(), 44);
        EXPECT_GE(button.minimumSizeHint().height(), 44);
        EXPECT_GE(button.minimumSizeHint().width(),
                  button.fontMetrics().horizontalAdvance(text) + 24);
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

double luminance(const QColor& colour)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

TEST(TouchButton, LooksOtherwiseWhileCheckedAndStaysReadable)
{
    QWidget page;
    page.setPalette(PaletteFactory::getPalette("Application"));
    TouchButton button("x", &page);
    button.resize(120, 44);
    const auto ground = [&] { return button.grab().toImage().pixelColor(10, 22); };
    const double usual = luminance(ground());
    button.setCheckable(true);
    button.setChecked(true);
    const double checked = luminance(ground());
    const double text = luminance(button.palette().color(QPalette::ButtonText));
    EXPECT_GE((text + 0.05) / (checked + 0.05), 4.5);
    EXPECT_GE((usual + 0.05) / (checked + 0.05), 3.0);
    button.setChecked(false);
    EXPECT_NEAR(luminance(ground()), usual, 0.01);
}

TEST(TouchButton, TakesTheColoursOfItsPageAgain)
{
    QWidget page;
    page.setPalette(PaletteFactory::getPalette("Application"));
    TouchButton button("x", &page);
    button.setCheckable(true);
    button.setChecked(true);
    button.setChecked(false);
    page.setPalette(PaletteFactory::getPalette("CriticalButton"));
    EXPECT_EQ(button.palette().color(QPalette::Button), page.palette().color(QPalette::Button));
}

} // namespace
