#pragma once

#include "platform/otdr/core/linefit.h"

#include <optional>

namespace otdr {

class FibreTrace;
struct PeakGroup;

/// Time constant of the receiver by the falling flank of a reflection, samples. Empty where the
/// peak is too low, overloads the receiver or is not alone.
[[nodiscard]] std::optional<double> timeConstantOf(const FibreTrace& trace, const PeakGroup& peak,
                                                   const Line& before);

} // namespace otdr
