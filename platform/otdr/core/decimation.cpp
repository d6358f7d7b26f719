#include "platform/otdr/core/decimation.h"

#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>

namespace otdr {

namespace {

struct Window
{
    double first = 0.0;
    double last = 0.0;
    SampleRange samples;
};

Window windowOf(const Trace& trace, double first, double last)
{
    return {first, last, samplesWithin(first, last, trace.size())};
}

std::vector<Sample> everySample(const Trace& trace, SampleRange range)
{
    std::vector<Sample> points;
    points.reserve(range.count());
    for (std::size_t i = range.first; i < range.last; ++i) {
        points.push_back({i, trace.samples()[i]});
    }
    return points;
}

/// The first sample of each column, and the end of the last column. A column outside the trace is
/// empty.
std::vector<std::size_t> columnBorders(const Window& window, std::size_t columns)
{
    const double width = (window.last - window.first) / static_cast<double>(columns);
    std::vector<std::size_t> borders(columns + 1);
    borders.front() = window.samples.first;
    for (std::size_t k = 1; k < columns; ++k) {
        const double border = window.first + static_cast<double>(k) * width;
        borders[k] = sampleAtOrBehind(border, window.samples.last);
    }
    borders.back() = window.samples.last;
    return borders;
}

} // namespace

std::vector<Sample> decimatePeaks(const Trace& trace, double firstIndex, double lastIndex,
                                  std::size_t points)
{
    const Window window = windowOf(trace, firstIndex, lastIndex);
    if (points == 0 || window.samples.count() <= points) {
        return everySample(trace, points == 0 ? SampleRange {} : window.samples);
    }
    std::vector<Sample> peaks;
    peaks.reserve(points);
    trace.pyramid().appendHighest(columnBorders(window, points), peaks);
    return peaks;
}

std::vector<Sample> decimateEnvelope(const Trace& trace, double firstIndex, double lastIndex,
                                     std::size_t points)
{
    const Window window = windowOf(trace, firstIndex, lastIndex);
    if (points == 0 || window.samples.count() <= points) {
        return everySample(trace, points == 0 ? SampleRange {} : window.samples);
    }
    const std::size_t columns = std::max<std::size_t>(points / 2, 1);
    std::vector<Sample> outline;
    outline.reserve(2 * columns);
    trace.pyramid().appendExtremes(columnBorders(window, columns), outline);
    return outline;
}

} // namespace otdr
