#pragma once

#include "platform/otdr/core/result.h"
#include "programs/wfgather/settings.h"
#include "programs/wfgather/tracesource.h"

#include <memory>
#include <vector>

namespace gather {

/// Measuring time of one refresh, s.
constexpr double kRefresh_s = 1.0;

/// The same in realtime, where each refresh is an average of its own.
constexpr double kRealtimeRefresh_s = 0.3;

/// The traces of a run, in order: one for each wavelength of the fibre, or the one of the file that
/// is replayed. Errors of the fibre file and the trace file.
[[nodiscard]] otdr::Result<std::vector<std::unique_ptr<TraceSource>>>
sourcesFor(const Settings& settings);

} // namespace gather
