#pragma once

#include <QColor>
#include <QLinearGradient>
#include <QPoint>
#include <QRect>
#include <QSizeF>

#include <optional>

/// Where a marker's parts lie and what a finger on it means. Pixels, counted from the left and from
/// the top.
namespace markergeometry {

constexpr int kWidth = 29; ///< of a marker; odd, so that its line has a middle column
constexpr int kLine = 14; ///< column of the line inside the marker

/// The round knob's square: as wide as the marker but for a column on either side, twelve rows
/// above the bottom.
[[nodiscard]] QRect pointerRect(int width, int height);

/// Whether a marker that is moved by dx still lies inside its parent, whose column 0 is kept free.
[[nodiscard]] bool staysInside(const QRect& marker, int dx, int parentWidth);

/// The left edge of a marker whose line stands nearest to x, rounded in single precision. Far
/// outside any screen it is bounded to a million pixels; empty for what is no number.
[[nodiscard]] std::optional<int> leftEdgeFor(double x);

/// Whether a finger that went this far from where it was put down drags rather than trembles.
[[nodiscard]] bool isDrag(int dx);

/// Whether a press that lasted so long toggles the marker. A clock that was set back makes it
/// negative: that does too.
[[nodiscard]] bool isTap(qint64 milliseconds);

/// Whether a finger at this row has slid out below the parent.
[[nodiscard]] bool isBelow(int y, int parentHeight);

/// The soft light around the line of a pressed marker: strongest in the middle, nothing a quarter
/// of the width away from the edges.
[[nodiscard]] QLinearGradient glow(int width, QColor color);

/// The top left corner of something this large in the middle of a rectangle.
[[nodiscard]] QPoint centred(const QSizeF& size, const QRect& rect);

} // namespace markergeometry
