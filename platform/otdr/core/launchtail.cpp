#include "platform/otdr/core/launchtail.h"

#include "platform/otdr/core/risinglight.h"

#include <algorithm>

namespace otdr {

namespace {

/// A launch that overloads the receiver is held at its top and then falls by this much, within so
/// many pulses. Of light that is level, only what stands by less below it may be the top.
constexpr double kLaunchFall_dB = 3.0;
constexpr double kLongestOverloadPulses = 6.0;
constexpr double kTopFall_dB = 1.0;

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
    const double from = std::max(launch + trace.gap(), overloadOver(top));
    const double settled = trace.settledFrom(from, kLongestLaunchPulses * w, kLaunchTail_dB);
    if (const auto begin = fibreBeforeRise(trace, from, settled)) {
        return *begin;
    }
    return piece.firstBetween(launch + trace.gap(), settled, top - kTopFall_dB).value_or(settled);
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

/// Where the receiver is no longer held at its top; the port itself where it is not, or where what
/// rises still further is another reflection.
double LaunchTail::overloadOver(double top) const
{
    const double launch = trace.launch();
    const double last = launch + kLongestOverloadPulses * w;
    for (double i = risenTo(top, launch, last); i < last && level(i) <= top + kLaunchFall_dB;
         i += 1.0) {
        if (level(i) < top - kLaunchFall_dB) {
            return i;
        }
    }
    return launch;
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
