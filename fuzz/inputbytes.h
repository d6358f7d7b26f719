#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

using Bytes = std::vector<std::byte>;

/// A copy of an input, of exactly its size: reading behind its end is seen.
inline Bytes bytesOf(const std::uint8_t* data, std::size_t size)
{
    const auto* first = reinterpret_cast<const std::byte*>(data);
    return {first, first + size};
}

} // namespace fuzz
