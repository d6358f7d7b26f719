#include "plot/plot.h"

#include "plot/levelscaledraw.h"
#include "plot/otdrdistancescaledraw.h"
#include "plot/stackorder.h"

#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

#include <QFrame>

#include <algorithm>
#include <cmath>

namespace Waveform {

namespace {

/// Whether a bound is at a stop. The stop is worked out anew from the bounds, so that a view that
/// was put there may miss it by rounding.
bool isAt(double bound, double stop)
{
    constexpr double kRelative = 1e-12;
    return std::abs(bound - stop) <= kRelative * std::max(std::abs(bound), std::abs(stop));
}

} // namespace

Plot::Plot(QWidget* parent)
    : QwtPlot(parent)
{
    setWindowTitle(tr("Plot"));
    setFocusPolicy(Qt::ClickFocus);
    setProperty("palette_id", "chart");
    setAutoReplot(false);
    if (auto* frame = qobject_cast<QFrame*>(canvas())) {
        frame->setFrameShadow(QFrame::Plain);
        frame->setFrameShape(QFrame::StyledPanel);
    }
    setCanvasBackground(palette().brush(QPalette::Window).color());

    setupAxis(xBottom);
    setupAxis(yLeft);
    axisWidget(xBottom)->setMinBorderDist(80, 15);
    axisScaleDraw(yLeft)->setMinimumExtent(80.0);
    const int labels = static_cast<int>(axisScaleDraw(xBottom)->extent(font()));
    axisWidget(yLeft)->setMinBorderDist(10, labels);
    plotLayout()->setAlignCanvasToScales(true);

    createGrid()->attach(this);
    connect(this, SIGNAL(scaledTo( QRectF )), SLOT(emitTransformMaps()));
    connect(this, SIGNAL(resized()), SLOT(emitTransformMaps()));
}

void Plot::setupAxis(QwtPlot::Axis axis)
{
    if (axis == xBottom) {
        setAxisScaleDraw(axis, new OtdrDistanceScaleDraw(axisWidget(axis)));
    } else {
        setAxisScaleDraw(axis, new LevelScaleDraw); // the axis owns it
    }
    QwtScaleWidget* widget = axisWidget(axis);
    widget->setSpacing(0);
    widget->setFont(QFont("Liberation Sans", 16, QFont::Bold, false));
    axisScaleDraw(axis)->setTickLength(QwtScaleDiv::MinorTick, 4.0);
    axisScaleDraw(axis)->setTickLength(QwtScaleDiv::MajorTick, 8.0);
    enableAxis(axis, false);
}

QwtPlotGrid* Plot::createGrid()
{
    auto* grid = new QwtPlotGrid; // the plot owns it from attach() on
    grid->enableXMin(true);
    grid->enableYMin(true);
    grid->setZ(stackorder::kGrid);
    const QPen pen(palette().brush(QPalette::Mid), 0.0, Qt::DotLine, Qt::SquareCap, Qt::BevelJoin);
    grid->setMajorPen(pen);
    grid->setMinorPen(pen);
    return grid;
}

void Plot::setMaxX(double maxX_m)
{
    maxX = maxX_m;
}

wf_clip_t Plot::clip()
{
    updateAxes(); // a scale that was set since the last replot is not in the division yet
    const QwtScaleDiv& division = axisScaleDiv(xBottom);
    const double span = std::abs(division.upperBound() - division.lowerBound());
    return {division.lowerBound() - span, division.upperBound() + span,
            3 * canvas()->geometry().width()};
}

bool Plot::newBounds(int axis, int delta, double& min, double& max)
{
    updateAxes();
    const QwtScaleDiv& division = axisScaleDiv(axis);
    min = division.lowerBound();
    max = division.upperBound();
    if (delta == 0) {
        return false;
    }
    const double span = max - min;
    const double half = span * 0.5;
    const double lowest = -half;
    const double highest = (axis == xBottom ? maxX : kMaxY) + half;
    if ((delta < 0 && isAt(min, lowest)) || (delta > 0 && isAt(max, highest))) {
        return false;
    }

    const QRect area = canvas()->geometry();
    const double shift = delta * span / std::max(1, axis == xBottom ? area.width() : area.height());
    min += shift;
    max += shift;
    if (min < lowest) {
        min = lowest;
        max = lowest + span;
    }
    if (max > highest) {
        max = highest;
        min = highest - span;
    }
    return true;
}

void Plot::shiftScale(QPoint delta)
{
    double xMin = 0.0;
    double xMax = 0.0;
    double yMin = 0.0;
    double yMax = 0.0;
    const bool xMoved = newBounds(xBottom, delta.x(), xMin, xMax);
    // Screen rows grow downwards, levels upwards.
    const bool yMoved = newBounds(yLeft, -delta.y(), yMin, yMax);
    if (!xMoved && !yMoved) {
        return;
    }
    setAxisScale(xBottom, xMin, xMax);
    setAxisScale(yLeft, yMin, yMax);
    replot();
    emit scaledTo(QRectF(xMin, yMin, xMax - xMin, yMax - yMin));
}

void Plot::emitTransformMaps()
{
    emit transformMapsChanged(canvasMap(xBottom), canvasMap(yLeft));
}

void Plot::updateLayout()
{
    QwtPlot::updateLayout();
    // Qwt masks out of the distance axis what the level axis overlaps, which would cut the label of
    // 0 m in half.
    axisWidget(xBottom)->clearMask();
}

void Plot::resizeEvent(QResizeEvent* event)
{
    QwtPlot::resizeEvent(event);
    emit resized();
}

} // namespace Waveform
