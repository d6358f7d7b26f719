#pragma once

#include <cstddef>
#include <vector>

namespace otdr {

class Trace;

/// Where the light falls for good by a decibel or more within two pulses, between the samples first
/// and last - 1: the middles of the falls, in order, as indices. What falls back from a reflection
/// does not count, nor what fibre loses on its way. pulse: width in samples, > 0; reach: for so
/// many samples before a fall the light was that bright. The cost is that of a few looks at each
/// pulse.
[[nodiscard]] std::vector<double> lightFalls(const Trace& trace, double pulse, std::size_t first,
                                             std::size_t last, std::size_t reach);

} // namespace otdr
