#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <optional>

namespace otdr {

// A loss close behind brighter light looks like that light's tail: the fibre in front of it stands
// above the fibre that follows. But a tail falls ever less, and a loss falls at once.

/// Whether light goes on evenly from an index, for a pulse, and then falls at once: fibre in front
/// of a loss, as plain as a single look tells.
[[nodiscard]] bool isBeforeLoss(const FibreTrace& trace, double index);

/// The index at which a loss begins, to half a pulse, that explains what stands above the fibre
/// from `from` on, up to `to` where that is undisturbed, far better than any tail does. The fibre
/// is seen up to `last` at most. Empty where there is none, and where light rises in between.
[[nodiscard]] std::optional<double> lossInTail(const FibreTrace& trace, double from, double to,
                                               double last);

} // namespace otdr
