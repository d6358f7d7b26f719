#include "plot/movableqwtplotmarker.h"
#include "plot/plot.h"
#include "tests/plot/finger.h"
#include "tests/support/paintcounter.h"

#include <qwt_scale_map.h>

#include <QMouseEvent>
#include <QPointer>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

class MovableMarker : public testing::Test
{
protected:
    MovableMarker()
        : marker(new MovableQwtPlotMarker(&owner))
        , finger(plot)
    {
        plot.setAxisScale(QwtPlot::xBottom, 0.0, 10000.0);
        plot.resize(800, 480);
        plot.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&plot));
        plot.replot();
        marker->attach(&plot);
        marker->setXValue(distanceAt(300));
    }

    [[nodiscard]] double distanceAt(double column) const
    {
        return plot.canvasMap(QwtPlot::xBottom).invTransform(column);
    }

    /// What the marker's filter says of a mouse event on the canvas.
    bool consumes(QEvent::Type type, int column)
    {
        QMouseEvent event(type, QPointF(column, 100.0), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        return marker->eventFilter(plot.canvas(), &event);
    }

    QObject owner;
    Waveform::Plot plot;
    QPointer<MovableQwtPlotMarker> marker; ///< of the plot while attached
    testing_support::Finger finger;
};

TEST_F(MovableMarker, PressTenPixelsAwayGrabs)
{
    EXPECT_TRUE(marker->processClickPos(290));
    EXPECT_TRUE(marker->processClickPos(310));
}

TEST_F(MovableMarker, PressElevenPixelsAwayDoesNotGrab)
{
    EXPECT_FALSE(marker->processClickPos(289));
    EXPECT_FALSE(marker->processClickPos(311));
    EXPECT_FALSE(marker->moveMarkerIfNeccessary(400.0));
    EXPECT_EQ(marker->xValue(), distanceAt(300));
}

TEST_F(MovableMarker, GrabbedMarkerFollowsTheFingerUntilItLetsGo)
{
    finger.press(*plot.canvas(), QPoint(305, 100));
    finger.moveBy(50);
    EXPECT_DOUBLE_EQ(marker->xValue(), distanceAt(355));
    finger.moveBy(-150);
    EXPECT_DOUBLE_EQ(marker->xValue(), distanceAt(205));
    finger.release();
    finger.moveBy(100);
    EXPECT_DOUBLE_EQ(marker->xValue(), distanceAt(205));
}

TEST_F(MovableMarker, EachMoveOfAGrabbedMarkerIsPainted)
{
    testing_support::PaintCounter painted;
    painted.attach(&plot);
    finger.press(*plot.canvas(), QPoint(300, 100));
    painted.count = 0;
    finger.moveBy(20);
    EXPECT_EQ(painted.count, 1);
    finger.moveBy(20);
    EXPECT_EQ(painted.count, 2);
    finger.release();
    painted.count = 0;
    finger.moveBy(20);
    EXPECT_EQ(painted.count, 0);
    painted.detach();
}

TEST_F(MovableMarker, FingerElsewhereLeavesTheMarker)
{
    finger.press(*plot.canvas(), QPoint(320, 100));
    finger.moveBy(50);
    finger.release();
    EXPECT_EQ(marker->xValue(), distanceAt(300));
}

TEST_F(MovableMarker, EventsOfADragAreConsumed)
{
    EXPECT_TRUE(consumes(QEvent::MouseButtonPress, 300));
    EXPECT_TRUE(consumes(QEvent::MouseMove, 320));
    EXPECT_TRUE(consumes(QEvent::MouseButtonRelease, 330));
    EXPECT_DOUBLE_EQ(marker->xValue(), distanceAt(330));
    EXPECT_FALSE(consumes(QEvent::MouseMove, 340));
}

TEST_F(MovableMarker, ReleaseWithoutAGrabIsNotConsumed)
{
    EXPECT_FALSE(consumes(QEvent::MouseButtonRelease, 300));
    EXPECT_FALSE(consumes(QEvent::MouseButtonPress, 311));
    EXPECT_FALSE(consumes(QEvent::MouseButtonRelease, 311));
}

TEST_F(MovableMarker, OtherEventsAreNotConsumed)
{
    EXPECT_TRUE(consumes(QEvent::MouseButtonPress, 300));
    QEvent leave(QEvent::Leave);
    EXPECT_FALSE(marker->eventFilter(plot.canvas(), &leave));
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(300.0, 100.0), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    EXPECT_FALSE(marker->eventFilter(&plot, &press));
}

TEST_F(MovableMarker, DetachedMarkerIsLetGoAndCannotBeGrabbed)
{
    EXPECT_TRUE(marker->processClickPos(300));
    marker->detach();
    EXPECT_FALSE(marker->moveMarkerIfNeccessary(400.0));
    EXPECT_FALSE(marker->processClickPos(300));
    EXPECT_FALSE(plot.itemList().contains(marker));
    finger.press(*plot.canvas(), QPoint(300, 100));
    finger.moveBy(50);
    finger.release();
    EXPECT_DOUBLE_EQ(marker->xValue(), distanceAt(300));
}

TEST_F(MovableMarker, MarkerOnAnotherPlotNoLongerWatchesTheFirst)
{
    Waveform::Plot other;
    EXPECT_TRUE(marker->processClickPos(300));
    marker->attach(&other);
    EXPECT_FALSE(marker->moveMarkerIfNeccessary(400.0));
    EXPECT_EQ(marker->plot(), &other);
    EXPECT_FALSE(consumes(QEvent::MouseButtonPress, 300));
    marker->attach(nullptr);
    EXPECT_EQ(marker->plot(), nullptr);
}

TEST(MovableMarkerAndItsPlot, GoWithThePlotWithoutTheOwnerDeletingTwice)
{
    QObject owner;
    auto plot = std::make_unique<Waveform::Plot>();
    const QPointer<MovableQwtPlotMarker> marker(new MovableQwtPlotMarker(&owner));
    marker->attach(plot.get());
    plot.reset();
    EXPECT_TRUE(marker.isNull());
    EXPECT_TRUE(owner.children().isEmpty());
}

TEST(MovableMarkerAndItsPlot, OwnerThatDiesFirstTakesTheMarkerOffThePlot)
{
    Waveform::Plot plot;
    {
        QObject owner;
        (new MovableQwtPlotMarker(&owner))->attach(&plot);
        EXPECT_EQ(plot.itemList(QwtPlotItem::Rtti_PlotMarker).size(), 1);
    }
    EXPECT_TRUE(plot.itemList(QwtPlotItem::Rtti_PlotMarker).isEmpty());
}

} // namespace
