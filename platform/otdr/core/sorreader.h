#pragma once

#include "platform/otdr/core/result.h"
#include "platform/otdr/core/sor.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace otdr {

/// A trace file may not be larger than this, 64 MiB: a thousand times what instruments write.
constexpr std::size_t kLargestSorFile = std::size_t {64} << 20U;

/// What is told of any file, of this format or another, that has no samples.
constexpr char kNoSamples[] = "no trace: the file holds no samples";

struct ReadOptions
{
    bool verifyChecksum = true; ///< costs more than the rest of reading
};

/// The trace file in these bytes, versions 1 and 2.
///
/// Everything that can be read is: what is missing keeps its default, what is odd is told in
/// File::notes. An error is returned only where there is no trace: not this kind of file
/// (NotATrace), larger than the limit (TooLarge), or without a usable map or samples (Damaged). A
/// checksum that does not fit is never an error. Thread-safe; the bytes stay shared with the
/// result.
[[nodiscard]] Result<sor::File> readSor(std::shared_ptr<const std::vector<std::byte>> bytes,
                                        ReadOptions options = {});

/// The same from a file. CannotOpen for what is not there or not a regular file, CannotRead where
/// reading fails.
[[nodiscard]] Result<sor::File> readSorFile(const std::string& path, ReadOptions options = {});

} // namespace otdr
