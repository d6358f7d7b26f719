#pragma once

#include <QRectF>

class QSize;
class QwtScaleMap;

/// Where things lie in the overview of a trace, without the widget.
///
/// Pixels count from the upper left corner, and the maps are not inverted: who wants high levels on
/// top gives a scale whose first value is the highest level.
namespace overview {

/// What stays free at each edge, pixels.
constexpr int kMargin = 8;

/// The least size of the highlighted area, pixels, so that it is seen however small a part of the
/// trace it marks.
constexpr double kMinWidth = 16.0;
constexpr double kMinHeight = 12.0;

/// Lets the maps fill a widget of this size but for the margin.
void fitMaps(QwtScaleMap& xMap, QwtScaleMap& yMap, const QSize& size);

/// An area of the scales in pixels. With the highest level on top its height is negative.
QRectF mapped(const QRectF& area, const QwtScaleMap& xMap, const QwtScaleMap& yMap);

/// A mapped area, widened about its centre where it is smaller than the least size. The height is
/// taken to be negative or 0: y is the lower edge on the screen.
QRectF withMinimumSize(const QRectF& pixels);

/// The column of a tick; one beyond every widget where the value maps beyond what a painter can
/// take.
int tickColumn(double value, const QwtScaleMap& xMap);

} // namespace overview
