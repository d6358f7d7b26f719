#pragma once

#include <QRect>

#include <cstddef>
#include <vector>

class QwtScaleMap;
struct TraceState;

/// What the samples of a trace, drawn as sticks from a common baseline, cover on the screen.
///
/// A stick stands in the pixel column nearest to its distance and reaches from the baseline to its
/// level, both pixels included; in a column with several sticks the tallest covers the others. Asks
/// the trace for the highest sample of each column, so that the picture is that of all samples at a
/// cost that follows the screen.
class StickColumns
{
public:
    /// No column is covered yet. area is in device pixels; what lies outside is not kept.
    explicit StickColumns(const QRect& area);

    /// Adds the samples of a trace. The maps give logical pixels, of which one has pixelRatio
    /// device pixels; distances grow to the right.
    void add(const TraceState& state, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
             double pixelRatio);

    /// Disjoint rectangles, no more of them than columns, whose columns that isCovered() make up
    /// the covered area: wide ones where neighbours share their rows, since painting goes by rows.
    /// Where sticks stand apart they reach over the gaps as high as both neighbours do.
    [[nodiscard]] std::vector<QRect> rectangles(double baseline_px) const;

    [[nodiscard]] bool isCovered(int column) const; ///< counted from the left of the area

    /// Whether a column between two covered ones is not covered.
    [[nodiscard]] bool hasGaps() const;

private:
    [[nodiscard]] std::vector<std::size_t> borders(const TraceState& state, const QwtScaleMap& xMap,
                                                   double pixelRatio) const;
    [[nodiscard]] std::vector<int> closedTop() const;

    QRect area;
    std::vector<int> top; ///< row of the highest covered pixel for each column of the area
};
