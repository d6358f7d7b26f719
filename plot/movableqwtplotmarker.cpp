#include "plot/movableqwtplotmarker.h"

#include "plot/linegeometry.h"

#include <qwt_plot.h>
#include <qwt_scale_map.h>

#include <QMouseEvent>
#include <QWidget>

MovableQwtPlotMarker::MovableQwtPlotMarker(QObject* parent)
    : QObject(parent)
{
}

void MovableQwtPlotMarker::attach(QwtPlot* plot)
{
    detach();
    QwtPlotItem::attach(plot);
    if (plot != nullptr) {
        plot->canvas()->installEventFilter(this);
    }
}

void MovableQwtPlotMarker::detach()
{
    dragging = false;
    if (plot() != nullptr) {
        plot()->canvas()->removeEventFilter(this);
    }
    QwtPlotItem::detach();
}

bool MovableQwtPlotMarker::processClickPos(int x)
{
    if (plot() == nullptr
        || !linegeometry::grabs(plot()->canvasMap(QwtPlot::xBottom).transform(xValue()), x)) {
        return false;
    }
    dragging = true;
    return true;
}

bool MovableQwtPlotMarker::moveMarkerIfNeccessary(double x)
{
    if (dragging) {
        setXValue(plot()->canvasMap(QwtPlot::xBottom).invTransform(x));
        plot()->replot();
    }
    return dragging;
}

bool MovableQwtPlotMarker::release(int x)
{
    const bool wasDragging = moveMarkerIfNeccessary(x);
    dragging = false;
    return wasDragging;
}

bool MovableQwtPlotMarker::eventFilter(QObject* watched, QEvent* event)
{
    if (plot() == nullptr || watched != plot()->canvas()) {
        return QObject::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return processClickPos(static_cast<QMouseEvent*>(event)->x());
    case QEvent::MouseMove:
        return moveMarkerIfNeccessary(static_cast<QMouseEvent*>(event)->x());
    case QEvent::MouseButtonRelease:
        return release(static_cast<QMouseEvent*>(event)->x());
    default:
        return false;
    }
}
