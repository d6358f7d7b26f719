#pragma once

#include <cmath>

namespace testing_support {

/// Return loss of a uniform fibre without reflections, by the integral over its backscatter, dB.
/// backscatter_dB: at 1 ns. metresPerNs: of fibre for a nanosecond there and back.
inline double uniformReturnLoss_dB(double length_m, double perKilometre_dB, double backscatter_dB,
                                   double metresPerNs)
{
    const double perMetre =
        2.0 * perKilometre_dB / 1000.0 * std::log(10.0) / 10.0; // there and back
    const double nanoseconds = -std::expm1(-perMetre * length_m) / perMetre / metresPerNs;
    return -backscatter_dB - 10.0 * std::log10(nanoseconds);
}

} // namespace testing_support
