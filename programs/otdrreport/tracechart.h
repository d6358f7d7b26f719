#pragma once

#include "platform/otdr/tracestate.h"

#include <QByteArray>
#include <QVector>

namespace otdrreport {

/// What a chart shows of a trace.
struct ChartWindow
{
    double start_m = 0.0;
    double end_m = 1.0;
    double low_dB = 0.0;
    double high_dB = 1.0;

    /// Where in the chart a value lies, percent from the left and from the top.
    [[nodiscard]] double left_percent(double distance_m) const;
    [[nodiscard]] double top_percent(double level_dB) const;
};

/// The trace at equal steps for the script of the page: the raw count of each sample or, for a long
/// trace, the smallest and the largest count of each of many equal stretches.
struct ChartSamples
{
    double first_m = 0.0; ///< of the first sample
    double step_m = 1.0;
    double dbPerCount = 0.001;
    int perStep = 1; ///< counts a step: 1, or 2 for strongest and weakest
    QByteArray counts; ///< 16 bit, little-endian
};

/// A trace as a line drawing.
struct TraceChart
{
    /// The size of the drawing; paths are in its units, from the upper left corner.
    static constexpr int kWidth = 2000;
    static constexpr int kHeight = 1000;

    bool hasDistances = true; ///< otherwise the metres below only count the samples
    ChartWindow window;
    QByteArray path; ///< of the line, as SVG has it
    ChartSamples samples;
};

/// What is worth showing: the fibre with its events and some of what lies behind its end, at most
/// the record; levels in whole steps.
///
/// events_m may hold NaN; end_m is NaN or not positive where the end of the fibre is not known.
[[nodiscard]] ChartWindow windowOf(const TraceState& state, const QVector<double>& events_m,
                                   double end_m);

/// The row of each mark over the chart, 0 being the lowest, so that numbers of near events do not
/// cover each other: the lowest of three rows in which the last mark is far enough away. Places are
/// percent from the left, in order; a fourth mark on one place shares the lowest row.
[[nodiscard]] QVector<int> markRows(const QVector<double>& places_percent, double apart_percent);

/// The chart of a trace with samples. Its line keeps the lowest and the highest sample of each
/// column.
[[nodiscard]] TraceChart chartOf(const TraceState& state, const QVector<double>& events_m,
                                 double end_m);

} // namespace otdrreport
