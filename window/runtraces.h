#pragma once

#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wfmeasparams.h"
#include "plot/reflcurve.h"

#include <QPointer>
#include <QString>

namespace Waveform {

class CurveSet;
class Plot;
class ReflsTableModel;

/// The traces of a measurement run: each snapshot makes a trace or refreshes the one that is being
/// measured, and the traces of one run belong together.
class RunTraces
{
public:
    /// None of them is owned; all must outlive this.
    RunTraces(Plot* plot, CurveSet* curves, ReflsTableModel* refls);

    /// A run begins: what earlier runs left is deleted, what was loaded is not shown.
    void begin();

    void traceStarted();

    /// The trace has its last snapshot: its figures are computed in the background.
    void traceFinished();

    /// Takes a snapshot. An unusable one changes nothing.
    void takeSnapshot(const QString& file, const WfMeasParams& params);

    /// The curve that the run refreshes; null before the first snapshot of a trace.
    [[nodiscard]] ReflCurve* current() const { return measCurve; }

    /// The run ended: everything is shown again, and its last trace is the main one.
    void end();

private:
    Plot* plot;
    CurveSet* curves;
    ReflsTableModel* refls;
    QPointer<ReflCurve> measCurve;
    QPointer<ReflCurve> prevMeasCurve; ///< of the trace before, for association
};

} // namespace Waveform
