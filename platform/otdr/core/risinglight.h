#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <optional>
#include <vector>

namespace otdr {

/// What rises by this much, dB, and by more than chance, rises plainly: fibre does not.
constexpr double kPlainRise_dB = 0.3;

/// Feet of further reflections that rise behind one with its foot at `foot`, up to an index: where
/// the level rises within a third of a pulse by more than chance, and by 0.3 dB.
[[nodiscard]] std::vector<double> risesBetween(const FibreTrace& trace, double foot, double to);

/// The same of fibre that begins at `from`.
[[nodiscard]] std::vector<double> risesIn(const FibreTrace& trace, double from, double to);

/// The same of what rises by least_dB.
[[nodiscard]] std::vector<double> risesIn(const FibreTrace& trace, double from, double to,
                                          double least_dB);

/// Where fibre begins, behind `from`, that ends at the first reflection before `to`: half a pulse
/// of it, level. It stands above the fibre behind that reflection by its loss, as a tail would.
[[nodiscard]] std::optional<double> fibreBeforeRise(const FibreTrace& trace, double from,
                                                    double to);

/// The first index between two at which light rises above a line, to fall again before the second,
/// by more than chance and by 0.3 dB.
[[nodiscard]] std::optional<double> firstPeak(const FibreTrace& trace, double from, double to,
                                              const Line& fibre);

} // namespace otdr
