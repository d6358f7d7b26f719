#pragma once

#include <cstddef>
#include <optional>

namespace otdr {

class Trace;

/// A straight line through the levels of a stretch of trace.
struct Line
{
    double centre = 0.0; ///< index of the middle of the stretch
    double level_dB = 0.0; ///< of the line at the centre
    double slope_dB = 0.0; ///< per sample; negative where light gets weaker
    double sigma_dB =
        0.0; ///< scatter of the samples about the line, n - 2 degrees of freedom; 0 for two samples
    std::size_t samples = 0;

    /// Level of the line at a sample index, dB.
    [[nodiscard]] double at(double index) const { return level_dB + slope_dB * (index - centre); }

    /// Index of the first and of the last sample of the stretch.
    [[nodiscard]] double first() const
    {
        return centre - 0.5 * (static_cast<double>(samples) - 1.0);
    }

    [[nodiscard]] double last() const
    {
        return centre + 0.5 * (static_cast<double>(samples) - 1.0);
    }
};

/// The least-squares line through the levels of the samples first .. last - 1, cut to the trace;
/// empty with fewer than two of them, and with more than PrefixSums::kLongest.
///
/// The cost does not depend on the length. Samples without signal count as they stand, as deep
/// outliers: a line through them shows itself by its sigma.
[[nodiscard]] std::optional<Line> fitLine(const Trace& trace, std::size_t first, std::size_t last);

/// The same for the samples i with from <= i < to; either may lie outside the trace. Empty where
/// one is NaN.
[[nodiscard]] std::optional<Line> fitLineBetween(const Trace& trace, double from, double to);

} // namespace otdr
