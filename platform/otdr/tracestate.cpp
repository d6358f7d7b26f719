#include "platform/otdr/tracestate.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/reflectogram.h"

#include <algorithm>
#include <cmath>

double TraceState::metresPerNs() const
{
    return otdr::metresPerNs(ior, helix_percent);
}

double TraceState::pulseSamples() const
{
    return trace ? pulse_ns / trace->axis().sampleInterval_ns : 0.0;
}

double TraceState::indexAt(double distance_m) const
{
    return trace->sampleAt(distance_m, metresPerNs());
}

bool TraceState::hasDistances() const
{
    return !file || otdr::sor::sampleInterval_ns(*file) > 0.0;
}

double TraceState::endOfFibre_m() const
{
    // A file tells the end of the fibre from the end of the record; a list of events alone does
    // not, nor does a time without the index of the glass.
    if (file && processing == Reflectogram::FromFile
        && (!file->hasFxd || std::isnan(otdr::sor::fibreEnd_m(*file)))) {
        return -1.0;
    }
    const auto end = std::find_if(events.begin(), events.end(),
                                  [](const Event& event) { return event.type == Event::SpanEnd; });
    return end == events.end() ? -1.0 : end->coordinate;
}
