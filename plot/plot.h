#pragma once

#include "platform/otdr/wf_clip_t.h"

#include <qwt_plot.h>
#include <qwt_scale_map.h>

#include <QRectF>

class QwtPlotGrid;

namespace Waveform {

/// The chart: level in dB over distance in metres, with its grid, its two axes and panning.
///
/// Auto-replot is off: whoever changes scales or curves replots once afterwards.
class Plot : public QwtPlot
{
    Q_OBJECT

public:
    /// The vertical range of a full view, dB. Higher levels are reached by panning.
    static constexpr double kMinY = 0.0;
    static constexpr double kMaxY = 50.0;

    explicit Plot(QWidget* parent = nullptr);

    /// The greatest distance of the loaded traces, m; bounds horizontal panning.
    void setMaxX(double maxX_m);

    /// The window to decimate for: the visible range and as much again on either side, a point per
    /// pixel.
    [[nodiscard]] wf_clip_t clip();

    /// The bounds of an axis after a drag of so many pixels. False where nothing moves.
    bool newBounds(int axis, int delta, double& min, double& max);

    /// A new grid, which nobody owns until it is attached.
    [[nodiscard]] QwtPlotGrid* createGrid();
    void setupAxis(QwtPlot::Axis axis);
    void resizeEvent(QResizeEvent* event) override;

    /// Lays the axes out; the first distance label may reach below the level axis.
    void updateLayout() override;

public slots:
    /// Pans both axes by a drag in pixels; silent where both are at their stops.
    void shiftScale(QPoint delta);

    /// Tells the overlays how distances and levels map to canvas pixels now.
    void emitTransformMaps();

signals:
    void scaledTo(QRectF region);
    void resized();
    void transformMapsChanged(const QwtScaleMap& xMap, const QwtScaleMap& yMap);

private:
    double maxX = 0.0;
};

} // namespace Waveform
