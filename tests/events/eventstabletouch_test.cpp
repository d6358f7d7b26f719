// The events table in the launcher's look, under a finger.

#include "events/eventstablemodel.h"
#include "events/eventstableview.h"
#include "tests/platform/launcher/look.h"
#include "tests/support/tracefiles.h"

#include <QScrollBar>
#include <QScroller>
#include <QtTest>

#include <gtest/gtest.h>

namespace {

using namespace testing_support;
using Light = PaletteFactory::Light;

/// A table with more events than it has room for.
class LongTable : public testing::Test
{
protected:
    LongTable()
        : refl(files.write("a.sor", SorSketch::plain()))
    {
        EventList events;
        for (int i = 0; i < 20; ++i) {
            events << Event(Event::Reflective, 0, 10);
        }
        refl.setEventList(events);
        model.setReflectogram(refl);
        view.setModel(&model);
        view.resize(700, 120);
        view.show();
        QCoreApplication::processEvents();
    }

    /// A finger that goes up over the rows.
    void drag(int from, int to, int step_ms = 5)
    {
        QWidget* rows = view.viewport();
        const int x = rows->width() / 2;
        QTest::mousePress(rows, Qt::LeftButton, {}, {x, from});
        for (int y = from - 10; y >= to; y -= 10) {
            QMouseEvent move(QEvent::MouseMove, QPoint(x, y), rows->mapToGlobal(QPoint(x, y)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(rows, &move);
            QTest::qWait(step_ms);
        }
        QTest::mouseRelease(rows, Qt::LeftButton, {}, {x, to});
    }

    void showRows(int count)
    {
        const int around_px = view.height() - view.viewport()->height();
        view.resize(view.width(), around_px + count * view.rowHeight(0));
        QCoreApplication::processEvents();
    }

    const LookIn look {Light::Day};
    TraceFiles files;
    Reflectogram refl;
    Waveform::EventsTableModel model;
    Waveform::EventsTableView view;
};

TEST_F(LongTable, IsScrolledByADragWhichChoosesNothing)
{
    drag(view.viewport()->height() - 10, 10);
    EXPECT_TRUE(QTest::qWaitFor([this] { return view.verticalScrollBar()->value() > 0; }));
    EXPECT_FALSE(view.selectionModel()->hasSelection());
}

TEST_F(LongTable, RestsOnWholeRowsAfterADrag)
{
    const int row_px = view.rowHeight(0);
    showRows(4);
    drag(3 * row_px, 3 * row_px / 2, 100); // slowly: the table stops where the finger leaves it
    const QScroller* scroller = QScroller::scroller(view.viewport());
    ASSERT_TRUE(QTest::qWaitFor([&] { return scroller->state() == QScroller::Inactive; }));
    EXPECT_GT(view.verticalScrollBar()->value(), 0);
    EXPECT_EQ(view.verticalScrollBar()->value() % row_px, 0);
}

TEST_F(LongTable, CanBeDraggedToItsEndWhereItHasRoomForHalfARow)
{
    showRows(3);
    view.resize(view.width(), view.height() + view.rowHeight(0) / 2);
    QScrollBar* bar = view.verticalScrollBar();
    bar->setValue(bar->maximum() - view.rowHeight(0));
    drag(view.viewport()->height() - 10, 10, 100); // slowly
    const QScroller* scroller = QScroller::scroller(view.viewport());
    ASSERT_TRUE(QTest::qWaitFor([&] { return scroller->state() == QScroller::Inactive; }));
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(LongTable, ChosenRowStaysInViewWhereTheTableBecomesLower)
{
    showRows(4);
    const QModelIndex chosen = model.index(3, 0);
    view.selectRow(chosen.row());
    showRows(1);
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(chosen)));
}

TEST_F(LongTable, ChosenRowThatWasScrolledAwayIsNotFetched)
{
    showRows(4);
    view.selectRow(0);
    view.scrollToBottom();
    const int place = view.verticalScrollBar()->value();
    showRows(3);
    EXPECT_EQ(view.verticalScrollBar()->value(), place);
}

TEST_F(LongTable, ScrollBarIsWideEnoughForAFinger)
{
    ASSERT_TRUE(view.verticalScrollBar()->isVisible());
    EXPECT_EQ(view.verticalScrollBar()->width(), 24);
}

TEST_F(LongTable, ScrollBarTakesTheColoursOfNightAndDay)
{
    auto* style = qobject_cast<LauncherStyle*>(QApplication::style());
    ASSERT_NE(style, nullptr);
    for (const Light light : {Light::Night, Light::Day}) {
        QApplication::setPalette(PaletteFactory::getPalette("Application", light));
        style->setLight(light);
        QCoreApplication::processEvents();
        const QImage picture = view.verticalScrollBar()->grab().toImage();
        const QColor mean =
            picture.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
        EXPECT_EQ(mean.lightness() < 128, light == Light::Night) << mean.lightness();
    }
}

} // namespace
