#include "plot/qmminiplot.h"

#include "platform/launcher/palettefactory.h"
#include "plot/overviewgeometry.h"
#include "plot/qmplotmarker.h"

#include <QPainter>

namespace {

QColor withAlpha(QColor colour, int alpha)
{
    colour.setAlpha(alpha);
    return colour;
}

} // namespace

QmMiniPlot::QmMiniPlot(QWidget* parent)
    : QWidget(parent)
    , curve(QString())
{
    curve.setPaintAttribute(QwtPlotCurve::ClipPolygons, true);
    setWindowOpacity(0.5);
}

QRectF QmMiniPlot::transformArea(QRectF rect) const
{
    return overview::mapped(rect, xMap, yMap);
}

void QmMiniPlot::placeArea()
{
    areaPixels = overview::withMinimumSize(transformArea(area));
}

void QmMiniPlot::setScales(QRectF scale, bool redraw)
{
    xMap.setScaleInterval(scale.x(), scale.x() + scale.width());
    yMap.setScaleInterval(scale.y(), scale.y() + scale.height());
    placeArea();
    if (redraw) {
        cacheCurve();
        update();
    }
}

void QmMiniPlot::setSamples(const QPolygonF& points, bool redraw)
{
    curve.setSamples(points);
    cacheCurve();
    if (redraw) {
        update();
    }
}

void QmMiniPlot::highlightArea(double xLow, double xUp, double yLow, double yUp, bool redraw)
{
    area = QRectF(xLow, yLow, xUp - xLow, yUp - yLow);
    placeArea();
    noHighlight = false;
    if (redraw) {
        update();
    }
}

void QmMiniPlot::highlightArea(QRectF rect, bool redraw)
{
    highlightArea(rect.x(), rect.x() + rect.width(), rect.y(), rect.y() + rect.height(), redraw);
}

void QmMiniPlot::nohl()
{
    noHighlight = true;
}

void QmMiniPlot::setMarkers(QList<QmPlotMarker*> plotMarkers)
{
    markers.clear();
    for (const QmPlotMarker* marker : qAsConst(plotMarkers)) {
        markers << marker->xValue();
    }
    update();
}

void QmMiniPlot::cacheCurve()
{
    if (cache.isNull()) {
        return;
    }
    cache.fill(Qt::transparent);
    QPainter painter(&cache);
    painter.setRenderHint(QPainter::Antialiasing);
    curve.draw(&painter, xMap, yMap, QRectF(rect()));
}

void QmMiniPlot::resizeEvent(QResizeEvent* /*event*/)
{
    overview::fitMaps(xMap, yMap, size());
    placeArea();
    cache = QPixmap(size() * devicePixelRatioF());
    cache.setDevicePixelRatio(devicePixelRatioF());
    cacheCurve();
}

void QmMiniPlot::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    paintBackground(painter);
    painter.drawPixmap(0, 0, cache);
    paintTicks(painter);
    if (!noHighlight) {
        paintArea(painter);
    }
}

void QmMiniPlot::paintBackground(QPainter& painter) const
{
    constexpr int kAlpha = 64;
    constexpr double kRadius = 8.0;
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(withAlpha(palette().color(QPalette::Window), kAlpha));
    painter.drawRoundedRect(0, 0, width() - 1, height() - 1, kRadius, kRadius);
}

void QmMiniPlot::paintTicks(QPainter& painter) const
{
    painter.setPen(PaletteFactory::getPalette("CriticalButton").color(QPalette::Button));
    for (const double xValue : markers) {
        const int column = overview::tickColumn(xValue, xMap);
        painter.drawLine(column, overview::kMargin, column, height() - overview::kMargin);
    }
}

void QmMiniPlot::paintArea(QPainter& painter) const
{
    constexpr int kAlpha = 192;
    constexpr int kDarker = 130;
    const QColor colour = withAlpha(palette().color(QPalette::AlternateBase), kAlpha);
    painter.setBrush(colour);
    painter.setPen(colour.darker(kDarker));
    painter.drawRect(areaPixels);
}
