#pragma once

#include <qwt_plot_curve.h>
#include <qwt_scale_map.h>

#include <QList>
#include <QPixmap>
#include <QPolygonF>
#include <QRectF>
#include <QWidget>

class QmPlotMarker;
class QPainter;

/// An overview of one trace: the whole of it in miniature, what the plot shows of it as a
/// highlighted area, and a tick for each measurement marker.
///
/// The curve is drawn once into a pixmap, when its samples or the size change; painting only copies
/// it. Areas are in scale units, m and dB.
class QmMiniPlot : public QWidget
{
    Q_OBJECT

public:
    explicit QmMiniPlot(QWidget* parent = nullptr);

    /// An area of the scales in pixels of this widget.
    [[nodiscard]] QRectF transformArea(QRectF rect) const;

    /// Draws the curve anew into the pixmap that painting copies.
    void cacheCurve();

public slots:
    /// What the whole widget shows, from (x, y) in the upper left corner to the opposite one. With
    /// the highest level as y and a negative height high levels are on top.
    void setScales(QRectF scale, bool redraw = true);

    void setSamples(const QPolygonF& points, bool redraw = true);

    /// Highlights an area; never smaller than 16 x 12 pixels, so that it is seen however deep the
    /// plot is zoomed.
    void highlightArea(double xLow, double xUp, double yLow, double yUp, bool redraw = true);
    void highlightArea(QRectF rect, bool redraw = true);

    /// No highlight from the next repaint on.
    void nohl();

    /// Ticks where these markers stand now; the markers are not kept.
    void setMarkers(QList<QmPlotMarker*> plotMarkers);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Maps the highlighted area with the scales as they are.
    void placeArea();

    void paintBackground(QPainter& painter) const;
    void paintTicks(QPainter& painter) const;
    void paintArea(QPainter& painter) const;

    QwtScaleMap xMap;
    QwtScaleMap yMap;
    QwtPlotCurve curve;
    QRectF area;
    QRectF areaPixels;
    QPixmap cache;
    QList<double> markers;
    bool noHighlight = true;
};
