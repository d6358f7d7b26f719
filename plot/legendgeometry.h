#pragma once

#include <QFontMetrics>
#include <QLine>
#include <QPoint>
#include <QRectF>
#include <QSize>
#include <QString>

/// Where a marker's legend stands and what it consists of: a rounded box with the text and a short
/// line from it to the marker. A right-aligned legend stands to the right of its marker, a
/// left-aligned one to the left. Pixels.
namespace legendgeometry {

/// The size of a legend with these lines of text; empty lines take no room.
[[nodiscard]] QSize sizeFor(const QString& text, const QFontMetrics& metrics);

/// The alignment of a legend of that width that is put beside a marker at x. It changes sides where
/// it would leave the parent on the right, and goes back the next time.
[[nodiscard]] Qt::Alignment alignmentAt(int x, int width, int parentWidth, Qt::Alignment alignment);

[[nodiscard]] QPoint topLeft(const QPoint& marker, int width, Qt::Alignment alignment);
[[nodiscard]] QLine pointer(const QSize& size, Qt::Alignment alignment);
[[nodiscard]] QRectF box(const QSize& size, Qt::Alignment alignment);

} // namespace legendgeometry
