#include "tests/twomarkers/markersonplot.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace testing_support; // builder and units
using Waveform::TwoMarkersResult;

TEST_F(MarkersOnPlot, DragIsMeasuredAndShown)
{
    showAll();
    QSignalSpy results(&model, SIGNAL(resultsChanged(TwoMarkersResult)));
    const double before = b->xValue();
    drag(b, 200);
    EXPECT_GT(b->xValue(), before + 1000.0);
    ASSERT_EQ(results.size(), 1);
    const auto result = results.first().first().value<TwoMarkersResult>();
    EXPECT_EQ(result.xA, a->xValue());
    EXPECT_EQ(result.xB, b->xValue());
    for (int field = TwoMarkersResult::A; field <= TwoMarkersResult::Reflection; ++field) {
        EXPECT_EQ(value(field), result.formatted(static_cast<TwoMarkersResult::Field>(field)));
    }
    drag(a, 100);
    EXPECT_EQ(results.size(), 2);
    EXPECT_EQ(results.last().first().value<TwoMarkersResult>().xA, a->xValue());
}

TEST_F(MarkersOnPlot, ReturnLossIsShownWhenItComes)
{
    showAll();
    QSignalSpy orls(&model, SIGNAL(orlChanged( double )));
    drag(b, 200);
    finish();
    ASSERT_FALSE(orls.isEmpty());
    EXPECT_EQ(value(6), QString::number(orls.last().first().toDouble(), 'f', 2) + " dB");
    view->setORL(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(value(6), "-");
}

TEST_F(MarkersOnPlot, WheelMovesTheCheckedOnesByItsDelta)
{
    showAll();
    const int atA = a->x();
    const int atB = b->x();
    b->setChecked(true);
    turnWheel(120);
    EXPECT_EQ(b->x(), atB + 120);
    EXPECT_EQ(a->x(), atA);
    a->setChecked(true);
    turnWheel(-20);
    EXPECT_EQ(b->x(), atB + 100);
    EXPECT_EQ(a->x(), atA); // would leave the canvas
    turnWheel(120);
    EXPECT_EQ(a->x(), atA + 120);
}

TEST_F(MarkersOnPlot, WheelThatTheScreenTurnsComesOnce)
{
    showAll();
    QWidget* nested = plot.canvas();
    for (QWidget* widget : plot.findChildren<QWidget*>()) {
        widget->installEventFilter(view);
    }
    plot.installEventFilter(view);
    b->setChecked(true);
    const int atB = b->x();
    const QPoint at = nested->mapTo(&plot, QPoint(400, 100));
    QWheelEvent event(at, plot.mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(plot.windowHandle(), &event);
    EXPECT_EQ(b->x(), atB + 120);
}

TEST_F(MarkersOnPlot, PageKeysMoveTheCheckedOnesByAPixel)
{
    showAll();
    plot.installEventFilter(view);
    b->setChecked(true);
    const int atA = a->x();
    const int atB = b->x();
    QTest::keyClick(&plot, Qt::Key_PageUp);
    EXPECT_EQ(b->x(), atB + 1);
    QTest::keyClick(&plot, Qt::Key_PageDown);
    QTest::keyClick(&plot, Qt::Key_PageDown);
    EXPECT_EQ(b->x(), atB - 1);
    EXPECT_EQ(a->x(), atA);
    QTest::keyClick(&plot, Qt::Key_Left);
    EXPECT_EQ(b->x(), atB - 1);
}

TEST_F(MarkersOnPlot, HiddenTableTakesWheelAndKeysAndMovesNothing)
{
    showAll();
    b->setChecked(true);
    const int atB = b->x();
    view->results()->hide();
    turnWheel(120);
    QKeyEvent up(QEvent::KeyPress, Qt::Key_PageUp, Qt::NoModifier);
    QKeyEvent down(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
    EXPECT_TRUE(view->eventFilter(&plot, &up));
    EXPECT_TRUE(view->eventFilter(&plot, &down));
    view->moveMarkers(5);
    EXPECT_EQ(b->x(), atB);
    view->results()->show();
    view->moveMarkers(5);
    EXPECT_EQ(b->x(), atB + 5);
}

TEST_F(MarkersOnPlot, OtherEventsPass)
{
    showAll();
    QKeyEvent left(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
    QKeyEvent released(QEvent::KeyRelease, Qt::Key_PageUp, Qt::NoModifier);
    QEvent update(QEvent::UpdateRequest);
    for (QEvent* event : {static_cast<QEvent*>(&left), static_cast<QEvent*>(&released), &update}) {
        EXPECT_FALSE(view->eventFilter(&plot, event));
    }
}

TEST_F(MarkersOnPlot, OutOfViewComeToTheEdgesOfTheScreen)
{
    showAll();
    a->setXValue(500.0);
    b->setXValue(600.0);
    see(1000.0, 2000.0);
    view->moveMarkersToScreen();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(1000.0)) + 29);
    EXPECT_EQ(lineColumn(b), qRound(columnOf(2000.0)) - 29);
    EXPECT_EQ(a->xValue(), distanceAt(lineColumn(a)));
    EXPECT_EQ(b->xValue(), distanceAt(lineColumn(b)));
    EXPECT_GT(a->xValue(), 1000.0);
    EXPECT_LT(b->xValue(), 2000.0);

    see(100.0, 200.0); // before them now
    view->moveMarkersToScreen();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(100.0)) + 29);
    EXPECT_EQ(lineColumn(b), qRound(columnOf(200.0)) - 29);
    EXPECT_EQ(value(0), QString::number(a->xValue(), 'f', 1) + " m");
}

TEST_F(MarkersOnPlot, InViewStayWhereTheyAre)
{
    showAll();
    a->setXValue(1500.0);
    b->setXValue(600.0);
    const double atA = a->xValue();
    const double atB = b->xValue();
    view->moveMarkersToScreen();
    EXPECT_EQ(a->xValue(), atA);
    EXPECT_EQ(b->xValue(), atB);
    see(1000.0, 2000.0);
    view->moveMarkersToScreen();
    EXPECT_EQ(a->xValue(), atA);
    EXPECT_NE(b->xValue(), atB);
}

TEST_F(MarkersOnPlot, AtTheVeryEdgesOfTheViewStay)
{
    showAll();
    see(1000.0, 2000.0);
    for (int time = 0; time < 2; ++time) { // the second time it is the distance as given
        a->setXValue(1000.0);
        b->setXValue(2000.0);
    }
    view->moveMarkersToScreen();
    EXPECT_EQ(a->xValue(), 1000.0);
    EXPECT_EQ(b->xValue(), 2000.0);
}

TEST_F(MarkersOnPlot, BOnTheLeftOfTheViewComesToItsRightEdge)
{
    showAll();
    a->setXValue(3000.0);
    b->setXValue(600.0);
    see(1000.0, 2000.0);
    view->moveMarkersToScreen();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(1000.0)) + 29);
    EXPECT_EQ(lineColumn(b), qRound(columnOf(2000.0)) - 29);
}

TEST_F(MarkersOnPlot, ScreenIsTheScaleOfNow)
{
    showAll();
    a->setXValue(500.0);
    plot.setAxisScale(QwtPlot::xBottom, 1000.0, 2000.0); // not drawn yet
    view->moveMarkersToScreen();
    EXPECT_EQ(lineColumn(a), qRound(columnOf(1000.0)) + 29);
    EXPECT_EQ(a->xValue(), distanceAt(lineColumn(a)));
}

} // namespace
