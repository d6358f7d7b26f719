#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/trace.h"
#include "tests/platform/otdr/core/counts.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace {

using otdr::RawSamples;
using otdr::Trace;
using otdr::TraceAxis;
using namespace testing_support;

TEST(Trace, LevelGrowsWithLightAndIsZeroWithoutSignal)
{
    const Trace trace = traceOf({65535, 64535, 0});
    EXPECT_DOUBLE_EQ(trace.level_dB(0), 0.0);
    EXPECT_DOUBLE_EQ(trace.level_dB(1), 1.0);
    EXPECT_DOUBLE_EQ(trace.level_dB(2), 65.535);
}

TEST(Trace, LevelFollowsTheScaleOfTheTrace)
{
    EXPECT_DOUBLE_EQ(traceOf({55535}, 0.0005).level_dB(0), 5.0);
}

TEST(Trace, LevelIsLinearBetweenSamples)
{
    const Trace trace = traceOf({60535, 58535, 59535});
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(0.0), 5.0);
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(0.25), 5.5);
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(1.0), 7.0);
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(1.5), 6.5);
}

TEST(Trace, FirstAndLastSampleContinueBeyondTheEnds)
{
    const Trace trace = traceOf({60535, 58535});
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(-0.001), 5.0);
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(-1e300), 5.0);
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(1.001), 7.0);
    EXPECT_DOUBLE_EQ(trace.levelAt_dB(std::numeric_limits<double>::infinity()), 7.0);
    EXPECT_DOUBLE_EQ(traceOf({60535}).levelAt_dB(0.5), 5.0);
}

TEST(RawSamples, FirstOnesShareTheBlock)
{
    const RawSamples counts(std::vector<std::uint16_t> {7, 8, 9});
    EXPECT_EQ(counts.first(2), RawSamples(std::vector<std::uint16_t>({7, 8})));
    EXPECT_EQ(counts.first(2).data(), counts.data());
    EXPECT_EQ(counts.first(9), counts);
    EXPECT_TRUE(counts.first(0).empty());
}

TEST(Trace, MeanLevelIsThatOfTheSamplesThatThereAre)
{
    const Trace trace = traceOf({60535, 58535, 59535}, 0.0005);
    EXPECT_DOUBLE_EQ(trace.meanLevel_dB(0, 2), 3.0);
    EXPECT_DOUBLE_EQ(trace.meanLevel_dB(1, 9), 3.25);
    EXPECT_TRUE(std::isnan(trace.meanLevel_dB(1, 1)));
    EXPECT_TRUE(std::isnan(trace.meanLevel_dB(3, 9)));
}

TEST(Trace, LevelOfAnEmptyTraceIsZeroAndOfNoNumberNone)
{
    EXPECT_EQ(traceOf({}).levelAt_dB(3.0), 0.0);
    EXPECT_TRUE(std::isnan(traceOf({1, 2}).levelAt_dB(std::nan(""))));
}

TEST(Trace, SampleAtZeroMetresIsThatOfTimeZero)
{
    const Trace trace = traceOf({1, 2, 3}, 0.001, {10.0, -20.0});
    EXPECT_DOUBLE_EQ(trace.sampleAt(0.0, 0.1), 2.0);
    EXPECT_DOUBLE_EQ(trace.distanceAt(2.0, 0.1), 0.0);
    EXPECT_DOUBLE_EQ(trace.distanceAt(0.0, 0.1), -2.0);
}

TEST(Trace, OneMicrosecondIsAbout102MetresOfFibre)
{
    const Trace trace = traceOf({}, 0.001, {1000.0, 0.0});
    // c / (2 * 1.468) * 1e-6 s
    EXPECT_NEAR(trace.distanceAt(1.0, otdr::metresPerNs(1.468)), 102.1092, 1e-4);
    EXPECT_NEAR(trace.sampleAt(102.1092, otdr::metresPerNs(1.468)), 1.0, 1e-6);
}

TEST(Trace, DistanceAndSampleAreInverse)
{
    const TraceAxis axis {2.5, -137.25};
    for (const double index : {-100.0, 0.0, 0.5, 54.9, 1e7}) {
        EXPECT_NEAR(axis.sampleAt(axis.distanceAt(index, 0.1021), 0.1021), index, 1e-8);
    }
}

TEST(Trace, BuildsItsPyramidAndSumsOnce)
{
    const Trace trace = traceOf({5, 6, 7});
    EXPECT_EQ(&trace.pyramid(), &trace.pyramid());
    EXPECT_EQ(&trace.sums(), &trace.sums());
    EXPECT_EQ(&trace.powerSums(), &trace.powerSums());
    EXPECT_EQ(trace.sums().sums(0, 3).samples, 3U);
}

TEST(Trace, IsAskedByManyThreadsAtOnce)
{
    const auto trace = TraceBuilder().fibre(20_km).splice(5_km, 0.3_dB).noise(0.02_dB, 1).build();
    std::vector<otdr::Sample> highest(8);
    std::vector<std::int64_t> sums(8);
    std::vector<double> power(8);
    std::vector<std::thread> threads;
    for (std::size_t k = 0; k < 8; ++k) {
        threads.emplace_back([&, k] {
            highest[k] = *trace->pyramid().highest(0, trace->size());
            sums[k] = trace->sums().sums(0, trace->size()).xy;
            power[k] = trace->powerSums().sum(0, trace->size(), 45.0);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t k = 1; k < 8; ++k) {
        EXPECT_EQ(highest[k], highest[0]);
        EXPECT_EQ(sums[k], sums[0]);
        EXPECT_EQ(power[k], power[0]);
    }
}

TEST(TraceBuilder, DrawsWhatItWasTold)
{
    const TraceBuilder builder =
        TraceBuilder().front(50).behind(30).fibre(10_km).connector(4_km, 0.5_dB, 9_dB);
    const auto trace = builder.build();
    const double metres = builder.metresPerNs();
    EXPECT_NEAR(trace->levelAt_dB(trace->sampleAt(1000.0, metres)), 45.0 - 0.2, 0.002);
    EXPECT_NEAR(trace->levelAt_dB(trace->sampleAt(4005.0, metres)), 45.0 - 0.8 + 9.0, 0.5);
    EXPECT_NEAR(trace->levelAt_dB(trace->sampleAt(5000.0, metres)), 45.0 - 1.0 - 0.5, 0.002);
    EXPECT_EQ(trace->samples()[49], otdr::kNoSignal);
    EXPECT_EQ(trace->samples()[trace->size() - 30], otdr::kNoSignal);
    EXPECT_NE(trace->samples()[trace->size() - 31], otdr::kNoSignal);
    EXPECT_NEAR(trace->distanceAt(builder.indexOf(7_km), metres), 7000.0, 1e-6);
}

} // namespace
