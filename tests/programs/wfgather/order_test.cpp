#include "tests/programs/wfgather/gatherprocess.h"

#include <QCoreApplication>
#include <QFileSystemWatcher>
#include <QProcess>
#include <QThread>

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

// "M {", the snapshots and "M }" of a trace are seen in this order, however busy the reader is.

namespace {

using namespace wfgather_test;

constexpr const char* kBothFast =
    "[MeasParams]\nduration=1\nwavelength=all\n[Simulation]\nseed=1\ntimeScale=0\n";

void sleep_ms(int time)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(time));
}

int wavelengthThere(const RunDirectory& directory)
{
    const auto snapshot = directory.snapshot();
    return snapshot ? snapshot->wavelength_nm : 0;
}

} // namespace

TEST(Order, ABlockedReaderHoldsTheSnapshotBack)
{
    for (int round = 0; round < 3; ++round) {
        const RunDirectory directory(kBothFast);
        GatherProcess gather(directory);
        sleep_ms(300); // "G {" to "M {" stand in the pipe
        ASSERT_TRUE(gather.hasUnread());
        EXPECT_EQ(wavelengthThere(directory), 0);
        gather.readTo("M { 1/2"); // the pipe is empty now: the snapshot may come
        gather.readTo("M *");
        EXPECT_EQ(wavelengthThere(directory), 1310);
        sleep_ms(300); // the start of the second trace is not read yet
        ASSERT_TRUE(gather.hasUnread());
        EXPECT_EQ(wavelengthThere(directory), 1310);
        gather.readTo("M { 2/2");
        gather.readTo("M }");
        EXPECT_EQ(wavelengthThere(directory), 1550);
        gather.rest();
        EXPECT_EQ(gather.wait(), 0);
    }
}

TEST(Order, AReaderThatSleepsForLongDoesNotStopTheRun)
{
    const RunDirectory directory("[MeasParams]\nduration=1\n[Simulation]\ntimeScale=0\n");
    GatherProcess gather(directory);
    sleep_ms(1500); // longer than the second it waits
    EXPECT_EQ(wavelengthThere(directory), 1310);
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
}

TEST(Order, ABusyEventLoopSeesThemInTurn)
{
    for (int round = 0; round < 5; ++round) {
        const RunDirectory directory(kBothFast);
        QStringList seen;
        QFileSystemWatcher watcher({QString::fromStdString(directory.path(""))});
        QProcess process;
        QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &process, [&] {
            if (const int wavelength = wavelengthThere(directory); wavelength != 0) {
                seen << "snapshot " + QString::number(wavelength);
            }
        });
        QObject::connect(&process, &QProcess::readyRead, &watcher, [&] {
            const QString text = process.readAllStandardOutput();
            for (const QString& message : text.split(";\n", Qt::SkipEmptyParts)) {
                const QString body = message.section(' ', 1, 3);
                if (body.startsWith("M {") || body == "M }") {
                    seen << body;
                }
            }
            QThread::msleep(100);
        });
        process.start(WAVEFORM_BIN "/wfgather",
                      {"-o", QString::fromStdString(directory.snapshotPath()), "-c",
                       QString::fromStdString(directory.settingsPath())});
        ASSERT_TRUE(process.waitForStarted());
        QThread::msleep(300); // the loop is blocked
        while (process.state() != QProcess::NotRunning) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        }
        QCoreApplication::processEvents();
        EXPECT_EQ(
            seen,
            QStringList({"M { 1/2", "snapshot 1310", "M }", "M { 2/2", "snapshot 1550", "M }"}))
            << seen.join(", ").toStdString();
    }
}

TEST(Order, AWatcherSeesOneChangeForEachSnapshot)
{
    const RunDirectory directory("[MeasParams]\nduration=6\n[Simulation]\ntimeScale=0.1\n");
    GatherProcess gather(directory);
    gather.readTo("M {"); // the folder is made, the old snapshot gone
    QFileSystemWatcher watcher({QString::fromStdString(directory.path(""))});
    int changes = 0;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, [&changes] { ++changes; });
    for (int tick = 1; tick <= 6; ++tick) {
        gather.readTo("M *");
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        EXPECT_EQ(changes, tick);
    }
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    EXPECT_EQ(changes, 6); // tidying up is not seen
}
