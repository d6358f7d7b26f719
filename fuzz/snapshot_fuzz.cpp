// Snapshots: the reader answers whatever the bytes are, and what it takes leaves as the same bytes.
// Each input is also tried with its number of samples and its checksum put right: otherwise hardly
// one would come so far.
#include "fuzz/claim.h"
#include "fuzz/inputbytes.h"
#include "platform/otdr/core/crc32.h"
#include "platform/otdr/core/snapshot.h"

#include <cmath>

namespace {

using fuzz::Bytes;
using fuzz::claim;

constexpr std::size_t kSamplesAt = 8;
constexpr std::size_t kChecksumAt = 44;

void put(Bytes& bytes, std::size_t at, std::uint32_t value)
{
    for (std::size_t i = 0; i < sizeof(value); ++i) {
        bytes[at + i] = static_cast<std::byte>((value >> (8 * i)) & 0xFFU);
    }
}

Bytes putRight(Bytes bytes)
{
    constexpr std::size_t kHeader = otdr::Snapshot::kHeaderSize;
    if (bytes.size() < kHeader) {
        return bytes;
    }
    bytes.resize(bytes.size() - (bytes.size() - kHeader) % 2);
    put(bytes, kSamplesAt, static_cast<std::uint32_t>((bytes.size() - kHeader) / 2));
    put(bytes, kChecksumAt, otdr::crc32(gsl::span<const std::byte>(bytes).subspan(kHeader)));
    return bytes;
}

void readAndWrite(const Bytes& bytes)
{
    const auto read = otdr::readSnapshot(bytes);
    if (!read) {
        claim(!read.error().message.empty(), "an error has words");
        return;
    }
    claim(read->sampleInterval_ns > 0.0 && std::isfinite(read->sampleInterval_ns),
          "samples lie one behind the other");
    claim(std::isfinite(read->firstSample_ns), "the first sample has a time");
    claim(std::isfinite(read->dbPerCount()), "a count has a level");
    claim(otdr::encodeSnapshot(*read) == bytes, "what was read leaves as it came");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Bytes bytes = fuzz::bytesOf(data, size);
    readAndWrite(bytes);
    readAndWrite(putRight(bytes));
    return 0;
}
