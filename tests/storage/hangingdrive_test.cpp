// What is asked of a drive that does not answer: the system's own calls hang on it in this program,
// wherever they are made.

#include "platform/launcher/zulauncherconfig.h"
#include "storage/driveask.h"
#include "tests/storage/keeping.h"
#include "tests/support/warnings.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

void hangOnTheDrive(const char* path)
{
    constexpr unsigned kLongerThanAnyTestWaits_s = 120;
    if (std::strstr(path, "/hanging-drive") != nullptr) {
        ::sleep(kLongerThanAnyTestWaits_s);
    }
}

} // namespace

extern "C" {

int access(const char* path, int mode) noexcept
{
    hangOnTheDrive(path);
    return ::faccessat(AT_FDCWD, path, mode, 0);
}

int stat(const char* path, struct stat* info) noexcept
{
    hangOnTheDrive(path);
    return ::fstatat(AT_FDCWD, path, info, 0);
}

} // extern "C"

namespace {

using namespace testing_support; // fixture, builder and units

class HangingDrive : public Keeping
{
protected:
    HangingDrive()
    {
        ZuLauncherConfig("flash", "dir").store(files.path("hanging-drive"));
        ZuLauncherConfig("flash", "save").store(true);
        QObject::connect(&clock, &QTimer::timeout, [this] { ++ticks; });
        clock.start(10);
    }

    static void expectNoProcessLeft()
    {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }

    QTimer clock;
    int ticks = 0;
};

TEST_F(HangingDrive, IsAskedForANameWhileTheWindowLives)
{
    // The name may be taken there: the user is asked.
    EXPECT_TRUE(keeper.fileExists("a"));
    EXPECT_GT(ticks, 10);
    expectNoProcessLeft();
}

TEST_F(HangingDrive, IsNotAskedWhereTheDiskHasTheName)
{
    QDir().mkpath(stored(""));
    files.write("home/otdr/a.html", Bytes(1));
    EXPECT_TRUE(keeper.fileExists("a"));
    EXPECT_LT(ticks, 10);
}

TEST_F(HangingDrive, ThatHoldsTheTracesIsGivenUpAndSaidInTheLog)
{
    qputenv("HOME", QFile::encodeName(files.path("hanging-drive")));
    EXPECT_EQ(keeper.storeDir(), files.path("hanging-drive/otdr"));
    EXPECT_TRUE(
        logged("Can't create directory " + files.path("hanging-drive/otdr") + " for saving"));
    EXPECT_GT(ticks, 10);
    expectNoProcessLeft();
}

TEST_F(HangingDrive, IsWaitedForAsLongAsIsSaid)
{
    int looks = 0;
    const auto isGivenUp = [&looks] { return ++looks == 3; };
    EXPECT_EQ(Waveform::isAnyThere({files.path("hanging-drive")}, isGivenUp), std::nullopt);
    EXPECT_EQ(looks, 3);
    EXPECT_EQ(Waveform::makeDirectory(files.path("hanging-drive/a"), [] { return true; }),
              std::nullopt);
    expectNoProcessLeft();
}

TEST(DriveThatAnswers, SaysWhatIsThere)
{
    TraceFiles files;
    const auto never = [] { return false; };
    const QString there = files.write("a", Bytes(1));
    EXPECT_EQ(Waveform::isAnyThere({files.path("b"), there}, never), true);
    EXPECT_EQ(Waveform::isAnyThere({files.path("b"), there + "/c"}, never), false);
    EXPECT_EQ(Waveform::isAnyThere({}, never), false);
}

TEST(DriveThatAnswers, HasADirectoryMadeWithItsParents)
{
    TraceFiles files;
    const auto never = [] { return false; };
    const QString wanted = files.path("x/y//z");
    EXPECT_EQ(Waveform::makeDirectory(wanted, never), true);
    EXPECT_TRUE(QFileInfo(wanted).isDir());
    EXPECT_EQ(Waveform::makeDirectory(wanted, never), true) << "is there already";
    EXPECT_EQ(Waveform::makeDirectory(files.write("a", Bytes(1)), never), false);
    EXPECT_EQ(Waveform::makeDirectory(files.path("a/b"), never), false);
}

} // namespace
