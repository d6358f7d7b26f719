#pragma once

#include <QRadialGradient>

#include <optional>

/// A round gradient that is kept until it is wanted for another place.
///
/// One serves all widgets of a kind: they have the same size and colours, so that it is hardly ever
/// made anew.
class RadialEffect
{
public:
    /// The gradient around the rectangle's centre, its radius the rectangle's width. Made anew only
    /// where the centre has moved by more than 1e-5 or the radius differs; else the stops are those
    /// it was made with.
    const QRadialGradient& at(const QRectF& rect, const QGradientStops& stops);

private:
    std::optional<QRadialGradient> gradient;
};
