#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/result.h"
#include "platform/otdr/event.h"
#include "platform/otdr/tracestate.h"

#include <string>
#include <vector>

namespace evfind {

/// A trace and what was found on it.
struct Findings
{
    std::string file; ///< name as it was given
    TraceState trace; ///< with all that was found as its events
    otdr::Detection detection;
    KeyEventsBlock figures; ///< of the span, as a measurement of the trace would tell them
    EventList events; ///< without the fibre sections between them; in order along the fibre
    std::vector<long> samples; ///< of each event: index in the record, from 0
};

/// Reads a trace file or a snapshot and finds its events.
///
/// Errors as those of loadTrace(), and Damaged for a trace that does not tell the width of its
/// pulse or the spacing of its samples: no events would then read as a fibre without events.
[[nodiscard]] otdr::Result<Findings> findEvents(const std::string& path);

} // namespace evfind
