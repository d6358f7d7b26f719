#include "events/eventcelldelegate.h"
#include "events/eventmarkersview.h"
#include "events/eventstablemodel.h"
#include "events/eventstableview.h"
#include "platform/launcher/palettefactory.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "tests/events/eventat.h"
#include "tests/support/tracefiles.h"

#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_symbol.h>

#include <QFontInfo>
#include <QFontMetrics>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QToolTip>
#include <QtTest>

#include <gmock/gmock.h>

#include <functional>
#include <memory>

namespace {

using testing_support::eventAt;
using testing_support::TraceFiles;
using Waveform::EventCellDelegate;
using Waveform::EventsTableModel;
using Waveform::EventsTableView;

EventList threeEventsAndTwoSections()
{
    return {eventAt(Event::SpanStart, 0), eventAt(Event::Fiber, 0),
            eventAt(Event::NonReflective, 1000), eventAt(Event::Fiber, 1000),
            eventAt(Event::SpanEnd, 3000)};
}

/// Where in a picture a colour stands; empty where it does not.
QRect placeOf(const QImage& image, const std::function<bool(QColor)>& isWanted)
{
    QRect place;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isWanted(image.pixelColor(x, y))) {
                place |= QRect(x, y, 1, 1);
            }
        }
    }
    return place;
}

class EventsView : public testing::Test
{
protected:
    EventsView()
        : refl(files.plain())
    {
        refl.setEventList(threeEventsAndTwoSections());
        model.setReflectogram(refl);
        view.setPalette(PaletteFactory::getPalette("GenericWindow"));
        view.setModel(&model);
        view.resize(800, 200);
        view.show();
    }

    QPoint middleOf(int row, int column) const
    {
        return view.visualRect(model.index(row, column)).center();
    }

    void tap(int row, int column)
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(row, column));
    }

    QList<int> selectedRows() const
    {
        QList<int> rows;
        for (const QModelIndex& index : model.selectionModel()->selectedRows()) {
            rows << index.row();
        }
        return rows;
    }

    void askForHelp(int row, int column)
    {
        const QPoint where = middleOf(row, column);
        QHelpEvent event(QEvent::ToolTip, where, view.viewport()->mapToGlobal(where));
        QApplication::sendEvent(view.viewport(), &event);
    }

    TraceFiles files;
    Reflectogram refl;
    EventsTableModel model;
    EventsTableView view;
};

TEST_F(EventsView, WantsRoomForFiveRows)
{
    view.resize(800, view.sizeHint().height());
    QCoreApplication::processEvents();
    EXPECT_EQ(view.viewport()->height(), 5 * view.rowHeight(0));
}

TEST_F(EventsView, HasItsTitleAndFixedHeaders)
{
    EXPECT_EQ(view.windowTitle(), "Events");
    const QHeaderView* header = view.horizontalHeader();
    for (int column = 0; column < 7; ++column) {
        EXPECT_EQ(header->sectionResizeMode(column), QHeaderView::Stretch);
    }
    EXPECT_FALSE(header->sectionsMovable());
    EXPECT_FALSE(header->sectionsClickable());
    EXPECT_TRUE(view.verticalHeader()->isHidden());
}

TEST_F(EventsView, TapChoosesTheWholeRowAndOnlyThat)
{
    EXPECT_EQ(view.selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_EQ(view.selectionBehavior(), QAbstractItemView::SelectRows);
    tap(0, 3);
    EXPECT_EQ(selectedRows(), QList<int>({0}));
    tap(2, 1);
    EXPECT_EQ(selectedRows(), QList<int>({2}));
    EXPECT_EQ(model.selectionModel()->currentIndex().row(), 2);
}

TEST_F(EventsView, CannotBeWrittenInto)
{
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(0, 2));
    EXPECT_EQ(view.viewport()->findChild<QWidget*>(), nullptr);
}

TEST_F(EventsView, TakesTheSelectionOfItsModelAndLeavesNoOther)
{
    EXPECT_EQ(view.selectionModel(), model.selectionModel());
    EXPECT_TRUE(
        view.findChildren<QItemSelectionModel*>(QString(), Qt::FindDirectChildrenOnly).isEmpty());
}

TEST_F(EventsView, GivenItsModelAgainKeepsTheSelection)
{
    tap(2, 2);
    view.setModel(&model);
    EXPECT_EQ(view.selectionModel(), model.selectionModel());
    EXPECT_EQ(selectedRows(), QList<int>({2}));
}

TEST_F(EventsView, ShowsOtherTablesToo)
{
    QStandardItemModel other(2, 7);
    view.setModel(&other);
    ASSERT_NE(view.selectionModel(), nullptr);
    EXPECT_EQ(view.selectionModel()->model(), &other);
    QHelpEvent event(QEvent::ToolTip, {5, 5}, view.viewport()->mapToGlobal({5, 5}));
    QApplication::sendEvent(view.viewport(), &event);
    view.setModel(nullptr);
    view.setModel(&model);
    tap(1, 2);
    EXPECT_EQ(selectedRows(), QList<int>({1}));
}

TEST_F(EventsView, OutlivesItsModel)
{
    auto shortLived = std::make_unique<EventsTableModel>();
    view.setModel(shortLived.get());
    shortLived.reset();
    view.grab();
    EXPECT_EQ(qobject_cast<EventsTableModel*>(view.model()), nullptr);
}

TEST_F(EventsView, FiveRowsFitTheStripBelowThePlot)
{
    EXPECT_GE(view.rowHeight(0), 32) << "a finger finds it";
    EXPECT_LE(view.visualRect(model.index(4, 0)).bottom(), view.viewport()->height());
    EXPECT_FALSE(view.verticalScrollBar()->isVisible());
    EXPECT_FALSE(view.horizontalScrollBar()->isVisible());
}

TEST_F(EventsView, MoreRowsAreScrolledAndNoTextIsClipped)
{
    EventList events;
    for (int i = 0; i < 20; ++i) {
        Event event = eventAt(Event::Reflective, 100000 + i);
        event.loss = -10.25;
        event.reflectance = -55.55;
        events << event << eventAt(Event::Fiber, 0);
        events.last().length = 123456.78;
    }
    refl.setEventList(events);
    model.setReflectogram(refl);
    QCoreApplication::processEvents();
    EXPECT_TRUE(view.verticalScrollBar()->isVisible());
    EXPECT_FALSE(view.horizontalScrollBar()->isVisible());
    const QFontMetrics font(view.font());
    for (int column = 0; column < 7; ++column) {
        const int width = view.columnWidth(column) - 8;
        EXPECT_LE(font.horizontalAdvance(
                      model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString()),
                  width);
        for (int row = 0; row < 2; ++row) {
            const QString text = model.data(model.index(row, column), Qt::DisplayRole).toString();
            const QFont used = EventCellDelegate::fitting(view.font(), text, width);
            EXPECT_LE(QFontMetrics(used).horizontalAdvance(text), width);
            EXPECT_GE(QFontInfo(used).pixelSize(), 12) << "still to be read";
        }
    }
}

TEST(EventCell, TextThatFitsKeepsItsFont)
{
    const QFont font;
    const int width = QFontMetrics(font).horizontalAdvance("123.45");
    EXPECT_EQ(EventCellDelegate::fitting(font, "123.45", width), font);
    const QFont smaller = EventCellDelegate::fitting(font, "123.45", width - 1);
    EXPECT_LT(QFontInfo(smaller).pixelSize(), QFontInfo(font).pixelSize());
    EXPECT_LE(QFontMetrics(smaller).horizontalAdvance("123.45"), width - 1);
    EXPECT_EQ(QFontInfo(smaller).family(), QFontInfo(font).family());
}

TEST(EventCell, TextThatFitsNowhereIsNotMadeUnreadable)
{
    const QFont font;
    const QFont smaller = EventCellDelegate::fitting(font, "123456.78", 3);
    EXPECT_EQ(QFontInfo(smaller).pixelSize(), (QFontInfo(font).pixelSize() + 1) / 2);
}

TEST_F(EventsView, LongLengthIsShownWhole)
{
    EventList events {eventAt(Event::Fiber, 0)};
    events[0].length = 123456.78;
    refl.setEventList(events);
    model.setReflectogram(refl);
    view.resize(700, 200);
    QCoreApplication::processEvents();
    const QRect cell = view.visualRect(model.index(0, 2));
    const QImage picture = view.viewport()->grab(cell.adjusted(3, 3, -3, -3)).toImage();
    const auto isInk = [](QColor colour) { return colour.lightness() < 120; };
    const QRect whole = placeOf(picture, isInk);
    ASSERT_FALSE(whole.isEmpty());
    // The last sign is a parenthesis; an ellipsis would lie on the base line.
    const QRect last = placeOf(picture.copy(whole.right() - 4, 0, 5, picture.height()), isInk);
    EXPECT_GT(last.height(), 9);
}

TEST_F(EventsView, TabLeadsOutOfTheTable)
{
    EXPECT_FALSE(view.tabKeyNavigation());
}

TEST_F(EventsView, IconStandsInTheMiddleOfItsCell)
{
    const QRect cell = view.visualRect(model.index(0, 1));
    const QImage picture = view.viewport()->grab(cell).toImage();
    const QRect green = placeOf(picture, [](QColor colour) {
        return colour.green() > colour.red() + 40 && colour.green() > colour.blue() + 20;
    });
    ASSERT_FALSE(green.isEmpty());
    EXPECT_NEAR(green.center().x(), cell.width() / 2.0, 2.0);
    EXPECT_NEAR(green.center().y(), cell.height() / 2.0, 2.0);
    EXPECT_LE(green.width(), 24);
}

TEST_F(EventsView, IconOfTheChosenRowKeepsItsColours)
{
    const auto icon = model.data(model.index(0, 1), Qt::DecorationRole).value<QPixmap>().toImage();
    const QColor sign = icon.pixelColor(12, 12); // inside the sign
    ASSERT_EQ(sign.alpha(), 255);
    tap(0, 1);
    const QRect cell = view.visualRect(model.index(0, 1));
    const QImage picture = view.viewport()->grab(cell).toImage();
    EXPECT_EQ(picture.pixelColor(2, 2), view.palette().color(QPalette::Active, QPalette::Highlight))
        << "the row is marked behind the icon, too";
    EXPECT_FALSE(placeOf(picture, [&](QColor colour) { return colour == sign; }).isEmpty());
}

TEST_F(EventsView, TellsWhatAnIconMeans)
{
    askForHelp(2, 1);
    EXPECT_EQ(QToolTip::text(), "Non-reflective event");
    askForHelp(1, 1);
    EXPECT_EQ(QToolTip::text(), "Fibre section");
    askForHelp(1, 2);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 10000));
}

class SaturatedEnd : public EventsView
{
protected:
    SaturatedEnd()
    {
        EventList events = threeEventsAndTwoSections();
        for (Event* event : {&events.first(), &events.last()}) {
            event->reflectance = -14.7;
        }
        events.last().saturated = true;
        refl.setEventList(events);
        model.setReflectogram(refl);
    }

    /// As many columns of a cell as hold ink of its text.
    int inkIn(int row, int column)
    {
        const QRect cell = view.visualRect(model.index(row, column));
        const QImage image = view.viewport()->grab(cell.adjusted(2, 2, -2, -2)).toImage();
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            bool isInked = false;
            for (int y = 0; y < image.height(); ++y) {
                isInked = isInked || image.pixelColor(x, y).lightness() < 128;
            }
            count += isInked ? 1 : 0;
        }
        return count;
    }

    static constexpr int kEnd = 4; ///< its row
};

TEST_F(SaturatedEnd, ShowsASignBeforeAReflectionThatIsOnlyABound)
{
    const int sign_px = QFontMetrics(view.font()).horizontalAdvance(QChar(0x2265));
    EXPECT_GE(inkIn(kEnd, EventsTableModel::Reflection),
              inkIn(0, EventsTableModel::Reflection) + sign_px / 2);
    for (const int column : {EventsTableModel::Loss, EventsTableModel::Orl}) {
        EXPECT_EQ(inkIn(kEnd, column), inkIn(0, column)) << column;
    }
}

TEST_F(SaturatedEnd, TellsWhatTheSignMeans)
{
    askForHelp(kEnd, EventsTableModel::Reflection);
    EXPECT_EQ(QToolTip::text(), "The receiver was saturated: as much was reflected, or more");
    askForHelp(0, EventsTableModel::Reflection);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 10000));
}

class EventsOnPlotAndTable : public EventsView
{
protected:
    EventsOnPlotAndTable()
        : curve({0.0, 5000.0, 10000}, refl, Qt::darkBlue)
        , ticks(std::make_unique<EventMarkersView>(nullptr))
    {
        curve.attach(&plot);
        ticks->attach(&plot);
        ticks->setSelectionModel(view.selectionModel());
        ticks->setCurve(&curve);
    }

    ~EventsOnPlotAndTable() override
    {
        ticks.reset();
        curve.detach();
    }

    QList<int> heights() const
    {
        QList<int> found;
        for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotMarker)) {
            found << dynamic_cast<const QwtPlotMarker*>(item)->symbol()->size().height();
        }
        return found;
    }

    bool hasBand() const { return plot.itemList(QwtPlotItem::Rtti_PlotCurve).size() > 1; }

    Waveform::Plot plot;
    ReflCurve curve;
    std::unique_ptr<EventMarkersView> ticks;
};

TEST_F(EventsOnPlotAndTable, TapOnAnEventRaisesItsTick)
{
    tap(2, 2);
    EXPECT_EQ(heights(), QList<int>({100, 1000, 100}));
    EXPECT_FALSE(hasBand());
    tap(4, 2);
    EXPECT_EQ(heights(), QList<int>({100, 100, 1000}));
}

TEST_F(EventsOnPlotAndTable, TapOnASectionHighlightsItsFibre)
{
    tap(3, 2);
    EXPECT_EQ(heights(), QList<int>({100, 100, 100}));
    EXPECT_TRUE(hasBand());
    tap(2, 2);
    EXPECT_FALSE(hasBand());
}

TEST_F(EventsOnPlotAndTable, NewEventsHaveNoCurrentOne)
{
    tap(2, 2);
    refl.setEventList({eventAt(Event::SpanStart, 0), eventAt(Event::NonReflective, 500),
                       eventAt(Event::NonReflective, 700), eventAt(Event::SpanEnd, 3000)});
    model.setReflectogram(refl);
    ticks->placeMarkers();
    EXPECT_EQ(heights(), QList<int>({100, 100, 100, 100}));
    tap(2, 2);
    EXPECT_EQ(heights(), QList<int>({100, 100, 1000, 100})) << "the same row can be chosen again";
}

TEST_F(EventsOnPlotAndTable, BandGoesWithTheEvents)
{
    tap(1, 2);
    ASSERT_TRUE(hasBand());
    model.clear();
    EXPECT_FALSE(hasBand());
}

} // namespace
