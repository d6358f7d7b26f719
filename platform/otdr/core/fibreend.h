#pragma once

#include "platform/otdr/core/fibretrace.h"

namespace otdr {

/// The part of a record that shows fibre.
struct FibreExtent
{
    enum class End
    {
        Found, ///< light ends: open, cut or absorbed
        OutOfRange, ///< it fades into the noise, or the record ends before it
    };

    double launch = 0.0; ///< index where light begins
    double first = 0.0; ///< from here on the launch is over and the trace follows the fibre
    double end = 0.0; ///< foot of the end
    double lastFoot = 0.0; ///< of the reflections in the dead zone of the end, or the end
    double lastLit = 0.0; ///< behind this index there is only noise
    End kind = End::OutOfRange;
};

/// Looks for the first and the last of the fibre.
///
/// The end is the first place where the level falls by endThreshold_dB or more and no fibre
/// follows: nothing that is straight, falls as fibre does and stands above the noise. So a splitter
/// is not taken for an end, nor the tail of a strong reflection or an echo for fibre. What reflects
/// close behind it and is no echo is the end instead, unless it stands in the dead zone.
[[nodiscard]] FibreExtent findFibre(const FibreTrace& trace, double endThreshold_dB);

} // namespace otdr
