#include "platform/otdr/core/loss.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using otdr::EventLoss;
using otdr::eventLoss;
using otdr::EventSite;
using otdr::fibreBefore;
using otdr::fibreBehind;
using otdr::Line;
using otdr::spanLoss;
using otdr::Trace;
using namespace testing_support;

// Levels are rounded to 0.001 dB, and a line taken to the event beyond its window magnifies what is
// left of that.
constexpr double kRounding_dB = 0.0005;

EventSite siteOf(const TraceBuilder& builder, Length at)
{
    EventSite site;
    site.index = builder.indexOf(at);
    site.pulse = builder.pulseSamples();
    site.longestWindow = builder.indexOf({otdr::kLongestWindow_m}) - builder.indexOf(0_m);
    return site;
}

TEST(EventLoss, OfASpliceIsItsStep)
{
    for (const double loss : {0.02, 0.1, 0.3, 2.0}) {
        const TraceBuilder builder = TraceBuilder().fibre(12_km).splice(4_km, {loss});
        const EventLoss found = eventLoss(*builder.build(), siteOf(builder, 4_km));
        EXPECT_NEAR(found.loss_dB, loss, kRounding_dB);
    }
}

TEST(EventLoss, OfAGainerIsNegative)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).splice(4_km, {-0.19});
    EXPECT_NEAR(eventLoss(*builder.build(), siteOf(builder, 4_km)).loss_dB, -0.19, kRounding_dB);
}

TEST(EventLoss, OfPlainFibreIsZero)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km);
    EXPECT_NEAR(eventLoss(*builder.build(), siteOf(builder, 6_km)).loss_dB, 0.0, kRounding_dB);
}

TEST(EventLoss, LevelsAreThoseOfTheFibreOnBothSidesAtTheEvent)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).connector(4_km, 0.5_dB, 12_dB);
    const EventLoss found = eventLoss(*builder.build(), siteOf(builder, 4_km));
    EXPECT_NEAR(found.in_dB, 45.0 - 4.0 * 0.2, kRounding_dB);
    EXPECT_NEAR(found.out_dB, 45.0 - 4.0 * 0.2 - 0.5, kRounding_dB);
    EXPECT_NEAR(found.loss_dB, found.in_dB - found.out_dB, 1e-12);
}

TEST(EventLoss, DoesNotSeeThePeakOfAConnector)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).connector(4_km, 0.25_dB, 15_dB);
    EXPECT_NEAR(eventLoss(*builder.build(), siteOf(builder, 4_km)).loss_dB, 0.25, kRounding_dB);
}

TEST(EventLoss, DoesNotSeeNeighboursBeyondTheLimits)
{
    const TraceBuilder builder =
        TraceBuilder().fibre(12_km).splice(3_km, 1_dB).splice(4_km, 0.2_dB).splice(5_km, 2_dB);
    EventSite site = siteOf(builder, 4_km);
    site.leftLimit = builder.indexOf(3_km) + 2.0 * builder.pulseSamples();
    site.rightLimit = builder.indexOf(5_km);
    EXPECT_NEAR(eventLoss(*builder.build(), site).loss_dB, 0.2, 2 * kRounding_dB);
    EXPECT_GT(eventLoss(*builder.build(), siteOf(builder, 4_km)).loss_dB, 0.3);
}

TEST(EventLoss, LooksNoFartherThanTheLongestWindow)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(30_km)
                                     .splice(9.9_km, 1_dB)
                                     .splice(15_km, 0.2_dB)
                                     .splice(20.2_km, 2_dB);
    EXPECT_NEAR(eventLoss(*builder.build(), siteOf(builder, 15_km)).loss_dB, 0.2, kRounding_dB);
    const EventSite site = siteOf(builder, 15_km);
    const std::optional<Line> before = fibreBefore(*builder.build(), site);
    const std::optional<Line> behind = fibreBehind(*builder.build(), site);
    ASSERT_TRUE(before && behind);
    EXPECT_NEAR(static_cast<double>(before->samples), site.longestWindow, 1.0);
    EXPECT_NEAR(static_cast<double>(behind->samples), site.longestWindow, 1.0);
}

TEST(EventLoss, BeginsBehindTheDeadZoneOfTheEvent)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).splice(4_km, 0.3_dB).pulse(1000);
    const EventSite site = siteOf(builder, 4_km);
    const std::optional<Line> behind = fibreBehind(*builder.build(), site);
    ASSERT_TRUE(behind);
    const double start = behind->centre - static_cast<double>(behind->samples - 1) / 2.0;
    EXPECT_GE(start, site.index + 1.4 * site.pulse);
    EXPECT_LT(start, site.index + 1.4 * site.pulse + 1.0);
}

TEST(EventLoss, LeavesOutTheSampleAtTheEventItself)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km);
    EventSite site = siteOf(builder, 4_km);
    site.index = 1000.0;
    const std::optional<Line> before = fibreBefore(*builder.build(), site);
    ASSERT_TRUE(before);
    EXPECT_EQ(before->samples, 1000U);
}

TEST(EventLoss, WaitsUntilTheTailOfAHighPeakHasSettled)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).connector(4_km, 0.4_dB, 20_dB);
    std::vector<std::uint16_t> counts = builder.counts();
    const EventSite site = siteOf(builder, 4_km);
    const auto peakEnd = static_cast<std::size_t>(site.index + site.pulse);
    for (std::size_t i = peakEnd; i < peakEnd + 200; ++i) {
        // A receiver that forgets the peak with a time constant of a pulse.
        const double tail = 8.0 * std::exp(-static_cast<double>(i - peakEnd) / site.pulse);
        counts[i] = static_cast<std::uint16_t>(counts[i] - std::lround(1000.0 * tail));
    }
    const Trace trace(otdr::RawSamples(counts), 0.001, {});
    const EventLoss found = eventLoss(trace, site);
    EXPECT_NEAR(found.loss_dB, 0.4, 0.005);
}

/// Whether a tail is over is told by twice its longest length of fibre behind it, a hundred samples
/// here: where that falls differently further on does not matter.
TEST(EventLoss, TailIsComparedWithTheFibreRightBehindIt)
{
    const auto beginOf = [](double bend) {
        std::vector<std::uint16_t> counts(3000);
        for (std::size_t i = 0; i < counts.size(); ++i) {
            const double behind = static_cast<double>(i) - 1000.0;
            const double tail = behind < 0.0 ? 0.0 : 2.0 * std::exp(-behind / 20.0);
            const double level = 30.0 + tail - 0.02 * std::max(0.0, behind - bend);
            counts[i] = static_cast<std::uint16_t>(std::lround(65535.0 - 1000.0 * level));
        }
        const Trace trace(otdr::RawSamples(counts), 0.001, {});
        EventSite site;
        site.index = 1000.0;
        site.pulse = 10.0;
        site.rightLimit = 2000.0;
        site.longestWindow = 100.0;
        return fibreBehind(trace, site)->centre;
    };
    const double dead = 10.0 * otdr::kDeadZonePulses;
    const double unbent = beginOf(5000.0);
    EXPECT_NEAR(unbent, 1000.0 + 20.0 * std::log(2.0 / 0.1) + 49.5, 3.0);
    EXPECT_EQ(beginOf(dead + 300.0), unbent);
    EXPECT_NE(beginOf(dead + 200.0), unbent);
}

TEST(EventLoss, OfASmallSpliceInNoiseIsNotMovedByTheSearchForATail)
{
    double sum = 0.0;
    constexpr int kRounds = 50;
    for (int seed = 1; seed <= kRounds; ++seed) {
        const TraceBuilder builder = TraceBuilder()
                                         .fibre(20_km)
                                         .splice(10_km, 0.1_dB)
                                         .noise(0.05_dB, static_cast<std::uint64_t>(seed));
        sum += eventLoss(*builder.build(), siteOf(builder, 10_km)).loss_dB;
    }
    // sigma_loss = s * sqrt(8 / N) with N = 4897 samples in 5 km, over the root of the rounds: 0.3
    // mdB.
    EXPECT_NEAR(sum / kRounds, 0.1, 0.0015);
}

TEST(EventLoss, TakesNoiseForNoTail)
{
    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        const TraceBuilder builder =
            TraceBuilder().fibre(20_km).splice(10_km, 0.1_dB).noise(0.2_dB, seed);
        const EventSite site = siteOf(builder, 10_km);
        const std::optional<Line> behind = fibreBehind(*builder.build(), site);
        ASSERT_TRUE(behind);
        const double start = behind->centre - static_cast<double>(behind->samples - 1) / 2.0;
        EXPECT_LT(start, site.index + 1.4 * site.pulse + 1.0);
    }
}

TEST(EventLoss, ScattersAsTwoLinesShould)
{
    double squares = 0.0;
    constexpr int kRounds = 100;
    for (int seed = 1; seed <= kRounds; ++seed) {
        const TraceBuilder builder = TraceBuilder()
                                         .fibre(20_km)
                                         .splice(10_km, 0.1_dB)
                                         .noise(0.05_dB, static_cast<std::uint64_t>(seed));
        const double off = eventLoss(*builder.build(), siteOf(builder, 10_km)).loss_dB - 0.1;
        squares += off * off;
    }
    const double expected = 0.05 * std::sqrt(8.0 / 4897.0);
    EXPECT_NEAR(std::sqrt(squares / kRounds) / expected, 1.0, 0.3);
}

TEST(EventLoss, OfTheReversedFibreIsTheGain)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km).splice(5_km, 0.3_dB);
    std::vector<std::uint16_t> counts = builder.counts();
    std::reverse(counts.begin(), counts.end());
    EventSite site = siteOf(builder, 5_km);
    // Seen from behind, the step begins one pulse before where it ends.
    site.index = static_cast<double>(counts.size() - 1) - site.index - site.pulse;
    const Trace trace(otdr::RawSamples(counts), 0.001, {});
    EXPECT_NEAR(eventLoss(trace, site).loss_dB, -0.3, 0.01);
}

void expectUnknown(const EventLoss& loss)
{
    EXPECT_TRUE(std::isnan(loss.loss_dB));
    EXPECT_TRUE(std::isnan(loss.in_dB));
    EXPECT_TRUE(std::isnan(loss.out_dB));
}

TEST(EventLoss, IsUnknownWhereNoLineFits)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km);
    const auto trace = builder.build();
    expectUnknown(eventLoss(Trace({}, 0.001, {}), siteOf(builder, 1_km)));
    expectUnknown(eventLoss(*trace, siteOf(builder, 99_km)));
}

TEST(EventLoss, HasNoLevelBeforeTheStartAndNoneBehindTheEnd)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km);
    const auto trace = builder.build();
    for (const Length start : {0_km, Length {-1000.0}}) {
        const EventLoss found = eventLoss(*trace, siteOf(builder, start));
        EXPECT_TRUE(std::isnan(found.in_dB));
        EXPECT_NEAR(found.out_dB, 45.0 - 0.2e-3 * start.m, kRounding_dB);
        EXPECT_TRUE(std::isnan(found.loss_dB));
    }
    const EventLoss end = eventLoss(*trace, siteOf(builder, 10_km));
    EXPECT_NEAR(end.in_dB, 45.0 - 10.0 * 0.2, kRounding_dB);
    EXPECT_TRUE(std::isnan(end.out_dB));
    EXPECT_TRUE(std::isnan(end.loss_dB));
}

TEST(EventLoss, HasNoLevelWhereNeighboursLeaveNoRoomForALine)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km);
    const auto trace = builder.build();
    EventSite narrow = siteOf(builder, 5_km);
    narrow.rightLimit = narrow.index + 1.5 * narrow.pulse;
    const EventLoss before = eventLoss(*trace, narrow);
    EXPECT_NEAR(before.in_dB, 45.0 - 5.0 * 0.2, kRounding_dB);
    EXPECT_TRUE(std::isnan(before.out_dB));
    EXPECT_TRUE(std::isnan(before.loss_dB));
    EventSite crowded = siteOf(builder, 5_km);
    crowded.leftLimit = crowded.index - 1.0;
    const EventLoss behind = eventLoss(*trace, crowded);
    EXPECT_TRUE(std::isnan(behind.in_dB));
    EXPECT_NEAR(behind.out_dB, 45.0 - 5.0 * 0.2, kRounding_dB);
    EXPECT_TRUE(std::isnan(behind.loss_dB));
}

TEST(EventLoss, IsUnknownForASiteThatIsNoNumber)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km);
    const auto trace = builder.build();
    EventSite site = siteOf(builder, 5_km);
    site.index = std::nan("");
    expectUnknown(eventLoss(*trace, site));
    site = siteOf(builder, 5_km);
    site.pulse = std::nan("");
    const EventLoss found = eventLoss(*trace, site);
    EXPECT_TRUE(std::isnan(found.out_dB));
    EXPECT_TRUE(std::isnan(found.loss_dB));
}

TEST(EventLoss, HasNoLevelWhereNoiseStandsOnOneSide)
{
    const TraceBuilder builder =
        TraceBuilder().fibre(10_km).behind(8000).noise(0.05_dB, 4).noiseFloor(15_dB);
    const EventLoss end = eventLoss(*builder.build(), siteOf(builder, 10_km));
    EXPECT_NEAR(end.in_dB, 45.0 - 10.0 * 0.2, 0.01);
    EXPECT_TRUE(std::isnan(end.out_dB));
    EXPECT_TRUE(std::isnan(end.loss_dB));
}

TEST(EventLoss, StandsAPulseOfNoWidthOrLess)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).splice(4_km, 0.3_dB).pulse(0.001);
    EventSite site = siteOf(builder, 4_km);
    for (const double pulse : {0.0, -50.0}) {
        site.pulse = pulse;
        EXPECT_NEAR(eventLoss(*builder.build(), site).loss_dB, 0.3, 0.01);
    }
}

TEST(SpanLoss, IsTheFibrePlusItsEvents)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(20_km)
                                     .connector(0_km, 0_dB, 15_dB)
                                     .splice(5_km, 0.3_dB)
                                     .connector(12_km, 0.5_dB, 8_dB);
    EventSite start = siteOf(builder, 0_km);
    start.rightLimit = builder.indexOf(5_km);
    EventSite end = siteOf(builder, 20_km);
    end.leftLimit = builder.indexOf(12_km) + 2.0 * builder.pulseSamples();
    EXPECT_NEAR(spanLoss(*builder.build(), start, end), 20.0 * 0.2 + 0.8, 2 * kRounding_dB);
}

TEST(SpanLoss, IsUnknownWhereAnEndHasNoFibre)
{
    const TraceBuilder builder = TraceBuilder().fibre(20_km);
    const auto trace = builder.build();
    EXPECT_TRUE(std::isnan(spanLoss(*trace, siteOf(builder, 30_km), siteOf(builder, 20_km))));
    EXPECT_TRUE(std::isnan(spanLoss(*trace, siteOf(builder, 0_km), siteOf(builder, 0_km))));
}

} // namespace
