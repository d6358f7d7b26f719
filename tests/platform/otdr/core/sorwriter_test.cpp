#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorwriter.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <string>

namespace {

namespace sor = otdr::sor;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::ChecksumRecipe;
using testing_support::keyEvent;
using testing_support::SorSketch;

sor::File readBack(const Bytes& bytes)
{
    auto file = otdr::readSor(std::make_shared<const Bytes>(bytes));
    EXPECT_TRUE(file.ok()) << (file.ok() ? "" : file.error().message);
    return file.ok() ? *file : sor::File {};
}

Bytes written(const sor::File& file, std::vector<std::string>* notes = nullptr)
{
    auto bytes = otdr::encodeSor(file, notes);
    EXPECT_TRUE(bytes.ok());
    return bytes.ok() ? *bytes : Bytes();
}

std::vector<std::string> names(const sor::File& file)
{
    std::vector<std::string> all;
    for (const auto& block : file.blocks) {
        all.push_back(block.name);
    }
    return all;
}

Bytes bytesOfBlock(const sor::File& file, std::size_t block)
{
    const auto& raw = file.blocks.at(block);
    const auto begin = file.bytes->begin() + static_cast<std::ptrdiff_t>(raw.offset);
    return {begin, begin + static_cast<std::ptrdiff_t>(raw.size)};
}

/// A file with everything that a writer is tempted to lose.
SorSketch awkward()
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxdPadding = ByteSketch().text("stale").done;
    sketch.keyEventsPadding = ByteSketch().text("memory").done;
    sketch.tail = ByteSketch().text("behind").done;
    sketch.gen.operatorName = ""; // a bare zero byte
    sketch.makers = {{"Maker ", ByteSketch().text("own").done, true, 210}};
    return sketch;
}

TEST(SorWriter, GivesAnUnchangedFileBackByteForByte)
{
    for (const auto recipe :
         {ChecksumRecipe::FromFfff, ChecksumRecipe::FromZero, ChecksumRecipe::Zero,
          ChecksumRecipe::Private, ChecksumRecipe::NoBlock}) {
        SorSketch sketch = awkward();
        sketch.checksum = recipe;
        const Bytes bytes = sketch.build();
        EXPECT_EQ(written(readBack(bytes)), bytes);
    }
}

TEST(SorWriter, EncodesOnlyTheBlockThatWasChanged)
{
    const sor::File original = readBack(awkward().build());
    sor::File file = original;
    file.gen.comment = "a longer remark than before";
    std::vector<std::string> notes;
    const sor::File again = readBack(written(file, &notes));
    EXPECT_EQ(names(again), names(original));
    EXPECT_EQ(again.gen.comment, file.gen.comment);
    EXPECT_EQ(again.gen.cableId, original.gen.cableId);
    for (const std::size_t block : {1, 2, 3, 4, 5}) {
        EXPECT_EQ(bytesOfBlock(again, block), bytesOfBlock(original, block)) << block;
    }
    EXPECT_EQ(again.blocks[5].revision, 210);
    EXPECT_EQ(again.checksum, sor::Checksum::Matches);
    EXPECT_EQ(Bytes(again.bytes->end() - 6, again.bytes->end()), ByteSketch().text("behind").done);
    EXPECT_THAT(notes, IsEmpty());
}

TEST(SorWriter, KeepsWhatItDoesNotKnowBehindTheFieldsItKnows)
{
    sor::File file = readBack(awkward().build());
    file.fxd.averages = 77;
    const sor::File again = readBack(written(file));
    EXPECT_EQ(again.fxd.averages, 77U);
    EXPECT_EQ(again.blocks[2].size, file.blocks[2].size);
    const Bytes block = bytesOfBlock(again, 2);
    EXPECT_EQ(Bytes(block.end() - 5, block.end()), ByteSketch().text("stale").done);
}

TEST(SorWriter, KeepsWhatStandsBehindTheLastFieldOfTheSupplier)
{
    auto blocks = awkward().blocks();
    blocks[1].body = ByteSketch().bytes(blocks[1].body).text("more").done;
    sor::File file = readBack(SorSketch::assemble(2, blocks));
    file.sup.supplier = "Another";
    const Bytes again = bytesOfBlock(readBack(written(file)), 1);
    EXPECT_EQ(Bytes(again.end() - 4, again.end()), ByteSketch().text("more").done);
}

TEST(SorWriter, WritesTheChecksumOverEveryByteBeforeIt)
{
    sor::File file = readBack(awkward().build());
    file.gen.comment = "new";
    Bytes bytes = written(file);
    const std::size_t value = bytes.size() - 6 - 2; // the tail, the value
    const unsigned stored =
        std::to_integer<unsigned>(bytes[value]) | std::to_integer<unsigned>(bytes[value + 1]) << 8U;
    EXPECT_EQ(stored, testing_support::slowCrc16(bytes, value, 0xFFFF));
}

TEST(SorWriter, DropsTheMakersBlocksWhenSamplesOrEventsChange)
{
    const sor::File original = readBack(awkward().build());
    sor::File otherEvents = original;
    otherEvents.keyEvents->events[1].loss = 500;
    sor::File otherSamples = original;
    otherSamples.data.samples = otdr::RawSamples({1, 2, 3});
    sor::File otherScale = original;
    otherScale.data.scaleFactor = 500;
    for (const sor::File& file : {otherEvents, otherSamples, otherScale}) {
        std::vector<std::string> notes;
        const sor::File again = readBack(written(file, &notes));
        EXPECT_THAT(
            names(again),
            ElementsAre("GenParams", "SupParams", "FxdParams", "KeyEvents", "DataPts", "Cksum"));
        EXPECT_THAT(notes, ElementsAre(HasSubstr("\"Maker \"")));
        EXPECT_EQ(again.keyEvents->events[1].loss, file.keyEvents->events[1].loss);
        EXPECT_EQ(again.data.samples, file.data.samples);
        EXPECT_EQ(again.data.scaleFactor, file.data.scaleFactor);
    }
}

TEST(SorWriter, AddsABlockThatTheFileDidNotHave)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents", "GenParams"};
    sor::File file = readBack(sketch.build());
    file.keyEvents = sor::KeyEvents {{keyEvent(1, 0, "1F9999")}, {}};
    const sor::File again = readBack(written(file));
    EXPECT_THAT(names(again),
                ElementsAre("SupParams", "FxdParams", "DataPts", "KeyEvents", "Cksum"));
    EXPECT_EQ(again.keyEvents->events.size(), 1U);
    EXPECT_EQ(again.checksum, sor::Checksum::Matches);
}

TEST(SorWriter, LeavesAMissingEventBlockMissing)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    sor::File file = readBack(sketch.build());
    file.gen.comment = "new";
    EXPECT_FALSE(readBack(written(file)).keyEvents);
}

TEST(SorWriter, KeepsTheSecondOfTwoBlocksWithOneName)
{
    SorSketch sketch = SorSketch::plain();
    auto blocks = sketch.blocks();
    sketch.sup.supplier = "Second";
    blocks.push_back(sketch.blocks()[1]);
    sor::File file = readBack(SorSketch::assemble(2, blocks));
    file.sup.supplier = "Changed";
    const sor::File again = readBack(written(file));
    EXPECT_EQ(again.sup.supplier, "Changed");
    EXPECT_EQ(bytesOfBlock(again, 5), bytesOfBlock(file, 5));
}

TEST(SorWriter, KeepsAMakersBlockWithoutItsNameAsItStands)
{
    SorSketch sketch = SorSketch::plain();
    sketch.makers = {{"Bare", ByteSketch().text("own").done, false}};
    sor::File file = readBack(sketch.build());
    file.gen.comment = "new";
    EXPECT_EQ(bytesOfBlock(readBack(written(file)), 5), ByteSketch().text("own").done);
}

TEST(SorWriter, LeavesACutFileAsItCame)
{
    Bytes bytes = awkward().build();
    bytes.resize(bytes.size() - 200);
    EXPECT_EQ(written(readBack(bytes)), bytes);
}

TEST(SorWriter, MakesAWholeFileOfACutOneThatWasChanged)
{
    Bytes bytes = awkward().build();
    bytes.resize(bytes.size() - 200);
    sor::File file = readBack(bytes);
    file.gen.comment = "new";
    const sor::File again = readBack(written(file));
    EXPECT_THAT(again.notes, testing::Not(testing::Contains(HasSubstr("the file ends"))));
    EXPECT_EQ(again.data.samples, file.data.samples);
}

void expectSameValues(const sor::File& a, const sor::File& b)
{
    EXPECT_EQ(a.gen.comment, b.gen.comment);
    EXPECT_EQ(a.gen.wavelength_nm, b.gen.wavelength_nm);
    EXPECT_EQ(a.gen.userOffset, b.gen.userOffset);
    EXPECT_EQ(a.sup.other, b.sup.other);
    EXPECT_EQ(a.fxd.dateTime_s, b.fxd.dateTime_s);
    EXPECT_EQ(a.fxd.groupIndex, b.fxd.groupIndex);
    EXPECT_EQ(a.fxd.pulses.size(), b.fxd.pulses.size());
    EXPECT_EQ(a.fxd.acquisitionRange, b.fxd.acquisitionRange);
    EXPECT_EQ(a.fxd.endThreshold, b.fxd.endThreshold);
    ASSERT_EQ(a.keyEvents->events.size(), b.keyEvents->events.size());
    for (std::size_t i = 0; i < a.keyEvents->events.size(); ++i) {
        const auto& left = a.keyEvents->events[i];
        const auto& right = b.keyEvents->events[i];
        EXPECT_EQ(left.number, right.number);
        EXPECT_EQ(left.position, right.position);
        EXPECT_EQ(left.attenuation, right.attenuation);
        EXPECT_EQ(left.loss, right.loss);
        EXPECT_EQ(left.reflectance, right.reflectance);
        EXPECT_EQ(left.code, right.code);
        EXPECT_EQ(left.technique, right.technique);
        EXPECT_EQ(left.markers, right.markers);
        EXPECT_EQ(left.comment, right.comment);
    }
    EXPECT_EQ(a.keyEvents->summary.totalLoss, b.keyEvents->summary.totalLoss);
    EXPECT_EQ(a.keyEvents->summary.returnLoss, b.keyEvents->summary.returnLoss);
    EXPECT_EQ(a.keyEvents->summary.returnLossEnd, b.keyEvents->summary.returnLossEnd);
    EXPECT_EQ(a.data.samples, b.data.samples);
    EXPECT_EQ(a.data.scaleFactor, b.data.scaleFactor);
}

TEST(SorWriter, MakesAVersion2FileOfVersion1)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    sketch.gen.userOffset = 5000;
    sketch.makers = {{"Named", ByteSketch().text("a").done, true, 202},
                     {"Bare", ByteSketch().text("b").done, false, 221}};
    const sor::File file = readBack(sketch.build());
    const sor::File again = readBack(written(file));
    EXPECT_EQ(again.version, 2);
    EXPECT_THAT(names(again),
                ElementsAre("GenParams", "SupParams", "FxdParams", "KeyEvents", "DataPts", "Named",
                            "Bare", "Cksum"));
    expectSameValues(file, again);
    EXPECT_EQ(bytesOfBlock(again, 5), ByteSketch().string("Named").text("a").done);
    EXPECT_EQ(bytesOfBlock(again, 6), ByteSketch().string("Bare").text("b").done);
    EXPECT_EQ(again.blocks[6].revision, 221);
    EXPECT_EQ(again.checksum, sor::Checksum::Matches);
    // Distances that version 1 does not have: tenths of a metre at n = 1.468.
    EXPECT_EQ(again.gen.userOffsetDistance, 1021);
    EXPECT_EQ(again.fxd.acquisitionRangeDistance, 40'844);
}

TEST(SorWriter, WritesNoBlockThatAFileOfVersion1DoesNotHave)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    sketch.leftOut = {"SupParams", "FxdParams", "KeyEvents"};
    sketch.gen.userOffset = 5000;
    sor::File file = readBack(sketch.build());
    const sor::File again = readBack(written(file));
    EXPECT_THAT(names(again), ElementsAre("GenParams", "DataPts", "Cksum"));
    EXPECT_FALSE(again.hasFxd);
    EXPECT_EQ(again.gen.userOffset, 5000);
    EXPECT_EQ(again.gen.userOffsetDistance, 0) << "nobody knows how fast the light was";
    file.fxd.groupIndex = 147'000;
    EXPECT_THAT(names(readBack(written(file))),
                ElementsAre("GenParams", "FxdParams", "DataPts", "Cksum"))
        << "what was told since";
}

TEST(SorWriter, TellsNoDistanceOfVersion1WithoutAGroupIndex)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    sketch.gen.userOffset = 5000;
    sketch.fxd.groupIndex = 0;
    const sor::File again = readBack(written(readBack(sketch.build())));
    EXPECT_EQ(again.fxd.groupIndex, 0U);
    EXPECT_EQ(again.gen.userOffsetDistance, 0);
    EXPECT_EQ(again.fxd.acquisitionRangeDistance, 0);
}

sor::File newTrace()
{
    const SorSketch sketch = SorSketch::plain();
    sor::File file;
    file.gen = sketch.gen;
    file.sup = sketch.sup;
    file.fxd = sketch.fxd;
    file.keyEvents = sketch.keyEvents;
    file.data.samples = otdr::RawSamples(sketch.samples);
    return file;
}

TEST(SorWriter, WritesANewTraceInTheUsualOrder)
{
    const sor::File file = newTrace();
    const sor::File again = readBack(written(file));
    EXPECT_THAT(
        names(again),
        ElementsAre("GenParams", "SupParams", "FxdParams", "KeyEvents", "DataPts", "Cksum"));
    for (const auto& block : again.blocks) {
        EXPECT_EQ(block.revision, 200);
    }
    EXPECT_EQ(again.blocks[2].size, 92U);
    EXPECT_EQ(again.blocks[5].size, 8U);
    EXPECT_EQ(again.blocks[4].size, 8U + 12 + 2 * 4000);
    expectSameValues(file, again);
    EXPECT_THAT(again.notes, IsEmpty());
    EXPECT_EQ(written(again), *again.bytes);
}

TEST(SorWriter, AgreesWithAFileMadeByHand)
{
    SorSketch sketch = SorSketch::plain();
    sketch.gen.userOffsetDistance = 1;
    sketch.fxd.acquisitionRangeDistance = 40'844;
    sor::File file = newTrace();
    file.gen.userOffsetDistance = 1;
    EXPECT_EQ(written(file), sketch.build());
}

TEST(SorWriter, WritesAnEmptyStringAsABlank)
{
    sor::File file = newTrace();
    file.gen.cableId = "";
    file.sup.other = "";
    file.keyEvents->events[0].comment = "";
    const sor::File again = readBack(written(file));
    EXPECT_EQ(again.gen.cableId, " ");
    EXPECT_EQ(again.sup.other, " ");
    EXPECT_EQ(again.keyEvents->events[0].comment, " ");
}

TEST(SorWriter, AlwaysWritesAnEventBlockAndAPulse)
{
    sor::File file;
    file.data.samples = otdr::RawSamples({1, 2, 3});
    const sor::File again = readBack(written(file));
    ASSERT_TRUE(again.keyEvents);
    EXPECT_THAT(again.keyEvents->events, IsEmpty());
    EXPECT_EQ(again.blocks[3].size, 10U + 2 + 22);
    EXPECT_EQ(again.fxd.pulses.size(), 1U);
}

TEST(SorWriter, WritesSeveralPulsesAndLandmarks)
{
    sor::File file = newTrace();
    file.fxd.pulses = {{10, 250'000, 100}, {100, 500'000, 3900}};
    file.landmarks.resize(1);
    file.landmarks[0].comment = "pole";
    const sor::File again = readBack(written(file));
    ASSERT_EQ(again.fxd.pulses.size(), 2U);
    EXPECT_EQ(again.fxd.pulses[1].dataSpacing, 500'000U);
    ASSERT_EQ(again.landmarks.size(), 1U);
    EXPECT_EQ(again.landmarks[0].comment, "pole");
    EXPECT_EQ(names(again)[4], "LnkParams");
}

TEST(SorWriter, KeepsLandmarksOfVersion1AsTheyStand)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    const Bytes body = ByteSketch().u16(9000).text("a layout of its own").done;
    sketch.makers = {{"LnkParams", body, false, 110}};
    const sor::File again = readBack(written(readBack(sketch.build())));
    EXPECT_EQ(bytesOfBlock(again, 4), ByteSketch().string("LnkParams").bytes(body).done);
}

TEST(SorWriter, RefusesWhatNoFileCanHold)
{
    sor::File file = newTrace();
    file.fxd.pulses.resize(65);
    EXPECT_EQ(otdr::encodeSor(file).error().code, otdr::ErrorCode::TooLarge);
    file = newTrace();
    file.keyEvents->events.resize(65'536);
    EXPECT_FALSE(otdr::encodeSor(file).ok());
    file.keyEvents->events.resize(65'535);
    EXPECT_TRUE(otdr::encodeSor(file).ok());
    file.landmarks.resize(65'536);
    EXPECT_FALSE(otdr::encodeSor(file).ok());
}

TEST(SorWriter, RefusesATraceThatItWouldNotReadAgain)
{
    sor::File file = newTrace();
    file.data.samples = otdr::RawSamples(std::vector<std::uint16_t>(otdr::kLargestSorFile / 2));
    EXPECT_EQ(otdr::encodeSor(file).error().code, otdr::ErrorCode::TooLarge);
}

TEST(SorWriter, FillsInDistancesInTheUnitOfTheFile)
{
    const std::map<std::string, double> metres {
        {"mt", 1.0}, {"km", 1000.0}, {"ft", 0.3048}, {"kf", 304.8}, {"mi", 1609.344}};
    for (const auto& [unit, length_m] : metres) {
        sor::File file = newTrace();
        file.fxd.distanceUnit = {unit[0], unit[1]};
        file.fxd.groupIndex = 150'000;
        file.fxd.acquisitionRange = 10'000'000; // a millisecond, at c / 1.5
        const sor::File again = readBack(written(file));
        EXPECT_EQ(again.fxd.acquisitionRangeDistance, std::lround(10.0 * 199861.639 / length_m))
            << unit;
    }
}

TEST(SorWriter, MakesAWholeFileWhereWhatItCameFromIsNoTrace)
{
    sor::File file = newTrace();
    file.bytes = std::make_shared<const Bytes>(100);
    const sor::File again = readBack(written(file));
    expectSameValues(file, again);
    EXPECT_EQ(again.checksum, sor::Checksum::Matches);
}

} // namespace
