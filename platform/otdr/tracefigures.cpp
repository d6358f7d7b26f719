#include "platform/otdr/tracefigures.h"

#include "platform/otdr/core/pulseshape.h"
#include "platform/otdr/core/returnloss.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

/// What the receiver still shows of an end reflection behind its foot, in pulses.
constexpr double kEndTailPulses = 2.5;

double indexOf(const TraceState& state, const Event& event)
{
    return state.indexAt(event.coordinate);
}

/// A place with nothing else on the trace.
otdr::EventSite bareSite(const TraceState& state, double index)
{
    otdr::EventSite site;
    site.index = index;
    site.pulse = state.pulseSamples();
    site.longestWindow =
        otdr::kLongestWindow_m / (state.metresPerNs() * state.trace->axis().sampleInterval_ns);
    return site;
}

/// The fibre behind a place and before another.
std::optional<otdr::Line> fibreBehind(const TraceState& state, double from, double to)
{
    otdr::EventSite site = siteOf(state, from);
    site.rightLimit = std::min(site.rightLimit, to);
    return otdr::fibreBehind(*state.trace, site);
}

/// The level from which the return loss of a stretch is counted: the line of the fibre behind its
/// start, taken back to it.
double referenceLevel_dB(const TraceState& state, double from, double to)
{
    const auto line = fibreBehind(state, from, to);
    return line ? line->at(from) : state.trace->levelAt_dB(from);
}

/// The start in the list; one of which nothing is known where it has none.
Event startOf(const TraceState& state)
{
    const auto start =
        std::find_if(state.events.begin(), state.events.end(),
                     [](const Event& event) { return event.type == Event::SpanStart; });
    return start != state.events.end() ? *start : Event();
}

/// What is lost at the start, which is of the span: a launch fibre shows it. Files tell a loss of 0
/// where none does.
double lossAtStart_dB(const Event& start)
{
    return Event::isKnown(start.loss) ? start.loss : 0.0;
}

/// Whether fibre is seen in front of the start, too.
bool isBehindLaunchFibre(const Event& start)
{
    return lossAtStart_dB(start) != 0.0 || Event::isKnown(start.reflIn);
}

/// The fibre behind the start as it was measured when its events were found, or else as it shows.
std::optional<otdr::Line> fibreBehindStart(const TraceState& state, const Event& told, double start,
                                           double last)
{
    if (Event::isKnown(told.behindFrom) && Event::isKnown(told.behindTo)) {
        return otdr::fitLineBetween(*state.trace, state.indexAt(told.behindFrom) - 0.5,
                                    state.indexAt(told.behindTo) + 0.5);
    }
    return fibreBehind(state, start, last);
}

/// How far behind a foot the level of the fibre there is seen, by a receiver that suits the pulse:
/// only when half of the pulse is in the fibre, half of its light comes back. In samples.
double seenBehind(const TraceState& state)
{
    static const double pulses =
        otdr::PulseShape(1.0, otdr::PulseShape::kUsualTimeConstant).centre();
    return pulses * state.pulseSamples();
}

double seenAt(const TraceState& state, double foot)
{
    return foot + seenBehind(state);
}

/// The stretch whose return loss is that of the span, up to an index, seen from where it starts.
otdr::ReturnLossSection spanSection(const TraceState& state, double start, double last)
{
    const Event told = startOf(state);
    const auto line = fibreBehindStart(state, told, start, last);
    const double behind_dB = line ? line->at(seenAt(state, start)) : state.trace->levelAt_dB(start);
    return {start, last, behind_dB + lossAtStart_dB(told), state.backscatter_dB,
            isBehindLaunchFibre(told) ? seenBehind(state) : 0.0};
}

std::vector<otdr::SaturatedPeak> saturatedPeaks(const TraceState& state)
{
    std::vector<otdr::SaturatedPeak> peaks;
    for (const Event& event : state.events) {
        const bool isPort = event.type == Event::SpanStart && !isBehindLaunchFibre(event);
        if (!event.saturated || !Event::isKnown(event.reflectance) || isPort) {
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

/// NaN where more light would come back than went in: what was measured does not begin on fibre but
/// in the noise, whose level is no measure of that.
double ofPossible_dB(double returnLoss_dB)
{
    return returnLoss_dB < 0.0 ? Event::kUnknown : returnLoss_dB;
}

double returnLoss_dB(const TraceState& state, const otdr::ReturnLossSection& section)
{
    const std::vector<otdr::SaturatedPeak> peaks = saturatedPeaks(state);
    return ofPossible_dB(otdr::returnLoss_dB(*state.trace, section, peaks));
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
double lossBehindStart_dB(const TraceState& state, double start, double end)
{
    const FoundEnds found = foundEnds(state);
    if (found.fibreMeetsEnd && Event::isKnown(found.loss_dB())) {
        return found.loss_dB();
    }
    const double fitted = otdr::spanLoss(*state.trace, siteOf(state, start), siteOf(state, end));
    return Event::isKnown(fitted) ? fitted : found.loss_dB();
}

} // namespace

std::vector<double> placesOf(const TraceState& state)
{
    std::vector<double> places;
    for (const Event& event : state.events) {
        if (event.type != Event::Fiber) {
            places.push_back(indexOf(state, event));
        }
    }
    return places;
}

otdr::EventSite siteOf(const TraceState& state, double index)
{
    return siteAmong(state, index, placesOf(state));
}

otdr::EventSite siteAmong(const TraceState& state, double index, const std::vector<double>& places)
{
    const double pulse = state.pulseSamples();
    otdr::EventSite site = bareSite(state, index);
    const double start = state.indexAt(0.0);
    if (start < index - kSameEventPulses * pulse) {
        // The fibre begins at 0 m, behind the reflection of the port; a launch fibre before it has
        // events.
        site.leftLimit = std::max(0.0, start + otdr::kDeadZonePulses * pulse);
    }
    for (const double other : places) {
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
    return returnLoss_dB(state,
                         {from, to, referenceLevel_dB(state, from, to), state.backscatter_dB});
}

double sectionReturnLoss_dB(const TraceState& state, const Event& from, const Event& to,
                            double told_dB)
{
    const double start = indexOf(state, from);
    const double end = indexOf(state, to);
    // A stored place is good to a pulse: behind it the edge of a peak would count as fibre.
    const double shownTo = end - state.pulseSamples();
    otdr::EventSite near = bareSite(state, start);
    near.rightLimit = shownTo;
    otdr::EventSite far = bareSite(state, shownTo);
    far.leftLimit = start + otdr::kDeadZonePulses * state.pulseSamples();
    const auto behind = otdr::fibreBehind(*state.trace, near);
    const auto before = otdr::fibreBefore(*state.trace, far);
    otdr::FibreBetween fibre;
    fibre.from = seenAt(state, start);
    fibre.to = seenAt(state, end);
    fibre.backscatter_dB = state.backscatter_dB;
    if (behind && before) {
        fibre.behind = *behind;
        fibre.before = *before;
    } else if (Event::isKnown(told_dB)) {
        fibre.behind.centre = fibre.from;
        fibre.behind.slope_dB = -told_dB / (fibre.to - fibre.from);
        fibre.before = fibre.behind;
    } else {
        return Event::kUnknown;
    }
    return ofPossible_dB(otdr::fibreReturnLoss_dB(*state.trace, fibre));
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
        block.totalLoss = lossAtStart_dB(startOf(state)) + lossBehindStart_dB(state, start, end);
        last = std::min(last, end + kEndTailPulses * state.pulseSamples());
    }
    block.orl = returnLoss_dB(state, spanSection(state, start, last));
    return block;
}
