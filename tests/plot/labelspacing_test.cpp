#include "plot/labelspacing.h"

#include <qwt_scale_div.h>

#include <gmock/gmock.h>

#include <vector>

namespace {

using testing::ElementsAre;

/// Those of the ticks that have a label.
std::vector<double> labelled(const std::vector<double>& ticks, double step, int stride)
{
    std::vector<double> found;
    for (const double tick : ticks) {
        if (labelspacing::isLabelled(tick, step, stride)) {
            found.push_back(tick);
        }
    }
    return found;
}

TEST(LabelSpacing, EveryTickHasItsLabelWhereThereIsRoom)
{
    EXPECT_EQ(labelspacing::stride(80.0, 79.0), 1);
    EXPECT_EQ(labelspacing::stride(80.0, 80.0), 1);
    EXPECT_EQ(labelspacing::stride(80.0, 0.0), 1) << "labels without a text";
    EXPECT_THAT(labelled({-1.0, 0.0, 1.0}, 1.0, 1), ElementsAre(-1.0, 0.0, 1.0));
}

TEST(LabelSpacing, TicksThatAreCloserGoWithoutALabelBetweenTwo)
{
    EXPECT_EQ(labelspacing::stride(80.0, 81.0), 2);
    EXPECT_EQ(labelspacing::stride(80.0, 160.0), 2);
    EXPECT_EQ(labelspacing::stride(80.0, 161.0), 3);
    EXPECT_THAT(labelled({100'421.5, 100'422.0, 100'422.5, 100'423.0}, 0.5, 2),
                ElementsAre(100'422.0, 100'423.0));
}

TEST(LabelSpacing, LabelStaysWithItsTickWhereverTheViewBegins)
{
    EXPECT_THAT(labelled({0.2, 0.3, 0.4, 0.5, 0.6}, 0.1, 2), ElementsAre(0.2, 0.4, 0.6));
    EXPECT_THAT(labelled({0.3, 0.4, 0.5, 0.6, 0.7}, 0.1, 2), ElementsAre(0.4, 0.6));
    EXPECT_THAT(labelled({-0.3, -0.2, -0.1, 0.0, 0.1}, 0.1, 2), ElementsAre(-0.2, 0.0));
}

TEST(LabelSpacing, TicksWithoutADistanceHaveSomeStride)
{
    EXPECT_GT(labelspacing::stride(0.0, 80.0), 1);
    EXPECT_GE(labelspacing::stride(0.0, 0.0), 1);
}

TEST(LabelSpacing, StepIsTheLeastBetweenTwoTicksElseTheSpan)
{
    EXPECT_DOUBLE_EQ(labelspacing::leastStep(QwtScaleDiv(0.0, 9.0, {}, {}, {0.0, 5.0, 8.0})), 3.0);
    EXPECT_DOUBLE_EQ(labelspacing::leastStep(QwtScaleDiv(8.0, 0.0, {}, {}, {5.0, 3.0})), 2.0);
    EXPECT_DOUBLE_EQ(labelspacing::leastStep(QwtScaleDiv(0.0, 9.0, {}, {}, {5.0})), 9.0);
}

} // namespace
