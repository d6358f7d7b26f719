#pragma once

namespace otdr {

class FibreTrace;
struct Detection;
struct Measurement;

/// Measures what lies between the events that were found, echoes being known: the sections, the
/// span, its noise floor. Gives the loss of a group to the first of its events that is no echo.
/// Losses of events and sections add up to that of the span.
void measureSpan(const FibreTrace& fibre, const Measurement& measurement, Detection& found);

} // namespace otdr
