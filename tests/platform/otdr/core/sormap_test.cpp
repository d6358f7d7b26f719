#include "platform/otdr/core/sormap.h"
#include "platform/otdr/core/sorwriter.h"
#include "tests/platform/otdr/core/sorreading.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

namespace sor = otdr::sor;
using otdr::ErrorCode;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
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
    EXPECT_THAT(file->notes, IsEmpty());
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

/// The plain trace of version 2 with its checksum, sizes in the map wrong by this much: that of one
/// block, or of all.
Bytes withSizesOff(int bytes, const std::string& name = {})
{
    auto blocks = SorSketch::plain().blocks();
    blocks.push_back({"Cksum", Bytes(2)});
    for (SorSketch::Block& block : blocks) {
        if (name.empty() || block.name == name) {
            block.statedSize =
                static_cast<std::int64_t>(block.name.size() + 1 + block.body.size()) + bytes;
        }
    }
    return SorSketch::assemble(2, blocks);
}

TEST(SorMap, FindsABlockBesideWhereTheSizesBeforeItPutIt)
{
    for (const char* name : {"GenParams", "SupParams", "FxdParams", "KeyEvents", "DataPts"}) {
        for (const int off : {-40, -10, -1, 1, 9, 64}) {
            const Bytes bytes = withSizesOff(off, name);
            const auto file = readBytes(bytes);
            ASSERT_TRUE(file.ok());
            EXPECT_EQ(file->gen.comment, "first light\r\n") << name << off;
            EXPECT_EQ(file->sup.supplier, "Sketch") << name << off;
            EXPECT_EQ(file->fxd.groupIndex, 146'800U) << name << off;
            EXPECT_EQ(file->keyEvents->events.size(), 3U) << name << off;
            EXPECT_EQ(file->keyEvents->summary.returnLoss, 32'500) << name << off;
            EXPECT_EQ(file->data.samples.size(), 4000U) << name << off;
            EXPECT_EQ(file->checksum, sor::Checksum::NotComputed) << name << off;
            EXPECT_THAT(file->notes, ElementsAre(HasSubstr("does not stand where the map puts it")))
                << name << off;
            EXPECT_EQ(*otdr::encodeSor(*file), bytes) << name << off;
        }
    }
}

/// Sizes without the names, or with the names counted twice: each block is looked for from where
/// the one before it was found.
TEST(SorMap, FindsEveryBlockWhereAllSizesAreOff)
{
    for (const int off : {-10, 10}) {
        auto file = readBytes(withSizesOff(off));
        ASSERT_TRUE(file.ok());
        EXPECT_EQ(file->keyEvents->summary.returnLoss, 32'500) << off;
        EXPECT_EQ(file->data.samples.size(), 4000U) << off;
        EXPECT_EQ(file->blocks.size(), 6U) << off;
        file->sup.supplier = "Another";
        const auto again = readBytes(*otdr::encodeSor(*file));
        ASSERT_TRUE(again.ok());
        EXPECT_EQ(again->sup.supplier, "Another") << off;
        EXPECT_EQ(again->data.samples, file->data.samples) << off;
        EXPECT_EQ(again->checksum, sor::Checksum::Matches) << off;
        EXPECT_THAT(again->notes, IsEmpty()) << off;
    }
}

/// "Cksum" and its zero byte, then the value: what a maker states who leaves the name out.
TEST(SorMap, KnowsHowLongAChecksumIs)
{
    const auto file = readBytes(withSizesOff(-6, "Cksum"));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->checksum, sor::Checksum::NotComputed);
    EXPECT_EQ(file->blocks.back().size, 8U);
    EXPECT_THAT(file->notes, IsEmpty());
}

/// A block of nothing but its name, with which the file ends.
TEST(SorMap, FindsABlockOfNoBytesAtTheEndOfTheFile)
{
    auto blocks = SorSketch::plain().blocks();
    SorSketch::Block& data = blocks.back();
    data.statedSize = static_cast<std::int64_t>(data.name.size() + 1 + data.body.size()) - 1;
    blocks.push_back({"Empty", {}});
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->data.samples.size(), 4000U);
    EXPECT_EQ(file->blocks.back().size, 6U);
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("does not stand where the map puts it")));
}

TEST(SorMap, LooksForABlockOnlyCloseToWhereTheSizesPutIt)
{
    for (const int off : {-65, -64, 64, 65}) {
        const auto file = readBytes(withSizesOff(off, "FxdParams"));
        ASSERT_TRUE(file.ok());
        const auto found = Contains(HasSubstr("\"KeyEvents\" does not stand"));
        EXPECT_EQ(testing::Matches(found)(file->notes), std::abs(off) == 64) << off;
    }
}

/// What reads like the name of a block may begin in the one before, and a block may be called as
/// the one before is.
TEST(SorMap, LooksForABlockOnlyBehindTheBeginningOfTheOneBefore)
{
    auto blocks = SorSketch::plain().blocks();
    blocks[3].hasName = false;
    blocks.insert(blocks.begin() + 3, {{"Maker", ByteSketch().text("K").done}, {"eyEvents", {}}});
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->keyEvents->events.size(), 3U);
    EXPECT_THAT(file->notes, IsEmpty());

    blocks = SorSketch::plain().blocks();
    blocks.insert(blocks.begin() + 3, {{"Maker", {}}, {"Maker", Bytes(20), false}});
    const auto twice = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(twice.ok());
    EXPECT_EQ(twice->blocks[4].size, 20U);
    EXPECT_EQ(twice->keyEvents->events.size(), 3U);
    EXPECT_THAT(twice->notes, ElementsAre(HasSubstr("more than once")));
}

TEST(SorMap, LooksForNoNamesWhereTheFileHasNone)
{
    for (const int version : {1, 2}) {
        SorSketch sketch = SorSketch::plain();
        sketch.version = version;
        auto blocks = sketch.blocks();
        for (SorSketch::Block& block : blocks) {
            block.hasName = false;
        }
        blocks.insert(blocks.begin() + 3, {"Own", ByteSketch().string("KeyEvents").done, false});
        const auto file = readBytes(SorSketch::assemble(version, blocks));
        ASSERT_TRUE(file.ok());
        EXPECT_EQ(file->blocks[3].size, 10U) << version;
        EXPECT_EQ(file->keyEvents->events.size(), 3U) << version;
        EXPECT_THAT(file->notes, IsEmpty()) << version;
    }
}

TEST(SorMap, FindsTheLastBlockWhereTheMapDoesNotCountItself)
{
    for (const int version : {1, 2}) {
        SorSketch sketch = SorSketch::plain();
        sketch.version = version;
        Bytes bytes = SorSketch::assemble(version, sketch.blocks());
        bytes[version == 2 ? 10 : 6] = std::byte {5}; // the blocks alone; the samples come last
        const auto file = readBytes(bytes);
        ASSERT_TRUE(file.ok()) << version;
        EXPECT_EQ(file->blocks.size(), 5U) << version;
        EXPECT_EQ(file->data.samples.size(), 4000U) << version;
        EXPECT_THAT(file->notes, IsEmpty()) << version;
    }
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
