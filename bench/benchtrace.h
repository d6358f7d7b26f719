#pragma once

#include "platform/otdr/reflectogram.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Length of the traces, m.
constexpr double kBenchRange_m = 50000.0;

/// A trace of these counts over kBenchRange_m, 1550 nm and 100 ns, loaded as a snapshot is.
[[nodiscard]] Reflectogram benchTraceOf(const std::vector<std::uint16_t>& counts);

/// A trace as instruments take them: a sloping line with noise, two reflections, then the noise
/// floor. Made once for each length and seed; the seeds 0 .. 3 lie below one another.
const Reflectogram& benchTrace(std::size_t samples, unsigned int seed);
