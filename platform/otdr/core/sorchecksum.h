#pragma once

#include "platform/otdr/core/sor.h"

#include <gsl/span>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace otdr::sor {

/// Whether the stored checksum of a file is one of the four that are known: CRC-16 from 0xFFFF or
/// from 0, over all bytes before the block or before the value. One pass over the bytes.
[[nodiscard]] Checksum verifyChecksum(gsl::span<const std::byte> bytes,
                                      const std::vector<RawBlock>& blocks);

/// The checksum that we write: from 0xFFFF over every byte before the value.
[[nodiscard]] std::uint16_t checksumOf(gsl::span<const std::byte> bytesBeforeValue);

} // namespace otdr::sor
