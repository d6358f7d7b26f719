#pragma once

#include "platform/otdr/core/result.h"
#include "platform/otdr/core/sor.h"

#include <gsl/span>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace otdr::sor {

/// What stands at the head of a file: its version, and where its blocks lie.
struct Map
{
    int version = 2;
    std::vector<RawBlock> blocks; ///< those of which at least one byte is in the file
    std::size_t end = 0; ///< behind the last block; what follows belongs to none
};

/// The map of a file. Blocks never reach beyond the bytes: one that should is cut, and told in
/// notes.
[[nodiscard]] Result<Map> readMap(gsl::span<const std::byte> bytes,
                                  std::vector<std::string>& notes);

/// The first block of this name, null where there is none. Names compare exactly.
[[nodiscard]] const RawBlock* findBlock(const std::vector<RawBlock>& blocks, std::string_view name);

/// The whole block; empty where it does not lie within the bytes.
[[nodiscard]] gsl::span<const std::byte> blockBytes(gsl::span<const std::byte> bytes,
                                                    const RawBlock& block);

/// The block behind its repeated name. Version 1 files carry that name on some blocks, version 2 on
/// all.
[[nodiscard]] gsl::span<const std::byte> blockBody(gsl::span<const std::byte> bytes,
                                                   const RawBlock& block);

/// Whether the block is one of those the format defines, all others being the makers' own.
[[nodiscard]] bool isStandardBlock(std::string_view name);

} // namespace otdr::sor
