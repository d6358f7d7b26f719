#include "tests/endtoend/useratthescreen.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QtTest>

#include <algorithm>

namespace testing_support {

namespace {

constexpr int kProgramPatience_ms = 60'000;

} // namespace

void UserAtTheScreen::SetUp()
{
    const QString missing = XServer::whatIsMissing();
    if (!missing.isEmpty()) {
        GTEST_SKIP() << qPrintable(missing);
    }
    screen = std::make_unique<XServer>();
    ASSERT_NE(screen->display(), "") << "the X server did not start";
}

void UserAtTheScreen::TearDown()
{
    if (HasFailure()) {
        keepPicture();
    }
    if (application.state() != QProcess::NotRunning) {
        application.kill();
        application.waitForFinished();
    }
}

/// For whoever reads of the failure, where the environment says where pictures go.
void UserAtTheScreen::keepPicture()
{
    const QString dir = qEnvironmentVariable("WAVEFORM_PICTURES");
    if (!dir.isEmpty() && screen) {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        screen->picture().save(QString("%1/%2.png").arg(dir, test->name()));
    }
}

void UserAtTheScreen::start(const QStringList& arguments)
{
    const QString socket = home.filePath("teller");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", screen->display());
    environment.insert("HOME", home.path());
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("XDG_RUNTIME_DIR", home.path());
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("QT_PLUGIN_PATH", WAVEFORM_TELLER_DIR);
    environment.insert("QT_QPA_GENERIC_PLUGINS", "screenteller:" + socket);
    environment.insert("QT_MESSAGE_PATTERN", "[%{type}] %{message}");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("QT_QPA_PLATFORM");
    application.setProcessEnvironment(environment);
    application.setProcessChannelMode(QProcess::MergedChannels);
    application.start(QString(WAVEFORM_BIN) + "/waveform", arguments);
    ASSERT_TRUE(application.waitForStarted());
    waitUntil(
        [&] {
            teller.connectToServer(socket);
            return teller.waitForConnected(100);
        },
        "the application answers");
    waitUntil([this] { return plot().isThere(); }, "its window is shown");
}

void UserAtTheScreen::quit()
{
    ASSERT_FALSE(HasFatalFailure());
    const quint32 window = plot().window();
    teller.disconnectFromServer();
    screen->close(window);
    ASSERT_TRUE(application.waitForFinished(kProgramPatience_ms)) << "it does not end";
    EXPECT_EQ(application.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(application.exitCode(), 0);
    checkConsole(QString::fromUtf8(application.readAll()));
}

/// What helps to follow the program may be there, and the one connection that is not to take.
void UserAtTheScreen::checkConsole(const QString& text)
{
    const QString known = "No such slot Waveform::Window::rescalePlot(";
    EXPECT_TRUE(text.contains(known)) << "the console was not heard";
    const QStringList lines = text.split('\n');
    for (const QString& line : lines) {
        const bool isFine = line.isEmpty() || line.startsWith("[debug]")
            || line.startsWith("[info]") || line.contains(known);
        EXPECT_TRUE(isFine) << "on the console: " << qPrintable(line);
    }
}

QList<SeenWidget> UserAtTheScreen::look()
{
    QList<SeenWidget> widgets;
    teller.write("look\n");
    while (!teller.canReadLine()) {
        if (!teller.waitForReadyRead(kProgramPatience_ms)) {
            ADD_FAILURE() << "the application does not answer: "
                          << application.readAll().constData();
            return widgets;
        }
    }
    const QJsonArray told = QJsonDocument::fromJson(teller.readLine()).array();
    for (const QJsonValue& one : told) {
        widgets << SeenWidget(one.toObject());
    }
    return widgets;
}

SeenWidget UserAtTheScreen::first(const std::function<bool(const SeenWidget&)>& isIt)
{
    const QList<SeenWidget> widgets = look();
    const auto found = std::find_if(widgets.begin(), widgets.end(), isIt);
    return found == widgets.end() ? SeenWidget() : *found;
}

SeenWidget UserAtTheScreen::named(const QString& name)
{
    return first([&](const SeenWidget& widget) { return widget.name() == name; });
}

SeenWidget UserAtTheScreen::ofClass(const char* className)
{
    return first([&](const SeenWidget& widget) { return widget.isA(className); });
}

/// The one above where several have the same text, as in a dialog above the page.
SeenWidget UserAtTheScreen::button(const QString& text)
{
    const auto isIt = [&](const SeenWidget& widget) {
        return widget.isA("QAbstractButton") && widget.text() == text;
    };
    const SeenWidget onTop =
        first([&](const SeenWidget& widget) { return isIt(widget) && widget.isOnTop(); });
    return onTop.isThere() ? onTop : first(isIt);
}

QString UserAtTheScreen::valueBeside(const QString& caption)
{
    const QList<SeenWidget> widgets = look();
    const auto isCaption = [&](const SeenWidget& widget) {
        return widget.isA("QLabel") && widget.text() == caption;
    };
    const auto found = std::find_if(widgets.begin(), widgets.end(), isCaption);
    if (found == widgets.end()) {
        return {};
    }
    const QRect line = found->place();
    SeenWidget nearest;
    for (const SeenWidget& widget : widgets) {
        const QRect place = widget.place();
        const bool isBeside = widget.isA("QLabel") && place.left() > line.right()
            && place.top() <= line.center().y() && place.bottom() >= line.center().y();
        if (isBeside && (!nearest.isThere() || place.left() < nearest.place().left())) {
            nearest = widget;
        }
    }
    return nearest.text();
}

SeenWidget UserAtTheScreen::box(const QString& caption)
{
    const SeenWidget label = first(
        [&](const SeenWidget& widget) { return widget.isA("QLabel") && widget.text() == caption; });
    const QPoint from = label.place().center();
    SeenWidget nearest;
    const QList<SeenWidget> widgets = look();
    for (const SeenWidget& widget : widgets) {
        const auto distance = [&](const SeenWidget& one) {
            return (one.place().center() - from).manhattanLength();
        };
        if (widget.isA("QComboBox")
            && (!nearest.isThere() || distance(widget) < distance(nearest))) {
            nearest = widget;
        }
    }
    return label.isThere() ? nearest : SeenWidget();
}

SeenWidget UserAtTheScreen::inDialog(const QString& text)
{
    const QList<SeenWidget> widgets = look();
    SeenWidget found;
    for (const SeenWidget& dialog : widgets) {
        for (const SeenWidget& widget : widgets) {
            if (dialog.isA("QDialog") && widget.window() == dialog.window() && widget.isOnTop()
                && widget.isA("QAbstractButton") && widget.text() == text) {
                found = widget;
            }
        }
    }
    return found;
}

void UserAtTheScreen::tap(const Finder& finder, const char* what)
{
    QRect before;
    waitUntil(
        [&] {
            const SeenWidget widget = finder();
            const bool rests = widget.isThere() && widget.place() == before;
            before = widget.place();
            return rests && widget.isEnabled() && widget.isOnTop();
        },
        what);
    if (!HasFatalFailure()) {
        screen->tap(before.center());
    }
}

void UserAtTheScreen::tapButton(const QString& text)
{
    tap([&] { return button(text); }, qPrintable(text));
}

bool UserAtTheScreen::isSaid(const QString& words)
{
    const QList<SeenWidget> all = look();
    return std::any_of(all.begin(), all.end(),
                       [&](const SeenWidget& widget) { return widget.text().contains(words); });
}

void UserAtTheScreen::tapNamed(const QString& name)
{
    tap([&] { return named(name); }, qPrintable(name));
}

void UserAtTheScreen::tapInDialog(const QString& text)
{
    tap([&] { return inDialog(text); }, qPrintable(text));
}

void UserAtTheScreen::tapOk()
{
    ASSERT_NO_FATAL_FAILURE(tapInDialog("OK"));
    waitUntil([this] { return !inDialog("OK").isThere(); }, "the message goes");
}

void UserAtTheScreen::choose(const QString& caption, const QString& entry)
{
    ASSERT_NO_FATAL_FAILURE(tap([&] { return box(caption); }, qPrintable(caption)));
    ASSERT_NO_FATAL_FAILURE(tapButton(entry));
    waitUntil([&] { return box(caption).text() == entry && !button(entry).isThere(); },
              qPrintable(entry + " is chosen"));
}

void UserAtTheScreen::waitUntil(const std::function<bool()>& isSo, const char* what)
{
    ASSERT_FALSE(HasFatalFailure());
    QElapsedTimer time;
    time.start();
    while (!isSo()) {
        ASSERT_EQ(application.state(), QProcess::Running)
            << what << "; it ended: " << application.readAll().constData();
        ASSERT_LT(time.elapsed(), kProgramPatience_ms) << "not seen: " << what;
        QTest::qWait(10);
    }
}

QStringList UserAtTheScreen::stored(const QString& pattern) const
{
    return QDir(homePath("otdr")).entryList({pattern}, QDir::Files, QDir::Name);
}

} // namespace testing_support
