#pragma once

#include <gsl/span>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace otdr {

/// The samples of a trace as a file holds them: 16-bit counts below the reference, larger = weaker
/// light.
///
/// Immutable once built and cheap to copy: copies share the block.
class RawSamples
{
public:
    RawSamples() = default;
    explicit RawSamples(const std::vector<std::uint16_t>& counts);

    /// Takes bytes.size() / 2 little-endian counts; an odd last byte is left out. One copy, no
    /// other cost.
    static RawSamples fromLittleEndian(gsl::span<const std::byte> bytes);

    [[nodiscard]] const std::uint16_t* data() const { return counts.get(); }

    [[nodiscard]] std::size_t size() const { return count; }

    [[nodiscard]] bool empty() const { return count == 0; }

    [[nodiscard]] const std::uint16_t* begin() const { return data(); }

    [[nodiscard]] const std::uint16_t* end() const { return data() + size(); }

    std::uint16_t operator[](std::size_t i) const { return data()[i]; }

    /// The first of them, as many as there are up to this number; shares the block.
    [[nodiscard]] RawSamples first(std::size_t number) const
    {
        return {counts, number < count ? number : count};
    }

    /// Same counts; blocks that are shared compare at once.
    friend bool operator==(const RawSamples& a, const RawSamples& b);

    friend bool operator!=(const RawSamples& a, const RawSamples& b) { return !(a == b); }

private:
    RawSamples(std::shared_ptr<const std::uint16_t[]> block, std::size_t size);

    std::shared_ptr<const std::uint16_t[]> counts;
    std::size_t count = 0;
};

} // namespace otdr
