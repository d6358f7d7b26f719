#include "platform/otdr/core/eventsites.h"

#include "platform/otdr/core/peakheights.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace otdr {

namespace {

/// Shortest stretch that tells its own slope, pulses, and samples.
constexpr double kOwnSlopePulses = 1.0;
constexpr double kOwnSlopeSamples = 8.0;

/// Slopes of fibres of one link differ by about this much, dB/km, and where no kilometre is known
/// by this part.
constexpr double kSlopeSpread_dBPerKm = 0.03;
constexpr double kSlopeSpreadPart = 0.15;

/// A piece of fibre tells its slope no better than to this part of what fibres differ by.
constexpr double kSlopeDiffers = 0.1;

/// The foot of an event without a reflection is known to about a sample: what may lie behind it is
/// not taken for the fibre before it.
constexpr double kFootMargin = 1.0;

/// A reflection has risen by a part of its height before it stands out: of one that does so slowly,
/// that part, of a few decibels perhaps, lies so many samples or pulses in front of its foot.
constexpr double kRisingSamples = 2.0;
constexpr double kRisingPulses = 0.15;

/// So has the light at the end fallen before it stands out.
constexpr double kFallenPulses = 0.2;

/// Lines on both sides stray; they average over more than a pulse or two.
constexpr double kWanders = 1.0;

/// A change too small to be listed that is this clear still divides the fibre: lines that ran over
/// it would tell wrong losses at both of its neighbours. It stands out by so many standard errors,
/// and far more than the fibre strays by within two pulses: over kilometres it strays further. On
/// both sides there are so many dead zones: what is left of a tail bends a line, too, but by less
/// than what is plain.
constexpr double kBorder_dB = 0.004;
constexpr double kPlainBorder_dB = 0.05;
constexpr double kPlainBorderGaps = 1.0;
constexpr double kBorderGaps = 4.0;
constexpr double kBorderWanders = 20.0;

/// A line that begins far behind its event is so many times as long as it is told beyond itself, if
/// what is added differs from it in level and slope by no more than so many standard errors.
constexpr double kReaches = 4.0;
constexpr double kSameErrors = 2.5;

} // namespace

void Site::standAt(double index, double gap)
{
    at = index;
    behind = index + gap;
}

bool Site::reflects() const
{
    return peak && !glows;
}

double Site::foot() const
{
    return reflects() ? peak->feet.front() : at;
}

double Site::statistic() const
{
    return error_dB > 0.0 ? std::abs(loss_dB) / error_dB : 0.0;
}

EventSites::EventSites(const FibreTrace& trace, double first, double end)
    : fibreTrace(&trace)
    , first(first)
    , end(end)
{
    findUsualSlope();
}

void EventSites::findUsualSlope()
{
    takeUsualSlope(fibreTrace->usualSlope_dB(first, end));
    const double kilometre = fibreTrace->scale().kilometre;
    slopeSpread_dB = kilometre > 0.0 ? kSlopeSpread_dBPerKm / kilometre
                                     : kSlopeSpreadPart * std::abs(usualSlope_dB);
}

/// Where events stand close everywhere, what lies between them seems to fall by their losses.
void EventSites::takeUsualSlope(double slope_dB)
{
    usualSlope_dB = std::max(slope_dB, -fibreTrace->scale().steepest_dB);
}

double EventSites::fibreFrom(std::size_t k) const
{
    return k == 0 ? first : places[k - 1].behind;
}

double EventSites::fibreTo(std::size_t k) const
{
    const bool isFoot = k < places.size();
    const double foot = isFoot ? places[k].at : end;
    const bool isPeak = isFoot && places[k].peak;
    const double rising = std::max(kRisingSamples, kRisingPulses * fibreTrace->scale().pulse);
    const double fallen = std::max(kFootMargin, kFallenPulses * fibreTrace->scale().pulse);
    return foot - (isPeak ? rising : isFoot ? kFootMargin : fallen);
}

double EventSites::lineFrom(std::size_t k) const
{
    return k == 0 ? first : std::max(places[k - 1].behind, places[k - 1].clear);
}

std::optional<SideLine> EventSites::fibre(std::size_t k) const
{
    return side(lineFrom(k), fibreTo(k));
}

void EventSites::add(const std::vector<Site>& more)
{
    for (const Site& one : more) {
        const auto next =
            std::lower_bound(places.begin(), places.end(), one.at,
                             [](const Site& site, double at) { return site.at < at; });
        const bool isFree = (next == places.begin() || std::prev(next)->behind <= one.at + 1.0)
            && (next == places.end() || one.behind <= next->at + 1.0);
        if (isFree) {
            places.insert(next, one);
        }
    }
}

std::optional<SideLine> EventSites::side(double from, double to) const
{
    const double samples = to - from;
    if (samples < kLevelSamples) {
        return std::nullopt;
    }
    if (samples >= std::max(kOwnSlopeSamples, kOwnSlopePulses * fibreTrace->scale().pulse)) {
        const auto own = fibreTrace->fit(from, to);
        if (own && own->slopeError_dB < slopeSpread_dB) {
            return own;
        }
    }
    return fibreTrace->fitWithSlope(from, to, usualSlope_dB, slopeSpread_dB);
}

/// The line through the fibre from an index on, as far as lines go and not beyond another.
std::optional<SideLine> EventSites::lineBehind(double from, double to) const
{
    return side(from, std::min(to, from + fibreTrace->scale().longestWindow));
}

/// By how much the light at a place, with its line before it, outshines the fibre behind it, up to
/// `to`: by the reflection and by what is lost there.
double EventSites::brightness_dB(const Site& site, double to) const
{
    const double height = site.peak ? site.peak->height_dB() : 0.0;
    const auto behind = lineBehind(site.behind, to);
    const double lost = site.left && behind ? site.left->at(site.at) - behind->at(site.at) : 0.0;
    return height + std::max(0.0, lost);
}

void EventSites::measure(std::size_t k)
{
    Site& site = places[k];
    const double longest = fibreTrace->scale().longestWindow;
    const double to = fibreTo(k);
    site.left = side(std::max(lineFrom(k), to - longest), to);
    const double next = fibreTo(k + 1);
    site.clear = clearOfTail(*fibreTrace, site.behind, next, brightness_dB(site, next));
    site.right = lineBehind(site.clear, next);
    if (!site.right) { // what little fibre there is tells the loss, tail or not
        site.clear = site.behind;
        site.right = lineBehind(site.behind, next);
    }
    tellLoss(site);
}

/// The loss of a place from the lines beside it.
void EventSites::tellLoss(Site& site) const
{
    site.loss_dB = std::numeric_limits<double>::quiet_NaN();
    site.error_dB = site.loss_dB;
    if (site.left && site.right) {
        // A sample shows the fibre half a pulse before it: there the event is seen from both sides,
        // also where they fall differently.
        const double seen = site.foot() + fibreTrace->shape().centre();
        site.loss_dB = site.left->at(seen) - site.right->at(seen);
        site.error_dB = std::hypot(site.left->errorAt_dB(seen), site.right->errorAt_dB(seen));
    }
}

/// Whether one line explains both sides of a place where none was found, but for chance.
bool EventSites::goesOn(double from, double at, double to) const
{
    const auto near = fibreTrace->fit(from, at);
    const auto far = fibreTrace->fit(at, to);
    if (!near || !far) {
        return false;
    }
    const double step_dB = near->at(at) - far->at(at);
    const double bend_dB = near->line.slope_dB - far->line.slope_dB;
    return std::abs(step_dB) < kSameErrors * std::hypot(near->errorAt_dB(at), far->errorAt_dB(at))
        && std::abs(bend_dB) < kSameErrors * std::hypot(near->slopeError_dB, far->slopeError_dB);
}

void EventSites::lengthenLines()
{
    for (std::size_t k = 0; k < places.size(); ++k) {
        Site& site = places[k];
        if (!site.right) {
            continue;
        }
        const double last =
            std::min(fibreTo(k + 1), site.clear + kReaches * (site.clear - site.foot()));
        double to = site.clear + fibreTrace->scale().longestWindow;
        double further = std::min(last, 2.0 * to - site.clear);
        while (to < last && goesOn(site.clear, to, further)) {
            to = further;
            further = std::min(last, 2.0 * to - site.clear);
            site.right = side(site.clear, to);
        }
        tellLoss(site);
    }
}

/// The slope of the fibre between the places; a piece of it counts for the more the better it is
/// known. Where it was told before any place was, events bent it.
void EventSites::learnUsualSlope()
{
    std::vector<std::pair<double, double>> slopes; // with their weights
    double total = 0.0;
    for (std::size_t k = 0; k <= places.size(); ++k) {
        const auto own = fibreTrace->fit(lineFrom(k), fibreTo(k));
        if (own && own->line.samples >= kFewestSlopeSamples) {
            const double error = std::hypot(own->slopeError_dB, kSlopeDiffers * slopeSpread_dB);
            slopes.emplace_back(own->line.slope_dB, 1.0 / (error * error));
            total += slopes.back().second;
        }
    }
    std::sort(slopes.begin(), slopes.end());
    double sum = 0.0;
    for (const auto& [slope_dB, weight] : slopes) {
        sum += weight;
        if (sum >= 0.5 * total) {
            takeUsualSlope(slope_dB);
            return;
        }
    }
}

void EventSites::measure()
{
    learnUsualSlope();
    for (std::size_t k = 0; k < places.size(); ++k) {
        measure(k);
    }
}

/// How well founded a place is: by so many times what is asked for. Below 1 it is dropped.
double EventSites::foundationOf(const Site& site, double loss_dB, double significance) const
{
    if (site.reflects() || site.standsOnTail) {
        return std::numeric_limits<double>::infinity();
    }
    const double byLoss = std::abs(site.loss_dB) / loss_dB;
    // A step within what the fibre itself strays by is none, however little noise there is.
    const double byChance = std::abs(site.loss_dB)
        / std::hypot(site.error_dB, kWanders * fibreTrace->noise().wander_dB()) / significance;
    if (std::isnan(byLoss)) {
        return 0.0;
    }
    const double clear = kBorderWanders * fibreTrace->noise().wander_dB();
    const auto fewest =
        static_cast<double>(std::min(site.left->line.samples, site.right->line.samples));
    const double gaps = std::abs(site.loss_dB) > kPlainBorder_dB ? kPlainBorderGaps : kBorderGaps;
    const bool isBorder = fibreTrace->noise().knowsWander() && byChance > 1.0
        && std::abs(site.loss_dB) > std::max(kBorder_dB, clear)
        && fewest > gaps * fibreTrace->gap();
    return isBorder ? byChance : std::min(byLoss, byChance);
}

void EventSites::dropUnlikely(double loss_dB, double significance)
{
    measure();
    // Light that is no event would be taken for a gain with a loss behind it were its place free.
    const auto hold = [&](const Site& site) {
        const bool isKnown = site.glows && !std::isnan(site.loss_dB);
        const double bend =
            site.left && site.right ? bendOf(*site.left, *site.right, significance) : 0.0;
        return isKnown ? std::numeric_limits<double>::infinity()
                       : std::max(foundationOf(site, loss_dB, significance), bend);
    };
    std::vector<double> holds; // of each place: only those of its neighbours change with it
    for (const Site& site : places) {
        holds.push_back(hold(site));
    }
    while (!places.empty()) {
        const auto weakest = std::min_element(holds.begin(), holds.end());
        if (*weakest >= 1.0) {
            break;
        }
        const auto k = static_cast<std::size_t>(weakest - holds.begin());
        holds.erase(weakest);
        places.erase(places.begin() + static_cast<std::ptrdiff_t>(k));
        if (k > 0) {
            measure(k - 1);
            holds[k - 1] = hold(places[k - 1]);
        }
        if (k < places.size()) {
            measure(k);
            holds[k] = hold(places[k]);
        }
    }
    dropRecoveries();
    findBorders(loss_dB, significance);
}

void EventSites::findBorders(double loss_dB, double significance)
{
    for (Site& site : places) {
        const bool isFounded = foundationOf(site, loss_dB, significance) >= 1.0;
        site.isBorder =
            !site.reflects() && (site.bends || std::abs(site.loss_dB) < loss_dB || !isFounded);
    }
}

void EventSites::joinCrowded()
{
    for (std::size_t k = 1; k < places.size();) {
        Site& one = places[k - 1];
        const Site& next = places[k];
        if (!one.peak || !next.peak || fibre(k)) {
            ++k;
            continue;
        }
        PeakGroup& group = *one.peak;
        const PeakGroup& more = *next.peak;
        group.feet.insert(group.feet.end(), more.feet.begin(), more.feet.end());
        group.heights_dB.insert(group.heights_dB.end(), more.heights_dB.begin(),
                                more.heights_dB.end());
        group.behind = more.behind;
        if (one.left) {
            // The next one stood on the light of this one, or on the fibre that it left.
            const std::vector<double> found_dB = group.heights_dB;
            measureHeights(*fibreTrace, one.left->line, group);
            std::transform(found_dB.begin(), found_dB.end(), group.heights_dB.begin(),
                           group.heights_dB.begin(),
                           [](double own, double over) { return std::max(own, over); });
        }
        group.hidden_dB = std::max(group.hidden_dB, more.hidden_dB);
        one.behind = next.behind;
        one.peakStatistic = std::max(one.peakStatistic, next.peakStatistic);
        places.erase(places.begin() + static_cast<std::ptrdiff_t>(k));
    }
    measure();
}

/// Whether the fibre before a reflection, as it was measured, holds the place before it.
bool EventSites::reachesOverPlace(std::size_t k) const
{
    return k > 0 && fibreFrom(k) > places[k].at - fibreBeforePeak(*fibreTrace);
}

void EventSites::remeasurePeaks(double leastHeight_dB)
{
    for (std::size_t k = 0; k < places.size(); ++k) {
        Site& site = places[k];
        if (!site.peak || site.peak->isLow() || !reachesOverPlace(k)) {
            continue;
        }
        const double from = fibreFrom(k);
        const double to = k + 1 < places.size() ? places[k + 1].at : end;
        PeakGroup peak = measurePeak(*fibreTrace, highestFoot(*site.peak), from, to);
        dropLowFeet(peak, leastHeight_dB);
        if (peak.feet.front() > from + kLevelSamples) {
            site.at = peak.feet.front();
            site.behind = peak.behind;
            site.peak = peak;
        }
    }
    measure();
}

} // namespace otdr
