#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <vector>

namespace otdr {

/// A place where the trace may have an event, as a scan has found it.
struct Candidate
{
    double at = 0.0; ///< index of its foot, to about a quarter of a pulse
    double statistic = 0.0; ///< how many standard errors it stands out by
    double window = 0.0; ///< samples on each side that show it
};

/// Places where the level changes for good, between `from` and `to`, in order.
///
/// Two lines, before the place and behind the ramp of the pulse, each with a slope of its own, at
/// windows of 1.25 dead zones and then twice as long each time: the statistic is their distance
/// over its standard error. The strongest are taken first; a window that holds a stronger one says
/// nothing. Cost: proportional to to - from.
[[nodiscard]] std::vector<Candidate> scanSteps(const FibreTrace& trace, double from, double to,
                                               double threshold);

/// Places where the level stands above the fibre on both sides for about a pulse: reflections, in
/// order of strength.
[[nodiscard]] std::vector<Candidate> scanPeaks(const FibreTrace& trace, double from, double to,
                                               double threshold);

} // namespace otdr
