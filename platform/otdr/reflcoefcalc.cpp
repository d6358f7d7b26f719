#include "platform/otdr/reflcoefcalc.h"

#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/tracestate.h"

namespace {

/// How far behind the foot of an event its peak is looked for, in pulses: the pulse itself and the
/// receiver's rise.
constexpr double kPeakPulses = 1.5;

constexpr double kWholeMetre_m = 1.0;

} // namespace

ReflcoefCalc::ReflcoefCalc(const Reflectogram& refl)
    : refl(refl)
{
}

double ReflcoefCalc::operator()(double distance_m, double base_dB, double& peak_dB) const
{
    return reflectanceWithin(distance_m, 0.0, base_dB, peak_dB);
}

double ReflcoefCalc::operator()(double distance_m, double base_dB, int /*unused*/) const
{
    double peak_dB = 0.0;
    return reflectanceWithin(distance_m, kWholeMetre_m, base_dB, peak_dB);
}

double ReflcoefCalc::reflectanceWithin(double distance_m, double cut_m, double base_dB,
                                       double& peak_dB) const
{
    peak_dB = Event::kUnknown;
    const auto state = refl.state();
    if (!state || !state->trace) {
        return Event::kUnknown;
    }
    const double foot = state->indexAt(distance_m);
    // A pulse shorter than a sample still has its peak in one of the next two.
    const double reach = kPeakPulses * state->pulseSamples() + 2.0;
    const double last = state->indexAt(distance_m + cut_m) + reach;
    const auto peak = otdr::peakAbove(*state->trace, foot, last, base_dB);
    if (!peak) {
        return Event::kUnknown;
    }
    peak_dB = peak->height_dB;
    return otdr::reflectance_dB(peak->height_dB, state->backscatter_dB, state->pulse_ns);
}
