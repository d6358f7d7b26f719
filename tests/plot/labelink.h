#pragma once

#include <vector>

class QwtPlot;

namespace testing_support {

/// Widths of what stands below the distance axis, from left to right: a label each, unless two
/// touch or stand so close that they read as one. Pixels. Without the title.
std::vector<int> labelWidths(QwtPlot& plot);

/// Heights of what stands beside the level axis, from top to bottom, likewise.
std::vector<int> labelHeights(QwtPlot& plot);

} // namespace testing_support
