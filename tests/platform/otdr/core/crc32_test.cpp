#include "platform/otdr/core/crc32.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

std::vector<std::byte> bytesOf(const std::string& text)
{
    std::vector<std::byte> bytes;
    for (const char c : text) {
        bytes.push_back(static_cast<std::byte>(c));
    }
    return bytes;
}

/// Bit by bit, from the definition.
std::uint32_t slowCrc32(const std::vector<std::byte>& bytes)
{
    std::uint32_t crc = 0xffffffffU;
    for (const std::byte byte : bytes) {
        crc ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

TEST(Crc32, GivesThePublishedCheckValue)
{
    EXPECT_EQ(otdr::crc32(bytesOf("123456789")), 0xCBF43926U);
}

TEST(Crc32, GivesKnownValuesOfShortTexts)
{
    EXPECT_EQ(otdr::crc32({}), 0U);
    EXPECT_EQ(otdr::crc32(bytesOf("a")), 0xE8B7BE43U);
    EXPECT_EQ(otdr::crc32(bytesOf("The quick brown fox jumps over the lazy dog")), 0x414FA339U);
}

TEST(Crc32, EqualsTheBitwiseOneForEveryLength)
{
    std::mt19937 generator(1);
    std::vector<std::byte> bytes;
    for (int length = 0; length < 100; ++length) {
        EXPECT_EQ(otdr::crc32(bytes), slowCrc32(bytes)) << length << " bytes";
        bytes.push_back(static_cast<std::byte>(generator()));
    }
}

} // namespace
