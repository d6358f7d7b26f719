#pragma once

#include <cmath>

namespace otdr {

/// How many times more light so many one-way decibels of a trace are: 10^(level / 5), since light
/// passes the fibre twice.
[[nodiscard]] inline double powerRatio(double level_dB)
{
    return std::pow(10.0, level_dB / 5.0);
}

/// The inverse, one-way decibels of a trace: -inf for 0, NaN for a negative ratio.
[[nodiscard]] inline double levelOfRatio_dB(double ratio)
{
    return 5.0 * std::log10(ratio);
}

} // namespace otdr
