#include "platform/otdr/core/sormap.h"
#include "platform/otdr/core/sorreader.h"
#include "tests/platform/otdr/core/sorreading.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

namespace {

namespace sor = otdr::sor;
using otdr::ErrorCode;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::codeOf;
using testing_support::readBytes;
using testing_support::readSketch;
using testing_support::SorSketch;

TEST(SorMap, FindsABodyWithAndWithoutItsName)
{
    SorSketch sketch = SorSketch::plain();
    for (const int version : {1, 2}) {
        sketch.version = version;
        auto blocks = sketch.blocks();
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            blocks[i].hasName = i % 2 == 0;
        }
        const auto file = readBytes(SorSketch::assemble(version, blocks));
        ASSERT_TRUE(file.ok());
        EXPECT_EQ(file->sup.supplier, "Sketch");
        EXPECT_EQ(file->keyEvents->events.size(), 3U);
        EXPECT_EQ(file->data.samples.size(), 4000U);
    }
}

TEST(SorMap, TakesTheBlocksInAnyOrder)
{
    auto blocks = SorSketch::plain().blocks();
    std::reverse(blocks.begin(), blocks.end());
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->blocks.front().name, "DataPts");
    EXPECT_EQ(file->gen.wavelength_nm, 1550);
    EXPECT_EQ(file->keyEvents->events.size(), 3U);
}

TEST(SorMap, UsesTheFirstOfTwoBlocksWithOneName)
{
    SorSketch sketch = SorSketch::plain();
    auto blocks = sketch.blocks();
    sketch.sup.supplier = "Second";
    blocks.push_back(sketch.blocks()[1]);
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->sup.supplier, "Sketch");
    EXPECT_EQ(file->blocks.size(), 6U);
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("more than once")));
}

TEST(SorMap, ComparesBlockNamesExactly)
{
    auto blocks = SorSketch::plain().blocks();
    blocks[3].name = "KeyEvents ";
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_FALSE(file->keyEvents);
}

TEST(SorMap, DoesNotLookForNamesInsideBlocks)
{
    SorSketch sketch = SorSketch::plain();
    sketch.gen.comment = "DataPts";
    sketch.makers = {
        {"Maker", ByteSketch().string("KeyEvents").u16(9).string("Cksum").u16(1).done}};
    const sor::File file = readSketch(sketch);
    EXPECT_EQ(file.keyEvents->events.size(), 3U);
    EXPECT_EQ(file.data.samples.size(), 4000U);
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
}

TEST(SorMap, CutsTheLastBlockToTheFile)
{
    SorSketch sketch = SorSketch::plain();
    Bytes bytes = SorSketch::assemble(2, sketch.blocks());
    bytes.resize(bytes.size() - 100);
    const auto file = readBytes(bytes);
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->data.samples.size(), 3950U);
    EXPECT_THAT(file->notes, Contains(HasSubstr("ends within the block \"DataPts\"")));
}

TEST(SorMap, TellsOfBlocksBehindTheEnd)
{
    SorSketch sketch = SorSketch::plain();
    Bytes bytes = sketch.build();
    bytes.resize(bytes.size() - 8);
    const auto file = readBytes(bytes);
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->checksum, sor::Checksum::Missing);
    EXPECT_EQ(file->blocks.size(), 5U);
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("ends before the block \"Cksum\"")));
}

/// Nothing of it is missing.
TEST(SorMap, TakesABlockOfNoBytesAtTheEndOfTheFile)
{
    auto blocks = SorSketch::plain().blocks();
    blocks.push_back({"Empty", {}});
    blocks.back().hasName = false;
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_THAT(file->notes, testing::IsEmpty());
    EXPECT_EQ(file->blocks.back().name, "Empty");
    EXPECT_EQ(file->blocks.back().size, 0U);
}

TEST(SorMap, KeepsBytesBehindTheLastBlock)
{
    SorSketch sketch = SorSketch::plain();
    sketch.tail = ByteSketch().text("stray").done;
    const sor::File file = readSketch(sketch);
    EXPECT_THAT(file.notes, ElementsAre(HasSubstr("5 bytes follow the last block")));
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
}

TEST(SorMap, FindsTheBlocksWhereTheMapMisstatesItsSize)
{
    Bytes bytes = SorSketch::plain().build();
    bytes[6] = static_cast<std::byte>(std::to_integer<unsigned>(bytes[6]) - 5);
    const auto file = readBytes(bytes);
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->gen.wavelength_nm, 1550);
    EXPECT_EQ(file->data.samples.size(), 4000U);
    EXPECT_THAT(file->notes, Contains(HasSubstr("the map does not end where it says")));
}

TEST(SorMap, RefusesAVersion1MapThatDoesNotEndWhereItSays)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    Bytes bytes = sketch.build();
    ASSERT_TRUE(readBytes(bytes).ok());
    bytes[2] = static_cast<std::byte>(std::to_integer<unsigned>(bytes[2]) + 1);
    EXPECT_EQ(codeOf(readBytes(bytes)), ErrorCode::NotATrace);
}

TEST(SorMap, RefusesAVersion1RevisionOutsideThe100s)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    Bytes bytes = sketch.build();
    bytes[0] = std::byte {199};
    EXPECT_TRUE(readBytes(bytes).ok());
    for (const unsigned revision : {99U, 200U}) {
        bytes[0] = static_cast<std::byte>(revision);
        EXPECT_EQ(codeOf(readBytes(bytes)), ErrorCode::NotATrace);
    }
}

TEST(SorMap, RefusesAMapThatCannotBe)
{
    Bytes bytes = SorSketch::plain().build();
    bytes[10] = std::byte {1};
    bytes[11] = std::byte {4}; // 1025 blocks
    EXPECT_EQ(codeOf(readBytes(bytes)), ErrorCode::Damaged);
    auto blocks = SorSketch::plain().blocks();
    blocks.push_back({std::string(64, 'n'), {}});
    EXPECT_TRUE(readBytes(SorSketch::assemble(2, blocks)).ok());
    blocks.back().name += 'n';
    EXPECT_EQ(codeOf(readBytes(SorSketch::assemble(2, blocks))), ErrorCode::Damaged);
}

TEST(SorMap, ABlockOutsideTheBytesIsEmpty)
{
    const Bytes bytes(10);
    const auto sizeOf = [&bytes](std::size_t offset, std::size_t size) {
        sor::RawBlock block;
        block.offset = offset;
        block.size = size;
        return sor::blockBytes(bytes, block).size();
    };
    EXPECT_EQ(sizeOf(0, 10), 10U);
    EXPECT_EQ(sizeOf(4, 6), 6U);
    EXPECT_EQ(sizeOf(4, 7), 0U);
    EXPECT_EQ(sizeOf(11, 0), 0U);
    EXPECT_EQ(sizeOf(10, std::numeric_limits<std::size_t>::max()), 0U);
    EXPECT_EQ(sizeOf(5, std::numeric_limits<std::size_t>::max() - 2), 0U);
}

} // namespace
