#include "window/panels.h"

#include "events/eventstablemodel.h"
#include "events/eventstableview.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/wrappanel.h"
#include "platform/launcher/zuconfigmodel.h"
#include "refls/reflstablemodel.h"
#include "refls/reflstableview.h"
#include "window/measview.h"
#include "window/pagegeometry.h"

#include <QEvent>
#include <QGridLayout>
#include <QHeaderView>
#include <QPushButton>

#include <algorithm>
#include <iterator>

namespace Waveform {

namespace {

constexpr int kPlotRow = 1;
constexpr int kReflsRow = 2;
constexpr int kEventsRow = 3;
constexpr int kBottomRow = 4;
constexpr int kWrapRow = 5;

/// Header and a row, both whole.
int leastHeight(const QTableView& table)
{
    return table.horizontalHeader()->sizeHint().height()
        + table.verticalHeader()->defaultSectionSize() + 2 * table.frameWidth();
}

} // namespace

Panels::Panels(QWidget* window)
    : QObject(window)
    , window(window)
{
}

void Panels::init(ZuConfigModel* config, QGridLayout* page, ControlBottomPanel* bottomPanel)
{
    initEventsTable();
    initReflsTable();
    initMeasView(config);
    layOut(page, bottomPanel);
}

void Panels::initEventsTable()
{
    events = new EventsTableModel(window);
    eventsTable = new EventsTableView(window);
    eventsTable->setObjectName("events");
    eventsTable->setModel(events);
    eventsTable->setSelectionModel(events->selectionModel());
    eventsTable->hide();
}

void Panels::initReflsTable()
{
    refls = new ReflsTableModel(window);
    reflsTable = new ReflsTableView(window);
    reflsTable->setObjectName("reflectograms");
    connect(refls, SIGNAL(reflDeleted( Reflectogram )), window, SLOT(deleteRefl( Reflectogram )));
    connect(refls,
            SIGNAL(mainReflChanged( Reflectogram )), window, SLOT(setMainRefl( Reflectogram )));
    connect(refls, SIGNAL(allReflsDeleted()), window, SLOT(deleteAllRefls()));
    reflsTable->setModel(refls);
    connect(refls, SIGNAL(modelReset()), SLOT(followMainTrace())); // after the view itself
    reflsTable->hide();
}

void Panels::initMeasView(ZuConfigModel* config)
{
    markersBar = new MeasView(window);
    markersBar->setObjectName("measurement");
    ZuSetting* mode = config->setting("MeasMode", "AdvancedParams");
    markersBar->setMode(mode->value().toInt());
    connect(mode, SIGNAL(changed( int )), markersBar, SLOT(setMode( int )));
    connect(markersBar, SIGNAL(modeChanged( int )), mode, SLOT(tryChange( int )));
    markersBar->hide();
}

void Panels::layOut(QGridLayout* page, ControlBottomPanel* bottomPanel)
{
    page->removeWidget(bottomPanel);
    page->addWidget(reflsTable, kReflsRow, 0, 1, -1);
    page->addWidget(eventsTable, kEventsRow, 0, 1, -1);
    page->addWidget(bottomPanel, kBottomRow, 0, 1, -1);
    page->addWidget(markersBar, kBottomRow, 0, 1, -1);
    page->setRowStretch(kPlotRow, 1);
    for (QTableView* table :
         {static_cast<QTableView*>(eventsTable), static_cast<QTableView*>(reflsTable)}) {
        table->setFrameShape(QFrame::NoFrame); // the page is its frame; on a small one pixels count
        table->installEventFilter(this);
    }
}

void Panels::setupWrapPanel(QGridLayout* page, ControlBottomPanel* bottomPanel)
{
    wrapPanel = new WrapPanel(true, nullptr);
    wrapPanel->attach(markersBar, true);
    wrapPanel->attach(eventsTable, true);
    wrapPanel->attach(reflsTable, true);
    wrapPanel->attach(bottomPanel, true);
    page->addWidget(wrapPanel, kWrapRow, 0, 1, -1);
}

void Panels::setTabOrder(const QWidgetList& overChart, const QWidgetList& settings) const
{
    QWidgetList all = overChart;
    all << eventsTable << settings;
    const auto barButtons = markersBar->findChildren<QPushButton*>();
    const auto panelButtons = wrapPanel->findChildren<QPushButton*>();
    std::copy(barButtons.begin(), barButtons.end(), std::back_inserter(all));
    std::copy(panelButtons.begin(), panelButtons.end(), std::back_inserter(all));
    for (int i = 1; i < all.size(); ++i) {
        QWidget::setTabOrder(all[i - 1], all[i]);
    }
}

void Panels::shareHeight(int newPageHeight)
{
    pageHeight = newPageHeight;
    const int shown = (eventsTable->isHidden() ? 0 : 1) + (reflsTable->isHidden() ? 0 : 1);
    const int most = pagegeometry::tableHeight(pageHeight, shown);
    const int leastRows = shown > 1 ? 1 : 2;
    for (QTableView* table :
         {static_cast<QTableView*>(eventsTable), static_cast<QTableView*>(reflsTable)}) {
        const int row = table->verticalHeader()->defaultSectionSize();
        const int least = leastHeight(*table);
        table->setMinimumHeight(least);
        table->setMaximumHeight(pagegeometry::wholeRows(most, least - row, row, leastRows));
    }
    // A short set leaves the rest to the plot.
    const QHeaderView& rows = *reflsTable->verticalHeader();
    const int all = leastHeight(*reflsTable) - rows.defaultSectionSize() + rows.length();
    reflsTable->setMaximumHeight(
        qBound(reflsTable->minimumHeight(), all, reflsTable->maximumHeight()));
}

bool Panels::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent) {
        shareHeight(pageHeight);
    } else if (watched == reflsTable && event->type() == QEvent::Resize) {
        // When the table has laid out its rows for the new size.
        QMetaObject::invokeMethod(this, "scrollToMainTrace", Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void Panels::shareHeightAgain()
{
    shareHeight(pageHeight);
}

void Panels::followMainTrace()
{
    shareHeightAgain();
    QMetaObject::invokeMethod(this, "shareHeightAgain", Qt::QueuedConnection); // as below
    const Reflectogram main = refls->mainRefl();
    if (!(main == shownMain)) {
        shownMain = main;
        scrollToMainTrace();
        // Again when the rows have the heights that their texts need.
        QMetaObject::invokeMethod(this, "scrollToMainTrace", Qt::QueuedConnection);
    }
}

void Panels::scrollToMainTrace()
{
    const int row = refls->refls().indexOf(refls->mainRefl());
    reflsTable->scrollTo(refls->index(row, ReflsTableModel::Name));
}

void Panels::setHeld(ControlBottomPanel* bottomPanel, bool held)
{
    wrapPanel->setHeld(bottomPanel, held);
}

} // namespace Waveform
