#pragma once

#include <qwt_plot.h>

#include <QObject>
#include <QRectF>

/// Zooms a plot in and out by steps about the middle of its view, within limits on what its
/// distance axis (bottom) and its level axis (left) show.
///
/// Buttons drive it by its slots, the arrow keys by its event filter. It sets the scales of the
/// plot and leaves drawing to whoever listens to newBounds(QRectF). After each change of the view
/// it emits, in this order, disableZoomOut(bool), maxScaledOut() where the view is the full one,
/// disableZoomIn(bool) and newBounds(QRectF).
class QmPlotZoomer : public QObject
{
    Q_OBJECT

public:
    /// The plot becomes the parent.
    explicit QmPlotZoomer(QwtPlot* plot);

    /// What the axes of the plot show now; kept as the current view.
    QRectF currentRect();

    /// Whether the current view differs from the full one by at least 1 m or 1 dB.
    [[nodiscard]] bool zoomed() const;

    /// Says which zoom buttons make sense for the current view.
    void emitControlSignals();

    /// Takes the arrow keys: left and right widen and narrow the distances, up and down narrow and
    /// widen the levels.
    bool eventFilter(QObject* object, QEvent* event) override;

public slots:
    /// Limits on the spans, m and dB. Values that are not positive are ignored.
    void setMinRange(double range);
    void setMaxRange(double range);
    void setMinYRange(double range);
    void setMaxYRange(double range);

    /// Sets the full view and by it the greatest spans; the current view stays.
    void setMaxRect(QRectF fullView);

    /// By how much one step shrinks or widens the spans. Values that are not positive are ignored.
    void setZoomInFactor(double factor);
    void setZoomOutFactor(double factor);

    /// Steps of both axes. The distance axis decides how far the step goes; a factor that is not
    /// positive does nothing.
    void zoomIn(double factor);
    void zoomIn();
    void zoomOut(double factor);
    void zoomOut();

    /// Steps of one axis, bottom or left, by the set factor; not bounded by the full view.
    void zoomIn(QwtPlot::Axis axis);
    void zoomOut(QwtPlot::Axis axis);

    /// Scales both spans about the centre of the view. The result may reach past the full view;
    /// only its size is bounded.
    void zoomCentered(double factor);

    /// Shows the full view.
    void zoomOff();

    /// Shows these bounds on one axis, bottom or left; the other one scales itself. For the left
    /// axis the current view is kept upside down: y is the upper bound and the height is negative.
    void zoomTo(double low, double up, QwtPlot::Axis axis = QwtPlot::xBottom);
    void zoomTo(QRectF scaleRect);

signals:
    void maxScaledOut();
    void maxScaledIn(); ///< never emitted
    void disableZoomIn(bool disable);
    void disableZoomOut(bool disable);
    void newBounds(QRectF rect);
    void newBounds(double xLow, double xUp); ///< never emitted
    void newBounds(double xLow, double xUp, double yLow, double yUp); ///< never emitted

private:
    /// Sets both scales to a rectangle, which becomes the current view, and tells it.
    void show(const QRectF& view);
    void announce();

    double minRange = 1.0;
    double maxRange = 1.0;
    double minYRange = 0.0;
    double maxYRange = 0.0;
    double zoomInFactor = 2.0;
    double zoomOutFactor = 2.0;
    QRectF maxRect {0.0, 0.0, 1.0, 1.0};
    QRectF rect {0.0, 0.0, 0.0, 0.0};
    QwtPlot* plot;
};
