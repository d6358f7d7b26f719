#include "refls/reflstablemodel.h"
#include "refls/reflstableview.h"
#include "refls/refltablemenu.h"
#include "tests/support/echo.h"
#include "tests/support/metamethods.h"
#include "tests/support/tracefiles.h"

#include <QElapsedTimer>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QToolTip>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using testing_support::Bytes;
using testing_support::Echo;
using testing_support::SorSketch;
using testing_support::TraceFiles;
using Waveform::ReflsTableModel;
using Waveform::ReflsTableView;

constexpr int kLongTap_ms = 500;

/// The table on the screen, touched by a finger: its events take the way through the window system,
/// so that a menu that opens under the finger gets what follows.
class Table : public testing::Test
{
protected:
    Table()
    {
        view.setModel(&model);
        view.resize(800, 300);
        view.show();
        QCoreApplication::processEvents();
    }

    void load(int count)
    {
        for (int i = 0; i < count; ++i) {
            model.addRefl(files.plain(QString("trace%1.sor").arg(i)));
        }
        QCoreApplication::processEvents();
    }

    QPoint placeOf(int row) const { return view.visualRect(model.index(row, 1)).center(); }

    QPoint inWindow(QPoint place) const { return view.viewport()->mapTo(&view, place); }

    void press(QPoint place)
    {
        QTest::mousePress(view.windowHandle(), Qt::LeftButton, {}, inWindow(place));
    }

    void release(QPoint place)
    {
        QTest::mouseRelease(view.windowHandle(), Qt::LeftButton, {}, inWindow(place));
    }

    void longTap(QPoint place)
    {
        press(place);
        (void)QTest::qWaitFor([this] { return menu()->isVisible(); }, 2 * kLongTap_ms);
        release(place);
    }

    /// A finger that goes up over the rows and stays down.
    void drag(QPoint from, int to)
    {
        constexpr int kStep = 6;
        press(from);
        for (int y = from.y() - kStep; y >= to; y -= kStep) {
            QTest::mouseMove(view.windowHandle(), inWindow({from.x(), y}));
            QTest::qWait(5);
        }
    }

    int scrolled() const { return view.verticalScrollBar()->value(); }

    void doubleTap(QPoint place)
    {
        QTest::mouseDClick(view.windowHandle(), Qt::LeftButton, {}, inWindow(place));
    }

    ReflTableMenu* menu() const { return view.findChild<ReflTableMenu*>(); }

    QPushButton* entry(int id) const { return menu()->findChildren<QPushButton*>().at(id); }

    void choose(int id)
    {
        QTest::mouseClick(menu()->windowHandle(), Qt::LeftButton, {},
                          entry(id)->geometry().center());
    }

    QStringList names() const
    {
        QStringList all;
        for (const Reflectogram& refl : model.refls()) {
            all << QFileInfo(refl.fileName()).baseName();
        }
        return all;
    }

    /// What a pointer that rests at a place is told.
    QString tipAt(QPoint place)
    {
        QHelpEvent event(QEvent::ToolTip, place, view.viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(view.viewport(), &event);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    }

    QString mainName() const { return QFileInfo(model.mainRefl().fileName()).baseName(); }

    TraceFiles files;
    ReflsTableModel model;
    ReflsTableView view;
    QSignalSpy mainAsked {&view, SIGNAL(mainReflChanged( int ))};
    QSignalSpy deleteAsked {&view, SIGNAL(deleteRefl( int ))};
    QSignalSpy deleteAllAsked {&view, SIGNAL(deleteAllRefls())};
};

TEST_F(Table, IsATableToLookAt)
{
    EXPECT_EQ(view.windowTitle(), "Reflectograms");
    EXPECT_TRUE(view.verticalHeader()->isHidden());
    EXPECT_EQ(view.horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
    EXPECT_FALSE(view.horizontalHeader()->sectionsMovable());
    EXPECT_FALSE(view.horizontalHeader()->sectionsClickable());
    EXPECT_EQ(view.selectionMode(), QAbstractItemView::NoSelection);
    EXPECT_EQ(view.focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(view.editTriggers(), QAbstractItemView::NoEditTriggers);
}

TEST_F(Table, LongNamesKeepTheirEnds)
{
    EXPECT_EQ(view.textElideMode(), Qt::ElideMiddle);
}

TEST_F(Table, RowsAreHighEnoughForAFingerAlsoAfterAReset)
{
    load(2);
    EXPECT_GE(view.rowHeight(0), 44);
    model.update();
    view.setRowHeight(0, 200);
    load(1); // the model asks for fitting rows
    EXPECT_LT(view.rowHeight(0), 60);
    EXPECT_GE(view.rowHeight(2), 44);
}

TEST_F(Table, IsAsHighAsItsRowsWhereThereIsRoom)
{
    load(1);
    const int one = view.sizeHint().height();
    load(2);
    EXPECT_EQ(view.sizeHint().height(), one + 2 * view.rowHeight(0));
    EXPECT_LT(view.minimumSizeHint().height(), 100) << "no room is left for the plot";
}

TEST_F(Table, PressThatLastsOpensTheMenuWithoutARelease)
{
    load(2);
    press(placeOf(0));
    EXPECT_FALSE(menu()->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([this] { return menu()->isVisible(); }));
    release(placeOf(0));
    EXPECT_TRUE(menu()->isVisible()) << "lifting the finger closed the menu";
    EXPECT_TRUE(mainAsked.isEmpty() && deleteAsked.isEmpty() && deleteAllAsked.isEmpty());
}

TEST_F(Table, LongTapIsMeantForTheRowWhereItBegan)
{
    load(3);
    press(placeOf(0));
    QTest::mouseMove(view.windowHandle(), inWindow(placeOf(2)));
    ASSERT_TRUE(QTest::qWaitFor([this] { return menu()->isVisible(); }));
    release(placeOf(2));
    choose(1);
    EXPECT_EQ(names(), QStringList({"trace1", "trace2"}));
}

TEST_F(Table, ReleaseBeforeThatOpensNothing)
{
    load(2);
    press(placeOf(0));
    release(placeOf(0));
    QTest::qWait(kLongTap_ms + 200);
    EXPECT_FALSE(menu()->isVisible());
}

TEST_F(Table, LiftingTheFingerOverAnEntryChoosesNothing)
{
    load(2);
    press(placeOf(0));
    ASSERT_TRUE(QTest::qWaitFor([this] { return menu()->isVisible(); }));
    const QPoint onEntry = view.mapFromGlobal(entry(2)->mapToGlobal(entry(2)->rect().center()));
    QTest::mouseMove(view.windowHandle(), onEntry);
    QTest::mouseRelease(view.windowHandle(), Qt::LeftButton, {}, onEntry);
    EXPECT_TRUE(menu()->isVisible());
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(Table, IsScrolledByADragWhichOpensNoMenu)
{
    view.resize(800, 120); // as high as an instrument has room for
    load(4);
    const QPoint start(placeOf(1).x(), view.viewport()->height() - 4);
    drag(start, 4);
    EXPECT_TRUE(QTest::qWaitFor([this] { return scrolled() > 0; }));
    QTest::qWait(kLongTap_ms + 200);
    EXPECT_FALSE(menu()->isVisible()) << "the finger moved";
    release({start.x(), 4});
    EXPECT_FALSE(menu()->isVisible());
}

TEST_F(Table, ThatCanBeScrolledOpensItsMenuAsSoonAsAnother)
{
    view.resize(800, 120);
    load(4);
    QElapsedTimer sinceThePress;
    sinceThePress.start();
    press(placeOf(1));
    ASSERT_TRUE(QTest::qWaitFor([this] { return menu()->isVisible(); }));
    EXPECT_LT(sinceThePress.elapsed(), kLongTap_ms + 150);
    release(placeOf(1));
    EXPECT_TRUE(menu()->isVisible());
    menu()->close();
    doubleTap(placeOf(0));
    EXPECT_TRUE(menu()->isVisible());
}

TEST_F(Table, ScrollsByPixelsAndRestsWhereItIsUnderALongTap)
{
    view.resize(800, 120);
    load(4);
    view.verticalScrollBar()->setValue(20);
    EXPECT_EQ(scrolled(), 20);
    EXPECT_LT(view.visualRect(model.index(0, 1)).top(), 0);
    longTap(placeOf(1));
    EXPECT_TRUE(menu()->isVisible());
    EXPECT_EQ(scrolled(), 20);
}

TEST_F(Table, TouchAfterThatOfAMenuBeginsAnew)
{
    view.resize(800, 120);
    load(4);
    longTap({placeOf(1).x(), view.viewport()->height() - 4});
    ASSERT_TRUE(menu()->isVisible());
    menu()->close();
    const int before = scrolled();
    const QPoint finger(placeOf(0).x(), 4);
    press(finger);
    QTest::mouseMove(view.windowHandle(), inWindow(finger + QPoint(0, 1)));
    EXPECT_TRUE(QTest::qWaitFor([this] { return menu()->isVisible(); }, 2 * kLongTap_ms))
        << "the finger rests";
    release(finger);
    EXPECT_EQ(scrolled(), before) << "the way between the two touches is no drag";
}

TEST_F(Table, DoubleTapOpensTheMenu)
{
    load(2);
    doubleTap(placeOf(1));
    EXPECT_TRUE(menu()->isVisible());
}

TEST_F(Table, MenuOfADoubleTapStaysClosedWhereTheTableWasResetBetweenTheTaps)
{
    load(2);
    const QPoint row = placeOf(1);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, row);
    model.update(); // as when a computation in the background has ended
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, row);
    ASSERT_TRUE(menu()->isVisible());
    menu()->close();
    QTest::qWait(kLongTap_ms + 200);
    EXPECT_FALSE(menu()->isVisible());
}

TEST_F(Table, TapOutsideTheRowsOpensNoMenu)
{
    load(1);
    const QPoint below = placeOf(0) + QPoint(0, view.rowHeight(0));
    doubleTap(below);
    EXPECT_FALSE(menu()->isVisible());
    longTap(below);
    EXPECT_FALSE(menu()->isVisible());
}

TEST_F(Table, MenuOpensWhereTheFingerIs)
{
    load(2);
    view.move(100, 20);
    longTap(placeOf(1));
    const QPoint finger = view.viewport()->mapToGlobal(placeOf(1));
    EXPECT_LE((menu()->pos() - finger).manhattanLength(), 4) << "frame and header of the table";
}

TEST_F(Table, DisabledMenuOpensNeitherWay)
{
    load(2);
    view.setMenuDisabled(true);
    doubleTap(placeOf(0));
    EXPECT_FALSE(menu()->isVisible());
    longTap(placeOf(0));
    EXPECT_FALSE(menu()->isVisible());
    view.setMenuDisabled(false);
    doubleTap(placeOf(0));
    EXPECT_TRUE(menu()->isVisible());
}

TEST_F(Table, OneTraceCanOnlyBeDeleted)
{
    load(1);
    doubleTap(placeOf(0));
    EXPECT_FALSE(entry(0)->isEnabled());
    EXPECT_TRUE(entry(1)->isEnabled());
    EXPECT_FALSE(entry(2)->isEnabled());
    menu()->close();
    load(1);
    doubleTap(placeOf(0));
    for (int id = 0; id < 3; ++id) {
        EXPECT_TRUE(entry(id)->isEnabled()) << id;
    }
}

TEST_F(Table, SetAsMainMakesTheRowsTraceTheMainOne)
{
    load(3);
    ASSERT_EQ(mainName(), "trace2");
    longTap(placeOf(1));
    choose(0);
    EXPECT_EQ(mainName(), "trace1");
    ASSERT_EQ(mainAsked.size(), 1);
    EXPECT_EQ(mainAsked[0].first().toInt(), 1);
}

TEST_F(Table, DeleteDeletesTheRowsTrace)
{
    load(3);
    doubleTap(placeOf(1));
    choose(1);
    EXPECT_EQ(names(), QStringList({"trace0", "trace2"}));
    ASSERT_EQ(deleteAsked.size(), 1);
    EXPECT_EQ(deleteAsked[0].first().toInt(), 1);
    EXPECT_TRUE(mainAsked.isEmpty() && deleteAllAsked.isEmpty());
}

TEST_F(Table, DeleteAllDeletesEveryTrace)
{
    load(3);
    doubleTap(placeOf(1));
    choose(2);
    EXPECT_TRUE(names().isEmpty());
    EXPECT_EQ(deleteAllAsked.size(), 1);
}

TEST_F(Table, MenuIsClosedBeforeItsActionIsCarriedOut)
{
    load(2);
    bool wasOpen = true;
    QObject::connect(&model, &ReflsTableModel::reflDeleted, [&] { wasOpen = menu()->isVisible(); });
    doubleTap(placeOf(0));
    choose(1);
    EXPECT_FALSE(wasOpen);
}

TEST_F(Table, UnknownChoiceAsksForNothing)
{
    load(2);
    view.clicked(3);
    view.clicked(-1);
    EXPECT_TRUE(mainAsked.isEmpty() && deleteAsked.isEmpty() && deleteAllAsked.isEmpty());
}

TEST_F(Table, ShowsAnyOtherModelWithoutTouchingTheSet)
{
    load(2);
    QStandardItemModel other(3, 2);
    view.setModel(&other);
    doubleTap(view.visualRect(other.index(0, 0)).center());
    choose(2);
    EXPECT_EQ(deleteAllAsked.size(), 1);
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(other.rowCount(), 3);
}

TEST_F(Table, AsksOnceWhenItGetsTheSameModelAgain)
{
    view.setModel(&model);
    load(3);
    doubleTap(placeOf(1));
    choose(1);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(Table, SignalsAndSlotsAreTheAgreedOnes)
{
    const QStringList agreed = {
        "signal mainReflChanged(int row)", "signal deleteRefl(int row)",
        "signal deleteAllRefls()",         "public resize()",
        "public clicked(int id)",          "public setMenuDisabled(bool disabled)",
    };
    const QStringList found =
        testing_support::agreedMethods(ReflsTableView::staticMetaObject, agreed);
    for (const QString& method : agreed) {
        EXPECT_TRUE(found.contains(method)) << qPrintable(method);
    }
}

TEST_F(Table, WithoutAModelNothingOpens)
{
    view.setModel(nullptr);
    doubleTap(QPoint(50, 20));
    EXPECT_FALSE(menu()->isVisible());
}

TEST_F(Table, RowTellsWhatWasOddAboutItsFileWhereThePointerRests)
{
    load(1);
    SorSketch sketch = SorSketch::plain();
    sketch.tail = Bytes(103);
    sketch.leftOut = {"FxdParams"};
    model.addRefl(Reflectogram(files.write("odd.sor", sketch)));
    QCoreApplication::processEvents();
    EXPECT_EQ(tipAt(placeOf(0)), "") << "most files have nothing odd";
    const Echo language;
    const QStringList notes = model.refls().at(1).notes();
    ASSERT_EQ(notes.size(), 2);
    const QString told = tipAt(placeOf(1));
    for (const QString& note : notes) {
        EXPECT_TRUE(told.contains(QString('<' + note + '>').toHtmlEscaped())) << qPrintable(told);
    }
    EXPECT_FALSE(model.data(model.index(1, 0), Qt::ToolTipRole).isValid());
    QToolTip::hideText();
}

TEST_F(Table, RowTellsWhatOfItsFileWasNotSavedWhereThePointerRests)
{
    SorSketch sketch = SorSketch::plain();
    sketch.makers = {{"Mine", Bytes(4)}};
    Reflectogram refl(files.write("made.sor", sketch));
    model.addRefl(refl);
    QCoreApplication::processEvents();
    EXPECT_EQ(tipAt(placeOf(0)), "");
    refl.setEventList({}); // as a measurement does that ends while this trace is the main one
    ASSERT_EQ(refl.save(files.path("saved.sor")), 0);
    EXPECT_THAT(tipAt(placeOf(0)).toStdString(), testing::HasSubstr("left out: &quot;Mine&quot;"));
    QToolTip::hideText();
}

} // namespace
