#include "platform/otdr/core/peakheights.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/pulseshape.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace otdr {

namespace {

/// The flat part of a top begins where so much of the edge is over; no sample stands further above
/// its mean than this, or than so many sigmas.
constexpr double kFlatPart = 0.985;
constexpr double kFlat_dB = 0.2;
constexpr double kFlatSigmas = 4.0;

/// The heights of reflections over a line.
class PeakHeights
{
public:
    PeakHeights(const FibreTrace& trace, const Line& line, double sigma_dB)
        : trace(trace)
        , line(line)
        , sigma(sigma_dB)
        , w(trace.scale().pulse)
    {
    }

    /// Height of a peak above the fibre before it, and where it has it: the mean over the flat part
    /// of its top, which noise does not raise.
    [[nodiscard]] std::pair<double, SeenHeight> plateau(double foot, double next,
                                                        std::size_t top) const
    {
        const double high_dB = level(top) - fibre(top);
        const SeenHeight high {static_cast<double>(top), shownAt(foot, top)};
        const double begin = std::ceil(foot + trace.shape().riseTo(kFlatPart));
        const double end = std::floor(std::min(foot + w, next));
        if (end - begin < 2.0) {
            return {high_dB, high};
        }
        const double centre = 0.5 * (begin + end);
        const double flat_dB = trace.mean_dB(begin, end + 0.5) - line.at(centre);
        // A pulse that is not as long as stated has no flat top there.
        if (high_dB - flat_dB < std::max(kFlat_dB, kFlatSigmas * sigma)) {
            return {flat_dB, {centre, 1.0}};
        }
        return {high_dB, high};
    }

private:
    /// Part of the light of a reflection that its highest sample shows. A receiver that is slow in
    /// getting rid of light may rise at once all the same: it does where half of the pulse shows
    /// more than a slow one would.
    [[nodiscard]] double shownAt(double foot, std::size_t top) const
    {
        const double most = trace.shape().peak(w);
        const double middle = foot + 0.5 * w;
        const double half = powerRatio(trace.samples().levelAt_dB(middle) - line.at(middle)) - 1.0;
        const double risen = half / (powerRatio(level(top) - fibre(top)) - 1.0);
        const double slow = trace.shape().peak(0.5 * w) / most;
        return most < kFlatPart && risen < 0.5 * (slow + 1.0) ? most : 1.0;
    }

    [[nodiscard]] double level(std::size_t i) const { return trace.samples().level_dB(i); }

    [[nodiscard]] double fibre(std::size_t i) const { return line.at(static_cast<double>(i)); }

    const FibreTrace& trace;
    const Line& line;
    double sigma;
    double w;
};

} // namespace

std::size_t highestSample(const FibreTrace& trace, double begin, double end)
{
    const Trace& samples = trace.samples();
    const double last = trace.size() - 1.0;
    auto top = static_cast<std::size_t>(std::clamp(begin, 0.0, last));
    for (std::size_t i = top; static_cast<double>(i) <= std::min(end, last); ++i) {
        top = samples.level_dB(i) > samples.level_dB(top) ? i : top;
    }
    return top;
}

void measureHeights(const FibreTrace& trace, const Line& before, PeakGroup& peak)
{
    const double w = trace.scale().pulse;
    const PeakHeights heights(trace, before, trace.noise().sigma_dB(peak.feet.front()));
    peak.heights_dB.clear();
    peak.seen.clear();
    for (std::size_t i = 0; i < peak.feet.size(); ++i) {
        const double foot = peak.feet[i];
        const double next = i + 1 < peak.feet.size() ? peak.feet[i + 1] : peak.behind;
        const std::size_t top = highestSample(trace, foot, std::min(next, foot + 2.0 * w));
        const auto [height_dB, seen] = heights.plateau(foot, next, top);
        peak.heights_dB.push_back(height_dB);
        peak.seen.push_back(seen);
    }
}

double heightOfLight_dB(const PeakGroup& peak, std::size_t i, const PulseShape& shape,
                        const LostAtReflection& lost)
{
    const double height_dB = peak.heights_dB[i] + lost.before_dB;
    if (i >= peak.seen.size() || !(height_dB > 0.0)) {
        return height_dB;
    }
    const double part =
        shape.step(peak.seen[i].at - peak.feet[i]) * (1.0 - powerRatio(-lost.by_dB));
    // 1 + (top - 1 + part) / shown by the top, which is infinite in a file with an absurd scale.
    const double shown = peak.seen[i].shown;
    const double byTop = 1.0 / shown + powerRatio(-height_dB) * (1.0 - (1.0 - part) / shown);
    return height_dB + levelOfRatio_dB(byTop);
}

} // namespace otdr
