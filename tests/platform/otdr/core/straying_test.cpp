#include "platform/otdr/core/straying.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace testing_support;
using otdr::Straying;

constexpr double kStrayedSamples = 16384.0;

Straying strayingOf(const DrawnFibre& fibre, double from = 100.0, double to = kStrayedSamples)
{
    return {*fibre, {{from, to}}};
}

DrawnFibre fibreOf(const DrawnFibre::Level& level, double sigma_dB = 0.0)
{
    return {static_cast<std::size_t>(kStrayedSamples), scaleOf(kPulse), level, sigma_dB};
}

double sloping(double i)
{
    return 30.0 - 0.0003 * i;
}

/// RMS of what the noise alone makes a line of so many samples off by at its end: 2 sigma / sqrt n.
double noiseOfLine_dB(double sigma_dB, double samples)
{
    return 2.0 * sigma_dB / std::sqrt(samples);
}

/// The scatter of some hundred pairs tells their noise to a fifth and better.
TEST(Straying, NoiseOfSamplesIsNone)
{
    const DrawnFibre fibre = fibreOf(sloping, 0.02);
    const Straying straying = strayingOf(fibre);
    for (const double gaps : {1.0, 2.0, 4.0, 8.0, 16.0}) {
        const double samples = gaps * fibre->gap();
        EXPECT_LT(std::hypot(1.0, straying.ofLine_dB(samples) / noiseOfLine_dB(0.02, samples)), 1.3)
            << samples;
    }
    // Of the longest lines there are few pairs, and chance has its part.
    EXPECT_LT(straying.ofLine_dB(1e6), 2.0 * noiseOfLine_dB(0.02, 1000.0));
}

/// Lines of n samples on both sides of a gap g through a x^3 miss each other by a (4 d^3 - 4/5 d
/// h^2) wherever they lie, with h = n / 2 and d = h + g / 2: the distance is always the same, and
/// its median taken for that of a normal variable.
TEST(Straying, IsThatOfTheClosedFormWhereFibreBends)
{
    constexpr double kCubic_dB = 2e-12;
    const DrawnFibre fibre = fibreOf([](double i) {
        const double x = i - 0.5 * kStrayedSamples;
        return 30.0 - 0.0003 * i + kCubic_dB * x * x * x;
    });
    const Straying straying = strayingOf(fibre);
    const double gap = fibre->gap();
    const double half = 16.0 * gap; // the shortest line is as long as the gap, the next ones twice
    const double away = half + 0.5 * gap;
    const double apart_dB = kCubic_dB * (4.0 * std::pow(away, 3.0) - 0.8 * away * half * half);
    EXPECT_NEAR(straying.ofLine_dB(2.0 * half + 1.0), apart_dB / 0.6745 / std::sqrt(2.0),
                0.05 * apart_dB);
}

/// Coherent light: what waves over some pulses averages out over lines that are far longer.
TEST(Straying, LinesThatHoldManyWavesStrayLess)
{
    const DrawnFibre fibre = fibreOf(
        [](double i) { return sloping(i) + 0.02 * std::sin(2.0 * std::acos(-1.0) * i / 150.0); });
    const Straying straying = strayingOf(fibre);
    EXPECT_GT(straying.ofLine_dB(4.0 * fibre->gap()), 0.01);
    EXPECT_LT(straying.ofLine_dB(16.0 * fibre->gap()),
              0.3 * straying.ofLine_dB(4.0 * fibre->gap()));
}

/// Most pairs of lines know nothing of one event that was not found.
TEST(Straying, KnowsNothingOfFewEvents)
{
    const DrawnFibre fibre =
        fibreOf([](double i) { return sloping(i) - (i > 6000.0 ? 1.0 : 0.0); }, 0.005);
    EXPECT_LT(strayingOf(fibre).ofLine_dB(100.0), noiseOfLine_dB(0.005, 100.0));
}

TEST(Straying, LinesLongerThanTheRecordTellsOfStrayAsTheLongest)
{
    const DrawnFibre fibre = fibreOf(
        [](double i) { return sloping(i) + 0.02 * std::sin(2.0 * std::acos(-1.0) * i / 2000.0); });
    const Straying straying = strayingOf(fibre);
    EXPECT_GT(straying.ofLine_dB(1e5), 0.005);
    EXPECT_EQ(straying.ofLine_dB(1e5), straying.ofLine_dB(1e6));
    EXPECT_EQ(straying.ofLine_dB(1.0), straying.ofLine_dB(fibre->gap()));
}

/// Six pairs of lines that do not overlap tell something, five do not.
TEST(Straying, IsUnknownWhereFewLinesFit)
{
    std::mt19937_64 random(3);
    std::normal_distribution<double> normal;
    std::vector<double> steps(1000);
    std::generate(steps.begin(), steps.end(), [&] { return 0.1 * normal(random); });
    const DrawnFibre fibre =
        fibreOf([&](double i) { return 30.0 + steps[static_cast<std::size_t>(i / 40.0)]; });
    const double pair = 3.0 * fibre->gap(); // two of the shortest lines and the gap between them
    EXPECT_GT(strayingOf(fibre, 100.0, 101.0 + 6.0 * pair).ofLine_dB(50.0), 0.0);
    EXPECT_EQ(strayingOf(fibre, 100.0, 99.0 + 6.0 * pair).ofLine_dB(50.0), 0.0);
    EXPECT_EQ(Straying(*fibre, {}).ofLine_dB(50.0), 0.0);
}

/// A stretch that begins behind its end holds nothing: events stand that close.
TEST(Straying, StretchesWithoutRoomCountForNothing)
{
    const DrawnFibre fibre = fibreOf(
        [](double i) { return sloping(i) + 0.01 * std::sin(2.0 * std::acos(-1.0) * i / 150.0); });
    const Straying one(*fibre, {{100.0, 8000.0}});
    const Straying more(*fibre, {{50.0, 40.0}, {100.0, 8000.0}, {9000.0, 8990.0}});
    EXPECT_EQ(more.ofLine_dB(100.0), one.ofLine_dB(100.0));
}

} // namespace
