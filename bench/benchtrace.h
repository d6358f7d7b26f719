#pragma once

#include "platform/otdr/reflectogram.h"

#include <cstddef>

/// Length of the traces that are drawn, m.
constexpr double kBenchRange_m = 50000.0;

/// A trace as instruments take them: a sloping line with noise, two reflections, then the noise
/// floor. Made once for each length and seed; the seeds 0 .. 3 lie below one another.
const Reflectogram& benchTrace(std::size_t samples, unsigned int seed);
