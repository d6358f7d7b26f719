#include "plot/lazypoints.h"

#include <gtest/gtest.h>

namespace {

const QPolygonF kPoints(QVector<QPointF> {{1.0, 4.0}, {2.0, 3.0}, {5.0, 7.0}});

TEST(LazyPoints, AreNotComputedBeforeSomebodyAsks)
{
    int computed = 0;
    {
        const LazyPoints points([&] {
            ++computed;
            return kPoints;
        });
        EXPECT_EQ(computed, 0);
    }
    EXPECT_EQ(computed, 0);
}

TEST(LazyPoints, AreComputedOnce)
{
    int computed = 0;
    const LazyPoints points([&] {
        ++computed;
        return kPoints;
    });
    EXPECT_EQ(points.size(), 3U);
    EXPECT_EQ(points.sample(2), QPointF(5.0, 7.0));
    EXPECT_EQ(points.boundingRect(), QRectF(1.0, 3.0, 4.0, 4.0));
    EXPECT_EQ(computed, 1);
}

TEST(LazyPoints, MayBeNone)
{
    const LazyPoints points([] { return QPolygonF(); });
    EXPECT_EQ(points.size(), 0U);
    EXPECT_LT(points.boundingRect().width(), 0.0);
}

} // namespace
