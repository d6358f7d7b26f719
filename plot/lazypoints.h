#pragma once

#include <qwt_series_data.h>

#include <QPolygonF>

#include <functional>

/// Points that are computed when somebody first asks for one of them: a view that nobody asks about
/// costs nothing.
class LazyPoints : public QwtSeriesData<QPointF>
{
public:
    /// compute is called at most once.
    explicit LazyPoints(std::function<QPolygonF()> compute);

    [[nodiscard]] std::size_t size() const override;
    [[nodiscard]] QPointF sample(std::size_t i) const override;
    [[nodiscard]] QRectF boundingRect() const override;

private:
    [[nodiscard]] const QPolygonF& computed() const;

    mutable std::function<QPolygonF()> compute; ///< empty once it was called
    mutable QPolygonF points;
};
