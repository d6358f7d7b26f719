// What the noise of a fibre seems to be where events stand close to each other.

#include "platform/otdr/core/eventsearch.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace otdr {

namespace {

/// Noise that was thought to be larger by this factor hid events: where these stand close to each
/// other they bend the trace wherever the noise is measured.
constexpr double kOtherNoise = 2.0;

/// Closer is half as far as usual. Of what is found then no more than this part may be gains.
constexpr double kCloserReach = 0.5;
constexpr double kMostGained = 0.1;

} // namespace

/// The noise of the fibre between the places found so far. False where it is much as was thought.
bool EventSearch::learnNoise()
{
    const NoiseProfile& thought = fibre.noise();
    const bool mayHide = strayingHides(thought);
    const double unlike = thought.correlation() / (kOtherNoise * kOtherNoise);
    const bool mayBeUnlike = thought.isMoreThanRoundings() && unlike > 1.0; // it is no less
    if (!mayHide && !mayBeUnlike) {
        return false;
    }
    NoiseProfile shown = fibre.noiseBetween(disturbances(), ends.end);
    const bool hid = mayHide && kOtherNoise * shown.wander_dB() < thought.wander_dB();
    const bool wasUnlike = mayBeUnlike && shown.correlation() < unlike;
    if (!hid && !wasUnlike) {
        return false;
    }
    fibre.setNoise(std::move(shown));
    scannedForSteps.clear();
    return true;
}

/// Where what the fibre strays by would hide losses that are listed, it may be events that stand
/// within some pulses of each other: the noise is looked at closer, and what is found then stays if
/// it is what the fibre seemed to stray by.
void EventSearch::lookCloser()
{
    if (!strayingHides(fibre.noise()) || fibre.noise().isRounded()) {
        return;
    }
    const NoiseProfile thought = fibre.noise();
    const EventSites known = sites;
    fibre.setNoise(fibre.noiseBetween({}, ends.end, kCloserReach));
    forgetPlaces();
    findAll();
    NoiseProfile shown = fibre.noiseBetween(disturbances(), ends.end, kCloserReach);
    const bool explains = kOtherNoise * shown.wander_dB() < thought.wander_dB();
    if (!explains || !loses() || sites.sites().size() <= known.sites().size()) {
        fibre.setNoise(thought);
        sites = known;
        return;
    }
    fibre.setNoise(std::move(shown));
    scannedForSteps.clear();
    findAll();
}

/// Whether what was found is loss for the greater part: a fibre that waves rises as it falls.
bool EventSearch::loses() const
{
    double gained_dB = 0.0;
    double all_dB = 0.0;
    for (const Site& site : sites.sites()) {
        if (!std::isnan(site.loss_dB)) {
            gained_dB += std::max(0.0, -site.loss_dB);
            all_dB += std::abs(site.loss_dB);
        }
    }
    return gained_dB < kMostGained * all_dB;
}

/// Whether fibre strays by so much that losses which are listed are no more than that.
bool EventSearch::strayingHides(const NoiseProfile& noise) const
{
    return settings.significance * noise.wander_dB() > settings.loss_dB;
}

/// What the places found so far disturb.
std::vector<Disturbance> EventSearch::disturbances() const
{
    std::vector<Disturbance> events;
    for (const Site& site : sites.sites()) {
        events.push_back({site.at - 1.0, site.behind});
    }
    return events;
}

} // namespace otdr
