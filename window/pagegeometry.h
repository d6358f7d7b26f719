#pragma once

#include <QRect>

/// How the page shares its height between plot and tables, and how what lies over the canvas makes
/// do with a low one. All in pixels.
namespace Waveform::pagegeometry {

/// Least height of a table: about its header and a row.
constexpr int kLeastTable = 60;

/// The most that each of so many shown tables may take of a page; the plot has the rest, so that
/// where there is room it has most of it.
[[nodiscard]] int tableHeight(int pageHeight, int tables);

/// The height of a table of whole rows below so much, header and edges: as many as fit this height,
/// so that none is cut to a sliver, and these at least.
[[nodiscard]] int wholeRows(int height, int header, int row, int leastRows);

/// Whether the three zoom buttons fit one below the other.
[[nodiscard]] bool fitsButtonColumn(int canvasHeight);

/// The height of the letters in which so many rows, one and a quarter letters each, fit a canvas
/// with this much around them: the usual one where there is room, never one too small to be read.
[[nodiscard]] int letterHeight(int canvasHeight, int rows, int around, int usual);

/// Where a hint of this size stands on a canvas: in its middle, or in that of what the results
/// leave to their left; no results are an empty rectangle.
[[nodiscard]] QRect hintPlace(const QRect& canvas, const QRect& results, const QSize& hint);

/// Whether the legend column has room below its tables.
[[nodiscard]] bool fitsLegendGap(int canvasHeight);

} // namespace Waveform::pagegeometry
