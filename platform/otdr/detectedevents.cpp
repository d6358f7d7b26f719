#include "platform/otdr/detectedevents.h"

#include "platform/otdr/core/storedthresholds.h"

#include <cmath>

namespace {

Event::Type typeOf(otdr::DetectedEvent::Kind kind)
{
    using Kind = otdr::DetectedEvent::Kind;
    switch (kind) {
    case Kind::Start:
        return Event::SpanStart;
    case Kind::Reflective:
        return Event::Reflective;
    case Kind::Gain:
        return Event::Positive;
    case Kind::End:
        return Event::SpanEnd;
    case Kind::NonReflective:
        break;
    }
    return Event::NonReflective;
}

/// Indices of the record as places on the fibre.
class Places
{
public:
    explicit Places(const TraceState& state)
        : state(state)
        , zero(state.indexAt(0.0))
    {
    }

    void put(Event& event, double index) const
    {
        event.position = std::lround(index - zero);
        // That of the sample: tables tell it, and a file is to tell the same.
        event.coordinate = static_cast<double>(event.position)
            * state.trace->axis().sampleInterval_ns * state.metresPerNs();
        event.width = state.pulse_ns * state.metresPerNs();
    }

    [[nodiscard]] double coordinateOf(double index) const
    {
        return (index - zero) * state.trace->axis().sampleInterval_ns * state.metresPerNs();
    }

private:
    const TraceState& state;
    double zero;
};

Event eventOf(const otdr::DetectedEvent& found, const Places& places)
{
    Event event;
    event.type = typeOf(found.kind);
    places.put(event, found.index);
    event.loss = found.loss_dB;
    event.reflectance = found.reflectance_dB;
    event.saturated = found.saturated();
    if (found.before.samples > 0) {
        event.reflIn = found.before.at(found.index);
        event.beforeFrom = places.coordinateOf(found.before.first());
    }
    if (found.behind.samples > 0) {
        event.reflOut = found.behind.at(found.index);
        event.behindFrom = places.coordinateOf(found.behind.first());
        event.behindTo = places.coordinateOf(found.behind.last());
    }
    return event;
}

Event fibreOf(const otdr::DetectedSection& section, const Places& places)
{
    Event event;
    event.type = Event::Fiber;
    places.put(event, section.from);
    Event end;
    places.put(end, section.to);
    event.length = end.coordinate - event.coordinate;
    // Where events hide one of its ends, what is seen of it tells how it loses.
    event.loss = std::isfinite(section.loss_dB)
        ? section.loss_dB
        : section.attenuation_dBPerKm * event.length / 1000.0;
    event.orl = section.returnLoss_dB;
    return event;
}

} // namespace

otdr::Measurement measurementOf(const TraceState& state)
{
    return {state.pulse_ns, state.metresPerNs(), state.backscatter_dB, state.wavelength_nm};
}

bool isListed(const otdr::DetectedEvent& found)
{
    return !found.echo && found.evidence != otdr::DetectedEvent::Evidence::Range;
}

otdr::Detection detectionOf(const TraceState& state)
{
    return detectionOf(
        state, state.file ? otdr::sor::storedThresholds(*state.file) : otdr::DetectionSettings());
}

otdr::Detection detectionOf(const TraceState& state, const otdr::DetectionSettings& settings)
{
    if (!state.trace) {
        return {};
    }
    return otdr::detectEvents(*state.trace, measurementOf(state), settings);
}

EventList eventListOf(const otdr::Detection& detection, const TraceState& state)
{
    EventList events;
    if (!state.trace) {
        return events;
    }
    const Places places(state);
    auto section = detection.sections.begin();
    for (const otdr::DetectedEvent& found : detection.events) {
        double attenuationBefore = Event::kUnknown;
        // The fibre up to an event stands before it, behind all that shares a dead zone.
        for (; section != detection.sections.end() && section->to <= found.index; ++section) {
            events << fibreOf(*section, places);
            // That of the list, since a file keeps it with the event: the slope of a short piece
            // would tell another.
            attenuationBefore = events.last().attenuation();
        }
        if (isListed(found)) {
            Event event = eventOf(found, places);
            event.attenuationBefore = attenuationBefore;
            events << event;
        }
    }
    return events;
}
