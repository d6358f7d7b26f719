#pragma once

#include "platform/otdr/event.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"

#include <QList>
#include <QObject>
#include <QPointer>

class QItemSelectionModel;
class QModelIndex;
class QwtPlotCurve;
class QwtPlotMarker;
class QwtSymbol;

/// The ticks of a trace's events on its curve.
///
/// Ticks sit on the line as drawn and are made anew whenever the curve is sampled anew. The current
/// event's tick crosses the canvas; where the current row is a fibre section, the stretch between
/// its neighbours is highlighted.
class EventMarkersView : public QObject
{
    Q_OBJECT

public:
    explicit EventMarkersView(QObject* parent);
    ~EventMarkersView() override;

    /// The plot that the ticks stand on. Not owned; may die first.
    void attach(Waveform::Plot* plot);

    /// The curve whose trace's events are shown; null for none. Not owned; must be taken away
    /// before it is deleted.
    void setCurve(ReflCurve* curve);

    /// The selection whose current row is the current event. Not owned; may die first.
    void setSelectionModel(QItemSelectionModel* model);

    /// A new tick; whoever it is handed to owns it.
    [[nodiscard]] QwtSymbol* symbol(bool active) const;

public slots:
    void changeCurrentEvent(const QModelIndex& index);

    /// Makes the row of the event list the current one; a row that is none leaves no event current.
    void setActiveMarker(int row);

    /// Highlights the fibre between the events of two rows; none where one has no tick.
    void setActiveFiber(int from, int to);

    /// Makes the ticks of the curve's trace anew; the current row stays.
    void placeMarkers();
    void placeMarkers(bool replot);

    /// Ticks at these events, which the trace is about to get, until those of the trace are placed
    /// anew.
    void setMarkers(EventList events);
    void setVisible(bool visible); ///< of the ticks; the band stays

    /// No ticks, and no event is current.
    void clear();
    void clearMarkers();

private slots:
    /// The plot took along what was attached to it.
    void onPlotDestroyed();

private:
    void place(const EventList& events);
    [[nodiscard]] QwtPlotMarker* newMarker(double distance_m) const;

    QPointer<Waveform::Plot> plot;
    QList<QwtPlotMarker*> markers; ///< one per event; null for a fibre section
    QwtPlotMarker* activeMarker = nullptr;
    int activeIndex = -1;
    bool visible = false;
    QPointer<ReflCurve> curve;
    QwtPlotCurve* fiberCurve;
    bool fiberShown = false; ///< then the plot deletes the band with its other items
    QPointer<QItemSelectionModel> selectionModel;
};
