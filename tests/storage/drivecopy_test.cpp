#include "storage/drivecopy.h"
#include "tests/support/contents.h"
#include "tests/support/tracefiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>

namespace {

using testing_support::Bytes;
using testing_support::contents;
using testing_support::TraceFiles;
using Waveform::copyToDrive;

class DriveCopy : public testing::Test
{
protected:
    DriveCopy() { QDir().mkpath(files.path("drive")); }

    QString copy() const
    {
        return copyToDrive(source, target, [] { return false; });
    }

    [[nodiscard]] QStringList onDrive() const
    {
        return QDir(files.path("drive")).entryList(QDir::Files | QDir::Hidden);
    }

    TraceFiles files;
    QString source = files.write("a.sor", Bytes(300'000, std::byte(7)));
    QString target = files.path("drive/a.sor");
};

TEST_F(DriveCopy, IsTheFileAndNothingElse)
{
    EXPECT_EQ(copy(), "");
    EXPECT_EQ(contents(target), QByteArray(300'000, 7));
    EXPECT_EQ(onDrive(), QStringList {"a.sor"});
}

TEST_F(DriveCopy, OfAnEmptyFileIsEmpty)
{
    files.write("a.sor", Bytes());
    files.write("drive/a.sor", Bytes(10));
    EXPECT_EQ(copy(), "");
    EXPECT_EQ(QFileInfo(target).size(), 0);
}

TEST_F(DriveCopy, ReplacesALinkAndNotWhatItMeans)
{
    const QString elsewhere = files.write("elsewhere", Bytes(1));
    ASSERT_TRUE(QFile::link(elsewhere, target));
    EXPECT_EQ(copy(), "");
    EXPECT_EQ(QFileInfo(elsewhere).size(), 1);
    EXPECT_FALSE(QFileInfo(target).isSymLink());
    EXPECT_EQ(contents(target), contents(source));
}

TEST_F(DriveCopy, OfAFileOverItselfLeavesIt)
{
    ASSERT_TRUE(QFile::link(source, target));
    EXPECT_EQ(copy(), "");
    EXPECT_EQ(QFileInfo(source).size(), 300'000);
    EXPECT_EQ(copyToDrive(source, source, [] { return false; }), "");
    EXPECT_EQ(QFileInfo(source).size(), 300'000);
}

TEST_F(DriveCopy, ThatCannotBeMadeSaysWhy)
{
    source = files.path("missing");
    files.write("drive/a.sor", Bytes(1));
    EXPECT_EQ(copy(), std::strerror(ENOENT));
    EXPECT_EQ(QFileInfo(target).size(), 1) << "there is nothing to replace it with";

    source = files.path("a.sor");
    target = files.path("pulled/a.sor");
    EXPECT_TRUE(copy().contains(std::strerror(ENOENT))) << qPrintable(copy());

    target = files.path("drive"); // a directory
    EXPECT_NE(copy(), "");
    EXPECT_EQ(onDrive(), QStringList {"a.sor"});
}

/// Shared memory is mounted as a drive is.
TEST_F(DriveCopy, HasItsDirectoryMadeOnADriveThatIsMounted)
{
    const QTemporaryDir dir("/dev/shm/waveform-XXXXXX");
    if (QStorageInfo("/dev/shm").rootPath() != "/dev/shm" || !QDir().rmdir(dir.path())) {
        GTEST_SKIP() << "nothing is mounted there";
    }
    target = dir.filePath("a.sor");
    EXPECT_EQ(copy(), "");
    EXPECT_EQ(contents(target), contents(source));
}

TEST_F(DriveCopy, HasNoDirectoryMadeWhereNoDriveIsMounted)
{
    target = files.path("drive/otdr/a.sor");
    EXPECT_NE(copy(), "");
    EXPECT_FALSE(QFileInfo::exists(files.path("drive/otdr")));
}

TEST_F(DriveCopy, OfAKilledProgramIsRemovedFromTheDrive)
{
    files.write("drive/.waveform-2147483646-0", Bytes(10));
    EXPECT_EQ(copy(), "");
    EXPECT_EQ(onDrive(), QStringList {"a.sor"});
}

TEST_F(DriveCopy, ThatHangsIsGivenUpAndItsProcessIsGone)
{
    source = files.path("pipe"); // nobody ever writes to it
    ASSERT_EQ(::mkfifo(QFile::encodeName(source).constData(), 0600), 0);
    files.write("drive/a.sor", Bytes(1));
    int looks = 0;
    EXPECT_EQ(copyToDrive(source, target, [&looks] { return ++looks == 3; }), "given up");
    EXPECT_EQ(looks, 3);
    EXPECT_EQ(QFileInfo(target).size(), 1);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace
