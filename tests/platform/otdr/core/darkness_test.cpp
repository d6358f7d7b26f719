#include "platform/otdr/core/darkness.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/trace.h"
#include "tests/platform/otdr/core/counts.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace otdr;
using namespace testing_support;

using Counts = std::vector<std::uint16_t>;

std::uint16_t countOf(double level_dB)
{
    return static_cast<std::uint16_t>(std::lround(65535.0 - 1000.0 * std::max(0.0, level_dB)));
}

/// Noise of this level as a receiver without light shows it: what is negative stands at the least.
Counts noiseOf(double rms_dB, double least_dB, std::size_t size, std::uint64_t seed = 1)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> power;
    Counts counts(size);
    for (std::uint16_t& count : counts) {
        const double value = power(random);
        const double level_dB = value > 0.0 ? rms_dB + 5.0 * std::log10(value) : 0.0;
        count = countOf(std::max(level_dB, least_dB));
    }
    return counts;
}

/// Light that scatters by a tenth of a decibel.
Counts lightOf(double level_dB, std::size_t size)
{
    std::mt19937_64 random(2);
    std::normal_distribution<double> scatter(level_dB, 0.1);
    Counts counts(size);
    std::generate(counts.begin(), counts.end(), [&] { return countOf(scatter(random)); });
    return counts;
}

Counts operator+(Counts first, const Counts& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(Darkness, OfNoiseIsToldByItsLevels)
{
    const Darkness dark = darknessOf(traceOf(noiseOf(12.0, 1.5, 20000)), 0, 20000);
    EXPECT_TRUE(dark.isNoise);
    EXPECT_NEAR(dark.rms_dB, 12.0, 0.1);
    EXPECT_NEAR(dark.least_dB, 1.5, 0.001);
    // 2 % of a normal distribution exceed 2.05 sigma.
    EXPECT_NEAR(dark.most_dB, 12.0 + 5.0 * std::log10(2.05), 0.1);
}

TEST(Darkness, IsEmptyWhereMostSamplesStandAtTheLeast)
{
    EXPECT_TRUE(darknessOf(traceOf(Counts(600, 64000) + lightOf(20.0, 400)), 0, 1000).isEmpty);
    EXPECT_FALSE(darknessOf(traceOf(Counts(400, 64000) + lightOf(20.0, 600)), 0, 1000).isEmpty);
}

TEST(Darkness, IsNotSeenInLight)
{
    const Trace trace = traceOf(lightOf(30.0, 2000) + noiseOf(12.0, 0.0, 2000));
    EXPECT_FALSE(darknessOf(trace, 0, 2000).isNoise);
    EXPECT_FALSE(isDark(trace, 0, 2000));
    EXPECT_TRUE(isDark(trace, 2000, 4000));
}

/// A spike of one sample makes two of its neighbours differ: an event does so here and there.
TEST(Darkness, IsSeenWhereMoreThanOneNeighbourInTwentyDiffers)
{
    const auto isDarkWith = [](std::size_t spikes) {
        Counts counts = lightOf(30.0, 1000);
        for (std::size_t i = 0; i < spikes; ++i) {
            counts[10 + 30 * i] = countOf(35.0);
        }
        return isDark(traceOf(counts), 0, counts.size());
    };
    EXPECT_FALSE(isDarkWith(1));
    EXPECT_FALSE(isDarkWith(25));
    EXPECT_TRUE(isDarkWith(26));
}

/// Samples of one level are dark only where nothing in the record is much darker.
TEST(Darkness, OfOneLevelIsThatOfTheRecord)
{
    const auto isSecondDark = [](std::uint16_t first, std::uint16_t second) {
        return isDark(traceOf(Counts(500, first) + Counts(500, second)), 500, 1000);
    };
    EXPECT_TRUE(isSecondDark(30000, 64000));
    EXPECT_TRUE(isSecondDark(65535, 64000)); // before the port makers store another count
    EXPECT_FALSE(isSecondDark(64000, 30000));
}

TEST(Darkness, FillBehindNoiseWasNotMeasured)
{
    for (const std::uint16_t fill : {65535, 64000, 30000, 0}) {
        const Counts noise = noiseOf(12.0, 1.5, 3000);
        EXPECT_EQ(measuredSamples(traceOf(noise + Counts(300, fill))), 3000U) << fill;
    }
}

TEST(Darkness, FillOfZerosWasNotMeasuredWhereverItStands)
{
    EXPECT_EQ(measuredSamples(traceOf(lightOf(30.0, 3000) + Counts(64, 0))), 3000U);
    EXPECT_EQ(measuredSamples(traceOf(lightOf(30.0, 3000) + Counts(63, 0))), 3063U);
}

/// A receiver that shows nothing behind the fibre has measured that.
TEST(Darkness, BehindLightIsMeasured)
{
    EXPECT_EQ(measuredSamples(traceOf(lightOf(30.0, 3000) + Counts(300, 65535))), 3300U);
    EXPECT_EQ(measuredSamples(traceOf(Counts(300, 65535))), 300U);
    EXPECT_EQ(measuredSamples(traceOf({})), 0U);
}

/// A link with noise behind it, in front of it so many samples of darkness.
Counts linkBetweenDarkness(std::size_t front, std::uint16_t frontCount, double least_dB)
{
    const Counts fibre = TraceBuilder()
                             .fibre(12_km)
                             .noise(0.01_dB, 31)
                             .splice(4_km, 0.1_dB)
                             .connector(8_km, 0.3_dB, 5_dB)
                             .counts();
    return Counts(front, frontCount) + fibre + noiseOf(20.0, least_dB, 6000);
}

Detection detectIn(const Counts& counts)
{
    return detectEvents(Trace(RawSamples(counts), kUsualDbPerCount, {10.0, 0.0}),
                        {100.0, 0.1021, -80.0});
}

/// The same events, all of them so many samples later.
void expectSameEvents(const Detection& found, const Detection& expected, double later)
{
    // The start stands at 0 m, whatever is there.
    ASSERT_EQ(found.events.size(), expected.events.size());
    for (std::size_t i = 1; i < expected.events.size(); ++i) {
        EXPECT_EQ(found.events[i].kind, expected.events[i].kind);
        EXPECT_NEAR(found.events[i].index, expected.events[i].index + later, 0.5);
        if (i + 1 < expected.events.size()) {
            EXPECT_NEAR(found.events[i].loss_dB, expected.events[i].loss_dB, 0.002);
        }
    }
}

TEST(DarkRecord, DoesNotMindDarkSamplesBeforeThePort)
{
    const Detection expected = detectIn(linkBetweenDarkness(0, 0, 1.5));
    ASSERT_EQ(expected.events.size(), 4U);
    for (const std::size_t front : {100, 1000, 2000, 20000}) {
        for (const std::uint16_t count : {65535, 64000}) {
            SCOPED_TRACE(front);
            expectSameEvents(detectIn(linkBetweenDarkness(front, count, 1.5)), expected,
                             static_cast<double>(front));
        }
    }
}

TEST(DarkRecord, DoesNotMindWhatFillsTheRecordUp)
{
    const Counts plain = linkBetweenDarkness(0, 0, 1.5);
    const Detection expected = detectIn(plain);
    for (const std::size_t fill : {100, 3000, 30000}) {
        for (const std::uint16_t count : {65535, 64035, 64000, 0}) {
            SCOPED_TRACE(count);
            expectSameEvents(detectIn(plain + Counts(fill, count)), expected, 0.0);
        }
    }
}

/// Makers cut noise off at a level of their own: the less of it is left, the more samples stand
/// there.
TEST(DarkRecord, DoesNotMindWhereTheNoiseIsCutOff)
{
    const Detection expected = detectIn(linkBetweenDarkness(0, 0, 0.0));
    for (const double least_dB : {1.5, 10.0, 17.0, 19.0, 20.0, 21.0, 21.5}) {
        SCOPED_TRACE(least_dB);
        expectSameEvents(detectIn(linkBetweenDarkness(0, 0, least_dB)), expected, 0.0);
    }
}

} // namespace
