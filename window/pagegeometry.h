#pragma once

/// How the page shares its height between plot and tables, and how what lies over the canvas makes
/// do with a low one. All in pixels.
namespace Waveform::pagegeometry {

/// Least height of a table: its header and a row.
constexpr int kLeastTable = 64;

/// The most that each of so many shown tables may take of a page; the plot has the rest, so that
/// where there is room it has most of it.
[[nodiscard]] int tableHeight(int pageHeight, int tables);

/// Whether the three zoom buttons fit one below the other.
[[nodiscard]] bool fitsButtonColumn(int canvasHeight);

/// Whether the legend column has room below its tables.
[[nodiscard]] bool fitsLegendGap(int canvasHeight);

} // namespace Waveform::pagegeometry
