// Where the markers stand before anybody has put them somewhere.

#include "tests/twomarkers/markersonplot.h"

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builder and units

class MarkersForATrace : public MarkersOnPlot
{
protected:
    /// The main trace is another one now, of which the plot shows all.
    void take(const Reflectogram& refl)
    {
        if (refl.isValid()) {
            see(0.0, refl.maxdist());
        }
        view->onMainReflChanged(refl);
        model.setReflectogram(refl);
    }

    void expectSideBySide() const
    {
        EXPECT_EQ(lineColumn(a), qRound(columnOf(0.0)) + 29);
        EXPECT_EQ(lineColumn(b), qRound(columnOf(0.0)) + 58);
        EXPECT_EQ(a->xValue(), distanceAt(lineColumn(a)));
        EXPECT_EQ(b->xValue(), distanceAt(lineColumn(b)));
    }

    Reflectogram longer = files.measured(TraceBuilder().fibre(40_km), plainFibre());
    Reflectogram shorter = files.measured(TraceBuilder().fibre(200_m), plainFibre());
};

TEST_F(MarkersForATrace, StandSideBySideOnTheFirstOneHoweverLong)
{
    showPlot();
    view->show();
    take(longer);
    expectSideBySide();
}

TEST_F(MarkersForATrace, StandSideBySideOnTheFirstOneHoweverShort)
{
    showPlot();
    view->show();
    ASSERT_GT(b->xValue(), shorter.maxdist());
    take(shorter);
    expectSideBySide();
}

TEST_F(MarkersForATrace, StandSideBySideWhenTheyAreShownAgainAfterTheFirstOneCame)
{
    showPlot();
    view->show();
    view->hide();
    take(shorter);
    view->show();
    expectSideBySide();
}

TEST_F(MarkersForATrace, StandSideBySideOnTheOneThatFollowsAnEmptySet)
{
    showPlot();
    view->show();
    take(shorter);
    drag(b, 300);
    take(Reflectogram());
    EXPECT_EQ(b->xValue(), 0.0);
    take(longer);
    expectSideBySide();
}

TEST_F(MarkersForATrace, StandSideBySideAlsoWhereTheyWereHiddenWhileTheSetWasEmpty)
{
    showPlot();
    view->show();
    take(shorter);
    drag(b, 300);
    view->hide();
    take(Reflectogram());
    take(longer);
    view->show();
    expectSideBySide();
}

TEST_F(MarkersForATrace, StayWhereTheUserPutThemBefore)
{
    showPlot();
    view->show();
    drag(b, 300);
    const double b_m = b->xValue();
    const double a_m = a->xValue();
    take(longer);
    EXPECT_EQ(a->xValue(), a_m);
    EXPECT_EQ(b->xValue(), b_m);
}

TEST_F(MarkersForATrace, StayWhereTheUserPutOneOfThemToTheFront)
{
    showPlot();
    view->show();
    for (QmPlotMarker* atFront : {a, b}) {
        QmPlotMarker* elsewhere = atFront == a ? b : a;
        for (int i = 0; i < 2; ++i) { // the first time they move, and take the distance of a column
            atFront->setXValue(0.0);
            elsewhere->setXValue(3000.0);
        }
        take(longer);
        EXPECT_EQ(atFront->xValue(), 0.0);
        EXPECT_EQ(elsewhere->xValue(), 3000.0);
        take(Reflectogram());
    }
}

TEST_F(MarkersForATrace, StayWhenItGivesWayToAnother)
{
    showPlot();
    view->show();
    take(shorter);
    const double a_m = a->xValue();
    const double b_m = b->xValue();
    take(longer);
    EXPECT_EQ(a->xValue(), a_m);
    EXPECT_EQ(b->xValue(), b_m);
}

} // namespace
