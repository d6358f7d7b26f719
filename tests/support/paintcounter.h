#pragma once

#include <qwt_plot_item.h>

namespace testing_support {

/// An item of a plot that draws nothing and counts how often it was to.
class PaintCounter : public QwtPlotItem
{
public:
    void draw(QPainter* /*painter*/, const QwtScaleMap& /*xMap*/, const QwtScaleMap& /*yMap*/,
              const QRectF& /*canvasRect*/) const override
    {
        ++count;
    }

    mutable int count = 0;
};

} // namespace testing_support
