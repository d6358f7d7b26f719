#include "platform/otdr/core/reflectance.h"

#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <cmath>
#include <limits>

namespace otdr {

double reflectance_dB(double height_dB, double backscatter_dB, double pulse_ns)
{
    if (!(height_dB > 0.0) || !(pulse_ns > 0.0)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    // 10^(H/5) - 1 as 10^(H/5) (1 - 10^(-H/5)): a low peak is not lost in the subtraction, and that
    // of a file with an absurd scale does not become infinite.
    const double part = -std::expm1(-height_dB * std::log(10.0) / 5.0);
    return backscatter_dB + 10.0 * std::log10(pulse_ns) + 2.0 * height_dB + 10.0 * std::log10(part);
}

double peakHeight_dB(double reflectance, double backscatter_dB, double pulse_ns)
{
    if (!(pulse_ns > 0.0)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const double excess_dB = reflectance - backscatter_dB - 10.0 * std::log10(pulse_ns);
    return 5.0 * std::log1p(std::pow(10.0, excess_dB / 10.0)) / std::log(10.0);
}

std::optional<Peak> peakAbove(const Trace& trace, double from, double to, double base_dB)
{
    const SampleRange range = samplesWithin(from, to, trace.size());
    const std::optional<Sample> top = trace.pyramid().highest(range.first, range.last);
    if (!top) {
        return std::nullopt;
    }
    const double level = trace.toLevel_dB(top->raw);
    if (!(level > base_dB)) {
        return std::nullopt;
    }
    return Peak {top->index, level, level - base_dB};
}

} // namespace otdr
