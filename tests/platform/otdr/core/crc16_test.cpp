#include "platform/otdr/core/crc16.h"
#include "tests/support/sorsketch.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using otdr::crc16;
using otdr::crc16Carry;
using testing_support::Bytes;
using testing_support::slowCrc16;

Bytes digits()
{
    return testing_support::ByteSketch().text("123456789").done;
}

Bytes randomBytes(std::size_t size)
{
    std::mt19937 random(7);
    Bytes bytes(size);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(random() & 0xFFU);
    }
    return bytes;
}

TEST(Crc16, GivesThePublishedCheckValues)
{
    EXPECT_EQ(crc16(digits(), 0xFFFF), 0x29B1);
    EXPECT_EQ(crc16(digits(), 0), 0x31C3);
}

TEST(Crc16, LeavesTheStartOfNothingAsItIs)
{
    EXPECT_EQ(crc16({}, 0xFFFF), 0xFFFF);
    EXPECT_EQ(crc16({}, 0), 0);
}

TEST(Crc16, AgreesWithTheBitByBitOneAtEveryLength)
{
    const Bytes bytes = randomBytes(200);
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const auto part = gsl::span<const std::byte>(bytes).first(size);
        ASSERT_EQ(crc16(part, 0xFFFF), slowCrc16(bytes, size, 0xFFFF)) << size;
        ASSERT_EQ(crc16(part, 0x1234), slowCrc16(bytes, size, 0x1234)) << size;
    }
}

TEST(Crc16, GoesOnWhereAnotherStretchEnded)
{
    const Bytes bytes = randomBytes(100);
    const gsl::span<const std::byte> all(bytes);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        ASSERT_EQ(crc16(all.subspan(cut), crc16(all.first(cut), 0xFFFF)), crc16(all, 0xFFFF))
            << cut;
    }
}

TEST(Crc16, TellsOneStartFromAnotherByTheirCarry)
{
    for (const std::size_t size : {0U, 1U, 2U, 15U, 16U, 17U, 1000U, 118'000U}) {
        const Bytes bytes = randomBytes(size);
        ASSERT_EQ(crc16(bytes, 0xFFFF), crc16(bytes, 0) ^ crc16Carry(0xFFFF, size)) << size;
    }
}

} // namespace
