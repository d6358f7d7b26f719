#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <vector>

namespace otdr {

/// The feet of the reflections between two indices, in light that is seen: only glass sends back
/// more light than before, the tail of a receiver that was overloaded does not. Echoes of what
/// stands in front are none. sudden_dB: what rises by so much may stay, or the receiver may only be
/// back from a swing below the light.
[[nodiscard]] std::vector<double> reflectionFeet(const FibreTrace& trace, double from, double to,
                                                 double sudden_dB);

} // namespace otdr
