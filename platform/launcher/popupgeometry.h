#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// Where pop-ups go; pixels of the whole desktop.
namespace popupgeometry {

/// The place nearest to the wanted one at which the pop-up lies wholly on the screen; one that is
/// larger than the screen starts at its left top corner.
[[nodiscard]] QPoint keptInside(const QRect& screen, const QRect& wanted);

/// The place of a pop-up that belongs to a caller: right above it, below where there is more room.
[[nodiscard]] QPoint beside(const QRect& screen, const QRect& caller, const QSize& size);

/// How many columns a pop-up with so many choices has: as few as leave at most four in a column,
/// so that even a low screen shows them all at once.
[[nodiscard]] int choiceColumns(int count);

} // namespace popupgeometry
