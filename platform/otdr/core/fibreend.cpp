#include "platform/otdr/core/fibreend.h"

#include "platform/otdr/core/fibrebehind.h"
#include "platform/otdr/core/launchtail.h"
#include "platform/otdr/core/lightbehind.h"
#include "platform/otdr/core/reflectionfeet.h"
#include "platform/otdr/core/scatter.h"
#include "platform/otdr/core/shortfibre.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace otdr {

namespace {

/// A fibre that ended in the launch would leave no light for so many pulses.
constexpr double kLitPulses = 150.0;

/// The fibre before a change is taken from so many pulses at most.
constexpr double kBeforePulses = 20.0;

/// Light that belongs to the fibre stands within so many pulses behind what seemed to be its end.
constexpr double kBehindEndPulses = 10.0;

/// Fibre between two reflections that are further apart tells the loss of the first.
constexpr double kDeadZonePulses = 2.5;

/// Light is seen by the median of so many samples, a pulse at least, and in long records one of so
/// many parts; of longer stretches by so many of theirs. It has ended where so many stretches are
/// dark.
constexpr double kVisibleSamples = 32.0;
constexpr double kVisibleParts = 8192.0;
constexpr int kDarkStretches = 4;

/// A place is lit where it stands this much above the noise.
constexpr double kLit_dB = 1.0;

/// Fewer samples tell no line.
constexpr double kFewestShort = 5.0;

/// Within a pulse fibre falls by what it usually does but for so much.
constexpr double kLevel_dB = 0.1;

/// No fibre falls both by more than a steep one and by more than this within a pulse: those that
/// fall steeply are measured with short pulses. The tail of an overload may be longer than the
/// fibre before it.
constexpr double kPulseFall_dB = 0.5;

/// Neighbours that pass the same receiver are alike; samples so many pulses apart, hardly.
constexpr double kApartPulses = 0.1;

/// A line tells its slope within this many standard errors.
constexpr double kChance = 5.0;

/// The deviation that shows the foot of the end: in sigma and dB.
constexpr double kFootSigmas = 6.0;
constexpr double kFoot_dB = 0.08;

/// The end falls by half of what shows it within so much of a pulse from there. Where the light
/// left the fibre before by so much of one earlier, that is another event, and the level between
/// them is that of so much of one, and of so many samples.
constexpr double kFootPulses = 0.7;
constexpr double kEarlierPulses = 0.45;
constexpr double kLevelPulses = 0.25;
constexpr double kFewestLevel = 3.0;

/// The fibre before the end is taken from so many pulses, or from a straight piece of them of no
/// less than the other, that scatters no more than this by its samples.
constexpr double kFootFitPulses = 6.0;
constexpr double kMisfit = 3.0;
constexpr double kLeastFitPulses = 0.7;
constexpr double kLeastScatter_dB = 0.005;

class EndSearch
{
public:
    EndSearch(const FibreTrace& trace, double threshold_dB)
        : trace(trace)
        , launch(trace, threshold_dB)
        , w(trace.scale().pulse)
        , step(std::max(1.0, std::floor(0.5 * w)))
        , threshold_dB(threshold_dB)
    {
    }

    [[nodiscard]] FibreExtent find()
    {
        FibreExtent extent;
        extent.launch = trace.launch();
        extent.first = launch.over();
        extent.lastLit = lastVisible(extent.first);
        extent.end = extent.lastLit;
        usualSlope_dB = fibreSlope_dB(extent);
        const Judges judges {FibreBehind(trace, extent.lastLit, usualSlope_dB),
                             LightBehind(trace, threshold_dB),
                             ShortFibre(trace, threshold_dB, usualSlope_dB)};
        Place place {extent.first + w, extent.first};
        for (; place.at < extent.lastLit + visibleLength(); place.at += step) {
            const double change = changeAt_dB(trace, place.at, usualSlope_dB);
            if (!(std::abs(change) > threshold_dB) || !isLit(place.at)) {
                continue;
            }
            const auto next = behindChange(place, judges, extent);
            if (!next) {
                break;
            }
            place = *next;
        }
        correct(extent);
        extent.first = std::min(extent.first, extent.end);
        return extent;
    }

private:
    /// What tells fibre behind a change of the light from what is none.
    struct Judges
    {
        FibreBehind fibre;
        LightBehind light;
        ShortFibre piece;
    };

    /// An index that the search has come to, and where the fibre begins that it looks back to.
    struct Place
    {
        double at;
        double fibreBegins;
    };

    /// Where the search goes on behind a change of the light; empty where the fibre ends there,
    /// which the extent tells then.
    [[nodiscard]] std::optional<Place> behindChange(const Place& seen, const Judges& judges,
                                                    FibreExtent& extent) const
    {
        // What falls or rises here does so not before the windows that it was seen with.
        const double from = seen.at + 0.5 * w;
        const double last = extent.lastLit + visibleLength();
        const double top = judges.light.peakOver(seen.at);
        const double flankOver = judges.piece.fallenFrom(top);
        const double before = trace.mean_dB(from - w, from);
        const bool isPeak = top > seen.at;
        if (isPeak && judges.piece.isPatchCord(flankOver, before)) {
            return Place {std::max(flankOver, from), flankOver};
        }
        const double at = judges.light.tailOver(from, fallOver(top, last), last);
        const double fibreFrom = std::max(seen.fibreBegins, from - kBeforePulses * w);
        if (trace.mean_dB(at, at + w) > before + threshold_dB || isLaunch(at, extent)
            || judges.fibre.follows(fibreFrom, from, at, threshold_dB)) {
            return Place {at, seen.fibreBegins};
        }
        if (const auto plain = judges.fibre.seenFrom(seen.fibreBegins, from, at, threshold_dB)) {
            return Place {*plain, seen.fibreBegins};
        }
        if (const auto drop = judges.piece.dropBehind(from, top, before)) {
            return Place {std::max(*drop, from), *drop};
        }
        if (const auto later = judges.light.endsSuddenly(from, at, last)) {
            return Place {std::max(at, *later - kFallPulses * w), at};
        }
        const auto cord =
            isPeak ? judges.piece.patchCordBehindTail(flankOver, before) : std::nullopt;
        if (cord) {
            return Place {std::max(*cord, from), *cord};
        }
        extent.end = foot(from, at, fibreFrom);
        extent.kind = FibreExtent::End::Found;
        return std::nullopt;
    }

    /// The first index behind another at which the light falls no longer.
    [[nodiscard]] double fallOver(double at, double last) const
    {
        while (at < last && falls(at)) {
            at += step;
        }
        return at;
    }

    /// By how much the light falls from one sample to the next, but for what only a tail does.
    [[nodiscard]] double fibreSlope_dB(const FibreExtent& extent) const
    {
        const double usual_dB = trace.usualSlope_dB(extent.first, extent.lastLit);
        const double kilometre = trace.scale().kilometre;
        const double most_dB =
            kilometre > 0.0 ? std::max(kSteepFibre_dBPerKm / kilometre, kPulseFall_dB / w) : 0.0;
        return most_dB > 0.0 ? std::max(usual_dB, -most_dB) : usual_dB;
    }

    /// Whether a fall belongs to the launch: near to it, with light for long behind.
    [[nodiscard]] bool isLaunch(double at, const FibreExtent& extent) const
    {
        return at < extent.launch + kLongestLaunchPulses * w
            && extent.lastLit > at + kLitPulses * w;
    }

    /// Moves an end on to a reflection close behind it, however a tail bends the light there, and
    /// one behind nothing but a tail back to the reflection that has it.
    void correct(FibreExtent& extent) const
    {
        const double port = extent.launch + kLongestLaunchPulses * w;
        const bool isNearPort = extent.end < std::min(port, trace.size() - 1.0);
        const double from = isNearPort ? extent.launch + trace.gap() : extent.end;
        const double to = std::min(extent.end + kBehindEndPulses * w, extent.lastLit);
        const std::vector<double> feet = reflectionFeet(trace, from, to, threshold_dB);
        const double last = feet.empty() ? extent.launch : feet.back();
        if (isNearPort && last < extent.end && launch.reaches(last, extent.end)) {
            extent.end = last;
            extent.kind = FibreExtent::End::Found;
        }
        follow(feet, extent);
        followOn(extent);
    }

    /// The same from each reflection that the end has moved on to.
    void followOn(FibreExtent& extent) const
    {
        double before = 0.0;
        while (extent.end > before) {
            before = extent.end;
            const double to = std::min(extent.end + kBehindEndPulses * w, extent.lastLit);
            follow(reflectionFeet(trace, extent.lastFoot, to, threshold_dB), extent);
        }
    }

    /// Moves an end on to the last reflection behind it that stands where fibre can be seen before
    /// it, or where the light is gone that ended. Those in the dead zone of an end are told with
    /// it.
    void follow(const std::vector<double>& feet, FibreExtent& extent) const
    {
        const auto before_dB = [&](double index) { return trace.mean_dB(index - 2.0, index); };
        const double gone_dB = before_dB(extent.end) - threshold_dB;
        extent.lastFoot = std::max(extent.lastFoot, extent.end);
        for (const double foot : feet) {
            if (foot > extent.lastFoot + kDeadZonePulses * w
                || (foot > extent.lastFoot + w && before_dB(foot) < gone_dB)) {
                extent.end = foot;
                extent.kind = FibreExtent::End::Found;
            }
            extent.lastFoot = std::max(extent.lastFoot, foot);
        }
    }

    /// Samples of which the median tells whether there is light.
    [[nodiscard]] double visibleLength() const
    {
        return std::max({kVisibleSamples, std::ceil(w), std::floor(trace.size() / kVisibleParts)});
    }

    /// The last stretch whose median stands above the noise, of those that follow each other.
    [[nodiscard]] double lastVisible(double from) const
    {
        const double length = visibleLength();
        const double least = trace.noise().rms_dB();
        const std::size_t stride =
            std::max<std::size_t>(1, static_cast<std::size_t>(length / kVisibleSamples));
        double last = from;
        int missing = 0;
        for (double at = from; at + length <= trace.size() && missing < kDarkStretches;
             at += length) {
            const auto begin = static_cast<std::size_t>(at);
            const std::size_t end = begin + static_cast<std::size_t>(length);
            std::size_t lit = 0;
            std::size_t all = 0;
            for (std::size_t i = begin; i < end; i += stride) {
                lit += trace.samples().level_dB(i) > least ? 1 : 0;
                ++all;
            }
            missing = 2 * lit >= all ? 0 : missing + 1;
            last = missing == 0 ? at + length : last;
        }
        return last + 2.0 * length > trace.size() ? trace.size() - 1.0 : last;
    }

    /// Whether there is more than noise before an index, or behind it.
    [[nodiscard]] bool isLit(double at) const
    {
        const double least = trace.noise().rms_dB() + kLit_dB;
        return trace.mean_dB(at - w, at) > least
            || trace.mean_dB(at + kFallPulses * w, at + (kFallPulses + 1.0) * w) > least;
    }

    [[nodiscard]] bool falls(double at) const
    {
        return changeAt_dB(trace, at, usualSlope_dB) > threshold_dB && isLit(at);
    }

    /// Standard deviation of a sample before an index, dB.
    [[nodiscard]] double scatterBefore_dB(double index, double length) const
    {
        return scatterOf_dB(trace.samples(),
                            static_cast<std::size_t>(std::max(0.0, index - length)),
                            static_cast<std::size_t>(std::max(0.0, index)),
                            static_cast<std::size_t>(std::max(1.0, kApartPulses * w)));
    }

    /// Whether a short line is no part of a peak: within a pulse it falls by what fibre does.
    [[nodiscard]] bool fallsLikeFibre(const SideLine& line) const
    {
        return std::abs(line.line.slope_dB - usualSlope_dB) * w
            < std::max(kLevel_dB, kChance * line.slopeError_dB * w);
    }

    /// A straight piece of fibre and where it ends.
    struct Straight
    {
        std::optional<SideLine> line;
        double until = 0.0;
    };

    /// The fibre before an index: of the straight pieces the nearest, and of those the longest.
    /// What stands before the index within a few pulses may be another event.
    [[nodiscard]] Straight straightBefore(double index, double fibreFrom) const
    {
        const double longest = kFootFitPulses * w;
        for (double until = index; until > index - longest; until -= step) {
            for (double length = longest; length > kLeastFitPulses * w && length >= kFewestShort;
                 length *= 0.5) {
                const auto line = trace.fit(std::max(fibreFrom, until - length), until);
                const double scatter = std::max(kLeastScatter_dB, scatterBefore_dB(until, length));
                if (line && static_cast<double>(line->line.samples) >= kFewestShort
                    && line->line.sigma_dB < kMisfit * scatter && fallsLikeFibre(*line)) {
                    return {line, until};
                }
            }
        }
        return {trace.fit(std::max(fibreFrom, index - longest), index), index};
    }

    /// The first of two samples in a row, from one index to another, that are further than this
    /// from a line; `to` where there are none.
    [[nodiscard]] double leaves(const Line& line, double from, double to, double least_dB) const
    {
        int outside = 0;
        for (auto i = static_cast<std::size_t>(std::max(0.0, from)); static_cast<double>(i) < to;
             ++i) {
            const auto index = static_cast<double>(i);
            const double off_dB = std::abs(trace.samples().level_dB(i) - line.at(index));
            outside = off_dB > least_dB ? outside + 1 : 0;
            if (outside == 2) {
                return index - 1.0;
            }
        }
        return to;
    }

    /// By how much samples stand above a line at most, dB.
    [[nodiscard]] double highestAbove_dB(const Line& line, double from, double to) const
    {
        double most_dB = 0.0;
        for (double i = from; i < to; i += 1.0) {
            most_dB = std::max(most_dB, trace.mean_dB(i, i + 1.0) - line.at(i));
        }
        return most_dB;
    }

    /// A level line through so many samples before an index, that falls as the fibre does.
    [[nodiscard]] Line levelBefore(double index, double samples) const
    {
        Line level;
        level.level_dB = trace.mean_dB(index - samples, index);
        level.slope_dB = usualSlope_dB;
        level.centre = index - 0.5 * (samples + 1.0);
        return level;
    }

    /// The first sample that leaves the fibre before `from`, upwards or downwards, for the end:
    /// what leaves it by little for longer than that takes is another event, close before it.
    [[nodiscard]] double foot(double from, double to, double fibreFrom) const
    {
        const auto [line, until] = straightBefore(from, fibreFrom);
        const double last = std::min(trace.size(), to + kFallPulses * w + 2.0);
        const bool isLine = line && line->line.samples > 4;
        const Line before = isLine ? line->line : levelBefore(from, w);
        const double sigma = line ? line->line.sigma_dB : trace.noise().sigma_dB(from - w);
        const double least_dB = std::max(kFoot_dB, kFootSigmas * sigma);
        const double first = leaves(before, until, last, least_dB);
        if (first >= last) {
            return from + w;
        }
        const double plainly = leaves(before, first, last, 0.5 * threshold_dB);
        const double nearest = plainly - kFootPulses * w;
        const bool isLater = plainly < last && nearest > first + kEarlierPulses * w;
        // A low reflection is told with the end that it stands close before, or it is the end's.
        const bool isOver = nearest > first + trace.gap();
        if (isLater && (isOver || highestAbove_dB(before, first, nearest) < least_dB)) {
            const double length = std::max(kFewestLevel, kLevelPulses * w);
            return leaves(levelBefore(nearest, length), nearest, last, least_dB) - 0.5;
        }
        return first - 0.5;
    }

    const FibreTrace& trace;
    LaunchTail launch;
    double w;
    double step; ///< from one index that is looked at to the next
    double threshold_dB;
    double usualSlope_dB = 0.0; ///< of the fibre, by the sample
};

} // namespace

FibreExtent findFibre(const FibreTrace& trace, double endThreshold_dB)
{
    return EndSearch(trace, endThreshold_dB).find();
}

} // namespace otdr
