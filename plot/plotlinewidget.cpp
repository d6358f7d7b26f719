#include "plot/plotlinewidget.h"

#include "plot/linegeometry.h"
#include "plot/plot.h"

PlotLineWidget::PlotLineWidget(QWidget* parent)
    : LineWidget(parent)
{
}

void PlotLineWidget::setLine(const QLineF& line)
{
    scaleLine = line;
    rescale();
}

void PlotLineWidget::rescale()
{
    LineWidget::setLine(linegeometry::mapped(scaleLine, xMap, yMap));
}

void PlotLineWidget::attach(Waveform::Plot* newPlot)
{
    detach();
    plot = newPlot;
    if (!plot) {
        return;
    }
    plot->updateAxes(); // a scale that was set since the last replot is not in the maps yet
    setTransformMap(plot->canvasMap(QwtPlot::xBottom), plot->canvasMap(QwtPlot::yLeft));
    connect(plot,
            SIGNAL(transformMapsChanged( const QwtScaleMap&, const QwtScaleMap& )),
                   SLOT(setTransformMap( const QwtScaleMap&, const QwtScaleMap& )));
}

void PlotLineWidget::detach()
{
    if (plot) {
        QObject::disconnect(plot,
                            SIGNAL(transformMapsChanged( const QwtScaleMap&, const QwtScaleMap& )),
                                   this,
                                   SLOT(setTransformMap( const QwtScaleMap&, const QwtScaleMap& )));
    }
}

void PlotLineWidget::setTransformMap(const QwtScaleMap& newXMap, const QwtScaleMap& newYMap)
{
    xMap = newXMap;
    yMap = newYMap;
    setLine(scaleLine);
    update();
}
