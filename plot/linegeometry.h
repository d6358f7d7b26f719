#pragma once

#include <QLineF>
#include <QRect>

class QwtScaleMap;

/// Where lines over the chart lie, in pixels.
namespace linegeometry {

/// A widget that holds a line with some room on every side, and the line in the widget's own
/// pixels.
struct Framed
{
    QRect geometry;
    QLineF line;
};

[[nodiscard]] Framed framed(const QLineF& line);

/// A line of the chart, metres and decibels, as it lies on the canvas.
[[nodiscard]] QLineF mapped(const QLineF& line, const QwtScaleMap& xMap, const QwtScaleMap& yMap);

/// The part of a line that lies within a million pixels of the origin: a view of a few metres puts
/// the ends of a long line farther away than a widget can reach. A null line where there is none,
/// or where an end is no number.
[[nodiscard]] QLineF withinReach(const QLineF& line);

/// Whether a press at pixel x grabs a marker that stands at pixel marker.
[[nodiscard]] bool grabs(double marker, int x);

} // namespace linegeometry
