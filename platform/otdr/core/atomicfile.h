#pragma once

#include "platform/otdr/core/result.h"

#include <gsl/span>

#include <cstddef>
#include <string>

namespace otdr {

/// Writes a whole file or nothing: under a temporary name in the same directory, flushed to disk,
/// renamed.
///
/// Answers the number of bytes written. On any failure (CannotWrite) a file that was there is as it
/// was and nothing temporary is left behind. A link is followed; its target is replaced, with the
/// same permissions. What exists and is not a regular file is refused.
[[nodiscard]] Result<std::size_t> writeFileAtomically(const std::string& path,
                                                      gsl::span<const std::byte> bytes);

/// Removes from a directory what killed programs left of files that they were writing.
///
/// Only plain files under our temporary names that belong to this user and whose process is gone; a
/// file that is being written stays. What cannot be removed is left for the next time.
void removeLeftovers(const std::string& directory);

} // namespace otdr
