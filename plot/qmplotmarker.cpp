#include "plot/qmplotmarker.h"

#include "plot/plot.h"

QmPlotMarker::QmPlotMarker(QWidget* parent)
    : QmMarker(parent)
{
    forgetPendingMove();
}

void QmPlotMarker::setXValue(double x_m)
{
    distance_m = x_m;
    centerOn(xMap.transform(x_m));
    forgetPendingMove();
}

void QmPlotMarker::rescale()
{
    update();
    followMoves = false;
    centerOn(xMap.transform(distance_m));
    forgetPendingMove();
    followMoves = true;
}

/// A hidden widget is told of a move when it is shown. By then this one would take the distance
/// from a pixel column that was never on the screen.
void QmPlotMarker::forgetPendingMove()
{
    setAttribute(Qt::WA_PendingMoveEvent, false);
}

void QmPlotMarker::setTransformMap(const QwtScaleMap& map)
{
    xMap = map;
    rescale();
}

void QmPlotMarker::attach(Waveform::Plot* newPlot)
{
    detach();
    plot = newPlot;
    if (!plot) {
        return;
    }
    plot->updateAxes(); // a scale that was set since the last replot is not in the map yet
    setTransformMap(plot->canvasMap(QwtPlot::xBottom));
    connect(plot,
            SIGNAL(transformMapsChanged( const QwtScaleMap&, const QwtScaleMap& )),
                   SLOT(setTransformMap( const QwtScaleMap& )));
}

void QmPlotMarker::detach()
{
    if (plot) {
        QObject::disconnect(this, nullptr, plot,
                            SIGNAL(transformMapsChanged( const QwtScaleMap&, const QwtScaleMap& )));
    }
}

void QmPlotMarker::moveEvent(QMoveEvent* event)
{
    if (followMoves) {
        distance_m = xMap.invTransform(x() + markerBorder);
        emit movedTo(this, distance_m);
    }
    QmMarker::moveEvent(event);
}
