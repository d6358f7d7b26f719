#pragma once

#include <QPoint>

#include <optional>

/// When a drag over the plot becomes a pan step, without the widget.
///
/// Distances point from where the finger is to where it was: a view that is shifted by them moves
/// against the finger, so that the trace follows it.
namespace pan {

/// Drags up to this length (Manhattan, pixels) are no step: each step samples the traces anew.
constexpr int kDeadLength = 30;

/// The step from the last position to this one; empty where the finger has not moved far enough.
inline std::optional<QPoint> step(const QPoint& last, const QPoint& now)
{
    const QPoint distance = last - now;
    return distance.manhattanLength() > kDeadLength ? std::optional(distance) : std::nullopt;
}

/// The whole drag from press to release; empty for a tap.
inline std::optional<QPoint> drag(const QPoint& pressed, const QPoint& released)
{
    return pressed != released ? std::optional(pressed - released) : std::nullopt;
}

} // namespace pan
