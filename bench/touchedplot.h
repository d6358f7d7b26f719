#pragma once

#include "events/eventmarkersview.h"
#include "plot/plot.h"
#include "plot/qmminiplot.h"
#include "plot/qmpanner.h"
#include "plot/qmplotzoomer.h"
#include "plot/reflcurve.h"
#include "tests/plot/finger.h"
#include "tests/support/paintcounter.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersview.h"

#include <QObject>
#include <QPixmap>
#include <QRectF>

#include <cstddef>
#include <memory>
#include <vector>

/// The chart as a technician has it under the finger: a canvas of 1280 x 720 with four traces,
/// twenty events ticked on the first of them, the overview, both markers with their table and line,
/// wired as the window does it.
class TouchedPlot : public QObject
{
public:
    static constexpr int kTicks = 20;

    /// Shows a stretch of the traces, which have this many samples each.
    TouchedPlot(std::size_t samples, double from_m, double to_m);
    ~TouchedPlot() override;

    /// Makes the stretch of fibre behind a tick the current one, so that it is highlighted.
    void chooseStretch(int tick);

    /// A finger on the canvas goes so far, and the canvas is painted. Farther than 30 pixels, or
    /// nothing would come of it.
    void pan(int dx);

    /// An arrow key, and the canvas is painted.
    void zoom(Qt::Key key);

    /// How often the canvas was painted.
    [[nodiscard]] int paintCount() const { return painted.count; }

    QPixmap picture() { return plot.grab(); }

private:
    void addTraces(std::size_t samples);
    void addEvents(const Reflectogram& refl);
    void addMarkers(const Reflectogram& refl);
    void wire();
    void show(const QRectF& region);
    void sampleFor(const QRectF& region);
    void awaitPaint(int before);

    Waveform::Plot plot;
    QmMiniPlot overview;
    Waveform::TwoMarkersModel model;
    Waveform::TwoMarkersView twoMarkers;
    EventMarkersView ticks;
    QmPanner panner;
    QmPlotZoomer* zoomer; ///< the plot's
    std::vector<std::unique_ptr<ReflCurve>> curves;
    testing_support::PaintCounter painted;
    testing_support::Finger finger;
};
