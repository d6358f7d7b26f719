#pragma once

#include "platform/otdr/core/sor.h"

#include <cstdint>
#include <string>

namespace otdr::sor {

/// Where the samples of a trace lie in time, in the frame of its events: 0 is the user's zero, 0 m.
struct Axis
{
    double sampleInterval_ns = 0; ///< round trip; NaN where the file does not tell
    double firstSample_ns =
        0; ///< time of sample 0, round trip; negative where the record begins before 0 m
    std::int64_t port =
        0; ///< of the instrument in the record, counts; 0 m is the user offset behind it
    std::string note; ///< what was assumed against the usual rule; empty where that holds
};

/// The axis of a file, checked against its samples.
///
/// The port stands at minus the acquisition offset or, where that is 0, at the front panel offset;
/// the user's zero lies the user offset behind it. Some software keeps these fields though it has
/// cut the samples: where the rising edges of the reflective events and the drop at the end of the
/// fibre contradict the rule, and another reading of the same fields (0, the front panel offset
/// with either sign, the acquisition offset with the other one, events that count from the port)
/// puts them right by more than three pulse widths, that one is taken. A few microseconds.
[[nodiscard]] Axis axisOf(const File& file);

} // namespace otdr::sor
