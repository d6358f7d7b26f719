#include "platform/otdr/core/sorchecksum.h"

#include "platform/otdr/core/bytes.h"
#include "platform/otdr/core/crc16.h"
#include "platform/otdr/core/sormap.h"

namespace otdr::sor {

namespace {

constexpr std::uint16_t kStart = 0xFFFF;

/// Whether the stored value fits a CRC from 0, or the same from 0xFFFF over this many bytes.
bool fits(std::uint16_t stored, std::uint16_t fromZero, std::size_t size)
{
    return stored == fromZero || stored == (fromZero ^ crc16Carry(kStart, size));
}

} // namespace

Checksum verifyChecksum(gsl::span<const std::byte> bytes, const std::vector<RawBlock>& blocks)
{
    const RawBlock* block = findBlock(blocks, "Cksum");
    std::uint16_t stored = 0;
    if (block == nullptr) {
        return Checksum::Missing;
    }
    const auto body = blockBody(bytes, *block);
    if (!ByteReader(body).read(stored)) {
        return Checksum::Missing;
    }
    const std::size_t head = blockBytes(bytes, *block).size() - body.size();
    const std::uint16_t beforeBlock = crc16(bytes.first(block->offset), 0);
    const std::uint16_t beforeValue = crc16(bytes.subspan(block->offset, head), beforeBlock);
    if (fits(stored, beforeValue, block->offset + head)
        || fits(stored, beforeBlock, block->offset)) {
        return Checksum::Matches;
    }
    return stored == 0 ? Checksum::NotComputed : Checksum::Unknown;
}

std::uint16_t checksumOf(gsl::span<const std::byte> bytesBeforeValue)
{
    return crc16(bytesBeforeValue, kStart);
}

} // namespace otdr::sor
