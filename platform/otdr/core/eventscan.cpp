#include "platform/otdr/core/eventscan.h"

#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace otdr {

namespace {

/// No link has more events. What offers more is noise, and the strongest of it are enough.
constexpr std::size_t kMostCandidates = 4000;

/// Shortest window of a scan, dead zones.
constexpr double kShortestWindowGaps = 1.25;

/// Places at which a window is tried: to a quarter of the dead zone, and for long windows to a part
/// of their length.
constexpr double kPlacesPerWindow = 32.0;
constexpr double kPlacesPerGap = 4.0;

/// A window that shows a place by so many thresholds tells where it is.
constexpr double kSure = 1.5;

/// Windows on both sides of a reflection, dead zones: long ones for the weak, short ones for those
/// close to another.
constexpr double kPeakWindowGaps[] = {1.5, 4.0};

/// A line from sums over the samples first .. last - 1 about their middle.
struct WindowLine
{
    double level = 0.0; ///< in counts below the base, at the middle
    double slope = 0.0;
};

/// Running sums of the counts: a line through any stretch in a few steps.
class RunningSums
{
public:
    RunningSums(const Trace& trace, std::size_t first, std::size_t last)
        : begin(first)
        , scale(trace.dbPerCount())
        , sums(last - first + 1)
    {
        std::int64_t y = 0;
        std::int64_t xy = 0;
        for (std::size_t i = first; i < last; ++i) {
            const std::int64_t raw = trace.samples()[i];
            sums[i - first] = {y, xy};
            y += raw;
            xy += static_cast<std::int64_t>(i - first) * raw;
        }
        sums[last - first] = {y, xy};
    }

    /// The line through first .. last - 1, level in dB at the middle, slope by the sample. Levels
    /// count from that of no signal.
    [[nodiscard]] WindowLine line(std::size_t first, std::size_t last) const
    {
        const Sum& a = sums[first - begin];
        const Sum& b = sums[last - begin];
        const auto n = static_cast<double>(last - first);
        const auto y = static_cast<double>(b.y - a.y);
        const double middle = static_cast<double>(first - begin + last - begin - 1) / 2.0;
        const auto whole = static_cast<std::int64_t>(middle);
        const double xy = static_cast<double>((b.xy - a.xy) - whole * (b.y - a.y))
            - (middle - static_cast<double>(whole)) * y;
        return {-scale * y / n, -scale * xy * 12.0 / (n * (n * n - 1.0))};
    }

    [[nodiscard]] double mean(std::size_t first, std::size_t last) const
    {
        return -scale * static_cast<double>(sums[last - begin].y - sums[first - begin].y)
            / static_cast<double>(last - first);
    }

private:
    struct Sum
    {
        std::int64_t y;
        std::int64_t xy;
    };

    std::size_t begin;
    double scale;
    std::vector<Sum> sums;
};

/// The part of a trace that is scanned, in whole samples.
struct Stretch
{
    std::size_t first = 0;
    std::size_t last = 0;

    [[nodiscard]] std::size_t size() const { return last > first ? last - first : 0; }
};

Stretch stretchOf(const FibreTrace& trace, double from, double to)
{
    const double end = std::clamp(to, 0.0, trace.size());
    const double begin = std::clamp(std::ceil(from), 0.0, end);
    return {static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

class StepScan
{
public:
    StepScan(const FibreTrace& trace, Stretch stretch, double threshold)
        : trace(trace)
        , stretch(stretch)
        , threshold(threshold)
        , gap(static_cast<std::size_t>(std::ceil(trace.gap())))
        , sums(trace.samples(), stretch.first, stretch.last)
    {
    }

    [[nodiscard]] std::vector<Candidate> scan()
    {
        const auto longest = static_cast<std::size_t>(trace.scale().longestWindow);
        auto window = static_cast<std::size_t>(shortest());
        for (;; window *= 2) {
            window = std::min(window, longest);
            if (2 * window + gap > stretch.size()) {
                break;
            }
            scanWith(window);
            if (window == longest) {
                break;
            }
        }
        return strongest();
    }

private:
    [[nodiscard]] double strideOf(std::size_t window) const
    {
        return std::max(
            {1.0, static_cast<double>(window) / kPlacesPerWindow, trace.gap() / kPlacesPerGap});
    }

    void scanWith(std::size_t window)
    {
        const auto n = static_cast<double>(window);
        const auto stride = static_cast<std::size_t>(strideOf(window));
        Candidate before;
        Candidate top;
        for (std::size_t at = stretch.first + window; at + gap + window <= stretch.last;
             at += stride) {
            const double statistic = statisticAt(at, window);
            if (top.statistic > threshold && top.statistic >= before.statistic
                && top.statistic > statistic) {
                found.push_back(top);
            }
            before = top;
            top = {static_cast<double>(at), statistic, n};
        }
        if (top.statistic > threshold && top.statistic >= before.statistic) {
            found.push_back(top);
        }
    }

    /// Distance of the lines on both sides over its standard error. The windows lie in the stretch.
    [[nodiscard]] double statisticAt(std::size_t at, std::size_t window) const
    {
        const auto n = static_cast<double>(window);
        const WindowLine left = sums.line(at - window, at);
        const WindowLine right = sums.line(at + gap, at + gap + window);
        // Both are taken to the middle between them: a step within a short window bends its line,
        // and far from it that would look like a larger one.
        const double dLeft = (n + static_cast<double>(gap)) / 2.0;
        const double dRight = dLeft;
        const double change =
            (left.level + dLeft * left.slope) - (right.level - dRight * right.slope);
        // Variance of a line at a distance d from its middle, by the sample's: 1/n + 12 d^2 / n^3.
        const double unit = trace.noise().correlation()
            * (1.0 / n + 6.0 * (dLeft * dLeft + dRight * dRight) / (n * n * n));
        const auto place = static_cast<double>(at);
        const double sigmaLeft = trace.noise().sigma_dB(place - n / 2.0);
        const double sigmaRight =
            trace.noise().sigma_dB(place + static_cast<double>(gap) + n / 2.0);
        return std::abs(change)
            / std::sqrt(unit * (sigmaLeft * sigmaLeft + sigmaRight * sigmaRight));
    }

    /// The same for two levels where the slope is known: short windows do not tell their own.
    [[nodiscard]] double levelStatisticAt(std::size_t at, std::size_t window, double slope) const
    {
        const auto n = static_cast<double>(window);
        const double change = sums.mean(at - window, at) - sums.mean(at + gap, at + gap + window)
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
        const double slope = 0.5
            * (sums.line(place - whole, place).slope
               + sums.line(place + gap, place + gap + whole).slope);
        for (double n = std::max(6.0, 0.5 * trace.gap()); n < one.window; n *= 2.0) {
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
        return std::max(6.0, std::ceil(kShortestWindowGaps * trace.gap()));
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
    Stretch stretch;
    double threshold;
    std::size_t gap;
    RunningSums sums;
    std::vector<Candidate> found;
};

} // namespace

std::vector<Candidate> scanSteps(const FibreTrace& trace, double from, double to, double threshold)
{
    const Stretch stretch = stretchOf(trace, from, to);
    if (stretch.size() < 8) {
        return {};
    }
    return StepScan(trace, stretch, threshold).scan();
}

namespace {

class PeakScan
{
public:
    PeakScan(const FibreTrace& trace, Stretch stretch, double threshold)
        : trace(trace)
        , stretch(stretch)
        , threshold(threshold)
        , gap(static_cast<std::size_t>(std::ceil(trace.gap())))
        , pulse(static_cast<std::size_t>(std::max(1.0, std::round(trace.scale().pulse))))
        , rise(static_cast<std::size_t>(trace.shape().riseTo(0.6)))
        , sums(trace.samples(), stretch.first, stretch.last)
    {
    }

    /// Adds to `found`.
    void scanWith(std::size_t window, std::vector<Candidate>& found)
    {
        if (stretch.size() < 2 * window + gap) {
            return;
        }
        const auto n = static_cast<double>(window);
        const std::size_t stride = std::max<std::size_t>(1, pulse / 4);
        // From the middle of either window to that of the peak, and the variance of the higher of
        // their lines there.
        const double middle = static_cast<double>(rise) + static_cast<double>(pulse) / 2.0;
        const double fromLeft = n / 2.0 + middle;
        const double fromRight = static_cast<double>(gap) + n / 2.0 - middle;
        const double away = std::max(fromLeft, fromRight);
        const double unit = trace.noise().correlation()
            * (1.0 / static_cast<double>(pulse) + 1.0 / n + 12.0 * away * away / (n * n * n));
        Candidate last;
        Candidate top;
        for (std::size_t at = stretch.first + window; at + gap + window <= stretch.last;
             at += stride) {
            const WindowLine before = sums.line(at - window, at);
            const WindowLine behind = sums.line(at + gap, at + gap + window);
            const double left = before.level + before.slope * fromLeft;
            const double right = behind.level - behind.slope * fromRight;
            const double peak = sums.mean(at + rise, at + rise + pulse);
            const auto place = static_cast<double>(at);
            // Against the higher side: a loss within the pulse is no peak.
            const double sigma = trace.noise().sigma_dB(place - n / 2.0);
            const double statistic = (peak - std::max(left, right)) / (sigma * std::sqrt(unit));
            if (top.statistic > threshold && top.statistic >= last.statistic
                && top.statistic > statistic) {
                found.push_back(top);
            }
            last = top;
            top = {place, statistic, n};
        }
        if (top.statistic > threshold && top.statistic >= last.statistic) {
            found.push_back(top);
        }
    }

private:
    const FibreTrace& trace;
    Stretch stretch;
    double threshold;
    std::size_t gap;
    std::size_t pulse;
    std::size_t rise;
    RunningSums sums;
};

} // namespace

std::vector<Candidate> scanPeaks(const FibreTrace& trace, double from, double to, double threshold)
{
    std::vector<Candidate> found;
    const Stretch stretch = stretchOf(trace, from, to);
    if (stretch.size() < 8) {
        return found;
    }
    PeakScan scan(trace, stretch, threshold);
    for (const double gaps : kPeakWindowGaps) {
        scan.scanWith(static_cast<std::size_t>(std::ceil(gaps * trace.gap())), found);
    }
    std::stable_sort(found.begin(), found.end(), [](const Candidate& a, const Candidate& b) {
        return a.statistic > b.statistic;
    });
    found.resize(std::min(found.size(), kMostCandidates));
    return found;
}

} // namespace otdr
