#include "app/options.h"

#include <QTemporaryFile>

#include <gmock/gmock.h>

namespace {

Options good(const QStringList& arguments)
{
    const auto parsed = parseOptions(QStringList("waveform") + arguments);
    if (const auto* text = std::get_if<OptionsText>(&parsed)) {
        ADD_FAILURE() << qPrintable(text->text);
        return {};
    }
    return std::get<Options>(parsed);
}

OptionsText refused(const QStringList& arguments)
{
    const auto parsed = parseOptions(QStringList("waveform") + arguments);
    if (std::holds_alternative<Options>(parsed)) {
        ADD_FAILURE() << "accepted: " << qPrintable(arguments.join(' '));
        return {};
    }
    return std::get<OptionsText>(parsed);
}

QVariant overridden(const Options& options, const QString& section, const QString& key)
{
    for (const Options::Override& value : options.overrides) {
        if (value.section == section && value.key == key) {
            return value.value;
        }
    }
    return {};
}

TEST(CommandLine, FilesAreOpenedInTheirOrder)
{
    EXPECT_EQ(good({"b.sor", "a.sor"}).files, QStringList({"b.sor", "a.sor"}));
    EXPECT_TRUE(good({}).files.isEmpty());
}

TEST(CommandLine, ScreenshotHasAFileAndASize)
{
    const Options options = good({"--screenshot", "x.png", "--size", "800x480", "a.sor"});
    EXPECT_EQ(options.screenshot, "x.png");
    EXPECT_EQ(options.size, QSize(800, 480));
    EXPECT_EQ(good({"--screenshot", "x.png", "a.sor"}).size, QSize(1280, 800));
}

TEST(CommandLine, LanguageIsOneThatThereAreWordsIn)
{
    EXPECT_EQ(good({}).language, "");
    EXPECT_EQ(good({"--language", "ru"}).language, "ru");
    EXPECT_EQ(good({"--language", "en"}).language, "en");
    for (const char* code : {"", "xx", "RU", "ru_RU", "russian"}) {
        EXPECT_EQ(refused({"--language", code}).exitCode, 2) << code;
    }
}

TEST(CommandLine, PanelsToShowAreNamed)
{
    EXPECT_TRUE(good({"a.sor"}).panels.isEmpty());
    EXPECT_EQ(good({"--show", "events", "a.sor"}).panels, QStringList("events"));
    EXPECT_EQ(
        good({"--screenshot", "x.png", "--show", "measurement,reflectograms", "a.sor"}).panels,
        QStringList({"measurement", "reflectograms"}));
}

TEST(CommandLine, ConfigurationIsSetForThisRun)
{
    const Options options = good({"--seed", "7", "--time-scale", "0", "--duration", "30", "--pulse",
                                  "1000", "--distance", "5000", "--wavelength", "1550"});
    EXPECT_EQ(overridden(options, "Simulation", "seed"), QVariant(7));
    EXPECT_EQ(overridden(options, "Simulation", "timeScale"), QVariant(0.0));
    EXPECT_EQ(overridden(options, "MeasParams", "duration"), QVariant(30));
    EXPECT_EQ(overridden(good({"--duration", "0"}), "MeasParams", "duration"), QVariant(0));
    EXPECT_EQ(overridden(options, "MeasParams", "pulse"), QVariant(1000));
    EXPECT_EQ(overridden(options, "MeasParams", "distance"), QVariant(5000));
    EXPECT_EQ(overridden(options, "MeasParams", "wavelength"), QVariant(1550));
    EXPECT_EQ(overridden(good({"--wavelength", "all"}), "MeasParams", "wavelength"),
              QVariant("all"));
}

TEST(CommandLine, FibreAndReplayNameFilesByTheirWholePath)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    const Options options = good({"--fibre", file.fileName(), "--replay", file.fileName()});
    EXPECT_EQ(overridden(options, "Simulation", "fibre"), QVariant(file.fileName()));
    EXPECT_EQ(overridden(options, "Simulation", "replay"), QVariant(file.fileName()));
}

TEST(CommandLine, WrongUseIsRefusedWithOneLineAndCodeTwo)
{
    for (const QStringList& wrong : QList<QStringList> {
             {"--nonsense"},
             {"--seed", "x"},
             {"--seed", "-1"},
             {"--seed", "1.5"},
             {"--pulse", "0"},
             {"--pulse", "nan"},
             {"--time-scale", "inf"},
             {"--duration", "1e99"},
             {"--wavelength", "blue"},
             {"--wavelength", "12"},
             {"--size", "800"},
             {"--size", "0x0"},
             {"--size", "800x480x2"},
             {"--size", "99999x99999"},
             {"--screenshot", "x.png"},
             {"--screenshot", ""},
             {"--screenshot", "", "a.sor"},
             {"--demo", ""},
             {"--demo", "d", "--duration", "0"},
             {"--demo", "d", "--screenshot", "x.png", "a.sor"},
             {"--demo", "d", "a.sor"},
             {"--show", "", "a.sor"},
             {"--show", "events,nonsense", "a.sor"},
             {"--show", "Events", "a.sor"},
             {"--fibre", "/no/such/file"},
             {"--replay", "/tmp"},
         }) {
        const OptionsText text = refused(wrong);
        EXPECT_EQ(text.exitCode, 2) << qPrintable(wrong.join(' '));
        EXPECT_EQ(text.text.count('\n'), 1) << qPrintable(text.text);
    }
}

TEST(CommandLine, HelpNamesEveryOptionAndSucceeds)
{
    const OptionsText help = refused({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* option :
         {"--demo", "--screenshot", "--size", "--show", "--fibre", "--replay", "--seed",
          "--time-scale", "--duration", "--pulse", "--distance", "--wavelength", "--version"}) {
        EXPECT_TRUE(help.text.contains(option)) << option;
    }
    EXPECT_EQ(refused({"--version"}).exitCode, 0);
}

} // namespace
