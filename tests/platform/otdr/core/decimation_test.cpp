#include "platform/otdr/core/decimation.h"
#include "platform/otdr/core/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using otdr::decimateEnvelope;
using otdr::decimatePeaks;
using otdr::RawSamples;
using otdr::Sample;
using otdr::Trace;
using testing::ElementsAre;
using testing::IsEmpty;

using Counts = std::vector<std::uint16_t>;
using Samples = std::vector<Sample>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class TraceOf
{
public:
    explicit TraceOf(const Counts& counts)
        : trace(RawSamples(counts), otdr::kUsualDbPerCount, {})
    {
    }

    operator const Trace&() const { return trace; } // NOLINT(google-explicit-constructor)

private:
    Trace trace;
};

Counts countsOfFew(std::size_t size, unsigned different, unsigned seed)
{
    std::mt19937 generator(seed);
    Counts counts(size);
    for (std::uint16_t& count : counts) {
        count = static_cast<std::uint16_t>(generator() % different);
    }
    return counts;
}

/// Column of each sample by the definition; samples outside the window have none.
std::vector<Samples> slowColumns(const Counts& counts, double first, double last,
                                 std::size_t columns)
{
    std::vector<Samples> result(columns);
    const double width = (last - first) / static_cast<double>(columns);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const auto at = static_cast<double>(i);
        if (at < first || at > last) {
            continue;
        }
        std::size_t column = columns - 1;
        while (column > 0 && at < first + static_cast<double>(column) * width) {
            --column;
        }
        result[column].push_back({i, counts[i]});
    }
    return result;
}

Sample highestOf(const Samples& column)
{
    return *std::min_element(column.begin(), column.end(),
                             [](const Sample& a, const Sample& b) { return a.raw < b.raw; });
}

Sample lowestOf(const Samples& column)
{
    return *std::min_element(column.begin(), column.end(),
                             [](const Sample& a, const Sample& b) { return a.raw > b.raw; });
}

Samples all(const std::vector<Samples>& columns)
{
    Samples result;
    for (const Samples& column : columns) {
        result.insert(result.end(), column.begin(), column.end());
    }
    return result;
}

Samples slowPeaks(const Counts& counts, double first, double last, std::size_t points)
{
    const std::vector<Samples> columns = slowColumns(counts, first, last, points);
    Samples every = all(columns);
    if (every.size() <= points) {
        return every;
    }
    Samples result;
    for (const Samples& column : columns) {
        if (!column.empty()) {
            result.push_back(highestOf(column));
        }
    }
    return result;
}

Samples slowEnvelope(const Counts& counts, double first, double last, std::size_t points)
{
    const std::vector<Samples> columns =
        slowColumns(counts, first, last, std::max<std::size_t>(points / 2, 1));
    Samples every = all(columns);
    if (every.size() <= points) {
        return every;
    }
    Samples result;
    for (const Samples& column : columns) {
        if (column.empty()) {
            continue;
        }
        Samples both {highestOf(column), lowestOf(column)};
        std::sort(both.begin(), both.end(),
                  [](const Sample& a, const Sample& b) { return a.index < b.index; });
        result.push_back(both[0]);
        if (both[0].index != both[1].index) {
            result.push_back(both[1]);
        }
    }
    return result;
}

TEST(Decimation, OfAnEmptyTraceIsEmpty)
{
    const TraceOf trace({});
    EXPECT_THAT(decimatePeaks(trace, 0, 10, 5), IsEmpty());
    EXPECT_THAT(decimateEnvelope(trace, 0, 10, 5), IsEmpty());
}

TEST(Decimation, IntoNoPointsIsEmpty)
{
    const TraceOf trace({1, 2, 3});
    EXPECT_THAT(decimatePeaks(trace, 0, 2, 0), IsEmpty());
    EXPECT_THAT(decimateEnvelope(trace, 0, 2, 0), IsEmpty());
}

TEST(Decimation, OfAWindowWithoutSamplesIsEmpty)
{
    const TraceOf trace({1, 2, 3});
    EXPECT_THAT(decimatePeaks(trace, 0.2, 0.8, 5), IsEmpty());
    EXPECT_THAT(decimatePeaks(trace, 2, 1, 5), IsEmpty());
    EXPECT_THAT(decimatePeaks(trace, 2.5, 9, 5), IsEmpty());
    EXPECT_THAT(decimatePeaks(trace, -9, -0.5, 5), IsEmpty());
}

TEST(Decimation, OfAWindowThatIsNoNumberIsEmpty)
{
    const TraceOf trace({1, 2, 3});
    EXPECT_THAT(decimatePeaks(trace, kNan, 2, 1), IsEmpty());
    EXPECT_THAT(decimatePeaks(trace, 0, kNan, 1), IsEmpty());
    EXPECT_THAT(decimateEnvelope(trace, kNan, kNan, 1), IsEmpty());
}

TEST(Decimation, WindowIsClosedAtBothEnds)
{
    const TraceOf trace({10, 11, 12, 13, 14});
    EXPECT_THAT(decimatePeaks(trace, 1, 3, 5),
                ElementsAre(Sample {1, 11}, Sample {2, 12}, Sample {3, 13}));
    EXPECT_THAT(decimatePeaks(trace, 2, 2, 5), ElementsAre(Sample {2, 12}));
    EXPECT_THAT(decimatePeaks(trace, 1.01, 2.99, 5), ElementsAre(Sample {2, 12}));
}

TEST(Decimation, GivesAllSamplesWhereTheyAreNoMoreThanThePoints)
{
    const Counts counts = countsOfFew(100, 65536, 1);
    const TraceOf trace(counts);
    for (const std::size_t points : {100U, 101U, 5000U}) {
        EXPECT_EQ(decimatePeaks(trace, 0, 99, points).size(), 100U);
        EXPECT_EQ(decimateEnvelope(trace, 0, 99, points).size(), 100U);
    }
    EXPECT_LE(decimatePeaks(trace, 0, 99, 99).size(), 99U);
}

TEST(Decimation, PeaksAreTheHighestOfEachColumnAtTheirTrueIndex)
{
    const TraceOf trace({9, 3, 7, 8, 2, 2, 5, 6, 1});
    // Columns 0 .. 2, 3 .. 5, 6 .. 8.
    EXPECT_THAT(decimatePeaks(trace, 0, 8.9, 3),
                ElementsAre(Sample {1, 3}, Sample {4, 2}, Sample {8, 1}));
}

TEST(Decimation, SampleOnABorderBelongsToTheColumnBehindIt)
{
    const TraceOf trace({9, 9, 1, 9, 5});
    // Columns 0 <= i < 2 and 2 <= i <= 4.
    EXPECT_THAT(decimatePeaks(trace, 0, 4, 2), ElementsAre(Sample {0, 9}, Sample {2, 1}));
}

TEST(Decimation, LastColumnHoldsTheRightBorderOfTheWindow)
{
    const TraceOf trace({9, 9, 9, 9, 1});
    EXPECT_THAT(decimatePeaks(trace, 0, 4, 2), ElementsAre(Sample {0, 9}, Sample {4, 1}));
}

TEST(Decimation, ColumnsDivideTheWholeWindowAlsoOutsideTheTrace)
{
    const TraceOf trace({5, 4, 3, 2, 1, 0});
    // Columns -6 .. 0, 0 .. 6, 6 .. 12: all samples in the one in the middle.
    EXPECT_THAT(decimatePeaks(trace, -6, 12, 3), ElementsAre(Sample {5, 0}));
    EXPECT_THAT(decimateEnvelope(trace, -6, 12, 4),
                ElementsAre(Sample {0, 5}, Sample {2, 3}, Sample {3, 2}, Sample {5, 0}));
}

TEST(Decimation, EnvelopeIsInOrderOfIndex)
{
    const TraceOf trace({5, 9, 1, 5, 5, 1, 9, 5});
    EXPECT_THAT(decimateEnvelope(trace, 0, 7.9, 4),
                ElementsAre(Sample {1, 9}, Sample {2, 1}, Sample {5, 1}, Sample {6, 9}));
}

TEST(Decimation, EnvelopeHasOnePointForAColumnOfEqualSamples)
{
    const TraceOf trace(Counts(100, 7));
    EXPECT_THAT(decimateEnvelope(trace, 0, 100, 4), ElementsAre(Sample {0, 7}, Sample {50, 7}));
}

TEST(Decimation, EnvelopeOfOnePointIsStillAColumn)
{
    const TraceOf trace({5, 9, 1, 5});
    EXPECT_THAT(decimateEnvelope(trace, 0, 3, 1), ElementsAre(Sample {1, 9}, Sample {2, 1}));
}

TEST(Decimation, StandsWindowsOfAnySize)
{
    const TraceOf trace({5, 9, 1, 5});
    const double huge = std::numeric_limits<double>::max();
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_THAT(decimatePeaks(trace, -huge, huge, 4), testing::SizeIs(4));
    EXPECT_THAT(decimatePeaks(trace, -infinite, infinite, 1), ElementsAre(Sample {2, 1}));
    EXPECT_THAT(decimatePeaks(trace, huge, huge, 4), IsEmpty());
    EXPECT_THAT(decimatePeaks(trace, -infinite, infinite, 2), ElementsAre(Sample {2, 1}));
    EXPECT_THAT(decimatePeaks(trace, -huge, 3, 2), ElementsAre(Sample {2, 1}));
    EXPECT_THAT(decimatePeaks(trace, 0, huge, 3), ElementsAre(Sample {2, 1}));
    EXPECT_THAT(decimateEnvelope(trace, 0, infinite, 2), testing::SizeIs(2));
}

TEST(Decimation, LosesNoPeakOfOneSampleAtAnyZoom)
{
    const std::size_t size = 30000;
    std::mt19937 generator(3);
    for (int round = 0; round < 60; ++round) {
        Counts counts(size, 40000);
        const std::size_t at = generator() % size;
        counts[at] = 39999;
        const TraceOf trace(counts);
        for (const double width : {500.0, 3000.0, 29999.0, 1e6}) {
            const double part = static_cast<double>(generator() % 1000) / 1000.0;
            const double first = static_cast<double>(at) - width * part;
            const Samples peaks = decimatePeaks(trace, first, first + width, 150);
            EXPECT_THAT(peaks, testing::Contains(Sample {at, 39999}));
            const Samples outline = decimateEnvelope(trace, first, first + width, 150);
            EXPECT_THAT(outline, testing::Contains(Sample {at, 39999}));
        }
    }
}

TEST(Decimation, EqualsTheDefinitionForAnyWindow)
{
    std::mt19937 generator(17);
    std::uniform_real_distribution<double> part(-0.2, 1.2);
    for (unsigned round = 0; round < 200; ++round) {
        const std::size_t size = generator() % 40000;
        const Counts counts = countsOfFew(size, round % 2 == 0 ? 65536 : 3, round);
        const TraceOf trace(counts);
        double first = part(generator) * static_cast<double>(size);
        double last = part(generator) * static_cast<double>(size);
        if (round % 3 == 0) {
            first = std::floor(first);
            last = std::floor(last);
        }
        if (first > last) {
            std::swap(first, last);
        }
        const std::size_t points = 1 + generator() % 700;
        ASSERT_EQ(decimatePeaks(trace, first, last, points),
                  slowPeaks(counts, first, last, points));
        ASSERT_EQ(decimateEnvelope(trace, first, last, points),
                  slowEnvelope(counts, first, last, points));
    }
}

TEST(Decimation, NeverGivesMorePointsThanAsked)
{
    const Counts counts = countsOfFew(10000, 65536, 5);
    const TraceOf trace(counts);
    for (std::size_t points = 2; points < 200; ++points) {
        EXPECT_LE(decimatePeaks(trace, 0, 9999, points).size(), points);
        EXPECT_LE(decimateEnvelope(trace, 0, 9999, points).size(), points);
    }
}

} // namespace
