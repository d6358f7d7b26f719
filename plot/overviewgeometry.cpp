#include "plot/overviewgeometry.h"

#include <qwt_scale_map.h>

#include <QSize>

#include <cmath>

namespace overview {

void fitMaps(QwtScaleMap& xMap, QwtScaleMap& yMap, const QSize& size)
{
    xMap.setPaintInterval(kMargin, size.width() - kMargin);
    yMap.setPaintInterval(kMargin, size.height() - kMargin);
}

QRectF mapped(const QRectF& area, const QwtScaleMap& xMap, const QwtScaleMap& yMap)
{
    const double x1 = xMap.transform(area.x());
    const double y1 = yMap.transform(area.y());
    const double x2 = xMap.transform(area.x() + area.width());
    const double y2 = yMap.transform(area.y() + area.height());
    return {x1, y1, x2 - x1, y2 - y1};
}

QRectF withMinimumSize(const QRectF& pixels)
{
    QRectF result = pixels;
    if (pixels.width() < kMinWidth) {
        const double missing = kMinWidth - pixels.width();
        result = {pixels.x() - missing / 2.0, pixels.y(), kMinWidth, pixels.height()};
    }
    if (std::abs(pixels.height()) < kMinHeight) {
        const double missing = kMinHeight - std::abs(pixels.height());
        result = {result.x(), pixels.y() + missing / 2.0, result.width(),
                  pixels.height() - missing};
    }
    return result;
}

int tickColumn(double value, const QwtScaleMap& xMap)
{
    constexpr int kBeyond =
        1 << 20; // wider than any screen, far from what the coordinates of a painter overflow at
    const double column = xMap.transform(value);
    if (!(std::abs(column) < kBeyond)) {
        return column < 0.0 ? -kBeyond : kBeyond;
    }
    return static_cast<int>(column);
}

} // namespace overview
