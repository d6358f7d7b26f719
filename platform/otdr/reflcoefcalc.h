#pragma once

#include "platform/otdr/reflectogram.h"

/// Reflectance of an event from the height of its peak above the backscatter.
class ReflcoefCalc
{
public:
    explicit ReflcoefCalc(const Reflectogram& refl);

    /// Reflectance of the event at distance_m, dB, from its highest sample within the pulse above
    /// the level base_dB of the fibre before it. peak_dB gets the peak's height above the base. NaN
    /// where there is no peak.
    double operator()(double distance_m, double base_dB, double& peak_dB) const;

    /// The same for an event that is told in whole metres, cut off: it may stand up to a metre
    /// farther on, which is more than a short pulse.
    [[nodiscard]] double operator()(double distance_m, double base_dB, int unused) const;

private:
    /// distance_m and cut_m behind it: between them stands the event.
    double reflectanceWithin(double distance_m, double cut_m, double base_dB,
                             double& peak_dB) const;

    Reflectogram refl;
};
