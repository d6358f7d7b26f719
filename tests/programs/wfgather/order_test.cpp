#include "tests/programs/wfgather/gatherprocess.h"

#include <QCoreApplication>
#include <QFileSystemWatcher>
#include <QProcess>
#include <QThread>

#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>

// "M {", the snapshots (each behind its tick) and "M }" of a trace are seen in this order, however
// busy the reader is.

namespace {

using namespace wfgather_test;

constexpr const char* kBothFast =
    "[MeasParams]\nduration=1\nwavelength=all\n[Simulation]\nseed=1\ntimeScale=0\n";

/// Whether something comes true within two seconds.
template <typename Condition>
bool soon(Condition condition)
{
    for (int i = 0; i < 200; ++i) {
        if (condition()) {
            return true;
        }
        sleep_ms(10);
    }
    return false;
}

int wavelengthThere(const RunDirectory& directory)
{
    const auto snapshot = directory.snapshot();
    return snapshot ? snapshot->wavelength_nm : 0;
}

/// What the kernel tells who watches a directory since the last call.
std::vector<std::uint32_t> changesSeen(int watch)
{
    std::vector<std::uint32_t> seen;
    alignas(inotify_event) std::array<char, 4096> bytes {};
    const ssize_t size = read(watch, bytes.data(), bytes.size());
    for (ssize_t at = 0; at < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(bytes.data() + at);
        seen.push_back(event->mask);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
    return seen;
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
        gather.readTo("M { 1/2");
        gather.readTo("M *"); // the pipe is empty now: the snapshot may come
        gather.readTo("M }");
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
    const RunDirectory directory("[MeasParams]\nduration=4\n[Simulation]\ntimeScale=0.3\n");
    GatherProcess gather(directory);
    gather.next(); // the folder is made, the old snapshot gone; the first one waits for us to read
    QFileSystemWatcher watcher({QString::fromStdString(directory.path(""))});
    int changes = 0;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, [&changes] { ++changes; });
    for (int tick = 1; tick <= 4; ++tick) {
        gather.readTo("M *");
        EXPECT_TRUE(soon([&] {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            return changes >= tick;
        }));
        EXPECT_EQ(changes, tick);
    }
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    EXPECT_EQ(changes, 4); // tidying up is not seen
}

TEST(Order, ASnapshotIsOneRenameAndNothingElse)
{
    const RunDirectory directory("[MeasParams]\nduration=3\n[Simulation]\ntimeScale=0.3\n");
    GatherProcess gather(directory);
    gather.next(); // the folder is made, the old snapshot gone; the first one waits for us to read
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    constexpr std::uint32_t kChanges =
        IN_CREATE | IN_DELETE | IN_MOVE | IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE;
    ASSERT_GE(inotify_add_watch(watch, directory.path("").c_str(), kChanges), 0);
    for (int tick = 1; tick <= 3; ++tick) { // one by one: equal changes would be told as one
        gather.readTo("M *");
        std::vector<std::uint32_t> seen;
        EXPECT_TRUE(soon([&] {
            seen = changesSeen(watch);
            return !seen.empty();
        }));
        EXPECT_THAT(seen, testing::ElementsAre(IN_MOVED_TO));
    }
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_THAT(changesSeen(watch), testing::IsEmpty());
    close(watch);
}
