#pragma once

#include <cstddef>

namespace gather {

/// Where samples are taken; the first at time 0, the port.
struct Sampling
{
    double interval_ns = 1.0; ///< round trip
    std::size_t count = 0;
};

/// How an acquisition of this length is sampled: at least five samples a pulse and about 16,000 in
/// all, no closer than half a nanosecond, and never more than 131,072.
///
/// Intervals are round figures, 1, 2, 2.5 or 5 times a power of ten. Where a short pulse on a long
/// range wants more samples than the limit, the interval grows beyond a fifth of the pulse.
[[nodiscard]] Sampling samplingFor(double range_ns, double pulse_ns);

} // namespace gather
