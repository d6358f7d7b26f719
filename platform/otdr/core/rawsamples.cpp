#include "platform/otdr/core/rawsamples.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace otdr {

RawSamples::RawSamples(std::shared_ptr<const std::uint16_t[]> block, std::size_t size)
    : counts(std::move(block))
    , count(size)
{
}

RawSamples::RawSamples(const std::vector<std::uint16_t>& values)
{
    std::shared_ptr<std::uint16_t[]> block(new std::uint16_t[values.size()]);
    std::copy(values.begin(), values.end(), block.get());
    *this = RawSamples(std::move(block), values.size());
}

RawSamples RawSamples::fromLittleEndian(gsl::span<const std::byte> bytes)
{
    const std::size_t size = bytes.size() / 2;
    // new T[n] leaves the block uninitialised: the copy below is the only pass over it.
    std::shared_ptr<std::uint16_t[]> block(new std::uint16_t[size]);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if (size > 0) {
        std::memcpy(block.get(), bytes.data(), size * 2);
    }
#else
    for (std::size_t i = 0; i < size; ++i) {
        block[i] = static_cast<std::uint16_t>(std::to_integer<unsigned>(bytes[2 * i])
                                              | std::to_integer<unsigned>(bytes[2 * i + 1]) << 8);
    }
#endif
    return {std::move(block), size};
}

bool operator==(const RawSamples& a, const RawSamples& b)
{
    return a.count == b.count
        && (a.counts == b.counts || std::equal(a.begin(), a.end(), b.begin()));
}

} // namespace otdr
