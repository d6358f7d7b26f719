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

    /// The same where the height does not matter.
    [[nodiscard]] double operator()(double distance_m, double base_dB, int unused) const;

private:
    Reflectogram refl;
};
