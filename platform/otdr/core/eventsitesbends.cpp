// Where fibres of different attenuation meet: lines that ran over such a place would tell losses
// beside it that are none.

#include "platform/otdr/core/eventsites.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace otdr {

namespace {

/// The slopes differ by so many times what makes a change of level an event, and a line over the
/// place would stray by this, and by far more than the fibre does. On both sides there are so many
/// dead zones: tails and weak reflections bend shorter lines.
constexpr double kBendErrors = 2.0;
constexpr double kBend_dB = 0.004;
constexpr double kBendWanders = 10.0;
constexpr double kBendGaps = 8.0;

/// A line over the place strays by this part of the change of its slope times a side's length.
constexpr double kStrayPart = 0.25;

/// Places at which a window is tried, and those among which the best of them is sought.
constexpr std::size_t kPlacesPerWindow = 8;
constexpr double kFinePlaces = 64.0;

/// Where a bend alone explains a change of level about as well, by so many standard deviations, it
/// is a bend; what is left there is less than this, or than so many standard errors.
constexpr double kAsWell = 3.0;
constexpr double kNoLoss_dB = 0.004;
constexpr double kNoLossErrors = 3.0;

/// Two lines leave so many times the noise and what the fibre strays by where nothing else stands
/// on them.
constexpr double kNoiseLeft = 1.5;

constexpr int kRounds = 3;

/// What lines leave of their samples, dB squared.
double squaresOf(const SideLine& side)
{
    const double freedom = static_cast<double>(side.line.samples) - 2.0;
    return freedom * side.line.sigma_dB * side.line.sigma_dB;
}

using Sides = std::pair<SideLine, SideLine>;

/// The lines from one index to a place and from `gap` behind it to another index.
std::optional<Sides> sidesOf(const FibreTrace& trace, double from, double at, double gap, double to)
{
    const auto left = trace.fit(from, at);
    const auto right = trace.fit(at + gap, to);
    return left && right ? std::optional<Sides>({*left, *right}) : std::nullopt;
}

/// By how much the light falls from one sample between two indices to the next, dB.
double slopeOf_dB(const FibreTrace& trace, double from, double to)
{
    const auto line = fitLineBetween(trace.samples(), from, to);
    return line ? line->slope_dB : std::numeric_limits<double>::quiet_NaN();
}

/// The place about `at`, within `reach`, from which two lines leave least of a stretch.
double bestBend(const FibreTrace& trace, double at, double reach, double from, double to)
{
    double best = at;
    double least = std::numeric_limits<double>::infinity();
    for (double place = at - reach; place <= at + reach; place += 2.0 * reach / kFinePlaces) {
        const auto sides = sidesOf(trace, from, place, 0.0, to);
        const double squares = sides ? squaresOf(sides->first) + squaresOf(sides->second) : least;
        best = squares < least ? place : best;
        least = std::min(least, squares);
    }
    return best;
}

} // namespace

/// How plainly the fibre bends between two lines: by so many times what is asked for.
double EventSites::bendOf(const SideLine& left, const SideLine& right, double significance) const
{
    const auto fewest = static_cast<double>(std::min(left.line.samples, right.line.samples));
    if (!fibreTrace->noise().knowsWander() || fewest < kBendGaps * fibreTrace->gap()) {
        return 0.0;
    }
    const double change_dB = std::abs(left.line.slope_dB - right.line.slope_dB);
    if (!(change_dB > 0.0)) {
        return 0.0;
    }
    const double errors = change_dB / std::hypot(left.slopeError_dB, right.slopeError_dB);
    return std::min(errors / (kBendErrors * significance), strayOf(change_dB, fewest));
}

/// By how much a line over a place where the slope changes would stray, by what is asked for.
double EventSites::strayOf(double change_dB, double samples) const
{
    return kStrayPart * std::abs(change_dB) * samples
        / std::max(kBend_dB, kBendWanders * fibreTrace->noise().wander_dB());
}

/// Where the fibre between two indices bends most plainly, if it does.
std::optional<double> EventSites::bendBetween(double from, double to, double significance) const
{
    if (!fibreTrace->noise().knowsWander()) {
        return std::nullopt;
    }
    double plainest = 1.0;
    double at = 0.0;
    double window = 0.0;
    double length = std::min(fibreTrace->scale().longestWindow, 0.5 * (to - from));
    for (; length >= kBendGaps * fibreTrace->gap(); length *= 0.5) {
        const double step = length / static_cast<double>(kPlacesPerWindow);
        const double last = to - 2.0 * length;
        // What lies behind a place lies in front of the one a window further on.
        std::array<double, kPlacesPerWindow> before {};
        for (std::size_t k = 0; k < kPlacesPerWindow; ++k) {
            const double begin = from + static_cast<double>(k) * step;
            before[k] = slopeOf_dB(*fibreTrace, begin, begin + length);
        }
        for (std::size_t k = 0; from + static_cast<double>(k) * step <= last; ++k) {
            const double place = from + static_cast<double>(k) * step + length;
            const double behind = slopeOf_dB(*fibreTrace, place, place + length);
            const double change = std::exchange(before[k % kPlacesPerWindow], behind) - behind;
            if (!(strayOf(change, length + 1.0) > plainest)) {
                continue;
            }
            const auto sides = sidesOf(*fibreTrace, place - length, place, 0.0, place + length);
            const double bend = sides ? bendOf(sides->first, sides->second, significance) : 0.0;
            if (bend > plainest) {
                plainest = bend;
                at = place;
                window = length;
            }
        }
    }
    if (!(window > 0.0)) {
        return std::nullopt;
    }
    return bestBend(*fibreTrace, at, 0.5 * window, at - window, at + window);
}

/// Adds the plainest bend of every stretch between two places that has not been searched. False
/// where there is none.
bool EventSites::addBends(double significance, std::set<Stretch>& searched)
{
    std::vector<Site> found;
    for (std::size_t k = 0; k <= places.size(); ++k) {
        const Stretch stretch {lineFrom(k), fibreTo(k)};
        if (!searched.insert(stretch).second) {
            continue;
        }
        const auto at = bendBetween(stretch.first, stretch.second, significance);
        if (at) {
            Site site;
            site.standAt(*at, fibreTrace->gap());
            site.bends = true;
            found.push_back(site);
        }
    }
    add(found);
    return !found.empty();
}

/// The bend at a place, or within half a step of it, if two lines lose nothing there and leave no
/// more than most_dB of their samples.
std::optional<EventSites::Bend> EventSites::losslessBend(const Stretch& stretch, double place,
                                                         double step, double significance,
                                                         double most_dB) const
{
    const auto sides =
        sidesOf(*fibreTrace, stretch.first, place, fibreTrace->gap(), stretch.second);
    if (!sides || bendOf(sides->first, sides->second, significance) < 1.0) {
        return std::nullopt;
    }
    const auto& [left, right] = *sides;
    const double seen = place + fibreTrace->shape().centre();
    const double loss_dB = left.at(seen) - right.at(seen);
    const double error_dB = std::hypot(left.errorAt_dB(seen), right.errorAt_dB(seen));
    // Where the lines cross nothing is lost; that may lie between two of the places.
    const double crossing = loss_dB / (right.line.slope_dB - left.line.slope_dB);
    const bool isNear = std::abs(crossing) <= 0.5 * step;
    const bool losesNothing =
        isNear || std::abs(loss_dB) < std::max(kNoLoss_dB, kNoLossErrors * error_dB);
    if (!losesNothing || std::max(left.line.sigma_dB, right.line.sigma_dB) >= most_dB) {
        return std::nullopt;
    }
    return Bend {isNear ? place + crossing : place, squaresOf(left) + squaresOf(right)};
}

/// A change of level beside a bend may be nothing but that, seen from the wrong place: moves it
/// there, if two lines leave no more than so many times what noise and the fibre itself do.
void EventSites::moveToBend(Site& site, double significance, double mostLeft) const
{
    const double gap = fibreTrace->gap();
    const Stretch stretch {site.left->line.first(), site.right->line.last() + 1.0};
    const auto now = sidesOf(*fibreTrace, stretch.first, site.at, gap, stretch.second);
    if (!now) {
        return;
    }
    const double reach = 0.5 * std::min(site.at - stretch.first, stretch.second - site.behind);
    const double sigma = fibreTrace->noise().sigma_dB(site.at);
    double least = squaresOf(now->first) + squaresOf(now->second)
        + kAsWell * kAsWell * fibreTrace->noise().correlation() * sigma * sigma;
    const double most_dB = mostLeft * std::hypot(sigma, fibreTrace->noise().wander_dB());
    const double step = 2.0 * reach / kFinePlaces;
    const double begin = site.at - reach;
    const double end = site.at + reach;
    for (double place = begin; place <= end; place += step) {
        const auto bend = losslessBend(stretch, place, step, significance, most_dB);
        if (bend && bend->squares < least) {
            least = bend->squares;
            site.standAt(std::clamp(bend->at, begin, end), gap);
        }
    }
}

/// The same of all of them.
void EventSites::moveToBends(double loss_dB, double significance, double mostLeft)
{
    for (Site& site : places) {
        const bool isStep = !site.peak && !site.glows && site.left && site.right;
        if (isStep && bendOf(*site.left, *site.right, significance) >= 1.0) {
            moveToBend(site, significance, mostLeft);
        }
    }
    dropUnlikely(loss_dB, significance);
}

void EventSites::divideAtBends(double loss_dB, double significance)
{
    // Those first that stand beside a bend: another one would be put at their far side.
    moveToBends(loss_dB, significance, kNoiseLeft);
    std::set<Stretch> searched;
    for (int round = 0; round < kRounds && addBends(significance, searched); ++round) {
        dropUnlikely(loss_dB, significance);
    }
    moveToBends(loss_dB, significance, std::numeric_limits<double>::infinity());
}

} // namespace otdr
