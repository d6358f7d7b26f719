#pragma once

#include "platform/otdr/event.h"
#include "platform/otdr/wf_packet_header.h"
#include "platform/otdr/wfmeasparams.h"

#include <QString>

class Reflectogram;

namespace OTDR {

/// Distance of a sample, m: sample steps of spacing_ns (round trip) at a group index and a helix
/// factor (percent).
[[nodiscard]] double smpl2meters(long sample, double spacing_ns, double ior, double helix_percent);

/// Distance of a sample of a snapshot, m; its header says at what time the first one was taken. 0
/// for a header that is none.
[[nodiscard]] double smpl2meters(long sample, wf_packet_header header, WfMeasParams params);

/// Length of a round-trip time, m. 0 for a header that is none.
[[nodiscard]] double ns2meters(double time_ns, wf_packet_header header, WfMeasParams params);

/// Reads what Event::toString writes; positions in samples become coordinates with the trace's axis
/// where the line has none. A text that is no event gives a non-reflective event at 0 with all
/// values unknown.
[[nodiscard]] Event createEventFromString(QString text, Reflectogram refl);

} // namespace OTDR
