#include "platform/otdr/core/peakgroup.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/heldtop.h"
#include "platform/otdr/core/lossintail.h"
#include "platform/otdr/core/peakheights.h"
#include "platform/otdr/core/risinglight.h"
#include "platform/otdr/core/timeconstant.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

/// A sample shows an edge when it leaves the fibre by this much.
constexpr double kEdgeSigmas = 4.0;
constexpr double kEdge_dB = 0.02;
constexpr double kEdgePart = 0.02; // of the height: receivers ring a little before a high peak

/// Parts of the height between which an edge tells its place well.
constexpr double kLowPart = 0.05;
constexpr double kHighPart = 0.7;

/// Heights of reflections of a group that are held at one level differ by no more.
constexpr double kHeld_dB = 0.3;

/// The fibre before a reflection is taken from so many dead zones, and ends so many before it.
constexpr double kFibreGaps = 6.0;
constexpr double kClearGaps = 1.5;
constexpr double kFewestFibre = 12.0;
constexpr std::size_t kFewestOfLine = 4;

/// The last of a tail is hidden in the noise: so many pulses for each decibel of the peak.
constexpr double kHiddenTailPulsesPerDb = 0.1;

/// What stands this much above the fibre before a reflection is another one.
constexpr double kNeighbour_dB = 0.5;

/// Reflections up to this height are placed by their whole shape, higher ones by their edge.
constexpr double kLow_dB = 1.5;

/// How long a tail may be, pulses: 1.5 and 0.8 for each decibel of the peak.
constexpr double kTailPulses = 1.5;
constexpr double kTailPulsesPerDb = 0.8;

/// Light from this height above the fibre on has a tail that counts. It is seen where it exceeds so
/// many standard errors, goes on for so many pulses more, and is given so many and this part of the
/// fibre behind it at most. A receiver may also swing below the fibre: with so many samples in a
/// pulse that is seen from so many standard errors on.
constexpr double kTail_dB = 1.0;
constexpr double kTailErrors = 2.5;
constexpr double kSwingErrors = 5.0;
constexpr double kFewestSwing = 4.0;
constexpr double kHiddenTailPulses = 2.5;
constexpr double kLongestTailPulses = 10.0;
constexpr double kTailPart = 0.5;

/// Fibre in front of a loss is looked for in steps of so many pulses.
constexpr double kBeforeLossPulses = 0.5;

/// Up to where the fibre before a reflection is taken: clear of another one just before, where
/// there is fibre enough.
double fibreEndBefore(const FibreTrace& trace, double at, double from)
{
    const double clear = at - kClearGaps * trace.gap();
    return clear - from > kFewestFibre ? clear
                                       : std::max(from + 2.0, at - 0.5 * trace.scale().pulse);
}

class PeakMeasurement
{
public:
    PeakMeasurement(const FibreTrace& trace, double from, double to)
        : trace(trace)
        , w(trace.scale().pulse)
        , from(from)
        , to(to)
    {
    }

    [[nodiscard]] PeakGroup measure(double at)
    {
        fitFibre(at);
        const std::size_t top = highestSample(trace, at - w, std::min(at + w + trace.gap(), to));
        PeakGroup group;
        const double height = level(top) - fibre(top);
        const double edge = std::max({kEdge_dB, kEdgeSigmas * sigma, kEdgePart * height});
        std::size_t first = firstAbove(top, edge);
        // Another reflection just before belongs to the group.
        for (std::size_t before = higherBefore(first, std::max(edge, kNeighbour_dB));
             before < first; before = higherBefore(first, std::max(edge, kNeighbour_dB))) {
            first = firstAbove(before, edge);
        }
        const double rough = std::max(0.0, static_cast<double>(first) - 0.5);
        const double longest = w * (kTailPulses + kTailPulsesPerDb * std::max(0.0, height));
        const double hidden = kHiddenTailPulsesPerDb * std::max(0.0, height) * w;
        const double fallen = fallenFrom(top, std::min(1.0, 0.5 * height));
        const double over = std::max(rough, fallen - w) + trace.gap() + hidden;
        const double settled = fibreBeforeLoss(over, trace.settledFrom(over, longest));
        group.behind = std::min(fibreBeforeRise(trace, over, settled).value_or(settled), to);
        group.feet = {rough};
        for (const double foot : risesBetween(trace, rough, group.behind)) {
            if (foot < group.behind) { // what begins to rise there is the next one's
                group.feet.push_back(foot);
            }
        }
        measureHeights(trace, line, group);
        group.hidden_dB = hiddenAbove_dB(trace, top, timeConstantOf(trace, group, line));
        const double unseen = unseenPart(top, edge);
        const double begun = std::max(0.0, rough - trace.shape().riseTo(unseen));
        const double top_dB =
            group.saturated() ? level(top) : fibre(top) + group.heights_dB.front();
        // The edge of a peak that is cut off tells no part of its height.
        group.feet.front() =
            group.saturated() && unseen < kLowPart ? begun : edgeOf(rough, top, begun, top_dB);
        return group;
    }

private:
    [[nodiscard]] double level(std::size_t i) const { return trace.samples().level_dB(i); }

    [[nodiscard]] double fibre(std::size_t i) const { return line.at(static_cast<double>(i)); }

    [[nodiscard]] std::size_t lowest() const
    {
        return static_cast<std::size_t>(std::max(1.0, from));
    }

    void fitFibre(double at)
    {
        sigma = trace.noise().sigma_dB(at);
        const double end = fibreEndBefore(trace, at, from);
        const auto fitted = trace.fit(std::max(from, end - kFibreGaps * trace.gap()), end);
        if (fitted && fitted->line.samples >= kFewestOfLine && !trace.isSteep(*fitted)) {
            line = fitted->line;
        } else { // little fibre, or a loss on it: what is seen last
            const double last = fitted ? std::max(end, at - 0.5 * w) : end;
            line.level_dB = trace.mean_dB(last - 2.0, last);
            // All the light before a loss stands above that, and is no part of the peak.
            from = std::max(from, last - kClearGaps * trace.gap());
        }
    }

    /// The first of the samples that stand above the fibre without a gap up to `top`.
    [[nodiscard]] std::size_t firstAbove(std::size_t top, double edge) const
    {
        std::size_t first = top;
        while (first > lowest() && level(first - 1) - fibre(first - 1) > edge) {
            --first;
        }
        return first;
    }

    /// The nearest sample above the fibre within a pulse before the first one; that itself where
    /// there is none.
    [[nodiscard]] std::size_t higherBefore(std::size_t first, double edge) const
    {
        const auto reach = static_cast<std::size_t>(w);
        for (std::size_t i = first; i-- > lowest() && i + reach > first;) {
            if (level(i) - fibre(i) > edge) {
                return i;
            }
        }
        return first;
    }

    /// The first index behind the top that lies this much below it.
    [[nodiscard]] double fallenFrom(std::size_t top, double by_dB) const
    {
        std::size_t i = top;
        while (i + 1 < trace.samples().size() && level(i) > level(top) - by_dB) {
            ++i;
        }
        return static_cast<double>(i);
    }

    /// Where fibre begins between two indices that ends at a loss; the second where there is none.
    /// What is even above the fibre before the peak is a top of it.
    [[nodiscard]] double fibreBeforeLoss(double begin, double end) const
    {
        const double step = std::max(1.0, kBeforeLossPulses * w);
        for (double at = begin; at < end; at += step) {
            const bool isTop = trace.mean_dB(at, at + w) > line.at(at + 0.5 * w);
            if (!isTop && (isBeforeLoss(trace, at) || lossInTail(trace, at, end, to))) {
                return at;
            }
        }
        return end;
    }

    /// Part of the height that an edge reaches before it is seen.
    [[nodiscard]] double unseenPart(std::size_t top, double edge) const
    {
        const double height = std::max(level(top) - fibre(top), 2.0 * edge);
        return (powerRatio(edge) - 1.0) / (powerRatio(height) - 1.0);
    }

    /// Each sample of the rising edge tells by its part of the height how far behind the foot it
    /// is; where the edge is too steep for that, the foot lies half a sample before it, and no more
    /// than a sample before where it has begun.
    [[nodiscard]] double edgeOf(double rough, std::size_t top, double begun, double top_dB) const
    {
        const auto begin = static_cast<std::size_t>(std::max(0.0, rough));
        double sum = 0.0;
        double weights = 0.0;
        for (std::size_t i = begin; i <= top; ++i) {
            const double base = fibre(i);
            const double part =
                (powerRatio(level(i) - base) - 1.0) / (powerRatio(top_dB - base) - 1.0);
            if (part > kHighPart) {
                break;
            }
            if (part > kLowPart) {
                const double weight = part * (1.0 - part);
                sum += weight * (static_cast<double>(i) - trace.shape().riseTo(part));
                weights += weight;
            }
        }
        const double found = weights > 0.0 ? sum / weights : rough;
        // Had it begun earlier, the samples before would stand above the fibre.
        return std::clamp(found, std::max(0.0, begun - 1.0), rough + 1.0);
    }

    const FibreTrace& trace;
    double w;
    double from;
    double to;
    double sigma = 0.0;
    Line line;
};

} // namespace

double PeakGroup::height_dB() const
{
    return *std::max_element(heights_dB.begin(), heights_dB.end());
}

bool PeakGroup::isLow() const
{
    return feet.size() == 1 && !saturated() && heights_dB.front() <= kLow_dB;
}

double PeakGroup::hiddenAt_dB(std::size_t i) const
{
    return heights_dB[i] > height_dB() - kHeld_dB ? hidden_dB : 0.0;
}

double highestFoot(const PeakGroup& peak)
{
    const auto highest = std::max_element(peak.heights_dB.begin(), peak.heights_dB.end());
    return peak.feet[static_cast<std::size_t>(highest - peak.heights_dB.begin())];
}

void dropLowFeet(PeakGroup& peak, double least_dB)
{
    const double least = std::min(least_dB, peak.height_dB());
    for (std::size_t i = peak.feet.size(); i-- > 0;) {
        if (!(peak.heights_dB[i] >= least)) {
            peak.feet.erase(peak.feet.begin() + static_cast<std::ptrdiff_t>(i));
            peak.heights_dB.erase(peak.heights_dB.begin() + static_cast<std::ptrdiff_t>(i));
            if (i < peak.seen.size()) {
                peak.seen.erase(peak.seen.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
    }
}

double fibreBeforePeak(const FibreTrace& trace)
{
    return (kClearGaps + kFibreGaps) * trace.gap();
}

bool isBehindALoss(const FibreTrace& trace, double at, double from)
{
    const double end = fibreEndBefore(trace, at, from);
    const auto line = trace.fit(std::max(from, end - kFibreGaps * trace.gap()), end);
    return line && line->line.samples >= kFewestOfLine && trace.isSteep(*line);
}

double clearOfTail(const FibreTrace& trace, double from, double to, double brightness_dB)
{
    if (!(brightness_dB >= kTail_dB)) {
        return from;
    }
    const double w = trace.scale().pulse;
    const double longest = trace.scale().longestWindow;
    const double last = from + std::min(kLongestTailPulses * w, kTailPart * (to - from));
    const auto isDisturbed = [&](double at) {
        const auto line = trace.fit(at + w, std::min(to, at + w + longest));
        const double middle = at + 0.5 * (w - 1.0);
        const double error =
            trace.noise().sigma_dB(middle) * std::sqrt(trace.noise().correlation() / w);
        if (!line) {
            return false;
        }
        const double off = (trace.mean_dB(at, at + w) - line->at(middle))
            / std::hypot(error, line->errorAt_dB(middle));
        return off > kTailErrors || (off < -kSwingErrors && w >= kFewestSwing);
    };
    double at = from;
    while (at < last && isDisturbed(at)) {
        if (isBeforeLoss(trace, at)) {
            return at;
        }
        at += std::max(1.0, 0.5 * w);
    }
    return std::min(at + kHiddenTailPulses * w, std::max(from, last));
}

namespace {

/// Where the light rises that a place lies in: fibre does not rise, and what does so in front of
/// the place is the edge of a peak that holds the receiver at its top.
double onsetOf(const FibreTrace& trace, double at, double from)
{
    const double w = trace.scale().pulse;
    const double end = fibreEndBefore(trace, at, from);
    const double begin = std::max(from, end - kFibreGaps * trace.gap());
    if (end - begin > 2.0 * w
        && trace.mean_dB(end - w, end) > trace.mean_dB(begin, begin + w) + kPlainRise_dB) {
        const std::vector<double> rises = risesIn(trace, begin, end);
        return rises.empty() ? at : rises.front();
    }
    return at;
}

} // namespace

PeakGroup measurePeak(const FibreTrace& trace, double at, double from, double to)
{
    return PeakMeasurement(trace, from, to).measure(onsetOf(trace, at, from));
}

} // namespace otdr
