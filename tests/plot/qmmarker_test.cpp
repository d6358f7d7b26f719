#include "platform/launcher/palettefactory.h"
#include "plot/qmmarker.h"
#include "tests/plot/finger.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A marker whose clock stands still until it is set.
class ClockedMarker : public QmMarker
{
    Q_OBJECT

public:
    using QmMarker::QmMarker;
    qint64 time = 1000;

protected:
    [[nodiscard]] qint64 now() const override { return time; }
};

/// Writes down what a marker says, in order.
class Listener : public QObject
{
    Q_OBJECT

public:
    explicit Listener(QmMarker* marker)
        : marker(marker)
    {
        connect(marker, SIGNAL(checked(QmMarker*)), SLOT(onChecked(QmMarker*)));
        connect(marker, SIGNAL(unchecked(QmMarker*)), SLOT(onUnchecked(QmMarker*)));
        connect(marker, SIGNAL(moved(QmMarker*)), SLOT(onMoved(QmMarker*)));
        connect(marker, SIGNAL(movedBy(QmMarker*, int)), SLOT(onMovedBy(QmMarker*, int)));
        connect(marker, SIGNAL(longTapped(QmMarker*)), SLOT(onLongTapped(QmMarker*)));
        connect(marker, SIGNAL(slideDown(QmMarker*)), SLOT(onSlideDown(QmMarker*)));
        connect(marker, SIGNAL(doubleClicked(QmMarker*)), SLOT(onDoubleClicked(QmMarker*)));
    }

    [[nodiscard]] std::vector<std::string> take()
    {
        std::vector<std::string> result;
        result.swap(heard);
        return result;
    }

private slots:

    void onChecked(QmMarker* from) { hear(from, "checked"); }

    void onUnchecked(QmMarker* from) { hear(from, "unchecked"); }

    void onMoved(QmMarker* from) { hear(from, "moved"); }

    void onMovedBy(QmMarker* from, int dx) { hear(from, QString("movedBy %1").arg(dx)); }

    void onLongTapped(QmMarker* from) { hear(from, "longTapped"); }

    void onSlideDown(QmMarker* from) { hear(from, "slideDown"); }

    void onDoubleClicked(QmMarker* from) { hear(from, "doubleClicked"); }

private:
    void hear(QmMarker* from, const QString& what)
    {
        EXPECT_EQ(from, marker);
        heard.push_back(what.toStdString());
    }

    QmMarker* marker;
    std::vector<std::string> heard;
};

class Marker : public testing::Test
{
protected:
    Marker()
        : marker(&canvas)
        , listener(&marker)
        , finger(window)
    {
        window.resize(600, 400);
        canvas.setGeometry(50, 20, 500, 300);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        marker.centerOn(200.0);
    }

    /// The middle of the knob.
    [[nodiscard]] QPoint knob() const { return {14, marker.height() - 26}; }

    void tap(qint64 milliseconds)
    {
        finger.press(marker, knob());
        marker.time += milliseconds;
        finger.release();
    }

    /// A move that the marker gets without having got the press.
    void moveFingerTo(QPoint at)
    {
        QMouseEvent event(QEvent::MouseMove, at, marker.mapToGlobal(at), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&marker, &event);
    }

    QWidget window;
    QWidget canvas {&window};
    ClockedMarker marker;
    Listener listener;
    testing_support::Finger finger;
};

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

class MarkerPicture : public Marker
{
protected:
    MarkerPicture()
    {
        QPalette palette = marker.palette();
        palette.setColor(QPalette::Window, kKnob);
        palette.setColor(QPalette::WindowText, Qt::black);
        marker.setPalette(palette);
    }

    /// The marker alone, on nothing.
    [[nodiscard]] QImage picture() { return picture(marker); }

    [[nodiscard]] static QImage picture(QmMarker& shown)
    {
        QImage image(shown.size(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        shown.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    }

    [[nodiscard]] static int dark(const QImage& image, const QRect& area)
    {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                count += qGray(image.pixel(x, y)) < 60 && qAlpha(image.pixel(x, y)) == 255 ? 1 : 0;
            }
        }
        return count;
    }

    const QColor kKnob {250, 220, 180};
    const QColor line = PaletteFactory::getPalette("GenericWindow").color(QPalette::Button);
};

TEST_F(MarkerPicture, IsAOneColumnLineWithAKnob)
{
    const QImage image = picture();
    EXPECT_EQ(image.pixelColor(14, 0), line);
    EXPECT_EQ(image.pixelColor(14, 250), line);
    EXPECT_EQ(image.pixelColor(14, 299), line);
    EXPECT_EQ(image.pixelColor(13, 100).alpha(), 0);
    EXPECT_EQ(image.pixelColor(15, 100).alpha(), 0);
    EXPECT_EQ(image.pixelColor(14, 274), kKnob);
    EXPECT_EQ(image.pixelColor(1, 262).alpha(), 0); // outside the circle
}

TEST_F(MarkerPicture, PressedMarkerHasADarkerLineInASoftLight)
{
    finger.press(marker, knob());
    const QImage image = picture();
    EXPECT_EQ(image.pixelColor(14, 100).rgba(), line.darker(200).rgba());
    EXPECT_GT(image.pixelColor(13, 100).alpha(), 30);
    EXPECT_GT(image.pixelColor(13, 100).alpha(), image.pixelColor(10, 100).alpha());
    EXPECT_EQ(image.pixelColor(4, 100).alpha(), 0);
    finger.release();
    EXPECT_EQ(picture().pixelColor(13, 100).alpha(), 0);
}

TEST_F(MarkerPicture, CheckedKnobIsLit)
{
    marker.setChecked(true);
    EXPECT_EQ(picture().pixelColor(14, 274), line);
    marker.setCheckable(false);
    EXPECT_EQ(picture().pixelColor(14, 274), kKnob);
}

TEST_F(MarkerPicture, KnobHasAnEdgeOfTwoPixels)
{
    const QImage image = picture();
    for (const int x : {0, 1, 27, 28}) {
        EXPECT_GT(image.pixelColor(x, 274).alpha(), 200) << x;
        EXPECT_NEAR(image.pixelColor(x, 274).red(), line.red(), 8) << x;
    }
    EXPECT_EQ(image.pixelColor(3, 274), kKnob);
    EXPECT_EQ(image.pixelColor(25, 274), kKnob);
}

TEST_F(MarkerPicture, SymbolStandsInTheMiddleOfTheKnob)
{
    const QRect inner(6, 266, 17, 17);
    EXPECT_EQ(dark(picture(), inner), 0);
    marker.setSymbol(QChar('I'));
    EXPECT_GT(dark(picture(), QRect(11, 266, 8, 17)), 3);
    EXPECT_EQ(dark(picture(), QRect(6, 266, 4, 17)), 0);
    EXPECT_EQ(dark(picture(), QRect(20, 266, 3, 17)), 0);
}

TEST_F(MarkerPicture, SymbolStandsInTheMiddleInAnyFont)
{
    const auto isInTheMiddle = [](const QImage& image) {
        int left = 0;
        int right = 28;
        for (; left < right && dark(image, QRect(left, 262, 1, 25)) == 0; ++left) { }
        for (; left < right && dark(image, QRect(right, 262, 1, 25)) == 0; --right) { }
        return right - left >= 5 && std::abs(left + right - 28) <= 2;
    };
    QFont font = canvas.font();
    font.setPixelSize(24);
    canvas.setFont(font);
    QmMarker large(&canvas); // has the font from its parent
    large.setPalette(marker.palette());
    large.setSymbol(QChar('H'));
    EXPECT_TRUE(isInTheMiddle(picture(large)));
    font.setPixelSize(14);
    large.setFont(font);
    EXPECT_TRUE(isInTheMiddle(picture(large)));
}

TEST_F(MarkerPicture, PixmapIsShownWhereThereIsNoCharacter)
{
    QPixmap pixmap(5, 5);
    pixmap.fill(Qt::red);
    marker.setSymbol(pixmap);
    QImage image = picture();
    EXPECT_EQ(image.pixelColor(12, 272), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(16, 276), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(17, 277), kKnob);
    marker.setSymbol(QChar('.'));
    EXPECT_NE(picture().pixelColor(12, 272), QColor(Qt::red));
}

} // namespace

#include "qmmarker_test.moc"
