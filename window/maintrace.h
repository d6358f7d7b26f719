#pragma once

#include "platform/otdr/reflectogram.h"

#include <QColor>

class EventMarkersView;
class ReflCurve;

namespace Waveform {

class CanvasControls;
class CurveSet;
class EventsTableModel;
class Plot;

/// The main trace on the screen: its curve on top of the others, its whole in the overview, its
/// events as ticks and as a table.
class MainTrace
{
public:
    struct Parts
    {
        Plot* plot;
        CanvasControls* canvas;
        CurveSet* curves;
        EventMarkersView* eventMarkers;
        EventsTableModel* eventsModel;
    };

    /// None of the parts is owned; all must outlive this.
    explicit MainTrace(const Parts& parts);

    /// Shows a trace as the main one; one that has no curve yet gets one of this colour. An invalid
    /// trace changes nothing.
    void show(const Reflectogram& refl, const QColor& color);

    /// Null: there is no main trace.
    void change(ReflCurve* curve);

    /// Ticks and table are those of the main curve.
    void showEvents();

    /// Takes a trace off the screen, the main one or another.
    void remove(const Reflectogram& refl);
    void removeAll();

    // Without a main trace they do nothing.
    void setIor(double ior);
    void setHelix(double helix_percent);

private:
    void sampleAnew();
    void fillOverview(const Reflectogram& refl);

    Parts on;
};

} // namespace Waveform
