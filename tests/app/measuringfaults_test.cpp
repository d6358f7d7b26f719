// The measuring application as a process, where its surroundings fail; and who may have the
// temporary directory.

#include "app/environment.h"
#include "platform/otdr/reflectogram.h"
#include "tests/app/application.h"
#include "tests/support/faultysystem.h"

#include <QElapsedTimer>
#include <QLockFile>
#include <QtTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace {

using namespace testing_support; // the fixture, builders

class FaultyMeasurement : public Application
{
protected:
    QString demo() const { return dir.filePath("demo"); }
};

TEST_F(FaultyMeasurement, WhoseDirectoryGoesFailsTheDemoInsteadOfSavingAPart)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("WAVEFORM_PROGRAMS", WAVEFORM_BIN);
    environment.insert("HOME", dir.path());
    process.setProcessEnvironment(environment);
    process.start(program(), {"--demo", demo(), "--time-scale", "0.3"});
    ASSERT_TRUE(QTest::qWaitFor([] { return QFile::exists(AcquisitionDir::snapshot()); }, 30000));
    QDir(AcquisitionDir::path()).removeRecursively();
    ASSERT_TRUE(process.waitForFinished(30000));
    QDir().mkpath(AcquisitionDir::path());
    EXPECT_EQ(process.exitCode(), 1);
    const QString said = process.readAllStandardError();
    EXPECT_TRUE(said.contains("waveform: The acquisition program failed (code 1): "))
        << qPrintable(said);
    EXPECT_TRUE(said.contains("No such file or directory"));
    EXPECT_FALSE(QFile::exists(demo() + "/demo.sor"));
}

TEST_F(FaultyMeasurement, OnAFullDiskFailsTheDemo)
{
    const FaultySystem system("write", 3, ENOSPC, ".wfgather");
    const Outcome outcome = run({"--demo", demo(), "--time-scale", "0"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.err.contains("No space left on device")) << qPrintable(outcome.err);
    EXPECT_FALSE(QFile::exists(demo() + "/demo.sor"));
}

TEST_F(FaultyMeasurement, MeasuresAsLongWhileTheTimeOfDayJumps)
{
    const auto jumping = FaultySystem::withJumpingClock();
    QElapsedTimer timer;
    timer.start();
    const Outcome outcome = run({"--demo", demo(), "--time-scale", "0.1", "--duration", "15"});
    EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
    EXPECT_EQ(outcome.err, "");
    EXPECT_GE(timer.elapsed(), 1500);
    const Reflectogram refl(demo() + "/demo.sor");
    ASSERT_TRUE(refl.isValid());
    EXPECT_EQ(refl.parameters().duration, 15);
}

class TemporaryDirectory : public testing::Test
{
protected:
    TemporaryDirectory() { QDir(AcquisitionDir::path()).removeRecursively(); }

    ~TemporaryDirectory() override
    {
        ::chmod("/tmp/user", 0700);
        QDir(AcquisitionDir::path()).removeRecursively();
        QDir().mkpath(AcquisitionDir::path());
    }

    const AcquisitionDir directory;
};

TEST_F(TemporaryDirectory, LockOfADeadProcessIsTakenOver)
{
    ASSERT_EQ(::mkdir("/tmp/user", 0700), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        QLockFile lock("/tmp/user/.waveform.lock");
        lock.setStaleLockTime(0);
        lock.tryLock(0);
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(QFile::exists("/tmp/user/.waveform.lock"));
    Environment environment;
    EXPECT_EQ(environment.enter(), "");
}

TEST_F(TemporaryDirectory, OfManyThatStartAtOnceOneGetsIt)
{
    std::array<int, 2> go {};
    ASSERT_EQ(::pipe(go.data()), 0);
    std::array<pid_t, 8> children {};
    std::array<int, 2> answers {};
    ASSERT_EQ(::pipe(answers.data()), 0);
    for (pid_t& child : children) {
        child = ::fork();
        if (child == 0) {
            Environment environment;
            const char got = environment.enter().isEmpty() ? '1' : '0';
            const bool told = ::write(answers[1], &got, 1) == 1;
            char wait = 0;
            ::_exit(told && ::read(go[0], &wait, 1) == 1 ? 0 : 1); // holds it until all have tried
        }
    }
    int winners = 0;
    for (std::size_t i = 0; i < children.size(); ++i) {
        char got = 0;
        ASSERT_EQ(::read(answers[0], &got, 1), 1);
        winners += got == '1' ? 1 : 0;
    }
    EXPECT_EQ(winners, 1);
    ASSERT_EQ(::write(go[1], "12345678", 8), 8);
    for (const pid_t child : children) {
        ::waitpid(child, nullptr, 0);
    }
    for (const int end : {go[0], go[1], answers[0], answers[1]}) {
        ::close(end);
    }
}

TEST_F(TemporaryDirectory, OfAnyModeIsMadePrivateAndUsable)
{
    for (const mode_t mode : {0000U, 0400U, 0755U, 0777U, 01777U, 02770U}) {
        ASSERT_EQ(::mkdir("/tmp/user", 0700), 0);
        ASSERT_EQ(::chmod("/tmp/user", mode), 0);
        {
            Environment environment;
            EXPECT_EQ(environment.enter(), "") << mode;
            struct stat info = {};
            ASSERT_EQ(::stat("/tmp/user", &info), 0);
            EXPECT_EQ(info.st_mode & 07777U, 0700U) << mode;
        }
        QDir(AcquisitionDir::path()).removeRecursively();
    }
}

} // namespace
