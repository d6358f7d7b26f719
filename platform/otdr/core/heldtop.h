#pragma once

#include <cstddef>
#include <optional>

namespace otdr {

class FibreTrace;

/// By how much the light of a reflection may be brighter than its highest sample shows, dB: 0 of a
/// receiver that follows it; of one that is held at its top some decibels or, where it stays there
/// for longer than a pulse, +inf.
///
/// flank: time constant of the falling flank of the reflection, samples, where it tells one.
[[nodiscard]] double hiddenAbove_dB(const FibreTrace& trace, std::size_t top,
                                    std::optional<double> flank);

} // namespace otdr
