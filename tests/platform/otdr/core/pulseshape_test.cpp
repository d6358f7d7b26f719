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

/// A step comes late by half a pulse, by half of both boxes, a tenth of a pulse together, and by
/// the time constant of the pole: that is the area above it.
TEST(PulseShape, DelayIsHalfAPulseAndThatOfTheReceiver)
{
    for (const double timeConstant : {4.0, 16.0, 50.0}) {
        const PulseShape shape(50.0, timeConstant);
        const double stride = 0.01;
        double delay = 0.0;
        for (double at = 0.5 * stride; at < shape.extent() + 50.0; at += stride) {
            delay += stride * (1.0 - shape.step(at));
        }
        EXPECT_NEAR(delay, 0.6 * 50.0 + timeConstant, 0.01) << timeConstant;
    }
}

TEST(PulseShape, CentreLiesNearTheDelay)
{
    for (const double timeConstant : {3.2, 4.0}) {
        const PulseShape shape(40.0, timeConstant);
        EXPECT_NEAR(shape.centre(), 0.6 * 40.0 + timeConstant, 0.4);
    }
}

/// A receiver that is faster than suits the pulse shows edges that are shorter, too, by as much: of
/// the delay half a pulse is left.
TEST(PulseShape, EdgesAreAsShortAsAFastReceiverShowsThem)
{
    for (const double part : {0.08, 0.04, 0.02, 0.01}) {
        const PulseShape shape(40.0, part * 40.0);
        EXPECT_NEAR(shape.centre(), (0.5 + 0.1 * part / 0.08 + part) * 40.0, 0.4) << part;
        EXPECT_LT(shape.riseTo(0.5), 0.25 * 40.0 * part / 0.08) << part;
    }
}

TEST(PulseShape, StepOfAFibreWithoutLossIsTheStep)
{
    const PulseShape shape(50.0, 5.0);
    for (const double behind : {-1.0, 0.0, 10.0, 30.0, 70.0, 500.0}) {
        EXPECT_NEAR(shape.step(behind, 0.0), shape.step(behind), 1e-12) << behind;
    }
}

/// A rectangle of light in a fibre that loses a tenth of it within the pulse: the nearer part, sent
/// last, counts for more. Of a pulse that reaches u of its width w behind an event,
/// (exp(d u) - 1) / (exp(d w) - 1) lies there, by what a sample u late has lost less.
TEST(PulseShape, StepInAFallingFibreWeighsWhatIsNearerMore)
{
    const double w = 1000.0;
    const double decay = 0.1 / w;
    const PulseShape shape(w, 0.016 * w);
    const double late = 0.02 * w + 0.016 * w; // by the edges and the receiver
    for (const double part : {0.3, 0.5, 0.7}) {
        const double expected = std::expm1(decay * part * w) / std::expm1(decay * w);
        EXPECT_NEAR(shape.step(part * w + late, decay), expected, 1e-3) << part;
        EXPECT_LT(shape.step(part * w + late, decay), shape.step(part * w + late) - 0.005) << part;
    }
}

TEST(PulseShape, StepStaysBetweenNoneAndAllHoweverSteepTheFibre)
{
    const PulseShape shape(20.0, 2.0);
    for (const double decay : {-5.0, -0.1, 0.1, 5.0}) {
        for (double behind = -10.0; behind < 100.0; behind += 0.5) {
            const double part = shape.step(behind, decay);
            EXPECT_GE(part, 0.0);
            EXPECT_LE(part, 1.0);
        }
        EXPECT_EQ(shape.step(0.0, decay), 0.0);
        EXPECT_NEAR(shape.step(1e6, decay), 1.0, 1e-9);
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

TEST(PulseShape, RiseStaysWithinTheEdge)
{
    const PulseShape shape(100.0, 8.0);
    EXPECT_EQ(shape.riseTo(0.0), 0.0);
    EXPECT_EQ(shape.riseTo(2.0), shape.extent());
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
