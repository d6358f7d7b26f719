#pragma once

#include <gsl/span>

#include <cstddef>
#include <cstdint>

namespace otdr {

/// CRC-16 with the polynomial 0x1021, not reflected, nothing added at the end.
///
/// From 0xFFFF it is the CRC of "CCITT-FALSE" ("123456789" gives 0x29B1), from 0 that of XMODEM
/// (0x31C3). The result of one stretch is the start of the next.
[[nodiscard]] std::uint16_t crc16(gsl::span<const std::byte> bytes, std::uint16_t start);

/// What a start value becomes behind this many zero bytes, in logarithmic time.
///
/// The CRC is linear: crc16(bytes, start) == crc16(bytes, 0) ^ crc16Carry(start, bytes.size()). So
/// one pass over the bytes gives the result for every start value.
[[nodiscard]] std::uint16_t crc16Carry(std::uint16_t start, std::size_t zeroBytes);

} // namespace otdr
