#include "platform/otdr/core/extremescan.h"
#include "platform/otdr/core/pyramid.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using otdr::Extremes;
using otdr::Pyramid;
using otdr::RawSamples;
using otdr::Sample;

using Counts = std::vector<std::uint16_t>;

/// One by one.
Extremes slowExtremes(const Counts& counts, std::size_t first, std::size_t last)
{
    Extremes found {{first, counts[first]}, {first, counts[first]}};
    for (std::size_t i = first; i < last; ++i) {
        if (counts[i] < found.highest.raw) {
            found.highest = {i, counts[i]};
        }
        if (counts[i] > found.lowest.raw) {
            found.lowest = {i, counts[i]};
        }
    }
    return found;
}

/// Counts lowest .. highest at random; few of them make many equal ones.
Counts countsBetween(std::size_t size, unsigned lowest, unsigned highest, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_int_distribution<unsigned> distribution(lowest, highest);
    Counts counts(size);
    for (std::uint16_t& count : counts) {
        count = static_cast<std::uint16_t>(distribution(generator));
    }
    return counts;
}

Counts falling(std::size_t size)
{
    Counts counts(size);
    for (std::size_t i = 0; i < size; ++i) {
        counts[i] = static_cast<std::uint16_t>(i * 65535 / size);
    }
    return counts;
}

void expectExactExtremes(const Counts& counts, const Pyramid& pyramid, std::size_t first,
                         std::size_t last)
{
    const Extremes expected = slowExtremes(counts, first, last);
    const std::optional<Extremes> found = pyramid.extremes(first, last);
    ASSERT_TRUE(found);
    ASSERT_EQ(found->highest, expected.highest)
        << first << " .. " << last << " of " << counts.size();
    ASSERT_EQ(found->lowest, expected.lowest) << first << " .. " << last << " of " << counts.size();
    ASSERT_EQ(pyramid.highest(first, last), expected.highest);
}

void expectExactAnywhere(const Counts& counts, unsigned seed)
{
    const Pyramid pyramid {RawSamples(counts)};
    std::mt19937 generator(seed);
    std::uniform_int_distribution<std::size_t> anywhere(0, counts.size());
    for (int i = 0; i < 300; ++i) {
        std::size_t first = anywhere(generator);
        std::size_t last = anywhere(generator);
        if (first > last) {
            std::swap(first, last);
        }
        if (first < last) {
            expectExactExtremes(counts, pyramid, first, last);
        }
    }
    expectExactExtremes(counts, pyramid, 0, counts.size());
}

TEST(Pyramid, HasNoExtremesWithoutSamples)
{
    const Pyramid pyramid {RawSamples()};
    EXPECT_FALSE(pyramid.extremes(0, 1));
    EXPECT_FALSE(pyramid.highest(0, 1));
}

TEST(Pyramid, HasNoExtremesInAnEmptyStretchOrBehindTheTrace)
{
    const Pyramid pyramid {RawSamples(Counts {1, 2, 3})};
    EXPECT_FALSE(pyramid.extremes(1, 1));
    EXPECT_FALSE(pyramid.extremes(2, 1));
    EXPECT_FALSE(pyramid.extremes(3, 9));
    EXPECT_FALSE(pyramid.highest(3, 9));
}

TEST(Pyramid, CutsAStretchToTheTrace)
{
    const Pyramid pyramid {RawSamples(Counts {5, 2, 7, 2})};
    const std::optional<Extremes> found = pyramid.extremes(1, 1000);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->highest, (Sample {1, 2}));
    EXPECT_EQ(found->lowest, (Sample {2, 7}));
}

TEST(Pyramid, AnswersASingleSample)
{
    const Pyramid pyramid {RawSamples(Counts {40000})};
    EXPECT_EQ(pyramid.highest(0, 1), (Sample {0, 40000}));
    EXPECT_EQ(pyramid.extremes(0, 1)->lowest, (Sample {0, 40000}));
}

TEST(Pyramid, OfEqualSamplesTakesTheFirst)
{
    for (const std::uint16_t level : {0, 1, 32767, 32768, 65534, 65535}) {
        const Counts counts(5000, level);
        expectExactAnywhere(counts, level);
    }
}

TEST(Pyramid, KnowsTheWholeRangeOfCounts)
{
    Counts counts(3000, 32768);
    counts[1234] = 0;
    counts[2345] = 65535;
    const Pyramid pyramid {RawSamples(counts)};
    EXPECT_EQ(pyramid.extremes(0, 3000)->highest, (Sample {1234, 0}));
    EXPECT_EQ(pyramid.extremes(0, 3000)->lowest, (Sample {2345, 65535}));
}

TEST(Pyramid, IsExactAroundEveryBorderOfGroups)
{
    for (const std::size_t group : {64U, 1024U, 16384U}) {
        for (const std::size_t size :
             {group - 1, group, group + 1, 2 * group + 7, 16 * group + 1}) {
            const Counts counts = countsBetween(size, 0, 65535, static_cast<unsigned>(size));
            const Pyramid pyramid {RawSamples(counts)};
            const std::size_t before = std::min(group, size) - 1;
            for (std::size_t first = before < 3 ? 0 : before - 3; first <= before; ++first) {
                expectExactExtremes(counts, pyramid, first, size);
                expectExactExtremes(counts, pyramid, 0, first + 1);
                expectExactExtremes(counts, pyramid, first, std::min(first + 2, size));
            }
        }
    }
}

TEST(Pyramid, IsExactForEveryStretchOfAShortTrace)
{
    const Counts counts = countsBetween(200, 100, 140, 7);
    const Pyramid pyramid {RawSamples(counts)};
    for (std::size_t first = 0; first < counts.size(); ++first) {
        for (std::size_t last = first + 1; last <= counts.size(); ++last) {
            expectExactExtremes(counts, pyramid, first, last);
        }
    }
}

TEST(Pyramid, IsExactForAnyStretchOfAnySize)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 generator(seed);
        const std::size_t size = 1 + generator() % 60000;
        expectExactAnywhere(countsBetween(size, 0, 65535, seed), seed);
        expectExactAnywhere(countsBetween(size, 65530, 65535, seed), seed);
        expectExactAnywhere(countsBetween(size, 20000, 20001, seed), seed);
        expectExactAnywhere(falling(size), seed);
    }
}

TEST(Pyramid, IsExactWhereAllLevelsAreInUse)
{
    const std::size_t size = 5'000'011; // 64 * 16 * 16 * 16 * 16 and more
    expectExactAnywhere(countsBetween(size, 0, 65535, 3), 4);
    expectExactAnywhere(falling(size), 5);
}

TEST(Pyramid, FindsASpikeOfOneSampleWhereverItIs)
{
    const std::size_t size = 20000;
    for (std::size_t at = 0; at < size; at += 37) {
        Counts counts(size, 30000);
        counts[at] = 29999;
        const Pyramid pyramid {RawSamples(counts)};
        ASSERT_EQ(pyramid.highest(0, size), (Sample {at, 29999}));
    }
}

TEST(Pyramid, AnswersManyStretchesAsItAnswersEach)
{
    const Counts counts = countsBetween(30000, 0, 3000, 11);
    const Pyramid pyramid {RawSamples(counts)};
    const std::vector<std::size_t> borders {0, 0, 1, 17, 64, 64, 500, 5000, 29999, 30000, 30000};
    std::vector<Sample> highest {{99, 99}};
    pyramid.appendHighest(borders, highest);
    std::vector<Sample> expected {{99, 99}};
    for (std::size_t k = 0; k + 1 < borders.size(); ++k) {
        if (const auto found = pyramid.highest(borders[k], borders[k + 1])) {
            expected.push_back(*found);
        }
    }
    EXPECT_EQ(highest, expected);
    EXPECT_EQ(highest.size(), 8U);
}

TEST(Pyramid, GivesBothExtremesInOrderAndASingleOneOnce)
{
    const Pyramid pyramid {RawSamples(Counts {5, 9, 3, 4, 4, 4, 8})};
    std::vector<Sample> found;
    const std::vector<std::size_t> borders {0, 3, 6, 7};
    pyramid.appendExtremes(borders, found);
    const std::vector<Sample> expected {{1, 9}, {2, 3}, {3, 4}, {6, 8}};
    EXPECT_EQ(found, expected);
}

TEST(Pyramid, StandsNoBordersAtAll)
{
    const Pyramid pyramid {RawSamples(Counts {1, 2})};
    std::vector<Sample> found;
    pyramid.appendHighest({}, found);
    pyramid.appendExtremes({}, found);
    EXPECT_TRUE(found.empty());
}

TEST(Pyramid, TakesAtMostATwelfthOfTheMemoryOfTheSamples)
{
    for (const std::size_t size : {1000U, 16000U, 1'000'000U}) {
        const Pyramid pyramid {RawSamples(Counts(size, 1))};
        EXPECT_LE(pyramid.bytes() * 12, size * sizeof(std::uint16_t));
    }
}

/// A place and a count for each group of 64, of the strongest and of the weakest: 6 bytes. Sixteen
/// groups are looked through at once; one more, and a level of two stands above them.
TEST(Pyramid, HasAFurtherLevelAboveMoreThanSixteenGroups)
{
    constexpr std::size_t kGroup = 64;
    EXPECT_EQ(Pyramid {RawSamples(Counts(16 * kGroup, 1))}.bytes(), 16U * 6U);
    EXPECT_EQ(Pyramid {RawSamples(Counts(17 * kGroup, 1))}.bytes(), 17U * 6U + 2U * 2U * 2U);
}

TEST(ExtremeScan, FindsTheFirstOfTheSmallestAndOfTheLargest)
{
    using namespace otdr::scan;
    for (std::size_t n = 1; n <= 300; ++n) {
        // Around the middle, where a count taken for a signed number would turn over, and at the
        // end.
        for (const int lowest : {32764, 65528}) {
            const Counts counts = countsBetween(n, lowest, lowest + 7, static_cast<unsigned>(n));
            const auto smallest = std::min_element(counts.begin(), counts.end());
            const auto largest = std::max_element(counts.begin(), counts.end());
            for (const auto& search : {best, plainBest}) {
                const Place low = search(counts.data(), n, kSmallestFirst);
                const Place high = search(counts.data(), n, kLargestFirst);
                ASSERT_EQ(low.position, static_cast<std::size_t>(smallest - counts.begin())) << n;
                ASSERT_EQ(low.count, *smallest) << n;
                ASSERT_EQ(high.position, static_cast<std::size_t>(largest - counts.begin())) << n;
                ASSERT_EQ(high.count, *largest) << n;
            }
        }
    }
}

TEST(ExtremeScan, VectorsAgreeWithThePlainLoopOnAGroup)
{
    using namespace otdr::scan;
    for (unsigned seed = 0; seed < 300; ++seed) {
        const Counts counts =
            countsBetween(kGroup, seed % 2 == 0 ? 0 : 32760, seed % 2 == 0 ? 65535 : 32775, seed);
        const GroupExtremes expected = plainExtremes(counts.data(), kGroup);
        const GroupExtremes found = groupExtremes(counts.data());
        ASSERT_EQ(found.smallest.position, expected.smallest.position);
        ASSERT_EQ(found.smallest.count, expected.smallest.count);
        ASSERT_EQ(found.largest.position, expected.largest.position);
        ASSERT_EQ(found.largest.count, expected.largest.count);
    }
}

} // namespace
