#include "platform/otdr/core/linefit.h"

#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>

namespace otdr {

std::optional<Line> fitLine(const Trace& trace, std::size_t first, std::size_t last)
{
    const LineSums sums = trace.sums().sums(first, last);
    if (sums.samples < 2) {
        return std::nullopt;
    }
    const auto n = static_cast<double>(sums.samples);
    const auto y = static_cast<double>(sums.y);
    const double offset =
        sums.samples % 2 == 0 ? 0.5 : 0.0; // the true middle lies between two samples
    const double sxx = n * (n * n - 1.0) / 12.0;
    const double sxy = static_cast<double>(sums.xy) - offset * y;
    const double syy = static_cast<double>(sums.yy) - y * y / n;
    const double slope = sxy / sxx;

    Line line;
    line.samples = sums.samples;
    line.centre = static_cast<double>(sums.centre) + offset;
    line.level_dB = trace.toLevel_dB(static_cast<double>(sums.base) + y / n);
    line.slope_dB = -slope * trace.dbPerCount();
    if (sums.samples > 2) {
        const double scatter = std::max(0.0, syy - slope * sxy) / (n - 2.0);
        line.sigma_dB = std::sqrt(scatter) * trace.dbPerCount();
    }
    return line;
}

std::optional<Line> fitLineBetween(const Trace& trace, double from, double to)
{
    const SampleRange range = samplesBetween(from, to, trace.size());
    return fitLine(trace, range.first, range.last);
}

} // namespace otdr
