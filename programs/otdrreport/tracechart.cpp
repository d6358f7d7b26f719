#include "programs/otdrreport/tracechart.h"

#include "platform/otdr/core/decimation.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace otdrreport {

namespace {

/// How much of the record behind the end of the fibre is shown, by the length of the fibre.
constexpr double kBehindEnd = 0.15;

/// How much of what lies before 0 m and before the first event is shown.
constexpr double kBeforeStart = 0.02;

constexpr double kLevelStep_dB = 5.0;

/// Points of the line: two in each column of the drawing that a screen can tell apart.
constexpr std::size_t kLinePoints = 1600;

/// Samples up to here are handed to the page one by one; of more, this many counts.
constexpr std::size_t kMostCounts = 32768;

double distanceAt(const TraceState& state, double index)
{
    return state.trace->distanceAt(index, state.metresPerNs());
}

double lastIndex(const TraceState& state)
{
    return static_cast<double>(state.trace->size()) - 1.0;
}

void appendCount(QByteArray& bytes, std::uint16_t count)
{
    bytes.append(static_cast<char>(count & 0xff));
    bytes.append(static_cast<char>(count >> 8));
}

ChartSamples samplesOf(const TraceState& state)
{
    const otdr::Trace& trace = *state.trace;
    const double step_m = distanceAt(state, 1.0) - distanceAt(state, 0.0);
    ChartSamples samples {distanceAt(state, 0.0), step_m, trace.dbPerCount(), 1, {}};
    if (trace.size() <= kMostCounts) {
        for (std::size_t i = 0; i < trace.size(); ++i) {
            appendCount(samples.counts, trace.samples()[i]);
        }
        return samples;
    }
    const std::size_t stretch = (2 * trace.size() + kMostCounts - 1) / kMostCounts;
    samples.perStep = 2;
    samples.step_m = step_m * static_cast<double>(stretch);
    samples.first_m += 0.5 * (samples.step_m - step_m); // in the middle of its stretch
    for (std::size_t i = 0; i < trace.size(); i += stretch) {
        const auto extremes = trace.pyramid().extremes(i, i + stretch);
        appendCount(samples.counts, extremes->highest.raw);
        appendCount(samples.counts, extremes->lowest.raw);
    }
    return samples;
}

QByteArray pathOf(const TraceState& state, const ChartWindow& window)
{
    const auto points = otdr::decimateEnvelope(*state.trace, state.indexAt(window.start_m),
                                               state.indexAt(window.end_m), kLinePoints);
    QByteArray path;
    int x = 0;
    int y = 0;
    for (const otdr::Sample& point : points) {
        const double distance_m = distanceAt(state, static_cast<double>(point.index));
        const double level_dB = state.trace->toLevel_dB(point.raw);
        const int nextX = static_cast<int>(
            std::lround(window.left_percent(distance_m) / 100.0 * TraceChart::kWidth));
        const int nextY = static_cast<int>(
            std::lround(window.top_percent(level_dB) / 100.0 * TraceChart::kHeight));
        // Steps are shorter than places; the sign of the second number parts it from the first.
        path += path.isEmpty() ? 'M' : 'l';
        path += QByteArray::number(nextX - x);
        path += nextY < y ? "" : " ";
        path += QByteArray::number(nextY - y);
        x = nextX;
        y = nextY;
    }
    return path;
}

} // namespace

double ChartWindow::left_percent(double distance_m) const
{
    return (distance_m - start_m) / (end_m - start_m) * 100.0;
}

double ChartWindow::top_percent(double level_dB) const
{
    return (high_dB - level_dB) / (high_dB - low_dB) * 100.0;
}

ChartWindow windowOf(const TraceState& state, const QVector<double>& events_m, double end_m)
{
    ChartWindow window;
    const double recordStart_m = distanceAt(state, 0.0);
    const double recordEnd_m = distanceAt(state, lastIndex(state));
    double first_m = 0.0;
    double last_m = end_m > 0.0 ? end_m : recordEnd_m;
    for (const double event_m : events_m) {
        if (std::isfinite(event_m)) {
            first_m = std::min(first_m, event_m);
            last_m = std::max(last_m, event_m);
        }
    }
    const double length_m = last_m - first_m;
    window.start_m = std::max(recordStart_m, first_m - kBeforeStart * length_m);
    window.end_m = std::min(recordEnd_m, last_m + kBehindEnd * length_m);
    if (!(window.end_m > window.start_m)) {
        window.start_m = recordStart_m; // events beside the record say nothing about it
        window.end_m = std::max(recordEnd_m, recordStart_m + 1.0);
    }
    const auto first = static_cast<std::size_t>(std::max(0.0, state.indexAt(window.start_m)));
    const auto last = static_cast<std::size_t>(std::max(0.0, state.indexAt(window.end_m))) + 1;
    if (const auto extremes = state.trace->pyramid().extremes(first, last)) {
        window.low_dB = std::floor(state.trace->toLevel_dB(extremes->lowest.raw) / kLevelStep_dB)
            * kLevelStep_dB;
        window.high_dB =
            (std::floor(state.trace->toLevel_dB(extremes->highest.raw) / kLevelStep_dB) + 1.0)
            * kLevelStep_dB; // a peak stays off the border
    }
    return window;
}

QVector<int> markRows(const QVector<double>& places_percent, double apart_percent)
{
    constexpr double kFree = -1e9;
    std::array<double, 3> last {kFree, kFree, kFree};
    QVector<int> rows;
    for (const double place_percent : places_percent) {
        const auto free = std::find_if(last.begin(), last.end(), [&](double taken_percent) {
            return place_percent - taken_percent >= apart_percent;
        });
        const auto row = free == last.end() ? last.begin() : free;
        *row = place_percent;
        rows << static_cast<int>(row - last.begin());
    }
    return rows;
}

TraceChart chartOf(const TraceState& state, const QVector<double>& events_m, double end_m)
{
    TraceChart chart;
    chart.window = windowOf(state, events_m, end_m);
    chart.path = pathOf(state, chart.window);
    chart.samples = samplesOf(state);
    return chart;
}

} // namespace otdrreport
