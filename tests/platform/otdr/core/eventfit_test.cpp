#include "platform/otdr/core/eventfit.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace testing_support;
using otdr::PulseShape;

/// 2000 samples with one event, drawn by the shape of the pulse that the fit takes.
DrawnFibre eventAt(double foot, double pulse, double loss_dB, double height_dB = 0.0,
                   double sigma_dB = 0.0)
{
    const PulseShape shape(pulse, 0.08 * pulse);
    return {
        2000, scaleOf(pulse),
        [=](double i) { return eventLevel_dB(shape, i - foot, 30.0, 30.0 - loss_dB, height_dB); },
        sigma_dB};
}

otdr::StepFit stepOf(const DrawnFibre& fibre, double at, double reach, double loss_dB)
{
    return otdr::fitStep(*fibre, fibre->shape(), at, reach, flatLine(30.0),
                         flatLine(30.0 - loss_dB));
}

TEST(FitStep, FindsTheFootOfARampBetweenSamples)
{
    for (const double pulse : {10.0, 24.0, 50.0}) {
        for (const double foot : {1000.0, 1000.3, 999.55}) {
            for (const double loss_dB : {0.5, -0.3}) {
                const DrawnFibre fibre = eventAt(foot, pulse, loss_dB);
                const double far = 0.7 * pulse;
                EXPECT_NEAR(stepOf(fibre, foot - far, pulse, loss_dB).foot, foot, 0.01 * pulse);
                EXPECT_NEAR(stepOf(fibre, foot + far, pulse, loss_dB).foot, foot, 0.01 * pulse);
            }
        }
    }
}

TEST(FitStep, LeavesNothingOfARampOfItsOwnShape)
{
    for (const double pulse : {10.0, 24.0, 50.0}) {
        const DrawnFibre fibre = eventAt(1000.3, pulse, 0.5);
        // Levels are rounded to 0.001 dB, which scatters by 0.0003.
        EXPECT_LT(stepOf(fibre, 1000.0, pulse, 0.5).scatter_dB, 0.0006) << pulse;
    }
}

TEST(FitStep, GoesNoFurtherThanItsReach)
{
    const DrawnFibre fibre = eventAt(1000.0, 20.0, 0.5);
    const double grid = 20.0 / 6.0;
    EXPECT_NEAR(stepOf(fibre, 940.0, 30.0, 0.5).foot, 970.0, grid);
    EXPECT_NEAR(stepOf(fibre, 1060.0, 30.0, 0.5).foot, 1030.0, grid);
}

/// Lines that lie 0.1 dB too high: that is how far every sample is from them.
TEST(FitStep, TellsTheScatterAboutItInDecibels)
{
    const DrawnFibre fibre = eventAt(1000.0, 20.0, 0.0);
    const auto fit =
        otdr::fitStep(*fibre, fibre->shape(), 1000.0, 5.0, flatLine(30.1), flatLine(30.1));
    EXPECT_NEAR(fit.scatter_dB, 0.1, 1e-6);
    // From two dead zones before the place to three behind it.
    EXPECT_NEAR(fit.squares / (fit.scatter_dB * fit.scatter_dB), 5.0 * fibre->gap(), 1.0);
}

/// Between falling lines the ramp has another shape: what the pulse has nearer counts for more.
TEST(FitStep, FindsTheFootBetweenLinesThatFallDifferently)
{
    const double pulse = 40.0;
    const double foot = 1000.4;
    const PulseShape shape(pulse, 0.08 * pulse);
    otdr::Line before = flatLine(30.0);
    before.centre = foot;
    before.slope_dB = -0.004;
    otdr::Line behind = flatLine(29.8);
    behind.centre = foot;
    behind.slope_dB = -0.001;
    const double nepers = std::log(10.0) / 5.0;
    const DrawnFibre fibre(2000, scaleOf(pulse), [&](double i) {
        return 5.0
            * std::log10(
                   std::pow(10.0, before.at(i) / 5.0) * (1.0 - shape.step(i - foot, 0.004 * nepers))
                   + std::pow(10.0, behind.at(i) / 5.0) * shape.step(i - foot, 0.001 * nepers));
    });
    const auto fit = otdr::fitStep(*fibre, shape, 995.0, 20.0, before, behind);
    EXPECT_NEAR(fit.foot, foot, 0.2);
    EXPECT_LT(fit.scatter_dB, 0.0006);
}

otdr::PeakFit peakOf(const DrawnFibre& fibre, double at, double loss_dB)
{
    return otdr::fitPeak(*fibre, at, flatLine(30.0), flatLine(30.0 - loss_dB));
}

double gainOf(const DrawnFibre& fibre, const otdr::PeakFit& fit, double at, double loss_dB)
{
    return otdr::gainOverRamp(*fibre, fit, at, flatLine(30.0), flatLine(30.0 - loss_dB));
}

/// Files may hold anything: what stands 2030 dB above a line would have no power.
TEST(FitPeak, TellsAHeightOfSamplesBeyondAllReason)
{
    const DrawnFibre fibre = eventAt(1000.0, 20.0, 0.0, 10.0);
    const otdr::PeakFit fit = otdr::fitPeak(*fibre, 1000.0, flatLine(-2000.0), flatLine(-2000.0));
    EXPECT_TRUE(std::isfinite(fit.height_dB));
    EXPECT_TRUE(std::isfinite(fit.foot));
    EXPECT_TRUE(std::isfinite(fit.scatter_dB));
}

TEST(FitPeak, FindsFootAndHeightOfAReflectionOnALoss)
{
    for (const double pulse : {10.0, 24.0, 50.0}) {
        for (const double loss_dB : {0.0, 0.4}) {
            for (const double height_dB : {0.2, 1.2}) {
                const double foot = 1000.35;
                const DrawnFibre fibre = eventAt(foot, pulse, loss_dB, height_dB);
                for (const double away : {-0.8, 0.8}) {
                    const auto fit = peakOf(fibre, foot + away * pulse, loss_dB);
                    EXPECT_NEAR(fit.foot, foot, 0.01 * pulse) << pulse << ' ' << loss_dB;
                    EXPECT_NEAR(fit.height_dB, height_dB, 0.003) << pulse << ' ' << loss_dB;
                    EXPECT_LT(fit.scatter_dB, 0.003) << pulse << ' ' << loss_dB;
                }
            }
        }
    }
}

/// The light of a reflector stays the same while the pulse passes it, that of the fibre falls: over
/// the line before, the top of the pulse rises. The height is the one in the middle of the pulse.
TEST(FitPeak, FindsTheFootOnFibreThatFallsWithinAPulse)
{
    const double foot = 1000.4;
    const double pulse = 200.0;
    const double slope_dB = -0.002; // 0.4 dB in a pulse
    const PulseShape shape(pulse, 0.08 * pulse);
    otdr::Line line = flatLine(30.0);
    line.centre = foot;
    line.slope_dB = slope_dB;
    const double middle = std::pow(10.0, line.at(foot + 0.5 * pulse) / 5.0);
    for (const double height_dB : {0.1, 1.0}) {
        const double light = (std::pow(10.0, height_dB / 5.0) - 1.0) * middle;
        const DrawnFibre fibre(4000, scaleOf(pulse), [&](double i) {
            return 5.0
                * std::log10(std::pow(10.0, line.at(i) / 5.0) + light * shape.peak(i - foot));
        });
        const auto fit = otdr::fitPeak(*fibre, foot + 20.0, line, line);
        EXPECT_NEAR(fit.foot, foot, 0.5) << height_dB;
        EXPECT_NEAR(fit.height_dB, height_dB, 0.002) << height_dB;
    }
}

/// Least squares: a height that n samples show is known to s / sqrt(n), whatever they are gathered
/// into.
TEST(FitPeak, HeightIsKnownByTheSamplesThatShowIt)
{
    for (const double pulse : {12.0, 64.0}) {
        const DrawnFibre fibre = eventAt(1000.0, pulse, 0.0, 0.5);
        double shown = 0.0;
        for (double i = 900.0; i < 1300.0; i += 1.0) {
            shown += std::pow(fibre->shape().peak(i - 1000.0), 2.0);
        }
        const double sigma = fibre->noise().sigma_dB(1000.0);
        EXPECT_NEAR(peakOf(fibre, 1000.0, 0.0).error_dB,
                    sigma * std::sqrt(fibre->noise().correlation() / shown),
                    0.03 * sigma / std::sqrt(shown));
    }
}

/// On fibre without a loss no ramp helps: the light alone explains what it shows, by as many
/// standard deviations as its height has errors.
TEST(GainOverRamp, IsThatOfTheLightAlone)
{
    const DrawnFibre fibre = eventAt(1000.0, 16.0, 0.0, 0.15, 0.01);
    const auto fit = peakOf(fibre, 1000.0, 0.0);
    const double expected = 0.15 / (0.01 / std::sqrt(13.5)); // of 16 samples, but for the edges
    EXPECT_NEAR(gainOf(fibre, fit, 1000.0, 0.0), expected, 0.2 * expected);
}

TEST(FitPeak, OfALossAloneThereIsNoLight)
{
    const DrawnFibre fibre = eventAt(1000.3, 16.0, 0.4, 0.0, 0.01);
    const auto fit = peakOf(fibre, 1000.0, 0.4);
    EXPECT_LT(fit.height_dB, 0.01);
    EXPECT_LT(gainOf(fibre, fit, 1000.0, 0.4), 3.0);
}

TEST(FitPeak, LightIsNeverNegative)
{
    const DrawnFibre fibre = eventAt(1000.0, 16.0, 0.0, -0.5);
    EXPECT_EQ(peakOf(fibre, 1000.0, 0.0).height_dB, 0.0);
}

TEST(FitPeak, StandsTheEndsOfTheRecord)
{
    const DrawnFibre fibre = eventAt(1000.0, 16.0, 0.0);
    for (const double at : {-500.0, 0.0, 5.0, 1995.0, 2000.0, 9000.0}) {
        EXPECT_TRUE(std::isfinite(peakOf(fibre, at, 0.0).error_dB)) << at;
        EXPECT_TRUE(std::isfinite(stepOf(fibre, at, 10.0, 0.0).foot)) << at;
    }
}

TEST(FootOfFall, IsWhereTheLastOfThePulseBeginsToLeave)
{
    for (const double pulse : {10.0, 40.0}) {
        for (const double foot : {1000.0, 1000.4}) {
            const DrawnFibre fibre = eventAt(foot, pulse, 60.0);
            for (const double before : {1.0, 3.0}) {
                EXPECT_NEAR(otdr::footOfFall(*fibre, foot - before, flatLine(30.0)), foot, 0.05)
                    << pulse;
            }
        }
    }
}

TEST(FootOfFall, StaysWhereNothingFalls)
{
    const DrawnFibre fibre = eventAt(1000.0, 10.0, 0.0);
    EXPECT_EQ(otdr::footOfFall(*fibre, 1000.25, flatLine(30.0)), 1000.25);
    EXPECT_EQ(otdr::footOfFall(*fibre, 2500.0, flatLine(30.0)), 2500.0);
}

/// Four standard deviations of the power may be chance; what has fallen by more tells the foot.
TEST(FootOfFall, IsNotToldByChance)
{
    const DrawnFibre fibre(2000, scaleOf(10.0), [](double) { return 0.0; });
    const double chance = 1.0 - 4.0 * fibre->noise().sigma_dB(990.0);
    double before_dB = -5.0 * std::log10(chance);
    const auto left = [&] { return std::pow(10.0, -before_dB / 5.0); };
    while (left() < chance) {
        before_dB = std::nextafter(before_dB, 0.0);
    }
    while (left() > chance) {
        before_dB = std::nextafter(before_dB, 1.0);
    }
    ASSERT_EQ(left(), chance);
    EXPECT_EQ(otdr::footOfFall(*fibre, 1000.0, flatLine(before_dB)), 1000.0);
    EXPECT_GT(otdr::footOfFall(*fibre, 1000.0, flatLine(1.01 * before_dB)), 1001.0);
}

/// What falls more than two pulses further on is another event.
TEST(FootOfFall, LooksNoFurtherThanTwoPulses)
{
    const DrawnFibre fibre = eventAt(1000.0, 20.0, 60.0);
    EXPECT_EQ(otdr::footOfFall(*fibre, 955.0, flatLine(30.0)), 955.0);
}

} // namespace
