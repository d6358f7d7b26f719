#include "platform/otdr/core/pulseshape.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using otdr::PulseShape;

TEST(PulseShape, ChangesNothingBeforeTheEvent)
{
    const PulseShape shape(20.0, 2.0);
    EXPECT_EQ(shape.step(0.0), 0.0);
    EXPECT_EQ(shape.step(-5.0), 0.0);
    EXPECT_EQ(shape.peak(-0.1), 0.0);
}

TEST(PulseShape, StepIsOverBehindItsExtent)
{
    const PulseShape shape(20.0, 2.0);
    EXPECT_NEAR(shape.step(shape.extent()), 1.0, 1e-3);
    EXPECT_EQ(shape.step(1e9), 1.0);
    EXPECT_NEAR(shape.peak(shape.extent() + 20.0), 0.0, 1e-3);
}

TEST(PulseShape, StepNeverFalls)
{
    const PulseShape shape(12.5, 6.0);
    for (double at = 0.0; at < shape.extent(); at += 0.1) {
        EXPECT_LE(shape.step(at), shape.step(at + 0.1) + 1e-12) << at;
    }
}

/// Half of a step shows half a pulse and the delay of the edges behind it: that of the boxes, a
/// tenth of a pulse together, and of the pole.
TEST(PulseShape, CentreIsHalfAPulseAndTheDelayOfTheReceiver)
{
    for (const double timeConstant : {1.0, 4.0}) {
        const PulseShape shape(40.0, timeConstant);
        EXPECT_NEAR(shape.centre(), 0.5 * 40.0 + 0.1 * 40.0 + timeConstant, 0.4);
    }
}

TEST(PulseShape, EnergyOfAPeakIsThatOfThePulse)
{
    const PulseShape shape(30.0, 5.0);
    double sum = 0.0;
    for (double at = 0.0; at < shape.extent() + 30.0; at += 0.05) {
        sum += 0.05 * shape.peak(at);
    }
    EXPECT_NEAR(sum, 30.0, 0.1);
}

TEST(PulseShape, RiseIsTheInverseOfTheEdge)
{
    const PulseShape shape(100.0, 8.0);
    for (const double part : {0.05, 0.3, 0.5, 0.9}) {
        EXPECT_NEAR(shape.peak(shape.riseTo(part)), part, 1e-3) << part;
    }
}

/// A pole alone would leave exp(-t / tau) of the edge.
TEST(PulseShape, SlowReceiverLeavesAnExponential)
{
    const PulseShape shape(10.0, 50.0);
    const double first = 1.0 - shape.step(150.0);
    const double later = 1.0 - shape.step(200.0);
    EXPECT_NEAR(later / first, std::exp(-1.0), 0.02);
}

} // namespace
