#include "platform/launcher/palettefactory.h"
#include "tests/support/contrast.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using testing_support::contrast;
using Light = PaletteFactory::Light;
using TextOnGround = std::pair<QPalette::ColorRole, QPalette::ColorRole>;

const char* const kNames[] = {"Application", "GenericWindow", "chart", "table", "CriticalButton"};

const TextOnGround kPairs[] = {
    {QPalette::WindowText, QPalette::Window},
    {QPalette::WindowText, QPalette::Base},
    {QPalette::Text, QPalette::Base},
    {QPalette::Text, QPalette::AlternateBase},
    {QPalette::Text, QPalette::Window},
    {QPalette::PlaceholderText, QPalette::Base},
    {QPalette::ButtonText, QPalette::Button},
    {QPalette::BrightText, QPalette::Dark},
    {QPalette::HighlightedText, QPalette::Highlight},
    {QPalette::ToolTipText, QPalette::ToolTipBase},
    {QPalette::Link, QPalette::Base},
    {QPalette::Link, QPalette::Window},
    {QPalette::LinkVisited, QPalette::Base},
    {QPalette::LinkVisited, QPalette::Window},
};

class Lights : public testing::TestWithParam<Light>
{
protected:
    static QPalette palette(const char* name)
    {
        return PaletteFactory::getPalette(name, GetParam());
    }

    static void expectReadable(const char* name, QPalette::ColorGroup group, double least)
    {
        for (const auto& [text, ground] : kPairs) {
            EXPECT_GE(
                contrast(palette(name).color(group, text), palette(name).color(group, ground)),
                least)
                << name << " group " << group << " roles " << text << " on " << ground;
        }
    }
};

TEST_P(Lights, KeepTextReadableInEveryPalette)
{
    for (const char* name : kNames) {
        expectReadable(name, QPalette::Active, 4.5);
        expectReadable(name, QPalette::Inactive, 4.5);
    }
}

TEST_P(Lights, LetDisabledTextBeRead)
{
    for (const char* name : kNames) {
        expectReadable(name, QPalette::Disabled, 3.0);
    }
}

TEST_P(Lights, ShowWhatIsChosenAndWhereTheFocusIs)
{
    for (const char* name : kNames) {
        for (const QPalette::ColorRole ground : {QPalette::Window, QPalette::Base}) {
            EXPECT_GE(
                contrast(palette(name).color(QPalette::Highlight), palette(name).color(ground)),
                3.0)
                << name << " on " << ground;
        }
    }
}

TEST_P(Lights, KeepTheMarkedTableRowReadable)
{
    const QColor row = palette("GenericWindow").color(QPalette::Button);
    EXPECT_GE(contrast(Qt::white, row), 4.5) << "its text is white";
    EXPECT_GE(contrast(palette("GenericWindow").color(QPalette::ButtonText), row), 4.5)
        << "a checked marker's letter on its colour";
    EXPECT_GE(contrast(palette("chart").color(QPalette::Window), row), 3.0)
        << "a marker's line on the chart";
}

TEST_P(Lights, KeepThePaperOfTheTracesLight)
{
    const QColor traces[] = {Qt::darkBlue, Qt::black, Qt::darkMagenta, Qt::darkGreen};
    for (const QColor& trace : traces) {
        EXPECT_GE(contrast(trace, palette("chart").color(QPalette::Window)), 4.5);
        EXPECT_GE(contrast(trace, palette("table").color(QPalette::Base)), 4.5);
    }
}

INSTANTIATE_TEST_SUITE_P(PaletteFactory, Lights, testing::Values(Light::Day, Light::Night));

TEST(PaletteFactory, GivesTheChartAPaleGridOnWhite)
{
    const QPalette palette = PaletteFactory::getPalette("chart");
    EXPECT_EQ(palette.color(QPalette::Window), QColor(Qt::white));
    const double grid = contrast(palette.color(QPalette::Mid), palette.color(QPalette::Window));
    EXPECT_GT(grid, 1.2); // to be seen
    EXPECT_LT(grid, 2.0); // and no more
}

TEST(PaletteFactory, IsDarkAtNight)
{
    const auto ground = [](Light light) {
        return testing_support::luminance(
            PaletteFactory::getPalette("Application", light).color(QPalette::Window));
    };
    EXPECT_GT(ground(Light::Day), 0.8);
    EXPECT_LT(ground(Light::Night), 0.05);
    EXPECT_EQ(PaletteFactory::getPalette("Application"),
              PaletteFactory::getPalette("Application", Light::Day));
}

TEST(PaletteFactory, MarksThingsOnPaperAlikeByDayAndNight)
{
    for (const char* name : {"GenericWindow", "CriticalButton"}) {
        EXPECT_EQ(PaletteFactory::getPalette(name, Light::Day).color(QPalette::Button),
                  PaletteFactory::getPalette(name, Light::Night).color(QPalette::Button));
    }
    EXPECT_EQ(PaletteFactory::getPalette("chart", Light::Day),
              PaletteFactory::getPalette("chart", Light::Night));
}

TEST(PaletteFactory, AnswersTheGenericWindowForAnUnknownName)
{
    EXPECT_EQ(PaletteFactory::getPalette("no such"), PaletteFactory::getPalette("GenericWindow"));
    EXPECT_NE(PaletteFactory::getPalette("chart"), PaletteFactory::getPalette("GenericWindow"));
    EXPECT_NE(PaletteFactory::getPalette("CriticalButton").color(QPalette::Button),
              PaletteFactory::getPalette("GenericWindow").color(QPalette::Button));
}

} // namespace
