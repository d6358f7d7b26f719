#pragma once

#include <qwt_plot_marker.h>

#include <QObject>

/// A plot marker that can be taken hold of within ten pixels and dragged along the distance axis.
///
/// A plot that dies deletes the markers that are attached to it, as it does with its other items.
class MovableQwtPlotMarker : public QObject, public QwtPlotMarker
{
    Q_OBJECT

public:
    explicit MovableQwtPlotMarker(QObject* parent);

    /// Puts the marker on a plot and watches its canvas; off the one it was on before.
    void attach(QwtPlot* plot);
    void detach();

    /// Grabs the marker if canvas column x is near enough; tells whether it did.
    bool processClickPos(int x);

    /// Moves a grabbed marker to canvas column x; tells whether it is grabbed.
    bool moveMarkerIfNeccessary(double x);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool release(int x);

    bool dragging = false;
};
