#include "platform/otdr/core/fibreend.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

namespace {

using namespace testing_support;
using End = otdr::FibreExtent::End;

otdr::FibreExtent extentOf(const TraceBuilder& builder, const otdr::Trace& trace)
{
    otdr::SearchScale scale;
    scale.pulse = builder.pulseSamples();
    scale.timeConstant = 0.08 * scale.pulse;
    scale.kilometre = builder.indexOf(2_km) - builder.indexOf(1_km);
    scale.longestWindow = 5.0 * scale.kilometre;
    const otdr::FibreTrace fibre(trace, scale);
    return otdr::findFibre(fibre, 3.0);
}

otdr::FibreExtent extentOf(const TraceBuilder& builder)
{
    return extentOf(builder, *builder.build());
}

/// Counts of light by a formula for its level, dB; below 0 there is none.
std::vector<std::uint16_t> lightOf(std::size_t samples,
                                   const std::function<double(double)>& level_dB)
{
    std::vector<std::uint16_t> counts(samples);
    for (std::size_t i = 0; i < samples; ++i) {
        const double level = std::max(0.0, level_dB(static_cast<double>(i)));
        counts[i] = static_cast<std::uint16_t>(65535.0 - 1000.0 * level);
    }
    return counts;
}

/// The power of these counts and of a receiver's noise together: level of its RMS in dB.
otdr::Trace withNoise(const std::vector<std::uint16_t>& light, double rms_dB, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> noise(0.0, std::pow(10.0, rms_dB / 5.0));
    std::vector<std::uint16_t> counts;
    for (const std::uint16_t count : light) {
        const double power = std::pow(10.0, (65535.0 - count) / 5000.0) + noise(random);
        const double level_dB = power > 1.0 ? 5.0 * std::log10(power) : 0.0;
        counts.push_back(static_cast<std::uint16_t>(65535.5 - 1000.0 * level_dB));
    }
    return {otdr::RawSamples(counts), 0.001, {10.0, 0.0}};
}

TraceBuilder endingLink()
{
    return TraceBuilder().fibre(12_km).behind(3000).noise(0.01_dB, 11).noiseFloor(8_dB);
}

TEST(FibreEnd, OfACutStandsAtItsFoot)
{
    const TraceBuilder builder = endingLink();
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, OfAReflectionStandsAtItsFoot)
{
    const TraceBuilder builder = endingLink().reflectingEnd(12_dB);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, IsNotAConnector)
{
    const TraceBuilder builder = endingLink().connector(4_km, 0.5_dB, 15_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.0);
}

/// A patch cord behind the last connector, long enough to be seen: the end is its far end.
TEST(FibreEnd, OfAShortPieceBehindAConnectorIsTheFarOne)
{
    for (const double length_m : {20.0, 30.0, 60.0, 120.0}) {
        const TraceBuilder builder =
            endingLink().connector(Length {12000.0 - length_m}, 0.3_dB, 10_dB);
        EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.5) << length_m;
    }
    const TraceBuilder builder =
        endingLink().connector(11.9_km, 0.3_dB, 10_dB).reflectingEnd(12_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.5);
}

TEST(FibreEnd, IsFoundWhereTheRecordBehindItIsDarkAndWithoutNoise)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).behind(3000);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.5);
}

TEST(FibreEnd, IsNotASplitter)
{
    const TraceBuilder builder = endingLink().splice(5_km, 10_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.0);
}

/// A drop behind a splitter, too short to show how it falls: the reflection of its end does.
TEST(FibreEnd, OfADropIsBehindTheSplitter)
{
    for (const double length_m : {40.0, 60.0, 90.0}) {
        const Length end {4000.0 + length_m};
        for (const Decibels height : {6_dB, 15_dB}) {
            const TraceBuilder drop = TraceBuilder()
                                          .fibre(end)
                                          .splice(4_km, 12_dB)
                                          .reflectingEnd(height)
                                          .behind(4000)
                                          .noiseFloor(8_dB);
            const auto trace = withNoise(drop.counts(), 16.0, 3);
            const auto extent = extentOf(drop, trace);
            EXPECT_EQ(extent.kind, End::Found) << length_m;
            EXPECT_NEAR(extent.end, drop.indexOf(end), 3.0) << length_m;
        }
    }
}

/// What is lost some pulses before the end is another event, and not where the end begins.
TEST(FibreEnd, StandsBehindASmallLossCloseBeforeIt)
{
    for (const double pulses : {1.8, 2.2, 3.0}) {
        const TraceBuilder plain = endingLink();
        const double pulse_m = 12000.0 * plain.pulseSamples() / plain.indexOf(12_km);
        const TraceBuilder cut = endingLink().splice(Length {12000.0 - pulses * pulse_m}, 0.3_dB);
        EXPECT_NEAR(extentOf(cut).end, cut.indexOf(12_km), 0.3 * cut.pulseSamples()) << pulses;
        const TraceBuilder open = TraceBuilder(cut).reflectingEnd(12_dB);
        EXPECT_NEAR(extentOf(open).end, open.indexOf(12_km), 0.3 * open.pulseSamples()) << pulses;
    }
}

TEST(FibreEnd, StandsBehindALowReflectionThatIsOver)
{
    for (const double pulses : {3.0, 3.5, 4.0}) {
        const TraceBuilder plain = endingLink();
        const double pulse_m = 12000.0 * plain.pulseSamples() / plain.indexOf(12_km);
        const TraceBuilder link = endingLink()
                                      .connector(Length {12000.0 - pulses * pulse_m}, 0.3_dB, 1_dB)
                                      .reflectingEnd(12_dB);
        EXPECT_NEAR(extentOf(link).end, link.indexOf(12_km), 0.3 * link.pulseSamples()) << pulses;
    }
}

/// A reflection lower than half of what shows the end does not show before the light has fallen.
TEST(FibreEnd, OfALowReflectionStandsAtItsFoot)
{
    const TraceBuilder builder = endingLink().reflectingEnd(1_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.0);
}

/// Fibre of four pulses in front of an end that overloads the receiver: that takes longer to
/// recover than the fibre is long, and falls by several decibels within a kilometre.
TEST(FibreEnd, IsInFrontOfARecoveryThatIsLongerThanTheFibre)
{
    std::vector<std::uint16_t> light;
    for (int i = 0; i < 12000; ++i) {
        const double level_dB = i < 1600 ? 44.0 - 0.001 * i
            : i < 2100                   ? 54.0
                                         : std::max(0.0, 54.0 - 0.0085 * (i - 2100));
        light.push_back(static_cast<std::uint16_t>(65535.5 - 1000.0 * level_dB));
    }
    const otdr::Trace trace = withNoise(light, 6.0, 3);
    const otdr::FibreTrace fibre(trace, {400.0, 32.0, 980.0, 196.0}); // of 20 us
    EXPECT_NEAR(otdr::findFibre(fibre, 3.0).end, 1600.0, 100.0);
}

/// Nor has the far end's reflection anything to do with the fall of the one in front of it.
TEST(FibreEnd, StandsBehindALowReflectionCloseBeforeIt)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(8_km)
                                     .connector(Length {7950.0}, 0.3_dB, 5_dB)
                                     .reflectingEnd(20_dB)
                                     .behind(3000)
                                     .noise(0.01_dB, 11)
                                     .noiseFloor(8_dB);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(8_km), 2.0);
}

/// Nothing is connected: behind the port's reflection, which overloads the receiver, its tail.
TEST(FibreEnd, WithoutAFibreIsAtThePort)
{
    const auto light =
        lightOf(3000, [](double at) { return at < 15.0 ? 45.0 : 25.0 - 0.15 * (at - 15.0); });
    const TraceBuilder pulse; // of ten samples
    const auto extent = extentOf(pulse, withNoise(light, 8.0, 5));
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, 0.0, 10.0);
}

/// Where such a tail becomes ten times as steep, it does not rise: no fibre reflects there.
TEST(FibreEnd, WithoutAFibreIsAtThePortWhereverTheTailBends)
{
    const TraceBuilder pulse; // of ten samples
    for (const double bend : {30.0, 40.0, 160.0}) {
        const auto light = lightOf(3000, [=](double at) {
            const double tail_dB = 40.0 - 0.05 * (at - 15.0) - 0.5 * std::max(0.0, at - bend);
            return at < 15.0 ? 45.0 : tail_dB;
        });
        const auto extent = extentOf(pulse, withNoise(light, 8.0, 5));
        EXPECT_EQ(extent.kind, End::Found) << bend;
        EXPECT_NEAR(extent.end, 0.0, 10.0) << bend;
    }
}

/// The tail of the port's reflection outshines a short fibre; what reflects behind it shows that
/// there is one, for no tail rises.
TEST(FibreEnd, OfAFibreWithinTheTailOfTheLaunchIsWhereItReflects)
{
    const TraceBuilder pulse = TraceBuilder().pulse(200.0); // of twenty samples
    for (const double height_dB : {5.0, 12.0, 20.0}) {
        const auto light = lightOf(6000, [=](double at) {
            const double tail_dB = at < 15.0 ? 45.0 : 25.0 - 0.1 * (at - 15.0);
            return at < 120.0 ? tail_dB + (at < 100.0 ? 0.0 : height_dB) : 0.0;
        });
        const auto extent = extentOf(pulse, withNoise(light, 8.0, 1));
        EXPECT_EQ(extent.kind, End::Found) << height_dB;
        EXPECT_NEAR(extent.end, 100.0, 1.0) << height_dB;
    }
}

/// A reflection that rises while the light still falls is the end's own.
TEST(FibreEnd, IsNotMovedWithinAPulse)
{
    const TraceBuilder pulse = TraceBuilder().pulse(200.0); // of twenty samples
    const auto light = lightOf(9000, [](double i) {
        const double at = i - 4000.0;
        const double tail_dB = 26.0 - 0.06 * at + (at >= 12.0 && at < 32.0 ? 12.0 : 0.0);
        return at < 0.0 ? 34.0 - 0.0001 * i : tail_dB;
    });
    EXPECT_NEAR(extentOf(pulse, withNoise(light, 8.0, 1)).end, 4000.0, 1.0);
}

/// Some pulses of fibre behind the port, cut or reflecting, and a tail behind that.
TEST(FibreEnd, OfAFewPulsesOfFibreIsWhereTheyEnd)
{
    const TraceBuilder pulse = TraceBuilder().pulse(200.0); // of twenty samples
    for (const double port_dB : {1.5, 3.0, 9.0}) {
        for (const double height_dB : {0.0, 2.0, 20.0}) {
            const double end = height_dB > 0.0 ? 90.0 : 110.0;
            const auto light = lightOf(6000, [=](double at) {
                const double tail_dB = 20.0 + height_dB - 0.1 * (at - 110.0);
                const double end_dB = at < 110.0 ? 30.0 + height_dB : tail_dB;
                const double level_dB = at < 20.0 ? 30.0 + port_dB : 30.0;
                return at < end ? level_dB : end_dB;
            });
            const auto extent = extentOf(pulse, withNoise(light, 8.0, 1));
            EXPECT_EQ(extent.kind, End::Found) << port_dB << ", " << height_dB;
            EXPECT_NEAR(extent.end, end, 1.0) << port_dB << ", " << height_dB;
            EXPECT_LT(extent.first, end - 20.0) << port_dB << ", " << height_dB;
        }
    }
}

/// In the tail that a splitter leaves the end of its drop reflects: no tail rises. Its echo behind
/// it, from the splitter, is no further end, nor are lights too far away to be of this fibre.
TEST(FibreEnd, OfADropIsWhereItReflectsInTheTailOfTheSplitter)
{
    const TraceBuilder pulse = TraceBuilder().pulse(200.0); // of twenty samples
    const auto endOf = [&](double drop) {
        const auto light = lightOf(9000, [=](double i) {
            const double at = i - 4000.0;
            const double before_dB = at >= -20.0 ? 44.0 : 34.0 - 0.0001 * i;
            const bool isEnd = at >= drop && at < drop + 20.0;
            const bool isEcho = at >= 2.0 * drop + 20.0 && at < 2.0 * drop + 40.0;
            const double tail_dB = 28.0 - 0.06 * at + (isEnd ? 12.0 : (isEcho ? 2.0 : 0.0));
            return at < 0.0 ? before_dB : tail_dB;
        });
        const auto extent = extentOf(pulse, withNoise(light, 8.0, 1));
        EXPECT_EQ(extent.kind, End::Found) << drop;
        return extent.end - 4000.0;
    };
    for (const double drop : {25.0, 40.0, 80.0, 160.0}) {
        EXPECT_NEAR(endOf(drop), drop, 1.0);
    }
    EXPECT_NEAR(endOf(240.0), -20.5, 1.0);
}

/// Light is looked at in stretches; behind the last whole one there may be fibre still.
TEST(FibreEnd, OfAPulseOfOneSampleIsFound)
{
    for (const double length_m : {1000.0, 1010.0, 1020.0, 1029.0}) {
        const TraceBuilder builder = TraceBuilder()
                                         .pulse(10.0)
                                         .fibre(Length {length_m})
                                         .behind(600)
                                         .noise(0.01_dB, 11)
                                         .noiseFloor(8_dB);
        const auto extent = extentOf(builder);
        EXPECT_EQ(extent.kind, End::Found) << length_m;
        EXPECT_NEAR(extent.end, builder.indexOf(Length {length_m}), 2.0) << length_m;
    }
}

/// The round top of a reflection of 15 samples is straight for some samples; the fibre before it is
/// what it rises from, whatever pulse is told.
TEST(FibreEnd, StandsBeforeARoundReflectionThatIsWiderThanThePulseTold)
{
    const std::vector<double> reflection {0.04, 0.13, 0.44, 0.67, 0.85, 0.95, 1.02, 1.08,
                                          1.10, 1.12, 1.04, 0.95, 0.78, 0.51, 0.21};
    for (const double pulse_ns : {80.0, 85.0, 90.0, 93.0, 100.0, 140.0}) {
        const TraceBuilder builder = TraceBuilder()
                                         .pulse(pulse_ns)
                                         .fibre(8_km)
                                         .behind(6000)
                                         .noise(0.0005_dB, 3)
                                         .noiseFloor(14_dB);
        std::vector<std::uint16_t> counts = builder.counts();
        const auto end = static_cast<std::size_t>(builder.indexOf(8_km));
        const int fibre = counts[end - 1];
        for (std::size_t i = 0; i < 60; ++i) {
            const double above_dB = i < reflection.size()
                ? reflection[i]
                : reflection.back() - 0.35 * static_cast<double>(i - reflection.size() + 1);
            counts[end + i] = static_cast<std::uint16_t>(fibre - 1000.0 * above_dB);
        }
        const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {10.0, 0.0});
        EXPECT_NEAR(extentOf(builder, trace).end, static_cast<double>(end), 2.0) << pulse_ns;
    }
}

/// Fibre 3.6 dB above the noise and weaker still: many pulses of it show what it is.
TEST(FibreEnd, IsNotASplitterThatLeavesLittleLight)
{
    for (const std::uint64_t seed : {1, 2, 3, 4, 5}) {
        const TraceBuilder builder = TraceBuilder()
                                         .launch(20_dB)
                                         .fibre(9_km)
                                         .behind(6000)
                                         .splice(1_km, 9.2_dB)
                                         .reflectingEnd(6_dB);
        const auto extent = extentOf(builder, withNoise(builder.counts(), 7.0, seed));
        EXPECT_EQ(extent.kind, End::Found) << seed;
        EXPECT_NEAR(extent.end, builder.indexOf(9_km), 2.0 * builder.pulseSamples()) << seed;
    }
}

/// A receiver that adds to everything it measures: darkness stands three times as high as it
/// scatters, straight as fibre, but level.
TEST(FibreEnd, IsInFrontOfDarknessThatIsLifted)
{
    for (const std::uint64_t seed : {1, 2, 3, 4, 5}) {
        const TraceBuilder builder = TraceBuilder().fibre(4_km).behind(12000);
        std::vector<std::uint16_t> counts = builder.counts();
        for (std::uint16_t& count : counts) {
            const double power = std::pow(10.0, (65535.0 - count) / 5000.0) + 3.0 * 25.0;
            count = static_cast<std::uint16_t>(65535.5 - 5000.0 * std::log10(power));
        }
        const auto extent = extentOf(builder, withNoise(counts, 5.0 * std::log10(25.0), seed));
        EXPECT_EQ(extent.kind, End::Found) << seed;
        EXPECT_NEAR(extent.end, builder.indexOf(4_km), builder.pulseSamples()) << seed;
    }
}

/// The tail of a receiver that was overloaded, down from 12 dB above the noise: power that falls
/// with the time since then, which within some pulses is as straight as fibre.
TEST(FibreEnd, IsInFrontOfASlowTail)
{
    for (const std::uint64_t seed : {1, 2, 3, 4, 5}) {
        const TraceBuilder builder = TraceBuilder().launch(35_dB).fibre(4_km).behind(12000);
        std::vector<std::uint16_t> counts = builder.counts();
        const double end = builder.indexOf(4_km);
        for (double i = std::ceil(end) + 1.0; i < static_cast<double>(counts.size()); i += 1.0) {
            const double since = (i - end) / builder.pulseSamples();
            const double level_dB = std::min(34.0, 11.5 - 5.0 * std::log10((since + 1.0) / 40.0));
            auto& count = counts[static_cast<std::size_t>(i)];
            count = std::min(count, static_cast<std::uint16_t>(65535.0 - 1000.0 * level_dB));
        }
        const auto extent = extentOf(builder, withNoise(counts, 7.0, seed));
        EXPECT_NEAR(extent.end, end, builder.pulseSamples()) << seed;
    }
}

/// Light that a slow receiver bends all the way behind a splitter, as no fibre is bent; but it ends
/// with a reflection, and only fibre does.
TEST(FibreEnd, OfFibreInTheTailOfASplitterIsWhereItsLightEndsSuddenly)
{
    const TraceBuilder builder = TraceBuilder().fibre(4_km).behind(8000);
    std::vector<std::uint16_t> counts = builder.counts();
    const double splitter = builder.indexOf(1_km);
    const double end = builder.indexOf(4_km);
    const double before_dB = (65535.0 - counts[static_cast<std::size_t>(splitter)]) / 1000.0;
    for (double i = std::ceil(splitter); i < static_cast<double>(counts.size()); i += 1.0) {
        const double bent_dB = before_dB - 5.0 - 3.0 * std::log10(1.0 + (i - splitter) / 100.0);
        const bool reflects = i >= end && i < end + builder.pulseSamples();
        const double level_dB = reflects ? bent_dB + 5.0 : (i < end ? bent_dB : 0.0);
        counts[static_cast<std::size_t>(i)] =
            static_cast<std::uint16_t>(65535.0 - 1000.0 * std::max(0.0, level_dB));
    }
    const auto extent = extentOf(builder, withNoise(counts, before_dB - 14.0, 1));
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, end, builder.pulseSamples());
}

/// The end of a fibre that reflects, 16 dB for a pulse, and the charge that it leaves in the
/// receiver: light so far above the fibre, that falls by the same with every pulse.
double foundBeforeTail(const TraceBuilder& builder, double end, double above_dB, double fall_dB)
{
    std::vector<std::uint16_t> counts = builder.counts();
    const double pulse = builder.pulseSamples();
    const double before_dB = (65535.0 - counts[static_cast<std::size_t>(end - pulse)]) / 1000.0;
    for (double i = std::ceil(end); i < static_cast<double>(counts.size()); i += 1.0) {
        const double since = (i - end) / pulse;
        const double level_dB =
            before_dB + (since < 1.0 ? 16.0 : above_dB - fall_dB * (since - 1.0));
        counts[static_cast<std::size_t>(i)] =
            static_cast<std::uint16_t>(65535.0 - 1000.0 * std::max(0.0, level_dB));
    }
    return extentOf(builder, withNoise(counts, 7.0, 1)).end;
}

/// Straight as fibre is, but many times as steep as the fibre before, from whichever level.
TEST(FibreEnd, IsInFrontOfAStraightTailThatStartsAtAnyLevel)
{
    const TraceBuilder builder = TraceBuilder().fibre(8_km).behind(15000);
    const double end = builder.indexOf(8_km);
    for (const double above_dB : {-2.0, 0.0, 2.0, 4.0, 8.0}) {
        EXPECT_NEAR(foundBeforeTail(builder, end, above_dB, 0.1), end, builder.pulseSamples())
            << above_dB;
    }
}

TEST(FibreEnd, OfARecordThatEndsOnFibreIsOutOfRange)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).noise(0.01_dB, 12);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::OutOfRange);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, LaunchIsWhereLightBegins)
{
    const TraceBuilder builder = endingLink().front(500);
    EXPECT_NEAR(extentOf(builder).launch, 500.0, 1.0);
}

TEST(FibreEnd, LaunchReflectionIsOverWhereTheFibreBegins)
{
    const TraceBuilder builder = endingLink().reflection(0_km, 10_dB);
    const auto extent = extentOf(builder);
    EXPECT_GE(extent.first, builder.pulseSamples());
    EXPECT_LT(extent.first, 6.0 * builder.pulseSamples());
}

} // namespace
