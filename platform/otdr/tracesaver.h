#pragma once

#include "platform/otdr/core/sor.h"
#include "platform/otdr/tracestate.h"

/// The trace file of a trace: the file it came from with what was changed since, or a new one.
[[nodiscard]] otdr::sor::File toSorFile(const TraceState& state);
