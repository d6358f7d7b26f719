#pragma once

namespace Waveform {

/// The narrowest view of distances, m.
constexpr double kLeastSpan_m = 0.5;

/// How far the full view of a range reaches from 0 m, m: the range itself where it can be drawn.
///
/// A trace may lie wholly before 0 m, and a file of settings may hold anything: what is no distance
/// ahead gives the narrowest view, what is beyond any fibre the widest.
[[nodiscard]] double fullViewWidth(double range_m);

} // namespace Waveform
