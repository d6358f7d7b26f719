#include "plot/markergeometry.h"

#include <algorithm>
#include <cmath>

namespace markergeometry {

namespace {

constexpr int kFreeBelowKnob = 10;
constexpr int kDragFrom = 10;
constexpr qint64 kLongestTap_ms = 69;
constexpr int kSlide = 30;
constexpr double kGlowAlpha = 0.25;
constexpr double kFarthest = 1e6; ///< single precision still tells half pixels there

} // namespace

QRect pointerRect(int width, int height)
{
    const int top = height - width - kFreeBelowKnob;
    return {QPoint(1, top), QPoint(width - 2, top + width - 3)};
}

bool staysInside(const QRect& marker, int dx, int parentWidth)
{
    // dx stands alone, so that no dx is too large for the sum.
    return dx >= 1 - marker.left() && dx <= parentWidth - 1 - marker.right();
}

std::optional<int> leftEdgeFor(double x)
{
    if (std::isnan(x)) {
        return std::nullopt;
    }
    const double bounded = std::clamp(x, -kFarthest, kFarthest);
    return qRound(static_cast<float>(bounded)) - kLine;
}

bool isDrag(int dx)
{
    return qAbs(dx) >= kDragFrom;
}

bool isTap(qint64 milliseconds)
{
    return milliseconds <= kLongestTap_ms;
}

bool isBelow(int y, int parentHeight)
{
    return y > parentHeight + kSlide;
}

QLinearGradient glow(int width, QColor color)
{
    const int edge = 3 * width / 4;
    QLinearGradient gradient(edge, 0.0, width - 1 - edge, 0.0);
    color.setAlphaF(kGlowAlpha);
    gradient.setColorAt(0.0, Qt::transparent);
    gradient.setColorAt(0.5, color);
    gradient.setColorAt(1.0, Qt::transparent);
    return gradient;
}

QPoint centred(const QSizeF& size, const QRect& rect)
{
    return rect.topLeft()
        + QPoint(static_cast<int>((rect.width() - size.width()) / 2.0),
                 static_cast<int>((rect.height() - size.height()) / 2.0));
}

} // namespace markergeometry
