#pragma once

#include "platform/otdr/core/sor.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace otdr::sor {

/// The body of a standard block as version 2 has it, made from the values; empty for other names.
///
/// An empty string is written as one blank, as instruments do.
[[nodiscard]] std::vector<std::byte> encodeBody(std::string_view name, const File& file);

/// Fills the fields that repeat an offset or a range as a distance, in tenths of the file's unit,
/// where they are 0: version 1 does not have them. A file without a group index keeps the 0.
void fillDistances(File& file);

} // namespace otdr::sor
