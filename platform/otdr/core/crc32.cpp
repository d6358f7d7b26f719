#include "platform/otdr/core/crc32.h"

#include <array>

namespace otdr {

namespace {

using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

/// tables[k][b]: what the byte b does to the remainder when k more bytes follow it.
constexpr Tables makeTables()
{
    constexpr std::uint32_t kPolynomial = 0xEDB88320U; // x^32 + x^26 + ... + 1, lowest power first
    Tables tables {};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1U) ^ ((value & 1U) != 0 ? kPolynomial : 0U);
        }
        tables[0][byte] = value;
    }
    for (std::size_t k = 1; k < 8; ++k) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t value = tables[k - 1][byte];
            tables[k][byte] = (value >> 8U) ^ tables[0][value & 0xffU];
        }
    }
    return tables;
}

constexpr Tables kTables = makeTables();

std::uint32_t load(const std::byte* bytes)
{
    return std::to_integer<std::uint32_t>(bytes[0]) | std::to_integer<std::uint32_t>(bytes[1]) << 8U
        | std::to_integer<std::uint32_t>(bytes[2]) << 16U
        | std::to_integer<std::uint32_t>(bytes[3]) << 24U;
}

} // namespace

std::uint32_t crc32(gsl::span<const std::byte> bytes)
{
    std::uint32_t crc = 0xffffffffU;
    const std::byte* at = bytes.data();
    std::size_t left = bytes.size();
    for (; left >= 8; left -= 8, at += 8) {
        const std::uint32_t a = crc ^ load(at);
        const std::uint32_t b = load(at + 4);
        crc = kTables[7][a & 0xffU] ^ kTables[6][(a >> 8U) & 0xffU] ^ kTables[5][(a >> 16U) & 0xffU]
            ^ kTables[4][a >> 24U] ^ kTables[3][b & 0xffU] ^ kTables[2][(b >> 8U) & 0xffU]
            ^ kTables[1][(b >> 16U) & 0xffU] ^ kTables[0][b >> 24U];
    }
    for (; left > 0; --left, ++at) {
        crc = (crc >> 8U) ^ kTables[0][(crc ^ std::to_integer<std::uint32_t>(*at)) & 0xffU];
    }
    return crc ^ 0xffffffffU;
}

} // namespace otdr
