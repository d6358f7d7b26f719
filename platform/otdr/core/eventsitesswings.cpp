// A receiver that recovers from an overload, or swings below the fibre: what seems to be gained or
// lost where it has done so is no event.

#include "platform/otdr/core/eventsites.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

/// A connector gains no more than this; of the gain of a receiver that recovers, so much is lost
/// again.
constexpr double kMostGain_dB = 0.5;
constexpr double kRecoveredPart = 0.5;

/// What swings a receiver below the fibre is over within so many pulses; until then the light falls
/// less than fibre does, by so many standard errors. What then rises faster than before, by so
/// many, is a gain. The port is bright enough for a swing.
constexpr double kSwingPulses = 12.0;
constexpr double kFlatErrors = 3.0;
constexpr double kRiseErrors = 4.0;
constexpr double kPort_dB = 10.0;

} // namespace

/// Whether a gain is what a receiver swings back by that a reflection, in front of an index, swung
/// below the fibre: in between light falls less than fibre does, or rises.
bool EventSites::isSwing(double behind, const Site& next) const
{
    const double w = fibreTrace->scale().pulse;
    if (next.peak || !(next.loss_dB < 0.0) || next.at > behind + kSwingPulses * w) {
        return false;
    }
    const auto between = fibreTrace->fit(behind, next.at);
    return between && between->line.samples >= kFewestSlopeSamples
        && between->line.slope_dB - usualSlope_dB
        > kFlatErrors * std::hypot(between->slopeError_dB, slopeSpread_dB)
        && !risesAtOnce(behind, next.at);
}

/// Whether light rises faster over the ramp of a gain than before it: a receiver swings back ever
/// more slowly. A place that was not fitted yet may lie behind the ramp; where too little of the
/// light since the reflection is left to compare with, nothing is known.
bool EventSites::risesAtOnce(double behind, double index) const
{
    const double w = fibreTrace->scale().pulse;
    const double gap = fibreTrace->gap();
    const double half = std::max(1.0, 0.5 * w);
    const double deviation =
        fibreTrace->noise().sigma_dB(index) * std::sqrt(fibreTrace->noise().correlation() / half);
    const double earliest = std::max(index - gap, behind + w + 2.0 * half);
    for (double at = index; at >= earliest; at -= half) {
        const double begin = std::max(behind, at - gap - half);
        const double level = fibreTrace->mean_dB(at - half, at);
        const double before = level - fibreTrace->mean_dB(begin, begin + half);
        const double ramp = fibreTrace->mean_dB(at + gap, at + gap + half) - level;
        const double longer = (gap + half) / (at - half - begin);
        const double error = deviation * std::hypot(1.0, longer, 1.0 + longer);
        if (ramp - longer * before > kRiseErrors * error) {
            return true;
        }
    }
    return false;
}

/// No connector gains so much: behind an overload the receiver recovers, and what seems to be lost
/// where it has done so is the other half of that gain.
void EventSites::dropRecoveries()
{
    if (!places.empty() && isSwing(first, places.front())) {
        first = clearOfTail(*fibreTrace, first, places.size() > 1 ? places[1].at : end, kPort_dB);
        places.erase(places.begin());
        if (!places.empty()) {
            measure(0);
        }
    }
    for (std::size_t k = 0; k + 1 < places.size();) {
        const Site& one = places[k];
        const Site& next = places[k + 1];
        const bool isRecovery = one.reflects() && one.loss_dB < -kMostGain_dB && !next.peak
            && next.loss_dB > kRecoveredPart * -one.loss_dB;
        if (!isRecovery && !(one.reflects() && isSwing(one.behind, next))) {
            ++k;
            continue;
        }
        places.erase(places.begin() + static_cast<std::ptrdiff_t>(k) + 1);
        measure(k);
        if (k + 1 < places.size()) {
            measure(k + 1);
        }
    }
}

} // namespace otdr
