#include "plot/reflcurve.h"

#include "platform/otdr/tracestate.h"
#include "plot/lazypoints.h"
#include "plot/stackorder.h"
#include "plot/stickcolumns.h"

#include <qwt_scale_map.h>
#include <qwt_text.h>

#include <QImage>
#include <QPainter>
#include <QSignalBlocker>

#include <utility>

ReflCurve::ReflCurve(wf_clip_t clip, const Reflectogram& refl, QColor color)
    : QwtPlotCurve(QwtText())
    , decimator(refl, true)
{
    setStyle(Sticks);
    setRenderHint(QwtPlotItem::RenderAntialiased, true);
    setCurveFitter(nullptr);
    setPaintAttribute(ClipPolygons, true);
    setColor(color);
    setTitle(refl.paramsToString());
    scale(clip, false); // nobody listens yet
    setZ(stackorder::kCurve);
}

void ReflCurve::setReflectogram(wf_clip_t clip, const Reflectogram& refl)
{
    setTitle(refl.paramsToString());
    decimator = Decimize(refl, true);
    scale(clip);
}

void ReflCurve::scale(wf_clip_t clip)
{
    scale(clip, true);
}

void ReflCurve::scale(wf_clip_t clip, bool notify)
{
    // The trace as it is now, whenever the points are asked for.
    auto sampled = [this, clip, state = decimator.state()] {
        QPolygonF points = Decimize::points(state.get(), clip, true);
        limitYBy(points, 0.0);
        return points;
    };
    {
        // Qwt's own notification of new samples has the name of our signal and would emit it.
        const QSignalBlocker quiet(this);
        setSamples(new LazyPoints(std::move(sampled))); // the curve's from now on
    }
    itemChanged();
    if (notify) {
        emit dataChanged();
    }
}

QColor ReflCurve::color() const
{
    return pen().color();
}

void ReflCurve::setColor(QColor color)
{
    setPen(QPen(QBrush(color), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
}

void ReflCurve::limitYBy(QPolygonF& points, double floor)
{
    for (QPointF& point : points) {
        if (point.y() < floor) {
            point.setY(floor);
        }
    }
}

void ReflCurve::drawSeries(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                           const QRectF& canvasRect, int /*from*/, int /*to*/) const
{
    const auto state = decimator.state();
    if (!state) {
        return;
    }
    const double ratio = painter->device()->devicePixelRatioF();
    const QRect device =
        QRectF(canvasRect.topLeft() * ratio, canvasRect.size() * ratio).toAlignedRect();
    StickColumns columns(device);
    columns.add(*state, xMap, yMap, ratio);
    const QBrush fill = columns.hasGaps() ? comb(columns, device.width(), ratio) : pen().brush();

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setBrushOrigin(QPointF(device.topLeft()) / ratio);
    for (const QRect& rect : columns.rectangles(yMap.transform(baseline()) * ratio)) {
        painter->fillRect(QRectF(QPointF(rect.topLeft()) / ratio, QSizeF(rect.size()) / ratio),
                          fill);
    }
    painter->restore();
}

QBrush ReflCurve::comb(const StickColumns& columns, int width, double pixelRatio) const
{
    QImage row(width, 1, QImage::Format_ARGB32_Premultiplied);
    row.fill(Qt::transparent);
    for (int column = 0; column < width; ++column) {
        if (columns.isCovered(column)) {
            row.setPixelColor(column, 0, color());
        }
    }
    QBrush brush(row);
    brush.setTransform(QTransform::fromScale(1.0 / pixelRatio, 1.0 / pixelRatio));
    return brush;
}
