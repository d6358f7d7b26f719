#include "platform/otdr/core/sorreader.h"
#include "tests/platform/otdr/core/sorreading.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>

namespace {

namespace sor = otdr::sor;
using otdr::ErrorCode;
using otdr::readSor;
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

class BothVersions : public testing::TestWithParam<int>
{
};

TEST_P(BothVersions, AreReadFieldByField)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = GetParam();
    sketch.gen.userOffset = -1234;
    sketch.fxd.frontPanelOffset = -7;
    sketch.fxd.noiseFloorScale = -100;
    sketch.fxd.endThreshold = 3000;
    const sor::File file = readSketch(sketch);
    EXPECT_EQ(file.version, GetParam());
    EXPECT_TRUE(file.hasGen && file.hasSup && file.hasFxd);
    EXPECT_EQ(file.gen.cableId, "Cable 7 ");
    EXPECT_EQ(file.gen.wavelength_nm, 1550);
    EXPECT_EQ(file.gen.fibreType, GetParam() == 2 ? 652 : 0);
    EXPECT_EQ(file.gen.userOffset, -1234);
    EXPECT_EQ(file.gen.comment, "first light\r\n");
    EXPECT_EQ(file.sup.supplier, "Sketch");
    EXPECT_EQ(file.sup.moduleId, "Module 2 ");
    EXPECT_EQ(file.fxd.dateTime_s, 1'700'000'000U);
    ASSERT_EQ(file.fxd.pulses.size(), 1U);
    EXPECT_EQ(file.fxd.pulses[0].dataSpacing, 500'000U);
    EXPECT_EQ(file.fxd.groupIndex, 146'800U);
    EXPECT_EQ(file.fxd.backscatter, 815);
    EXPECT_EQ(file.fxd.averages, 4096U);
    EXPECT_EQ(file.fxd.averagingTime, GetParam() == 2 ? 300 : 0);
    EXPECT_EQ(file.fxd.frontPanelOffset, -7);
    EXPECT_EQ(file.fxd.noiseFloorScale, -100);
    EXPECT_EQ(file.fxd.endThreshold, 3000);
    ASSERT_TRUE(file.keyEvents);
    ASSERT_EQ(file.keyEvents->events.size(), 3U);
    EXPECT_EQ(file.keyEvents->events[1].position, 50'000);
    EXPECT_EQ(file.keyEvents->events[1].attenuation, 190);
    EXPECT_EQ(file.keyEvents->events[1].loss, 120);
    EXPECT_EQ(file.keyEvents->events[2].reflectance, -14'700);
    EXPECT_EQ(file.keyEvents->summary.totalLoss, 3120);
    EXPECT_EQ(file.keyEvents->summary.returnLossEnd, 150'000);
    EXPECT_EQ(file.data.scaleFactor, 1000);
    EXPECT_EQ(file.data.samples, otdr::RawSamples(sketch.samples));
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
    EXPECT_THAT(file.notes, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(SorReader, BothVersions, testing::Values(1, 2));

TEST(SorReader, GivesMarkersOfVersion2Alone)
{
    SorSketch sketch = SorSketch::plain();
    EXPECT_THAT(readSketch(sketch).keyEvents->events[1].markers,
                ElementsAre(1000, 50'000, 51'000, 149'000, 50'000));
    sketch.version = 1;
    EXPECT_THAT(readSketch(sketch).keyEvents->events[1].markers, testing::Each(0));
}

TEST(SorReader, KeepsTheLengthOfABlockFromReachingTheNextOne)
{
    // The supplier block ends within its second string; the block behind it starts with other
    // letters.
    auto blocks = SorSketch::plain().blocks();
    blocks[1].body = ByteSketch().string("Sketch").text("Main").done;
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->sup.mainframeId, "Main");
    EXPECT_EQ(file->sup.mainframeSerial, "");
    EXPECT_EQ(file->fxd.averages, 4096U);
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("\"SupParams\" ends early")));
}

TEST(SorReader, LeavesMissingFieldsAtTheirDefaults)
{
    auto blocks = SorSketch::plain().blocks();
    blocks[2].body.resize(32); // up to the group index
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->fxd.groupIndex, 146'800U);
    EXPECT_EQ(file->fxd.averages, 0U);
    EXPECT_EQ(file->fxd.traceType[0], 'S');
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("\"FxdParams\" ends early")));
}

TEST(SorReader, KeepsTheEventsBeforeOneThatIsCutShort)
{
    auto blocks = SorSketch::plain().blocks();
    blocks[3].body.resize(2 + 44 + 44 + 20);
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->keyEvents->events.size(), 2U);
    EXPECT_EQ(file->keyEvents->summary.totalLoss, 0);
    EXPECT_THAT(file->notes, ElementsAre("of 3 events the file holds 2"));
}

TEST(SorReader, ReadsATableWithoutEvents)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events.clear();
    const sor::File file = readSketch(sketch);
    ASSERT_TRUE(file.keyEvents);
    EXPECT_THAT(file.keyEvents->events, IsEmpty());
    EXPECT_EQ(file.keyEvents->summary.totalLoss, 3120);
}

TEST(SorReader, ReadsAFileWithNothingButSamples)
{
    const auto blocks = SorSketch::plain().blocks();
    const auto file = readBytes(SorSketch::assemble(2, {blocks[4]}));
    ASSERT_TRUE(file.ok());
    EXPECT_FALSE(file->hasGen || file->hasSup || file->hasFxd || file->keyEvents);
    EXPECT_EQ(file->data.samples.size(), 4000U);
    EXPECT_EQ(file->checksum, sor::Checksum::Missing);
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("distances are not known")));
}

TEST(SorReader, ReadsThreeArraysOfSeveralPulseWidths)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.pulses = {{10, 250'000, 1000}, {100, 500'000, 2000}, {1000, 1'000'000, 3000}};
    for (const int version : {1, 2}) {
        sketch.version = version;
        const sor::File file = readSketch(sketch);
        ASSERT_EQ(file.fxd.pulses.size(), 3U);
        EXPECT_EQ(file.fxd.pulses[1].width_ns, 100);
        EXPECT_EQ(file.fxd.pulses[1].dataSpacing, 500'000U);
        EXPECT_EQ(file.fxd.pulses[2].samples, 3000U);
        EXPECT_EQ(file.fxd.groupIndex, 146'800U);
        EXPECT_EQ(file.fxd.averages, 4096U);
    }
}

TEST(SorReader, AssumesOnePulseWidthWhereTheNumberIsImpossible)
{
    for (const unsigned count : {0U, 65U, 65'535U}) {
        auto blocks = SorSketch::plain().blocks();
        blocks[2].body[16] = static_cast<std::byte>(count & 0xFFU);
        blocks[2].body[17] = static_cast<std::byte>(count >> 8U);
        const auto file = readBytes(SorSketch::assemble(2, blocks));
        ASSERT_TRUE(file.ok());
        EXPECT_EQ(file->fxd.pulses.size(), 1U);
        EXPECT_EQ(file->fxd.groupIndex, 146'800U);
        EXPECT_THAT(file->notes, Contains(HasSubstr("pulse widths is " + std::to_string(count))));
    }
}

TEST(SorReader, TellsWhatItPutsInPlaceOfImpossibleValues)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.groupIndex = 0;
    EXPECT_THAT(readSketch(sketch).notes, ElementsAre(HasSubstr("1.46800 is assumed")));
    sketch = SorSketch::plain();
    sketch.fxd.pulses[0].dataSpacing = 0;
    EXPECT_THAT(readSketch(sketch).notes,
                ElementsAre(HasSubstr("range over the number of samples")));
    sketch.fxd.acquisitionRange = 0;
    EXPECT_THAT(readSketch(sketch).notes, ElementsAre(HasSubstr("distances are not known")));
    sketch = SorSketch::plain();
    sketch.scaleFactor = 0;
    const sor::File file = readSketch(sketch);
    EXPECT_EQ(file.data.scaleFactor, 1000);
    EXPECT_THAT(file.notes, ElementsAre(HasSubstr("1.000 is assumed")));
}

TEST(SorReader, TrustsTheSamplesThatAreThere)
{
    auto blocks = SorSketch::plain().blocks();
    blocks[4].body =
        ByteSketch().u32(4'000'000'000).u16(1).u32(4'000'000'000).u16(1000).u16(7).u16(8).done;
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->data.samples, otdr::RawSamples({7, 8}));
    EXPECT_THAT(file->notes, ElementsAre("of 4000000000 samples the file holds 2"));
}

TEST(SorReader, TellsHowAnUnusualBackscatterCoefficientIsRead)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.backscatter = 7950;
    EXPECT_THAT(readSketch(sketch).notes, ElementsAre(HasSubstr("stored as 7950; it is read as")));
    sketch.fxd.backscatter = 30'000;
    EXPECT_THAT(readSketch(sketch).notes, ElementsAre(HasSubstr("the usual one is taken")));
    sketch.fxd.backscatter = 0;
    EXPECT_THAT(readSketch(sketch).notes, IsEmpty());
}

TEST(SorReader, TellsOfSpacingsThatDiffer)
{
    SorSketch sketch = SorSketch::plain();
    const sor::PulseEntry one = sketch.fxd.pulses.front();
    sketch.fxd.pulses = {one, one};
    EXPECT_THAT(readSketch(sketch).notes, IsEmpty());
    sketch.fxd.pulses[1].dataSpacing *= 4;
    EXPECT_THAT(readSketch(sketch).notes, ElementsAre(HasSubstr("several spacings")));
}

TEST(SorReader, TellsOfASpacingInAnotherUnitThanTheRange)
{
    SorSketch sketch = SorSketch::plain();
    const double span =
        sketch.fxd.pulses[0].dataSpacing * 1e-4 * static_cast<double>(sketch.samples.size());
    const auto notesFor = [&](double factor) {
        sketch.fxd.acquisitionRange = static_cast<std::uint32_t>(span * factor);
        return readSketch(sketch).notes;
    };
    EXPECT_THAT(notesFor(1.01), IsEmpty());
    EXPECT_THAT(notesFor(0.5), IsEmpty());
    EXPECT_THAT(notesFor(0.1), ElementsAre(HasSubstr("1e1 times what the range allows")));
    EXPECT_THAT(notesFor(0.001), ElementsAre(HasSubstr("1e3 times what the range allows")));
    EXPECT_THAT(notesFor(10.0), IsEmpty()); // samples may have been cut off
}

/// Of two counts the one that the block has room for, and the larger one where it has for both.
TEST(SorReader, TakesTheSamplesThatFitWhereTheSectionCountsOtherwise)
{
    const auto samplesOf = [](unsigned total, unsigned count) {
        auto blocks = SorSketch::plain().blocks();
        blocks[4].body =
            ByteSketch().u32(total).u16(1).u32(count).u16(1000).u16(7).u16(8).u16(9).u16(10).done;
        const auto file = readBytes(SorSketch::assemble(2, blocks));
        EXPECT_TRUE(file.ok());
        EXPECT_THAT(file->notes,
                    testing::Contains(HasSubstr("counted as " + std::to_string(total) + " and as "
                                                + std::to_string(count))));
        return file->data.samples;
    };
    EXPECT_EQ(samplesOf(3, 2), otdr::RawSamples({7, 8, 9}));
    EXPECT_EQ(samplesOf(2, 4), otdr::RawSamples({7, 8, 9, 10}));
    EXPECT_EQ(samplesOf(4, 5), otdr::RawSamples({7, 8, 9, 10}));
    EXPECT_EQ(samplesOf(9, 3), otdr::RawSamples({7, 8, 9}));
    EXPECT_EQ(samplesOf(9, 5), otdr::RawSamples({7, 8, 9, 10}));
}

/// The finest of the scales on which all samples have room: 90 % of a trace are not rounded to the
/// steps of its beginning.
TEST(SorReader, JoinsSectionsOnTheFinestScaleThatHoldsThem)
{
    auto blocks = SorSketch::plain().blocks();
    ByteSketch body;
    body.u32(4).u16(2);
    body.u32(2).u16(10'000).u16(100).u16(6'553);
    body.u32(2).u16(1000).u16(1234).u16(60'001);
    blocks[4].body = body.done;
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->data.scaleFactor, 1000);
    EXPECT_EQ(file->data.samples, otdr::RawSamples({1000, 65'530, 1234, 60'001}));
}

TEST(SorReader, JoinsSectionsOnACoarserScaleWhereTheyNeedIt)
{
    auto blocks = SorSketch::plain().blocks();
    ByteSketch body;
    body.u32(6).u16(2);
    body.u32(3).u16(1000).u16(100).u16(200).u16(300);
    body.u32(3).u16(1500).u16(100).u16(3).u16(60'000);
    blocks[4].body = body.done;
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->data.scaleFactor, 1500);
    EXPECT_EQ(file->data.samples, otdr::RawSamples({67, 133, 200, 100, 3, 60'000}));
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("2 sections")));
}

TEST(SorReader, ASectionWithoutAScaleTakesThatOfTheFirst)
{
    auto blocks = SorSketch::plain().blocks();
    ByteSketch body;
    body.u32(2).u16(2);
    body.u32(1).u16(1500).u16(100);
    body.u32(1).u16(0).u16(200);
    blocks[4].body = body.done;
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->data.samples, otdr::RawSamples({100, 200}));
}

TEST(SorReader, ReadsLandmarks)
{
    auto blocks = SorSketch::plain().blocks();
    ByteSketch body;
    body.u16(1)
        .u16(1)
        .text("SP")
        .u32(-20)
        .u16(2)
        .u32(100)
        .u32(-200)
        .u16(150)
        .u32(3)
        .u32(4)
        .text("mt")
        .u16(92);
    body.string("manhole 4");
    blocks.push_back({"LnkParams", body.done});
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    ASSERT_EQ(file->landmarks.size(), 1U);
    EXPECT_EQ(file->landmarks[0].position, -20);
    EXPECT_EQ(file->landmarks[0].latitude, -200);
    EXPECT_EQ(file->landmarks[0].comment, "manhole 4");
}

TEST(SorReader, ShowsTheLandmarksBeforeOneThatIsCutShort)
{
    const Bytes fields = ByteSketch().u16(1).text("SP").u32(7).bytes(Bytes(24)).done;
    const Bytes whole = ByteSketch().bytes(fields).string("a pole").done;
    auto blocks = SorSketch::plain().blocks();
    blocks.push_back({"LnkParams", ByteSketch().u16(2).bytes(whole).bytes(fields).done});
    blocks.back().body.resize(blocks.back().body.size() - 6);
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    ASSERT_EQ(file->landmarks.size(), 1U);
    EXPECT_EQ(file->landmarks[0].comment, "a pole");
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("LnkParams")));
}

TEST(SorReader, ShowsNoLandmarksThatCannotFit)
{
    auto blocks = SorSketch::plain().blocks();
    blocks.push_back({"LnkParams", ByteSketch().u16(65'535).u32(0).done});
    const auto file = readBytes(SorSketch::assemble(2, blocks));
    ASSERT_TRUE(file.ok());
    EXPECT_THAT(file->landmarks, IsEmpty());
    EXPECT_THAT(file->notes, ElementsAre(HasSubstr("landmarks")));
}

TEST(SorReader, RefusesWhatIsNoTrace)
{
    EXPECT_EQ(codeOf(readSor(nullptr)), ErrorCode::CannotRead);
    EXPECT_EQ(codeOf(readBytes({})), ErrorCode::NotATrace);
    EXPECT_EQ(codeOf(readBytes(Bytes(11))), ErrorCode::NotATrace);
    EXPECT_EQ(codeOf(readBytes(Bytes(100'000))), ErrorCode::NotATrace);
    EXPECT_EQ(codeOf(readBytes(ByteSketch().text("distance_m,level_db\n0.0,45.5\n").done)),
              ErrorCode::NotATrace);
    EXPECT_EQ(codeOf(readBytes(ByteSketch().text("WFPK").bytes(Bytes(400)).done)),
              ErrorCode::NotATrace);
}

TEST(SorReader, RefusesMoreThan64MiB)
{
    Bytes bytes = SorSketch::plain().build();
    bytes.resize(otdr::kLargestSorFile);
    EXPECT_TRUE(readBytes(bytes).ok());
    bytes.push_back(std::byte {0});
    EXPECT_EQ(codeOf(readBytes(std::move(bytes))), ErrorCode::TooLarge);
}

TEST(SorReader, RefusesATraceWithoutSamples)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"DataPts"};
    const auto without = readSor(sketch.share());
    EXPECT_EQ(codeOf(without), ErrorCode::Damaged);
    EXPECT_THAT(without.error().message, HasSubstr("no trace"));
    for (const unsigned count : {0U, 1U}) { // whether it counts itself or not
        Bytes map = SorSketch::assemble(2, {});
        map[10] = static_cast<std::byte>(count);
        const auto mapAlone = readBytes(map);
        EXPECT_EQ(codeOf(mapAlone), ErrorCode::Damaged) << count;
        EXPECT_THAT(mapAlone.error().message, HasSubstr("no trace")) << count;
    }
    sketch = SorSketch::plain();
    sketch.samples.clear();
    EXPECT_EQ(codeOf(readSor(sketch.share())), ErrorCode::Damaged);
}

} // namespace
