#include "platform/otdr/tracefigures.h"

#include "platform/otdr/core/returnloss.h"

#include <algorithm>
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

/// NaN where more light would come back than went in: the section does not begin on fibre but in
/// the noise, whose level is no measure of that.
double returnLoss_dB(const TraceState& state, double from, double to, double reference_dB)
{
    const otdr::ReturnLossSection section {from, to, reference_dB, state.backscatter_dB};
    const std::vector<otdr::SaturatedPeak> peaks = saturatedPeaks(state);
    const double loss_dB = otdr::returnLoss_dB(*state.trace, section, peaks);
    return loss_dB < 0.0 ? Event::kUnknown : loss_dB;
}

/// The levels that were measured at the ends of the fibre when its events were found: those that
/// losses of events and of fibre were measured against.
struct FoundEnds
{
    double behindStart_dB = Event::kUnknown;
    double beforeEnd_dB = Event::kUnknown;
    bool fibreMeetsEnd = false; ///< it was seen up to the end: no event hides the last of it

    [[nodiscard]] double loss_dB() const { return behindStart_dB - beforeEnd_dB; }
};

FoundEnds foundEnds(const TraceState& state)
{
    FoundEnds ends;
    for (const Event& event : state.events) {
        if (event.type == Event::SpanEnd) {
            ends.beforeEnd_dB = event.reflIn;
            break;
        }
        if (event.type == Event::Fiber) {
            continue;
        }
        if (event.type == Event::SpanStart) {
            ends.behindStart_dB = event.reflOut;
        }
        ends.fibreMeetsEnd = Event::isKnown(event.reflOut);
    }
    return ends;
}

/// Sections and events make up the span, so its loss is told between the levels that theirs were.
/// Where an event hides the fibre in front of the end, a line through what is left of it shows more
/// than one that stops at that event.
double endToEndLoss_dB(const TraceState& state, double start, double end)
{
    const FoundEnds found = foundEnds(state);
    if (found.fibreMeetsEnd && Event::isKnown(found.loss_dB())) {
        return found.loss_dB();
    }
    const double fitted = otdr::spanLoss(*state.trace, siteOf(state, start), siteOf(state, end));
    return Event::isKnown(fitted) ? fitted : found.loss_dB();
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
    return returnLoss_dB(state, from, to, referenceLevel_dB(state, from, to));
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
    if (end_m >= 0.0) {
        const double end = state.indexAt(end_m);
        if (end <= start + kSameEventPulses * state.pulseSamples()) {
            return block; // no fibre shows between the reflections of port and end
        }
        block.totalLoss = endToEndLoss_dB(state, start, end);
        last = std::min(last, end + kEndTailPulses * state.pulseSamples());
    }
    const double behindStart_dB = foundEnds(state).behindStart_dB;
    block.orl = returnLoss_dB(
        state, start, last,
        Event::isKnown(behindStart_dB) ? behindStart_dB : referenceLevel_dB(state, start, last));
    return block;
}
