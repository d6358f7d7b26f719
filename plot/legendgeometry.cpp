#include "plot/legendgeometry.h"

#include <QStringList>

#include <algorithm>

namespace legendgeometry {

namespace {

constexpr int kAroundText = 27; ///< the pointer line, the box's edges and the room in it
constexpr int kBetweenLines = 2;
constexpr int kPointer = 14;
constexpr int kBesideBox = 16; ///< the pointer line and the box's outer edge

} // namespace

QSize sizeFor(const QString& text, const QFontMetrics& metrics)
{
    int width = 0;
    int height = 0;
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) {
        const QRect bounds = metrics.boundingRect(line);
        width = std::max(width, bounds.width());
        height += bounds.height() + kBetweenLines;
    }
    return {width + kAroundText, height};
}

Qt::Alignment alignmentAt(int x, int width, int parentWidth, Qt::Alignment alignment)
{
    if (x + width > parentWidth && alignment.testFlag(Qt::AlignRight)) {
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
    if (alignment.testFlag(Qt::AlignLeft)) {
        return Qt::AlignRight | Qt::AlignVCenter;
    }
    return alignment;
}

QPoint topLeft(const QPoint& marker, int width, Qt::Alignment alignment)
{
    return alignment.testFlag(Qt::AlignRight) ? marker : marker - QPoint(width, 0);
}

QLine pointer(const QSize& size, Qt::Alignment alignment)
{
    const int row = size.height() / 2;
    if (alignment.testFlag(Qt::AlignRight)) {
        return {0, row, kPointer, row};
    }
    return {size.width(), row, size.width() - kBesideBox, row};
}

QRectF box(const QSize& size, Qt::Alignment alignment)
{
    const int left = alignment.testFlag(Qt::AlignRight) ? kPointer + 1 : 1;
    return QRect(left, 1, size.width() - kBesideBox, size.height() - 2);
}

} // namespace legendgeometry
