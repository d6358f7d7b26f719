#include "platform/otdr/core/loss.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>

namespace otdr {

namespace {

/// Scatter of the level in decibels where the light is as strong as the noise, 5 / ln 10: beyond it
/// there is nothing to fit. Far above what any fibre shows.
constexpr double kNoiseSigma_dB = kDbPerNeper;

/// A tail less than this above the fibre has settled: the tolerance by which dead zones are stated.
constexpr double kSettled_dB = 0.1;

/// Longer tails than this are not looked for.
constexpr double kLongestTailPulses = 10.0;

/// Scatter that a single sample hardly ever exceeds.
constexpr double kScatter = 4.0;

std::optional<Line> fibreLine(const Trace& trace, double from, double to)
{
    std::optional<Line> line = fitLineBetween(trace, from, to);
    if (line && line->sigma_dB > kNoiseSigma_dB) {
        line.reset();
    }
    return line;
}

/// The first sample of a stretch at which the tail of a peak before it has come down to the fibre
/// that follows the tail.
double settled(const Trace& trace, SampleRange stretch, double pulse)
{
    const double longest =
        std::min(kLongestTailPulses * pulse, static_cast<double>(stretch.count()) / 2.0);
    const auto tail = static_cast<std::size_t>(longest);
    const std::size_t behind = stretch.first + tail;
    const std::optional<Line> fibre =
        fitLine(trace, behind, std::min(stretch.last, behind + 2 * tail));
    std::size_t i = stretch.first;
    if (fibre) {
        const double margin = std::max(kSettled_dB, kScatter * fibre->sigma_dB);
        while (i < behind && trace.level_dB(i) > fibre->at(static_cast<double>(i)) + margin) {
            ++i;
        }
    }
    return static_cast<double>(i);
}

} // namespace

std::optional<Line> fibreBefore(const Trace& trace, const EventSite& site)
{
    return fibreLine(trace, std::max(site.leftLimit, site.index - site.longestWindow), site.index);
}

std::optional<Line> fibreBehind(const Trace& trace, const EventSite& site)
{
    const double pulse = std::max(site.pulse, 0.0);
    const double from = site.index + kDeadZonePulses * pulse;
    const SampleRange stretch = samplesBetween(from, site.rightLimit, trace.size());
    if (stretch.empty()) {
        return std::nullopt;
    }
    const double start = settled(trace, stretch, pulse);
    return fibreLine(trace, start, std::min(site.rightLimit, start + site.longestWindow));
}

EventLoss eventLoss(const Trace& trace, const EventSite& site)
{
    EventLoss result;
    if (const std::optional<Line> before = fibreBefore(trace, site)) {
        result.in_dB = before->at(site.index);
    }
    if (const std::optional<Line> behind = fibreBehind(trace, site)) {
        result.out_dB = behind->at(site.index);
    }
    result.loss_dB = result.in_dB - result.out_dB;
    return result;
}

double spanLoss(const Trace& trace, const EventSite& start, const EventSite& end)
{
    const std::optional<Line> first = fibreBehind(trace, start);
    const std::optional<Line> last = fibreBefore(trace, end);
    return first && last ? first->at(start.index) - last->at(end.index)
                         : std::numeric_limits<double>::quiet_NaN();
}

} // namespace otdr
