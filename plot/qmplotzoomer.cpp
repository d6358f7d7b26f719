#include "plot/qmplotzoomer.h"

#include "plot/zoomgeometry.h"

#include <qwt_scale_div.h>

#include <QKeyEvent>

namespace {

void setIfPositive(double& value, double wanted)
{
    if (wanted > 0.0) {
        value = wanted;
    }
}

zoom::Bounds shownBy(QwtPlot* plot, QwtPlot::Axis axis)
{
    plot->updateAxes(); // a scale that was set since the last replot is not in the division yet
    const QwtScaleDiv& division = plot->axisScaleDiv(axis);
    return {division.lowerBound(), division.upperBound()};
}

/// The view of a plot after one of its axes, bottom or left, was scaled by a factor about its
/// centre.
QRectF withAxisScaled(QwtPlot* plot, QwtPlot::Axis axis, double factor)
{
    zoom::Bounds x = shownBy(plot, QwtPlot::xBottom);
    zoom::Bounds y = shownBy(plot, QwtPlot::yLeft);
    zoom::Bounds& changed = axis == QwtPlot::xBottom ? x : y;
    changed = zoom::scaled(changed, factor);
    return zoom::rectOf(x, y);
}

bool isZoomable(QwtPlot::Axis axis)
{
    return axis == QwtPlot::xBottom || axis == QwtPlot::yLeft;
}

} // namespace

QmPlotZoomer::QmPlotZoomer(QwtPlot* plot)
    : QObject(plot)
    , plot(plot)
{
}

QRectF QmPlotZoomer::currentRect()
{
    rect = zoom::rectOf(shownBy(plot, QwtPlot::xBottom), shownBy(plot, QwtPlot::yLeft));
    return rect;
}

bool QmPlotZoomer::zoomed() const
{
    return zoom::isZoomed(maxRect, rect);
}

void QmPlotZoomer::emitControlSignals()
{
    const bool isZoomed = zoomed();
    emit disableZoomOut(!isZoomed);
    if (!isZoomed) {
        emit maxScaledOut();
    }
    emit disableZoomIn(zoom::isNarrowest(rect, minRange));
}

void QmPlotZoomer::setMinRange(double range)
{
    setIfPositive(minRange, range);
}

void QmPlotZoomer::setMaxRange(double range)
{
    setIfPositive(maxRange, range);
}

void QmPlotZoomer::setMinYRange(double range)
{
    setIfPositive(minYRange, range);
}

void QmPlotZoomer::setMaxYRange(double range)
{
    setIfPositive(maxYRange, range);
}

void QmPlotZoomer::setMaxRect(QRectF fullView)
{
    if (fullView == maxRect) {
        return;
    }
    maxRect = fullView;
    maxRange = zoom::xBounds(fullView).span();
    maxYRange = zoom::yBounds(fullView).span();
}

void QmPlotZoomer::setZoomInFactor(double factor)
{
    setIfPositive(zoomInFactor, factor);
}

void QmPlotZoomer::setZoomOutFactor(double factor)
{
    setIfPositive(zoomOutFactor, factor);
}

void QmPlotZoomer::zoomIn(double factor)
{
    if (const auto step = zoom::inFactor(shownBy(plot, QwtPlot::xBottom), factor, minRange)) {
        zoomCentered(1.0 / *step);
    }
}

void QmPlotZoomer::zoomIn()
{
    zoomIn(zoomInFactor);
}

void QmPlotZoomer::zoomIn(QwtPlot::Axis axis)
{
    if (!isZoomable(axis)) {
        return;
    }
    const double smallest = axis == QwtPlot::xBottom ? minRange : minYRange;
    if (const auto step = zoom::inFactor(shownBy(plot, axis), zoomInFactor, smallest)) {
        zoomTo(withAxisScaled(plot, axis, 1.0 / *step));
    }
}

void QmPlotZoomer::zoomOut(double factor)
{
    if (const auto step = zoom::outFactor(shownBy(plot, QwtPlot::xBottom), factor, maxRange)) {
        zoomCentered(*step);
    }
}

void QmPlotZoomer::zoomOut()
{
    zoomOut(zoomOutFactor);
}

void QmPlotZoomer::zoomOut(QwtPlot::Axis axis)
{
    if (!isZoomable(axis)) {
        return;
    }
    const double greatest = axis == QwtPlot::xBottom ? maxRange : maxYRange;
    if (const auto step = zoom::outFactor(shownBy(plot, axis), zoomOutFactor, greatest)) {
        zoomTo(withAxisScaled(plot, axis, *step));
    }
}

void QmPlotZoomer::zoomCentered(double factor)
{
    if (!(factor > 0.0)) {
        return;
    }
    const zoom::Bounds x = zoom::scaledWithin(shownBy(plot, QwtPlot::xBottom), factor, minRange,
                                              zoom::xBounds(maxRect).span());
    const zoom::Bounds y = zoom::scaledWithin(shownBy(plot, QwtPlot::yLeft), factor, minYRange,
                                              zoom::yBounds(maxRect).span());
    show(zoom::rectOf(x, y));
}

void QmPlotZoomer::zoomOff()
{
    zoomTo(maxRect);
}

void QmPlotZoomer::zoomTo(double low, double up, QwtPlot::Axis axis)
{
    if (!isZoomable(axis)) {
        return;
    }
    plot->setAxisScale(axis, low, up);
    if (axis == QwtPlot::xBottom) {
        plot->setAxisAutoScale(QwtPlot::yLeft, true);
        rect = QRectF(low, rect.y(), up - low, rect.height());
    } else {
        plot->setAxisAutoScale(QwtPlot::xBottom, true);
        rect = QRectF(rect.x(), up, rect.width(), low - up);
    }
    announce();
}

void QmPlotZoomer::zoomTo(QRectF scaleRect)
{
    show(scaleRect);
}

void QmPlotZoomer::show(const QRectF& view)
{
    const zoom::Bounds x = zoom::xBounds(view);
    const zoom::Bounds y = zoom::yBounds(view);
    plot->setAxisScale(QwtPlot::xBottom, x.low, x.up);
    plot->setAxisScale(QwtPlot::yLeft, y.low, y.up);
    rect = view;
    announce();
}

void QmPlotZoomer::announce()
{
    plot->updateAxes(); // whoever hears of the view may read it from the plot
    emitControlSignals();
    emit newBounds(rect);
}

bool QmPlotZoomer::eventFilter(QObject* object, QEvent* event)
{
    if (object == nullptr) {
        return QObject::eventFilter(object, event);
    }
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Left:
        zoomOut(QwtPlot::xBottom);
        return true;
    case Qt::Key_Right:
        zoomIn(QwtPlot::xBottom);
        return true;
    case Qt::Key_Up:
        zoomIn(QwtPlot::yLeft);
        return true;
    case Qt::Key_Down:
        zoomOut(QwtPlot::yLeft);
        return true;
    default:
        return false;
    }
}
