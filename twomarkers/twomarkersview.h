#pragma once

#include "platform/otdr/reflectogram.h"
#include "twomarkers/twomarkersresult.h"

#include <QList>
#include <QObject>
#include <QPointer>

class PlotLineWidget;
class QmPlotMarker;
class QwtInterval;

namespace Waveform {

class Plot;
class TwoMarkersModel;
class TwoMarkersResultWidget;

/// The markers A and B on the plot, the line fitted between them, and the table of what the model
/// measures there.
///
/// Installed as an event filter, it takes the wheel and the page keys of whatever it watches to
/// move the checked markers.
class TwoMarkersView : public QObject
{
    Q_OBJECT

public:
    /// \param parent the canvas of the plot; owns the view, the markers, the line and, until that
    /// is laid out elsewhere, the table
    explicit TwoMarkersView(QWidget* parent);

    /// \param useLSA whether the fitted line takes part
    TwoMarkersView(bool useLSA, QWidget* parent);

    /// For the layout that it belongs to.
    [[nodiscard]] TwoMarkersResultWidget* results() const { return resultWidget; }

    /// Gives the model the markers and shows what it measures; once. The model is not owned.
    void setModel(Waveform::TwoMarkersModel* newModel);

    /// Follows the views of a plot; the markers start side by side at its left edge.
    void attachToPlot(Waveform::Plot* newPlot);

    /// Moves the checked markers by so many pixels; only while the table is visible.
    void moveMarkers(int dx);

    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    /// Shows or hides all where the table was shown or hidden.
    void onWidgetShown(QWidget* w, bool visible);
    [[nodiscard]] bool isVisible() const;
    void setVisible(bool visible);
    void setHidden(bool hidden);
    void hide();
    void show();
    void setUseLSA(bool use); // NOLINT(readability-identifier-naming)
    void setResult(TwoMarkersResult res);
    void setORL(double orl); // NOLINT(readability-identifier-naming)

    /// Puts a marker that is out of view to the edge it lies behind: A to the left one, B to the
    /// right one.
    void moveMarkersToScreen();

    /// The main trace is to be this one. Where there was none, markers that nobody has moved are
    /// placed side by side anew: they stood on a scale that meant nothing. Before the model hears
    /// of the trace, which might pull them to its end.
    void onMainReflChanged(Reflectogram refl);

private slots:
    void onOrlChanged();

private:
    void init();
    void placeSideBySide();
    [[nodiscard]] bool areUntouched() const;
    void placeAtFirstShow();
    QwtInterval shownDistances();

    QmPlotMarker* markerA;
    QmPlotMarker* markerB;
    QList<QmPlotMarker*> markers;
    TwoMarkersResultWidget* resultWidget;
    QPointer<TwoMarkersModel> model;
    PlotLineWidget* lineWidget;
    bool useLSA = false;
    bool isStretchShown = true; ///< what is shown has a return loss, which comes by itself
    QPointer<Plot> plot;
    bool wasShown = false;
    bool hasTrace = false;
    double placedA_m = 0.0; ///< where the markers were placed last
    double placedB_m = 0.0;
};

} // namespace Waveform
