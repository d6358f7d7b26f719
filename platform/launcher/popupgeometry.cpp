#include "platform/launcher/popupgeometry.h"

#include <algorithm>

namespace popupgeometry {

QPoint keptInside(const QRect& screen, const QRect& wanted)
{
    const int lastX = screen.x() + screen.width() - wanted.width();
    const int lastY = screen.y() + screen.height() - wanted.height();
    return {std::max(screen.x(), std::min(wanted.x(), lastX)),
            std::max(screen.y(), std::min(wanted.y(), lastY))};
}

QPoint beside(const QRect& screen, const QRect& caller, const QSize& size)
{
    const int above = caller.y() - screen.y();
    const int below = screen.y() + screen.height() - (caller.y() + caller.height());
    const bool fitsAbove = size.height() <= above || above >= below;
    const int y = fitsAbove ? caller.y() - size.height() : caller.y() + caller.height();
    return keptInside(screen, QRect(QPoint(caller.x(), y), size));
}

int choiceColumns(int count)
{
    constexpr int kMostInAColumn = 4;
    return std::max(1, (count + kMostInAColumn - 1) / kMostInAColumn);
}

} // namespace popupgeometry
