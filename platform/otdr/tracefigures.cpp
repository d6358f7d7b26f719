#include "platform/otdr/tracefigures.h"

#include "platform/otdr/core/returnloss.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace {

/// What the receiver still shows of an end reflection behind its foot, in pulses.
constexpr double kEndTailPulses = 2.5;

/// A neighbour nearer than this many pulses is the event itself.
constexpr double kSameEventPulses = 0.5;

double indexOf(const TraceState& state, const Event& event)
{
    return state.indexAt(event.coordinate);
}

/// The level from which return loss is counted: the line of the fibre behind the start, taken back
/// to it.
double referenceLevel_dB(const TraceState& state, double from, double to)
{
    otdr::EventSite site = siteOf(state, from);
    site.rightLimit = std::min(site.rightLimit, to);
    if (const auto line = otdr::fibreBehind(*state.trace, site)) {
        return line->at(from);
    }
    return state.trace->levelAt_dB(from);
}

std::vector<otdr::SaturatedPeak> saturatedPeaks(const TraceState& state)
{
    std::vector<otdr::SaturatedPeak> peaks;
    for (const Event& event : state.events) {
        if (!event.saturated || !Event::isKnown(event.reflectance)) {
            continue;
        }
        const double index = indexOf(state, event);
        if (const auto line = otdr::fibreBefore(*state.trace, siteOf(state, index))) {
            peaks.push_back(
                {index, index + kEndTailPulses * state.pulseSamples(), *line, event.reflectance});
        }
    }
    return peaks;
}

double returnLoss_dB(const TraceState& state, double from, double to)
{
    const otdr::ReturnLossSection section {from, to, referenceLevel_dB(state, from, to),
                                           state.backscatter_dB};
    const std::vector<otdr::SaturatedPeak> peaks = saturatedPeaks(state);
    return otdr::returnLoss_dB(*state.trace, section, peaks);
}

} // namespace

otdr::EventSite siteOf(const TraceState& state, double index)
{
    const double pulse = state.pulseSamples();
    otdr::EventSite site;
    site.index = index;
    site.pulse = pulse;
    site.longestWindow =
        otdr::kLongestWindow_m / (state.metresPerNs() * state.trace->axis().sampleInterval_ns);
    const double start = state.indexAt(0.0);
    if (start < index - kSameEventPulses * pulse) {
        // The fibre begins at 0 m, behind the reflection of the port; a launch fibre before it has
        // events.
        site.leftLimit = std::max(0.0, start + otdr::kDeadZonePulses * pulse);
    }
    for (const Event& event : state.events) {
        if (event.type == Event::Fiber) {
            continue;
        }
        const double other = indexOf(state, event);
        if (other < index - kSameEventPulses * pulse) {
            site.leftLimit = std::max(site.leftLimit, other + otdr::kDeadZonePulses * pulse);
        } else if (other > index + kSameEventPulses * pulse) {
            site.rightLimit = std::min(site.rightLimit, other);
        }
    }
    return site;
}

double stretchReturnLoss_dB(const TraceState& state, double a_m, double b_m)
{
    if (!state.trace) {
        return Event::kUnknown;
    }
    const double from = state.indexAt(std::min(a_m, b_m));
    const double to = state.indexAt(std::max(a_m, b_m));
    return returnLoss_dB(state, from, to);
}

KeyEventsBlock keyFigures(const TraceState& state)
{
    KeyEventsBlock block;
    if (!state.trace || state.trace->size() == 0) {
        return block;
    }
    const double start = state.indexAt(0.0);
    const double end_m = state.endOfFibre_m();
    auto last = static_cast<double>(state.trace->size());
    if (end_m > 0.0) {
        const double end = state.indexAt(end_m);
        block.totalLoss = otdr::spanLoss(*state.trace, siteOf(state, start), siteOf(state, end));
        last = std::min(last, end + kEndTailPulses * state.pulseSamples());
    }
    block.orl = returnLoss_dB(state, start, last);
    return block;
}
