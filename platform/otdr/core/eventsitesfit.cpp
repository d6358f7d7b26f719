// What stands at a place, by the shapes of a ramp and of a reflection.

#include "platform/otdr/core/eventfit.h"
#include "platform/otdr/core/eventsites.h"
#include "platform/otdr/core/lossintail.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace otdr {

namespace {

/// Losses or gains so close, in dead zones, may be one event; one explains them where it leaves no
/// more than noise, or this part of the change.
constexpr double kPairGaps = 2.0;
constexpr double kPairSigmas = 1.5;
constexpr double kPairPart = 0.03;

/// So close to a place, in dead zones, scans hardly tell another one. A line that runs over a
/// change there leaves so many times what the ramp of one does.
constexpr double kScannedGaps = 8.0;
constexpr double kLineLeaves = 2.0;

/// A change so close to a place is tried at so many places a pulse; its ramp tells where it is.
constexpr double kPlacesPerPulse = 8.0;

/// Where the fibre behind a tail may begin is tried in steps of so many pulses.
constexpr double kTailStepPulses = 0.5;

/// A loss of so much is a splitter's and one, also where the receiver is slower than it is thought.
constexpr double kSplitter_dB = 3.0;
constexpr double kReceivers[] = {1.0, 1.8, 3.2, 5.8};

/// Light that is too weak to be listed is believed where it leaves no more than noise or, from this
/// height on, than this part of it.
constexpr double kGlowSigmas = 1.5;
constexpr double kPlain_dB = 0.2;
constexpr double kGlowPart = 0.1;

/// Places are moved so often at most, while one of them moves by more than this, samples.
constexpr int kRounds = 3;
constexpr double kSettled = 0.5;

} // namespace

/// The foot of the one event that explains two neighbours, where one does: a single ramp, or, of a
/// gain with a loss behind it, a reflection between them.
std::optional<double> EventSites::footOfBoth(const Site& first, const Site& second) const
{
    const double middle = 0.5 * (first.at + second.at);
    const Line& before = first.left->line;
    const Line& behind = second.right->line;
    const double sigma = kPairSigmas * fibreTrace->noise().sigma_dB(middle);
    const double change = std::abs(before.at(middle) - behind.at(middle));
    for (const double slower : kReceivers) {
        const PulseShape shape(fibreTrace->scale().pulse,
                               slower * fibreTrace->scale().timeConstant);
        const StepFit step =
            fitStep(*fibreTrace, shape, middle, kPairGaps * fibreTrace->gap(), before, behind);
        if (step.scatter_dB < std::max(sigma, kPairPart * change)) {
            return step.foot;
        }
        if (change < kSplitter_dB) {
            break;
        }
    }
    if (first.loss_dB < 0.0 && second.loss_dB > 0.0) {
        const PeakFit peak = fitPeak(*fibreTrace, middle, before, behind);
        if (peak.scatter_dB < std::max(sigma, kPairPart * std::max(change, peak.height_dB))) {
            return peak.foot;
        }
    }
    return std::nullopt;
}

void EventSites::mergePairs()
{
    const double gap = fibreTrace->gap();
    for (std::size_t k = 0; k + 1 < places.size(); ++k) {
        const Site& first = places[k];
        const Site& second = places[k + 1];
        if (first.peak || second.peak || second.at - first.at > kPairGaps * gap || !first.left
            || !second.right) {
            continue;
        }
        const std::optional<double> foot = footOfBoth(first, second);
        if (foot && *foot > fibreFrom(k) + kLevelSamples) {
            Site one;
            one.standAt(*foot, gap);
            places[k] = one;
            places.erase(places.begin() + static_cast<std::ptrdiff_t>(k) + 1);
            measure(k);
        }
    }
    measure();
}

/// The place of a stretch where two levels with the usual slope are furthest apart, by so many
/// standard errors at least.
std::optional<Site> EventSites::changeWithin(const Stretch& stretch, double significance) const
{
    const auto [from, to] = stretch;
    const double gap = fibreTrace->gap();
    std::optional<Site> change;
    const double step = std::max(1.0, std::floor(fibreTrace->scale().pulse / kPlacesPerPulse));
    for (double at = from + kLevelSamples; at + gap + kLevelSamples <= to; at += step) {
        const double before = at - from;
        const double behind = to - at - gap;
        const double apart = gap + 0.5 * (before + behind);
        const double off_dB = fibreTrace->mean_dB(from, at) - fibreTrace->mean_dB(at + gap, to)
            + usualSlope_dB * apart;
        const double level_dB = fibreTrace->noise().sigma_dB(at)
            * std::sqrt(fibreTrace->noise().correlation() * (1.0 / before + 1.0 / behind));
        const double statistic = std::abs(off_dB) / level_dB;
        if (statistic > significance) {
            significance = statistic;
            change.emplace();
            change->standAt(at, gap);
        }
    }
    return change;
}

/// Whether a ramp at a place explains a stretch far better than one line through all of it; moves
/// the place to its foot.
bool EventSites::isRampWithin(const Stretch& stretch, Site& site) const
{
    const auto [from, to] = stretch;
    const auto whole = fibreTrace->fit(from, to);
    const auto left = fibreTrace->fitWithSlope(from, site.at, usualSlope_dB, slopeSpread_dB);
    const auto right = fibreTrace->fitWithSlope(site.behind, to, usualSlope_dB, slopeSpread_dB);
    if (!whole || !left || !right) {
        return false;
    }
    const double gap = fibreTrace->gap();
    const StepFit ramp =
        fitStep(*fibreTrace, fibreTrace->shape(), site.at, gap, left->line, right->line);
    site.standAt(ramp.foot, gap);
    return whole->line.sigma_dB > kLineLeaves * ramp.scatter_dB;
}

void EventSites::findCloseChanges(double significance)
{
    std::vector<Site> found;
    const double longest = kScannedGaps * fibreTrace->gap();
    for (std::size_t k = 0; k <= places.size(); ++k) {
        const double from = lineFrom(k);
        const double to = fibreTo(k);
        std::vector<Stretch> close {{from, std::min(to, from + longest)}};
        if (to - from > longest) {
            close.emplace_back(to - longest, to);
        }
        for (const Stretch& stretch : close) {
            auto change = changeWithin(stretch, significance);
            if (change && isRampWithin(stretch, *change)) {
                found.push_back(*change);
            }
        }
    }
    add(found);
}

/// What seems to be a tail, from an index to another, is looked at as far as the fibre that follows
/// may reach towards its beginning: the nearer that is seen, the better.
std::optional<double> EventSites::lossInTailOf(std::size_t k) const
{
    const double from = fibreFrom(k);
    const double step = kTailStepPulses * fibreTrace->scale().pulse;
    std::optional<double> loss;
    for (double to = from + step; to < lineFrom(k) && !loss; to += step) {
        loss = lossInTail(*fibreTrace, from, to, fibreTo(k));
    }
    return loss;
}

void EventSites::findLossesInTails()
{
    std::vector<Site> found;
    for (std::size_t k = 1; k <= places.size(); ++k) {
        if (const auto at = lossInTailOf(k)) {
            found.emplace_back();
            found.back().standAt(*at, fibreTrace->gap());
        }
    }
    add(found);
}

/// Moves a place, within `reach`, to where it fits best between its lines and within these limits.
void EventSites::refine(Site& site, double reach, double least, double most) const
{
    if (site.peak) {
        refinePeak(site, least, most);
        return;
    }
    const Line& before = site.left->line;
    const Line& behind = site.right->line;
    const double foot = site.glows
        ? fitPeak(*fibreTrace, site.at, before, behind).foot
        : fitStep(*fibreTrace, fibreTrace->shape(), site.at, reach, before, behind).foot;
    if (foot > least && foot < most) {
        site.standAt(foot, fibreTrace->gap());
    }
}

void EventSites::refine(double reach)
{
    double moved = std::numeric_limits<double>::infinity();
    for (int round = 0; round < kRounds && moved > kSettled; ++round) {
        moved = 0.0;
        for (std::size_t k = 0; k < places.size(); ++k) {
            Site& site = places[k];
            if (!site.left || !site.right) {
                continue;
            }
            const double before = site.at;
            const double least = fibreFrom(k) + kLevelSamples;
            const double next = k + 1 < places.size() ? places[k + 1].at : end;
            refine(site, reach, least, next - fibreTrace->gap());
            moved = std::max(moved, std::abs(site.at - before));
        }
        measure();
    }
}

void EventSites::dropLowPeaks(double leastHeight_dB)
{
    for (Site& site : places) {
        const bool isLow = site.peak && site.peak->feet.size() == 1
            && site.peak->heights_dB.front() < leastHeight_dB;
        if (isLow) {
            site.peak.reset();
            site.peakStatistic = 0.0;
        }
    }
}

void EventSites::hideLowPeaks(double leastHeight_dB)
{
    for (Site& site : places) {
        if (!site.peak) {
            continue;
        }
        dropLowFeet(*site.peak, leastHeight_dB);
        site.glows = site.peak->height_dB() < leastHeight_dB;
        if (site.glows && std::isnan(site.loss_dB)) { // nothing would be told of it
            site.glows = false;
            site.peak.reset();
        }
    }
}

void EventSites::findReflections(double leastHeight_dB, double significance)
{
    for (std::size_t k = 0; k < places.size(); ++k) {
        Site& site = places[k];
        if (site.peak || !site.left || !site.right) {
            continue;
        }
        const Line& before = site.left->line;
        const Line& behind = site.right->line;
        const PeakFit fit = fitPeak(*fibreTrace, site.at, before, behind);
        const double height = fit.height_dB / fit.error_dB;
        const double statistic = height > significance
            ? std::min(height, gainOverRamp(*fibreTrace, fit, site.at, before, behind))
            : height;
        const double most = (k + 1 < places.size() ? places[k + 1].at : end) - fibreTrace->gap();
        const bool isLight =
            statistic > significance && fit.foot < most && fit.foot > fibreFrom(k) + kLevelSamples;
        const bool isHigh = fit.height_dB > leastHeight_dB;
        // What fibre itself strays by looks like light, but for its shape.
        const double sigma = fibreTrace->noise().sigma_dB(fit.foot);
        const double part = fit.height_dB > kPlain_dB ? kGlowPart * fit.height_dB : 0.0;
        site.glows = isLight && !isHigh && fit.scatter_dB < std::max(kGlowSigmas * sigma, part);
        if (site.glows || (isLight && isHigh)) {
            site.standAt(fit.foot, fibreTrace->gap());
        }
        if (isLight && isHigh) {
            site.peak = PeakGroup {{fit.foot}, {fit.height_dB}, site.behind};
            site.peakStatistic = statistic;
        }
    }
    measure();
}

void EventSites::refinePeak(Site& site, double least, double most) const
{
    PeakGroup& peak = *site.peak;
    if (!peak.isLow()) {
        return;
    }
    const PeakFit fit = fitPeak(*fibreTrace, site.at, site.left->line, site.right->line);
    if (fit.foot > least && fit.foot < most && fit.height_dB > 0.0) {
        site.at = fit.foot;
        peak.feet.front() = fit.foot;
        peak.heights_dB.front() = fit.height_dB;
        peak.seen.clear();
        peak.behind = std::max(peak.behind, fit.foot + fibreTrace->gap());
        site.behind = peak.behind;
    }
}

} // namespace otdr
