#pragma once

#include <QList>
#include <QObject>
#include <QWidgetList>

#include <memory>

class QmMiniPlot;
class QmPlotZoomer;
class QPushButton;
class QVBoxLayout;
class Reflectogram;
class Ui_Canvas;

namespace Waveform {

class Plot;

/// What lies over the canvas and moves the view: the zoom buttons, the overview, the zoomer, and
/// the panner for the finger.
///
/// Its parent samples the curves for a new view by a slot rescalePlot( QRectF ).
class CanvasControls : public QObject
{
    Q_OBJECT

public:
    CanvasControls(Plot* plot, QObject* parent);
    ~CanvasControls() override;

    // In this order, each once.
    void setupPlot();
    void setupPanner();
    void setupZoomer();

    // Only after the set-up that makes them.
    [[nodiscard]] QPushButton* zoomOffButton() const;
    [[nodiscard]] QmMiniPlot* miniPlot() const;

    [[nodiscard]] QmPlotZoomer* zoomer() const { return plotZoomer; }

    /// The buttons of the view, from the first to the last.
    [[nodiscard]] QWidgetList buttons() const;

    /// The column that tells about what is on the plot.
    [[nodiscard]] QVBoxLayout* legendLayout() const;

    /// Offers the controls that make sense for the view of now; for another full view than before.
    void offer();

    /// Shows the full view and offers nothing to change it: there is no trace.
    void offerNothing();

    /// Above whatever came onto the canvas later.
    void raise();

    /// What the full view is: 0 to this distance, m.
    void setDistance(double xMax_m);

    /// Shows both axes, and on them the full view to this distance, m.
    void showRange(double xMax_m);

    /// A view of a few samples, m apart, is the narrowest.
    void setSampleSpacing(double spacing_m);

    /// Shows a trace in the overview, from 0 to this distance, m.
    void fillMiniPlot(const Reflectogram& refl, double upTo_m);

    /// Makes do with the height of the canvas.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setupZoomButtons();
    void arrange(int canvasHeight);
    void arrangeButtons(bool oneBelowTheOther);

    Plot* plot;
    std::unique_ptr<Ui_Canvas> ui; ///< its widgets belong to the canvas
    QmPlotZoomer* plotZoomer = nullptr;
    bool isButtonColumn = true;
};

} // namespace Waveform
