#include "platform/otdr/core/heldtop.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/fibretrace.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace otdr {

namespace {

/// A receiver without overload stays within 0.1 dB of its highest for one pulse at most.
constexpr double kTop_dB = 0.1;
constexpr double kLongTopPulses = 1.05;

/// It comes as near as this, or as rounding makes the same, to its highest when the rest of the
/// edge is over. What stands there for longer than the rest of the pulse, and this part of one, is
/// held there; but were it brighter by more than this, its flanks would hold it for more than a
/// pulse.
constexpr double kSame_dB = 0.002;
constexpr double kSamePulses = 0.2;
constexpr double kHidden_dB = 4.0;
constexpr double kStepPulses = 2.0;

/// Samples between the first and the last one beside the top that lie no more below it; a few more
/// than `most` where there are more.
double lengthOfTop(const Trace& trace, std::size_t top, double depth_dB, double most)
{
    const double least = trace.level_dB(top) - depth_dB;
    const auto reach = static_cast<std::size_t>(most) + 2;
    const std::size_t begin = top - std::min(top, reach);
    const std::size_t end = std::min(trace.size(), top + reach);
    std::size_t first = top;
    std::size_t last = top;
    while (first > begin && trace.level_dB(first - 1) >= least) {
        --first;
    }
    while (last + 1 < end && trace.level_dB(last + 1) >= least) {
        ++last;
    }
    return static_cast<double>(last - first);
}

/// By how much the levels within two pulses of the top are rounded, dB: half of their step, which
/// may be many counts.
double roundingAround_dB(const Trace& trace, std::size_t top, double pulse)
{
    const RawSamples& counts = trace.samples();
    const auto reach = static_cast<std::size_t>(kStepPulses * pulse) + 1;
    const std::size_t end = std::min(counts.size(), top + reach);
    int step = 0;
    for (std::size_t i = top - std::min(top, reach); i < end; ++i) {
        step = std::gcd(step, int {counts[i]} - int {counts[top]});
    }
    return 0.5 * step * trace.dbPerCount();
}

} // namespace

double hiddenAbove_dB(const FibreTrace& trace, std::size_t top, std::optional<double> flank)
{
    const Trace& samples = trace.samples();
    const double w = trace.shape().pulse();
    const double longest = kLongTopPulses * w + 1.0;
    if (lengthOfTop(samples, top, kTop_dB, longest) > longest) {
        return std::numeric_limits<double>::infinity();
    }
    if (samples.level_dB(top) >= trace.overload_dB()) {
        return kHidden_dB;
    }
    const double length = lengthOfTop(samples, top, kSame_dB, longest) - kSamePulses * w - 1.0;
    const double same = powerRatio(-std::max(kSame_dB, roundingAround_dB(samples, top, w)));
    const auto isLong = [&](const PulseShape& shape) {
        return length > std::max(0.0, w - shape.riseTo(same));
    };
    // Overload makes a receiver slower, and never faster, than it is: one as fast as the falling
    // flank could not stand there either.
    return isLong(trace.shape()) && (!flank || isLong(PulseShape(w, *flank))) ? kHidden_dB : 0.0;
}

} // namespace otdr
