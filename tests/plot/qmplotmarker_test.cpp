#include "plot/qmplotmarker.h"
#include "tests/plot/countingplot.h"
#include "tests/plot/finger.h"

#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing_support::CountingPlot;

class PlotMarker : public testing::Test
{
protected:
    PlotMarker()
        : marker(plot.canvas())
        , movedTo(&marker, SIGNAL(movedTo(QmPlotMarker*, double)))
                  , finger(plot)
    {
        plot.enableAxis(QwtPlot::xBottom, true);
        plot.enableAxis(QwtPlot::yLeft, true);
        plot.resize(800, 480);
        plot.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&plot));
        view(0.0, 10000.0);
    }

    void view(double from_m, double to_m)
    {
        plot.setAxisScale(QwtPlot::xBottom, from_m, to_m);
        plot.replot();
        plot.emitTransformMaps();
    }

    [[nodiscard]] double columnOf(double distance_m) const
    {
        return plot.canvasMap(QwtPlot::xBottom).transform(distance_m);
    }

    [[nodiscard]] double distanceAt(int column) const
    {
        return plot.canvasMap(QwtPlot::xBottom).invTransform(column);
    }

    [[nodiscard]] int lineColumn() const { return marker.x() + QmMarker::markerBorder; }

    /// Attached, shown and put at 4 km, of which it told nothing.
    void standAt4km()
    {
        marker.hide(); // a hidden marker keeps what it is given
        marker.attach(&plot);
        marker.setXValue(4000.0);
        marker.show();
    }

    CountingPlot plot;
    QmPlotMarker marker;
    QSignalSpy movedTo;
    testing_support::Finger finger;
};

TEST_F(PlotMarker, StartsAtZeroAndShowingItIsNoMove)
{
    QmPlotMarker added(plot.canvas());
    const QSignalSpy told(&added, SIGNAL(movedTo(QmPlotMarker*, double)));
    EXPECT_EQ(added.xValue(), 0.0);
    added.show();
    EXPECT_EQ(added.xValue(), 0.0);
    EXPECT_EQ(told.size(), 0);
    EXPECT_EQ(marker.xValue(), 0.0); // shown with the plot
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, AttachedMarkerGoesToItsDistanceWithoutTelling)
{
    marker.show();
    marker.attach(&plot);
    EXPECT_EQ(lineColumn(), qRound(columnOf(0.0)));
    EXPECT_EQ(marker.xValue(), 0.0);
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, AttachKnowsAScaleThatWasJustSet)
{
    plot.setAxisScale(QwtPlot::xBottom, -1000.0, 1000.0);
    marker.attach(&plot);
    EXPECT_NEAR(lineColumn(), plot.canvas()->width() / 2.0, 2.0);
}

TEST_F(PlotMarker, ShownMarkerIsPutToAColumnAndTellsItsDistance)
{
    marker.attach(&plot);
    marker.show();
    marker.setXValue(4000.0);
    EXPECT_EQ(lineColumn(), qRound(columnOf(4000.0)));
    EXPECT_EQ(marker.xValue(), distanceAt(lineColumn()));
    ASSERT_EQ(movedTo.size(), 1);
    EXPECT_EQ(movedTo.first().at(0).value<QmPlotMarker*>(), &marker);
    EXPECT_EQ(movedTo.first().at(1).toDouble(), marker.xValue());
}

TEST_F(PlotMarker, HiddenMarkerKeepsTheDistanceAsGivenAlsoWhenItIsShown)
{
    marker.attach(&plot);
    marker.hide();
    marker.setXValue(4321.123);
    marker.show();
    EXPECT_EQ(marker.xValue(), 4321.123);
    EXPECT_EQ(lineColumn(), qRound(columnOf(4321.123)));
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, ZoomMovesTheMarkerAndKeepsItsDistance)
{
    standAt4km();
    const double distance = marker.xValue();
    const int before = lineColumn();
    view(2000.0, 5000.0);
    EXPECT_EQ(marker.xValue(), distance);
    EXPECT_EQ(lineColumn(), qRound(columnOf(distance)));
    EXPECT_NE(lineColumn(), before);
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, ZoomWhileHiddenKeepsTheDistance)
{
    standAt4km();
    marker.hide();
    view(2000.0, 5000.0);
    view(3000.0, 4500.0);
    marker.show();
    EXPECT_EQ(marker.xValue(), 4000.0);
    EXPECT_EQ(lineColumn(), qRound(columnOf(4000.0)));
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, ResizeOfThePlotKeepsTheDistance)
{
    standAt4km();
    plot.resize(500, 300);
    QCoreApplication::processEvents();
    EXPECT_EQ(marker.xValue(), 4000.0);
    EXPECT_EQ(lineColumn(), qRound(columnOf(4000.0)));
    EXPECT_EQ(marker.height(), plot.canvas()->height());
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, MarkerOutsideTheViewComesBackWithIt)
{
    standAt4km();
    view(5000.0, 5001.0);
    EXPECT_LT(lineColumn(), -100000);
    view(0.0, 10000.0);
    EXPECT_EQ(marker.xValue(), 4000.0);
    EXPECT_EQ(lineColumn(), qRound(columnOf(4000.0)));
}

TEST_F(PlotMarker, DragTellsTheDistanceUnderTheLine)
{
    standAt4km();
    QSignalSpy movedBy(&marker, SIGNAL(movedBy(QmMarker*, int)));
    const int before = lineColumn();
    finger.press(marker, QPoint(14, marker.height() - 26));
    finger.moveBy(25);
    finger.moveBy(-5);
    EXPECT_EQ(lineColumn(), before + 20);
    EXPECT_EQ(marker.xValue(), distanceAt(before + 20));
    ASSERT_EQ(movedTo.size(), 2);
    EXPECT_EQ(movedTo.at(0).at(1).toDouble(), distanceAt(before + 25));
    EXPECT_EQ(movedTo.at(1).at(1).toDouble(), distanceAt(before + 20));
    EXPECT_EQ(movedBy.size(), 2);
    finger.release();
    EXPECT_EQ(movedTo.size(), 2);
}

TEST_F(PlotMarker, DistanceIsToldBeforeTheDrag)
{
    standAt4km();
    int knownBefore = -1;
    QObject::connect(&marker, &QmMarker::movedBy, &marker, [&] { knownBefore = movedTo.size(); });
    finger.press(marker, QPoint(14, marker.height() - 26));
    finger.moveBy(25);
    EXPECT_EQ(knownBefore, 1);
}

TEST_F(PlotMarker, MoveByPixelsTellsTheDistance)
{
    standAt4km();
    const int before = lineColumn();
    marker.moveBy(-1);
    ASSERT_EQ(movedTo.size(), 1);
    EXPECT_EQ(movedTo.first().at(1).toDouble(), distanceAt(before - 1));
}

TEST_F(PlotMarker, DetachedMarkerStillFollowsTheViews)
{
    standAt4km();
    marker.detach();
    view(2000.0, 5000.0);
    EXPECT_EQ(lineColumn(), qRound(columnOf(4000.0)));
    EXPECT_EQ(plot.followers(), 1);
}

TEST_F(PlotMarker, MarkerAttachedTwiceFollowsTwiceWithoutHarm)
{
    standAt4km();
    marker.attach(&plot);
    EXPECT_EQ(plot.followers(), 2);
    view(2000.0, 5000.0);
    EXPECT_EQ(marker.xValue(), 4000.0);
    EXPECT_EQ(movedTo.size(), 0);
}

TEST_F(PlotMarker, AttachedToNothingItStays)
{
    standAt4km();
    const int before = lineColumn();
    marker.attach(nullptr);
    EXPECT_EQ(lineColumn(), before);
}

TEST(PlotMarkerOnItsOwn, OutlivesThePlotItWasAttachedTo)
{
    QWidget parent;
    QmPlotMarker marker(&parent);
    auto plot = std::make_unique<Waveform::Plot>();
    marker.attach(plot.get());
    plot.reset();
    marker.detach();
    marker.attach(nullptr);
    marker.setXValue(3.0);
    EXPECT_EQ(marker.xValue(), 3.0);
}

} // namespace
