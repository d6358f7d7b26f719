#pragma once

#include <cstddef>
#include <optional>

namespace otdr {

class Trace;

/// Reflectance of an event, dB, from the height of its peak above the backscatter in (one-way)
/// decibels of the trace, the backscatter coefficient of the fibre in dB at 1 ns, and the pulse
/// width in ns.
///
/// R = B + 10 log10(W) + 10 log10(10^(H/5) - 1). Holds where the receiver follows the pulse; of a
/// saturated peak it is a lower bound. NaN for a height or a width that is not positive.
[[nodiscard]] double reflectance_dB(double height_dB, double backscatter_dB, double pulse_ns);

/// The inverse: height of the peak of a reflectance above the backscatter, dB of the trace. NaN for
/// a width that is not positive.
[[nodiscard]] double peakHeight_dB(double reflectance_dB, double backscatter_dB, double pulse_ns);

/// The top of a peak.
struct Peak
{
    std::size_t index = 0;
    double level_dB = 0.0;
    double height_dB = 0.0; ///< above the base that was asked for, > 0
};

/// The highest of the samples i with from <= i <= to, if it stands above base_dB; empty otherwise,
/// where no sample lies there, and where an argument is NaN. Either may lie outside the trace.
[[nodiscard]] std::optional<Peak> peakAbove(const Trace& trace, double from, double to,
                                            double base_dB);

} // namespace otdr
