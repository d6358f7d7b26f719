#include "events/foundevents.h"

#include "platform/otdr/losscalc.h"
#include "platform/otdr/otdr.h"
#include "platform/otdr/reflcoefcalc.h"
#include "platform/otdr/reflectogram.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr double kNearest_m = 150.0;

/// Beyond any fibre; what garbage in a file or an output makes of a distance may fit in no integer.
constexpr double kFarthest_m = 1e9;

constexpr double kFarthestSample = 1e9;

/// Whole metres of a length; 0 for one that cannot be.
long wholeMetres(double length_m)
{
    return std::abs(length_m) <= kFarthest_m ? static_cast<long>(length_m) : 0;
}

/// The width of every event is that of the pulse.
long width_m(const TraceScale& scale)
{
    return wholeMetres(OTDR::ns2meters(scale.header.pulse_ns, scale.header, scale.params));
}

/// The output counts samples from the first of the file, an event counts them from 0 m. Nothing
/// where the header's times cannot be.
std::optional<long> countedFromStart(long sample, const wf_packet_header& header)
{
    const double position =
        static_cast<double>(sample) + header.firstSample_ns / header.sampleInterval_ns;
    if (!(std::abs(position) <= kFarthestSample)) {
        return std::nullopt;
    }
    return std::lround(position);
}

std::optional<Event> eventFromLine(const QString& line, const TraceScale& scale)
{
    const QStringList parts = line.split(" = ", Qt::KeepEmptyParts);
    bool isNumber = false;
    const long sample = parts.value(1).toLong(&isNumber);
    if (!isNumber) {
        return std::nullopt;
    }
    const double distance_m = OTDR::smpl2meters(sample, scale.header, scale.params);
    const std::optional<long> position = countedFromStart(sample, scale.header);
    // NaN is in no range.
    if (!(distance_m >= kNearest_m && distance_m <= kFarthest_m) || !position) {
        return std::nullopt;
    }
    Event event(parts.at(0) == "r" ? Event::Reflective : Event::NonReflective,
                wholeMetres(distance_m), width_m(scale));
    event.position = *position;
    return event;
}

bool hasSpanEnd(const EventList& events)
{
    return std::any_of(events.begin(), events.end(),
                       [](const Event& event) { return event.type == Event::SpanEnd; });
}

} // namespace

EventList eventsFromOutput(const QByteArray& output, const TraceScale& scale)
{
    EventList events;
    const QString text = QString::fromUtf8(output.constData()); // up to the first zero byte
    const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (const std::optional<Event> event = eventFromLine(line, scale)) {
            events << *event;
        }
    }
    return events;
}

Event spanStartEvent(const TraceScale& scale)
{
    return {Event::SpanStart, 0, width_m(scale)};
}

void measureEvents(EventList& events, const Reflectogram& trace)
{
    const ReflcoefCalc reflectance(trace);
    for (Event& event : events) {
        const LossCalc loss(event.position, trace);
        event.loss = loss.loss();
        event.reflIn = loss.reflIn();
        event.reflOut = loss.reflOut();
        if (event.type == Event::SpanEnd || event.type == Event::Reflective) {
            event.reflectance = reflectance(event.coordinate, event.reflIn, 0);
        }
    }
    if (events.isEmpty() || hasSpanEnd(events)) {
        return;
    }
    std::stable_sort(events.begin(), events.end());
    if (events.size() > 1) {
        events.last().type = Event::SpanEnd;
    }
}
