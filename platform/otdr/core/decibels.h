#pragma once

#include <cmath>

namespace otdr {

/// A change of power, in nepers, for each one-way decibel of a trace: ln(10) / 5.
constexpr double kNepersPerDb = 0.46051701859880914;

/// Decibels of a trace for a small relative change of power, 5 / ln(10).
constexpr double kDbPerNeper = 1.0 / kNepersPerDb;

/// How many times more light so many one-way decibels of a trace are: 10^(level / 5), since light
/// passes the fibre twice.
[[nodiscard]] inline double powerRatio(double level_dB)
{
    return std::exp(level_dB * kNepersPerDb);
}

/// The inverse, one-way decibels of a trace: -inf for 0, NaN for a negative ratio.
[[nodiscard]] inline double levelOfRatio_dB(double ratio)
{
    return 5.0 * std::log10(ratio);
}

} // namespace otdr
