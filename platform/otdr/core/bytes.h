#pragma once

#include <gsl/span>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace otdr {

/// A cursor over little-endian bytes that never leaves them.
///
/// A field that does not fit is missing, and so is every field after it: the value asked for keeps
/// what it held, read() answers false, and isMissing() stays true. The bytes must outlive the
/// reader.
class ByteReader
{
public:
    explicit ByteReader(gsl::span<const std::byte> bytes)
        : bytes(bytes)
    {
    }

    [[nodiscard]] std::size_t position() const { return cursor; }

    [[nodiscard]] std::size_t remaining() const { return bytes.size() - cursor; }

    [[nodiscard]] bool isMissing() const { return missing; }

    /// An integer of any width, least significant byte first.
    template <typename T, typename = std::enable_if_t<std::is_integral_v<T>>>
    bool read(T& value)
    {
        if (!fits(sizeof(T))) {
            return false;
        }
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) {
            bits |= std::to_integer<std::uint64_t>(bytes[cursor + i]) << (8 * i);
        }
        value = static_cast<T>(static_cast<std::make_unsigned_t<T>>(bits));
        cursor += sizeof(T);
        return true;
    }

    /// Characters or integers of a fixed number, all or none.
    template <typename T, std::size_t count>
    bool read(std::array<T, count>& values)
    {
        if (!fits(sizeof(T) * count)) {
            return false;
        }
        for (T& value : values) {
            read(value);
        }
        return true;
    }

    /// A string up to its zero byte; one without an end takes all that is left. Missing where
    /// nothing is left.
    bool read(std::string& text)
    {
        if (!fits(1)) {
            return false;
        }
        const auto rest = bytes.subspan(cursor);
        const auto end = std::find(rest.begin(), rest.end(), std::byte {0});
        const auto length = static_cast<std::size_t>(end - rest.begin());
        text.assign(reinterpret_cast<const char*>(rest.data()), length);
        cursor += std::min(length + 1, rest.size());
        return true;
    }

    /// The next bytes as they stand; fewer where fewer are left.
    gsl::span<const std::byte> take(std::size_t count)
    {
        const auto taken = bytes.subspan(cursor, std::min(count, remaining()));
        cursor += taken.size();
        return taken;
    }

private:
    bool fits(std::size_t count)
    {
        missing = missing || count > remaining();
        return !missing;
    }

    gsl::span<const std::byte> bytes;
    std::size_t cursor = 0;
    bool missing = false;
};

/// Appends little-endian fields to a block of bytes.
class ByteWriter
{
public:
    template <typename T, typename = std::enable_if_t<std::is_integral_v<T>>>
    void write(T value)
    {
        const auto bits = static_cast<std::make_unsigned_t<T>>(value);
        for (std::size_t i = 0; i < sizeof(T); ++i) {
            block.push_back(static_cast<std::byte>((bits >> (8 * i)) & 0xFFU));
        }
    }

    template <typename T, std::size_t count>
    void write(const std::array<T, count>& values)
    {
        for (const T value : values) {
            write(value);
        }
    }

    /// The characters up to the first zero byte, if there is one, then the zero byte that ends the
    /// field.
    void writeString(const std::string& text)
    {
        const std::size_t length = std::min(text.find('\0'), text.size());
        append(gsl::as_bytes(gsl::span<const char>(text.data(), length)));
        block.push_back(std::byte {0});
    }

    void append(gsl::span<const std::byte> more)
    {
        block.insert(block.end(), more.begin(), more.end());
    }

    void reserve(std::size_t size) { block.reserve(size); }

    [[nodiscard]] std::size_t size() const { return block.size(); }

    [[nodiscard]] gsl::span<const std::byte> bytes() const { return block; }

    [[nodiscard]] std::vector<std::byte> release() { return std::move(block); }

private:
    std::vector<std::byte> block;
};

} // namespace otdr
