#include "tests/programs/wfgather/gatherprocess.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>

namespace {

using namespace wfgather_test;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

using Clock = std::chrono::steady_clock;

double since(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// The end is to come within 50 ms; the rest is for a machine that others use too.
constexpr double kPrompt_s = 0.4;

} // namespace

class StopBy : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Signals, StopBy, testing::Values(SIGTERM, SIGINT));

TEST_P(StopBy, InTheFirstSecondKeepsWhatWasMeasured)
{
    const RunDirectory directory("[MeasParams]\nduration=15\n");
    GatherProcess gather(directory);
    gather.readTo("M {");
    sleep_ms(250);
    const auto begin = Clock::now();
    gather.signal(GetParam());
    EXPECT_THAT(withoutEvents(gather.rest()),
                ElementsAre("M * RT 15 ET 0", "M }", "A {", "A }", "G }"));
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_LT(since(begin), kPrompt_s);
    const auto snapshot = directory.snapshot();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->sequence, 1U);
    // A quarter of a second of some 9,200 shots.
    EXPECT_THAT(snapshot->averages, AllOf(Ge(2000U), Le(6000U)));
}

TEST(Stop, InTheMiddleOfATraceEndsTheRefresh)
{
    const RunDirectory directory("[MeasParams]\nduration=100\n[Simulation]\ntimeScale=0.1\n");
    GatherProcess gather(directory);
    gather.readTo("M * RT 97 ET 3");
    gather.signal(SIGTERM);
    const auto end = withoutEvents(gather.rest());
    ASSERT_GE(end.size(), 4U);
    EXPECT_THAT(std::vector<std::string>(end.end() - 4, end.end()),
                ElementsAre("M }", "A {", "A }", "G }"));
    EXPECT_LE(end.size(), 5U); // one refresh at most
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_GE(directory.snapshot()->sequence, 3U);
    EXPECT_LE(directory.snapshot()->sequence, 4U);
    EXPECT_EQ(directory.names(".wfgather"), QStringList());
}

TEST(Stop, InTheFirstOfTwoTracesDoesNotBeginTheSecond)
{
    const RunDirectory directory(
        "[MeasParams]\nduration=15\nwavelength=all\n[Simulation]\ntimeScale=0.1\n");
    GatherProcess gather(directory);
    gather.readTo("M * RT 14");
    gather.signal(SIGTERM);
    const auto end = gather.rest();
    for (const std::string& message : end) {
        EXPECT_NE(message.substr(0, 3), "M {");
    }
    EXPECT_EQ(end.back(), "G }");
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_EQ(directory.snapshot()->wavelength_nm, 1310);
}

TEST(Stop, InTheSecondOfTwoTracesEndsIt)
{
    const RunDirectory directory(
        "[MeasParams]\nduration=1\nwavelength=all\n[Simulation]\ntimeScale=0.5\n");
    GatherProcess gather(directory);
    gather.readTo("M { 2/2");
    gather.signal(SIGTERM);
    EXPECT_THAT(withoutEvents(gather.rest()),
                ElementsAre("M * RT 1 ET 0", "M }", "A {", "A }", "G }"));
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_EQ(directory.snapshot()->wavelength_nm, 1550);
}

TEST(Stop, AskedForTwiceIsStillAnOrderlyEnd)
{
    const RunDirectory directory("[MeasParams]\nduration=15\n");
    GatherProcess gather(directory);
    gather.readTo("M {");
    for (int i = 0; i < 5; ++i) {
        gather.signal(i % 2 == 0 ? SIGTERM : SIGINT);
    }
    EXPECT_EQ(gather.rest().back(), "G }");
    EXPECT_EQ(gather.wait(), 0);
}

TEST(Stop, AsFastAsPossibleItStillStops)
{
    const RunDirectory directory("[MeasParams]\nduration=36000\n[Simulation]\ntimeScale=0\n");
    GatherProcess gather(directory);
    gather.readTo("M * RT 35990");
    const auto begin = Clock::now();
    gather.signal(SIGTERM);
    EXPECT_EQ(gather.rest().back(), "G }");
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_LT(since(begin), kPrompt_s);
}

TEST(Realtime, RefreshesThreeToFourTimesASecondUntilItIsStopped)
{
    const RunDirectory directory("[MeasParams]\nduration=0\npulse=275\n");
    GatherProcess gather(directory);
    const auto start = gather.readTo("M {");
    EXPECT_NE(start.back().find(" duration 0 "), std::string::npos);
    const auto begin = Clock::now();
    std::vector<std::uint32_t> averages;
    for (int i = 0; i < 5; ++i) {
        const auto tick = gather.readTo("M *");
        EXPECT_EQ(tick.size(), 1U);
        EXPECT_EQ(tick.back().rfind("M * RT 0 ET ", 0), 0U) << tick.back();
        if (i > 0) { // the snapshot of the tick before is there
            averages.push_back(directory.snapshot()->averages);
        }
    }
    // Not more often; a busy machine may be slower.
    EXPECT_THAT(since(begin), AllOf(Ge(5 / 4.0 - 0.1), Le(6.0)));
    for (const std::uint32_t count : averages) { // each an average of its own
        EXPECT_EQ(count, averages.front());
    }
    gather.signal(SIGTERM);
    const auto end = withoutEvents(gather.rest());
    ASSERT_GE(end.size(), 4U);
    EXPECT_THAT(std::vector<std::string>(end.end() - 4, end.end()),
                ElementsAre("M }", "A {", "A }", "G }"));
    EXPECT_EQ(gather.wait(), 0);
}

TEST(Realtime, AsFastAsPossibleLeavesTimeForOthers)
{
    const RunDirectory directory("[MeasParams]\nduration=0\n[Simulation]\ntimeScale=0\n");
    GatherProcess gather(directory);
    gather.readTo("M {");
    const auto begin = Clock::now();
    for (int i = 0; i < 20; ++i) {
        gather.readTo("M *");
    }
    EXPECT_THAT(since(begin), AllOf(Ge(0.35), Le(2.0)));
    gather.signal(SIGTERM);
    EXPECT_EQ(gather.rest().back(), "G }");
    EXPECT_EQ(gather.wait(), 0);
}
