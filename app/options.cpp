#include "app/options.h"

#include "app/language.h"
#include "app/shownpanels.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr int kWrongUse = 2;

/// An option with a number that becomes a configuration value for this run.
struct NumberOption
{
    const char* name;
    const char* unit;
    const char* help;
    const char* section;
    const char* key;
    double least;
    double most;
    bool whole;
};

constexpr double kMost = std::numeric_limits<int>::max();

constexpr int kLeastWavelength_nm = 600; // what wfgather takes
constexpr int kMostWavelength_nm = 2000;

constexpr int kLeastSide_px = 100;
constexpr int kMostSide_px = 16384; // a picture of it is 1 GB

const NumberOption kNumbers[] = {
    {"seed", "N", "Seed of the simulated noise.", "Simulation", "seed", 0, kMost, true},
    {"time-scale", "X", "Seconds of waiting for a second of measuring; 0: as fast as possible.",
     "Simulation", "timeScale", 0, 1e6, false},
    {"duration", "S", "Averaging time in s; 0: realtime.", "MeasParams", "duration", 0, 86400,
     true},
    {"pulse", "NS", "Pulse width in ns.", "MeasParams", "pulse", 1, 20000, true},
    {"distance", "M", "Distance range in m.", "MeasParams", "distance", 1, 500000, true},
};

OptionsText wrong(const QString& text)
{
    return {"waveform: " + text + "\n", kWrongUse};
}

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "OTDR workstation: acquires, shows, measures and keeps reflectograms.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("files", "Trace files to open, four at most.", "[FILE.sor ...]");
    parser.addOption({"demo",
                      "Make one measurement with nobody at the screen and leave its "
                      "results in DIR.",
                      "DIR"});
    parser.addOption(
        {"screenshot", "Open the files, save a picture of the window and leave.", "PNG"});
    parser.addOption({"size", "Size of that picture, such as 800x480.", "WxH"});
    parser.addOption(
        {"show",
         "Panels to show in that picture, with commas between: " + panelNames().join(", ") + ".",
         "PANELS"});
    parser.addOption({"fibre", "Fibre of the simulated card.", "FILE"});
    parser.addOption({"replay", "Trace file that the simulated card measures instead.", "FILE"});
    parser.addOption({"wavelength", "Wavelength in nm, or all.", "NM"});
    parser.addOption(
        {"language",
         "Language of the window instead of the system's: " + Language::known().join(" or ") + ".",
         "CODE"});
    for (const NumberOption& number : kNumbers) {
        parser.addOption({number.name, number.help, number.unit});
    }
}

std::optional<QSize> sizeOf(const QString& text)
{
    const QStringList sides = text.split('x');
    const QSize size(sides.value(0).toInt(), sides.value(1).toInt());
    const bool good = sides.size() == 2 && std::min(size.width(), size.height()) >= kLeastSide_px
        && std::max(size.width(), size.height()) <= kMostSide_px;
    return good ? std::optional(size) : std::nullopt;
}

/// What a run with nobody at the screen is to make, and what cannot go together.
std::optional<OptionsText> readModes(const QCommandLineParser& parser, Options& options)
{
    options.files = parser.positionalArguments();
    options.demoDir = parser.value("demo");
    options.screenshot = parser.value("screenshot");
    if (parser.isSet("demo") && options.demoDir.isEmpty()) {
        return wrong("--demo wants a directory");
    }
    if (parser.isSet("screenshot") && options.screenshot.isEmpty()) {
        return wrong("--screenshot wants a file to write");
    }
    if (!options.demoDir.isEmpty() && !options.screenshot.isEmpty()) {
        return wrong("--demo and --screenshot exclude each other");
    }
    if (!options.demoDir.isEmpty() && !options.files.isEmpty()) {
        return wrong("--demo measures and opens no files");
    }
    if (!options.screenshot.isEmpty() && options.files.isEmpty()) {
        return wrong("--screenshot wants trace files to show");
    }
    return std::nullopt;
}

std::optional<OptionsText> readPicture(const QCommandLineParser& parser, Options& options)
{
    if (parser.isSet("size")) {
        const auto size = sizeOf(parser.value("size"));
        if (!size) {
            return wrong(QString("--size cannot be \"%1\"").arg(parser.value("size")));
        }
        options.size = *size;
    }
    if (parser.isSet("show")) {
        options.panels = parser.value("show").split(',');
        for (const QString& panel : qAsConst(options.panels)) {
            if (!panelNames().contains(panel)) {
                return wrong(QString("--show knows no panel \"%1\"").arg(panel));
            }
        }
    }
    return std::nullopt;
}

std::optional<OptionsText> readNumbers(const QCommandLineParser& parser, Options& options)
{
    for (const NumberOption& number : kNumbers) {
        if (!parser.isSet(number.name)) {
            continue;
        }
        bool ok = false;
        const double value = parser.value(number.name).toDouble(&ok);
        if (!ok || !(value >= number.least && value <= number.most)
            || (number.whole && value != std::floor(value))) {
            return wrong(
                QString("--%1 cannot be \"%2\"").arg(number.name, parser.value(number.name)));
        }
        const QVariant stored = number.whole ? QVariant(static_cast<int>(value)) : QVariant(value);
        options.overrides.push_back({number.section, number.key, stored});
    }
    return std::nullopt;
}

std::optional<OptionsText> readTexts(const QCommandLineParser& parser, Options& options)
{
    for (const char* name : {"fibre", "replay"}) {
        if (!parser.isSet(name)) {
            continue;
        }
        const QFileInfo file(parser.value(name));
        if (!file.isFile()) {
            return wrong(QString("there is no file \"%1\"").arg(parser.value(name)));
        }
        options.overrides.push_back({"Simulation", name, file.absoluteFilePath()});
    }
    options.language = parser.value("language");
    if (parser.isSet("language") && !Language::known().contains(options.language)) {
        return wrong(QString("--language cannot be \"%1\"").arg(options.language));
    }
    if (parser.isSet("wavelength")) {
        const QString text = parser.value("wavelength");
        const int wavelength_nm = text.toInt();
        if (text != "all"
            && (wavelength_nm < kLeastWavelength_nm || wavelength_nm > kMostWavelength_nm)) {
            return wrong(QString("--wavelength cannot be \"%1\"").arg(text));
        }
        options.overrides.push_back(
            {"MeasParams", "wavelength", text == "all" ? QVariant(text) : QVariant(wavelength_nm)});
    }
    return std::nullopt;
}

} // namespace

std::variant<Options, OptionsText> parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) {
        return wrong(parser.errorText());
    }
    if (parser.isSet("help")) {
        return OptionsText {parser.helpText(), 0};
    }
    if (parser.isSet("version")) {
        return OptionsText {QString("waveform %1\n").arg(QCoreApplication::applicationVersion()),
                            0};
    }
    Options options;
    for (const auto& read : {readModes, readPicture, readNumbers, readTexts}) {
        if (const auto error = read(parser, options)) {
            return *error;
        }
    }
    const bool realtime = parser.isSet("duration") && parser.value("duration").toDouble() == 0.0;
    if (!options.demoDir.isEmpty() && realtime) {
        return wrong("--demo cannot measure in realtime, which nobody would end");
    }
    return options;
}
