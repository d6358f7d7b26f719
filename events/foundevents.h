#pragma once

#include "platform/otdr/event.h"
#include "platform/otdr/wf_packet_header.h"
#include "platform/otdr/wfmeasparams.h"

#include <QByteArray>

class Reflectogram;

/// Where the lines of the event finder's output belong on the fibre: the header of the trace file
/// and the parameters it was measured with. A header that is none puts everything at 0 m.
struct TraceScale
{
    wf_packet_header header;
    WfMeasParams params;
};

/// The events that the output of the event finder names, in the order of its lines.
///
/// A line reads "KIND = SAMPLE". Kind "r" is a reflective event, any other a non-reflective one.
/// Events nearer than 150 m are left out: there the launch is seen, not the fibre. So are lines
/// without a number and those whose number lies on no fibre.
[[nodiscard]] EventList eventsFromOutput(const QByteArray& output, const TraceScale& scale);

/// The event at 0 m, where the fibre starts.
[[nodiscard]] Event spanStartEvent(const TraceScale& scale);

/// Measures every event against its trace, then sees to the end of the fibre: where no event is one
/// the list is put in order along the fibre and its last event becomes it. A list of one event has
/// no end. What cannot be measured is unknown. The events that the trace itself has are the
/// neighbours that a measurement keeps clear of.
void measureEvents(EventList& events, const Reflectogram& trace);
