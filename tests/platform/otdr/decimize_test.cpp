#include "platform/otdr/core/trace.h"
#include "platform/otdr/decimize.h"
#include "tests/support/tracefiles.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using testing_support::SorSketch;
using testing_support::TraceFiles;

bool byDistance(const QPolygonF& polygon)
{
    return std::is_sorted(polygon.begin(), polygon.end(),
                          [](QPointF a, QPointF b) { return a.x() < b.x(); });
}

TEST(Decimize, GivesEverySampleWhereTheyAreFewerThanThePoints)
{
    const TraceFiles files;
    const Reflectogram refl = files.plain();
    const double step = refl.smpl2dist(1.0);
    const QPolygonF polygon = Decimize(refl, true)({10.4 * step, 20.6 * step, 100});
    ASSERT_EQ(polygon.size(), 10);
    for (int i = 0; i < polygon.size(); ++i) {
        EXPECT_NEAR(polygon[i].x(), (11 + i) * step, 1e-6);
        EXPECT_NEAR(polygon[i].y(), refl.trace()->level_dB(static_cast<std::size_t>(11 + i)), 1e-9);
    }
}

TEST(Decimize, GivesNoMorePointsThanAskedForInOrderOfDistance)
{
    const TraceFiles files;
    const Reflectogram refl = files.plain();
    for (const bool peaksOnly : {true, false}) {
        for (const int points : {2, 7, 100, 1000}) {
            const QPolygonF polygon = Decimize(refl, peaksOnly)({0.0, refl.maxdist(), points});
            EXPECT_LE(polygon.size(), points);
            EXPECT_GE(polygon.size(), points / 2);
            EXPECT_TRUE(byDistance(polygon));
        }
    }
}

TEST(Decimize, KeepsAPeakOfOneSampleAtItsTrueDistance)
{
    SorSketch sketch = SorSketch::plain();
    sketch.samples[1777] = 100;
    const TraceFiles files;
    const Reflectogram refl(files.write("peak.sor", sketch));
    for (const bool peaksOnly : {true, false}) {
        const QPolygonF polygon = Decimize(refl, peaksOnly)({0.0, refl.maxdist(), 40});
        const auto highest = std::max_element(polygon.begin(), polygon.end(),
                                              [](QPointF a, QPointF b) { return a.y() < b.y(); });
        ASSERT_NE(highest, polygon.end());
        EXPECT_NEAR(highest->y(), 65.435, 1e-9);
        EXPECT_NEAR(highest->x(), refl.smpl2dist(1777.0), 1e-6);
    }
}

TEST(Decimize, EnvelopeAlsoKeepsTheLowestSample)
{
    SorSketch sketch = SorSketch::plain();
    sketch.samples[1777] = 65000;
    const TraceFiles files;
    const Reflectogram refl(files.write("notch.sor", sketch));
    const QPolygonF polygon = Decimize(refl, false)({0.0, refl.smpl2dist(2500.0), 40});
    const auto lowest = std::min_element(polygon.begin(), polygon.end(),
                                         [](QPointF a, QPointF b) { return a.y() < b.y(); });
    ASSERT_NE(lowest, polygon.end());
    EXPECT_NEAR(lowest->y(), 0.535, 1e-9);
}

TEST(Decimize, AnswersAWindowWithoutTraceWithoutPoints)
{
    const TraceFiles files;
    const Reflectogram refl = files.plain();
    EXPECT_TRUE(Decimize(Reflectogram(), true)({0.0, 100.0, 10}).isEmpty());
    EXPECT_TRUE(Decimize(refl, true)({1e7, 2e7, 10}).isEmpty());
    EXPECT_TRUE(Decimize(refl, true)({100.0, 100.0, 10}).isEmpty());
    EXPECT_TRUE(Decimize(refl, true)({200.0, 100.0, 10}).isEmpty());
    EXPECT_TRUE(Decimize(refl, true)({0.0, 100.0, 0}).isEmpty());
    EXPECT_TRUE(Decimize(refl, true)({0.0, 100.0, -5}).isEmpty());
}

TEST(Decimize, FollowsChangesOfTheTraceThatItShares)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    const Decimize decimize(refl, true);
    const double last = decimize({0.0, 1e6, 10000}).last().x();
    refl.setIOR(refl.IOR() * 2.0);
    EXPECT_NEAR(decimize({0.0, 1e6, 10000}).last().x(), last / 2.0, 1e-6);
}

} // namespace
