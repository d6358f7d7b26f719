#include "plot/lazypoints.h"

#include <utility>

LazyPoints::LazyPoints(std::function<QPolygonF()> compute)
    : compute(std::move(compute))
{
}

std::size_t LazyPoints::size() const
{
    return static_cast<std::size_t>(computed().size());
}

QPointF LazyPoints::sample(std::size_t i) const
{
    return computed().at(static_cast<int>(i));
}

QRectF LazyPoints::boundingRect() const
{
    if (d_boundingRect.width() < 0.0) {
        d_boundingRect = qwtBoundingRect(*this);
    }
    return d_boundingRect;
}

const QPolygonF& LazyPoints::computed() const
{
    if (compute) {
        points = std::exchange(compute, nullptr)();
    }
    return points;
}
