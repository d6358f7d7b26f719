#include "platform/otdr/core/linefit.h"
#include "platform/otdr/core/trace.h"
#include "tests/platform/otdr/core/counts.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using otdr::fitLine;
using otdr::fitLineBetween;
using otdr::Line;
using otdr::Trace;
using namespace testing_support;

using Counts = std::vector<std::uint16_t>;

/// Counts from a level in decibels down by a slope in decibels a sample.
Counts slope(std::size_t size, double level, double perSample)
{
    Counts counts(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double raw = 65535.0 - 1000.0 * (level - perSample * static_cast<double>(i));
        counts[i] = static_cast<std::uint16_t>(std::lround(raw));
    }
    return counts;
}

/// Normal equations with straight sums in long double.
Line slowLine(const Trace& trace, std::size_t first, std::size_t last)
{
    const auto n = static_cast<long double>(last - first);
    const long double centre =
        (static_cast<long double>(first) + static_cast<long double>(last - 1)) / 2;
    long double y = 0;
    long double xy = 0;
    long double xx = 0;
    for (std::size_t i = first; i < last; ++i) {
        const long double x = static_cast<long double>(i) - centre;
        y += trace.level_dB(i);
        xy += x * trace.level_dB(i);
        xx += x * x;
    }
    const long double slope = xy / xx;
    long double squares = 0;
    for (std::size_t i = first; i < last; ++i) {
        const long double x = static_cast<long double>(i) - centre;
        const long double off = trace.level_dB(i) - y / n - slope * x;
        squares += off * off;
    }
    Line line;
    line.centre = static_cast<double>(centre);
    line.level_dB = static_cast<double>(y / n);
    line.slope_dB = static_cast<double>(slope);
    line.sigma_dB = last - first > 2 ? static_cast<double>(std::sqrt(squares / (n - 2))) : 0.0;
    line.samples = last - first;
    return line;
}

void expectSameLine(const Trace& trace, std::size_t first, std::size_t last)
{
    const std::optional<Line> found = fitLine(trace, first, last);
    ASSERT_TRUE(found);
    const Line expected = slowLine(trace, first, last);
    ASSERT_EQ(found->samples, expected.samples);
    ASSERT_DOUBLE_EQ(found->centre, expected.centre);
    for (const std::size_t at : {std::size_t {0}, first, last, trace.size()}) {
        const auto index = static_cast<double>(at);
        ASSERT_NEAR(found->at(index), expected.at(index), 1e-6) << first << " .. " << last;
    }
    ASSERT_NEAR(found->sigma_dB, expected.sigma_dB, 1e-6) << first << " .. " << last;
}

TEST(LineFit, NeedsTwoSamples)
{
    const Trace trace = traceOf({10, 20, 30});
    EXPECT_FALSE(fitLine(trace, 1, 1));
    EXPECT_FALSE(fitLine(trace, 1, 2));
    EXPECT_FALSE(fitLine(trace, 2, 9));
    EXPECT_FALSE(fitLine(trace, 3, 9));
    EXPECT_FALSE(fitLine(trace, 2, 1));
    EXPECT_FALSE(fitLine(traceOf({}), 0, 9));
    EXPECT_TRUE(fitLine(trace, 1, 3));
}

TEST(LineFit, GoesThroughTwoSamples)
{
    const Trace trace = traceOf({60535, 58535});
    const std::optional<Line> line = fitLine(trace, 0, 2);
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->at(0.0), 5.0, 1e-12);
    EXPECT_NEAR(line->at(1.0), 7.0, 1e-12);
    EXPECT_EQ(line->sigma_dB, 0.0);
}

TEST(LineFit, FindsTheSlopeOfAStraightFibre)
{
    const Trace trace = traceOf(slope(1000, 40.0, 0.005));
    const std::optional<Line> line = fitLine(trace, 100, 900);
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->slope_dB, -0.005, 1e-12);
    EXPECT_NEAR(line->at(0.0), 40.0, 1e-9);
    EXPECT_NEAR(line->sigma_dB, 0.0, 1e-6);
    EXPECT_EQ(line->samples, 800U);
    EXPECT_DOUBLE_EQ(line->centre, 499.5);
}

TEST(LineFit, ScattersAsTheKnownTextbookExample)
{
    // Levels 1, 3, 2 dB: slope 0.5, mean 2, residuals -0.5, 1, -0.5, so sigma = sqrt(1.5 / 1).
    const Trace trace = traceOf({64535, 62535, 63535});
    const std::optional<Line> line = fitLine(trace, 0, 3);
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->slope_dB, 0.5, 1e-12);
    EXPECT_NEAR(line->level_dB, 2.0, 1e-12);
    EXPECT_NEAR(line->sigma_dB, std::sqrt(1.5), 1e-12);
}

TEST(LineFit, EqualsStraightSumsForAnyStretch)
{
    std::mt19937 generator(2);
    for (unsigned round = 0; round < 200; ++round) {
        const Trace trace = traceOf(randomCounts(2 + generator() % 3000, round));
        const std::size_t first = generator() % (trace.size() - 1);
        const std::size_t last = first + 2 + generator() % (trace.size() - first - 1);
        expectSameLine(trace, first, std::min(last, trace.size()));
    }
}

TEST(LineFit, AgreesWithStraightSumsOnTenMillionSamples)
{
    const Trace trace = traceOf(slope(10'000'000, 60.0, 0.000005));
    expectSameLine(trace, 0, trace.size());
    expectSameLine(trace, 9'990'000, 9'999'999);
    expectSameLine(trace, 1'234'567, 8'765'432);
    const Trace noise = traceOf(randomCounts(10'000'000, 4));
    expectSameLine(noise, 0, noise.size());
    expectSameLine(noise, 9'999'900, 10'000'000);
}

TEST(LineFit, OfTheReversedTraceHasTheOppositeSlope)
{
    Counts counts = randomCounts(777, 3);
    const std::optional<Line> line = fitLine(traceOf(counts), 0, 777);
    std::reverse(counts.begin(), counts.end());
    const std::optional<Line> reversed = fitLine(traceOf(counts), 0, 777);
    ASSERT_TRUE(line && reversed);
    EXPECT_NEAR(reversed->slope_dB, -line->slope_dB, 1e-12);
    EXPECT_NEAR(reversed->level_dB, line->level_dB, 1e-9);
    EXPECT_NEAR(reversed->sigma_dB, line->sigma_dB, 1e-9);
}

TEST(LineFit, ScalesWithTheDecibelsOfACount)
{
    const Counts counts = randomCounts(500, 8);
    const std::optional<Line> fine = fitLine(traceOf(counts, 0.001), 0, 500);
    const std::optional<Line> coarse = fitLine(traceOf(counts, 0.002), 0, 500);
    ASSERT_TRUE(fine && coarse);
    EXPECT_NEAR(coarse->slope_dB, 2.0 * fine->slope_dB, 1e-12);
    EXPECT_NEAR(coarse->level_dB, 2.0 * fine->level_dB, 1e-9);
    EXPECT_NEAR(coarse->sigma_dB, 2.0 * fine->sigma_dB, 1e-9);
}

TEST(LineFit, DoesNotDependOnWhereTheStretchLies)
{
    const Counts stretch = randomCounts(300, 6);
    Counts counts = randomCounts(100'000, 7);
    std::copy(stretch.begin(), stretch.end(), counts.begin() + 98'765);
    const std::optional<Line> alone = fitLine(traceOf(stretch), 0, 300);
    const std::optional<Line> moved = fitLine(traceOf(counts), 98'765, 99'065);
    ASSERT_TRUE(alone && moved);
    EXPECT_DOUBLE_EQ(moved->slope_dB, alone->slope_dB);
    EXPECT_DOUBLE_EQ(moved->level_dB, alone->level_dB);
    EXPECT_DOUBLE_EQ(moved->sigma_dB, alone->sigma_dB);
}

TEST(LineFit, OfAFlatTraceHasNoSlopeAndNoScatter)
{
    for (const std::uint16_t raw : {0, 32768, 65535}) {
        const std::optional<Line> line = fitLine(traceOf(Counts(1000, raw)), 0, 1000);
        ASSERT_TRUE(line);
        EXPECT_EQ(line->slope_dB, 0.0);
        EXPECT_EQ(line->sigma_dB, 0.0);
        EXPECT_DOUBLE_EQ(line->level_dB, (65535 - raw) * 0.001);
    }
}

TEST(LineFit, ThroughSamplesWithoutSignalShowsItselfByItsScatter)
{
    const auto trace =
        TraceBuilder().fibre(1_km).behind(4000).noise(0.05_dB, 3).noiseFloor(15_dB).build();
    const std::optional<Line> fibre = fitLine(*trace, 0, 900);
    const std::optional<Line> noise = fitLine(*trace, 1000, trace->size());
    ASSERT_TRUE(fibre && noise);
    EXPECT_NEAR(fibre->sigma_dB, 0.05, 0.005);
    EXPECT_GT(noise->sigma_dB, 5.0);
}

TEST(LineFit, TakesTheSamplesBetweenFractionalIndices)
{
    const Trace trace = traceOf(randomCounts(100, 5));
    const auto expectStretch = [&](double from, double to, std::size_t first, std::size_t last) {
        const std::optional<Line> found = fitLineBetween(trace, from, to);
        const std::optional<Line> expected = fitLine(trace, first, last);
        ASSERT_TRUE(found && expected);
        EXPECT_EQ(found->samples, expected->samples);
        EXPECT_DOUBLE_EQ(found->centre, expected->centre);
    };
    expectStretch(10.0, 20.0, 10, 20);
    expectStretch(9.1, 19.1, 10, 20);
    expectStretch(-50.0, 1e9, 0, 100);
    EXPECT_FALSE(fitLineBetween(trace, 20.0, 10.0));
    EXPECT_FALSE(fitLineBetween(trace, 10.2, 11.9));
    EXPECT_FALSE(fitLineBetween(trace, std::nan(""), 10.0));
    EXPECT_FALSE(fitLineBetween(trace, 10.0, std::nan("")));
    EXPECT_FALSE(fitLineBetween(trace, 200.0, std::numeric_limits<double>::infinity()));
}

} // namespace
