#include "platform/otdr/core/fibrebehind.h"

#include <algorithm>
#include <cmath>

namespace otdr {

namespace {

/// What stands less than this above the RMS noise shows no fibre that could be measured. From there
/// on so many times the pulses show that it is fibre, and the more of them the weaker it is, if
/// what it falls by in them is known so well; of what stands higher, a good deal worse.
constexpr double kFibreAboveNoise_dB = 2.0;
constexpr double kWeakFactor = 4.0;
constexpr double kWeakError_dB = 0.2;
constexpr double kError_dB = 0.5;

/// The fibre behind a fall is looked for in ten pulses, or three and more where the light changes
/// again so soon, behind a tail of no more than thirty.
constexpr double kBehindPulses = 10.0;
constexpr double kFewestBehind = 64.0;
constexpr double kFewestPulses = 3.0;
constexpr double kLongestTailPulses = 30.0;

/// Fibres of one link fall alike: steeper than steep fibre, and by this factor, is a tail. A line
/// tells the slope of the fibre before if that is its error.
constexpr double kTellingError_dBPerKm = 0.2;
constexpr double kSteeper = 3.0;

/// Light no weaker than the fibre before, but for a loss, that falls by no more than this within so
/// many pulses, beyond what fibre loses, is that of fibre.
constexpr double kEvenPulses = 5.0;
constexpr double kEven_dB = 0.03;

/// The fibre before a fall is taken from so many pulses at most.
constexpr double kBeforePulses = 20.0;

/// Behind a peak, a stretch that falls by less than this is fibre with the last of a tail.
constexpr double kSteepFall_dB = 0.2;

/// Halves of a straight line agree within this many standard errors.
constexpr double kChance = 5.0;

/// Further behind a fall, where a tail may have become as flat as fibre, nothing is looked for.
constexpr double kFurthestPulses = 100.0;

/// What is known by its slope alone must tell it as well as this, fall by no less than any fibre
/// does and by hardly more than the fibre before, and its halves agree to this part of it.
constexpr double kPlainError_dBPerKm = 0.1;
constexpr double kLeastFall_dBPerKm = 0.05;
constexpr double kHardlySteeper = 1.3;
constexpr double kBendPart = 0.3;

/// A straight line, and how much its halves differ in slope.
struct Straight
{
    SideLine line;
    double bend_dB = 0.0;
    double bendError_dB = 0.0;
};

std::optional<Straight> straightOf(const FibreTrace& trace, double from, double to)
{
    const double middle = 0.5 * (from + to);
    const auto line = trace.fit(from, to);
    const auto half = trace.fit(from, middle);
    const auto rest = trace.fit(middle, to);
    if (!line || !half || !rest || line->line.samples < 16) {
        return std::nullopt;
    }
    return Straight {*line, half->line.slope_dB - rest->line.slope_dB,
                     std::hypot(half->slopeError_dB, rest->slopeError_dB)};
}

} // namespace

FibreBehind::FibreBehind(const FibreTrace& trace, double lastLit, double usualSlope_dB)
    : trace(trace)
    , w(trace.scale().pulse)
    , shortest(std::max(kFewestBehind, kBehindPulses * w))
    , lastLit(lastLit)
    , usualSlope_dB(usualSlope_dB)
{
}

bool FibreBehind::follows(double fibreFrom, double from, double to, double threshold_dB) const
{
    const double start = trace.settledFrom(to + kFallPulses * w, kLongestTailPulses * w);
    const double length = tellingLength(start, threshold_dB);
    const auto behind = straightOf(trace, start, start + length);
    if (!behind) {
        return false;
    }
    const double level = behind->line.at(start);
    const double above_dB = level - trace.noise().rms_dB();
    const double error_dB = behind->line.slopeError_dB * length;
    const bool isKnown = error_dB < (above_dB > kPlainAboveNoise_dB ? kError_dB : kWeakError_dB);
    if (above_dB < kFibreAboveNoise_dB || !isKnown) {
        return false;
    }
    if (above_dB < kPlainAboveNoise_dB && !falls(start, length)) {
        return false;
    }
    const double lost =
        levelBefore_dB(fibreFrom, from) - level + usualSlope_dB * (start - from + 0.5 * w);
    if (lost < threshold_dB) { // the fall was that of a peak
        return !isSteeper(behind->line, trace.fit(fibreFrom, from))
            || -behind->line.line.slope_dB * length < std::max(kSteepFall_dB, kChance * error_dB);
    }
    return !isSteeper(behind->line, trace.fit(fibreFrom, from))
        && std::abs(behind->bend_dB) < kChance * behind->bendError_dB;
}

/// Whether weak light falls at all, in a stretch or in some times as much of it: darkness that a
/// receiver lifts is as straight as fibre, but level.
bool FibreBehind::falls(double from, double length) const
{
    const double kilometre = trace.scale().kilometre;
    for (; kilometre > 0.0 && from + length <= lastLit; length *= 2.0) {
        const auto line = trace.fit(from, from + length);
        const double error = line ? line->slopeError_dB * kilometre : 0.0;
        if (line && -line->line.slope_dB * kilometre > kLeastFall_dBPerKm + 2.0 * error) {
            return true;
        }
    }
    return kilometre <= 0.0;
}

std::optional<double> FibreBehind::seenFrom(double fibreFrom, double from, double to,
                                            double threshold_dB) const
{
    const auto plain = plainlyFrom(fibreFrom, from, to);
    return plain ? plain
                 : evenFrom(std::max(fibreFrom, from - kBeforePulses * w), from, to, threshold_dB);
}

std::optional<double> FibreBehind::plainlyFrom(double fibreFrom, double from, double to) const
{
    auto before = trace.fit(fibreFrom, from);
    const double usual_dB = trace.usualSlope_dB(fibreFrom, from);
    if (before && usual_dB < 0.0) { // the losses on the way are not what fibre falls by
        before->line.slope_dB = std::max(before->line.slope_dB, usual_dB);
    }
    const double furthest = std::min(to + kFurthestPulses * w, lastLit - shortest);
    for (double begin = to + kFallPulses * w; begin < furthest; begin += 0.5 * shortest) {
        for (double length = shortest; begin + length < lastLit; length *= 2.0) {
            if (isPlain(begin, begin + length, before)) {
                return begin;
            }
        }
    }
    return std::nullopt;
}

/// Light that stays even for some pulses, however close events stand there: a tail comes down
/// further.
std::optional<double> FibreBehind::evenFrom(double fibreFrom, double from, double to,
                                            double threshold_dB) const
{
    const double least = std::max(levelBefore_dB(fibreFrom, from) - threshold_dB,
                                  trace.noise().rms_dB() + kPlainAboveNoise_dB);
    const double furthest = std::min(to + kFurthestPulses * w, lastLit - shortest);
    const double step = std::max(1.0, 0.5 * w);
    for (double at = to + 2.0 * w; at < furthest; at += step) {
        const double level = trace.mean_dB(at, at + w);
        const double behind = trace.mean_dB(at + kEvenPulses * w, at + (kEvenPulses + 1.0) * w);
        const double error_dB =
            trace.noise().sigma_dB(at) * std::sqrt(2.0 * trace.noise().correlation() / w);
        const double lost = level - behind + usualSlope_dB * kEvenPulses * w;
        if (behind > least && error_dB < kEven_dB && std::abs(lost) < kEven_dB) {
            return at;
        }
    }
    return std::nullopt;
}

/// Level of the fibre before an index, dB: what stands above it for no longer than a pulse is a
/// reflection.
double FibreBehind::levelBefore_dB(double fibreFrom, double index) const
{
    const double level = trace.mean_dB(index - w, index);
    const double begin = index - (kFallPulses + 1.0) * w;
    return begin < fibreFrom
        ? level
        : std::min(level, trace.mean_dB(begin, begin + w) + usualSlope_dB * kFallPulses * w);
}

/// The first index, some pulses behind `from`, in front of which the light has not yet changed
/// suddenly; `to` where it does not change.
double FibreBehind::untilChange(double from, double to, double threshold_dB) const
{
    const double step = std::max(1.0, 0.5 * w);
    for (double at = from + kFewestPulses * w; at < to; at += step) {
        const double change = trace.mean_dB(at - w, at)
            - trace.mean_dB(at + kFallPulses * w, at + (kFallPulses + 1.0) * w);
        if (std::abs(change) > threshold_dB) {
            return at;
        }
    }
    return to;
}

/// So many samples of light show whether it is that of fibre. In weak light the last of a
/// receiver's tail looks like it for long, and the mean of its power is as certain as that of plain
/// light by the square of what it lacks.
double FibreBehind::tellingLength(double start, double threshold_dB) const
{
    const double until = untilChange(start, start + shortest, threshold_dB);
    if (until < start + shortest) {
        return until - start;
    }
    const auto line = trace.fit(start, start + shortest);
    const double missing_dB =
        line ? trace.noise().rms_dB() + kPlainAboveNoise_dB - line->at(start) : 0.0;
    if (missing_dB <= 0.0 || missing_dB > kPlainAboveNoise_dB - kFibreAboveNoise_dB) {
        return shortest;
    }
    return kWeakFactor * shortest * std::pow(10.0, 0.4 * missing_dB);
}

bool FibreBehind::isPlain(double from, double to, const std::optional<SideLine>& before) const
{
    const auto piece = straightOf(trace, from, to);
    if (!piece || piece->line.at(to) < trace.noise().rms_dB() + kPlainAboveNoise_dB) {
        return false;
    }
    const double kilometre = trace.scale().kilometre;
    const double error = piece->line.slopeError_dB * kilometre;
    const double fall = -piece->line.line.slope_dB * kilometre;
    const double most = tells(before)
        ? kHardlySteeper * -before->line.slope_dB * kilometre + kLeastFall_dBPerKm
        : kSteepFibre_dBPerKm;
    const double bend =
        std::max(kChance * piece->bendError_dB, kBendPart * -piece->line.line.slope_dB);
    return error < kPlainError_dBPerKm && fall > std::max(kLeastFall_dBPerKm, 2.0 * error)
        && fall < most + 3.0 * error && std::abs(piece->bend_dB) < bend;
}

bool FibreBehind::tells(const std::optional<SideLine>& line) const
{
    return line && line->slopeError_dB * trace.scale().kilometre < kTellingError_dBPerKm;
}

/// Whether a line falls as no fibre does, or far more steeply than the fibre before it.
bool FibreBehind::isSteeper(const SideLine& line, const std::optional<SideLine>& before) const
{
    const double kilometre = trace.scale().kilometre;
    if (trace.isSteep(line) || kilometre <= 0.0) {
        return trace.isSteep(line);
    }
    const double usual =
        tells(before) ? std::max(0.0, -before->line.slope_dB) + 3.0 * before->slopeError_dB : 0.0;
    const double most = std::max(kSteepFibre_dBPerKm / kilometre, kSteeper * usual);
    return -line.line.slope_dB > most + 3.0 * line.slopeError_dB;
}

} // namespace otdr
