// Links with a splitter: behind it the light is weak, and what is left of the brighter light before
// it lies over it for a while.

#include "platform/otdr/core/eventdetection.h"
#include "tests/platform/otdr/core/kindsof.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace testing_support;
using otdr::DetectedEvent;
using otdr::Detection;

constexpr double kSplitter_m = 4000.0;
constexpr double kReceiverNoise_dB = 8.0; ///< level of its RMS
constexpr double kTailPulses = 1.0; ///< in which a tail falls to a part of 1/e

/// What is told of this link with the splitter's ramp straight in power, as a pulse passes it, with
/// a tail of the light before it over the light behind it, and with a receiver's noise.
Detection detectUnderTail(const TraceBuilder& builder, double tailPart, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> noise(0.0, std::pow(10.0, kReceiverNoise_dB / 5.0));
    std::vector<std::uint16_t> counts = builder.counts();
    const double at = builder.indexOf(Length {kSplitter_m});
    const double before = std::pow(10.0, builder.trueLevel_dB(Length {kSplitter_m - 1.0}) / 5.0);
    const double behind = std::pow(10.0, builder.trueLevel_dB(Length {kSplitter_m + 15.0}) / 5.0);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double since = (static_cast<double>(i) - at) / builder.pulseSamples();
        const double tail = since > 0.0 ? tailPart * before * std::exp(-since / kTailPulses) : 0.0;
        const double light = since > 0.0 && since < 1.0
            ? before + since * (behind - before)
            : std::pow(10.0, (65535.0 - counts[i]) / 5000.0);
        const double power = light + tail + noise(random);
        const double level_dB = power > 1.0 ? 5.0 * std::log10(power) : 0.0;
        counts[i] = static_cast<std::uint16_t>(65535.5 - 1000.0 * level_dB);
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {10.0, 0.0});
    return otdr::detectEvents(trace, {100.0, builder.metresPerNs(), -80.0});
}

TraceBuilder linkWithSplitter()
{
    return TraceBuilder().launch(40_dB).fibre(12_km).behind(6000).splice(Length {kSplitter_m},
                                                                         10.5_dB);
}

TEST(Splitter, LossIsMeasuredBehindItsTail)
{
    for (const double tailPart : {0.0, 0.001, 0.003}) {
        for (const std::uint64_t seed : {1, 2, 3, 4, 5}) {
            const TraceBuilder builder = linkWithSplitter();
            const Detection found = detectUnderTail(builder, tailPart, seed);
            ASSERT_EQ(kindsOf(found), "sne") << tailPart << ' ' << seed;
            const DetectedEvent& splitter = found.events[1];
            // The edges of this pulse are not rounded, those of a receiver's are over a fifth of
            // it.
            EXPECT_NEAR(splitter.index, builder.indexOf(Length {kSplitter_m}), 3.0) << tailPart;
            EXPECT_NEAR(splitter.loss_dB, 10.5, 0.01) << tailPart << ' ' << seed;
            EXPECT_NEAR(found.end, builder.indexOf(12_km), 5.0) << tailPart << ' ' << seed;
        }
    }
}

TEST(Splitter, IsNotTheEndWithAConnectorCloseBehindIt)
{
    for (const double away_m : {40.0, 60.0, 80.0, 120.0, 200.0}) {
        const TraceBuilder builder =
            linkWithSplitter().connector(Length {kSplitter_m + away_m}, 0.4_dB, 5_dB);
        const Detection found = detectUnderTail(builder, 0.0, 7);
        ASSERT_EQ(found.events.size(), 4U) << kindsOf(found) << away_m;
        EXPECT_NEAR(found.events[1].loss_dB, 10.5, 0.02) << away_m;
        EXPECT_EQ(found.events[2].kind, DetectedEvent::Kind::Reflective) << away_m;
        EXPECT_NEAR(found.events[2].loss_dB, 0.4, 0.02) << away_m;
        EXPECT_NEAR(found.end, builder.indexOf(12_km), 5.0) << away_m;
    }
}

/// The fibre behind it is weak, and the last of the light ends in a reflection.
TEST(Splitter, IsNotTheEndWhereTheLightBehindItIsNearTheNoise)
{
    for (const std::uint64_t seed : {1, 2, 3, 4, 5}) {
        const TraceBuilder builder = TraceBuilder()
                                         .launch(23_dB)
                                         .fibre(9_km)
                                         .behind(6000)
                                         .splice(Length {kSplitter_m}, 10.5_dB)
                                         .reflectingEnd(8_dB);
        const Detection found = detectUnderTail(builder, 0.0, seed);
        ASSERT_EQ(kindsOf(found), "sne") << seed;
        EXPECT_NEAR(found.events[1].loss_dB, 10.5, 0.2) << seed;
        EXPECT_NEAR(found.end, builder.indexOf(9_km), 1.0) << seed;
    }
}

/// Five decibels above the noise the light scatters by 0.2 dB, a thousand times more than before
/// the splitter, and that from one sample to the next.
TEST(Splitter, NothingIsFoundInTheNoiseBehindIt)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const TraceBuilder builder = TraceBuilder().launch(25_dB).fibre(9_km).behind(6000).splice(
            Length {kSplitter_m}, 10.5_dB);
        const Detection found = detectUnderTail(builder, 0.003, seed);
        ASSERT_EQ(kindsOf(found), "sne") << seed;
        EXPECT_NEAR(found.events[1].loss_dB, 10.5, 5.0 * found.events[1].lossError_dB) << seed;
    }
}

/// The fibre between the splitter and a high reflection is as weak as that behind it.
TEST(Splitter, NothingIsFoundBetweenItAndAReflection)
{
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        const TraceBuilder builder = TraceBuilder()
                                         .launch(25_dB)
                                         .fibre(9_km)
                                         .behind(6000)
                                         .splice(Length {kSplitter_m}, 10.5_dB)
                                         .connector(Length {kSplitter_m + 400.0}, 0.4_dB, 12_dB);
        const Detection found = detectUnderTail(builder, 0.003, seed);
        ASSERT_EQ(kindsOf(found), "snre") << seed;
        EXPECT_NEAR(found.events[1].loss_dB, 10.5, 0.3) << seed;
        EXPECT_NEAR(found.events[2].loss_dB, 0.4, 0.3) << seed;
    }
}

/// The drop of a house: ten pulses of fibre and more behind the splitter, 5 dB and more above the
/// noise.
TEST(Splitter, IsFollowedByAShortDrop)
{
    for (const double drop_m : {100.0, 200.0, 300.0}) {
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            const TraceBuilder builder = TraceBuilder()
                                             .launch(32_dB)
                                             .fibre(Length {kSplitter_m + drop_m})
                                             .behind(6000)
                                             .splice(Length {kSplitter_m}, 10.5_dB);
            const Detection found = detectUnderTail(builder, 0.0, seed);
            ASSERT_EQ(kindsOf(found), "sne") << drop_m << ' ' << seed;
            EXPECT_NEAR(found.events[1].loss_dB, 10.5, 0.1) << drop_m << ' ' << seed;
            EXPECT_NEAR(found.end, builder.indexOf(Length {kSplitter_m + drop_m}), 10.0)
                << drop_m << ' ' << seed;
        }
    }
}

} // namespace
