#include "platform/otdr/core/trace.h"
#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/tracechart.h"
#include "tests/support/tracefiles.h"

#include <QList>
#include <QPoint>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace testing_support; // builder and units
using otdrreport::chartOf;
using otdrreport::ChartWindow;
using otdrreport::markRows;
using otdrreport::TraceChart;
using otdrreport::windowOf;

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

std::shared_ptr<const TraceState> measured(const TraceBuilder& builder)
{
    static TraceFiles files;
    return files.measured(builder).state();
}

/// Corners of a path of one M and relative l.
QList<QPoint> corners(const QByteArray& path)
{
    static const QRegularExpression step("([Ml])(-?\\d+) ?(-?\\d+)");
    QList<QPoint> found;
    auto steps = step.globalMatch(path);
    while (steps.hasNext()) {
        const auto match = steps.next();
        const QPoint by(match.captured(2).toInt(), match.captured(3).toInt());
        found << (found.isEmpty() ? by : found.last() + by);
    }
    return found;
}

TEST(ChartWindow, ShowsTheFibreAndSomeOfWhatLiesBehindIt)
{
    const auto state = measured(TraceBuilder().fibre(10_km).behind(20'000));
    const ChartWindow window = windowOf(*state, {0.0, 10'000.0}, 10'000.0);
    EXPECT_NEAR(window.start_m, 0.0, 0.01) << "the record begins there";
    EXPECT_NEAR(window.end_m, 11'500.0, 1.0);
}

TEST(ChartWindow, WithoutAKnownEndShowsTheWholeRecord)
{
    const auto state = measured(TraceBuilder().fibre(10_km).behind(5'000));
    const double record_m = state->trace->distanceAt(
        static_cast<double>(state->trace->size()) - 1.0, state->metresPerNs());
    EXPECT_NEAR(windowOf(*state, {}, kUnknown).end_m, record_m, 0.01);
    EXPECT_NEAR(windowOf(*state, {2000.0, kUnknown}, kUnknown).end_m, record_m, 0.01);
}

TEST(ChartWindow, HoldsEveryEventOfTheRecord)
{
    const auto state = measured(TraceBuilder().fibre(10_km).behind(20'000));
    EXPECT_GT(windowOf(*state, {0.0, 14'000.0}, 10'000.0).end_m, 14'000.0);
    const ChartWindow beyond = windowOf(*state, {-1e9, 1e9}, kUnknown);
    EXPECT_LT(beyond.end_m, 1e6) << "an event beside the record does not squeeze it";
    EXPECT_GT(beyond.end_m, beyond.start_m);
}

TEST(ChartWindow, LevelsRiseInWholeStepsAboveThePeaks)
{
    const auto state = measured(TraceBuilder().fibre(10_km).launch(40_dB));
    const ChartWindow window = windowOf(*state, {}, kUnknown);
    EXPECT_EQ(window.high_dB, 45.0) << "40 dB would lie on the border";
    EXPECT_LE(window.low_dB, 38.0);
    EXPECT_EQ(window.left_percent(window.start_m), 0.0);
    EXPECT_EQ(window.top_percent(window.low_dB), 100.0);
}

TEST(TraceChart, PathKeepsThePeakOfOneSample)
{
    const auto state = measured(
        TraceBuilder().pulse(10.0).fibre(50_km).noise(0.01_dB, 3).reflection(31_km, 12_dB));
    const TraceChart chart = chartOf(*state, {}, kUnknown);
    ASSERT_GT(state->trace->size(), 10'000U);
    const otdr::Sample peak = *state->trace->pyramid().highest(1000, state->trace->size() - 10);
    double highest = 1e9;
    for (const QPoint& corner : corners(chart.path)) {
        if (std::abs(corner.x() / 20.0 - 62.0) < 2.0) {
            highest = std::min<double>(highest, corner.y());
        }
    }
    const double expected =
        chart.window.top_percent(state->trace->toLevel_dB(peak.raw)) / 100.0 * TraceChart::kHeight;
    EXPECT_NEAR(highest, expected, 1.0);
}

TEST(TraceChart, PathIsAFewKilobytesWhateverTheTrace)
{
    const auto state = measured(TraceBuilder().fibre(200_km).noise(0.5_dB, 3));
    ASSERT_GT(state->trace->size(), 100'000U);
    const TraceChart chart = chartOf(*state, {}, kUnknown);
    EXPECT_LT(chart.path.size(), 20'000);
    const QList<QPoint> line = corners(chart.path);
    EXPECT_GT(line.size(), 1000);
    EXPECT_TRUE(
        std::is_sorted(line.begin(), line.end(), [](QPoint a, QPoint b) { return a.x() < b.x(); }));
    EXPECT_LE(line.last().x(), TraceChart::kWidth);
}

TEST(TraceChart, SamplesOfAShortTraceAreAllThere)
{
    const auto state = measured(TraceBuilder().fibre(2_km));
    const auto samples = chartOf(*state, {}, kUnknown).samples;
    EXPECT_EQ(samples.perStep, 1);
    ASSERT_EQ(static_cast<std::size_t>(samples.counts.size()), 2 * state->trace->size());
    const auto low = static_cast<unsigned char>(samples.counts[200]);
    const auto high = static_cast<unsigned char>(samples.counts[201]);
    EXPECT_EQ(low + 256 * high, state->trace->samples()[100]);
    EXPECT_NEAR(samples.first_m + 100 * samples.step_m,
                state->trace->distanceAt(100.0, state->metresPerNs()), 1e-6);
}

TEST(TraceChart, SamplesOfALongTraceKeepBothExtremes)
{
    const auto state =
        measured(TraceBuilder().fibre(100_km).noise(0.5_dB, 3).reflection(50_km, 15_dB));
    ASSERT_GT(state->trace->size(), 32768U);
    const auto samples = chartOf(*state, {}, kUnknown).samples;
    EXPECT_EQ(samples.perStep, 2);
    EXPECT_LE(samples.counts.size(), 2 * 32768 + 4);
    const auto countAt = [&](int i) {
        return static_cast<unsigned char>(samples.counts[2 * i])
            + 256 * static_cast<unsigned char>(samples.counts[2 * i + 1]);
    };
    const auto raw = state->trace->samples();
    const std::size_t stretch = (2 * raw.size() + 32767) / 32768;
    int count = 0;
    for (std::size_t begin = 0; begin < raw.size(); begin += stretch, count += 2) {
        const std::size_t end = std::min(begin + stretch, raw.size());
        ASSERT_LE(2 * (count + 2), samples.counts.size());
        int highest = 65535;
        int lowest = 0; // counts fall where levels rise
        for (std::size_t j = begin; j < end; ++j) {
            highest = std::min<int>(highest, raw[j]);
            lowest = std::max<int>(lowest, raw[j]);
        }
        ASSERT_EQ(countAt(count), highest);
        ASSERT_EQ(countAt(count + 1), lowest);
    }
    EXPECT_EQ(2 * count, samples.counts.size());
}

TEST(TraceChart, SamplesOfALongTraceStandInTheMiddleOfTheirStretch)
{
    const auto state = measured(TraceBuilder().fibre(100_km));
    const auto distance = [&](double index) {
        return state->trace->distanceAt(index, state->metresPerNs());
    };
    const auto samples = chartOf(*state, {}, kUnknown).samples;
    const double stretch = samples.step_m / (distance(1.0) - distance(0.0));
    EXPECT_GT(stretch, 1.5);
    EXPECT_NEAR(stretch, std::round(stretch), 1e-6) << "whole samples";
    EXPECT_NEAR(samples.first_m, distance(0.5 * (stretch - 1.0)), 1e-6);
    const int stretches = samples.counts.size() / 4; // of two counts each
    EXPECT_EQ(stretches, std::ceil(static_cast<double>(state->trace->size()) / stretch - 1e-6));
}

TEST(MarkRows, NumbersOfNearEventsStandAboveEachOther)
{
    EXPECT_EQ(markRows({0.0, 10.0, 20.0}, 5.0), QVector<int>({0, 0, 0}));
    EXPECT_EQ(markRows({0.0, 1.0, 2.0, 6.0}, 5.0), QVector<int>({0, 1, 2, 0}));
    EXPECT_EQ(markRows({0.0, 0.0, 0.0, 0.0}, 5.0), QVector<int>({0, 1, 2, 0}));
    EXPECT_TRUE(markRows({}, 5.0).isEmpty());
}

} // namespace
