// The temporary directory goes, fills up or closes while the real acquisition program measures.

#include "platform/otdr/core/snapshot.h"
#include "tests/acquisition/faultyrun.h"
#include "tests/support/faultysystem.h"

#include <QElapsedTimer>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

using namespace testing_support; // the fixture

class FaultyDirectory : public FaultyRealRun
{
protected:
    /// The sequence number of the snapshot that stands there; 0 where there is none. A half one
    /// fails the test.
    static unsigned standing()
    {
        if (!QFile::exists(AcquisitionDir::snapshot())) {
            return 0;
        }
        const auto read = otdr::readSnapshotFile(AcquisitionDir::snapshot().toStdString());
        EXPECT_TRUE(read) << read.error().message;
        return read ? read->sequence : 0;
    }

    static QStringList leftFiles()
    {
        return QDir(AcquisitionDir::path() + "/.wfgather").entryList(QDir::Files | QDir::Hidden);
    }
};

TEST_F(FaultyDirectory, RemovedInTheMiddleIsToldAndTheNextRunMakesItAnew)
{
    set("MeasParams", "duration", 600);
    set("Simulation", "timeScale", 0.2);
    QObject::connect(model.get(), &Model::measured,
                     [] { QDir(AcquisitionDir::path()).removeRecursively(); });
    const QString told = failureOfRun();
    EXPECT_TRUE(told.startsWith("The acquisition program failed (code 1): ")) << qPrintable(told);
    EXPECT_TRUE(told.endsWith("No such file or directory")) << qPrintable(told);
    EXPECT_FALSE(QDir(AcquisitionDir::path()).exists());

    QObject::disconnect(model.get(), &Model::measured, nullptr, nullptr);
    make();
    set("MeasParams", "duration", 3);
    set("Simulation", "timeScale", 0);
    expectGoodRealRun();
    struct stat info = {};
    ASSERT_EQ(::stat("/tmp/user", &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U) << "others may look into it";
}

TEST_F(FaultyDirectory, FullDiskAtAnyWriteIsToldAndLeavesTheSnapshotBefore)
{
    for (int nth = 1; nth <= 3; ++nth) {
        const FaultySystem system("write", nth, ENOSPC, ".wfgather");
        const QString told = failureOfRun();
        EXPECT_TRUE(told.endsWith("No space left on device")) << qPrintable(told);
        EXPECT_EQ(standing(), static_cast<unsigned>(nth) - 1);
        EXPECT_EQ(leftFiles(), QStringList());
    }
    expectGoodRealRun();
}

TEST_F(FaultyDirectory, ErrorOfTheDiskAtTheEndOfAFileIsTold)
{
    const FaultySystem system("close", 2, EIO, ".wfgather"); // the first is of the trial before
    EXPECT_TRUE(failureOfRun().endsWith("Input/output error"));
    EXPECT_EQ(standing(), 0U);
    EXPECT_EQ(leftFiles(), QStringList());
}

TEST_F(FaultyDirectory, ReadOnlyAtAnyOpenIsTold)
{
    for (int nth = 1; nth <= 4; ++nth) {
        const FaultySystem system("open", nth, EROFS, ".wfgather");
        const QString told = failureOfRun();
        EXPECT_TRUE(told.endsWith("Read-only file system")) << qPrintable(told);
        EXPECT_EQ(standing(), static_cast<unsigned>(std::max(0, nth - 2)));
    }
    expectGoodRealRun();
}

TEST_F(FaultyDirectory, SnapshotThatCannotBePutInPlaceIsTold)
{
    const FaultySystem system("rename", 2, EACCES, ".wfgather");
    EXPECT_TRUE(failureOfRun().endsWith("Permission denied"));
    EXPECT_EQ(standing(), 1U);
    EXPECT_EQ(leftFiles(), QStringList());
}

TEST_F(FaultyDirectory, FolderThatCannotBeMadeIsTold)
{
    QDir(AcquisitionDir::path() + "/.wfgather").removeRecursively();
    const FaultySystem system("mkdir", 1, EACCES, ".wfgather");
    EXPECT_TRUE(failureOfRun().endsWith("Permission denied"));
    EXPECT_EQ(measured->size(), 0);
}

TEST_F(FaultyDirectory, ReadOnlyForTheUserIsTold)
{
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root writes into a read-only directory";
    }
    ASSERT_EQ(::chmod("/tmp/user", 0500), 0);
    const QString told = failureOfRun();
    ::chmod("/tmp/user", 0700);
    EXPECT_TRUE(told.endsWith("Permission denied")) << qPrintable(told);
    expectGoodRealRun();
}

TEST_F(FaultyDirectory, SettingsThatCannotBeWrittenAreTold)
{
    qputenv("TMPDIR", "/dev/null"); // no directory, for root neither
    make();
    const QString told = failureOfRun();
    qunsetenv("TMPDIR");
    EXPECT_TRUE(told.endsWith("no such settings file")) << qPrintable(told);
    make();
    expectGoodRealRun();
}

TEST_F(FaultyDirectory, JumpingTimeOfDayChangesNothing)
{
    const auto jumping = FaultySystem::withJumpingClock();
    set("MeasParams", "duration", 10);
    set("Simulation", "timeScale", 0.1);
    QSignalSpy ticks(model.get(), SIGNAL(measTick(int, int)));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(failureOfRun(), "");
    EXPECT_LT(timer.elapsed(), 20000);
    ASSERT_EQ(ticks.size(), 10);
    for (int i = 0; i < ticks.size(); ++i) {
        EXPECT_EQ(ticks[i].first().toInt(), 9 - i);
    }
    EXPECT_GE(timer.elapsed(), 1000) << "the measurement took no time";
}

} // namespace
