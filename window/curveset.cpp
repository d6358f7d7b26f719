#include "window/curveset.h"

#include "plot/plot.h"
#include "plot/stackorder.h"

#include <cmath>

namespace Waveform {

CurveSet::CurveSet(Plot* plot)
    : plot(plot)
{
}

CurveSet::~CurveSet()
{
    clear();
}

ReflCurve* CurveSet::find(const Reflectogram& refl) const
{
    for (ReflCurve* curve : curves) {
        if (curve->reflectogram() == refl) {
            return curve;
        }
    }
    return nullptr;
}

ReflCurve* CurveSet::add(const Reflectogram& refl, const QColor& color)
{
    auto* curve = new ReflCurve(plot->clip(), refl, color);
    curve->attach(plot);
    curves << curve;
    return curve;
}

void CurveSet::setMain(ReflCurve* curve)
{
    mainCurve = curve;
    if (mainCurve == nullptr) {
        return;
    }
    for (ReflCurve* other : qAsConst(curves)) {
        other->setZ(stackorder::kCurve);
    }
    mainCurve->setZ(stackorder::kMainCurve);
}

void CurveSet::take(ReflCurve* curve)
{
    curve->detach();
    curves.removeAll(curve);
}

void CurveSet::clear()
{
    const QList<ReflCurve*> gone = curves;
    curves.clear();
    for (ReflCurve* curve : gone) {
        curve->detach();
        delete curve;
    }
}

void CurveSet::detachAll()
{
    for (ReflCurve* curve : qAsConst(curves)) {
        curve->detach();
    }
}

void CurveSet::attachAllBut(const ReflCurve* left)
{
    for (ReflCurve* curve : qAsConst(curves)) {
        if (curve != left) {
            curve->attach(plot);
        }
    }
}

void CurveSet::setHiddenNonMain(bool hidden)
{
    for (ReflCurve* curve : qAsConst(curves)) {
        if (curve != mainCurve) {
            curve->attach(hidden ? nullptr : plot);
        }
    }
}

void CurveSet::sampleAround(double x_m, double width_m)
{
    const double margin = std::abs(width_m);
    const wf_clip_t clip {x_m - margin, x_m + width_m + margin, 3 * plot->canvas()->width()};
    for (ReflCurve* curve : qAsConst(curves)) {
        curve->scale(clip);
    }
}

} // namespace Waveform
