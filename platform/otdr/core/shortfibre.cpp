#include "platform/otdr/core/shortfibre.h"

#include "platform/otdr/core/fibrebehind.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace otdr {

namespace {

/// A sudden change is looked for within so many pulses behind a short piece of fibre.
constexpr double kChangePulses = 10.0;

/// A short piece is known by half a pulse of it, and no fewer samples: it falls or rises by no more
/// within a pulse than this, or than fibre does in a long one, or, where noise hides that, the
/// larger limit, and a patch cord stands no higher than the fibre before it but for the last of a
/// tail.
constexpr double kShortPulses = 0.5;
constexpr double kFewestShort = 5.0;
constexpr double kLevel_dB = 0.1;
constexpr double kFibre_dBPerKm = 0.5;
constexpr double kNoisyLevel_dB = 0.5;
constexpr double kTail_dB = 0.3;

/// A line tells its slope within this many standard errors.
constexpr double kChance = 5.0;

/// The last of a drop's fibre are so many pulses; what stands this much above the fibre before it
/// leaves a tail.
constexpr double kDropPulses = 3.0;
constexpr double kHighPeak_dB = 10.0;

/// A drop in front of a reflection is weaker than the fibre before it by this part of a sudden
/// change, at least.
constexpr double kSplitPart = 0.5;

/// On a patch cord the tail of the reflection before it is over within so many pulses: it is looked
/// at in steps of this.
constexpr double kCordTailPulses = 4.0;
constexpr double kTailOverPart = 0.2; // of what is level
constexpr double kStepPulses = 0.25;

/// A receiver that was not overloaded has come down within so many pulses.
constexpr double kShortTailPulses = 3.0;

} // namespace

double changeAt_dB(const FibreTrace& trace, double at, double slope_dB)
{
    const double w = trace.scale().pulse;
    return trace.mean_dB(at - w, at)
        - trace.mean_dB(at + kFallPulses * w, at + (kFallPulses + 1.0) * w)
        + slope_dB * (kFallPulses + 1.0) * w;
}

double highest_dB(const FibreTrace& trace, double from, double to)
{
    double top = 0.0;
    for (double i = from; i < to; i += 1.0) {
        top = std::max(top, trace.mean_dB(i, i + 1.0));
    }
    return top;
}

ShortFibre::ShortFibre(const FibreTrace& trace, double threshold_dB, double usualSlope_dB)
    : trace(trace)
    , w(trace.scale().pulse)
    , threshold_dB(threshold_dB)
    , usualSlope_dB(usualSlope_dB)
    , level_dB(std::max(kLevel_dB,
                        trace.scale().kilometre > 0.0 ? kFibre_dBPerKm * w / trace.scale().kilometre
                                                      : 0.0))
{
}

double ShortFibre::shortest() const
{
    return std::max(kFewestShort, kShortPulses * w);
}

/// Half a pulse, in whole samples.
double ShortFibre::half() const
{
    return std::max(1.0, std::floor(0.5 * w));
}

/// By how much light falls from so many samples to the next.
double ShortFibre::fallBetween_dB(double at, double samples) const
{
    return trace.mean_dB(at, at + samples) - trace.mean_dB(at + samples, at + 2.0 * samples);
}

double ShortFibre::fallenFrom(double top) const
{
    double i = top;
    while (i < top + kShortTailPulses * w && fallBetween_dB(i, half()) > level_dB) {
        i += 1.0;
    }
    return i + half();
}

/// Where the light falls most within some pulses.
double ShortFibre::steepest(double from) const
{
    double at = from;
    double most = 0.0;
    for (double i = from; i < from + (kFallPulses + 1.0) * w; i += 1.0) {
        const double fall = fallBetween_dB(i - half(), half());
        at = fall > most ? i : at;
        most = std::max(most, fall);
    }
    return at;
}

bool ShortFibre::isPatchCord(double begin, double before_dB) const
{
    const double end = begin + shortest();
    return isLevel(begin, end, before_dB - threshold_dB, before_dB + kTail_dB)
        && changeBehind(begin);
}

std::optional<double> ShortFibre::patchCordBehindTail(double flankOver, double before_dB) const
{
    const double last = flankOver + kCordTailPulses * w;
    double lowest_dB = std::numeric_limits<double>::infinity();
    for (double at = flankOver; at <= last; at += std::max(1.0, kStepPulses * w)) {
        const double here_dB = trace.mean_dB(at, at + shortest());
        if (here_dB > lowest_dB + level_dB) {
            break; // no tail rises: the top of an echo is level, too
        }
        lowest_dB = std::min(lowest_dB, here_dB);
        if (std::abs(fallBetween_dB(at, shortest())) < kTailOverPart * level_dB
            && isPatchCord(at, before_dB)) {
            return at;
        }
    }
    return std::nullopt;
}

std::optional<double> ShortFibre::dropBehind(double from, double top, double before_dB) const
{
    if (highest_dB(trace, from, top + 1.0) > before_dB + kHighPeak_dB) {
        return std::nullopt;
    }
    const double fall = steepest(from);
    const double begin = fallenFrom(fall);
    const bool isTail = begin - half() >= fall + kShortTailPulses * w; // not come down yet
    const auto end = changeBehind(begin);
    if (!end || (isTail && *end < begin + w)) { // half a pulse of a tail may be level by chance
        return std::nullopt;
    }
    const double piece = std::max(begin, *end - kDropPulses * w);
    // As bright as the fibre before and in front of a reflection, it is that fibre.
    const double lost_dB = top > begin ? kSplitPart * threshold_dB : 0.0;
    const bool isDrop = isLevel(piece, *end, 0.0, before_dB - lost_dB);
    return isDrop ? std::optional(begin) : std::nullopt;
}

bool ShortFibre::isSeenBetween(double from, double to) const
{
    return firstLevel(from, to, std::numeric_limits<double>::infinity()).has_value();
}

std::optional<double> ShortFibre::firstBetween(double from, double to, double most_dB) const
{
    const auto first = firstLevel(from, to, most_dB);
    return first && changeBehind(*first).value_or(to) < to ? first : std::nullopt;
}

/// Where light below most_dB that is level for twice the shortest piece begins between two indices.
std::optional<double> ShortFibre::firstLevel(double from, double to, double most_dB) const
{
    const double length = 2.0 * shortest();
    for (double at = from; at + length < to; at += std::max(1.0, kStepPulses * w)) {
        if (isLevel(at, at + length, 0.0, most_dB)) {
            return at;
        }
    }
    return std::nullopt;
}

/// Whether light is level between two indices, plainly above the noise and between two levels.
bool ShortFibre::isLevel(double from, double to, double least_dB, double most_dB) const
{
    const auto line = trace.fit(from, to);
    if (!line || static_cast<double>(line->line.samples) < kFewestShort) {
        return false;
    }
    const double level = line->at(from);
    const double chance_dB = std::min(kChance * line->slopeError_dB * w, kNoisyLevel_dB);
    return std::abs(line->line.slope_dB) * w < std::max(level_dB, chance_dB) && level < most_dB
        && level > least_dB && level > trace.noise().rms_dB() + kPlainAboveNoise_dB;
}

/// The first index within some pulses behind which the light changes suddenly; what lies in front
/// of `from` does not count.
std::optional<double> ShortFibre::changeBehind(double from) const
{
    const double step = std::max(1.0, std::floor(w / 2.0));
    const double last = std::min(from + shortest() + kChangePulses * w, trace.size());
    for (double at = from + shortest(); at < last; at += step) {
        const double before = trace.mean_dB(std::max(from, at - w), at);
        const double behind = trace.mean_dB(at + kFallPulses * w, at + (kFallPulses + 1.0) * w);
        if (std::abs(before - behind + usualSlope_dB * (kFallPulses + 1.0) * w) > threshold_dB) {
            return at;
        }
    }
    return std::nullopt;
}

} // namespace otdr
