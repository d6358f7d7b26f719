#pragma once

#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/event.h"
#include "programs/wfgather/tracesource.h"

namespace gather {

/// Finds the events of a measured trace, with the fibre sections between them: what a reader of the
/// snapshot that knows the announced parameters finds as well.
[[nodiscard]] EventList analyse(const otdr::Snapshot& snapshot, const TraceParams& announced);

} // namespace gather
