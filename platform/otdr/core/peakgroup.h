#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <optional>
#include <vector>

namespace otdr {

/// What stands above the fibre at a reflection, or at several within one dead zone.
struct PeakGroup
{
    std::vector<double> feet; ///< index of each rise, in order; at least one
    std::vector<double> heights_dB; ///< of each above the fibre before the group
    double behind = 0.0; ///< from here on the fibre is undisturbed
    bool saturated = false;
};

/// Looks closely at a reflection near `at`, between the undisturbed fibre that begins at `from` and
/// what comes next at `to`.
[[nodiscard]] PeakGroup measurePeak(const FibreTrace& trace, double at, double from, double to);

/// Time constant of the receiver by the falling flank of a reflection, samples. Empty where the
/// peak is too low, overloads the receiver or is not alone.
[[nodiscard]] std::optional<double> timeConstantOf(const FibreTrace& trace, const PeakGroup& peak,
                                                   const Line& before);

} // namespace otdr
