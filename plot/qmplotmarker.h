#pragma once

#include "plot/qmmarker.h"

#include <qwt_scale_map.h>

#include <QPointer>

namespace Waveform {
class Plot;
}

/// A marker that stands at a distance of the fibre: it stays there when the view changes and tells
/// the new distance when it is moved. Its parent is the canvas of the plot.
class QmPlotMarker : public QmMarker
{
    Q_OBJECT

public:
    explicit QmPlotMarker(QWidget* parent);

    [[nodiscard]] double xValue() const { return distance_m; }

    /// Puts the marker at a distance, m. Where it is shown it goes to the nearest pixel column, and
    /// the distance of that column is told by movedTo(); where it is hidden the distance is kept as
    /// given.
    void setXValue(double x_m);

    /// Puts the line where its distance is in the view of now; the distance stays.
    void rescale();

public slots:
    void setTransformMap(const QwtScaleMap& map);

    /// Follows the views of a plot from now on. A second call for the same plot follows it twice,
    /// without harm.
    void attach(Waveform::Plot* newPlot);

    /// Ends what the marker tells the plot; the views of the plot are followed on.
    void detach();

signals:
    /// The marker was moved, by a drag or otherwise, to a distance in m.
    void movedTo(QmPlotMarker* m, double xValue);

protected:
    void moveEvent(QMoveEvent* event) override;

private:
    void forgetPendingMove();

    QwtScaleMap xMap;
    double distance_m = 0.0;
    bool followMoves = true;
    QPointer<Waveform::Plot> plot;
};
