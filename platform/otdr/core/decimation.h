#pragma once

#include "platform/otdr/core/pyramid.h"

#include <cstddef>
#include <vector>

namespace otdr {

class Trace;

/// The highest samples of a window, about as many as the screen has columns.
///
/// The window is closed: it holds the samples i with firstIndex <= i <= lastIndex; it may begin and
/// end between samples and outside the trace. Holds it no more than `points` samples, all of them
/// are returned. Otherwise the whole window, the part outside the trace included, is cut into
/// `points` columns of equal width, column k holding firstIndex + k * width <= i < firstIndex + (k
/// + 1) * width and the last one its right border too, and each gives its highest sample, the first
/// of equal ones, at its true index. A column without a sample gives none.
///
/// In order of index. Empty where points is 0, an index is NaN, or no sample lies in the window.
[[nodiscard]] std::vector<Sample> decimatePeaks(const Trace& trace, double firstIndex,
                                                double lastIndex, std::size_t points);

/// The outline of a window: the lowest and the highest sample of each of points / 2 columns, in
/// order of index; a column whose samples are all equal gives its first.
///
/// Window and columns as above; at most `points` samples in all, but at least one column.
[[nodiscard]] std::vector<Sample> decimateEnvelope(const Trace& trace, double firstIndex,
                                                   double lastIndex, std::size_t points);

} // namespace otdr
