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

    /// The first index behind `from` at which light that was even for some pulses ends, with a
    /// reflection or without: only fibre ends, tails fade. Empty where light fades, or `last` comes
    /// first.
    [[nodiscard]] std::optional<double> endsSuddenly(double from, double last) const;

private:
    [[nodiscard]] bool isEvenBefore(double at) const;

    const FibreTrace& trace;
    double w;
    double threshold_dB;
};

} // namespace otdr
