#pragma once

#include "plot/reflcurve.h"

#include <QColor>
#include <QList>
#include <QPointer>

namespace Waveform {

class Plot;

/// The curves on the plot, one for each trace that is shown, and which of them is the main one.
///
/// Owns them. Whoever keeps a curve beyond a call keeps it as QPointer.
class CurveSet
{
public:
    /// The plot must outlive the set.
    explicit CurveSet(Plot* plot);
    ~CurveSet();
    CurveSet(const CurveSet&) = delete;
    CurveSet& operator=(const CurveSet&) = delete;

    [[nodiscard]] bool isEmpty() const { return curves.isEmpty(); }

    [[nodiscard]] ReflCurve* main() const { return mainCurve; } ///< null where there is none

    /// The first curve of this trace; null where there is none.
    [[nodiscard]] ReflCurve* find(const Reflectogram& refl) const;

    /// A new curve, shown.
    ReflCurve* add(const Reflectogram& refl, const QColor& color);

    /// The main curve lies on top; null for none.
    void setMain(ReflCurve* curve);

    /// Takes a curve out of the set and off the plot; it is still there, and the caller's.
    void take(ReflCurve* curve);
    void clear();

    void detachAll();
    void attachAllBut(const ReflCurve* curve);

    /// Shows or hides all but the main curve.
    void setHiddenNonMain(bool hidden);

    /// Samples all curves for a window of distances and as much again on either side, so that the
    /// next drag finds them there. A negative width leads back from x.
    void sampleAround(double x_m, double width_m);

private:
    Plot* plot;
    QList<ReflCurve*> curves;
    QPointer<ReflCurve> mainCurve;
};

} // namespace Waveform
