#include "platform/launcher/palettefactory.h"

#include <QColor>

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

/// Relative luminance of an sRGB colour, WCAG 2.1.
double luminance(const QColor& colour)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

const char* const kNames[] = {"Application", "GenericWindow", "chart", "CriticalButton"};

} // namespace

TEST(PaletteFactory, KeepsTextReadableInEveryPalette)
{
    const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},
        {QPalette::PlaceholderText, QPalette::Base},
        {QPalette::ButtonText, QPalette::Button},
        {QPalette::HighlightedText, QPalette::Highlight},
        {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::Link, QPalette::Base},
    };
    for (const char* name : kNames) {
        const QPalette palette = PaletteFactory::getPalette(name);
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
            for (const auto& [text, ground] : pairs) {
                EXPECT_GE(contrast(palette.color(group, text), palette.color(group, ground)), 4.5)
                    << name << " roles " << text << " on " << ground;
            }
        }
    }
}

TEST(PaletteFactory, KeepsTheMarkedTableRowReadable)
{
    const QPalette palette = PaletteFactory::getPalette("GenericWindow");
    EXPECT_GE(contrast(Qt::white, palette.color(QPalette::Button)), 4.5) << "its text is white";
    EXPECT_GE(contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Button)), 3.0)
        << "a marker's letter on its colour";
}

TEST(PaletteFactory, GivesTheChartAPaleGridOnWhite)
{
    const QPalette palette = PaletteFactory::getPalette("chart");
    EXPECT_EQ(palette.color(QPalette::Window), QColor(Qt::white));
    const double grid = contrast(palette.color(QPalette::Mid), palette.color(QPalette::Window));
    EXPECT_GT(grid, 1.2); // to be seen
    EXPECT_LT(grid, 2.0); // and no more
}

TEST(PaletteFactory, AnswersTheGenericWindowForAnUnknownName)
{
    EXPECT_EQ(PaletteFactory::getPalette("no such"), PaletteFactory::getPalette("GenericWindow"));
    EXPECT_NE(PaletteFactory::getPalette("chart"), PaletteFactory::getPalette("GenericWindow"));
    EXPECT_NE(PaletteFactory::getPalette("CriticalButton").color(QPalette::Button),
              PaletteFactory::getPalette("GenericWindow").color(QPalette::Button));
}
