#include "platform/otdr/core/launchtail.h"

#include "platform/otdr/core/lossintail.h"
#include "platform/otdr/core/risinglight.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>

namespace otdr {

namespace {

/// A launch that overloads the receiver is held at its top and then falls by this much, within so
/// many pulses. Of light that is level, only what stands by less below it may be the top.
constexpr double kLaunchFall_dB = 3.0;
constexpr double kLongestOverloadPulses = 6.0;
constexpr double kTopFall_dB = 1.0;

/// What stays up for longer than this is fibre if it ends at once and does not stand at its top but
/// for its rounding: an overloaded receiver does, and comes down slowly.
constexpr double kLongTopPulses = 1.5;
constexpr double kSame_dB = 0.002;
constexpr double kSameCounts = 1.5;
constexpr double kEndPulses = 0.6;
constexpr double kEndSamples = 2.0;

/// Fibre in front of a loss is looked for in steps of so many pulses.
constexpr double kStepPulses = 0.25;

/// No light stands as high.
constexpr double kAny_dB = 1e9;

/// Lines beside the first event bear this much of the launch, dB: fibre close to it is worth more.
constexpr double kLaunchTail_dB = 0.01;

} // namespace

LaunchTail::LaunchTail(const FibreTrace& trace, double threshold_dB)
    : trace(trace)
    , piece(trace, threshold_dB, 0.0)
    , w(trace.scale().pulse)
{
}

double LaunchTail::over() const
{
    const double launch = trace.launch();
    const double top = highest_dB(trace, launch, launch + trace.gap());
    const double risen = risenTo(top, launch, launch + kLongestOverloadPulses * w);
    const auto fallen = fallBehind(top, risen);
    const bool isHeld = fallen && !isFibre(top, risen, *fallen);
    const double from = std::max(launch + trace.gap(), isHeld ? *fallen : launch);
    const double settled = trace.settledFrom(from, kLongestLaunchPulses * w, kLaunchTail_dB);
    if (const auto begin = fibreBeforeRise(trace, from, settled)) {
        return *begin;
    }
    const double belowTop_dB = top - kTopFall_dB;
    if (const auto begin = fibreBeforeLoss(settled, isHeld ? belowTop_dB : kAny_dB)) {
        return *begin;
    }
    // Level light as high as the top may be that, but for light that falls and was not held.
    const double most_dB = fallen && !isHeld ? kAny_dB : belowTop_dB;
    return piece.firstBetween(launch + trace.gap(), settled, most_dB).value_or(settled);
}

/// Where even light below a level begins that falls at once: fibre in front of a loss.
std::optional<double> LaunchTail::fibreBeforeLoss(double settled, double most_dB) const
{
    const double looked = settled + 2.0 * w + trace.gap();
    if (!risesBetween(trace, trace.launch(), looked).empty()) {
        return std::nullopt; // the top of a reflection ends as suddenly
    }
    const double last = std::min(trace.size(), settled + kLongestLaunchPulses * w);
    const double step = std::max(1.0, kStepPulses * w);
    bool isNext = false; // it was fibre from the step before on, which is a pulse of it and more
    for (double at = trace.launch() + trace.gap(); at < settled; at += step) {
        const bool isTop = trace.mean_dB(at, at + w) > most_dB;
        const bool isPlain = !isTop && isBeforeLoss(trace, at);
        if (isPlain && isNext) {
            return at - step;
        }
        isNext = isPlain;
        if (!isTop && lossInTail(trace, at, settled, last).value_or(at) >= at + w) {
            return at;
        }
    }
    return std::nullopt;
}

/// Level of the sample at an index, dB.
double LaunchTail::level(double index) const
{
    return trace.mean_dB(index, index + 1.0);
}

/// The first index from one to another at which the light has risen to a level.
double LaunchTail::risenTo(double level_dB, double from, double to) const
{
    while (from < to && level(from) < level_dB) {
        from += 1.0;
    }
    return from;
}

/// Where light falls behind its top, soon enough for one that an overload holds there; empty where
/// it does not, or where what rises still further is another reflection.
std::optional<double> LaunchTail::fallBehind(double top, double risen) const
{
    const double last = trace.launch() + kLongestOverloadPulses * w;
    for (double i = risen; i < last && level(i) <= top + kLaunchFall_dB; i += 1.0) {
        if (level(i) < top - kLaunchFall_dB) {
            return i;
        }
    }
    return std::nullopt;
}

/// Whether what stands at its top from one index and has fallen at another is fibre.
bool LaunchTail::isFibre(double top, double risen, double fallen) const
{
    const double same_dB = std::max(kSame_dB, kSameCounts * trace.samples().dbPerCount());
    const double highest = highest_dB(trace, risen, fallen);
    double held = 0.0;
    double last = risen;
    for (double i = risen; i < fallen; i += 1.0) {
        held += highest - level(i) <= same_dB ? 1.0 : 0.0;
        last = top - level(i) <= kTopFall_dB ? i : last;
    }
    const double length = fallen - risen;
    return length > kLongTopPulses * w && held <= 0.5 * length
        && fallen - last <= kEndPulses * w + kEndSamples;
}

bool LaunchTail::reaches(double foot, double to) const
{
    const double from = topOver(foot, to);
    if (piece.isSeenBetween(from, to)) {
        return false;
    }
    const bool isHeld = from > foot + kLongestOverloadPulses * w;
    return foot > trace.launch() || (!isHeld && to - from >= w + piece.shortest());
}

/// Where light falls from the top of a reflection that may hold the receiver there.
double LaunchTail::topOver(double foot, double to) const
{
    const double top = highest_dB(trace, foot, foot + trace.gap());
    double from = risenTo(top, foot, to);
    // What is outshone further on does not hold the receiver at its top.
    const bool isOutshone = highest_dB(trace, from, to) > top + kLaunchFall_dB;
    while (!isOutshone && from < to && level(from) > top - kTopFall_dB) {
        from += 1.0;
    }
    return from;
}

} // namespace otdr
