#include "platform/otdr/core/eventscan.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace testing_support;
using otdr::Candidate;

otdr::SearchScale windowsUpTo(double longest)
{
    otdr::SearchScale scale = scaleOf(kPulse);
    scale.longestWindow = longest;
    return scale;
}

/// Whole samples that the scan leaves for the ramp of the pulse.
double wholeGap(const DrawnFibre& fibre)
{
    return std::ceil(fibre->gap());
}

/// Flat fibre that loses half a decibel at a sample.
DrawnFibre lossAt(double at, double longest, double loss_dB = 0.5, double sigma_dB = 0.0)
{
    return {4000, windowsUpTo(longest), [=](double i) { return i < at ? 30.0 : 30.0 - loss_dB; },
            sigma_dB};
}

TEST(ScanSteps, FindsNothingOnBareFibre)
{
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        const DrawnFibre fibre(
            8000, windowsUpTo(8000.0), [](double i) { return 40.0 - 0.001 * i; }, 0.01, seed);
        EXPECT_TRUE(otdr::scanSteps(*fibre, 0.0, 8000.0, 6.0).empty()) << seed;
    }
}

TEST(ScanSteps, FindsALossAndAGainInOrderWithinAQuarterOfTheDeadZone)
{
    const DrawnFibre fibre(
        8000, windowsUpTo(2000.0),
        [](double i) { return 40.0 - (i < 2500.0 ? 0.0 : 0.1) + (i < 5500.0 ? 0.0 : 0.2); }, 0.01);
    const auto found = otdr::scanSteps(*fibre, 0.0, 8000.0, 6.0);
    ASSERT_EQ(found.size(), 2U);
    // Anywhere in the dead zone before the change the windows on both sides are clear of it.
    for (std::size_t k = 0; k < 2; ++k) {
        const double truth = k == 0 ? 2500.0 : 5500.0;
        EXPECT_LE(found[k].at, truth + 0.25 * fibre->gap());
        EXPECT_GE(found[k].at, truth - 1.25 * fibre->gap());
    }
    EXPECT_GT(found[1].statistic, found[0].statistic);
}

/// Both lines are taken to the middle between them, half a window and half the gap away. There each
/// has the variance s^2 (1/n + 12 d^2 / n^3).
TEST(ScanSteps, StatisticIsTheLossOverItsStandardError)
{
    const double n = 30.0;
    const DrawnFibre fibre = lossAt(2010.0, n);
    const double gap = wholeGap(fibre);
    // One place only: the window, the gap and the window again.
    const double from = 2000.0 - n;
    const auto found = otdr::scanSteps(*fibre, from, 2000.0 + gap + n, 5.0);
    ASSERT_EQ(found.size(), 1U);
    const double d = (n + gap) / 2.0;
    const double sigma = fibre->noise().sigma_dB(2000.0);
    const double variance =
        fibre->noise().correlation() * sigma * sigma * (1.0 / n + 12.0 * d * d / (n * n * n));
    EXPECT_NEAR(found[0].statistic, 0.5 / std::sqrt(2.0 * variance), 1e-6 * found[0].statistic);
    EXPECT_EQ(found[0].window, n);
}

TEST(ScanSteps, WantsRoomForBothWindowsAndTheGap)
{
    const double n = 30.0;
    const DrawnFibre fibre = lossAt(2010.0, n);
    const double last = 2000.0 + wholeGap(fibre) + n;
    EXPECT_EQ(otdr::scanSteps(*fibre, 2000.0 - n, last, 5.0).size(), 1U);
    EXPECT_TRUE(otdr::scanSteps(*fibre, 2000.0 - n, last - 1.0, 5.0).empty());
    EXPECT_TRUE(otdr::scanSteps(*fibre, 2000.5 - n, last, 5.0).empty());
}

TEST(ScanSteps, AStepExceedsTheThreshold)
{
    const double n = 30.0;
    const DrawnFibre fibre = lossAt(2010.0, n);
    const auto found = [&](double threshold, double places) {
        return otdr::scanSteps(*fibre, 2000.0 - n, 2000.0 + places + wholeGap(fibre) + n,
                               threshold);
    };
    // At the only place, and at the last of several.
    for (const double places : {0.0, 7.0}) {
        ASSERT_EQ(found(5.0, places).size(), 1U);
        const double statistic = found(5.0, places)[0].statistic;
        EXPECT_TRUE(found(statistic, places).empty());
        EXPECT_EQ(found(std::nextafter(statistic, 0.0), places).size(), 1U);
    }
    // With others on both sides.
    const double statistic = otdr::scanSteps(*fibre, 0.0, 4000.0, 5.0).front().statistic;
    EXPECT_TRUE(otdr::scanSteps(*fibre, 0.0, 4000.0, statistic).empty());
}

/// The line of each side may fall: a slope is no step.
TEST(ScanSteps, TakesNoSlopeForAStep)
{
    const DrawnFibre fibre(4000, windowsUpTo(1000.0), [](double i) { return 60.0 - 0.01 * i; });
    EXPECT_TRUE(otdr::scanSteps(*fibre, 0.0, 4000.0, 8.0).empty());
}

TEST(ScanSteps, WindowsAreTwiceAsLongEachTimeUpToTheLongest)
{
    const DrawnFibre fibre = lossAt(2000.0, 333.0, 0.03, 0.01);
    const double shortest = std::ceil(1.25 * fibre->gap());
    for (const Candidate& one : otdr::scanSteps(*fibre, 0.0, 4000.0, 5.0)) {
        EXPECT_TRUE(one.window == shortest || one.window == 2.0 * shortest
                    || one.window == 4.0 * shortest || one.window == 333.0)
            << one.window;
    }
    // 0.03 dB are not seen in the shortest window: its error there is 0.009 dB.
    const auto found = otdr::scanSteps(*fibre, 0.0, 4000.0, 5.0);
    ASSERT_FALSE(found.empty());
    EXPECT_GT(found.front().window, shortest);
}

/// A long trace is scanned piece by piece: the seams lose nothing and list nothing twice.
TEST(ScanSteps, FindsALossWhereverItLiesOnALongTrace)
{
    for (double at = 200.0; at < 19800.0; at += 377.0) {
        const DrawnFibre fibre(20'000, windowsUpTo(600.0),
                               [=](double i) { return i < at ? 30.0 : 29.7; });
        const auto found = otdr::scanSteps(*fibre, 0.0, 20'000.0, 8.0);
        ASSERT_EQ(found.size(), 1U) << at;
        EXPECT_NEAR(found[0].at, at, 1.25 * fibre->gap());
    }
}

TEST(ScanPeaks, FindsAReflectionWhereverItLiesOnALongTrace)
{
    for (double at = 200.0; at < 19800.0; at += 377.0) {
        const DrawnFibre fibre(20'000, windowsUpTo(600.0),
                               [=](double i) { return i < at || i >= at + kPulse ? 30.0 : 31.0; });
        const auto found = otdr::scanPeaks(*fibre, 0.0, 20'000.0, 8.0);
        ASSERT_FALSE(found.empty()) << at;
        for (const Candidate& one : found) {
            EXPECT_NEAR(one.at, at, 1.25 * fibre->gap());
        }
    }
}

/// Long windows hardly tell where a loss is; shorter ones that show it do.
TEST(ScanSteps, PlacesAreThoseOfTheShortestWindowsThatShowThem)
{
    for (const double at : {300.0, 1203.0, 2001.0, 2777.0, 3300.0}) {
        const DrawnFibre fibre = lossAt(at, 4000.0, 0.3, 0.01);
        const auto found = otdr::scanSteps(*fibre, 0.0, 4000.0, 6.0);
        ASSERT_EQ(found.size(), 1U) << at;
        EXPECT_LE(found[0].at, at + 0.25 * fibre->gap());
        EXPECT_GE(found[0].at, at - 1.25 * fibre->gap());
    }
}

TEST(ScanSteps, IgnoresWhatLiesOutsideItsStretch)
{
    const DrawnFibre fibre = lossAt(2000.0, 500.0);
    EXPECT_TRUE(otdr::scanSteps(*fibre, 0.0, 2000.0, 6.0).empty());
    EXPECT_TRUE(otdr::scanSteps(*fibre, 2000.0, 4000.0, 6.0).empty());
    EXPECT_TRUE(otdr::scanSteps(*fibre, 3000.0, 1000.0, 6.0).empty());
    EXPECT_EQ(otdr::scanSteps(*fibre, -100.0, 1e9, 6.0).size(), 1U);
}

/// Fibre with a rectangular peak of one pulse behind the edge.
DrawnFibre peakAt(double at, double height_dB, double loss_dB = 0.0, double sigma_dB = 0.01)
{
    return {4000, scaleOf(kPulse),
            [=](double i) {
                return eventLevel_dB(otdr::PulseShape(kPulse, 0.08 * kPulse), i - at, 30.0,
                                     30.0 - loss_dB, height_dB);
            },
            sigma_dB};
}

TEST(ScanPeaks, FindsAReflectionWithinAQuarterOfAPulse)
{
    for (const double at : {1000.0, 1003.0, 2501.5}) {
        const auto found = otdr::scanPeaks(*peakAt(at, 0.3), 0.0, 4000.0, 8.0);
        ASSERT_FALSE(found.empty()) << at;
        EXPECT_NEAR(found[0].at, at, 0.26 * kPulse) << at;
    }
}

TEST(ScanPeaks, StrongestComeFirst)
{
    const DrawnFibre fibre(
        8000, scaleOf(kPulse),
        [](double i) {
            const double high = i >= 5000.0 && i < 5020.0 ? 1.0 : 0.0;
            return 30.0 + high + (i >= 2000.0 && i < 2020.0 ? 0.4 : 0.0);
        },
        0.01);
    const auto found = otdr::scanPeaks(*fibre, 0.0, 8000.0, 6.0);
    ASSERT_GE(found.size(), 2U);
    EXPECT_NEAR(found.front().at, 5000.0, 0.5 * kPulse);
    for (std::size_t k = 1; k < found.size(); ++k) {
        EXPECT_LE(found[k].statistic, found[k - 1].statistic);
    }
}

/// Its pulse's worth of samples stands above the higher of the lines beside it; that line is taken
/// from the middle of its window to that of the peak.
TEST(ScanPeaks, StatisticIsTheHeightOverItsStandardError)
{
    const double at = 1000.0;
    const double height_dB = 1.0;
    const DrawnFibre fibre(4000, scaleOf(kPulse), [=](double i) {
        return i >= at && i < at + 30.0 ? 30.0 + height_dB : 30.0;
    });
    const double gap = wholeGap(fibre);
    const double n = std::ceil(4.0 * fibre->gap());
    const double rise = std::floor(fibre->shape().riseTo(0.6));
    const double middle = rise + kPulse / 2.0;
    const double away = std::max(n / 2.0 + middle, gap + n / 2.0 - middle);
    const double sigma = fibre->noise().sigma_dB(at) * std::sqrt(fibre->noise().correlation());
    const double error =
        sigma * std::sqrt(1.0 / kPulse + 1.0 / n + 12.0 * away * away / (n * n * n));
    double best = 0.0;
    for (const Candidate& one : otdr::scanPeaks(*fibre, at - n, at + gap + n, 5.0)) {
        best = one.window == n ? std::max(best, one.statistic) : best;
    }
    EXPECT_NEAR(best, height_dB / error, 1e-6 * best);
}

TEST(ScanPeaks, APeakExceedsTheThreshold)
{
    const DrawnFibre fibre = peakAt(1000.0, 0.5);
    const auto all = otdr::scanPeaks(*fibre, 0.0, 4000.0, 5.0);
    ASSERT_FALSE(all.empty());
    const double statistic = all.front().statistic;
    EXPECT_TRUE(otdr::scanPeaks(*fibre, 0.0, 4000.0, statistic).empty());
    EXPECT_EQ(otdr::scanPeaks(*fibre, 0.0, 4000.0, std::nextafter(statistic, 0.0)).size(), 1U);
}

TEST(ScanPeaks, TakesNoLossAndNoSlopeForAPeak)
{
    for (const double loss_dB : {0.5, -0.5}) {
        EXPECT_TRUE(otdr::scanPeaks(*peakAt(2000.0, 0.0, loss_dB), 0.0, 4000.0, 6.0).empty());
    }
    const DrawnFibre steep(
        4000, scaleOf(kPulse), [](double i) { return 60.0 - 0.01 * i; }, 0.01);
    EXPECT_TRUE(otdr::scanPeaks(*steep, 0.0, 4000.0, 6.0).empty());
}

TEST(ScanPeaks, SeesAPeakAtEitherEndOfItsStretchThatHasRoomForItsWindows)
{
    const DrawnFibre fibre = peakAt(1000.0, 3.0);
    const double n = std::ceil(1.5 * fibre->gap());
    const double gap = wholeGap(fibre);
    EXPECT_EQ(otdr::scanPeaks(*fibre, 1000.0 - n, 1000.0 + gap + n, 6.0).size(), 1U);
    EXPECT_TRUE(otdr::scanPeaks(*fibre, 1001.0 - n, 1000.0 + gap + n, 6.0).empty());
}

} // namespace
