#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <optional>

namespace otdr {

/// Follows the light behind a fall: down the flank of a peak, down a slow receiver's tail, and to
/// where it ends.
class LightBehind
{
public:
    /// Refers to the trace. threshold_dB: a change of so much is sudden.
    LightBehind(const FibreTrace& trace, double threshold_dB);

    /// Behind the top of a peak that rises near an index, where light has come down again; the
    /// index itself where nothing rises.
    [[nodiscard]] double peakOver(double at) const;

    /// Where the tail of a peak, from `at` on, has come down to what stood before the peak, in
    /// front of `from`; `at` where something else stands in between, or no tail.
    [[nodiscard]] double tailOver(double from, double at, double last) const;

    /// Where light that is even ends behind `from`, with a reflection or without, and stays away
    /// for some pulses; the end lies there or up to five behind. Only fibre ends, tails
    /// fade: empty where light fades, or `last` comes first. What stands where the fall that was
    /// seen in front, at `fall`, has its echo is no end.
    [[nodiscard]] std::optional<double> endsSuddenly(double fall, double from, double last) const;

private:
    [[nodiscard]] double flankOver(double top) const;
    [[nodiscard]] bool isEcho(double fall, double at) const;
    [[nodiscard]] bool isEvenBefore(double at) const;

    const FibreTrace& trace;
    double w;
    double step; ///< from one index that is looked at to the next
    double threshold_dB;
};

} // namespace otdr
