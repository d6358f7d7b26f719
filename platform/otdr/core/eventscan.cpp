#include "platform/otdr/core/eventscan.h"

#include "platform/otdr/core/scanpass.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <vector>

namespace otdr {

namespace {

/// No link has more events. What offers more is noise, and the strongest of it are enough.
constexpr std::size_t kMostCandidates = 4000;

/// Shortest window of a scan, dead zones and samples, and the shortest by which a place is told.
constexpr double kShortestWindowGaps = 1.25;
constexpr double kFewestSamples = 6.0;
constexpr double kLocatingGaps = 0.5;

/// Shorter stretches are not scanned, samples.
constexpr std::size_t kShortestStretch = 8;

/// Places at which a window is tried: to a quarter of the dead zone, and for long windows to a part
/// of their length.
constexpr double kPlacesPerWindow = 32.0;
constexpr double kPlacesPerGap = 4.0;

/// A window that shows a place by so many thresholds tells where it is.
constexpr double kSure = 1.5;

/// Windows on both sides of a reflection, dead zones: long ones for the weak, short ones for those
/// close to another.
constexpr double kPeakWindowGaps[] = {1.5, 4.0};

/// A reflection is looked at from where so much of its edge is over, at so many places a pulse.
constexpr double kRisenPart = 0.6;
constexpr std::size_t kPlacesPerPulse = 4;

ScanStretch stretchOf(const FibreTrace& trace, double from, double to)
{
    const double end = std::clamp(to, 0.0, trace.size());
    const double begin = std::clamp(std::ceil(from), 0.0, end);
    return {static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

/// Sum of the squared distances of n samples from their middle: what tells a slope.
double slopeSamples(std::size_t samples)
{
    const auto n = static_cast<double>(samples);
    return n * (n * n - 1.0) / 12.0;
}

/// The distance of the lines on both sides, taken to the middle between them: a step within a short
/// window bends its line, and far from it that would look like a larger one.
class StepWindow
{
public:
    StepWindow(const FibreTrace& trace, std::size_t gap, std::size_t samples, double stride)
        : gap(gap)
        , samples(samples)
        , stride(static_cast<std::size_t>(stride))
        , trace(trace)
    {
        const auto n = static_cast<double>(samples);
        const double away = 0.5 * (n + static_cast<double>(gap));
        // Variance of a line at a distance d from its middle, by the sample's: 1/n + 12 d^2 / n^3.
        variance = trace.noise().correlation() * (1.0 / n + 12.0 * away * away / (n * n * n));
        error = std::sqrt(2.0 * variance);
        perCount_dB = trace.samples().dbPerCount() / n;
        perMoment_dB = trace.samples().dbPerCount() * 0.5 * away / slopeSamples(samples);
        beside = 0.5 * n;
    }

    template <typename Sums>
    [[nodiscard]] double change_dB(std::size_t at, const Sums& sums) const
    {
        const WindowSums left = sums.of(at - samples, at);
        const WindowSums right = sums.of(at + gap, at + gap + samples);
        // Counts grow as levels fall.
        return std::abs(perCount_dB * static_cast<double>(right.y - left.y)
                        - perMoment_dB * static_cast<double>(left.xy2 + right.xy2));
    }

    [[nodiscard]] double statistic(std::size_t at, double change_dB) const
    {
        const auto place = static_cast<double>(at);
        const double left = trace.noise().sigma_dB(place - beside);
        const double right = trace.noise().sigma_dB(place + static_cast<double>(gap) + beside);
        return change_dB / std::sqrt(variance * (left * left + right * right));
    }

    std::size_t gap;
    std::size_t samples;
    std::size_t stride;
    double error = 0.0; ///< standard error of a change where a sample's is 1

private:
    const FibreTrace& trace;
    double variance = 0.0; ///< of a line, by that of a sample
    double perCount_dB = 0.0;
    double perMoment_dB = 0.0;
    double beside = 0.0;
};

class StepScan
{
public:
    StepScan(const FibreTrace& trace, ScanStretch stretch, double threshold)
        : trace(trace)
        , stretch(stretch)
        , threshold(threshold)
        , gap(static_cast<std::size_t>(std::ceil(trace.gap())))
    {
    }

    [[nodiscard]] std::vector<Candidate> scan()
    {
        std::vector<ScanPass<StepWindow>> passes;
        const auto longest = static_cast<std::size_t>(trace.scale().longestWindow);
        auto window = static_cast<std::size_t>(shortest());
        for (;; window *= 2) {
            window = std::min(window, longest);
            if (2 * window + gap > stretch.size()) {
                break;
            }
            passes.emplace_back(StepWindow(trace, gap, window, strideOf(window)));
            if (window == longest) {
                break;
            }
        }
        found = scanWith(trace, stretch, threshold, passes);
        return strongest();
    }

private:
    [[nodiscard]] double strideOf(std::size_t window) const
    {
        return std::max(
            {1.0, static_cast<double>(window) / kPlacesPerWindow, trace.gap() / kPlacesPerGap});
    }

    /// Slope of the line through so many samples, dB.
    [[nodiscard]] double slope_dB(std::size_t first, std::size_t window) const
    {
        const WindowSums sums = FarSums(trace.samples()).of(first, first + window);
        return -0.5 * trace.samples().dbPerCount() * static_cast<double>(sums.xy2)
            / slopeSamples(window);
    }

    /// The statistic of two levels where the slope is known: short windows do not tell their own.
    [[nodiscard]] double levelStatisticAt(std::size_t at, std::size_t window, double slope) const
    {
        const auto n = static_cast<double>(window);
        const PrefixSums& sums = trace.samples().sums();
        const double change = trace.samples().dbPerCount()
                * (sums.mean(at + gap, at + gap + window) - sums.mean(at - window, at))
            + slope * (n + static_cast<double>(gap));
        const double sigma = trace.noise().sigma_dB(static_cast<double>(at));
        return std::abs(change) / (sigma * std::sqrt(2.0 * trace.noise().correlation() / n));
    }

    /// The same place by the shortest windows that show it: long ones hardly tell where it is.
    [[nodiscard]] Candidate located(const Candidate& one) const
    {
        const double reach = strideOf(static_cast<std::size_t>(one.window)) + trace.gap();
        const double stride = std::max(1.0, trace.gap() / (2.0 * kPlacesPerGap));
        const auto place = static_cast<std::size_t>(one.at);
        const auto whole = static_cast<std::size_t>(one.window);
        const double slope = 0.5 * (slope_dB(place - whole, whole) + slope_dB(place + gap, whole));
        for (double n = std::max(kFewestSamples, kLocatingGaps * trace.gap()); n < one.window;
             n *= 2.0) {
            const auto window = static_cast<std::size_t>(n);
            Candidate best = one;
            best.statistic = 0.0;
            for (double at = one.at - reach; at <= one.at + reach; at += stride) {
                const bool fits = at - n >= static_cast<double>(stretch.first)
                    && at + trace.gap() + 1.0 + n <= static_cast<double>(stretch.last);
                const double statistic =
                    fits ? levelStatisticAt(static_cast<std::size_t>(at), window, slope) : 0.0;
                if (statistic > best.statistic) {
                    best.at = std::floor(at);
                    best.statistic = statistic;
                }
            }
            if (best.statistic > kSure * threshold) {
                return {best.at, one.statistic, one.window};
            }
        }
        return one;
    }

    [[nodiscard]] double shortest() const
    {
        return std::max(kFewestSamples, std::ceil(kShortestWindowGaps * trace.gap()));
    }

    /// Strongest first; a candidate whose windows hold a stronger one is left out.
    [[nodiscard]] std::vector<Candidate> strongest()
    {
        std::sort(found.begin(), found.end(), [](const Candidate& a, const Candidate& b) {
            return a.statistic != b.statistic ? a.statistic > b.statistic : a.at < b.at;
        });
        std::set<double> places;
        std::vector<Candidate> taken;
        const double reach = trace.gap();
        for (const Candidate& one : found) {
            const auto next = places.lower_bound(one.at - one.window - reach);
            if (taken.size() < kMostCandidates
                && (next == places.end() || *next >= one.at + one.window + reach)) {
                taken.push_back(located(one));
                places.insert(taken.back().at);
            }
        }
        std::sort(taken.begin(), taken.end(),
                  [](const Candidate& a, const Candidate& b) { return a.at < b.at; });
        return taken;
    }

    const FibreTrace& trace;
    ScanStretch stretch;
    double threshold;
    std::size_t gap;
    std::vector<Candidate> found;
};

} // namespace

std::vector<Candidate> scanSteps(const FibreTrace& trace, double from, double to, double threshold)
{
    const ScanStretch stretch = stretchOf(trace, from, to);
    if (stretch.size() < kShortestStretch) {
        return {};
    }
    return StepScan(trace, stretch, threshold).scan();
}

namespace {

/// The level within a pulse over the higher of the lines on both sides: a loss within the pulse is
/// no peak.
class PeakWindow
{
public:
    PeakWindow(const FibreTrace& trace, std::size_t samples)
        : gap(static_cast<std::size_t>(std::ceil(trace.gap())))
        , samples(samples)
        , trace(trace)
        , pulse(static_cast<std::size_t>(std::max(1.0, std::round(trace.scale().pulse))))
        , rise(static_cast<std::size_t>(trace.shape().riseTo(kRisenPart)))
    {
        stride = std::max<std::size_t>(1, pulse / kPlacesPerPulse);
        const auto n = static_cast<double>(samples);
        const auto w = static_cast<double>(pulse);
        beside = 0.5 * n;
        // From the middle of either window to that of the peak.
        const double middle = static_cast<double>(rise) + 0.5 * w;
        const double fromLeft = beside + middle;
        const double fromRight = static_cast<double>(gap) + beside - middle;
        // Of the mean over a pulse, and of the less certain line there.
        const double away = std::max(fromLeft, fromRight);
        error = std::sqrt(trace.noise().correlation()
                          * (1.0 / w + 1.0 / n + 12.0 * away * away / (n * n * n)));
        const double perCount_dB = trace.samples().dbPerCount();
        perLevel_dB = perCount_dB / n;
        perPeak_dB = perCount_dB / w;
        perLeft_dB = perCount_dB * 0.5 * fromLeft / slopeSamples(samples);
        perRight_dB = perCount_dB * 0.5 * fromRight / slopeSamples(samples);
    }

    template <typename Sums>
    [[nodiscard]] double change_dB(std::size_t at, const Sums& sums) const
    {
        const WindowSums before = sums.of(at - samples, at);
        const WindowSums behind = sums.of(at + gap, at + gap + samples);
        // Below no light, as counts are.
        const double left = perLevel_dB * static_cast<double>(before.y)
            + perLeft_dB * static_cast<double>(before.xy2);
        const double right = perLevel_dB * static_cast<double>(behind.y)
            - perRight_dB * static_cast<double>(behind.xy2);
        return std::min(left, right)
            - perPeak_dB * static_cast<double>(sums.of(at + rise, at + rise + pulse).y);
    }

    [[nodiscard]] double statistic(std::size_t at, double change_dB) const
    {
        return change_dB / (error * trace.noise().sigma_dB(static_cast<double>(at) - beside));
    }

    std::size_t gap;
    std::size_t samples;
    std::size_t stride = 1;
    double error = 0.0; ///< standard error of a change where a sample's is 1

private:
    const FibreTrace& trace;
    std::size_t pulse;
    std::size_t rise;
    double beside = 0.0;
    double perLevel_dB = 0.0;
    double perPeak_dB = 0.0;
    double perLeft_dB = 0.0;
    double perRight_dB = 0.0;
};

} // namespace

std::vector<Candidate> scanPeaks(const FibreTrace& trace, double from, double to, double threshold)
{
    std::vector<Candidate> found;
    const ScanStretch stretch = stretchOf(trace, from, to);
    if (stretch.size() < kShortestStretch) {
        return found;
    }
    std::vector<ScanPass<PeakWindow>> passes;
    for (const double gaps : kPeakWindowGaps) {
        const PeakWindow window(trace, static_cast<std::size_t>(std::ceil(gaps * trace.gap())));
        if (stretch.size() >= 2 * window.samples + window.gap) {
            passes.emplace_back(window);
        }
    }
    found = scanWith(trace, stretch, threshold, passes);
    std::stable_sort(found.begin(), found.end(), [](const Candidate& a, const Candidate& b) {
        return a.statistic > b.statistic;
    });
    found.resize(std::min(found.size(), kMostCandidates));
    return found;
}

} // namespace otdr
