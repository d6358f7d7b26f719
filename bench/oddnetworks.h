#pragma once

#include "bench/oddlinks.h"

#include <random>

namespace accuracy {

/// A link between a launch fibre and a receive fibre.
[[nodiscard]] OddLink betweenFibres(std::mt19937_64& random);

/// A connector within some metres of the port.
[[nodiscard]] OddLink pairAtPort(std::mt19937_64& random);

/// Several connectors within some pulses, in three places.
[[nodiscard]] OddLink patchPanels(std::mt19937_64& random);

/// Bends that are seen at the longer of two wavelengths alone.
[[nodiscard]] OddLink bent(std::mt19937_64& random);

/// Feeder, splitter, and one drop that light comes back from.
[[nodiscard]] OddLink oneDrop(std::mt19937_64& random, double loss_dB);

/// Eight drops whose light comes back over each other.
[[nodiscard]] OddLink allDrops(std::mt19937_64& random);

/// Fibre without an event.
[[nodiscard]] OddLink noEvent(std::mt19937_64& random);

/// A pigtail of a metre or two within the instrument, and no fibre.
[[nodiscard]] OddLink noFibre(std::mt19937_64& random);

/// Fibre that ends within 3 to 30 pulses of the port.
[[nodiscard]] OddLink breakAtPort(std::mt19937_64& random);

/// The same behind a port that reflects much.
[[nodiscard]] OddLink breakAtBrightPort(std::mt19937_64& random);

/// The same with a connector on the way.
[[nodiscard]] OddLink breakBehindCord(std::mt19937_64& random);

} // namespace accuracy
