// Pictures of every state of the window, for the documentation:
//
//     screenshots DIRECTORY
//
// Makes a folder for each size of screen. Wants Xvfb, a screen without hardware: pop-ups and
// dialogs then stand where they stand for a user.

#include "app/environment.h"
#include "app/frame.h"
#include "app/host.h"
#include "bench/screenstates.h"
#include "platform/launcher/appearance.h"
#include "platform/launcher/zuconfig.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QScreen>
#include <QTest>
#include <QTextStream>

namespace {

struct Screen
{
    const char* folder;
    const char* pixels;
    const char* scale;
};

constexpr Screen kScreens[] = {
    {"800x480", "800x480x24", "1"},
    {"1280x800", "1280x800x24", "1"},
    {"800x480-double", "1600x960x24", "2"},
};

int fail(const QString& why)
{
    QTextStream(stderr) << "screenshots: " << why << "\n";
    return 1;
}

/// The help page shows where files go; the same place at each run.
QString homePath()
{
    return QDir::tempPath() + "/waveform-screens";
}

/// A screen, and this program on it.
QString runOn(const Screen& screen, const QString& dir)
{
    constexpr int kPatience_ms = 120'000;
    QProcess server;
    server.setStandardErrorFile(QProcess::nullDevice()); // keyboard tables are no news
    server.start(
        "Xvfb", {"-displayfd", "1", "-screen", "0", screen.pixels, "-nolisten", "tcp", "-noreset"});
    while (!server.canReadLine() && server.waitForReadyRead(kPatience_ms)) { }
    const QString number = server.readLine().trimmed();
    if (number.isEmpty()) {
        return "Xvfb does not start";
    }
    QProcess taker;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", ":" + number);
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("QT_SCALE_FACTOR", screen.scale);
    taker.setProcessEnvironment(environment);
    taker.setProcessChannelMode(QProcess::ForwardedChannels);
    taker.start(QCoreApplication::applicationFilePath(), {"--on-this-screen", dir});
    const bool isGood = taker.waitForFinished(kPatience_ms) && taker.exitCode() == 0;
    server.terminate();
    server.waitForFinished();
    return isGood ? QString() : QString("no pictures of %1").arg(screen.folder);
}

int takeAllScreens(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        return fail("wants a directory");
    }
    for (const Screen& screen : kScreens) {
        const QString dir = QDir(argv[1]).absoluteFilePath(screen.folder);
        QDir().mkpath(dir);
        const QString problem = runOn(screen, dir);
        if (!problem.isEmpty()) {
            return fail(problem);
        }
    }
    return 0;
}

/// In which nothing was configured yet.
void makeHome()
{
    QDir(homePath()).removeRecursively();
    QDir().mkpath(homePath());
    constexpr auto kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    QFile::setPermissions(homePath(), kOwnerOnly); // as Qt wants a runtime directory
    qputenv("HOME", QFile::encodeName(homePath()));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(homePath()));
    qunsetenv("XDG_CONFIG_HOME");
}

int takeThisScreen(int argc, char** argv)
{
    makeHome();
    qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN);
    QCoreApplication::setApplicationName("waveform");
    QCoreApplication::setApplicationVersion(WAVEFORM_VERSION);
    QApplication application(argc, argv);
    Environment environment;
    const QString refused = environment.enter();
    if (!refused.isEmpty()) {
        return fail(refused);
    }
    const Appearance appearance;
    ZuConfig::setForThisRun("zuotdr", "Simulation", "seed", 1);
    QString problem;
    {
        Host host;
        problem = host.load();
        if (problem.isEmpty()) {
            host.frame()->setGeometry(QGuiApplication::primaryScreen()->geometry());
            host.frame()->show();
            host.frame()->activateWindow();
            problem = QTest::qWaitForWindowActive(host.frame())
                ? ScreenStates(host, QString::fromLocal8Bit(argv[2])).takeAll()
                : "the window does not come to the front";
        }
    }
    QDir(homePath()).removeRecursively();
    return problem.isEmpty() ? 0 : fail(problem);
}

} // namespace

int main(int argc, char** argv)
{
    const bool isInner = argc == 3 && qstrcmp(argv[1], "--on-this-screen") == 0;
    return isInner ? takeThisScreen(argc, argv) : takeAllScreens(argc, argv);
}
