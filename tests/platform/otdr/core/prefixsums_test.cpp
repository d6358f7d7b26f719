#include "platform/otdr/core/prefixsums.h"
#include "tests/platform/otdr/core/counts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using otdr::LineSums;
using otdr::PowerSums;
using otdr::PrefixSums;
using otdr::RawSamples;
using testing_support::randomCounts;

using Counts = std::vector<std::uint16_t>;

/// Straight sums with the centre and base that the answer chose.
void expectExactSums(const Counts& counts, const PrefixSums& sums, std::size_t first,
                     std::size_t last)
{
    const LineSums found = sums.sums(first, last);
    ASSERT_EQ(found.samples, last - first);
    ASSERT_GE(found.centre, first);
    ASSERT_LT(found.centre, last);
    std::int64_t y = 0;
    std::int64_t xy = 0;
    std::int64_t yy = 0;
    for (std::size_t i = first; i < last; ++i) {
        const std::int64_t value = counts[i] - found.base;
        y += value;
        xy += (static_cast<std::int64_t>(i) - static_cast<std::int64_t>(found.centre)) * value;
        yy += value * value;
    }
    ASSERT_EQ(found.y, y) << first << " .. " << last;
    ASSERT_EQ(found.xy, xy) << first << " .. " << last;
    ASSERT_EQ(found.yy, yy) << first << " .. " << last;
    ASSERT_LT(std::abs(found.y), static_cast<std::int64_t>(found.samples));

    const LineSums plain = sums.sumsWithoutSquares(first, last);
    ASSERT_EQ(plain.samples, found.samples);
    ASSERT_EQ(plain.centre, found.centre);
    ASSERT_EQ(plain.base, found.base);
    ASSERT_EQ(plain.y, found.y);
    ASSERT_EQ(plain.xy, found.xy);
    ASSERT_EQ(plain.yy, 0);
    const double mean = static_cast<double>(found.base)
        + static_cast<double>(y) / static_cast<double>(found.samples);
    ASSERT_NEAR(sums.mean(first, last), mean, 1e-9) << first << " .. " << last;
}

TEST(PrefixSums, AreAllZeroForNoSamples)
{
    const PrefixSums sums {RawSamples()};
    EXPECT_EQ(sums.sums(0, 5).samples, 0U);
    const PrefixSums some {RawSamples(Counts {1, 2, 3})};
    for (const LineSums& none : {some.sums(1, 1), some.sums(2, 1), some.sums(3, 9)}) {
        EXPECT_EQ(none.samples, 0U);
        EXPECT_EQ(none.y, 0);
        EXPECT_EQ(none.xy, 0);
        EXPECT_EQ(none.yy, 0);
    }
    EXPECT_TRUE(std::isnan(sums.mean(0, 5)));
    EXPECT_TRUE(std::isnan(some.mean(2, 1)));
}

TEST(PrefixSums, AreCutToTheTrace)
{
    const PrefixSums sums {RawSamples(Counts {1, 2, 3})};
    EXPECT_EQ(sums.sums(1, 100).samples, 2U);
    EXPECT_DOUBLE_EQ(sums.mean(1, 100), 2.5);
}

TEST(PrefixSums, AreExactForEveryStretchOfAShortTrace)
{
    const Counts counts = randomCounts(200, 1);
    const PrefixSums sums {RawSamples(counts)};
    for (std::size_t first = 0; first < counts.size(); ++first) {
        for (std::size_t last = first + 1; last <= counts.size(); ++last) {
            expectExactSums(counts, sums, first, last);
        }
    }
}

TEST(PrefixSums, AreExactAroundTheBordersOfBlocks)
{
    for (const std::size_t size : {1U, 63U, 64U, 65U, 127U, 128U, 129U, 6400U}) {
        const Counts counts = randomCounts(size, static_cast<unsigned>(size));
        const PrefixSums sums {RawSamples(counts)};
        expectExactSums(counts, sums, 0, size);
        expectExactSums(counts, sums, size - 1, size);
        expectExactSums(counts, sums, size / 2, size);
    }
}

TEST(PrefixSums, AreExactForAnyStretchOfAnySize)
{
    std::mt19937 generator(5);
    for (unsigned round = 0; round < 100; ++round) {
        const Counts counts = randomCounts(2 + generator() % 20000, round);
        const PrefixSums sums {RawSamples(counts)};
        const std::size_t first = generator() % (counts.size() - 1);
        const std::size_t last = first + 1 + generator() % (counts.size() - first);
        expectExactSums(counts, sums, first, std::min(last, counts.size()));
    }
}

TEST(PrefixSums, StayExactAtTheEndsOfTheirRange)
{
    // The worst case: the counts as far as can be from their middle, with the sign of the distance
    // from the centre.
    Counts counts(PrefixSums::kLongest + 100, 0);
    std::fill(counts.begin() + static_cast<std::ptrdiff_t>(counts.size() / 2), counts.end(),
              std::uint16_t {65535});
    const PrefixSums sums {RawSamples(counts)};
    expectExactSums(counts, sums, 50, 50 + PrefixSums::kLongest);
    EXPECT_EQ(sums.sums(0, PrefixSums::kLongest + 1).samples, 0U);
}

TEST(PrefixSums, TakeAtMostAFifthOfTheMemoryOfTheSamples)
{
    const std::size_t size = 1'000'000;
    const PrefixSums sums {RawSamples(Counts(size, 1))};
    EXPECT_LE(sums.bytes() * 5, size * sizeof(std::uint16_t));
    const PowerSums power(RawSamples(Counts(size, 1)), 0.001);
    EXPECT_LE(power.bytes() * 7, size * sizeof(std::uint16_t));
}

long double straightPower(const Counts& counts, std::size_t first, std::size_t last,
                          double dbPerCount, double reference)
{
    long double sum = 0.0L;
    for (std::size_t i = first; i < last; ++i) {
        const long double level = (65535 - counts[i]) * static_cast<long double>(dbPerCount);
        sum += std::pow(10.0L, (level - reference) / 5.0L);
    }
    return sum;
}

void expectPower(const Counts& counts, const PowerSums& sums, std::size_t first, std::size_t last,
                 double reference, double dbPerCount = 0.001)
{
    const long double expected = straightPower(counts, first, last, dbPerCount, reference);
    const double found = sums.sum(first, last, reference);
    ASSERT_NEAR(found / static_cast<double>(expected), 1.0, 1e-9) << first << " .. " << last;
}

TEST(PowerSums, AreZeroForNoSamples)
{
    EXPECT_EQ(PowerSums(RawSamples(), 0.001).sum(0, 5, 0.0), 0.0);
    const PowerSums sums(RawSamples(Counts {1, 2, 3}), 0.001);
    EXPECT_EQ(sums.sum(1, 1, 0.0), 0.0);
    EXPECT_EQ(sums.sum(3, 9, 0.0), 0.0);
}

TEST(PowerSums, CountASampleAtTheReferenceAsOne)
{
    const PowerSums sums(RawSamples(Counts {65535, 55535, 25535}), 0.001);
    EXPECT_NEAR(sums.sum(0, 1, 0.0), 1.0, 1e-12);
    EXPECT_NEAR(sums.sum(1, 2, 10.0), 1.0, 1e-12);
    EXPECT_NEAR(sums.sum(1, 2, 5.0), 10.0, 1e-11); // 5 decibels of a trace are a factor of ten
    EXPECT_NEAR(sums.sum(2, 3, 40.0), 1.0, 1e-12);
}

TEST(PowerSums, EqualStraightSumsForAnyStretch)
{
    std::mt19937 generator(9);
    for (unsigned round = 0; round < 60; ++round) {
        const Counts counts = randomCounts(1 + generator() % 5000, round);
        const PowerSums sums(RawSamples(counts), 0.001);
        const std::size_t first = generator() % counts.size();
        const std::size_t last = first + 1 + generator() % (counts.size() - first);
        expectPower(counts, sums, first, last, 40.0);
    }
}

TEST(PowerSums, DoNotLoseTheFarEndBehindMillionsOfStrongSamples)
{
    // 65 dB of the trace apart: a factor of 10^13 in power, and 10^6 times as many of the strong
    // ones.
    Counts counts(2'000'000, 0);
    std::fill(counts.begin() + 1'500'000, counts.end(), std::uint16_t {65535});
    const PowerSums sums(RawSamples(counts), 0.001);
    expectPower(counts, sums, 1'900'001, 1'900'003, 0.0);
    expectPower(counts, sums, 1'500'000, 2'000'000, 0.0);
    std::reverse(counts.begin(), counts.end());
    const PowerSums reversed(RawSamples(counts), 0.001);
    expectPower(counts, reversed, 100, 5000, 0.0);
    expectPower(counts, reversed, 0, 500'000, 0.0);
}

TEST(PowerSums, KeepAWeakStretchBesideAStrongPeakInTheSameBlock)
{
    Counts counts(640, 65535);
    counts[100] = 0;
    const PowerSums sums(RawSamples(counts), 0.001);
    expectPower(counts, sums, 101, 400, 0.0);
    expectPower(counts, sums, 3, 100, 0.0);
}

TEST(PowerSums, StayFiniteOnAScaleNobodyUses)
{
    Counts counts = randomCounts(1000, 2);
    for (std::uint16_t& count : counts) {
        count = static_cast<std::uint16_t>(60000 + count % 1000); // 65 dB at 0.0655 dB a count
    }
    const double coarse = 0.065535;
    const PowerSums sums(RawSamples(counts), coarse);
    expectPower(counts, sums, 10, 900, 300.0, coarse);
}

} // namespace
