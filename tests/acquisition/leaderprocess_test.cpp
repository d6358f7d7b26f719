#include "acquisition/leaderprocess.h"
#include "tests/support/fakeprogram.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>

namespace {

TEST(LeaderProcess, LeadsItsOwnGroupAndEndsItWhole)
{
    const testing_support::FakePrograms programs;
    programs.make("parent", "sleep 60 & echo $!; wait");
    LeaderProcess process(nullptr);
    process.start(programs.path("parent"), QStringList());
    ASSERT_TRUE(process.waitForStarted(5000));
    ASSERT_TRUE(process.waitForReadyRead(5000));
    const auto child = static_cast<pid_t>(process.readAllStandardOutput().trimmed().toInt());
    ASSERT_GT(child, 0);
    EXPECT_EQ(::getpgid(child), static_cast<pid_t>(process.processId()));
    process.terminate();
    ASSERT_TRUE(process.waitForFinished(5000));
    for (int i = 0; i < 100 && ::kill(child, 0) == 0; ++i) {
        ::usleep(20'000);
    }
    EXPECT_NE(::kill(child, 0), 0);
}

TEST(LeaderProcess, TerminatingWhatDoesNotRunDoesNothing)
{
    LeaderProcess process(nullptr);
    process.terminate();
    EXPECT_EQ(process.state(), QProcess::NotRunning);
}

} // namespace
