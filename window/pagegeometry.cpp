#include "window/pagegeometry.h"

#include <algorithm>

namespace Waveform::pagegeometry {

namespace {

/// The bottom panel and the buttons of the panels.
constexpr int kBars = 126;

/// A plot whose canvas has room for the results of a measurement.
constexpr int kWantedPlot = 218;

constexpr double kOneTable = 0.3; ///< of the page
constexpr double kAllTables = 0.44;

constexpr int kLeastLetters = 11;

constexpr int kButtonColumn = 190;
constexpr int kLegendWithGap = 240;

} // namespace

int tableHeight(int pageHeight, int tables)
{
    const int count = std::max(1, tables);
    const double share = std::min(kOneTable, kAllTables / count) * pageHeight;
    const int left = (pageHeight - kBars - kWantedPlot) / count;
    return std::max(kLeastTable, std::min(static_cast<int>(share), left));
}

int wholeRows(int height, int header, int row, int leastRows)
{
    return header + std::max(leastRows, (height - header) / std::max(1, row)) * row;
}

int letterHeight(int canvasHeight, int rows, int around, int usual)
{
    const int fitting = (canvasHeight - around) * 4 / (5 * std::max(1, rows));
    return std::min(usual, std::max(kLeastLetters, fitting));
}

bool fitsButtonColumn(int canvasHeight)
{
    return canvasHeight >= kButtonColumn;
}

QRect hintPlace(const QRect& canvas, const QRect& results, const QSize& hint)
{
    QRect place(QPoint(), hint);
    place.moveCenter(canvas.center());
    if (place.intersects(results)) {
        QRect left = canvas;
        left.setRight(results.left() - 1);
        place.moveCenter(left.center());
        place.moveLeft(std::max(canvas.left(), place.left()));
    }
    return place;
}

bool fitsLegendGap(int canvasHeight)
{
    return canvasHeight >= kLegendWithGap;
}

} // namespace Waveform::pagegeometry
