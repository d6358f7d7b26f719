// One test for each kind of instrument whose files deviate, with the deviation built in.
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/sorwriter.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace {

namespace sor = otdr::sor;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::ChecksumRecipe;
using testing_support::fibreSamples;
using testing_support::keyEvent;
using testing_support::SorSketch;

sor::File readUnchanged(const SorSketch& sketch)
{
    auto file = otdr::readSor(sketch.share());
    EXPECT_TRUE(file.ok()) << (file.ok() ? "" : file.error().message);
    if (file.ok() && sketch.version == 2) {
        EXPECT_EQ(*otdr::encodeSor(*file), *file->bytes);
    }
    return file.ok() ? *file : sor::File {};
}

/// The sample of an event on the axis of its file.
double sampleOf(const sor::File& file, const sor::KeyEvent& event)
{
    const sor::Axis axis = sor::axisOf(file);
    return (event.position * 0.2 - axis.firstSample_ns) / axis.sampleInterval_ns;
}

TEST(SorVendor, ExfoWritesSecondsLaunchFibresAndAPrivateChecksum)
{
    SorSketch sketch = SorSketch::plain();
    sketch.sup = {"Customer Ltd ", " ", " ", "FTBx-730C-SM1-EA", "1629870", " ", " "};
    sketch.fxd.averagingTime = 30;
    sketch.fxd.actualWavelength = 15'564;
    sketch.fxd.reflectanceThreshold = 65'535;
    sketch.fxd.acquisitionRangeDistance = 51'000 * 125;
    sketch.fxd.acquisitionRange = 195'000; // shorter than the samples
    sketch.gen.userOffset = 50'000;
    sketch.samples = fibreSamples(4000, {985, 1000, 3000}, 10, 3000, 63'999);
    sketch.keyEvents.events = {
        keyEvent(1, -750, "1F9999", -432, -49'916), keyEvent(2, 0, "1F9999", -52, -59'348),
        keyEvent(3, 100'000, "2E9999", 0, -15'718), keyEvent(4, 120'000, "1F9999", 0, -50'000)};
    sketch.makers = {{"ExfoAdditionalInfo", Bytes(30), true, 201},
                     {"ExfoNewProprietaryBlock 01", Bytes(300), true, 210}};
    sketch.checksum = ChecksumRecipe::Private;
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(file.checksum, sor::Checksum::Unknown);
    EXPECT_EQ(sor::checksumVerdict(file), std::nullopt);
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 30.0);
    EXPECT_DOUBLE_EQ(sor::actualWavelength_nm(file), 1556.4);
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 10.0); // from the spacing, not from the range
    EXPECT_EQ(sor::eventKinds(file), "rser"); // more records behind the end
    EXPECT_TRUE(sor::isSaturated(file.keyEvents->events[2]));
    EXPECT_NEAR(sor::position_m(file, file.keyEvents->events[0]), -15.3, 0.1);
    EXPECT_DOUBLE_EQ(sampleOf(file, file.keyEvents->events[1]), 1000.0);
    EXPECT_DOUBLE_EQ(sampleOf(file, file.keyEvents->events[0]), 985.0);
    EXPECT_EQ(sor::fibreEnd_m(file), sor::position_m(file, file.keyEvents->events[2]));
    EXPECT_THAT(file.notes, IsEmpty());
}

TEST(SorVendor, ExfoMarksAFibreLongerThanTheRange)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events = {keyEvent(1, 0, "1F9999"), keyEvent(2, 199'000, "1O9999")};
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(sor::eventKinds(file), "se");
    EXPECT_TRUE(std::isnan(sor::fibreEnd_m(file)));
}

TEST(SorVendor, ExfoSoftwareKeepsTheOffsetsOfANoyesFileWhoseHeadItCutOff)
{
    // Port at 43 samples, user's zero 493 behind it; the first 43 are gone, the tail is padded.
    SorSketch sketch = SorSketch::plain();
    sketch.sup.supplier = "Noyes";
    sketch.gen.userOffset = 24'640;
    sketch.fxd.acquisitionOffset = -2139;
    sketch.fxd.frontPanelOffset = 2150;
    sketch.fxd.pulses[0].width_ns = 30; // 150 counts, 3 samples
    sketch.fxd.averagingTime = 3000;
    sketch.samples = fibreSamples(5000, {493, 4149}, 4, 4149);
    sketch.keyEvents.events = {
        keyEvent(1, 2150, "1F9999", 0, -46'671), keyEvent(2, 2680, "0F9999", 374),
        keyEvent(3, 184'950, "1F9999", 1238), keyEvent(4, 187'100, "1E9999", 0, -76'053)};
    sketch.makers = {{"ExfoNewProprietaryBlock 01", Bytes(30)}};
    sketch.checksum = ChecksumRecipe::Private;
    const sor::File file = readUnchanged(sketch);
    const sor::Axis axis = sor::axisOf(file);
    EXPECT_EQ(axis.port, -2150);
    EXPECT_THAT(axis.note, HasSubstr("with 0 m at sample 450,"));
    EXPECT_NEAR(sampleOf(file, file.keyEvents->events[0]), 493, 1);
    EXPECT_NEAR(sampleOf(file, file.keyEvents->events[2]), 4149, 1);
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 300.0);
}

TEST(SorVendor, NoyesOfl280WritesWholeNanometresAndNoMarkers)
{
    SorSketch sketch = SorSketch::plain();
    sketch.sup = {"Noyes", "OFL280C-100", "2G14PT7552     ", "0.0.43 ",
                  " ",     "1.2",         "Calibrated 2019 "};
    sketch.fxd.actualWavelength = 1550;
    sketch.fxd.averagingTime = 3000;
    sketch.fxd.acquisitionOffset = -2150;
    sketch.fxd.frontPanelOffset = 2150;
    sketch.gen.userOffset = 24'650;
    sketch.gen.userOffsetDistance = 503; // whole metres
    sketch.samples = fibreSamples(5000, {536, 3536}, 10, 3536);
    sketch.keyEvents.events[1].markers = {};
    sketch.keyEvents.events[2].code = {'2', 'E', '9', '9', '9', '9'};
    sketch.makers = {{"FodParams", Bytes(3)}, {"Fod02Params", Bytes(4)}};
    const sor::File file = readUnchanged(sketch);
    EXPECT_DOUBLE_EQ(sor::actualWavelength_nm(file), 1550.0);
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 300.0);
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
    EXPECT_DOUBLE_EQ(sampleOf(file, file.keyEvents->events[0]), 536.0);
    EXPECT_EQ(sor::axisOf(file).note, "");
}

TEST(SorVendor, NoyesM200RepeatsNamesInVersion1)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    sketch.gen.wavelength_nm = 1310;
    sketch.fxd.actualWavelength = 1310;
    sketch.fxd.noiseFloor = 65'535;
    sketch.makers = {{"Noyes2", ByteSketch().text("own").done, true, 202},
                     {"Noyes3", Bytes(5), true, 222}};
    const sor::File file = readUnchanged(sketch);
    EXPECT_DOUBLE_EQ(sor::actualWavelength_nm(file), 1310.0);
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
    const sor::File again = *otdr::readSor(std::make_shared<const Bytes>(*otdr::encodeSor(file)));
    EXPECT_EQ(again.blocks[5].name, "Noyes2");
    EXPECT_EQ(again.blocks[5].size, 7U + 3); // the name once, not twice
}

TEST(SorVendor, NoyesOfl250StoresTenTimesTheSpacing)
{
    SorSketch sketch = SorSketch::plain();
    sketch.sup.mainframeId = "OFL250 ";
    sketch.fxd.pulses[0].dataSpacing = 5'000'000;
    const sor::File file = readUnchanged(sketch);
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 10.0);
    EXPECT_THAT(file.notes, ElementsAre(HasSubstr("a tenth of it is taken")));
    // Neither another model nor a spacing that fits the range is corrected.
    sketch.sup.mainframeId = "Other";
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(readUnchanged(sketch)), 100.0);
    sketch.sup.mainframeId = "OFL250 ";
    sketch.fxd.pulses[0].dataSpacing = 500'000;
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(readUnchanged(sketch)), 10.0);
}

TEST(SorVendor, HewlettPackardLeavesThresholdsAndTotalLossAtZero)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    sketch.sup = {"Hewlett Packard", "E6000A ", "3617G00108 ",     "E6008A ",
                  "DE37300051 ",     "3.0",     "A3717\n28.01.98 "};
    sketch.fxd.pulses[0].dataSpacing = 499'999; // rounding
    sketch.keyEvents.events[0].reflectance = -50'000;
    sketch.keyEvents.summary.totalLoss = 0;
    sketch.makers = {{"HPEvent", Bytes(9), false, 100}, {"Threshold", Bytes(2), false, 100}};
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(file.version, 1);
    EXPECT_EQ(file.sup.other, "A3717\n28.01.98 ");
    EXPECT_TRUE(std::isnan(sor::totalLoss_dB(file)));
    EXPECT_DOUBLE_EQ(sor::reflectance_dB(file.keyEvents->events[0]), -50.0);
    EXPECT_NEAR(sor::sampleInterval_ns(file), 10.0, 1e-4);
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
}

TEST(SorVendor, AnritsuMt1000aOmitsTheLaunchAndStartsAtTwo)
{
    SorSketch sketch = SorSketch::plain();
    sketch.sup.supplier = "Anritsu";
    sketch.sup.mainframeId = "MT1000A";
    sketch.fxd.averagingTime = 15;
    sketch.fxd.pulses[0].dataSpacing = 500'346;
    sketch.fxd.frontPanelOffset = 1000;
    sketch.samples = fibreSamples(4001, {3018}, 10, 3018);
    sketch.keyEvents.events = {keyEvent(2, 9557, "0F9999", 127, -2'147'483'647),
                               keyEvent(3, 42'229, "0F9999", -209, -2'147'483'647),
                               keyEvent(7, 150'000, "1E9999", 14'745, -16'935)};
    sketch.keyEvents.summary.returnLoss = 0;
    sketch.makers = {{"NetTestTSI ", Bytes(40)}, {"ARSpecial", Bytes(4)}};
    sketch.checksum = ChecksumRecipe::FromZero;
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(file.checksum, sor::Checksum::Matches);
    EXPECT_EQ(file.keyEvents->events[0].number, 2);
    EXPECT_TRUE(std::isnan(sor::reflectance_dB(file.keyEvents->events[0])));
    EXPECT_EQ(sor::eventKinds(file), "npe");
    EXPECT_TRUE(std::isnan(sor::returnLoss_dB(file)));
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 15.0);
    EXPECT_NEAR(sampleOf(file, file.keyEvents->events[2]), 3017.9, 0.1);
    EXPECT_EQ(file.blocks[5].name, "NetTestTSI ");
}

TEST(SorVendor, AnritsuMt9090aStoresAPositiveReflectanceForASaturatedEnd)
{
    SorSketch sketch = SorSketch::plain();
    sketch.sup.supplier = "ANRITSU";
    sketch.fxd.backscatter = 600;
    sketch.fxd.frontPanelOffset = 500;
    sketch.keyEvents.events = {keyEvent(2, 49'459, "1F9999", 434, -34'156),
                               keyEvent(4, 150'000, "1E9999", 13'684, 4014)};
    sketch.keyEvents.events[0].technique = {'2', 'P'};
    sketch.keyEvents.events[0].markers = {49'459, 49'459, 51'811, 51'961, 49'459};
    sketch.checksum = ChecksumRecipe::FromZero;
    const sor::File file = readUnchanged(sketch);
    EXPECT_TRUE(std::isnan(sor::reflectance_dB(file.keyEvents->events[1])));
    EXPECT_EQ(file.keyEvents->events[0].technique[0], '2');
    EXPECT_DOUBLE_EQ(sor::backscatter_dB(file), -60.0);
    EXPECT_EQ(sor::axisOf(file).port, 500);
}

TEST(SorVendor, Cma4500LeavesItsLanguageToChanceAndHasDarkSamplesFirst)
{
    SorSketch sketch = SorSketch::plain();
    sketch.gen.language = {'\0', '\x6B'};
    sketch.gen.buildCondition = {' ', ' '};
    sketch.fxd.averagingTime = 0;
    sketch.fxd.frontPanelOffset = 26'250;
    sketch.fxd.pulses[0].samples = 3500; // and 4000 are stored
    sketch.samples = fibreSamples(4000, {525, 3525}, 10, 3525, 48'000);
    std::fill_n(sketch.samples.begin(), 525, std::uint16_t {48'000});
    sketch.keyEvents.events = {keyEvent(1, 0, "1F9999"), keyEvent(2, 150'000, "0O9999", 3000)};
    sketch.checksum = ChecksumRecipe::FromZero;
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(file.gen.language[1], '\x6B');
    EXPECT_EQ(file.gen.cableId, "Cable 7 "); // nothing derailed
    EXPECT_EQ(file.gen.wavelength_nm, 1550);
    EXPECT_EQ(file.data.samples.size(), 4000U);
    EXPECT_TRUE(std::isnan(sor::averagingTime_s(file)));
    EXPECT_EQ(sor::eventKinds(file), "se");
    EXPECT_TRUE(std::isnan(sor::fibreEnd_m(file)));
    EXPECT_DOUBLE_EQ(sampleOf(file, file.keyEvents->events[0]), 525.0);
}

TEST(SorVendor, Fc3200PadsItsBlocksAndStoresReflectancePositive)
{
    SorSketch sketch = SorSketch::plain();
    sketch.sup = {"FIBERCLOUD", "FC3200", "0901001", "3537", "0901001", "V1.01", "0"};
    sketch.gen.comment = "0";
    sketch.fxd.distanceUnit = {'k', 'm'};
    sketch.fxd.averages = 15; // seconds
    sketch.fxd.averagingTime = 150;
    sketch.fxdPadding = Bytes(48, std::byte {0x55});
    sketch.keyEventsPadding = Bytes(168, std::byte {0xAA});
    sketch.tail = ByteSketch().bytes(Bytes(95)).string("Cksum").u16(0).done;
    sketch.samples = fibreSamples(4000, {0, 3000}, 10, 3000, 64'030);
    sketch.keyEvents.events = {keyEvent(1, 0, "0M9999"), keyEvent(2, 150'000, "1E9999", 0, 47'285)};
    sketch.checksum = ChecksumRecipe::Zero;
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(file.checksum, sor::Checksum::NotComputed);
    EXPECT_DOUBLE_EQ(sor::reflectance_dB(file.keyEvents->events[1]), -47.285);
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 15.0);
    EXPECT_EQ(sor::eventKinds(file), "se");
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 10.0); // kilometres scale nothing
    EXPECT_THAT(file.notes, ElementsAre(HasSubstr("103 bytes follow the last block")));
}

TEST(SorVendor, Fc3200MayHaveNoEventBlock)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    sketch.checksum = ChecksumRecipe::Zero;
    const sor::File file = readUnchanged(sketch);
    EXPECT_FALSE(file.keyEvents);
    EXPECT_TRUE(std::isnan(sor::totalLoss_dB(file)));
    EXPECT_EQ(sor::eventKinds(file), "");
}

TEST(SorVendor, OneMakerCodesReflectionsAsNonReflective)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.acquisitionOffset = -75; // one and a half samples before the port
    sketch.fxd.noiseFloor = 2340;
    sketch.fxd.noiseFloorScale = 100;
    sketch.samples = fibreSamples(4000, {1002, 3002}, 10, 3002);
    sketch.samples[0] = 3; // junk before the launch
    sketch.keyEvents.events = {keyEvent(1, 50'000, "0F9999", 300, -48'000),
                               keyEvent(2, 100'000, "0F9999", 50),
                               keyEvent(3, 150'000, "0E9999", 0, -14'500)};
    sketch.checksum = ChecksumRecipe::Private;
    const sor::File file = readUnchanged(sketch);
    EXPECT_EQ(sor::eventKinds(file), "rne");
    EXPECT_DOUBLE_EQ(sor::axisOf(file).firstSample_ns, -15.0);
    EXPECT_DOUBLE_EQ(sampleOf(file, file.keyEvents->events[0]), 1001.5);
    EXPECT_EQ(file.checksum, sor::Checksum::Unknown);
    EXPECT_EQ(file.fxd.noiseFloorScale, 100);
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 30.0);
}

} // namespace
