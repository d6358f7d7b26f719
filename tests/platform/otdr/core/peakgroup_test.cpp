#include "platform/otdr/core/peakgroup.h"
#include "tests/platform/otdr/core/drawnfibre.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace testing_support;
using otdr::FibreTrace;
using otdr::PeakGroup;

/// What stands at 5 km of a link, as a receiver of this time constant would have it.
PeakGroup measuredAt5km(const TraceBuilder& link, double timeConstantPulses)
{
    const auto trace = link.build();
    const double pulse = link.pulseSamples();
    FibreTrace fibre(*trace, {pulse, 0.2 * pulse, static_cast<double>(trace->size()), 0.0});
    fibre.setTimeConstant(timeConstantPulses * pulse);
    const double at = link.indexOf(5_km);
    return measurePeak(fibre, at, at - 200.0 * pulse, at + 200.0 * pulse);
}

TraceBuilder quiet()
{
    return TraceBuilder().fibre(10_km).noise(0.002_dB, 5);
}

TEST(PeakGroup, WithoutItsLowFeetKeepsTheHighestHoweverLow)
{
    PeakGroup group {{100.0, 120.0, 140.0}, {0.2, 0.9, 0.4}, 200.0};
    EXPECT_EQ(group.height_dB(), 0.9);
    EXPECT_EQ(highestFoot(group), 120.0);
    dropLowFeet(group, 0.4);
    EXPECT_EQ(group.feet, (std::vector<double> {120.0, 140.0}));
    EXPECT_EQ(group.heights_dB, (std::vector<double> {0.9, 0.4}));
    dropLowFeet(group, 2.0);
    EXPECT_EQ(group.feet, std::vector<double> {120.0});
}

TEST(PeakGroup, FootOfASharpRiseLiesAtItsFirstSample)
{
    const TraceBuilder link = quiet().reflection(5_km, 6_dB);
    const PeakGroup found = measuredAt5km(link, 0.2);
    ASSERT_EQ(found.feet.size(), 1U);
    EXPECT_NEAR(found.feet.front(), link.indexOf(5_km), 0.6);
    EXPECT_NEAR(found.heights_dB.front(), 6.0, 0.01);
}

/// Some instruments smooth the fibre, and leave reflections sharp: however slow the fibre shows the
/// receiver to be, nothing rises before it is seen to.
TEST(PeakGroup, FootOfWhatRoseBeforeTheRecordLiesAtItsFirstSample)
{
    const otdr::PulseShape shape(20.0, 1.6);
    const DrawnFibre fibre(2000, scaleOf(20.0), [&](double i) {
        return eventLevel_dB(shape, i + 8.0, 30.0, 30.0, 6.0);
    });
    EXPECT_EQ(measurePeak(*fibre, 1.0, 0.0, 1000.0).feet.front(), 0.0);
}

TEST(PeakGroup, FootIsNotSoughtWhereNothingRisesYet)
{
    const TraceBuilder link = quiet().reflection(5_km, 20_dB);
    for (const double timeConstantPulses : {0.2, 1.0, 3.0}) {
        const PeakGroup found = measuredAt5km(link, timeConstantPulses);
        EXPECT_NEAR(found.feet.front(), link.indexOf(5_km), 2.0) << timeConstantPulses;
    }
}

PeakGroup measuredAt1000(const DrawnFibre& fibre)
{
    return measurePeak(*fibre, 1000.0, 0.0, 4000.0);
}

TEST(PeakGroup, HeightIsThatAboveTheFibreAndBehindItTheFibreIsUndisturbed)
{
    const DrawnFibre fibre = withRaised({{1000, 1020, 6.0}});
    const PeakGroup found = measuredAt1000(fibre);
    ASSERT_EQ(found.feet.size(), 1U);
    EXPECT_NEAR(found.heights_dB.front(), 6.0, 1e-9);
    // By half a pulse, in which the last of a tail could hide, later than its dead zone.
    EXPECT_GE(found.behind, 1000.0 + fibre->gap());
    EXPECT_LE(found.behind, 1000.0 + fibre->gap() + 20.0);
}

TEST(PeakGroup, WhatStandsLessThanAPulseBeforeBelongsToIt)
{
    EXPECT_NEAR(measuredAt1000(withRaised({{981, 982, 3.0}, {1000, 1020, 6.0}})).feet.front(),
                980.5, 2.0);
    EXPECT_NEAR(measuredAt1000(withRaised({{980, 981, 3.0}, {1000, 1020, 6.0}})).feet.front(),
                999.5, 2.0);
}

/// A pigtail of three pulses: its splice is no part of the connector, nor is its fibre a tail.
TEST(PeakGroup, EndsWhereFibreBeginsThatEndsAtALoss)
{
    const DrawnFibre fibre =
        withRaised({{1000, 1020, 1.5}, {1020, 1070, -0.1}, {1070, 4000, -0.5}});
    const PeakGroup found = measuredAt1000(fibre);
    EXPECT_GE(found.behind, 1020.0);
    EXPECT_LE(found.behind, 1050.0);
    EXPECT_EQ(clearOfTail(*fibre, found.behind, 2000.0, 1.5), found.behind);
}

/// What is as even as fibre above that before the reflection is a top of it, held by the receiver.
TEST(PeakGroup, DoesNotEndOnItsTop)
{
    const DrawnFibre fibre = withRaised({{1000, 1020, 6.0}, {1020, 1070, 3.0}, {1070, 4000, -0.5}});
    EXPECT_GE(measuredAt1000(fibre).behind, 1070.0);
}

/// A top of 6 dB that scatters by hundredths of a decibel, as those of reflections do.
std::vector<Raised> scatteredTop(double from, double to)
{
    std::vector<Raised> stretches {{from, to, 6.0}};
    for (double i = from; i < to; i += 3.0) {
        stretches.push_back({i, i + 1.0, -0.05});
    }
    return stretches;
}

/// A top within a tenth of a decibel for the pulse, a twentieth of it and a sample. How high it is
/// nobody knows.
TEST(PeakGroup, ATopLongerThanThePulseIsSaturated)
{
    EXPECT_FALSE(measuredAt1000(withRaised(scatteredTop(1000, 1023))).saturated());
    const PeakGroup found = measuredAt1000(withRaised(scatteredTop(1000, 1024)));
    EXPECT_TRUE(found.saturated());
    EXPECT_TRUE(std::isinf(found.hidden_dB));
    EXPECT_TRUE(measuredAt1000(withRaised({{1000, 1024, 6.0}, {1000, 1012, 0.09}})).saturated());
    EXPECT_FALSE(measuredAt1000(withRaised({{1000, 1024, 6.0}, {1000, 1012, 0.11}})).saturated());
}

/// Level of a peak that stands at 36 dB for so many samples, and behind its pulse falls with a time
/// constant.
double heldLevel_dB(double i, double samples, double timeConstant)
{
    const bool isHeld = i >= 1004.0 && i < 1004.0 + samples;
    const double passed = std::max(0.0, i - 1019.0);
    const double light = i < 1000.0 ? 0.0 : std::expm1(5.95 / 5.0 * std::log(10.0));
    return isHeld ? 36.0 : 30.0 + 5.0 * std::log10(1.0 + light * std::exp(-passed / timeConstant));
}

/// The edge of a receiver with a time constant of 0.08 pulses takes 13.3 of 20 samples to come
/// within 2 mdB of the highest; what is longer than the other 6.7, by a fifth of a pulse and a
/// sample, is held.
TEST(PeakGroup, ATopThatStaysTheSameForMostOfThePulseIsSaturated)
{
    const auto heldFor = [](double samples) {
        return measuredAt1000(
            {4000, scaleOf(20.0), [=](double i) { return heldLevel_dB(i, samples, 2.4); }});
    };
    EXPECT_FALSE(heldFor(12.0).saturated());
    EXPECT_TRUE(heldFor(13.0).saturated());
    EXPECT_NEAR(heldFor(13.0).hidden_dB, 4.0, 1e-9);
}

/// A peak that falls faster than is thought of the receiver has also risen faster.
TEST(PeakGroup, TheTopOfAFastReceiverStaysTheSameAndIsNotSaturated)
{
    const auto heldFor = [](double samples) {
        return measuredAt1000(
            {4000, scaleOf(20.0), [=](double i) { return heldLevel_dB(i, samples, 0.2); }});
    };
    EXPECT_FALSE(heldFor(16.0).saturated());
}

/// Rounded to 0.05 dB, a top is the same from 1 to 2 % below its highest on.
TEST(PeakGroup, ATopThatIsTheSameByRoundingIsNotSaturated)
{
    const otdr::PulseShape shape(100.0, 8.0);
    for (const double height_dB : {6.0, 6.01, 6.02, 6.03, 6.04, 6.05}) {
        const DrawnFibre fibre(4000, scaleOf(100.0), [&](double i) {
            const double level = eventLevel_dB(shape, i - 1000.0, 30.0, 30.0, height_dB);
            return 0.05 * std::round(level / 0.05);
        });
        EXPECT_FALSE(measuredAt1000(fibre).saturated()) << height_dB;
    }
}

/// Where another one stands as high, for as little as a third of a pulse.
/// Of an edge that is cut off hardly a sample is seen: the foot lies between two, and is told in
/// the middle.
TEST(PeakGroup, FootOfASaturatedPeakIsToldNeitherEarlyNorLate)
{
    const otdr::PulseShape shape(20.0, 1.6);
    double sum = 0.0;
    for (int tenth = 0; tenth < 10; ++tenth) {
        const double foot = 1000.0 + 0.1 * tenth;
        const DrawnFibre fibre(2000, scaleOf(20.0), [&](double i) {
            return std::min(45.0, eventLevel_dB(shape, i - foot, 30.0, 30.0, 22.0));
        });
        const PeakGroup found = measurePeak(*fibre, 1010.0, 500.0, 1500.0);
        EXPECT_TRUE(found.saturated());
        EXPECT_NEAR(found.feet.front(), foot, 0.7);
        sum += found.feet.front() - foot;
    }
    EXPECT_NEAR(sum / 10.0, 0.0, 0.25);
}

/// What is too long for a pulse is cut off, however low it is; but its edge is seen.
TEST(PeakGroup, FootOfALowTopThatIsTooLongLiesAtItsEdge)
{
    const DrawnFibre fibre = withRaised({{1000.0, 1060.0, 0.1}});
    const PeakGroup found = measurePeak(*fibre, 1010.0, 500.0, 1500.0);
    EXPECT_TRUE(found.saturated());
    EXPECT_NEAR(found.feet.front(), 1000.0, 1.6);
}

TEST(PeakGroup, AsHighAsAnotherWhereTheRecordIsHighestIsSaturated)
{
    const auto saturatedBeside = [](double other_dB) {
        return measuredAt1000(
                   withRaised({{1000, 1007, 6.0}, {1007, 1020, 5.5}, {3000, 3007, other_dB}}))
            .saturated();
    };
    EXPECT_TRUE(saturatedBeside(6.0));
    EXPECT_FALSE(saturatedBeside(5.99));
    EXPECT_FALSE(saturatedBeside(6.01));
}

TEST(PeakGroup, OnlyWhatIsAsHighAsTheHighestIsHiddenByAnOverload)
{
    const PeakGroup group {{100.0, 120.0, 140.0}, {5.8, 6.0, 5.6}, 200.0, 4.0};
    EXPECT_EQ(group.hiddenAt_dB(0), 4.0);
    EXPECT_EQ(group.hiddenAt_dB(1), 4.0);
    EXPECT_EQ(group.hiddenAt_dB(2), 0.0);
}

TEST(PeakGroup, FurtherRisesInTheDeadZoneAreReflections)
{
    const PeakGroup found =
        measuredAt1000(withRaised({{1000, 1060, 3.0}, {1018, 1060, 3.0}, {1050, 1060, 3.0}}));
    ASSERT_EQ(found.feet.size(), 3U);
    EXPECT_NEAR(found.feet[1], 1017.5, 1e-9);
    EXPECT_NEAR(found.feet[2], 1049.5, 1e-9);
    EXPECT_NEAR(found.heights_dB[0], 3.0, 1e-9);
    EXPECT_NEAR(found.heights_dB[1], 6.0, 1e-9);
    EXPECT_NEAR(found.heights_dB[2], 9.0, 1e-9);
}

/// The place behind it begins where the light rises anew.
TEST(PeakGroup, WhatRisesWhereItMustEndIsNotItsOwn)
{
    const DrawnFibre fibre = withRaised({{1000, 1060, 3.0}, {1050, 1070, 3.0}});
    const PeakGroup found = measurePeak(*fibre, 1000.0, 0.0, 1049.0);
    EXPECT_EQ(found.feet.size(), 1U);
    EXPECT_LE(found.behind, 1049.0);
}

/// A splitter three pulses in front of it: the line down its ramp would go on to fall.
TEST(PeakGroup, HeightIsNotThatAboveTheRampOfALoss)
{
    const otdr::PulseShape shape(20.0, 1.6);
    otdr::SearchScale scale = scaleOf(20.0, 10000.0);
    const DrawnFibre fibre(4000, scale, [&](double i) {
        return eventLevel_dB(shape, i - 940.0, 40.0, 30.0)
            + eventLevel_dB(shape, i - 1000.0, 0.0, 0.0, 8.0);
    });
    const PeakGroup found = measurePeak(*fibre, 1000.0, 0.0, 4000.0);
    EXPECT_NEAR(found.heights_dB.front(), 8.0, 0.1);
}

/// A splitter five pulses in front of it: all the light before that stands above the ramp, on which
/// a slow receiver has not yet come down.
TEST(PeakGroup, FootIsNotSoughtInTheLightBeforeALoss)
{
    const otdr::PulseShape slow(20.0, 20.0);
    for (double loss = 890.0; loss <= 920.0; loss += 5.0) {
        const DrawnFibre fibre(
            4000, scaleOf(20.0, 1000.0),
            [&](double i) {
                return eventLevel_dB(slow, i - loss, 40.0, 30.0)
                    + eventLevel_dB(slow, i - 1000.0, 0.0, 0.0, 14.0);
            },
            0.003);
        const PeakGroup found = measurePeak(*fibre, 1000.0, 0.0, 4000.0);
        EXPECT_GT(found.feet.front(), 1000.0 - 3.0 * 20.0) << loss;
        EXPECT_NEAR(highestFoot(found), 1000.0, 20.0) << loss;
    }
}

/// A reflection that holds the receiver at its top may be offered by its end.
TEST(PeakGroup, IsMeasuredFromItsFootWhereverItWasOffered)
{
    const DrawnFibre fibre = withRaised({{1000, 1100, 12.0}});
    for (const double at : {990.0, 1000.0, 1050.0, 1095.0}) {
        const PeakGroup found = measurePeak(*fibre, at, 880.0, 4000.0);
        EXPECT_NEAR(found.feet.front(), 999.5, 1.0) << at;
        EXPECT_NEAR(found.height_dB(), 12.0, 0.1) << at;
        EXPECT_GE(found.behind, 1100.0) << at;
    }
}

/// What rises again within half a pulse is the same edge, seen by a receiver that rings.
TEST(PeakGroup, ARiseInTwoStepsIsOneReflection)
{
    const PeakGroup found =
        measuredAt1000(withRaised({{1000, 1040, 3.0}, {1018, 1040, 3.0}, {1028, 1040, 3.0}}));
    ASSERT_EQ(found.feet.size(), 2U);
    EXPECT_NEAR(found.feet[1], 1017.5, 1e-9);
}

TEST(PeakGroup, ARiseOfLessThanThreeTenthsIsNone)
{
    const auto feet = [](double rise_dB) {
        return measuredAt1000(withRaised({{1000, 1040, 3.0}, {1018, 1040, rise_dB}})).feet.size();
    };
    EXPECT_EQ(feet(0.29), 1U);
    EXPECT_EQ(feet(0.31), 2U);
}

/// Above the line through a loss and the fibre on both sides of it, the fibre behind seems to rise.
TEST(PeakGroup, IsNotSoughtAboveTheLineThroughALoss)
{
    const TraceBuilder link = quiet().splice(5_km, 3.6_dB);
    const auto trace = link.build();
    const double pulse = link.pulseSamples();
    const FibreTrace fibre(*trace,
                           {pulse, 0.08 * pulse, static_cast<double>(trace->size()), 1000.0});
    const double at = link.indexOf(5_km);
    EXPECT_TRUE(isBehindALoss(fibre, at + 6.0 * pulse, 100.0));
    EXPECT_FALSE(isBehindALoss(fibre, at - 2.0 * pulse, 100.0));
    EXPECT_FALSE(isBehindALoss(fibre, at + 40.0 * pulse, 100.0));
    EXPECT_FALSE(isBehindALoss(fibre, at + 6.0 * pulse, at + 2.0 * pulse))
        << "the fibre begins there";
}

} // namespace
