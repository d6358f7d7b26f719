// A week of use in fast motion: a user measures, saves, compares and deletes without end, and what
// the process has of the system must be after the last measurement what it was after the first
// ones.
//
//     soak_test [--measurements N] [--warm-up N]
//
// Exits with 0 where nothing grew, with 1 where something did or the application failed.

#include "app/environment.h"
#include "app/frame.h"
#include "app/host.h"
#include "platform/launcher/appearance.h"
#include "platform/launcher/zuconfig.h"
#include "tests/soak/deskuser.h"
#include "tests/soak/processuse.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QPixmapCache>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>
#include <QWidget>

#include <algorithm>

// What the system's libraries keep for ever is in cmake/lsan.supp; whoever starts this by hand has
// no options set.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libqoffscreen\nleak:libfontconfig\nleak:QScroller::grabGesture\n";
}

namespace {

using testing_support::DeskUser;

constexpr long kMostGrowth_KB = 5L * 1024;
constexpr int kNames = 8; ///< under which traces are saved in turn

struct Wish
{
    int measurements = 50;
    int warmUp = 100; ///< after so many nothing may grow any more
};

/// A day's work, step by step; the periods have no common factor, so that all mixtures come.
class Week
{
public:
    Week(Host& host, DeskUser& user)
        : host(host)
        , user(user)
    {
    }

    /// Settings for short runs.
    void begin();
    void doOne(int number);

    /// Back to the state in which all is compared: no trace, no panel but the settings.
    void clear();

    /// What was done beside measuring; nothing may be left out unnoticed.
    [[nodiscard]] QString summary() const
    {
        return QString("%1 saves, %2 loads, %3 moves of a marker, %4 views zoomed")
            .arg(saves)
            .arg(loads)
            .arg(moves)
            .arg(zooms);
    }

    [[nodiscard]] bool didAll() const { return saves > 0 && loads > 0 && moves > 0 && zooms > 0; }

private:
    void deleteAll();
    void chooseSettings(int number);
    void measureBetweenMarkers(int number);
    void zoom();
    void keep(int number);
    void lookAround(int number);
    [[nodiscard]] int traceCount() const;

    Host& host;
    DeskUser& user;
    bool isRealtime = false;
    int saves = 0;
    int loads = 0;
    int moves = 0;
    int zooms = 0;
};

void Week::begin()
{
    user.choose("Time", "15 s");
    user.choose("Distance", "1 km");
    user.choose("Pulse", "30 ns");
}

int Week::traceCount() const
{
    const auto* table = host.frame()->findChild<QTableView*>("reflectograms");
    return table == nullptr ? 0 : table->model()->rowCount();
}

void Week::doOne(int number)
{
    chooseSettings(number);
    user.measure();
    if (number % 2 == 0) {
        measureBetweenMarkers(number);
    }
    zoom();
    keep(number);
    lookAround(number);
    DeskUser::settle();
}

void Week::chooseSettings(int number)
{
    const QStringList pulses = {"5 ns", "30 ns", "100 ns", "10 ns"};
    const QStringList wavelengths = {"1310 nm", "All", "1550 nm"};
    if (number % 3 == 0) {
        user.choose("Pulse", pulses.at(number / 3 % pulses.size()));
    }
    if (isRealtime) {
        user.choose("Time", "15 s");
        isRealtime = false;
    }
    if (number % 5 == 0) {
        user.choose("Wavelength", wavelengths.at(number / 5 % wavelengths.size()));
    }
    if (number % 13 == 6) {
        isRealtime = true;
        user.choose("Wavelength", "1310 nm");
        user.choose("Time", QChar(0x221E));
    }
}

void Week::measureBetweenMarkers(int number)
{
    user.showPanel("Measurement", true);
    user.tapButton(number % 4 == 0 ? "2 pt + LSA" : "2 points");
    const int direction = number % 8 < 4 ? 1 : -1;
    const QList<QWidget*> markers = user.allOfClass("QmMarker");
    for (QWidget* marker : markers) {
        const QPoint before = marker->pos();
        const QPoint knob(marker->width() / 2, marker->height() - marker->width() / 2);
        user.drag(marker, knob, {direction * 60, 0});
        moves += marker->pos() != before ? 1 : 0;
    }
    user.turnWheel(direction * 3);
    user.tapButton("Markers to screen");
    DeskUser::settle(); // the return loss is computed in the background
}

void Week::zoom()
{
    for (const int key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Up, Qt::Key_Right, Qt::Key_Left}) {
        user.press(key);
    }
    zooms += user.ofClass("QmMiniPlot") != nullptr ? 1 : 0; // shown while something is out of view
    QWidget* chart = user.ofClass("Waveform::Plot");
    user.drag(chart, chart->rect().center(), {-80, 20});
    user.tapButton("1:1");
}

void Week::keep(int number)
{
    if (number % 3 == 1) {
        user.save(QString("link%1").arg(number / 3 % kNames));
        ++saves;
    }
    if (number % 7 == 5) {
        user.chooseFromMenu(0, traceCount() > 1 ? "Delete all" : "Delete");
        user.load(2);
        ++loads;
        user.chooseFromMenu(1, "Set as main");
        user.showPanel("Events", true);
        user.chooseFromMenu(0, "Delete");
    }
}

void Week::lookAround(int number)
{
    user.showPanel("Events", number % 3 == 0);
    user.showPanel("Reflectograms", number % 4 == 1);
    if (number % 11 == 3) {
        user.tap(user.named("helpButton"));
        user.tapButton("About");
        user.close(QApplication::activeModalWidget());
        user.close(user.named("help"));
    }
    if (number % 9 == 4) {
        user.tap(user.ofClass("NightSwitch"));
        const QSize size = number % 2 == 0 ? QSize(800, 480) : QSize(1280, 800);
        host.frame()->resize(size);
    }
}

void Week::clear()
{
    for (const char* panel : {"Events", "Reflectograms"}) {
        user.showPanel(panel, false);
    }
    host.frame()->resize(800, 480);
    user.choose("Wavelength", "1310 nm");
    begin();
    user.measure(); // the same work comes before each comparison
    isRealtime = false;
    deleteAll();
    user.showPanel("Reflectograms", false);
    user.showPanel("Settings", true);
    DeskUser::settle();
    QPixmapCache::clear(); // which Qt fills up to 10 MB before it lets anything go
}

void Week::deleteAll()
{
    for (int count = traceCount(); count > 0; count = qMin(count - 1, traceCount())) {
        user.chooseFromMenu(0, count > 1 ? "Delete all" : "Delete");
    }
}

int fail(const QString& why)
{
    QTextStream(stderr) << "soak: " << why << "\n";
    return 1;
}

void say(int number, const ProcessUse& use, double seconds)
{
    QTextStream(stdout) << QString("%1 measurements, %2 s: ").arg(number).arg(seconds, 0, 'f', 1)
                        << toText(use) << "\n";
}

/// What is more than it was; empty where all is well.
QStringList growth(const ProcessUse& before, const ProcessUse& after)
{
    QStringList grown;
    const auto compare = [&](const char* what, long was, long is, long allowed) {
        if (is > was + allowed) {
            grown << QString("%1 grew from %2 to %3").arg(what).arg(was).arg(is);
        }
    };
    if (after.heap_KB > 0) { // a sanitizer's allocator keeps what was freed, to see who uses it
        compare("resident memory, KB,", before.resident_KB, after.resident_KB, kMostGrowth_KB);
        compare("the most resident memory, KB,", before.mostResident_KB, after.mostResident_KB,
                kMostGrowth_KB);
    }
    compare("open handles", before.handles, after.handles, 0);
    compare("threads", before.threads, after.threads, 0);
    compare("child processes", before.children, after.children, 0);
    compare("top-level widgets", before.windows, after.windows, 0);
    compare("objects", before.objects, after.objects, 0);
    return grown;
}

/// Does it all, and tells whether that left nothing behind.
int work(Host& host, const Wish& wish)
{
    DeskUser user(host);
    Week week(host, user);
    QElapsedTimer time;
    time.start();
    ProcessUse before;
    const int tell = std::max(1, wish.measurements / 20);
    week.begin();
    for (int number = 1; number <= wish.measurements && user.problem().isEmpty(); ++number) {
        week.doOne(number);
        const bool isWarm = number == wish.warmUp;
        if (isWarm || number % tell == 0 || number == wish.measurements) {
            week.clear();
            const ProcessUse now = processUse();
            say(number, now, static_cast<double>(time.elapsed()) / 1000.0);
            before = isWarm ? now : before;
        }
        if (!user.problem().isEmpty()) {
            return fail(QString("measurement %1: %2").arg(number).arg(user.problem()));
        }
    }
    QTextStream(stdout) << week.summary() << "\n";
    if (!week.didAll()) {
        return fail("something was left out");
    }
    const QStringList grown = growth(before, processUse());
    return grown.isEmpty() ? 0 : fail(grown.join("; "));
}

Wish wishOf(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"measurements", "So many in all.", "N", "50"});
    parser.addOption({"warm-up", "Nothing grows after so many.", "N", "100"});
    parser.process(application);
    Wish wish;
    wish.measurements = std::max(2, parser.value("measurements").toInt());
    wish.warmUp = std::clamp(parser.value("warm-up").toInt(), 1, wish.measurements / 2);
    return wish;
}

/// All but what the offscreen platform cannot do and the one connection that is not to take.
void printWarnings(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    const bool known = text.startsWith("This plugin does not support")
        || text.startsWith("QObject::connect: No such slot Waveform::Window::rescalePlot(");
    if (type != QtDebugMsg && !known) {
        QTextStream(stderr) << text << "\n";
    }
}

} // namespace

int main(int argc, char** argv)
{
    countObjects();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qInstallMessageHandler(printWarnings);
    if (!qEnvironmentVariableIsSet("WAVEFORM_PROGRAMS")) {
        qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN);
    }
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
    qunsetenv("XDG_CONFIG_HOME");
    QCoreApplication::setApplicationName("waveform");
    QApplication application(argc, argv);
    const Wish wish = wishOf(application);
    Environment environment;
    const QString refused = environment.enter();
    if (!refused.isEmpty()) {
        return fail(refused);
    }
    const Appearance appearance;
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 0);
    Host host;
    const QString problem = host.load();
    if (!problem.isEmpty()) {
        return fail(problem);
    }
    host.frame()->resize(800, 480);
    host.frame()->show();
    return work(host, wish);
}
