// A save is whole or not there: full disks, directories that refuse, pulled drives, killed
// programs.

#include "platform/launcher/filesmodel.h"
#include "platform/launcher/zulauncherconfig.h"
#include "tests/storage/keeping.h"
#include "tests/support/contents.h"
#include "tests/support/warnings.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QThread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <random>

namespace {

using namespace testing_support; // fixture, builder and units

/// As a disk with so much room left: writing beyond it fails.
class Room
{
public:
    explicit Room(rlim_t bytes)
        : handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit now = before;
        now.rlim_cur = bytes;
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &now), 0);
    }

    ~Room()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

private:
    void (*handler)(int);
    rlimit before {};
};

/// A user whom a directory can refuse; the superuser becomes one as long as this lives.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (::geteuid() == 0) {
            isOther = ::seteuid(kNobody) == 0;
        }
    }

    ~OrdinaryUser()
    {
        if (isOther) {
            EXPECT_EQ(::seteuid(0), 0);
            // Made anew in the meantime, it would shut everybody else out.
            const QFileInfo acquisition(QStringLiteral("/tmp/user"));
            if (acquisition.ownerId() == kNobody) {
                QDir(acquisition.filePath()).removeRecursively();
            }
        }
    }

    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    bool isOther = false;
};

/// Directories that anybody may read and nobody may change as long as this lives.
class ReadOnly
{
public:
    explicit ReadOnly(QStringList paths)
        : dirs(std::move(paths))
    {
        setMode(0555);
    }

    ~ReadOnly() { setMode(0700); }

    ReadOnly(const ReadOnly&) = delete;
    ReadOnly& operator=(const ReadOnly&) = delete;

private:
    void setMode(mode_t mode) const
    {
        for (const QString& dir : dirs) {
            EXPECT_EQ(::chmod(QFile::encodeName(dir).constData(), mode), 0);
        }
    }

    QStringList dirs;
};

/// A program with all that it starts, killed together.
class Group : public QProcess
{
public:
    void killAll()
    {
        ::kill(-static_cast<pid_t>(processId()), SIGKILL);
        waitForFinished();
    }

protected:
    void setupChildProcess() override { ::setpgid(0, 0); }
};

QStringList namesIn(const QString& dir)
{
    return QDir(dir).entryList(QDir::Files | QDir::Hidden);
}

class WholeSave : public Keeping
{
protected:
    /// A trace that takes a while to write.
    QString longTrace(const QString& name, double level_dB) const
    {
        Reflectogram refl = files.measured(TraceBuilder().launch({level_dB}).fibre(100_km));
        EXPECT_EQ(refl.save(files.path(name)), 0);
        return files.path(name);
    }

    void expectFailure()
    {
        EXPECT_NE(keeper.doSave("link"), 0);
        ASSERT_EQ(notified.size(), 1);
        EXPECT_EQ(notified.first().first().toString(), "Failed to save reports!");
        EXPECT_EQ(saved.size(), 0);
        EXPECT_TRUE(logged("can not save"));
    }
};

TEST_F(WholeSave, FullDiskLeavesTheOldFileAndSaysWhy)
{
    refls.addReflFromFile(longTrace("a.sor", 40.0));
    QDir().mkpath(stored(""));
    files.write("home/otdr/link.sor", SorSketch::plain());
    const QByteArray old = contents(stored("link.sor"));
    const Room room(4096);
    expectFailure();
    EXPECT_TRUE(logged(std::strerror(EFBIG))) << qPrintable(messages());
    EXPECT_EQ(contents(stored("link.sor")), old);
    EXPECT_EQ(namesIn(stored("")), QStringList {"link.sor"});
}

TEST_F(WholeSave, FullDiskLeavesNothingWhereNothingWas)
{
    refls.addReflFromFile(longTrace("a.sor", 40.0));
    const Room room(4096);
    expectFailure();
    EXPECT_TRUE(namesIn(stored("")).isEmpty());
}

TEST_F(WholeSave, DirectoryThatTakesNoFilesIsToldAndLogged)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    qputenv("HOME", "/proc"); // not even the superuser makes anything there
    expectFailure();
    EXPECT_TRUE(logged("Can't create directory /proc/otdr for saving"));
    EXPECT_TRUE(logged("/proc/otdr/link.sor"));
}

TEST_F(WholeSave, DirectoryThatRefusesTheUserIsToldLoggedAndLeftAlone)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    QDir().mkpath(stored(""));
    const QByteArray old = contents(files.write("home/otdr/link.sor", SorSketch::plain()));
    const ReadOnly readOnly({files.path("."), files.path("home"), stored(""), configHome.path()});
    {
        const OrdinaryUser user;
        if (QFile(stored("probe")).open(QIODevice::WriteOnly)) {
            GTEST_SKIP() << "nothing is refused to this user, and no other can be had";
        }
        expectFailure();
    }
    EXPECT_TRUE(logged(stored("link.sor"))) << qPrintable(messages());
    EXPECT_TRUE(logged(std::strerror(EACCES))) << qPrintable(messages());
    EXPECT_EQ(contents(stored("link.sor")), old);
    EXPECT_EQ(namesIn(stored("")), QStringList {"link.sor"});
}

TEST_F(WholeSave, FileThatMayNotBeWrittenIsReplacedAndKeepsItsPermissions)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    QDir().mkpath(stored(""));
    files.write("home/otdr/link.sor", Bytes(1));
    QFile(stored("link.sor")).setPermissions(QFile::ReadOwner);
    EXPECT_EQ(keeper.doSave("link"), 0) << "the user was asked and said yes";
    EXPECT_TRUE(Reflectogram(stored("link.sor")).isValid());
    EXPECT_FALSE(QFile::permissions(stored("link.sor")).testFlag(QFile::WriteOwner));
}

TEST_F(WholeSave, VanishedDirectoryIsMadeAnew)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_TRUE(QDir(stored("")).removeRecursively());
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_TRUE(Reflectogram(stored("link.sor")).isValid());
}

TEST_F(WholeSave, DirectoryThatGoesDuringTheSaveFailsTheReportOnly)
{
    makeReport(R"(exec 2> /dev/null; rm -r "${4%/*}"; echo report > "$4")");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_NE(keeper.doSave("link"), 0);
    ASSERT_EQ(notified.size(), 1);
    EXPECT_EQ(notified.first().first().toString(), "Failed to save reports!");
    EXPECT_TRUE(logged("has return code"));
}

TEST_F(WholeSave, DrivePulledBeforeTheCopyLeavesAllSaved)
{
    const QString drive = files.path("stick");
    ZuLauncherConfig("flash", "dir").store(drive);
    ZuLauncherConfig("flash", "save").store(true);
    QDir().mkpath(drive + "/otdr");
    makeReport(R"(echo report > "$4"; echo picture > "${4%.html}.png"; rm -r ')" + drive + "'");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_EQ(namesIn(stored("")), (QStringList {"link.html", "link.png", "link.sor"}));
    EXPECT_EQ(messages().count("can not copy"), 3);
}

TEST_F(WholeSave, DriveThatFailsInTheMiddleOfAFileHasNoHalfOfIt)
{
    const QString drive = files.path("stick/otdr");
    ZuLauncherConfig("flash", "dir").store(files.path("stick"));
    ZuLauncherConfig("flash", "save").store(true);
    QDir().mkpath(drive);
    makeReport("ulimit -S -f unlimited; head -c 3000000 /dev/zero > \"$4\";"
               "echo picture > \"${4%.html}.png\"");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    const Room room(1'000'000);
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_EQ(QFileInfo(stored("link.html")).size(), 3'000'000);
    EXPECT_EQ(namesIn(drive), (QStringList {"link.png", "link.sor"}));
    EXPECT_EQ(messages().count("can not copy"), 1) << qPrintable(messages());
    EXPECT_TRUE(logged("link.html"));
}

class Killing : public WholeSave
{
protected:
    Killing()
        : first(longTrace("first.sor", 40.0))
        , second(longTrace("second.sor", 41.0))
    {
        QDir().mkpath(stored(""));
    }

    /// Lets a program save in a loop and kills it with its children at some moment after its first
    /// save.
    void saveUntilKilled(unsigned long after_us) const
    {
        Group saver;
        saver.setReadChannel(QProcess::StandardOutput);
        saver.start(WAVEFORM_SAVELOOP, {first, second, stored("link")});
        ASSERT_TRUE(saver.waitForReadyRead(20'000)) << saver.readAllStandardError().constData();
        QThread::usleep(after_us);
        ASSERT_EQ(saver.state(), QProcess::Running);
        saver.killAll();
        ASSERT_EQ(saver.exitStatus(), QProcess::CrashExit) << "it ended before it was killed";
    }

    void expectOnlyWholeTraces() const
    {
        FilesModel offered({"*.sor"}, 1);
        offered.setDirectory(stored(""));
        ASSERT_EQ(offered.rowCount(), 1);
        EXPECT_EQ(offered.index(0, 0).data().toString(), "link.sor");
        const QByteArray now = contents(stored("link.sor"));
        EXPECT_TRUE(now == contents(first) || now == contents(second))
            << now.size() << " bytes that are neither trace";
    }

    QString first;
    QString second;
    std::mt19937 random {20240229};
};

TEST_F(Killing, LeavesTheOldTraceOrTheNewOne)
{
    makeReport("exit 0");
    ASSERT_NE(contents(first), contents(second));
    constexpr int kTimes = 60;
    std::uniform_int_distribution<unsigned long> moment_us(0, 30'000);
    for (int i = 0; i < kTimes && !HasFailure(); ++i) {
        saveUntilKilled(moment_us(random));
        expectOnlyWholeTraces();
    }
}

TEST_F(Killing, LeavesTheOldReportOrTheNewOne)
{
    qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN); // the fake one restores it
    constexpr int kTimes = 10;
    std::uniform_int_distribution<unsigned long> moment_us(0, 500'000);
    for (int i = 0; i < kTimes && !HasFailure(); ++i) {
        saveUntilKilled(moment_us(random));
        expectOnlyWholeTraces();
        const QByteArray page = contents(stored("link.html"));
        EXPECT_TRUE(page.startsWith("<!DOCTYPE html>"));
        EXPECT_TRUE(page.trimmed().endsWith("</html>"));
        EXPECT_FALSE(QImage(stored("link.png")).isNull());
    }
}

} // namespace
