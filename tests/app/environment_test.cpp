#include "app/environment.h"
#include "tests/support/acquisitiondir.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing_support::AcquisitionDir;

class InstrumentEnvironment : public testing::Test
{
protected:
    InstrumentEnvironment() { QDir(AcquisitionDir::path()).removeRecursively(); }

    ~InstrumentEnvironment() override
    {
        QFile::remove(AcquisitionDir::path()); // a link or a file
        QDir(AcquisitionDir::path()).removeRecursively(); // perhaps somebody else's
        QDir().mkpath(AcquisitionDir::path());
    }

    const AcquisitionDir directory;
};

TEST_F(InstrumentEnvironment, HasItsUserAndAPrivateTemporaryDirectory)
{
    qputenv("TMPDIR", "/somewhere/else");
    Environment environment;
    EXPECT_EQ(environment.enter(), "");
    EXPECT_EQ(qgetenv("USER"), "user");
    EXPECT_FALSE(qEnvironmentVariableIsSet("TMPDIR"));
    struct stat info = {};
    ASSERT_EQ(::lstat("/tmp/user", &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
}

TEST_F(InstrumentEnvironment, ProgramsStayWhereTheyUsuallyAreWhereNoneLieBeside)
{
    const QByteArray before = qgetenv("WAVEFORM_PROGRAMS");
    qunsetenv("WAVEFORM_PROGRAMS");
    Environment environment;
    EXPECT_EQ(environment.enter(), "");
    EXPECT_FALSE(qEnvironmentVariableIsSet("WAVEFORM_PROGRAMS"));
    if (!before.isNull()) {
        qputenv("WAVEFORM_PROGRAMS", before);
    }
}

TEST_F(InstrumentEnvironment, OpenDirectoryIsClosedToOthers)
{
    ASSERT_EQ(::mkdir("/tmp/user", 0777), 0);
    ::chmod("/tmp/user", 0777);
    Environment environment;
    EXPECT_EQ(environment.enter(), "");
    struct stat info = {};
    ASSERT_EQ(::lstat("/tmp/user", &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
}

TEST_F(InstrumentEnvironment, LinkIsRefused)
{
    ASSERT_EQ(::symlink("/tmp", "/tmp/user"), 0);
    Environment environment;
    EXPECT_TRUE(environment.enter().contains("is a link"));
}

TEST_F(InstrumentEnvironment, FileIsRefused)
{
    QFile file(AcquisitionDir::path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    Environment environment;
    EXPECT_TRUE(environment.enter().contains("not a directory"));
}

TEST_F(InstrumentEnvironment, DirectoryOfSomebodyElseIsRefused)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can make a directory of another user";
    }
    ASSERT_EQ(::mkdir("/tmp/user", 0700), 0);
    ASSERT_EQ(::chown("/tmp/user", 65534, 65534), 0);
    Environment environment;
    EXPECT_TRUE(environment.enter().contains("another user"));
}

TEST_F(InstrumentEnvironment, SecondInstanceIsRefusedUntilTheFirstIsGone)
{
    Environment second;
    {
        Environment first;
        ASSERT_EQ(first.enter(), "");
        EXPECT_TRUE(second.enter().contains("another instance"));
    }
    EXPECT_EQ(second.enter(), "");
}

} // namespace
