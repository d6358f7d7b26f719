#pragma once

#include "platform/otdr/core/linefit.h"

#include <limits>
#include <optional>

namespace otdr {

class Trace;

/// Longest window in which instruments fit the fibre beside an event, m.
constexpr double kLongestWindow_m = 5000.0;

/// An event and how far the undisturbed fibre beside it reaches, all in samples. The defaults
/// mean "no neighbour": the ends of the trace are the limits.
struct EventSite
{
    double index = 0.0; ///< of the event's foot, where the trace begins to change
    double pulse = 0.0; ///< width of the pulse
    double leftLimit = 0.0; ///< where the fibre before the event begins: behind the event before,
                            ///< its dead zone included
    double rightLimit = std::numeric_limits<double>::infinity(); ///< index of the next event
    double longestWindow = std::numeric_limits<double>::infinity(); ///< kLongestWindow_m in samples
};

/// Loss of an event with the levels of the fibre on both of its sides.
///
/// A level is NaN where its line does not fit: an end of the fibre has one before it and none
/// behind.
struct EventLoss
{
    double loss_dB = std::numeric_limits<double>::quiet_NaN(); ///< positive when power falls; NaN
                                                               ///< where one of the levels is
    double in_dB = std::numeric_limits<double>::quiet_NaN(); ///< line before, at the event
    double out_dB = std::numeric_limits<double>::quiet_NaN(); ///< line behind, at the event
};

/// Where the fibre behind an event has settled, as a distance from the event in pulses: a step
/// takes one, the receiver's tail a little more. The median of what instruments store.
constexpr double kDeadZonePulses = 1.4;

/// The line through the fibre before an event: the samples leftLimit <= i < index, at most
/// longestWindow of them, those next to the event.
///
/// Empty with fewer than two samples, and where they scatter so much that they are noise and no
/// fibre (or hold an event themselves).
[[nodiscard]] std::optional<Line> fibreBefore(const Trace& trace, const EventSite& site);

/// The line through the fibre behind an event: from kDeadZonePulses pulses behind the index, or
/// from where the tail of a high peak has come down to the fibre, for at most longestWindow
/// samples, up to but without rightLimit. Empty as above.
[[nodiscard]] std::optional<Line> fibreBehind(const Trace& trace, const EventSite& site);

/// Loss of an event, one way: the lines before and behind it, both taken to its index.
[[nodiscard]] EventLoss eventLoss(const Trace& trace, const EventSite& site);

/// Loss from the start of a span to its end: the line behind the start, taken back to it, less the
/// line before the end, taken forward to it, dB. NaN where one does not fit.
[[nodiscard]] double spanLoss(const Trace& trace, const EventSite& start, const EventSite& end);

} // namespace otdr
