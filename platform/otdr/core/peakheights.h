#pragma once

#include "platform/otdr/core/peakgroup.h"

#include <cstddef>

namespace otdr {

/// The highest of the samples between two indices, which may lie outside the trace; the first of
/// several.
[[nodiscard]] std::size_t highestSample(const FibreTrace& trace, double begin, double end);

/// Measures the heights of the reflections of a group over the fibre before it.
void measureHeights(const FibreTrace& trace, const Line& before, PeakGroup& peak);

/// What the fibre loses within a group before one of its reflections, and by that one.
struct LostAtReflection
{
    double before_dB = 0.0;
    double by_dB = 0.0;
};

/// Height that the light of one reflection of a group alone would have above the fibre right before
/// it, dB: it stands on what is left of the fibre, and a receiver slower than the pulse does not
/// show all of it.
[[nodiscard]] double heightOfLight_dB(const PeakGroup& peak, std::size_t i, const PulseShape& shape,
                                      const LostAtReflection& lost);

} // namespace otdr
