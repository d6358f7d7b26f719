#pragma once

#include "platform/otdr/core/eventscan.h"
#include "platform/otdr/core/windowsums.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace otdr {

/// The part of a trace that is scanned, in whole samples.
struct ScanStretch
{
    std::size_t first = 0;
    std::size_t last = 0;

    [[nodiscard]] std::size_t size() const { return last > first ? last - first : 0; }
};

/// One pass over a stretch: a window of some samples before every place and one as long behind it,
/// with a gap between them.
///
/// A Window has the counts `samples`, `gap` and `stride` (from place to place); it tells with
/// change_dB(at, sums) what it shows at a place, and with statistic(at, change) how many standard
/// errors that is, of no less than `error` times the noise of a sample.
template <typename Window>
struct ScanPass
{
    explicit ScanPass(Window window)
        : window(std::move(window))
    {
    }

    /// Samples that are seen at one place.
    [[nodiscard]] std::size_t span() const { return 2 * window.samples + window.gap; }

    /// Over the places, from `at` on, whose windows end within `sums`. What shows less than
    /// `hidden_dB` is not above the threshold.
    template <typename Sums>
    void advance(const Sums& sums, std::size_t end, double threshold, double hidden_dB)
    {
        const std::size_t behind = window.gap + window.samples;
        for (; at + behind <= end; at += window.stride) {
            const double change = window.change_dB(at, sums);
            // Most places show nothing: the noise, the root and the division are for the others.
            const double statistic = change > hidden_dB ? window.statistic(at, change) : 0.0;
            if (top.statistic > threshold && top.statistic >= before.statistic
                && top.statistic > statistic) {
                found.push_back(top);
            }
            before = top;
            top = {static_cast<double>(at), statistic, static_cast<double>(window.samples)};
        }
    }

    void finish(double threshold)
    {
        if (top.statistic > threshold && top.statistic >= before.statistic) {
            found.push_back(top);
        }
    }

    Window window;
    std::size_t at = 0; ///< the next place
    Candidate before;
    Candidate top;
    std::vector<Candidate> found; ///< tops of the statistic above the threshold, in order
};

/// Makes some passes over a stretch at once, no longer than which are their spans: what they find,
/// pass by pass. Short windows go tile by tile together, so that all of them are fed from the
/// cache.
template <typename Window>
[[nodiscard]] std::vector<Candidate> scanWith(const FibreTrace& trace, ScanStretch stretch,
                                              double threshold,
                                              std::vector<ScanPass<Window>>& passes)
{
    constexpr std::size_t kTile = 8192;
    const auto hidden_dB = [&](const ScanPass<Window>& pass, std::size_t begin, std::size_t end) {
        constexpr double kRounding = 0.999999;
        return kRounding * threshold * pass.window.error
            * trace.noise().leastSigma_dB(static_cast<double>(begin), static_cast<double>(end));
    };
    const FarSums far(trace.samples());
    std::vector<ScanPass<Window>*> near;
    for (ScanPass<Window>& pass : passes) {
        pass.at = stretch.first + pass.window.samples;
        if (pass.span() <= kTile / 2) {
            near.push_back(&pass);
        } else {
            pass.advance(far, stretch.last, threshold,
                         hidden_dB(pass, stretch.first, stretch.last));
        }
    }
    NearSums sums(near.empty() ? 0 : std::min(kTile, stretch.size()));
    std::size_t begin = stretch.first;
    for (std::size_t end = near.empty() ? stretch.last : begin; end < stretch.last;) {
        end = std::min(begin + kTile, stretch.last);
        sums.fill(trace.samples(), begin, end);
        std::size_t next = end;
        for (ScanPass<Window>* pass : near) {
            pass->advance(sums, end, threshold, hidden_dB(*pass, begin, end));
            next = std::min(next, pass->at - pass->window.samples);
        }
        begin = next;
    }
    std::vector<Candidate> found;
    for (ScanPass<Window>& pass : passes) {
        pass.finish(threshold);
        found.insert(found.end(), pass.found.begin(), pass.found.end());
    }
    return found;
}

} // namespace otdr
