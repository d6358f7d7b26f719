#include "platform/otdr/core/trace.h"
#include "platform/otdr/tracestate.h"
#include "plot/stickcolumns.h"
#include "tests/support/tracefiles.h"

#include <qwt_scale_map.h>

#include <gmock/gmock.h>

#include <random>

namespace {

using namespace testing_support; // builder and units

QwtScaleMap map(double s1, double s2, double p1, double p2)
{
    QwtScaleMap result;
    result.setScaleInterval(s1, s2);
    result.setPaintInterval(p1, p2);
    return result;
}

/// Which pixels are covered: the rectangles, less the columns that are not.
std::vector<std::string> paintedRows(const StickColumns& columns, const QRect& area,
                                     double baseline)
{
    std::vector<std::string> rows(static_cast<std::size_t>(area.height()),
                                  std::string(static_cast<std::size_t>(area.width()), '.'));
    for (const QRect& rect : columns.rectangles(baseline)) {
        EXPECT_TRUE(area.contains(rect));
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                char& pixel = rows[static_cast<std::size_t>(y - area.top())]
                                  [static_cast<std::size_t>(x - area.left())];
                EXPECT_EQ(pixel, '.') << "painted twice";
                pixel = columns.isCovered(x - area.left()) ? '#' : ' ';
            }
        }
    }
    for (std::string& row : rows) {
        std::replace(row.begin(), row.end(), ' ', '.');
    }
    return rows;
}

/// The same from every sample, one stick after the other.
std::vector<std::string> slowPicture(const TraceState& state, const QRect& area,
                                     const QwtScaleMap& xMap, const QwtScaleMap& yMap, double ratio)
{
    std::vector<std::string> rows(static_cast<std::size_t>(area.height()),
                                  std::string(static_cast<std::size_t>(area.width()), '.'));
    const int base = std::min(qRound(yMap.transform(0.0) * ratio), area.bottom());
    for (std::size_t i = 0; i < state.trace->size(); ++i) {
        const double distance =
            state.trace->distanceAt(static_cast<double>(i), state.metresPerNs());
        const int x = qRound(xMap.transform(distance) * ratio);
        if (x < area.left() || x > area.right()) {
            continue;
        }
        const int top = qRound(yMap.transform(state.trace->level_dB(i)) * ratio);
        for (int y = std::max(top, area.top()); y <= base; ++y) {
            rows[static_cast<std::size_t>(y - area.top())]
                [static_cast<std::size_t>(x - area.left())] = '#';
        }
    }
    return rows;
}

TraceState stateOf(const std::vector<double>& levels_dB, double interval_ns)
{
    std::vector<std::uint16_t> counts;
    counts.reserve(levels_dB.size());
    for (const double level : levels_dB) {
        counts.push_back(static_cast<std::uint16_t>(65535 - 1000.0 * level));
    }
    TraceState state;
    state.trace = std::make_shared<const otdr::Trace>(otdr::RawSamples(counts), 0.001,
                                                      otdr::TraceAxis {interval_ns, 0.0});
    return state;
}

/// One sample a metre.
TraceState metreSteps(const std::vector<double>& levels_dB)
{
    TraceState state = stateOf(levels_dB, 1.0);
    return stateOf(levels_dB, 1.0 / state.metresPerNs());
}

TEST(StickColumns, SticksReachFromTheBaselineToTheirLevelBothIncluded)
{
    const QRect area(0, 0, 5, 6);
    StickColumns columns(area);
    columns.add(metreSteps({1.0, 4.0, 0.0, 2.0, 2.0}), map(0.0, 4.0, 0.0, 4.0),
                map(0.0, 5.0, 5.0, 0.0), 1.0);
    EXPECT_EQ(paintedRows(columns, area, 5.0),
              (std::vector<std::string> {".....", ".#...", ".#...", ".#.##", "##.##", "#####"}));
    EXPECT_FALSE(columns.hasGaps());
}

TEST(StickColumns, TallestStickOfAColumnCoversTheOthers)
{
    const QRect area(0, 0, 2, 6);
    StickColumns columns(area);
    columns.add(metreSteps({1.0, 4.0, 2.0, 1.0}), map(0.0, 3.0, 0.0, 1.0), map(0.0, 5.0, 5.0, 0.0),
                1.0);
    EXPECT_EQ(paintedRows(columns, area, 5.0),
              (std::vector<std::string> {"..", "#.", "#.", "##", "##", "##"}));
}

TEST(StickColumns, ColumnsBetweenSticksApartStayFree)
{
    const QRect area(0, 0, 7, 4);
    StickColumns columns(area);
    columns.add(metreSteps({1.0, 3.0, 2.0}), map(0.0, 2.0, 0.0, 6.0), map(0.0, 3.0, 3.0, 0.0), 1.0);
    EXPECT_TRUE(columns.hasGaps());
    EXPECT_EQ(paintedRows(columns, area, 3.0),
              (std::vector<std::string> {"...#...", "...#..#", "#..#..#", "#..#..#"}));
    // Where neighbours share rows they share a rectangle across the gap.
    EXPECT_EQ(columns.rectangles(3.0).size(), 3U);
}

TEST(StickColumns, WhatLiesOutsideTheAreaIsCutOff)
{
    const QRect area(10, 20, 3, 4);
    StickColumns columns(area);
    columns.add(metreSteps(std::vector<double>(40, 60.0)), map(0.0, 39.0, 0.0, 39.0),
                map(0.0, 5.0, 100.0, 0.0), 1.0);
    EXPECT_EQ(paintedRows(columns, area, 100.0),
              (std::vector<std::string> {"###", "###", "###", "###"}));
}

TEST(StickColumns, BaselineAboveTheAreaLeavesItFree)
{
    const QRect area(0, 0, 3, 4);
    StickColumns columns(area);
    columns.add(metreSteps({1.0, 1.0, 1.0}), map(0.0, 2.0, 0.0, 2.0), map(0.0, 5.0, -10.0, -60.0),
                1.0);
    EXPECT_TRUE(columns.rectangles(-10.0).empty());
}

TEST(StickColumns, EmptyTraceAndEmptyAreaCoverNothing)
{
    StickColumns none(QRect(0, 0, 0, 0));
    none.add(metreSteps({1.0}), map(0.0, 1.0, 0.0, 1.0), map(0.0, 1.0, 1.0, 0.0), 1.0);
    EXPECT_TRUE(none.rectangles(0.0).empty());
    StickColumns columns(QRect(0, 0, 5, 5));
    columns.add(TraceState(), map(0.0, 1.0, 0.0, 1.0), map(0.0, 1.0, 1.0, 0.0), 1.0);
    EXPECT_TRUE(columns.rectangles(4.0).empty());
}

TEST(StickColumns, AxisWithoutSpanDoesNoHarm)
{
    StickColumns columns(QRect(0, 0, 5, 5));
    columns.add(metreSteps({1.0, 2.0}), map(3.0, 3.0, 0.0, 4.0), map(0.0, 0.0, 4.0, 0.0), 1.0);
    for (const QRect& rect : columns.rectangles(4.0)) {
        EXPECT_TRUE(QRect(0, 0, 5, 5).contains(rect));
    }
}

TEST(StickColumns, AreAsManyRectanglesAsColumnsAtTheMost)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> level(0.0, 50.0);
    std::vector<double> levels(400);
    std::generate(levels.begin(), levels.end(), [&] { return level(random); });
    const QRect area(0, 0, 400, 300);
    StickColumns columns(area);
    columns.add(metreSteps(levels), map(0.0, 399.0, 0.0, 399.0), map(0.0, 50.0, 299.0, 0.0), 1.0);
    EXPECT_LE(columns.rectangles(299.0).size(), 400U);
}

struct View
{
    const char* name;
    double from_m;
    double to_m;
    double top_dB;
    double ratio;
};

class StickPicture : public testing::TestWithParam<View>
{
};

TEST_P(StickPicture, IsThatOfAllSamples)
{
    const View& view = GetParam();
    std::mt19937 random(11);
    std::normal_distribution<double> noise(0.0, 0.8);
    std::vector<double> levels(20000);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const double line = 30.0 - 20.0 * static_cast<double>(i) / 20000.0;
        levels[i] = std::max(0.0, i % 977 == 0 ? 45.0 : line + noise(random));
    }
    const TraceState state = metreSteps(levels);
    const QRect area(0, 0, static_cast<int>(640 * view.ratio), static_cast<int>(200 * view.ratio));
    const QwtScaleMap xMap = map(view.from_m, view.to_m, 0.0, 639.0);
    const QwtScaleMap yMap = map(0.0, view.top_dB, 199.0, 0.0);
    StickColumns columns(area);
    columns.add(state, xMap, yMap, view.ratio);
    EXPECT_EQ(paintedRows(columns, area, yMap.transform(0.0) * view.ratio),
              slowPicture(state, area, xMap, yMap, view.ratio));
}

INSTANTIATE_TEST_SUITE_P(Views, StickPicture,
                         testing::Values(View {"Full", 0.0, 20000.0, 50.0, 1.0},
                                         View {"WiderThanTheTrace", -9000.0, 31000.0, 50.0, 1.0},
                                         View {"Zoomed", 4000.0, 9123.4, 50.0, 1.0},
                                         View {"SampleAPixel", 5000.0, 5640.0, 50.0, 1.0},
                                         View {"SticksApart", 5000.0, 5100.0, 50.0, 1.0},
                                         View {"LevelsCutOff", 0.0, 20000.0, 12.0, 1.0},
                                         View {"DenseScreen", 0.0, 20000.0, 50.0, 2.0},
                                         View {"DenseScreenSticksApart", 700.0, 900.0, 50.0, 1.5}),
                         [](const auto& info) { return info.param.name; });

} // namespace
