#pragma once

#include "platform/otdr/core/loss.h"
#include "platform/otdr/sordata.h"
#include "platform/otdr/tracestate.h"

#include <vector>

/// Optical return loss of a stretch of fibre between two distances, in either order, seen from its
/// nearer end, dB. NaN where it cannot be told.
[[nodiscard]] double stretchReturnLoss_dB(const TraceState& state, double a_m, double b_m);

/// Optical return loss of the fibre between two events, seen from the nearer one, dB. Where they
/// hide it, it is that of a fibre that loses told_dB; NaN where that is not known either.
[[nodiscard]] double sectionReturnLoss_dB(const TraceState& state, const Event& from,
                                          const Event& to, double told_dB = Event::kUnknown);

/// End-to-end loss and return loss of a trace, from 0 m to the end of its fibre. Without a known
/// end the loss is unknown and the return loss is that of the whole record; with one so near that
/// no fibre shows before it, both are unknown.
///
/// Where the events tell the levels beside them these are used, so that the losses of a list add up
/// to that of the span.
[[nodiscard]] KeyEventsBlock keyFigures(const TraceState& state);

/// A neighbour nearer than this many pulses is the event itself.
constexpr double kSameEventPulses = 0.5;

/// Where the events of a trace stand, indices of the record.
[[nodiscard]] std::vector<double> placesOf(const TraceState& state);

/// The place of an event between its neighbours on the trace, for line fits. index counts samples
/// of the record.
[[nodiscard]] otdr::EventSite siteOf(const TraceState& state, double index);

/// The same between other places, indices of the record.
[[nodiscard]] otdr::EventSite siteAmong(const TraceState& state, double index,
                                        const std::vector<double>& places);
