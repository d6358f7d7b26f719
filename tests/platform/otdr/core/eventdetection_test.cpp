#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/reflectance.h"
#include "tests/platform/otdr/core/detectedlink.h"
#include "tests/platform/otdr/core/kindsof.h"
#include "tests/support/tracebuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace testing_support;
using otdr::DetectedEvent;
using otdr::Detection;
using Kind = DetectedEvent::Kind;
using Evidence = DetectedEvent::Evidence;

const DetectedEvent* nearest(const Detection& detection, double index)
{
    const DetectedEvent* best = nullptr;
    for (const DetectedEvent& event : detection.events) {
        if (best == nullptr || std::abs(event.index - index) < std::abs(best->index - index)) {
            best = &event;
        }
    }
    return best;
}

TEST(EventDetection, FindsOnlyTheEndsOfABareFibre)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        EXPECT_EQ(kindsOf(detect(link(seed))), "se") << seed;
    }
}

TEST(EventDetection, FindsASpliceAndMeasuresItWithinItsError)
{
    const TraceBuilder builder = link().splice(5_km, 0.1_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sne");
    const DetectedEvent& splice = found.events[1];
    // The trace is drawn without a receiver, whose delay of a fifth of a pulse is counted on.
    EXPECT_NEAR(splice.index, builder.indexOf(5_km), 3.0);
    EXPECT_LT(splice.lossError_dB, 0.002);
    EXPECT_NEAR(splice.loss_dB, 0.1, 4.0 * splice.lossError_dB);
    EXPECT_EQ(splice.evidence, Evidence::Loss);
    EXPECT_TRUE(std::isnan(splice.reflectance_dB));
}

TEST(EventDetection, FindsStepsOfEightErrorsWhereverTheyStand)
{
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        const auto at = Length {1500.0 + 900.0 * static_cast<double>(seed)};
        const TraceBuilder builder = link(seed).splice(at, 0.03_dB);
        const Detection found = detect(builder);
        ASSERT_EQ(kindsOf(found), "sne") << seed;
        EXPECT_NEAR(found.events[1].index, builder.indexOf(at), 10.0) << seed;
    }
}

TEST(EventDetection, CallsARiseOfTheLevelAGain)
{
    const Detection found = detect(link().splice(6_km, Decibels {-0.15}));
    ASSERT_EQ(kindsOf(found), "spe");
    EXPECT_NEAR(found.events[1].loss_dB, -0.15, 0.005);
}

TEST(EventDetection, TellsPlaceLossAndReflectanceOfAConnector)
{
    const TraceBuilder builder = link().connector(7_km, 0.3_dB, 9_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    const DetectedEvent& connector = found.events[1];
    EXPECT_NEAR(connector.index, builder.indexOf(7_km), 1.0);
    EXPECT_NEAR(connector.loss_dB, 0.3, 0.005);
    EXPECT_NEAR(connector.reflectance_dB, otdr::reflectance_dB(9.0, kBackscatter_dB, kPulse_ns),
                0.3);
    EXPECT_FALSE(connector.saturated());
}

/// A receiver that is overloaded stays so for longer than the pulse: what is told of the peak is a
/// bound.
TEST(EventDetection, ATopLongerThanThePulseIsSaturatedAndCostsReturnLoss)
{
    const Detection plain = detect(link());
    const Detection found =
        detect(link().connector(7_km, 0.3_dB, 30_dB).reflection(7.008_km, 30_dB));
    const DetectedEvent* peak = nearest(found, link().indexOf(7_km));
    ASSERT_NE(peak, nullptr);
    EXPECT_EQ(peak->kind, Kind::Reflective);
    EXPECT_TRUE(peak->saturated());
    EXPECT_LT(found.returnLoss_dB, plain.returnLoss_dB - 3.0);
    // It alone, seen through 7 km of fibre, takes the return loss of the span below this.
    EXPECT_LT(found.returnLoss_dB, 2.0 * 7.0 * 0.2 - peak->reflectance_dB + 0.1);
}

TEST(EventDetection, FindsALowReflectionOnALoss)
{
    const TraceBuilder builder = link().connector(7_km, 0.2_dB, 0.4_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(7_km), 2.0);
    EXPECT_NEAR(found.events[1].loss_dB, 0.2, 0.005);
}

/// The lines that reflections are sought above run over the splice at first.
TEST(EventDetection, FindsReflectionsWithinSomePulsesBehindALoss)
{
    for (const double loss_dB : {0.3, 1.0}) {
        for (const double height_dB : {3.0, 8.0}) {
            for (const double away_m : {60.0, 100.0, 200.0, 300.0}) {
                const TraceBuilder builder =
                    TraceBuilder()
                        .fibre(2_km)
                        .behind(3000)
                        .noise(0.002_dB, 25)
                        .noiseFloor(14_dB)
                        .splice(1_km, Decibels {loss_dB})
                        .reflection(Length {1000.0 + away_m}, Decibels {height_dB});
                const Detection found = detect(builder);
                ASSERT_EQ(found.events.size(), 4U) << kindsOf(found) << height_dB << ' ' << away_m;
                EXPECT_EQ(found.events[2].kind, Kind::Reflective) << height_dB << ' ' << away_m;
                EXPECT_NEAR(found.events[1].loss_dB, loss_dB, 0.01) << height_dB << ' ' << away_m;
                EXPECT_NEAR(found.events[2].height_dB, height_dB, 0.05) << loss_dB << ' ' << away_m;
            }
        }
    }
}

TEST(EventDetection, LossesOfEventsAndSectionsAddUpToThatOfTheSpan)
{
    const Detection found = detect(link()
                                       .splice(2_km, 0.1_dB)
                                       .connector(4_km, 0.4_dB, 6_dB)
                                       .splice(7_km, Decibels {-0.08})
                                       .splice(9_km, 0.2_dB));
    ASSERT_EQ(kindsOf(found), "snrpne");
    double sum = 0.0;
    for (const DetectedEvent& event : found.events) {
        sum += std::isnan(event.loss_dB) ? 0.0 : event.loss_dB;
    }
    for (const otdr::DetectedSection& section : found.sections) {
        sum += section.loss_dB;
    }
    EXPECT_EQ(found.sections.size(), 5U);
    EXPECT_NEAR(sum, found.spanLoss_dB, 1e-9);
    EXPECT_NEAR(found.spanLoss_dB, 12.0 * 0.2 + 0.62, 0.02);
}

TEST(EventDetection, SectionsTellTheirAttenuation)
{
    const Detection found = detect(link().attenuation(0.34_dB).splice(5_km, 0.1_dB));
    ASSERT_EQ(found.sections.size(), 2U);
    for (const otdr::DetectedSection& section : found.sections) {
        EXPECT_NEAR(section.attenuation_dBPerKm, 0.34, 0.003);
    }
}

TEST(EventDetection, ValuesThatCouldNotBeMeasuredAreUnknown)
{
    const Detection found = detect(link());
    ASSERT_EQ(kindsOf(found), "se");
    EXPECT_TRUE(std::isnan(found.events.back().loss_dB));
    EXPECT_TRUE(std::isnan(found.events.front().loss_dB));
}

TEST(EventDetection, WithoutABackscatterCoefficientThereIsNoReflectance)
{
    const TraceBuilder builder = link().connector(7_km, 0.3_dB, 9_dB);
    otdr::Measurement measurement = measurementOf(builder);
    measurement.backscatter_dB = std::nan("");
    const Detection found = otdr::detectEvents(*builder.build(), measurement);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_TRUE(std::isnan(found.events[1].reflectance_dB));
    EXPECT_NEAR(found.events[1].height_dB, 9.0, 0.3);
}

TEST(EventDetection, PeaksWithinADeadZoneAreOneGroupWithOneLoss)
{
    const TraceBuilder builder =
        link().connector(5_km, 0.2_dB, 6_dB).connector(5.012_km, 0.1_dB, 9_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "srre");
    EXPECT_EQ(found.events[1].group, found.events[2].group);
    EXPECT_NEAR(found.events[1].index, builder.indexOf(5_km), 1.5);
    EXPECT_NEAR(found.events[2].index, builder.indexOf(5.012_km), 2.5);
    EXPECT_NEAR(found.events[1].loss_dB, 0.3, 0.01);
    EXPECT_TRUE(std::isnan(found.events[2].loss_dB));
    EXPECT_EQ(found.events[2].evidence, Evidence::Foot);
}

TEST(EventDetection, WithoutAnEndInTheRecordItSaysSo)
{
    const Detection found =
        detect(TraceBuilder().fibre(12_km).noise(0.01_dB, 22).splice(5_km, 0.2_dB));
    ASSERT_EQ(kindsOf(found), "sne");
    EXPECT_EQ(found.events.back().evidence, Evidence::Range);
    EXPECT_TRUE(std::isnan(found.end));
}

TEST(EventDetection, EndIsWhereLightFalls)
{
    const TraceBuilder cut = link();
    EXPECT_NEAR(detect(cut).end, cut.indexOf(12_km), 2.0);
    const TraceBuilder open = link().reflection(12_km, 14_dB);
    EXPECT_NEAR(detect(open).end, open.indexOf(12_km), 2.0);
}

/// 2 km to the reflector and back to the port, which reflects too: an echo at 4 km.
TEST(EventDetection, KnowsAnEchoByItsPlaceAndStrength)
{
    const Detection found = detect(
        link().launch(40_dB).reflection(2_km, 22_dB).reflection(4_km, 1_dB).reflection(7_km, 1_dB));
    ASSERT_EQ(kindsOf(found), "srrre");
    EXPECT_FALSE(found.events[1].echo);
    EXPECT_TRUE(found.events[2].echo);
    EXPECT_FALSE(found.events[3].echo);
}

TEST(EventDetection, AStrongPeakAtTheEchosPlaceIsNoEcho)
{
    const Detection found = detect(link().reflection(2_km, 8_dB).reflection(4_km, 8_dB));
    ASSERT_EQ(kindsOf(found), "srre");
    EXPECT_FALSE(found.events[2].echo);
}

TEST(EventDetection, LossAtTheEchosPlaceIsNoEcho)
{
    const Detection found =
        detect(link().launch(40_dB).reflection(2_km, 22_dB).connector(4_km, 0.3_dB, 1_dB));
    ASSERT_EQ(kindsOf(found), "srre");
    EXPECT_FALSE(found.events[2].echo);
}

TEST(EventDetection, ListsNoLossBelowItsThreshold)
{
    otdr::DetectionSettings settings;
    settings.loss_dB = 0.15;
    const Detection found = detect(link().splice(2_km, 0.1_dB).splice(8_km, 0.2_dB), settings);
    ASSERT_EQ(kindsOf(found), "sne");
    EXPECT_NEAR(found.events[1].loss_dB, 0.2, 0.01);
}

/// Reflections of -65 to -42 dB, where the user asks for those from -40 dB on.
TEST(EventDetection, ListsALossWithoutItsReflectionBelowTheThresholdOfThat)
{
    otdr::DetectionSettings settings;
    settings.reflectance_dB = -40.0;
    for (const double height_dB : {0.3, 1.0, 3.0, 6.0, 9.0}) {
        for (const double loss_dB : {0.1, 0.3}) {
            const TraceBuilder builder =
                link().connector(5_km, Decibels {loss_dB}, Decibels {height_dB});
            const Detection found = detect(builder, settings);
            ASSERT_EQ(kindsOf(found), "sne") << height_dB << ' ' << loss_dB;
            EXPECT_NEAR(found.events[1].loss_dB, loss_dB, 0.01) << height_dB;
            EXPECT_NEAR(found.events[1].index, builder.indexOf(5_km), 2.0) << height_dB;
            EXPECT_EQ(found.events[1].peakStatistic, 0.0) << height_dB;
            EXPECT_TRUE(std::isnan(found.events[1].reflectance_dB)) << height_dB;
        }
        EXPECT_EQ(kindsOf(detect(link().reflection(5_km, Decibels {height_dB}), settings)), "se")
            << height_dB;
    }
}

TEST(EventDetection, SameTraceGivesTheSameEvents)
{
    const TraceBuilder builder = link().splice(4_km, 0.1_dB).connector(8_km, 0.2_dB, 5_dB);
    const Detection one = detect(builder);
    const Detection other = detect(builder);
    ASSERT_EQ(one.events.size(), other.events.size());
    for (std::size_t i = 0; i < one.events.size(); ++i) {
        EXPECT_EQ(one.events[i].index, other.events[i].index);
        EXPECT_EQ(one.events[i].stepStatistic, other.events[i].stepStatistic);
    }
}

/// 0 m lies 2 km into the record: what stands there is the start of the span.
TEST(EventDetection, SpanStartsAtTheUsersZero)
{
    const TraceBuilder builder = link().connector(2_km, 0.2_dB, 6_dB).splice(6_km, 0.1_dB);
    const auto plain = builder.build();
    otdr::TraceAxis axis = plain->axis();
    axis.firstSample_ns = -builder.indexOf(2_km) * axis.sampleInterval_ns;
    const otdr::Trace trace(plain->samples(), plain->dbPerCount(), axis);
    const Detection found = otdr::detectEvents(trace, measurementOf(builder));
    ASSERT_EQ(kindsOf(found), "sne");
    EXPECT_NEAR(found.events[0].index, builder.indexOf(2_km), 1.0);
    EXPECT_NEAR(found.events[0].loss_dB, 0.2, 0.01);
}

TEST(EventDetection, EveryEventTellsWhatSpeaksForIt)
{
    const Detection found = detect(link().splice(4_km, 0.1_dB).connector(8_km, 0.2_dB, 5_dB));
    ASSERT_EQ(kindsOf(found), "snre");
    EXPECT_GT(found.events[1].stepStatistic, 5.0);
    EXPECT_GT(found.events[2].peakStatistic, 5.0);
    for (std::size_t i = 1; i <= 2; ++i) {
        EXPECT_GT(found.events[i].before.samples, 1000U);
        EXPECT_GT(found.events[i].behind.samples, 1000U);
        EXPECT_GT(found.events[i].behindFrom, found.events[i].index);
    }
}

class AnySamples : public testing::TestWithParam<int>
{
protected:
    static std::vector<std::uint16_t> samples(int kind, std::size_t size)
    {
        std::mt19937 random(static_cast<unsigned>(kind));
        std::vector<std::uint16_t> counts(size);
        for (std::size_t i = 0; i < size; ++i) {
            const auto any = static_cast<std::uint16_t>(random());
            const std::uint16_t choices[] = {
                0,
                65535,
                any,
                static_cast<std::uint16_t>(i % 2 * 65535),
                static_cast<std::uint16_t>(i * 7),
                static_cast<std::uint16_t>(30000 + any % 100),
                static_cast<std::uint16_t>(any % 50 == 0 ? any : 40000)};
            counts[i] = choices[kind];
        }
        return counts;
    }
};

TEST_P(AnySamples, AreStoodWithEventsInOrderWithinTheTrace)
{
    for (const std::size_t size : {0U, 1U, 15U, 16U, 100U, 1000U, 20000U}) {
        const otdr::Trace trace(otdr::RawSamples(samples(GetParam(), size)), 0.001, {10.0, -500.0});
        for (const double pulse_ns : {0.0, 3.0, 100.0, 2500.0, 1e9}) {
            const Detection found = otdr::detectEvents(trace, {pulse_ns, 0.1, -80.0});
            double before = -1.0;
            for (const DetectedEvent& event : found.events) {
                EXPECT_GE(event.index, before);
                EXPECT_LE(event.index, static_cast<double>(size));
                before = event.index;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, AnySamples, testing::Range(0, 7));

TEST(EventDetection, ImpossibleMeasurementsGiveNothing)
{
    const auto trace = link().build();
    const double nan = std::nan("");
    EXPECT_TRUE(otdr::detectEvents(*trace, {0.0, 0.1, -80.0}).events.empty());
    EXPECT_TRUE(otdr::detectEvents(*trace, {nan, 0.1, -80.0}).events.empty());
    EXPECT_TRUE(otdr::detectEvents(*trace, {-100.0, 0.1, -80.0}).events.empty());
    EXPECT_TRUE(otdr::detectEvents(*trace, {1e9, 0.1, -80.0}).events.empty());
    for (const double interval_ns : {nan, 0.0, -10.0}) {
        const otdr::Trace odd(otdr::RawSamples(std::vector<std::uint16_t>(2000, 30000)),
                              otdr::kUsualDbPerCount, {interval_ns, 0.0});
        EXPECT_TRUE(otdr::detectEvents(odd, {100.0, 0.1, -80.0}).events.empty()) << interval_ns;
    }
    for (const double dbPerCount : {nan, 0.0, -0.001}) {
        const otdr::Trace odd(otdr::RawSamples(std::vector<std::uint16_t>(2000, 30000)), dbPerCount,
                              trace->axis());
        EXPECT_TRUE(otdr::detectEvents(odd, {100.0, 0.1, -80.0}).events.empty()) << dbPerCount;
    }
}

/// Of two reflections within a dead zone the user wants the second listed.
TEST(EventDetection, LossesAddUpWhereTheFirstReflectionOfAGroupIsNotListed)
{
    otdr::DetectionSettings settings;
    settings.reflectance_dB = -45.0;
    const TraceBuilder builder =
        link().connector(5_km, 0.2_dB, 3_dB).connector(5.012_km, 0.2_dB, 12_dB);
    const Detection found = detect(builder, settings);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(5.012_km), 2.0);
    EXPECT_NEAR(found.events[1].loss_dB + found.sections[0].loss_dB + found.sections[1].loss_dB,
                found.spanLoss_dB, 1e-9);
}

TEST(EventDetection, FindsALossBetweenSamplesThatLieKilometresApart)
{
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0.0, 10.0);
    std::vector<std::uint16_t> counts(400);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double level = 20000.0 + 2.0 * static_cast<double>(i) + (i < 200 ? 0.0 : 1000.0);
        counts[i] = static_cast<std::uint16_t>(level + noise(random));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {1e5, 0.0}); // 10 km
    const Detection found = otdr::detectEvents(trace, {1e5, 0.1, kBackscatter_dB});
    const DetectedEvent* loss = nearest(found, 200.0);
    ASSERT_NE(loss, nullptr);
    EXPECT_NEAR(loss->index, 200.0, 3.0);
    EXPECT_NEAR(loss->loss_dB, 1.0, 0.1);
}

TEST(EventDetection, WithoutAScaleInMetresPlacesAndLossesAreStillFound)
{
    const TraceBuilder builder = link().splice(5_km, 0.2_dB);
    const Detection found = otdr::detectEvents(*builder.build(), {kPulse_ns, 0.0, kBackscatter_dB});
    ASSERT_EQ(kindsOf(found), "sne");
    EXPECT_NEAR(nearest(found, builder.indexOf(5_km))->loss_dB, 0.2, 0.01);
    EXPECT_TRUE(std::isnan(found.sections[0].attenuation_dBPerKm));
}

/// 35 to 50 m behind the port, with a pulse of 10 m: the pigtail of a patch panel.
TEST(EventDetection, TellsTheFirstSpliceSomePulsesBehindThePort)
{
    for (const Decibels port : {0.5_dB, 4_dB, 10_dB}) {
        for (const double at_m : {36.0, 42.0, 50.0}) {
            const TraceBuilder builder =
                link().reflection(0_km, port).splice(Length {at_m}, 0.25_dB).splice(5_km, 0.1_dB);
            const Detection found = detect(builder);
            ASSERT_EQ(kindsOf(found), "snne") << port.dB << " " << at_m;
            EXPECT_NEAR(found.events[1].index, builder.indexOf(Length {at_m}),
                        0.25 * builder.pulseSamples());
            EXPECT_NEAR(found.events[1].loss_dB, 0.25, 4.0 * found.events[1].lossError_dB);
            EXPECT_LT(found.events[1].lossError_dB, 0.03);
        }
    }
}

} // namespace
