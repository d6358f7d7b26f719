#include "tests/plot/markertest.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(NewMarker, StandsAtTheLeftEdgeAsHighAsItsParent)
{
    QWidget parent;
    parent.resize(300, 200);
    const QmMarker marker(&parent);
    EXPECT_EQ(marker.geometry(), QRect(0, 0, 29, 200));
    EXPECT_EQ(QmMarker::markerBorder, 14);
    EXPECT_EQ(marker.focusPolicy(), Qt::ClickFocus);
    EXPECT_TRUE(marker.testAttribute(Qt::WA_DeleteOnClose));
}

TEST(NewMarker, IsMovableAndCheckableAndNotChecked)
{
    QWidget parent;
    const QmMarker marker(&parent);
    EXPECT_TRUE(marker.property("movable").toBool());
    EXPECT_TRUE(marker.property("checkable").toBool());
    EXPECT_FALSE(marker.property("checked").toBool());
    EXPECT_TRUE(marker.symbol().isNull());
    EXPECT_TRUE(marker.symbolPixmap().isNull());
}

TEST(NewMarker, DeletesItselfWhenClosed)
{
    QWidget parent;
    QPointer<QmMarker> marker(new QmMarker(&parent));
    marker->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(marker.isNull());
}

TEST_F(Marker, FollowsTheHeightOfItsParent)
{
    canvas.resize(500, 250);
    EXPECT_EQ(marker.geometry(), QRect(186, 0, 29, 250));
    finger.press(marker, QPoint(14, 250 - 26));
    finger.moveBy(15);
    EXPECT_EQ(marker.x(), 201);
}

TEST_F(Marker, StaysWhereItIsWhenOnlyTheWidthOfItsParentChanges)
{
    canvas.resize(250, 300);
    EXPECT_EQ(marker.geometry(), QRect(186, 0, 29, 300));
}

TEST_F(Marker, LetsTheResizeOfItsParentPass)
{
    QResizeEvent event(QSize(500, 200), QSize(500, 300));
    EXPECT_FALSE(marker.eventFilter(&canvas, &event));
}

TEST_F(Marker, FollowsAParentThatWasResizedWhileHidden)
{
    window.hide();
    canvas.resize(500, 220);
    window.show();
    EXPECT_EQ(marker.height(), 220);
}

TEST_F(Marker, LineIsPutToTheNearestColumnInsideOrOutside)
{
    marker.centerOn(250.6);
    EXPECT_EQ(marker.pos(), QPoint(237, 0));
    marker.centerOn(-90.0);
    EXPECT_EQ(marker.x(), -104);
    marker.centerOn(qQNaN());
    EXPECT_EQ(marker.x(), -104);
}

TEST_F(Marker, MovesByWhatItIsTold)
{
    marker.moveBy(-30);
    EXPECT_EQ(marker.pos(), QPoint(156, 0));
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, DoesNotLeaveItsParent)
{
    EXPECT_TRUE(marker.canMove(-185));
    EXPECT_FALSE(marker.canMove(-186));
    marker.moveBy(-186);
    EXPECT_EQ(marker.x(), 186);
    EXPECT_TRUE(marker.canMove(500 - 29 - 186));
    EXPECT_FALSE(marker.canMove(500 - 29 - 186 + 1));
}

TEST_F(Marker, NineFingerPixelsMoveNothingAndTenDo)
{
    finger.press(marker, knob());
    finger.moveBy(9);
    finger.moveBy(-18);
    EXPECT_EQ(marker.x(), 186);
    EXPECT_THAT(listener.take(), IsEmpty());
    finger.moveBy(19);
    EXPECT_EQ(marker.x(), 196);
    EXPECT_THAT(listener.take(), ElementsAre("movedBy 10"));
}

TEST_F(Marker, FollowsTheFingerOnceADragHasStarted)
{
    finger.press(marker, knob());
    finger.moveBy(-10);
    finger.moveBy(-1);
    finger.moveBy(3);
    EXPECT_EQ(marker.x(), 178);
    marker.time += 500;
    finger.release();
    EXPECT_THAT(listener.take(), ElementsAre("movedBy -10", "movedBy -1", "movedBy 3", "moved"));
}

TEST_F(Marker, EachPressStartsAnew)
{
    finger.press(marker, knob());
    finger.moveBy(20);
    marker.time += 500;
    finger.release();
    finger.press(marker, knob());
    finger.moveBy(5);
    EXPECT_EQ(marker.x(), 206);
}

TEST_F(Marker, DragOutOfTheParentLeavesItWhereItIs)
{
    finger.press(marker, knob());
    finger.moveBy(-186);
    EXPECT_EQ(marker.x(), 186);
    finger.moveBy(186 + 286);
    EXPECT_EQ(marker.x(), 186);
    marker.time += 500;
    finger.release();
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, DragThatWentTooFarIsCaughtUpOnTheWayBack)
{
    finger.press(marker, knob());
    finger.moveBy(-100);
    finger.moveBy(-100); // beyond the edge
    finger.moveBy(20);
    EXPECT_EQ(marker.x(), 6);
    EXPECT_THAT(listener.take(), ElementsAre("movedBy -100", "movedBy -80"));
}

TEST_F(Marker, UnmovableMarkerCannotBeDraggedNorMoved)
{
    marker.setMovable(false);
    finger.press(marker, knob());
    finger.moveBy(50);
    marker.moveBy(10);
    EXPECT_EQ(marker.x(), 186);
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, FingerThatSlidesBelowTheParentIsTold)
{
    finger.press(marker, knob());
    finger.moveBy(0, 26 + 30);
    EXPECT_THAT(listener.take(), IsEmpty());
    finger.moveBy(0, 1);
    EXPECT_THAT(listener.take(), ElementsAre("slideDown"));
    finger.moveBy(12, 0);
    EXPECT_THAT(listener.take(), ElementsAre("slideDown", "movedBy 12"));
}

TEST_F(Marker, MoveWithoutPressIsNothing)
{
    moveFingerTo(QPoint(60, 400));
    EXPECT_THAT(listener.take(), IsEmpty());
    EXPECT_EQ(marker.x(), 186);
}

TEST_F(Marker, PressBesideTheMarkerIsLeftToOthers)
{
    QMouseEvent beside(QEvent::MouseButtonPress, QPointF(29.0, 50.0), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&marker, &beside);
    EXPECT_FALSE(beside.isAccepted());
    QMouseEvent line(QEvent::MouseButtonPress, QPointF(14.0, 50.0), Qt::LeftButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&marker, &line);
    EXPECT_TRUE(line.isAccepted());
}

TEST_F(Marker, RestingFingerIsALongTapAfterASecondAndOnlyOnce)
{
    const QSignalSpy longTapped(&marker, SIGNAL(longTapped(QmMarker*)));
    QElapsedTimer time;
    time.start();
    finger.press(marker, knob());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !longTapped.isEmpty(); }));
    EXPECT_GE(time.elapsed(), 999);
    EXPECT_THAT(listener.take(), ElementsAre("longTapped"));
    QTest::qWait(1100);
    marker.time += 2200;
    finger.release();
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, DragCancelsTheLongTap)
{
    finger.press(marker, knob());
    finger.moveBy(10);
    QTest::qWait(1100);
    EXPECT_THAT(listener.take(), ElementsAre("movedBy 10"));
}

TEST_F(Marker, TremblingFingerStillMakesALongTap)
{
    finger.press(marker, knob());
    finger.moveBy(9);
    QTest::qWait(1100);
    EXPECT_THAT(listener.take(), ElementsAre("longTapped"));
}

TEST_F(Marker, ReleaseCancelsTheLongTap)
{
    tap(500);
    QTest::qWait(1100);
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, StoppedTimerMakesNoLongTap)
{
    finger.press(marker, knob());
    marker.stopLongTapTimer();
    marker.stopLongTapTimer();
    QTest::qWait(1100);
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, HidingCancelsTheLongTap)
{
    finger.press(marker, knob());
    marker.hide();
    marker.show();
    QTest::qWait(1100);
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, FingerOnAMarkerThatIsHiddenIsLetGo)
{
    finger.press(marker, knob());
    finger.moveBy(15);
    marker.hide();
    marker.show();
    moveFingerTo(QPoint(60, 100));
    EXPECT_EQ(marker.x(), 201);
    EXPECT_THAT(listener.take(), ElementsAre("movedBy 15"));
    finger.press(marker, knob());
    finger.moveBy(5); // a new drag, which has not started yet
    EXPECT_EQ(marker.x(), 201);
}

TEST_F(Marker, TapOf69MillisecondsToggles)
{
    tap(69);
    EXPECT_TRUE(marker.isChecked());
    EXPECT_THAT(listener.take(), ElementsAre("checked"));
    tap(0);
    EXPECT_FALSE(marker.isChecked());
    EXPECT_THAT(listener.take(), ElementsAre("unchecked"));
}

TEST_F(Marker, TapOf70MillisecondsDoesNotToggle)
{
    tap(70);
    EXPECT_FALSE(marker.isChecked());
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, TapDuringWhichTheClockIsSetBackToggles)
{
    tap(-3600000);
    EXPECT_TRUE(marker.isChecked());
}

TEST_F(Marker, ShortDragTogglesAfterItEnds)
{
    finger.press(marker, knob());
    finger.moveBy(30);
    marker.time += 60;
    finger.release();
    EXPECT_THAT(listener.take(), ElementsAre("movedBy 30", "moved", "checked"));
}

TEST_F(Marker, UncheckableMarkerIsNotToggled)
{
    marker.setCheckable(false);
    tap(10);
    marker.setChecked(true);
    EXPECT_FALSE(marker.isChecked());
    EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Marker, CheckIsToldOnceAChange)
{
    marker.setChecked(true);
    marker.setChecked(true);
    marker.setChecked(false);
    EXPECT_THAT(listener.take(), ElementsAre("checked", "unchecked"));
}

TEST_F(Marker, NoLongerCheckableMarkerKeepsItsCheck)
{
    marker.setChecked(true);
    marker.setCheckable(false);
    EXPECT_TRUE(marker.isChecked());
    EXPECT_THAT(listener.take(), ElementsAre("checked"));
}

TEST_F(Marker, UnmovableMarkerIsNotCheckable)
{
    marker.setMovable(false);
    EXPECT_FALSE(marker.isCheckable());
    marker.setMovable(true);
    EXPECT_TRUE(marker.isMovable());
    EXPECT_FALSE(marker.isCheckable());
}

TEST_F(Marker, UnmovableMarkerThatWasMadeCheckableAgainStaysSo)
{
    marker.setMovable(false);
    marker.setCheckable(true);
    marker.setMovable(false); // no change, so nothing follows
    EXPECT_TRUE(marker.isCheckable());
}

TEST_F(Marker, DoubleClickIsToldAndIsNoPress)
{
    marker.setCheckable(false); // its first tap would toggle
    finger.doubleTap(marker, knob());
    EXPECT_THAT(listener.take(), ElementsAre("doubleClicked"));
    finger.moveBy(40);
    EXPECT_EQ(marker.x(), 186);
}

TEST_F(Marker, SymbolIsACharacterUntilItIsTakenAway)
{
    marker.setSymbol(QChar('A'));
    EXPECT_EQ(marker.symbol(), QChar('A'));
    EXPECT_TRUE(marker.setProperty("symbol", QChar('B')));
    EXPECT_EQ(marker.symbol(), QChar('B'));
    marker.setSymbol(QChar());
    EXPECT_TRUE(marker.symbol().isNull());
}

} // namespace
