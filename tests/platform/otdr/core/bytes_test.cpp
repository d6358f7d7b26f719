#include "platform/otdr/core/bytes.h"

#include <gmock/gmock.h>

namespace {

using otdr::ByteReader;
using otdr::ByteWriter;

std::vector<std::byte> bytesOf(std::initializer_list<unsigned> values)
{
    std::vector<std::byte> bytes;
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

TEST(ByteReader, TakesTheLeastSignificantByteFirst)
{
    const auto bytes = bytesOf({0x34, 0x12, 0xFE, 0xFF, 0xFF, 0xFF, 0x78, 0x56, 0x34, 0x92});
    ByteReader reader(bytes);
    std::uint16_t word = 0;
    std::int32_t negative = 0;
    std::uint32_t large = 0;
    EXPECT_TRUE(reader.read(word) && reader.read(negative) && reader.read(large));
    EXPECT_EQ(word, 0x1234);
    EXPECT_EQ(negative, -2);
    EXPECT_EQ(large, 0x92345678U);
    EXPECT_EQ(reader.remaining(), 0U);
    EXPECT_FALSE(reader.isMissing());
}

TEST(ByteReader, KeepsTheValueOfAFieldThatDoesNotFit)
{
    const auto bytes = bytesOf({1, 2, 3});
    ByteReader reader(bytes);
    std::uint32_t value = 77;
    EXPECT_FALSE(reader.read(value));
    EXPECT_EQ(value, 77U);
    EXPECT_TRUE(reader.isMissing());
}

TEST(ByteReader, MissesEveryFieldBehindAMissingOne)
{
    const auto bytes = bytesOf({1, 2, 3});
    ByteReader reader(bytes);
    std::uint32_t tooWide = 0;
    std::uint16_t wouldFit = 9;
    std::string text = "kept";
    reader.read(tooWide);
    EXPECT_FALSE(reader.read(wouldFit));
    EXPECT_FALSE(reader.read(text));
    EXPECT_EQ(wouldFit, 9);
    EXPECT_EQ(text, "kept");
}

TEST(ByteReader, NeverReadsBehindItsEnd)
{
    const auto bytes = bytesOf({'a', 'b', 'c', 'd', 0});
    ByteReader reader(gsl::span<const std::byte>(bytes).first(2));
    std::string text;
    EXPECT_TRUE(reader.read(text));
    EXPECT_EQ(text, "ab");
    EXPECT_FALSE(reader.read(text));
}

TEST(ByteReader, TakesStringsUpToTheirZeroByte)
{
    const auto bytes = bytesOf({'a', 0, 0, 0xE9, 0});
    ByteReader reader(bytes);
    std::string first;
    std::string empty = "x";
    std::string latin;
    EXPECT_TRUE(reader.read(first) && reader.read(empty) && reader.read(latin));
    EXPECT_EQ(first, "a");
    EXPECT_EQ(empty, "");
    EXPECT_EQ(latin, "\xE9");
}

TEST(ByteReader, TakesAnArrayWholeOrNotAtAll)
{
    const auto bytes = bytesOf({1, 2, 3, 4, 5, 6, 7});
    ByteReader reader(bytes);
    std::array<std::int16_t, 4> values {};
    EXPECT_FALSE(reader.read(values));
    EXPECT_THAT(values, testing::Each(0));
    ByteReader again(bytes);
    std::array<char, 2> letters {};
    EXPECT_TRUE(again.read(letters));
    EXPECT_THAT(letters, testing::ElementsAre(1, 2));
}

TEST(ByteReader, GivesAsManyBytesAsThereAre)
{
    const auto bytes = bytesOf({1, 2, 3});
    ByteReader reader(bytes);
    EXPECT_EQ(reader.take(2).size(), 2U);
    EXPECT_EQ(reader.take(1'000'000).size(), 1U);
    EXPECT_EQ(reader.take(1).size(), 0U);
}

TEST(ByteWriter, WritesWhatTheReaderReads)
{
    ByteWriter writer;
    writer.write(std::int32_t {-750});
    writer.write(std::uint16_t {0xABCD});
    writer.write(std::array<char, 2> {'m', 't'});
    writer.writeString("ab");
    EXPECT_THAT(writer.release(),
                testing::ElementsAreArray(
                    bytesOf({0x12, 0xFD, 0xFF, 0xFF, 0xCD, 0xAB, 'm', 't', 'a', 'b', 0})));
}

TEST(ByteWriter, EndsAStringAtItsFirstZeroByte)
{
    ByteWriter writer;
    writer.writeString(std::string("ab\0cd", 5));
    EXPECT_THAT(writer.release(), testing::ElementsAreArray(bytesOf({'a', 'b', 0})));
}

} // namespace
