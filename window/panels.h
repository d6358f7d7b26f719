#pragma once

#include "platform/otdr/reflectogram.h"

#include <QObject>
#include <QWidget>

class ControlBottomPanel;
class MeasView;
class QGridLayout;
class WrapPanel;
class ZuConfigModel;

namespace Waveform {

class EventsTableModel;
class EventsTableView;
class ReflsTableModel;
class ReflsTableView;

/// What the page shows below the plot when the user asks for it: the events table, the table of
/// traces and the bar of the two-marker measurement, with the row of buttons that ask.
///
/// Its parent, the window, is the page.
class Panels : public QObject
{
    Q_OBJECT

public:
    explicit Panels(QWidget* window);

    // In this order, each once.
    /// Makes the tables and the bar and puts them into the grid of the page, above and into the
    /// place of its bottom panel. The window follows the set of traces by its slots deleteRefl,
    /// setMainRefl and deleteAllRefls.
    void init(ZuConfigModel* config, QGridLayout* page, ControlBottomPanel* bottomPanel);
    void setupWrapPanel(QGridLayout* page, ControlBottomPanel* bottomPanel);

    /// Lets Tab go by everything as one reads: what lies over the chart, the events, the settings
    /// or the bar in their place, the buttons of the panels. Each list from left to right.
    void setTabOrder(const QWidgetList& overChart, const QWidgetList& settings) const;

    /// Gives the tables that are shown their share of a page of this height, pixels; the plot has
    /// the rest.
    void shareHeight(int pageHeight);

    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Keeps the bottom panel, which holds the action button, at most one touch away.
    void setHeld(ControlBottomPanel* bottomPanel, bool held);

    [[nodiscard]] EventsTableModel* eventsModel() const { return events; }

    [[nodiscard]] ReflsTableModel* reflsModel() const { return refls; }

    [[nodiscard]] ReflsTableView* reflsView() const { return reflsTable; }

    [[nodiscard]] MeasView* measView() const { return markersBar; }

private slots:
    /// For other rows in the table of traces.
    void shareHeightAgain();

    /// Scrolls to the row of a new main trace; a user who has scrolled on is left alone.
    void followMainTrace();
    void scrollToMainTrace();

private:
    void initEventsTable();
    void initReflsTable();
    void initMeasView(ZuConfigModel* config);
    void layOut(QGridLayout* page, ControlBottomPanel* bottomPanel);

    QWidget* window;
    EventsTableModel* events = nullptr;
    EventsTableView* eventsTable = nullptr;
    ReflsTableModel* refls = nullptr;
    ReflsTableView* reflsTable = nullptr;
    MeasView* markersBar = nullptr;
    WrapPanel* wrapPanel = nullptr;
    Reflectogram shownMain; ///< the main trace that the table of traces was scrolled to
    int pageHeight = 0;
};

} // namespace Waveform
