// The system fails the acquisition program, or the application that reads it goes.

#include "tests/programs/wfgather/gatherprocess.h"
#include "tests/support/faultysystem.h"

#include <QFile>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>

namespace {

using testing::HasSubstr;
using testing_support::FaultySystem;
using wfgather_test::GatherProcess;
using wfgather_test::RunDirectory;

const char* const kThreeRefreshes = "[MeasParams]\nduration=3\n[Simulation]\ntimeScale=0\nseed=1\n";

struct Fault
{
    const char* call;
    int error;
};

class SystemFault : public testing::TestWithParam<Fault>
{
};

/// Whether the run met the fault; then it has to end as it should.
bool meetsFault(const Fault& fault, int nth)
{
    const RunDirectory directory(kThreeRefreshes);
    const FaultySystem system(fault.call, nth, fault.error, ".wfgather");
    GatherProcess gather(directory);
    const std::vector<std::string> messages = gather.rest();
    const int code = gather.wait();
    const bool half =
        QFile::exists(QString::fromStdString(directory.snapshotPath())) && !directory.snapshot();
    EXPECT_FALSE(half) << fault.call << " " << nth;
    EXPECT_EQ(directory.names(".wfgather"), QStringList()) << fault.call << " " << nth;
    if (code == 0) {
        EXPECT_EQ(messages.back(), "G }");
        return false;
    }
    EXPECT_EQ(code, 1) << fault.call << " " << nth;
    const std::string said = gather.errors();
    EXPECT_THAT(said, HasSubstr(std::strerror(fault.error)));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "G }"), 0);
    return true;
}

TEST_P(SystemFault, OfAnyCallIsOneLineAndLeavesNoHalfFile)
{
    int met = 0;
    while (met < 20 && meetsFault(GetParam(), met + 1)) {
        ++met;
    }
    EXPECT_GE(met, 1) << "no such call was made";
    EXPECT_LT(met, 20) << "there is no end to it";
}

INSTANTIATE_TEST_SUITE_P(Calls, SystemFault,
                         testing::Values(Fault {"open", EROFS}, Fault {"write", ENOSPC},
                                         Fault {"close", EIO}, Fault {"rename", EACCES},
                                         Fault {"mkdir", EACCES}),
                         [](const testing::TestParamInfo<Fault>& info) {
                             return std::string(info.param.call);
                         });

TEST(TimeOfDay, JumpsWithoutEffectOnTheRun)
{
    const auto jumping = FaultySystem::withJumpingClock();
    const RunDirectory directory("[MeasParams]\nduration=5\n[Simulation]\ntimeScale=0.1\n");
    const auto start = std::chrono::steady_clock::now();
    GatherProcess gather(directory);
    std::vector<std::string> ticks;
    for (const std::string& message : gather.rest()) {
        if (message.rfind("M *", 0) == 0) {
            ticks.push_back(message);
        }
    }
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_THAT(ticks,
                testing::ElementsAre("M * RT 4 ET 1", "M * RT 3 ET 2", "M * RT 2 ET 3",
                                     "M * RT 1 ET 4", "M * RT 0 ET 5"));
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(500));
    EXPECT_LT(passed, std::chrono::seconds(30));
}

TEST(ReaderGone, PutsNothingInPlaceAnyMore)
{
    const RunDirectory directory("[MeasParams]\nduration=15\n[Simulation]\ntimeScale=0.3\n");
    GatherProcess gather(directory);
    gather.readTo("M *");
    while (!directory.snapshot()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    gather.closeOutput();
    unlink(directory.snapshotPath().c_str()); // as the next reader's run begins
    EXPECT_EQ(gather.wait(), 1);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(directory.snapshotPath())));
}

TEST(ReaderGone, WhileItHadNotReadEverythingPutsNothingInPlaceEither)
{
    const RunDirectory directory(kThreeRefreshes);
    GatherProcess gather(directory); // nothing is read: the first snapshot waits for the reader
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    gather.closeOutput();
    EXPECT_EQ(gather.wait(), 1);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(directory.snapshotPath())));
}

TEST(ForeignFolder, IsRefused)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can make a folder of another user";
    }
    const RunDirectory directory(kThreeRefreshes);
    const std::string folder = directory.path(".wfgather");
    ASSERT_EQ(mkdir(folder.c_str(), 0777), 0);
    ASSERT_EQ(chown(folder.c_str(), 65534, 65534), 0);
    GatherProcess gather(directory);
    EXPECT_THAT(gather.rest(), testing::IsEmpty());
    EXPECT_EQ(gather.wait(), 1);
    EXPECT_THAT(gather.errors(), HasSubstr("Operation not permitted"));
}

} // namespace
