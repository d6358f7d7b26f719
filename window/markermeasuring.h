#pragma once

#include <QObject>

class MeasView;
class QWidget;

namespace Waveform {

class CanvasControls;
class Plot;
class ReflsTableModel;
class TwoMarkersModel;
class TwoMarkersView;

/// The measurement between two markers on the plot: shown while its bar is, in the bar's mode, on
/// the main trace. The overview has a tick for each marker that is shown.
class MarkerMeasuring : public QObject
{
    Q_OBJECT

public:
    /// \param window samples the curves for a new main trace by its slot rescalePlot( Reflectogram
    /// )
    explicit MarkerMeasuring(QObject* window);

    void initTwoMarkers(Plot* plot, CanvasControls* canvas, const MeasView* bar,
                        const ReflsTableModel* refls);

    /// The main trace is no longer what it was: measures it anew where the markers are.
    void measureAgain();

    /// Takes wheel and page keys as an event filter.
    [[nodiscard]] TwoMarkersView* view() const { return twoMarkersView; }

    /// Writes the results as large as the height of the canvas lets.
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void onAllReflsDeleted();
    void showInOverview();

private:
    void raiseMarkers();
    void arrangeResults(int canvasHeight);
    void followMarkers(const MeasView* bar);

    Plot* plot = nullptr;
    CanvasControls* canvas = nullptr;
    TwoMarkersView* twoMarkersView = nullptr;
    TwoMarkersModel* model = nullptr;
    int usualLetters = 0; ///< height of the results' letters where there is room, pixels
};

} // namespace Waveform
