#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/peakheights.h"
#include "platform/otdr/core/pulseshape.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace testing_support;
using otdr::PeakGroup;

/// A height that was seen where half of the fibre behind the event is in the pulse stands on what
/// is left of both halves; one that a fit tells stands on nothing.
TEST(PeakHeights, LightOfAReflectionStandsOnWhatIsLeftOfTheFibre)
{
    const otdr::PulseShape shape(20.0, 0.2);
    const double height_dB = 2.0;
    const double half_dB = otdr::powerRatio(-3.0) / 2.0 + 0.5;
    PeakGroup group {{100.0, 160.0}, {height_dB, height_dB}, 200.0};
    group.seen = {{100.0 + shape.centre()}, {160.0}};
    const auto lightOf = [&](std::size_t i, double loss_dB) {
        return otdr::powerRatio(heightOfLight_dB(group, i, shape, {0.0, loss_dB})) - 1.0;
    };
    const double above = otdr::powerRatio(height_dB);
    EXPECT_NEAR(lightOf(0, 0.0), above - 1.0, 1e-9);
    EXPECT_NEAR(lightOf(0, 3.0), above - half_dB, 0.01);
    EXPECT_NEAR(lightOf(0, 100.0), above - 0.5, 0.01);
    EXPECT_NEAR(lightOf(1, 3.0), above - 1.0, 1e-9) << "seen at its foot";
    group.heights_dB[0] = 1.0;
    dropLowFeet(group, 1.5);
    ASSERT_EQ(group.seen.size(), 1U) << "goes with its foot";
    EXPECT_EQ(group.seen[0].at, 160.0);
    group.heights_dB[0] = 5000.0;
    EXPECT_NEAR(heightOfLight_dB(group, 0, shape, {0.0, 3.0}), 5000.0, 1e-9) << "an absurd scale";
    group.heights_dB[0] = -5000.0;
    EXPECT_EQ(heightOfLight_dB(group, 0, shape, {0.0, 3.0}), -5000.0) << "no light";
    group.heights_dB[0] = height_dB;
    group.seen.clear();
    EXPECT_NEAR(lightOf(0, 3.0), above - 1.0, 1e-9);
}

TEST(PeakHeights, HeightIsSeenInTheMiddleOfAFlatTopOrAtTheHighestSample)
{
    const otdr::PulseShape shape(20.0, 0.4);
    const auto measured = [&](double height_dB, double loss_dB) {
        const DrawnFibre fibre(2000, scaleOf(20.0), [&](double i) {
            return eventLevel_dB(shape, i - 1000.0, 30.0, 30.0 - loss_dB, height_dB);
        });
        return measurePeak(*fibre, 1005.0, 500.0, 1500.0);
    };
    const PeakGroup flat = measured(6.0, 0.0);
    ASSERT_EQ(flat.seen.size(), 1U);
    EXPECT_NEAR(flat.seen.front().at, 1015.0, 2.0);
    EXPECT_NEAR(flat.heights_dB.front(), 6.0, 0.01);
    const PeakGroup sloped = measured(2.0, 10.0);
    ASSERT_EQ(sloped.seen.size(), 1U);
    EXPECT_NEAR(sloped.seen.front().at, 1002.0, 1.0);
}

/// A receiver of half a pulse shows nine tenths of a reflection at the end of the pulse. One that
/// only recovers so slowly shows it all.
TEST(PeakHeights, LightThatASlowReceiverDoesNotShowIsAddedAndNoOther)
{
    const double slow = 10.0;
    for (const double timeConstant : {slow, 0.4, 1.6}) {
        const otdr::PulseShape shape(20.0, timeConstant);
        DrawnFibre fibre(2000, scaleOf(20.0), [&](double i) {
            return eventLevel_dB(shape, i - 1000.0, 30.0, 30.0, 8.0);
        });
        fibre.changed().setTimeConstant(slow);
        const PeakGroup found = measurePeak(*fibre, 1005.0, 500.0, 1500.0);
        ASSERT_EQ(found.seen.size(), 1U);
        EXPECT_NEAR(found.seen[0].shown, timeConstant == slow ? shape.peak(20.0) : 1.0, 1e-9);
        EXPECT_NEAR(heightOfLight_dB(found, 0, fibre->shape(), {}), 8.0, 0.06) << timeConstant;
    }
}

/// Over another line every height is another one, and so is none where the light of one reflection
/// was taken for fibre.
TEST(PeakHeights, AreThoseOverTheLineThatIsGiven)
{
    const otdr::PulseShape shape(20.0, 0.4);
    const DrawnFibre fibre(2000, scaleOf(20.0), [&](double i) {
        return 30.0 + eventsLevel_dB(shape, i, {{1000.0, 0.0, 6.0}, {1024.0, 0.0, 9.0}});
    });
    PeakGroup group {{1000.0, 1024.0}, {1.0, 2.0}, 1080.0};
    measureHeights(*fibre, flatLine(30.0), group);
    ASSERT_EQ(group.heights_dB.size(), 2U);
    EXPECT_NEAR(group.heights_dB[0], 6.0, 0.01);
    EXPECT_NEAR(group.heights_dB[1], 9.0, 0.01);
    EXPECT_EQ(group.seen.size(), 2U);
    measureHeights(*fibre, flatLine(29.0), group);
    EXPECT_NEAR(group.heights_dB[0], 7.0, 0.01);
    EXPECT_NEAR(group.heights_dB[1], 10.0, 0.01);
}

TEST(PeakHeights, HighestSampleIsTheFirstOfSeveralWithinTheTrace)
{
    const DrawnFibre fibre = withRaised({{100.0, 110.0, 2.0}, {3990.0, 4000.0, 3.0}});
    EXPECT_EQ(highestSample(*fibre, 50.0, 500.0), 100U);
    EXPECT_EQ(highestSample(*fibre, -500.0, 1e6), 3990U);
    EXPECT_EQ(highestSample(*fibre, 105.0, 500.0), 105U);
    EXPECT_EQ(highestSample(*fibre, 500.0, 400.0), 500U) << "of none, the first";
}

} // namespace
