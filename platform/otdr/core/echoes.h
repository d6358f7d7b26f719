#pragma once

#include "platform/otdr/core/eventdetection.h"

#include <vector>

namespace otdr {

/// Marks the reflections that are echoes: light that went between two reflections and back.
///
/// An echo of the reflections i and j stands as far behind j as j behind i, loses no light, and is
/// no stronger than both of them allow. Events are in order, indices in samples; port is the index
/// of the instrument's connector, which reflects too.
void markEchoes(std::vector<DetectedEvent>& events, double pulse, double port);

} // namespace otdr
