#pragma once

#include "plot/linewidget.h"

#include <qwt_scale_map.h>

#include <QPointer>

namespace Waveform {
class Plot;
}

/// A line over the canvas of a plot that is given in metres and decibels and stays there when the
/// view changes.
class PlotLineWidget : public LineWidget
{
    Q_OBJECT

public:
    explicit PlotLineWidget(QWidget* parent);

    /// Draws another line: x in metres, y in decibels. A null line is not drawn.
    void setLine(const QLineF& line) override;

    /// Draws the line where it lies in the view of now.
    void rescale();

public slots:
    /// Follows the views of a plot, and of no other.
    void attach(Waveform::Plot* newPlot);
    void detach();
    void setTransformMap(const QwtScaleMap& newXMap, const QwtScaleMap& newYMap);

private:
    QwtScaleMap xMap;
    QwtScaleMap yMap;
    QLineF scaleLine; ///< metres, decibels
    QPointer<Waveform::Plot> plot;
};
