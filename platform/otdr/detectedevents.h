#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/event.h"
#include "platform/otdr/tracestate.h"

/// What the search must know of how a trace was measured.
[[nodiscard]] otdr::Measurement measurementOf(const TraceState& state);

/// Finds the events of a trace, see otdr::detectEvents, with the thresholds of its file where it
/// has one. Nothing on a state without a trace.
[[nodiscard]] otdr::Detection detectionOf(const TraceState& state);

/// The same with these settings.
[[nodiscard]] otdr::Detection detectionOf(const TraceState& state,
                                          const otdr::DetectionSettings& settings);

/// Whether it is part of an event list: an echo is not, and not the end of a record before that of
/// the fibre.
[[nodiscard]] bool isListed(const otdr::DetectedEvent& found);

/// What was found as an event list: the span start at 0 m, then events and the fibre sections
/// between them, in order along the fibre. Echoes are left out: nothing is there. Without an end
/// where the record does not reach that of the fibre.
[[nodiscard]] EventList eventListOf(const otdr::Detection& detection, const TraceState& state);
