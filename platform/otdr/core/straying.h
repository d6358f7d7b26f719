#pragma once

#include <utility>
#include <vector>

namespace otdr {

class FibreTrace;

/// What lines through fibre are off by at their ends beyond what their noise makes them: light that
/// interferes, small bends and receivers that are not quite linear make fibre stray from them.
///
/// Told by the trace itself: two lines of the same length, one behind the other with the dead zone
/// of an event between them, should meet where nothing happens. Their distances, less the noise,
/// are twice what one line is off by, in variance; the median knows nothing of a few events that
/// were not found. Cost: some thousand lines at most.
class Straying
{
public:
    /// By the stretches between events, each from one index to another.
    Straying(const FibreTrace& trace, const std::vector<std::pair<double, double>>& stretches);

    /// Standard error of a line through so many samples at its end, dB, that comes on top of its
    /// noise. Longer lines than the record can tell of are as far off as the longest; 0 where it
    /// tells nothing.
    [[nodiscard]] double ofLine_dB(double samples) const;

private:
    double shortest; ///< line of which it is told, samples; each next one is twice as long
    std::vector<double> variances; ///< dB squared
};

} // namespace otdr
