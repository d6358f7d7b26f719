#pragma once

#include <qwt_plot.h>
#include <qwt_scale_div.h>

#include <QRectF>

namespace testing_support {

/// What the axes of a chart show, m and dB, by their scales as they are now.
inline QRectF shownPart(const QwtPlot& plot)
{
    const QwtScaleDiv& x = plot.axisScaleDiv(QwtPlot::xBottom);
    const QwtScaleDiv& y = plot.axisScaleDiv(QwtPlot::yLeft);
    return {x.lowerBound(), y.lowerBound(), x.upperBound() - x.lowerBound(),
            y.upperBound() - y.lowerBound()};
}

} // namespace testing_support
