#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/pulseshape.h"
#include "platform/otdr/core/reflectance.h"
#include "tests/platform/otdr/core/drawnfibre.h"
#include "tests/platform/otdr/core/searchedlink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

using namespace testing_support;
using otdr::DetectedEvent;
using otdr::reflectance_dB;

constexpr double kReflectorAt = 6000.0; ///< samples
constexpr double kTimeConstant = 1.6; ///< samples, 0.08 pulses
constexpr double kWithin_dB = 0.15; ///< half of what reflectance is to be told to

/// What a reflection of this height above the fibre before it reflects.
double reflected_dB(double height_dB)
{
    return reflectance_dB(height_dB, -80.0, kPulse);
}

DetectedEvent foundAtReflector(const DrawnFibre& fibre)
{
    const otdr::Detection found = otdr::detectEvents(fibre->samples(), measurement());
    for (const DetectedEvent& event : found.events) {
        if (std::abs(event.index - kReflectorAt) < kPulse) {
            return event;
        }
    }
    ADD_FAILURE() << "nothing found";
    return {};
}

/// While the pulse passes a connector the fibre behind it, which is weaker, takes the place of that
/// before it: the light of the reflection stands on less and less.
TEST(DetectedReflectance, DoesNotDependOnTheLossOfTheEvent)
{
    for (const double height_dB : {1.0, 1.4, 1.6, 2.0, 3.0, 5.0, 10.0, 15.0}) {
        for (const double loss_dB : {-0.1, 0.0, 0.4, 3.5, 10.0}) {
            const DrawnFibre fibre = linkOf({{kReflectorAt, loss_dB, height_dB}}, kTimeConstant);
            const DetectedEvent event = foundAtReflector(fibre);
            EXPECT_NEAR(event.reflectance_dB, reflected_dB(height_dB), 2.0 * kWithin_dB)
                << height_dB << " " << loss_dB;
            EXPECT_NEAR(event.loss_dB, loss_dB, 0.05) << height_dB;
        }
    }
}

/// Nor on the receiver, as far as its own flanks tell how slow it is.
TEST(DetectedReflectance, DoesNotDependOnTheReceiver)
{
    for (const double timeConstant : {0.6, 1.6, 5.0, 10.0}) {
        const DrawnFibre fibre = linkOf(
            {{2000.0, 0.3, 9.0}, {4000.0, 0.2, 12.0}, {kReflectorAt, 0.4, 6.0}}, timeConstant);
        EXPECT_NEAR(foundAtReflector(fibre).reflectance_dB, reflected_dB(6.0), 2.0 * kWithin_dB)
            << timeConstant;
    }
}

/// Each stands on what the ones before it have left of the fibre, and none on their light.
TEST(DetectedReflectance, OfSeveralInADeadZoneIsThatOfEach)
{
    const std::vector<DrawnEvent> panel {{kReflectorAt, 0.4, 10.0},
                                         {kReflectorAt + 32.0, 0.4, 14.0},
                                         {kReflectorAt + 72.0, 0.4, 9.0}};
    const DrawnFibre fibre = linkOf(panel, kTimeConstant);
    const otdr::Detection found = otdr::detectEvents(fibre->samples(), measurement());
    for (const DrawnEvent& one : panel) {
        const auto told =
            std::find_if(found.events.begin(), found.events.end(), [&](const DetectedEvent& event) {
                return std::abs(event.index - one.at) < 3.0;
            });
        ASSERT_NE(told, found.events.end()) << one.at;
        EXPECT_NEAR(told->reflectance_dB, reflected_dB(one.height_dB), 2.0 * kWithin_dB) << one.at;
    }
}

/// The same of the end: it has no fibre behind it.
TEST(DetectedReflectance, OfTheEndIsThatOfItsLightAlone)
{
    const otdr::PulseShape shape(kPulse, kTimeConstant);
    for (const double height_dB : {0.4, 0.7, 1.0, 1.4, 1.6, 2.5, 3.5, 5.0, 10.0, 15.0}) {
        const DrawnFibre fibre(
            9000, scaleOf(kPulse),
            [&](double i) {
                const double before_dB = 40.0 - 0.00003 * i;
                return std::max(
                    dark_dB(i),
                    eventLevel_dB(shape, i - kReflectorAt, before_dB, -50.0, height_dB));
            },
            0.003);
        const DetectedEvent end = foundAtReflector(fibre);
        EXPECT_EQ(end.kind, DetectedEvent::Kind::End) << height_dB;
        EXPECT_NEAR(end.reflectance_dB, reflected_dB(height_dB), kWithin_dB) << height_dB;
        EXPECT_NEAR(end.height_dB, height_dB, kWithin_dB) << height_dB;
    }
}

/// A cascade of splitters: what the second reflects comes back through the first.
TEST(DetectedReflectance, OfASplitterInTheDeadZoneOfAnotherIsToldWithIt)
{
    for (const double apart : {2.6, 2.8}) {
        const double second = kReflectorAt + apart * kPulse;
        const DrawnFibre fibre =
            linkOf({{kReflectorAt, 4.0, 3.0}, {second, 4.0, 2.1}}, kTimeConstant);
        const otdr::Detection found = otdr::detectEvents(fibre->samples(), measurement());
        const auto at =
            std::find_if(found.events.begin(), found.events.end(), [&](const DetectedEvent& event) {
                return std::abs(event.index - second) < 2.0;
            });
        ASSERT_NE(at, found.events.end()) << apart;
        EXPECT_NEAR(at->reflectance_dB, reflected_dB(2.1), 2.0 * kWithin_dB) << apart;
    }
}

/// 30 km behind a port of a height above the fibre.
DrawnFibre behindPort(double pulse, double height_dB)
{
    const otdr::PulseShape shape(pulse, 0.08 * pulse);
    return {34000, scaleOf(pulse),
            [=](double i) {
                const double fibre_dB = 40.0 - 0.0002 * (i - shape.centre());
                const double entered = shape.step(i) - shape.step(i - 30000.0);
                const double light = (otdr::powerRatio(height_dB) - 1.0) * shape.peak(i)
                    * otdr::powerRatio(40.0 - fibre_dB);
                const double level_dB = fibre_dB + otdr::levelOfRatio_dB(entered + light + 1e-9);
                return std::max(dark_dB(i), level_dB);
            },
            0.003};
}

DetectedEvent portOf(const DrawnFibre& fibre, double pulse)
{
    const otdr::Detection found = otdr::detectEvents(fibre->samples(), {pulse, 1.0, -80.0});
    return found.events.empty() ? DetectedEvent() : found.events.front();
}

/// A pulse that fills a fibre shows its first light half a pulse behind the port, where the fibre
/// has lost half a pulse's worth; the port reflects all the same.
TEST(DetectedReflectance, OfThePortStandsOnTheFibreRightBehindIt)
{
    for (const double pulse : {20.0, 1500.0}) {
        for (const double height_dB : {5.0, 12.0}) {
            const DetectedEvent start = portOf(behindPort(pulse, height_dB), pulse);
            EXPECT_EQ(start.kind, DetectedEvent::Kind::Start);
            EXPECT_FALSE(start.saturated());
            EXPECT_NEAR(start.reflectance_dB, reflectance_dB(height_dB, -80.0, pulse),
                        2.0 * kWithin_dB)
                << pulse << " " << height_dB;
        }
    }
}

/// Noise moves the samples of a receiver at its top by nothing: what is added to them is cut off.
TEST(DetectedReflectance, OfAPortThatOverloadsTheReceiverIsABound)
{
    const DrawnFibre drawn = behindPort(20.0, 12.0);
    std::vector<std::uint16_t> counts(drawn->samples().samples().begin(),
                                      drawn->samples().samples().end());
    const double most_dB = 48.0;
    for (std::uint16_t& count : counts) {
        count = std::max(count, static_cast<std::uint16_t>((65.535 - most_dB) * 1000.0));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, otdr::TraceAxis {});
    const otdr::Detection found = otdr::detectEvents(trace, {20.0, 1.0, -80.0});
    ASSERT_FALSE(found.events.empty());
    EXPECT_TRUE(found.events.front().saturated());
    EXPECT_LT(found.events.front().reflectance_dB, reflected_dB(12.0) - 1.0);
}

} // namespace
