#pragma once

#include "platform/otdr/core/eventdetection.h"

#include <vector>

namespace otdr {

/// Marks the reflections that are echoes: light that went to a reflection, back to one before it,
/// and on to the same or another.
///
/// Such an echo stands as far behind one of them as the other stands behind the first, loses no
/// light, and is no stronger than all three allow; one that overloads the receiver may be as strong
/// as glass in air. Events are in order, indices in samples; port is the index
/// of the instrument's connector, which reflects too.
void markEchoes(std::vector<DetectedEvent>& events, double pulse, double port);

} // namespace otdr
