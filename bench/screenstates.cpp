#include "bench/screenstates.h"

#include "app/frame.h"
#include "app/host.h"
#include "bench/fewcolours.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/zuconfig.h"

#include <QApplication>
#include <QFileInfo>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

namespace {

void simulate(const char* key, const QVariant& value)
{
    ZuConfig::setForThisRun("zuotdr", "Simulation", key, value);
}

} // namespace

ScreenStates::ScreenStates(Host& host, const QString& dir)
    : host(host)
    , dir(dir)
    , user(host)
{
}

QString ScreenStates::takeAll()
{
    take("empty");
    takeMeasuring();
    takeTraces();
    takeMarkers();
    takeDialogs();
    takeNotices();
    return user.problem().isEmpty() ? problem : user.problem();
}

void ScreenStates::take(const QString& name)
{
    constexpr int kPainted_ms = 150;
    constexpr int kColours = 48;
    constexpr int kLeastColours = 6;
    constexpr qint64 kMostBytes = qint64 {40} * 1024;
    constexpr int kBestCompression = 0; // of a PNG, as Qt counts
    testing_support::DeskUser::settle();
    QTest::qWait(kPainted_ms);
    const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    const QString file = dir + '/' + name + ".png";
    // A page of text is all edges; the softness of its letters needs fewer colours than a chart.
    bool isSaved = false;
    for (int colours = kColours; colours >= kLeastColours && !isSaved; colours = colours * 2 / 3) {
        if (!withFewColours(screen, colours).save(file, "PNG", kBestCompression)) {
            problem = "cannot write " + file;
        }
        isSaved = QFileInfo(file).size() < kMostBytes;
    }
}

void ScreenStates::comeToFront()
{
    // A touch does that on a screen without a window manager; after a pop-up no window is active,
    // and a dialog would stand over none.
    host.frame()->activateWindow();
    if (!QTest::qWaitForWindowActive(host.frame())) {
        problem = "the window does not come to the front";
    }
}

void ScreenStates::takeMeasuring()
{
    constexpr double kSlow = 0.1; ///< so that the countdown is seen
    simulate("timeScale", kSlow);
    user.choose("Pulse", "100 ns");
    QSignalSpy refreshed(host.model(), SIGNAL(measured(QString, WfMeasParams)));
    QPushButton* action = qobject_cast<MeasWindow*>(host.window())->actionButton();
    user.tap(action);
    user.waitUntil([&] { return refreshed.size() >= 3; }, "a few refreshes");
    take("measuring");
    user.waitUntil([&] { return !qobject_cast<MeasModel*>(host.model())->running(); }, "the end");
    simulate("timeScale", 0);
}

void ScreenStates::measureFibre(const QString& fibre, const QString& wavelength)
{
    simulate("fibre", QString(WAVEFORM_FIBRES) + '/' + fibre + ".json");
    user.choose("Wavelength", wavelength);
    user.measure();
    user.save(fibre + '-' + wavelength.left(4));
}

void ScreenStates::takeTraces()
{
    user.showPanel("Settings", false);
    take("trace");
    user.showPanel("Events", true);
    auto* events = qobject_cast<QTableView*>(user.named("events"));
    if (events != nullptr) {
        events->selectRow(2);
    }
    take("events");
    user.showPanel("Events", false);
    user.showPanel("Settings", true);
    measureFibre("access", "1550 nm");
    measureFibre("access", "1310 nm");
    measureFibre("demo-link", "1310 nm");
    measureFibre("demo-link", "1550 nm");
    user.chooseFromMenu(0, "Delete");
    user.load(4);
    user.showPanel("Settings", false); // a small screen has not room for all
    take("traces");
    user.showPanel("Events", true);
    take("tables");
    user.showPanel("Events", false);
    auto* table = qobject_cast<QTableView*>(user.named("reflectograms"));
    if (table != nullptr) {
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {},
                           table->visualRect(table->model()->index(1, 0)).center());
        take("menu");
        user.close(user.ofClass("ReflTableMenu"));
        user.chooseFromMenu(0, "Set as main"); // the longest
    }
    user.showPanel("Reflectograms", false);
}

void ScreenStates::takeMarkers()
{
    user.showPanel("Measurement", true);
    user.tapButton("2 points");
    const QList<QWidget*> markers = user.allOfClass("QmMarker");
    const int width = user.ofClass("Waveform::Plot")->width();
    for (QWidget* marker : markers) { // both stand at the left edge at first
        const int fifths = marker->property("symbol").toChar() == 'A' ? 1 : 2;
        const QPoint knob(marker->width() / 2, marker->height() - marker->width() / 2);
        user.drag(marker, knob, {width * fifths / 5, 0});
    }
    take("markers-two-points");
    user.tapButton("2 pt + LSA");
    take("markers-lsa");
    for (const int key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Up}) {
        user.press(key);
    }
    take("zoomed");
    user.showPanel("Measurement", false);
    user.tapButton("1:1");
}

void ScreenStates::takeDialogs()
{
    user.showPanel("Settings", true);
    for (QWidget* box : user.allOfClass("HistoryCombo")) {
        if (box->whatsThis() == "Pulse") {
            user.tap(box);
            take("settings");
            user.close(user.ofClass("ChoicePopup"));
        }
    }
    const auto takeAndClose = [this](const QString& name) {
        return [this, name](QWidget& dialog) {
            take(name);
            QTest::keyClick(&dialog, Qt::Key_Escape);
        };
    };
    comeToFront();
    user.whenAsked(takeAndClose("save"));
    user.tap(user.named("saveButton"));
    user.chooseFromMenu(0, "Delete");
    user.showPanel("Reflectograms", false);
    comeToFront();
    user.whenAsked(takeAndClose("load"));
    user.tap(user.named("loadButton"));
    user.tap(user.named("helpButton"));
    take("help");
    user.tapButton("About");
    take("about");
    user.close(QApplication::activeModalWidget());
    user.close(user.named("help"));
}

void ScreenStates::takeNotices()
{
    user.choose("Pulse", "1 µs");
    user.choose("Time", QChar(0x221E));
    user.tap(qobject_cast<MeasWindow*>(host.window())->actionButton());
    take("warning");
    user.tapButton("OK");
    user.tap(user.ofClass("NightSwitch"));
    user.showPanel("Events", true);
    take("night");
    user.showPanel("Events", false);
    user.showPanel("Measurement", true);
    user.tapButton("2 pt + LSA");
    take("night-markers");
}
