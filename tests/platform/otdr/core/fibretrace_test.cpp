#include "platform/otdr/core/fibretrace.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace testing_support;

double flat(double /*index*/)
{
    return 30.0;
}

TEST(SideLine, ErrorIsThatOfItsMiddleAndOfItsSlope)
{
    otdr::SideLine line;
    line.line.samples = 100;
    line.line.centre = 500.0;
    line.sigma_dB = 0.01;
    line.weight = 4.0;
    line.slopeError_dB = 1e-4;
    EXPECT_NEAR(line.errorAt_dB(500.0), 0.002, 1e-12); // 0.01 sqrt(4 / 100)
    EXPECT_NEAR(line.errorAt_dB(515.0), 0.0025, 1e-12); // and 15 slopes: 3, 4, 5
    EXPECT_NEAR(line.errorAt_dB(485.0), 0.0025, 1e-12);
}

/// Eight decibels below the fibre nothing has begun yet; by a thousandth more it has.
TEST(FibreTrace, LaunchIsTheFirstSampleWithinEightDecibelsOfTheFibre)
{
    const auto from = [](double front_dB) {
        return [=](double i) { return i < 50.0 ? 0.0 : (i < 100.0 ? front_dB : 40.0); };
    };
    EXPECT_EQ(DrawnFibre(2000, scaleOf(10.0), from(32.0))->launch(), 100.0);
    EXPECT_EQ(DrawnFibre(2000, scaleOf(10.0), from(32.001))->launch(), 50.0);
    EXPECT_EQ(DrawnFibre(2000, scaleOf(10.0), flat)->launch(), 0.0);
}

/// A quarter of the beginning, of 1000 samples and 30 pulses, is fibre; what is brighter is not.
TEST(FibreTrace, LaunchIsNotSoughtByTheHeightOfAReflection)
{
    const DrawnFibre fibre(5000, scaleOf(10.0), [](double i) {
        return i < 20.0 ? 0.0 : (i >= 500.0 && i < 700.0 ? 60.0 : 40.0);
    });
    EXPECT_EQ(fibre->launch(), 20.0);
}

TEST(FibreTrace, LaunchOfATraceWithoutSamplesIsItsBeginning)
{
    EXPECT_EQ(DrawnFibre(0, scaleOf(10.0), flat)->launch(), 0.0);
}

TEST(FibreTrace, GapIsTheRisenEdgeThePulseAndTwoSamples)
{
    DrawnFibre fibre(1000, scaleOf(20.0), flat);
    EXPECT_NEAR(fibre->gap(), otdr::PulseShape(20.0, 1.6).riseTo(0.99) + 22.0, 1e-12);
    fibre.changed().setTimeConstant(10.0);
    EXPECT_EQ(fibre->scale().timeConstant, 10.0);
    EXPECT_NEAR(fibre->gap(), otdr::PulseShape(20.0, 10.0).riseTo(0.99) + 22.0, 1e-12);
    // Of the pole alone 1 % is left after 4.6 time constants.
    EXPECT_NEAR(fibre->gap(), 22.0 + 2.0 + 46.0, 2.0);
    EXPECT_EQ(fibre->shape().pulse(), 20.0);
}

TEST(FibreTrace, NoiseCanBeTakenFromBeforeAnIndexAlone)
{
    std::uint64_t count = 0;
    const auto scatters = [&](double i) {
        const double sign = ++count % 3 == 0 ? 1.0 : -1.0;
        return 30.0 + sign * (i < 5000.0 ? 0.01 : 2.0);
    };
    DrawnFibre fibre(10000, scaleOf(10.0), scatters);
    ASSERT_GT(fibre->noise().sigma_dB(9000.0), 0.5);
    fibre.changed().endNoiseAt(5000.0);
    EXPECT_LT(fibre->noise().sigma_dB(9000.0), 0.1);
}

TEST(FibreTrace, FitTellsTheErrorOfASlope)
{
    const DrawnFibre fibre(
        4000, scaleOf(10.0), [](double i) { return 40.0 - 0.002 * i; }, 0.01);
    const auto line = fibre->fit(1000.0, 2000.0);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->line.samples, 1000U);
    EXPECT_NEAR(line->line.slope_dB, -0.002, 5.0 * line->slopeError_dB);
    EXPECT_NEAR(line->sigma_dB, 0.01, 0.0015);
    EXPECT_EQ(line->weight, fibre->noise().correlation());
    // s sqrt(12 m / n^3)
    EXPECT_NEAR(line->slopeError_dB, line->sigma_dB * std::sqrt(12e-9 * line->weight),
                1e-4 * line->slopeError_dB);
    EXPECT_FALSE(fibre->fit(1000.0, 1001.0));
}

TEST(FibreTrace, FitWithAKnownSlopeTakesTheMeanForTheLevel)
{
    const DrawnFibre fibre(4000, scaleOf(10.0), [](double i) { return 40.0 - 0.002 * i; });
    const auto line = fibre->fitWithSlope(1000.0, 1005.0, -0.5, 0.25);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->line.samples, 5U);
    EXPECT_EQ(line->line.centre, 1002.0);
    EXPECT_NEAR(line->line.level_dB, 40.0 - 2.004, 1e-9);
    EXPECT_EQ(line->line.slope_dB, -0.5);
    EXPECT_EQ(line->slopeError_dB, 0.25);
    EXPECT_EQ(line->line.sigma_dB, fibre->noise().sigma_dB(1002.0));
    EXPECT_EQ(line->sigma_dB, line->line.sigma_dB);
    EXPECT_EQ(line->weight, fibre->noise().correlation());
    EXPECT_FALSE(fibre->fitWithSlope(1000.2, 1000.8, -0.5, 0.25));
}

TEST(FibreTrace, MeanIsThatOfTheSamplesBetween)
{
    const DrawnFibre fibre(100, scaleOf(4.0), [](double i) { return 20.0 + i; });
    EXPECT_NEAR(fibre->mean_dB(10.0, 13.0), 31.0, 1e-9);
    EXPECT_NEAR(fibre->mean_dB(9.5, 12.5), 31.0, 1e-9);
    EXPECT_NEAR(fibre->mean_dB(-5.0, 2.0), 20.5, 1e-9);
    EXPECT_TRUE(std::isnan(fibre->mean_dB(10.2, 10.8)));
    EXPECT_TRUE(std::isnan(fibre->mean_dB(100.0, 120.0)));
}

TEST(FibreTrace, SteepIsWhatFallsByMoreThanFiveDecibelsAKilometre)
{
    const DrawnFibre fibre(100, scaleOf(4.0, 100.0), flat);
    otdr::SideLine line;
    line.line.slope_dB = -0.0501;
    EXPECT_TRUE(fibre->isSteep(line));
    line.line.slope_dB = -0.0499;
    EXPECT_FALSE(fibre->isSteep(line));
    line.line.slope_dB = 0.2;
    EXPECT_FALSE(fibre->isSteep(line));
    // Three errors are chance.
    line.line.slope_dB = -0.0801;
    line.slopeError_dB = 0.01;
    EXPECT_TRUE(fibre->isSteep(line));
    line.line.slope_dB = -0.0799;
    EXPECT_FALSE(fibre->isSteep(line));
}

TEST(FibreTrace, NothingIsSteepWhereNoKilometreIsKnown)
{
    otdr::SideLine line;
    line.line.slope_dB = -1000.0;
    EXPECT_FALSE(DrawnFibre(100, scaleOf(4.0), flat)->isSteep(line));
}

/// 2 km of weak light with a loss every 500 m: short pieces of it would tell the slope to half a
/// decibel in a kilometre.
TEST(FibreTrace, UsualSlopeIsToldByLongerPiecesInNoise)
{
    const double kilometre = 6000.0;
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        const DrawnFibre fibre(
            12000, scaleOf(10.0, kilometre),
            [=](double i) { return 20.0 - 0.2 / kilometre * i - 0.3 * std::floor(i / 3000.0); },
            0.35, seed);
        EXPECT_NEAR(fibre->usualSlope_dB(0.0, 12000.0) * kilometre, -0.2, 0.3) << seed;
    }
}

TEST(FibreTrace, UsualSlopeIsThatBetweenTheLosses)
{
    const double kilometre = 1000.0;
    const DrawnFibre fibre(
        12000, scaleOf(10.0, kilometre),
        [=](double i) { return 40.0 - 0.2 / kilometre * i - 0.3 * std::floor(i / 700.0); }, 0.003);
    EXPECT_NEAR(fibre->usualSlope_dB(0.0, 12000.0) * kilometre, -0.2, 0.03);
}

TEST(FibreTrace, FibreWithoutATailHasSettledAtOnce)
{
    const DrawnFibre fibre(
        4000, scaleOf(20.0), [](double i) { return 40.0 - 0.0005 * i; }, 0.005);
    EXPECT_EQ(fibre->settledFrom(1000.0, 500.0), 1000.0);
}

/// An exponential tail that is below the tolerance from a known place on.
TEST(FibreTrace, SettlesWhereATailIsWithinItsTolerance)
{
    const auto tail = [](double i) { return 40.0 + 2.0 * std::exp(-(i - 1000.0) / 8.0); };
    const DrawnFibre fibre(6000, scaleOf(20.0),
                           [&](double i) { return i < 1000.0 ? 40.0 : tail(i); });
    for (const double tolerance_dB : {0.1, 0.01}) {
        const double settled = fibre->settledFrom(1000.0, 2000.0, tolerance_dB);
        const double truth = 1000.0 + 8.0 * std::log(2.0 / tolerance_dB);
        EXPECT_NEAR(settled, truth, 10.0) << tolerance_dB;
    }
}

/// With nothing behind it to stand above, no light is a tail.
TEST(FibreTrace, HasSettledAtTheEndOfTheRecord)
{
    const DrawnFibre fibre(4000, scaleOf(20.0), [](double i) { return 40.0 - 0.0005 * i; });
    for (const double from : {3980.0, 3998.0, 3999.0, 4000.0, 4100.0}) {
        EXPECT_EQ(fibre->settledFrom(from, 500.0), from);
    }
}

TEST(FibreTrace, LooksForTheEndOfATailNoFurtherThanAsked)
{
    const DrawnFibre fibre(6000, scaleOf(20.0), [](double i) {
        return 40.0 + (i < 500.0 ? 0.0 : 20.0 * std::exp(-(i - 500.0) / 8.0));
    });
    EXPECT_EQ(fibre->settledFrom(500.0, 35.0), 535.0);
}

} // namespace
