#include "tests/support/metamethods.h"
#include "tests/twomarkers/markersonplot.h"

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builder and units
using Waveform::TwoMarkersModel;
using Waveform::TwoMarkersResult;
using Waveform::TwoMarkersResultWidget;
using Waveform::TwoMarkersView;

TwoMarkersResult lineFrom(double a_m, double b_m)
{
    TwoMarkersResult result(a_m, b_m, 45.0, 44.0, 0.0, 0.0);
    result.lsaLine = QLineF(a_m, 45.0, b_m, 44.0);
    return result;
}

TEST_F(MarkersOnPlot, AreNamedAAndB)
{
    EXPECT_EQ(a->symbol(), QChar('A'));
    EXPECT_EQ(b->symbol(), QChar('B'));
    EXPECT_EQ(view->results()->windowTitle(), "Measurement");
    EXPECT_EQ(view->results()->parentWidget(), plot.canvas());
    EXPECT_EQ(line->parentWidget(), plot.canvas());
}

TEST_F(MarkersOnPlot, StandSideBySideAtTheLeftEdgeWhenTheyAreFirstShown)
{
    showPlot();
    view->show();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(0.0)) + 29);
    EXPECT_EQ(lineColumn(b), qRound(columnOf(0.0)) + 58);
    EXPECT_EQ(a->xValue(), distanceAt(lineColumn(a)));
    EXPECT_EQ(b->xValue(), distanceAt(lineColumn(b)));
}

TEST_F(MarkersOnPlot, StandSideBySideAlsoWhenTheyAreShownBeforeThePlot)
{
    view->show();
    showPlot();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(0.0)) + 29);
    EXPECT_EQ(lineColumn(b), qRound(columnOf(0.0)) + 58);
    EXPECT_EQ(a->xValue(), distanceAt(lineColumn(a)));
}

TEST_F(MarkersOnPlot, StartAtTheLeftEdgeOfAViewWithoutTheFront)
{
    showPlot();
    see(2000.0, 3000.0);
    view->show();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(2000.0)) + 29);
    EXPECT_EQ(lineColumn(b), qRound(columnOf(2000.0)) + 58);
    EXPECT_EQ(a->xValue(), distanceAt(lineColumn(a)));
}

TEST_F(MarkersOnPlot, AreNotPlacedAgain)
{
    showPlot();
    view->show();
    a->setXValue(0.0);
    b->setXValue(0.0);
    view->hide();
    view->show();
    EXPECT_EQ(a->xValue(), b->xValue());
}

TEST_F(MarkersOnPlot, KeepTheirPlacesWhereTheyHaveOnesBeforeTheyAreShown)
{
    showPlot();
    a->setXValue(1000.0);
    b->setXValue(3000.0);
    view->show();
    EXPECT_EQ(a->xValue(), 1000.0);
    EXPECT_EQ(b->xValue(), 3000.0);
}

TEST_F(MarkersOnPlot, KeepTheirPlacesAlsoWhereOneIsAtTheFront)
{
    showPlot();
    a->setXValue(0.0);
    b->setXValue(3000.0);
    view->show();
    EXPECT_EQ(a->xValue(), 0.0);
    EXPECT_EQ(b->xValue(), 3000.0);
}

TEST_F(MarkersOnPlot, StandSideBySideWhenAShownViewIsAttached)
{
    showPlot();
    auto* other = new TwoMarkersView(plot.canvas());
    const auto markers = plot.canvas()->findChildren<QmPlotMarker*>();
    QmPlotMarker* first = markers.at(2);
    QmPlotMarker* second = markers.at(3);
    other->show();
    other->attachToPlot(&plot);
    EXPECT_EQ(lineColumn(first), qRound(columnOf(0.0)) + 29);
    EXPECT_EQ(lineColumn(second), qRound(columnOf(0.0)) + 58);
    other->attachToPlot(&plot); // no other plot: nothing
    EXPECT_EQ(lineColumn(first), qRound(columnOf(0.0)) + 29);
}

TEST_F(MarkersOnPlot, AreShownAndHiddenWithTheTable)
{
    showPlot();
    const auto shown = [this] {
        return QList<bool> {view->results()->isVisible(), a->isVisible(), b->isVisible(),
                            view->isVisible()};
    };
    EXPECT_FALSE(shown().contains(true));
    view->show();
    EXPECT_FALSE(shown().contains(false));
    view->setHidden(true);
    EXPECT_FALSE(shown().contains(true));
    view->setHidden(false);
    EXPECT_FALSE(shown().contains(false));
    view->setVisible(false);
    EXPECT_FALSE(shown().contains(true));
    view->onWidgetShown(&plot, true);
    EXPECT_FALSE(shown().contains(true));
    view->onWidgetShown(view->results(), true);
    EXPECT_FALSE(shown().contains(false));
    view->onWidgetShown(a, false);
    EXPECT_FALSE(shown().contains(false));
    view->onWidgetShown(view->results(), false);
    EXPECT_FALSE(shown().contains(true));
}

TEST_F(MarkersOnPlot, LineIsShownAndHiddenWithThemWhereItTakesPart)
{
    showAll();
    view->hide();
    EXPECT_TRUE(line->isVisible());
    EXPECT_TRUE(line->line().isNull()); // so that nothing of it is drawn
    view->show();
    model.setUseLSA(true);
    EXPECT_TRUE(line->isVisible());
    view->hide();
    EXPECT_FALSE(line->isVisible());
    view->show();
    EXPECT_TRUE(line->isVisible());
}

TEST_F(MarkersOnPlot, LineLiesOverTheTraceBetweenThem)
{
    showAll();
    drag(b, 300);
    model.setUseLSA(true);
    const QLineF drawn = line->line().translated(line->pos());
    EXPECT_NEAR(drawn.x1(), lineColumn(a), 0.51);
    EXPECT_NEAR(drawn.x2(), lineColumn(b), 0.51);
    EXPECT_NEAR(drawn.y1(), plot.canvasMap(QwtPlot::yLeft).transform(45.0), 1.5);
    see(0.0, 2500.0);
    const QLineF zoomed = line->line().translated(line->pos());
    EXPECT_NEAR(zoomed.x2(), columnOf(b->xValue()), 0.51);
    model.setUseLSA(false);
    EXPECT_TRUE(line->line().isNull());
}

TEST_F(MarkersOnPlot, LineTakesTheViewOfNowWheneverItsPartChanges)
{
    showAll();
    drag(b, 300);
    view->setUseLSA(true);
    view->setResult(lineFrom(0.0, 2000.0));
    const auto end = [this] { return line->line().translated(line->pos()).x2(); };
    for (const double range_m : {4000.0, 2500.0}) {
        plot.setAxisScale(QwtPlot::xBottom, 0.0, range_m); // nobody is told
        view->setUseLSA(range_m < 3000.0);
        EXPECT_NEAR(end(), columnOf(2000.0), 0.51) << range_m;
    }
}

TEST_F(MarkersOnPlot, LineOfAModelThatUsesItIsShownFromTheStart)
{
    TwoMarkersModel fitted(true, nullptr);
    showPlot();
    auto* other = new TwoMarkersView(plot.canvas());
    other->attachToPlot(&plot);
    other->setModel(&fitted);
    other->show();
    fitted.setReflectogram(files.measured(TraceBuilder().fibre(4_km), plainFibre()));
    const auto lines = plot.canvas()->findChildren<PlotLineWidget*>();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_FALSE(lines.at(1)->line().isNull());
    EXPECT_TRUE(lines.at(1)->isVisible());
    EXPECT_NEAR(lines.at(1)->line().dx(), 29.0, 1.0); // follows the plot
    other->hide();
    EXPECT_FALSE(lines.at(1)->isVisible());
}

TEST_F(MarkersOnPlot, FirstTracePullsShownOnesInBeforeThereIsAnythingToCompute)
{
    showPlot();
    see(0.0, 50000.0);
    view->show();
    a->setXValue(20000.0);
    b->setXValue(40000.0);
    QSignalSpy orls(&model, SIGNAL(orlChanged( double )));
    const Reflectogram refl = files.measured(TraceBuilder().fibre(4_km), plainFibre());
    model.setReflectogram(refl);
    EXPECT_EQ(a->xValue(), refl.maxdist());
    EXPECT_EQ(b->xValue(), refl.maxdist());
    EXPECT_EQ(value(2), "0.0 m");
    finish();
    EXPECT_EQ(orls.size(), 0);
}

TEST_F(MarkersOnPlot, ShorterTraceIsNotMeasuredByTheLineOfTheOneBefore)
{
    showAll();
    drag(b, 400);
    model.setUseLSA(true);
    QSignalSpy results(&model, SIGNAL(resultsChanged(TwoMarkersResult)));
    model.setReflectogram(files.measured(TraceBuilder().fibre(1_km), plainFibre()));
    ASSERT_EQ(results.size(), 2); // B was pulled in, then all was measured
    EXPECT_TRUE(results.first().first().value<TwoMarkersResult>().lsaLine.isNull());
    EXPECT_FALSE(results.last().first().value<TwoMarkersResult>().lsaLine.isNull());
}

TEST_F(MarkersOnPlot, ShownOnesBeforeTheFrontArePutToItExactly)
{
    showPlot();
    see(-2000.0, 5000.0);
    view->show();
    a->setXValue(-1500.0);
    model.setReflectogram(files.measured(TraceBuilder().fibre(4_km), plainFibre()));
    EXPECT_EQ(a->xValue(), 0.0); // not the column beside: that may lie before the fibre
}

TEST_F(MarkersOnPlot, ReturnLossOfATraceThatWentIsNotToldOfTheNext)
{
    showAll();
    drag(b, 300);
    finish();
    ASSERT_TRUE(value(6).endsWith(" dB")) << qPrintable(value(6));
    model.setReflectogram(Reflectogram());
    EXPECT_EQ(value(6), "-");
    model.setReflectogram(files.measured(TraceBuilder().fibre(4_km), plainFibre()));
    finish();
    EXPECT_EQ(value(2), "0.0 m");
    EXPECT_EQ(value(6), "-");
}

TEST_F(MarkersOnPlot, ReturnLossIsToldOfNoStretchWithoutALengthOrBeforeTheFibre)
{
    showAll();
    for (const double b_m : {0.0, -500.0}) {
        see(-1000.0, 5000.0);
        a->setXValue(0.0);
        b->setXValue(2000.0);
        finish();
        ASSERT_TRUE(value(6).endsWith(" dB")) << qPrintable(value(6));
        b->setXValue(b_m);
        finish();
        EXPECT_EQ(value(6), "-") << b_m;
    }
}

TEST_F(MarkersOnPlot, ReturnLossThatComesLateIsNotThatOfWhatIsNoStretch)
{
    showAll();
    see(-1000.0, 5000.0);
    a->setXValue(0.0);
    for (const double b_m : {0.0, -500.0}) {
        b->setXValue(2000.0);
        b->setXValue(3000.0); // and one computation more is queued
        b->setXValue(b_m);
        finish();
        EXPECT_EQ(value(6), "-") << b_m;
    }
    b->setXValue(2000.0);
    model.setReflectogram(Reflectogram());
    finish();
    EXPECT_EQ(value(6), "-") << "the trace is gone";
}

TEST_F(MarkersOnPlot, ViewThatGoesLeavesTheModelInPeace)
{
    showAll();
    delete view;
    QSignalSpy results(&model, SIGNAL(resultsChanged(TwoMarkersResult)));
    model.setReflectogram(files.plain());
    model.setUseLSA(true);
    // The markers belong to the canvas and are still there.
    EXPECT_EQ(results.size(), 2);
}

TEST_F(MarkersOnPlot, SlotsAreTheAgreedOnesInTheirOrder)
{
    const QStringList agreed = {
        "public onWidgetShown(QWidget* w, bool visible)",
        "public isVisible()",
        "public setVisible(bool visible)",
        "public setHidden(bool hidden)",
        "public hide()",
        "public show()",
        "public setUseLSA(bool use)",
        "public setResult(TwoMarkersResult res)",
        "public setORL(double orl)",
        "public moveMarkersToScreen()",
    };
    EXPECT_EQ(agreedMethods(TwoMarkersView::staticMetaObject, agreed), agreed);
    const QStringList ofTheTable = {"public setResult(TwoMarkersResult res)",
                                    "public setORL(double orl)"};
    EXPECT_EQ(agreedMethods(TwoMarkersResultWidget::staticMetaObject, ofTheTable), ofTheTable);
}

TEST(TwoMarkersView, NeedsNoPlotToBeAsked)
{
    QWidget canvas;
    TwoMarkersView view(true, &canvas);
    view.show();
    view.setUseLSA(false);
    view.moveMarkersToScreen();
    view.moveMarkers(3);
    view.setResult(TwoMarkersResult(0.0, 1.0, 2.0, 3.0, 4.0, 5.0));
    EXPECT_FALSE(view.isVisible());
}

} // namespace
