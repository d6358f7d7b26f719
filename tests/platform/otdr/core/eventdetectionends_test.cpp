#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/pulseshape.h"
#include "tests/platform/otdr/core/detectedlink.h"
#include "tests/platform/otdr/core/drawnfibre.h"
#include "tests/platform/otdr/core/kindsof.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace testing_support;
using otdr::Detection;

/// The last patch cord: both its ends reflect, and the fibre between them tells the loss.
TEST(EventDetection, TellsTheConnectorBeforeAShortLastFibre)
{
    const TraceBuilder builder =
        link().connector(Length {11850.0}, 0.3_dB, 8_dB).reflectingEnd(12_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(Length {11850.0}), 1.0);
    EXPECT_NEAR(found.events[1].loss_dB, 0.3, 0.03);
    EXPECT_NEAR(found.events[2].index, builder.indexOf(12_km), 1.0);
    EXPECT_NEAR(found.events[2].height_dB, 12.0, 0.3);
}

/// 30 m, three pulses, are enough for that, however little the connector reflects.
TEST(EventDetection, TellsTheConnectorThreePulsesBeforeTheEnd)
{
    for (const Decibels height : {3_dB, 10_dB}) {
        const TraceBuilder builder =
            link().connector(11.97_km, 0.3_dB, height).reflectingEnd(15_dB);
        const Detection found = detect(builder);
        ASSERT_EQ(kindsOf(found), "sre") << height.dB;
        const double place = builder.indexOf(11.97_km);
        EXPECT_NEAR(found.events[1].index, place, 0.25 * builder.pulseSamples()) << height.dB;
        EXPECT_NEAR(found.events[1].loss_dB, 0.3, 0.03) << height.dB;
        EXPECT_NEAR(found.events[2].index, builder.indexOf(12_km), 1.0) << height.dB;
        EXPECT_NE(found.events[1].group, found.events[2].group) << height.dB;
    }
}

/// 20 m: the fibre between the reflections can be seen, but not measured.
TEST(EventDetection, TellsTheConnectorOfAPatchCordAtTheEnd)
{
    const TraceBuilder builder = link().connector(11.98_km, 0.3_dB, 10_dB).reflectingEnd(15_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(11.98_km), 1.0);
    EXPECT_NEAR(found.events[1].height_dB, 10.0, 0.1);
    EXPECT_NEAR(found.events[2].index, builder.indexOf(12_km), 1.0);
    double sum = 0.0;
    for (const otdr::DetectedSection& section : found.sections) {
        sum += section.loss_dB;
    }
    EXPECT_NEAR(sum, found.spanLoss_dB, 1e-9);
}

/// In front of the link: within the dead zone of the port no loss can be told, a reflection can.
TEST(EventDetection, TellsTheConnectorOfAPatchCordAtTheStart)
{
    const TraceBuilder builder = link().connector(Length {20.0}, 0.3_dB, 10_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(Length {20.0}), 1.0);
    EXPECT_NEAR(found.events[1].height_dB, 10.3, 0.1) << "above the fibre behind it";
    EXPECT_TRUE(std::isnan(found.events[1].loss_dB));
    EXPECT_EQ(found.events[1].group, found.events[0].group);
}

/// Three reflections two pulses apart: too little fibre to tell their losses, but what stands in
/// front of them is told.
TEST(EventDetection, TellsAllReflectionsInTheDeadZoneOfTheEnd)
{
    for (const double cord_m : {20.0, 22.0}) {
        const Length first {12'000.0 - 2.0 * cord_m};
        const Length second {12'000.0 - cord_m};
        const Length splice {first.m - 60.0};
        const TraceBuilder builder = link()
                                         .splice(splice, 0.2_dB)
                                         .connector(first, 0.3_dB, 4_dB)
                                         .connector(second, 0.3_dB, 8_dB)
                                         .reflectingEnd(12_dB);
        const Detection found = detect(builder);
        ASSERT_EQ(kindsOf(found), "snrre") << cord_m;
        EXPECT_NEAR(found.events[1].loss_dB, 0.2, 0.02) << cord_m;
        EXPECT_NEAR(found.events[2].index, builder.indexOf(first), 1.0) << cord_m;
        EXPECT_NEAR(found.events[3].index, builder.indexOf(second), 1.0) << cord_m;
        EXPECT_NEAR(found.events[4].index, builder.indexOf(12_km), 1.0) << cord_m;
    }
}

/// All that there is: a cord of 40 m with a connector 12 m before its end.
TEST(EventDetection, TellsAConnectorWithinTheDeadZoneOfAnEndNearThePort)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(Length {100.0})
                                     .behind(3000)
                                     .noise(0.01_dB, 11)
                                     .noiseFloor(8_dB)
                                     .connector(Length {88.0}, 0.3_dB, 6_dB)
                                     .reflectingEnd(14_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(Length {88.0}), 1.0);
    EXPECT_NEAR(found.events[2].index, builder.indexOf(Length {100.0}), 1.5);
}

/// A receiver that is slow to come up rises only once.
TEST(EventDetection, RisingEdgeOfTheEndIsNoOtherReflection)
{
    EXPECT_EQ(kindsOf(detect(link().reflectingEnd(20_dB))), "se");
    EXPECT_EQ(kindsOf(detect(link())), "se");
}

/// 12 m apart, with a pulse of 10 m: both are told, the loss between them cannot be.
TEST(EventDetection, TellsAConnectorWithinTheDeadZoneOfTheEnd)
{
    const TraceBuilder builder =
        link().connector(Length {11988.0}, 0.3_dB, 6_dB).reflectingEnd(14_dB);
    const Detection found = detect(builder);
    ASSERT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.events[1].index, builder.indexOf(Length {11988.0}), 1.0);
    EXPECT_NEAR(found.events[2].index, builder.indexOf(12_km), 1.5);
    EXPECT_TRUE(std::isnan(found.events[1].loss_dB));
    EXPECT_EQ(found.events[1].group, found.events[2].group);
}

/// A low reflection, as an echo, so close before the end that no fibre shows between them: it is
/// told with the end, and stands on none of the fibre before.
TEST(EventDetection, ReflectionInTheDeadZoneOfTheEndDoesNotBendTheFibreBefore)
{
    constexpr double kSplice = 7600.0;
    constexpr double kEnd = 9000.0;
    const otdr::PulseShape shape(100.0, 8.0);
    for (const double part : {0.85, 0.9, 0.95, 1.0, 1.05, 1.1}) {
        const DrawnFibre fibre(
            16'000, scaleOf(100.0),
            [&](double i) {
                const double left = shape.step(i) - shape.step(i - kEnd)
                    - (1.0 - otdr::powerRatio(-0.4))
                        * (shape.step(i - kSplice) - shape.step(i - kEnd));
                const double light =
                    part * shape.peak(i - (kEnd - 235.0)) + 1500.0 * shape.peak(i - kEnd);
                const double level_dB =
                    24.0 - 0.0003 * i + otdr::levelOfRatio_dB(left + light + 1e-9);
                return std::max(dark_dB(i), level_dB);
            },
            0.02);
        const otdr::Detection found = otdr::detectEvents(fibre->samples(), {100.0, 1.0, -80.0});
        const auto splice =
            std::find_if(found.events.begin(), found.events.end(),
                         [&](const auto& event) { return std::abs(event.index - kSplice) < 50.0; });
        ASSERT_NE(splice, found.events.end()) << part;
        EXPECT_NEAR(splice->loss_dB, 0.4, 4.0 * splice->lossError_dB) << part;
        EXPECT_LT(splice->lossError_dB, 0.03) << part;
        EXPECT_NEAR(found.end, kEnd, 2.0) << part;
    }
}

/// The tail of a bright connector leaves little level light on the last cord, eight pulses long: it
/// is fibre all the same.
TEST(EventDetection, EndsBehindAPatchCordWhoseFirstHalfATailBends)
{
    constexpr double kConnector = 133.7;
    constexpr double kEnd = 212.8;
    const otdr::PulseShape shape(10.0, 0.8);
    const auto late = [](double behind) { // of what ended so long ago, in 6.4 samples
        return behind > 0.0 ? 0.003 * std::exp(-behind / 6.4) : 0.0;
    };
    const DrawnFibre fibre(2400, scaleOf(10.0), [&](double i) {
        const double left = shape.step(i) - shape.step(i - kEnd) + late(i - kEnd - 5.0);
        const double light = 195.0 * (shape.peak(i - kConnector) + late(i - kConnector - 10.0));
        const double level_dB = 45.4 - 0.0001 * i + otdr::levelOfRatio_dB(left + light + 1e-9)
            - (i < kConnector ? 0.0 : 0.19);
        return std::max(dark_dB(i), level_dB);
    });
    const otdr::Detection found = otdr::detectEvents(fibre->samples(), {10.0, 0.3, -80.0});
    EXPECT_EQ(kindsOf(found), "sre");
    EXPECT_NEAR(found.end, kEnd, 5.0);
}

/// Where no loss can be told either: beside the port and beside the end.
TEST(EventDetection, WeakReflectionsInDeadZonesAreNotListedThatTheUserDoesNotWant)
{
    otdr::DetectionSettings settings;
    for (const Length at : {Length {20.0}, Length {11988.0}}) {
        const TraceBuilder builder = link().connector(at, 0.3_dB, 4_dB).reflectingEnd(14_dB);
        settings.reflectance_dB = -70.0;
        const Detection all = detect(builder, settings);
        ASSERT_EQ(kindsOf(all), "sre") << at.m;
        settings.reflectance_dB = all.events[1].reflectance_dB + 1.0;
        EXPECT_EQ(kindsOf(detect(builder, settings)), "se") << at.m;
        settings.reflectance_dB = all.events[2].reflectance_dB + 1.0;
        EXPECT_EQ(kindsOf(detect(builder, settings)), "se")
            << "the end ends the fibre all the same";
    }
}

/// The light has fallen by some hundredths of a decibel before its fall stands out: a line that
/// holds them tilts, and with the many samples of a long pulse that is far more than noise does.
TEST(EventDetection, LossCloseBeforeTheEndIsNotBentByItsFall)
{
    constexpr double kSplice = 3000.0;
    constexpr double kEnd = 3600.0;
    const otdr::PulseShape shape(100.0, 8.0);
    const DrawnFibre fibre(8000, scaleOf(100.0), [&](double i) {
        const double left = shape.step(i) - shape.step(i - kSplice)
            + otdr::powerRatio(-0.3) * (shape.step(i - kSplice) - shape.step(i - kEnd));
        const double line_dB = 40.0 - 0.0005 * i;
        return std::max(dark_dB(i), line_dB + otdr::levelOfRatio_dB(left + 1e-9));
    });
    const otdr::Detection found = otdr::detectEvents(fibre->samples(), {100.0, 1.0, -80.0});
    ASSERT_EQ(found.events.size(), 3U);
    EXPECT_NEAR(found.events[1].loss_dB, 0.3, 0.001);
    EXPECT_NEAR(found.end, kEnd, 1.0);
}

} // namespace
