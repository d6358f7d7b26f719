#pragma once

#include "platform/otdr/core/result.h"
#include "platform/otdr/core/sor.h"

#include <cstddef>
#include <string>
#include <vector>

namespace otdr {

/// The trace file as version 2 bytes.
///
/// A version 2 file that was read and not changed leaves as it came, checksum included. Of a
/// changed one every block that is still as it was keeps its bytes, others are encoded anew;
/// unknown blocks stay in their place, bytes after the last block stay behind it, and the checksum
/// is computed. Where samples or events changed the blocks of makers are dropped, since their
/// software would prefer them to what we changed. A version 1 file, or a new trace (File::bytes
/// null), is encoded whole.
///
/// What a user should know of this is added to notes, if given. Fails only for what no file can
/// hold (TooLarge): more than the reader takes, or no memory.
[[nodiscard]] Result<std::vector<std::byte>> encodeSor(const sor::File& file,
                                                       std::vector<std::string>* notes = nullptr);

} // namespace otdr
