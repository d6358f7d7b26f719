#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/pulseshape.h"
#include "platform/otdr/core/reflectance.h"
#include "tests/platform/otdr/core/drawnfibre.h"
#include "tests/support/tracebuilder.h"
#include "tests/support/uniformreturnloss.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using namespace testing_support;
using otdr::DetectedEvent;

/// The trace of a link whose 0 m lies at a sample of it.
otdr::Trace withZeroAt(const TraceBuilder& builder, double index)
{
    const auto plain = builder.build();
    otdr::TraceAxis axis = plain->axis();
    axis.firstSample_ns = -index * axis.sampleInterval_ns;
    return {plain->samples(), plain->dbPerCount(), axis};
}

/// Losses of all events and sections, as far as they are known.
double sumOf(const otdr::Detection& found)
{
    double sum = 0.0;
    for (const DetectedEvent& event : found.events) {
        sum += std::isnan(event.loss_dB) || event.echo ? 0.0 : event.loss_dB;
    }
    for (const otdr::DetectedSection& section : found.sections) {
        sum += std::isnan(section.loss_dB) ? 0.0 : section.loss_dB;
    }
    return sum;
}

/// A launch fibre that is joined without a loss: the span is what lies behind the joint.
TEST(DetectedSpan, ThatStartsOnBareFibreIsMeasuredFromThereOn)
{
    for (const double pulse_ns : {100.0, 2000.0}) {
        const TraceBuilder builder = TraceBuilder()
                                         .fibre(12_km)
                                         .behind(3000)
                                         .pulse(pulse_ns)
                                         .noise(0.01_dB, 21)
                                         .noiseFloor(8_dB)
                                         .splice(6_km, 0.1_dB);
        const otdr::Trace trace = withZeroAt(builder, builder.indexOf(2_km));
        const otdr::Detection found =
            otdr::detectEvents(trace, {pulse_ns, builder.metresPerNs(), -80.0});
        ASSERT_EQ(found.events.size(), 3U);
        EXPECT_TRUE(std::isnan(found.events[0].loss_dB)) << "nothing is seen there";
        EXPECT_NEAR(found.spanLoss_dB, 10.0 * 0.2 + 0.1, 0.01);
        EXPECT_NEAR(sumOf(found), found.spanLoss_dB, 1e-9);
        ASSERT_EQ(found.sections.size(), 2U);
        EXPECT_NEAR(found.sections[0].loss_dB, 4.0 * 0.2, 0.01);
        EXPECT_NEAR(found.sections[0].attenuation_dBPerKm, 0.2, 0.005);
        const double whole = uniformReturnLoss_dB(4000.0, 0.2, -80.0, builder.metresPerNs());
        EXPECT_NEAR(found.sections[0].returnLoss_dB, whole, 0.05);
    }
}

TEST(DetectedSpan, StartComesBeforeTheEndWhereBothStandAtTheLastSample)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).noise(0.01_dB, 22);
    const otdr::Trace trace = withZeroAt(builder, 1e9);
    const otdr::Detection found = otdr::detectEvents(trace, {100.0, builder.metresPerNs(), -80.0});
    ASSERT_EQ(found.events.size(), 2U);
    EXPECT_EQ(found.events[0].kind, DetectedEvent::Kind::Start);
    EXPECT_EQ(found.events[1].kind, DetectedEvent::Kind::End);
    EXPECT_EQ(found.events[0].index, found.events[1].index);
}

/// Powers add: what the fibre scatters back, and what its end reflects, through the fibre and back.
TEST(DetectedSpan, ReturnLossCountsWhatTheEndReflects)
{
    const TraceBuilder cut = TraceBuilder().fibre(12_km).behind(3000).noise(0.002_dB, 23);
    const TraceBuilder open = TraceBuilder(cut).reflectingEnd(15_dB);
    const auto detected = [](const TraceBuilder& builder) {
        const auto trace = builder.build();
        return otdr::detectEvents(*trace, {100.0, builder.metresPerNs(), -80.0});
    };
    const double scattered = std::pow(10.0, -0.1 * detected(cut).returnLoss_dB);
    const otdr::Detection found = detected(open);
    const double seen_dB = found.events.back().reflectance_dB - 2.0 * found.spanLoss_dB;
    const double reflected = std::pow(10.0, 0.1 * seen_dB);
    EXPECT_NEAR(found.returnLoss_dB, -10.0 * std::log10(scattered + reflected), 0.05);
    EXPECT_LT(found.returnLoss_dB, detected(cut).returnLoss_dB - 1.0);
}

/// A sample of a nanosecond and a metre; 30 km that lose 6 dB, behind a port that a pulse enters at
/// the first of them. What a pulse shows of a fibre is what lies half of it before.
DrawnFibre fibreBehindAPort(double pulse)
{
    constexpr double kEnd = 30000.0;
    const otdr::PulseShape shape(pulse, 0.08 * pulse);
    return {34000, scaleOf(pulse), [=](double i) {
                const double fibre_dB = 45.0 - 0.0002 * (i - shape.centre());
                const double entered = shape.step(i) - shape.step(i - kEnd);
                return std::max(dark_dB(i), fibre_dB + 5.0 * std::log10(entered + 1e-9));
            }};
}

TEST(DetectedSpan, ReturnLossDoesNotDependOnThePulse)
{
    for (const double pulse : {20.0, 400.0, 2000.0}) {
        const DrawnFibre fibre = fibreBehindAPort(pulse);
        const otdr::Detection found = otdr::detectEvents(fibre->samples(), {pulse, 1.0, -80.0});
        const double expected_dB = uniformReturnLoss_dB(30000.0, 0.2, -80.0, 1.0);
        EXPECT_NEAR(found.returnLoss_dB, expected_dB, 0.02) << pulse;
        ASSERT_EQ(found.sections.size(), 1U);
        EXPECT_NEAR(found.sections[0].returnLoss_dB, expected_dB, 0.02) << pulse;
    }
}

/// The same behind a launch fibre of 2 km: the fibre of 3 km that follows begins with a connector
/// of a loss and a reflectance.
DrawnFibre fibreBehindALaunchFibre(double pulse, double loss_dB, double reflectance)
{
    constexpr double kStart = 2000.0;
    constexpr double kEnd = 5000.0;
    const otdr::PulseShape shape(pulse, 0.08 * pulse);
    const double height_dB = otdr::peakHeight_dB(reflectance, -80.0, pulse);
    return {12000, scaleOf(pulse), [=](double i) {
                const double fibre_dB = 45.0 - 0.0002 * (i - shape.centre());
                const double start_dB = 45.0 - 0.0002 * kStart;
                const double past = shape.step(i - kStart);
                const double fibre = powerRatio(fibre_dB)
                    * (shape.step(i) - past + powerRatio(-loss_dB) * (past - shape.step(i - kEnd)));
                const double light =
                    powerRatio(start_dB) * (powerRatio(height_dB) - 1.0) * shape.peak(i - kStart);
                return std::max(dark_dB(i), 5.0 * std::log10(fibre + light + 1e-9));
            }};
}

/// The first connector of a link is what a launch fibre is for.
TEST(DetectedSpan, HoldsTheConnectorAtItsStartWhereALaunchFibreShowsIt)
{
    constexpr double kLoss_dB = 0.4;
    for (const double pulse : {20.0, 100.0}) {
        for (const double reflectance : {-60.0, -45.0}) {
            const DrawnFibre fibre = fibreBehindALaunchFibre(pulse, kLoss_dB, reflectance);
            const otdr::Trace trace(fibre->samples().samples(), fibre->samples().dbPerCount(),
                                    {1.0, -2000.0});
            const otdr::Detection found = otdr::detectEvents(trace, {pulse, 1.0, -80.0});
            const auto start =
                std::find_if(found.events.begin(), found.events.end(), [](const auto& event) {
                    return event.kind == DetectedEvent::Kind::Start;
                });
            ASSERT_EQ(std::distance(start, found.events.end()), 2) << "start and end";
            EXPECT_NEAR(start->loss_dB, kLoss_dB, 0.002) << pulse;
            EXPECT_NEAR(found.spanLoss_dB, 3.0 * 0.2 + kLoss_dB, 0.002) << pulse;
            EXPECT_NEAR(found.spanLoss_dB, start->loss_dB + found.sections.back().loss_dB, 1e-9);
            const double fibre_dB = uniformReturnLoss_dB(3000.0, 0.2, -80.0, 1.0) + 2.0 * kLoss_dB;
            const double together =
                std::pow(10.0, -0.1 * fibre_dB) + std::pow(10.0, 0.1 * reflectance);
            EXPECT_NEAR(found.returnLoss_dB, -10.0 * std::log10(together), 0.02) << pulse;
        }
    }
}

/// Connectors hide some of the fibre beside them, and the more of it the longer the pulse is.
TEST(DetectedSpan, ReturnLossOfASectionIsThatOfItsFibre)
{
    for (const double pulse_ns : {100.0, 1000.0, 3000.0}) {
        const TraceBuilder builder = TraceBuilder()
                                         .fibre(12_km)
                                         .behind(3000)
                                         .pulse(pulse_ns)
                                         .noise(0.002_dB, 26)
                                         .connector(4_km, 0.3_dB, 14_dB)
                                         .splice(6_km, 0.2_dB)
                                         .connector(8_km, 0.1_dB, 14_dB);
        const otdr::Detection found =
            otdr::detectEvents(*builder.build(), {pulse_ns, builder.metresPerNs(), -80.0});
        ASSERT_EQ(found.sections.size(), 4U) << pulse_ns;
        for (const otdr::DetectedSection& section : found.sections) {
            const double length_m =
                (section.to - section.from) * 10.0 * builder.metresPerNs(); // 10 ns a sample
            EXPECT_NEAR(section.returnLoss_dB,
                        uniformReturnLoss_dB(length_m, 0.2, -80.0, builder.metresPerNs()), 0.03)
                << pulse_ns << " " << section.from;
        }
    }
}

/// The fibre behind the start begins behind the reflection of the port, and behind the start.
TEST(DetectedSpan, StartIsFollowedByFibre)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(12_km)
                                     .behind(3000)
                                     .noise(0.002_dB, 23)
                                     .reflection(Length {0.0}, 10_dB);
    for (const double zero : {0.0, builder.indexOf(2_km)}) {
        const otdr::Trace trace = withZeroAt(builder, zero);
        const otdr::Detection found =
            otdr::detectEvents(trace, {100.0, builder.metresPerNs(), -80.0});
        EXPECT_NEAR(found.events.front().index, zero, 1.0);
        EXPECT_GE(found.events.front().behindFrom, std::max(zero, builder.pulseSamples()));
        EXPECT_LE(found.events.front().behindFrom, zero + 10.0 * builder.pulseSamples());
    }
}

/// Some samples between two splices show hardly any slope: the lines beside them, which know the
/// fibre, tell it.
TEST(DetectedSpan, AttenuationOfASectionIsItsLossOverItsLengthHoweverShortItIs)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(12_km)
                                     .behind(3000)
                                     .noise(0.003_dB, 27)
                                     .splice(4_km, 0.3_dB)
                                     .splice(4040_m, 0.3_dB)
                                     .connector(8_km, 0.2_dB, 12_dB);
    const otdr::Detection found =
        otdr::detectEvents(*builder.build(), {100.0, builder.metresPerNs(), -80.0});
    ASSERT_EQ(found.sections.size(), 4U);
    for (const otdr::DetectedSection& section : found.sections) {
        const double length_km = (section.to - section.from) * 0.01 * builder.metresPerNs();
        EXPECT_NEAR(section.attenuation_dBPerKm, section.loss_dB / length_km, 1e-9);
        EXPECT_NEAR(section.attenuation_dBPerKm, 0.2, 0.01);
    }
}

/// What is too small to be listed is part of the section that it lies in.
TEST(DetectedSpan, SectionsHoldTheLossesThatAreNotListed)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(12_km)
                                     .behind(3000)
                                     .noise(0.002_dB, 23)
                                     .splice(4_km, 0.1_dB)
                                     .splice(5_km, 0.01_dB)
                                     .splice(6_km, 0.2_dB);
    const auto trace = builder.build();
    const otdr::Detection found = otdr::detectEvents(*trace, {100.0, builder.metresPerNs(), -80.0});
    ASSERT_EQ(found.events.size(), 4U);
    EXPECT_NEAR(found.events[1].loss_dB, 0.1, 0.001);
    EXPECT_NEAR(found.events[2].loss_dB, 0.2, 0.001);
    ASSERT_EQ(found.sections.size(), 3U);
    const double fibre_dB = found.sections[2].loss_dB / 6.0; // in a kilometre
    EXPECT_NEAR(found.sections[1].loss_dB, 2.0 * fibre_dB + 0.01, 0.001);
    EXPECT_NEAR(sumOf(found), found.spanLoss_dB, 1e-9);
}

/// A connector so close to the end, or to the port, that no fibre shows beside it has no loss of
/// its own: the span is that of what was measured.
TEST(DetectedSpan, IsTheSumOfWhatIsKnownWhereverTheLastAndTheFirstConnectorStand)
{
    for (double away_m = 2.0; away_m < 200.0; away_m += 2.0) {
        for (const double at_m : {away_m, 12000.0 - away_m}) {
            const TraceBuilder builder = TraceBuilder()
                                             .fibre(12_km)
                                             .behind(3000)
                                             .reflection(0_km, 12_dB)
                                             .noise(0.005_dB, 24)
                                             .noiseFloor(8_dB)
                                             .splice(6_km, 0.1_dB)
                                             .connector(Length {at_m}, 0.3_dB, 8_dB);
            const otdr::Detection found =
                otdr::detectEvents(*builder.build(), {100.0, builder.metresPerNs(), -80.0});
            EXPECT_NEAR(sumOf(found), found.spanLoss_dB, 1e-9) << at_m;
            EXPECT_NEAR(found.spanLoss_dB, 12.0 * 0.2 + 0.1 + 0.3, 0.35) << at_m;
        }
    }
}

/// A link with an echo 12 km from the port: what reflects at 8 km is seen once more as far behind
/// as 4 km lie before.
TraceBuilder linkWithEcho(Length length)
{
    return TraceBuilder()
        .fibre(length)
        .behind(3000)
        .noise(0.005_dB, 25)
        .noiseFloor(8_dB)
        .connector(4_km, 0.3_dB, 20_dB)
        .connector(8_km, 0.3_dB, 20_dB)
        .reflection(12_km, 1_dB);
}

/// The echo at 12 km; empty where none is told.
std::optional<DetectedEvent> echoOf(const otdr::Detection& found, double index)
{
    for (const DetectedEvent& event : found.events) {
        if (event.echo && std::abs(event.index - index) < 3.0) {
            return event;
        }
    }
    return std::nullopt;
}

TEST(DetectedSpan, IsTheSumWhereAnEchoStandsInTheDeadZoneOfTheEnd)
{
    for (double behind_m = 10.0; behind_m < 25.0; behind_m += 2.0) {
        const TraceBuilder builder = linkWithEcho(Length {12000.0 + behind_m}).reflectingEnd(15_dB);
        const otdr::Detection found =
            otdr::detectEvents(*builder.build(), {100.0, builder.metresPerNs(), -80.0});
        EXPECT_TRUE(echoOf(found, builder.indexOf(12_km))) << behind_m;
        EXPECT_NEAR(sumOf(found), found.spanLoss_dB, 1e-9) << behind_m;
    }
}

/// Light on a detour is none of the fibre that it seems to come from.
TEST(DetectedSpan, EchoesChangeNeitherSlopeNorReturnLossOfTheFibreTheyLieOn)
{
    const Length length {12600.0}; // an echo makes 0.006 dB of the return loss
    for (const TraceBuilder& builder :
         {linkWithEcho(length), linkWithEcho(length).reflection(12300_m, 1_dB)}) {
        const otdr::Detection found =
            otdr::detectEvents(*builder.build(), {100.0, builder.metresPerNs(), -80.0});
        ASSERT_TRUE(echoOf(found, builder.indexOf(12_km)));
        ASSERT_GE(found.sections.size(), 3U);
        const otdr::DetectedSection& section = found.sections[2];
        EXPECT_NEAR(section.attenuation_dBPerKm, 0.2, 0.0005);
        const double length_m = (section.to - section.from) * 10.0 * builder.metresPerNs();
        EXPECT_NEAR(section.returnLoss_dB,
                    uniformReturnLoss_dB(length_m, 0.2, -80.0, builder.metresPerNs()), 0.003);
    }
}

/// The loss of a group is that of what is there, and not of the echo in front of it.
TEST(DetectedSpan, LossBehindAnEchoIsThatOfTheEventInItsDeadZone)
{
    for (double behind_m = 9.5; behind_m < 15.0; behind_m += 0.5) {
        const Length connector {12000.0 + behind_m};
        const TraceBuilder builder = linkWithEcho(16_km).connector(connector, 0.018_dB, 5_dB);
        const otdr::Detection found =
            otdr::detectEvents(*builder.build(), {100.0, builder.metresPerNs(), -80.0});
        ASSERT_TRUE(echoOf(found, builder.indexOf(12_km))) << behind_m;
        EXPECT_TRUE(std::isnan(echoOf(found, builder.indexOf(12_km))->loss_dB));
        const auto event =
            std::find_if(found.events.begin(), found.events.end(), [&](const auto& other) {
                return !other.echo && std::abs(other.index - builder.indexOf(connector)) < 2.0;
            });
        ASSERT_NE(event, found.events.end()) << behind_m;
        EXPECT_NEAR(event->loss_dB, 0.018, 0.004);
        EXPECT_NEAR(sumOf(found), found.spanLoss_dB, 1e-9) << behind_m;
    }
}

/// The light of a reflection that is not listed rises before that of another: the loss is told
/// where it is listed.
TEST(DetectedSpan, IsTheSumWhereReflectionsTooWeakToBeListedStandTogether)
{
    otdr::DetectionSettings settings;
    settings.reflectance_dB = -40.0;
    for (double apart_m = 2.0; apart_m < 20.0; apart_m += 1.0) {
        const TraceBuilder builder = TraceBuilder()
                                         .fibre(12_km)
                                         .behind(3000)
                                         .noise(0.005_dB, 26)
                                         .noiseFloor(8_dB)
                                         .connector(6_km, 0.1_dB, 1_dB)
                                         .connector(Length {6000.0 + apart_m}, 0.4_dB, 3_dB);
        const otdr::Detection found =
            otdr::detectEvents(*builder.build(), {100.0, builder.metresPerNs(), -80.0}, settings);
        ASSERT_EQ(found.events.size(), 3U) << apart_m;
        EXPECT_EQ(found.events[1].kind, DetectedEvent::Kind::NonReflective);
        EXPECT_NEAR(found.events[1].loss_dB, 0.5, 0.005) << apart_m;
        EXPECT_NEAR(sumOf(found), found.spanLoss_dB, 1e-9) << apart_m;
    }
}

} // namespace
