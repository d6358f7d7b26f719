// Where things stand on the page and over the canvas.

#include "events/eventstablemodel.h"
#include "events/eventstableview.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/wrappanel.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "refls/reflstableview.h"
#include "tests/support/reach.h"
#include "tests/window/screen.h"
#include "window/measview.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

using namespace testing_support; // the fixture and the builders

class LaidOut : public Screen
{
protected:
    /// The cells that a part of a grid takes.
    template <typename Part>
    static QRect cells(QGridLayout& grid, Part* part)
    {
        const int index = grid.indexOf(part);
        if (index < 0) {
            ADD_FAILURE() << "not in this grid";
            return {};
        }
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid.getItemPosition(index, &row, &column, &rows, &columns);
        return {column, row, columns, rows};
    }

    /// Which row of the page a part takes, over its whole width; -1 where it does not.
    int pageRow(QWidget* part) const
    {
        auto& page = *qobject_cast<QGridLayout*>(window->layout());
        const QRect taken = cells(page, part);
        return taken.left() == 0 && taken.width() == page.columnCount() && taken.height() == 1
            ? taken.top()
            : -1;
    }

    template <typename T>
    T* part(const QString& name = QString()) const
    {
        return window->findChild<T*>(name);
    }

    QGridLayout& canvasLayout() const { return *part<QGridLayout>("canvasLayout"); }

    int placeOnCanvas(QObject* child) const { return plot()->canvas()->children().indexOf(child); }

    const QStringList zoomButtons = {"zoomOffButton", "zoomInButton", "zoomOutButton"};
};

TEST_F(LaidOut, PageHasThePlotThenTracesEventsPanelsAndTheirButtons)
{
    auto* bottom = part<ControlBottomPanel>("bottomPanel");
    EXPECT_EQ(pageRow(plot()), 1);
    EXPECT_EQ(pageRow(part<Waveform::ReflsTableView>()), 2);
    EXPECT_EQ(pageRow(part<Waveform::EventsTableView>()), 3);
    EXPECT_EQ(pageRow(bottom), 4);
    EXPECT_EQ(pageRow(part<MeasView>()), 4);
    EXPECT_EQ(pageRow(part<WrapPanel>()), 5);
    EXPECT_EQ(qobject_cast<QGridLayout*>(window->layout())->rowStretch(1), 1);
}

TEST_F(LaidOut, ActionButtonStandsAtTheLowerEdgeOfItsPanel)
{
    const auto* bottom = part<ControlBottomPanel>("bottomPanel");
    const QRect place(action()->mapTo(bottom, QPoint()), action()->size());
    EXPECT_EQ(place.bottom(), bottom->contentsRect().bottom() - 6);
    EXPECT_EQ(place.right(), bottom->contentsRect().right() - 6);
}

TEST_F(LaidOut, CanvasHoldsLegendOverviewAndZoomButtons)
{
    window->resize(1280, 800);
    QCoreApplication::processEvents();
    QGridLayout& canvas = canvasLayout();
    EXPECT_EQ(canvas.spacing(), 0);
    auto* legend = part<QVBoxLayout>("legendLayout");
    auto* overview = part<QVBoxLayout>("verticalLayout");
    auto* zoom = part<QGridLayout>("zoomLayout");
    EXPECT_EQ(cells(canvas, legend), QRect(1, 0, 1, 2));
    EXPECT_EQ(cells(canvas, overview), QRect(2, 0, 1, 3));
    EXPECT_EQ(cells(canvas, zoom), QRect(4, 0, 1, 2));
    EXPECT_EQ(overview->spacing(), 0);
    EXPECT_EQ(overview->contentsMargins().bottom(), 0);
    EXPECT_GE(overview->indexOf(part<QmMiniPlot>()), 0);
    EXPECT_EQ(part<QmMiniPlot>()->minimumSize(), QSize(200, 100));
    const QPoint filled[] = {{0, 0}, {1, 2}, {4, 2}};
    for (const QPoint& cell : filled) {
        QLayoutItem* item = canvas.itemAtPosition(cell.y(), cell.x());
        ASSERT_NE(item, nullptr);
        EXPECT_NE(item->spacerItem(), nullptr) << cell.x() << " " << cell.y();
        EXPECT_NE(item->expandingDirections(), Qt::Orientations());
    }
    QList<QSize> fixed;
    for (int i = 0; i < legend->count(); ++i) {
        if (legend->itemAt(i)->spacerItem() != nullptr) {
            fixed << legend->itemAt(i)->sizeHint();
            EXPECT_EQ(legend->itemAt(i)->expandingDirections(), Qt::Orientations());
        }
    }
    EXPECT_EQ(fixed, QList<QSize>({{300, 20}, {20, 40}}));
}

TEST_F(LaidOut, EachZoomButtonHasItsRowAndASpacerThatKeepsItsHeight)
{
    window->resize(1280, 800);
    QCoreApplication::processEvents();
    auto& zoom = *part<QGridLayout>("zoomLayout");
    const QStringList texts = {"1:1", "+", QString(QChar(0x2013))};
    ASSERT_EQ(zoom.rowCount(), 3);
    for (int row = 0; row < 3; ++row) {
        auto* button = qobject_cast<QPushButton*>(zoom.itemAtPosition(row, 0)->widget());
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button->objectName(), zoomButtons[row]);
        EXPECT_EQ(button->text(), texts[row]);
        EXPECT_EQ(button->minimumHeight(), 52);
        QLayoutItem* spacer = zoom.itemAtPosition(row, 1);
        ASSERT_NE(spacer, nullptr);
        ASSERT_NE(spacer->spacerItem(), nullptr);
        EXPECT_EQ(spacer->sizeHint(), QSize(1, 52));
        EXPECT_EQ(spacer->expandingDirections(), Qt::Orientations());
    }
}

TEST_F(LaidOut, NothingIsOfferedBeforeThereIsATrace)
{
    for (const QString& name : zoomButtons) {
        EXPECT_FALSE(part<QPushButton>(name)->isVisible()) << qPrintable(name);
    }
    EXPECT_FALSE(part<QmMiniPlot>()->isVisible());
}

TEST_F(LaidOut, ZoomButtonsLieAboveWhateverIsOnTheCanvas)
{
    for (const QString& name : zoomButtons) {
        const int place = placeOnCanvas(part<QPushButton>(name));
        EXPECT_GT(place, placeOnCanvas(part<QmMiniPlot>()));
        for (auto* marker : window->findChildren<QmPlotMarker*>()) {
            EXPECT_GT(place, placeOnCanvas(marker)) << qPrintable(name);
        }
    }
}

TEST_F(LaidOut, PanelsThatWereShownComeBackWithTheNextWindow)
{
    QTest::mouseClick(toggle(part<Waveform::EventsTableView>()), Qt::LeftButton);
    QTest::mouseClick(toggle(part<MeasView>()), Qt::LeftButton);
    expectWarning("No such slot Waveform::Window::rescalePlot(");
    const Window again(config);
    EXPECT_FALSE(again.findChild<Waveform::EventsTableView*>()->isHidden());
    EXPECT_FALSE(again.findChild<MeasView*>()->isHidden());
    EXPECT_TRUE(again.findChild<Waveform::ReflsTableView*>()->isHidden());
    EXPECT_TRUE(again.findChild<QWidget*>("bottomPanel")->isHidden());
}

TEST_F(LaidOut, TableOfEventsAndItsTicksShareOneSelection)
{
    const auto* model = part<Waveform::EventsTableModel>();
    EXPECT_EQ(part<Waveform::EventsTableView>()->selectionModel(), model->selectionModel());
}

class FullTable : public LaidOut
{
protected:
    FullTable()
    {
        for (const char* name : {"a.sor", "b.sor", "c.sor", "d.sor"}) {
            load(name);
        }
        window->resize(800, 428);
        table()->show();
        part<Waveform::EventsTableView>()->show();
        settle();
    }

    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
        }
    }

    Waveform::ReflsTableView* table() const { return part<Waveform::ReflsTableView>(); }

    bool isInSight(int row) const
    {
        const QRect place = table()->visualRect(table()->model()->index(row, 0));
        return table()->viewport()->rect().contains(place);
    }
};

TEST_F(FullTable, ShowsTheRowOfTheMainTraceWhole)
{
    EXPECT_TRUE(isInSight(3)) << "when the table is shown";
    for (const int row : {0, 2, 1, 3}) {
        refls()->setMainRefl(row);
        settle();
        EXPECT_TRUE(isInSight(row)) << row;
    }
    refls()->deleteRefl(3);
    settle();
    EXPECT_TRUE(isInSight(2)) << "after the main trace was deleted";
}

TEST_F(FullTable, ShowsTheMainTraceAgainWhenItHasMoreRoom)
{
    part<Waveform::EventsTableView>()->hide();
    for (const bool shown : {false, true, false}) {
        window->findChild<QWidget*>("bottomPanel")->setVisible(shown);
        settle();
        ASSERT_FALSE(isInSight(0));
        EXPECT_TRUE(isInSight(3)) << shown;
    }
}

TEST_F(FullTable, LeavesAUserAloneWhoHasScrolledOn)
{
    ASSERT_FALSE(isInSight(0));
    table()->scrollToTop();
    ASSERT_TRUE(isInSight(0));
    refls()->update(); // as when a figure has been computed
    settle();
    EXPECT_TRUE(isInSight(0));
}

TEST_F(FullTable, ShowsTheMainTraceAgainAfterANewSize)
{
    window->resize(800, 800);
    settle();
    table()->scrollToTop();
    window->resize(800, 428);
    settle();
    EXPECT_TRUE(isInSight(3));
}

/// The height below the header, in rows.
double rowsInSight(const QTableView& table, int row)
{
    return static_cast<double>(table.viewport()->height()) / table.rowHeight(row);
}

TEST_F(FullTable, RowsInSightAreWhole)
{
    auto* events = part<Waveform::EventsTableView>();
    for (const QSize& size : {QSize(800, 428), QSize(1280, 748)}) {
        window->resize(size);
        for (const bool alone : {false, true}) {
            events->setVisible(!alone);
            settle();
            EXPECT_EQ(rowsInSight(*table(), 0), std::floor(rowsInSight(*table(), 0)));
            if (alone) {
                EXPECT_GE(rowsInSight(*table(), 0), 2.0) << size.height();
            }
        }
    }
}

TEST_F(FullTable, RowsOfEventsInSightAreWholeWhateverTheFont)
{
    auto* events = part<Waveform::EventsTableView>();
    for (const int letters_px : {11, 13, 16, 20}) {
        QFont font = events->font();
        font.setPixelSize(letters_px);
        events->horizontalHeader()->setFont(font);
        window->resize(900, 600); // which counts the rows anew
        settle();
        for (const QSize& size : {QSize(800, 428), QSize(1280, 748), QSize(1920, 1028)}) {
            for (const bool alone : {false, true}) {
                table()->setVisible(!alone);
                window->resize(size);
                settle();
                const double rows = rowsInSight(*events, 0);
                EXPECT_EQ(rows, std::floor(rows)) << letters_px << " px in " << size.height();
                EXPECT_GE(rows, alone ? 2.0 : 1.0) << letters_px << " px in " << size.height();
            }
        }
    }
}

TEST_F(FullTable, IsNoHigherThanItsRows)
{
    part<Waveform::EventsTableView>()->hide();
    for (int left = 4; left > 0; --left) {
        settle();
        EXPECT_LE(rowsInSight(*table(), 0), left);
        EXPECT_GE(rowsInSight(*table(), 0), std::min(left, 2));
        refls()->deleteRefl(0);
    }
    settle();
    EXPECT_LE(table()->viewport()->height(), table()->verticalHeader()->defaultSectionSize());
}

/// What messages call them, one a line.
std::string names(const QList<QWidget*>& widgets)
{
    QStringList all;
    for (const QWidget* widget : widgets) {
        all << nameOf(*widget);
    }
    return all.join('\n').toStdString();
}

TEST_F(FullTable, TabGoesAsOneReads)
{
    table()->hide();
    QTest::mouseClick(part<QPushButton>("zoomInButton"), Qt::LeftButton);
    QList<QWidget*> expected;
    for (const QString& name : zoomButtons) {
        expected << part<QPushButton>(name);
    }
    expected << part<Waveform::EventsTableView>();
    QList<QWidget*> boxes;
    for (auto* box : window->findChildren<HistoryCombo*>()) {
        boxes << box;
    }
    const auto byPlace = [this](const QWidget* a, const QWidget* b) {
        return a->mapTo(window.get(), QPoint()).x() < b->mapTo(window.get(), QPoint()).x();
    };
    std::sort(boxes.begin(), boxes.end(), byPlace);
    expected << boxes << action();
    for (auto* button : part<WrapPanel>()->findChildren<QPushButton*>()) {
        expected << button;
    }
    expected.first()->setFocus();
    EXPECT_EQ(names(tabChain(*window)), names(expected.mid(1) << expected.first()));
}

} // namespace
