#pragma once

#include "bench/oddlinks.h"

#include <random>

namespace accuracy {

using Random = std::mt19937_64;

/// Evenly drawn by its logarithm.
[[nodiscard]] double drawLog(Random& random, double from, double to);

[[nodiscard]] bool happens(Random& random, double probability);

[[nodiscard]] gather::FibreEvent connector(double at_m, double loss_dB, double reflectance_dB);

[[nodiscard]] gather::FibreEvent drawConnector(Random& random, double at_m);

/// Half of the way that light goes within a pulse, m.
[[nodiscard]] double metresOfPulse(double pulse_ns);

/// Adds the reflection of the instrument's port.
void addPort(Random& random, gather::Fibre& fibre);

/// A link as others, of one of several lengths.
[[nodiscard]] OddLink usual(Random& random);

/// One fibre all the way, with a port and an end.
[[nodiscard]] OddLink plain(Random& random, double pulse_ns, double range_dB, double length_m);

} // namespace accuracy
