#include "programs/wfgather/analysis.h"

#include "platform/otdr/core/trace.h"
#include "platform/otdr/detectedevents.h"

#include <memory>

namespace gather {

EventList analyse(const otdr::Snapshot& snapshot, const TraceParams& announced)
{
    TraceState state;
    state.trace = std::make_shared<const otdr::Trace>(
        snapshot.samples, snapshot.dbPerCount(),
        otdr::TraceAxis {snapshot.sampleInterval_ns, snapshot.firstSample_ns});
    state.wavelength_nm = announced.wavelength_nm;
    state.pulse_ns = snapshot.pulse_ns;
    state.backscatter_dB = announced.backscatter_dB;
    state.ior = announced.ior;
    state.helix_percent = announced.helix_percent;
    return eventListOf(detectionOf(state), state);
}

} // namespace gather
