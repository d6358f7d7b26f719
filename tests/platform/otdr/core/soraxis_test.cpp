#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "tests/support/sorsketch.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

namespace sor = otdr::sor;
using testing_support::fibreSamples;
using testing_support::keyEvent;
using testing_support::SorSketch;

/// Events at 0, 1000, 2000 and 3000 samples of 50 counts from the user's zero, which is the given
/// sample.
SorSketch sketchWithZeroAt(std::size_t zero)
{
    SorSketch sketch = SorSketch::plain();
    sketch.samples =
        fibreSamples(8000, {zero, zero + 1000, zero + 2000, zero + 3000}, 10, zero + 3000);
    sketch.keyEvents.events = {keyEvent(1, 0, "1F9999"), keyEvent(2, 50'000, "1F9999"),
                               keyEvent(3, 100'000, "1F9999"), keyEvent(4, 150'000, "1E9999")};
    return sketch;
}

sor::Axis axisOf(const SorSketch& sketch)
{
    return sor::axisOf(*otdr::readSor(sketch.share()));
}

TEST(SorAxis, BeginsAtThePortWhereTheFileNamesNoOffset)
{
    const sor::Axis axis = axisOf(SorSketch::plain());
    EXPECT_DOUBLE_EQ(axis.sampleInterval_ns, 10.0);
    EXPECT_DOUBLE_EQ(axis.firstSample_ns, 0.0);
    EXPECT_EQ(axis.note, "");
}

TEST(SorAxis, PutsThePortAtTheFrontPanelOffset)
{
    SorSketch sketch = sketchWithZeroAt(500);
    sketch.fxd.frontPanelOffset = 25'000;
    const sor::Axis axis = axisOf(sketch);
    EXPECT_EQ(axis.port, 25'000);
    EXPECT_DOUBLE_EQ(axis.firstSample_ns, -5000.0); // 500 samples of 10 ns
    EXPECT_EQ(axis.note, "");
}

TEST(SorAxis, PutsThePortAtMinusTheAcquisitionOffset)
{
    SorSketch sketch = sketchWithZeroAt(500);
    sketch.fxd.acquisitionOffset = -25'000;
    sketch.fxd.frontPanelOffset = 100'000; // not used beside it
    EXPECT_EQ(axisOf(sketch).port, 25'000);
    EXPECT_EQ(axisOf(sketch).note, "");
}

TEST(SorAxis, PutsZeroTheUserOffsetBehindThePort)
{
    SorSketch sketch = sketchWithZeroAt(700);
    sketch.fxd.frontPanelOffset = 25'000;
    sketch.gen.userOffset = 10'000;
    EXPECT_DOUBLE_EQ(axisOf(sketch).firstSample_ns, -7000.0);
}

TEST(SorAxis, CanBeginBehindThePort)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.acquisitionOffset = 5000;
    sketch.samples = fibreSamples(8000, {2900}, 10, 2900);
    const sor::Axis axis = axisOf(sketch);
    EXPECT_EQ(axis.port, -5000);
    EXPECT_DOUBLE_EQ(axis.firstSample_ns, 1000.0);
}

TEST(SorAxis, FollowsTheSamplesWhereTheyContradictTheOffsets)
{
    struct Case
    {
        std::int32_t panelOffset;
        std::size_t zero; // where the samples have it
        std::int32_t userOffset;
        std::int64_t port;
    };

    for (const Case& c : {Case {25'000, 0, 0, 0}, Case {10'000, 300, 25'000, -10'000}}) {
        SorSketch sketch = sketchWithZeroAt(c.zero);
        sketch.fxd.frontPanelOffset = c.panelOffset;
        sketch.gen.userOffset = c.userOffset;
        const sor::Axis axis = axisOf(sketch);
        EXPECT_EQ(axis.port, c.port);
        EXPECT_DOUBLE_EQ(axis.firstSample_ns, -10.0 * static_cast<double>(c.zero));
        EXPECT_NE(axis.note.find("the events fit the samples with 0 m at sample"),
                  std::string::npos);
    }
}

TEST(SorAxis, JudgesTheSamplesByTheirLevelsWhateverTheirScale)
{
    for (const int coarser : {1, 2, 10}) {
        SorSketch sketch = sketchWithZeroAt(0);
        sketch.fxd.frontPanelOffset = 25'000;
        sketch.scaleFactor = static_cast<std::uint16_t>(1000 * coarser);
        for (std::uint16_t& sample : sketch.samples) {
            sample = static_cast<std::uint16_t>(sample / coarser);
        }
        EXPECT_EQ(axisOf(sketch).port, 0) << coarser;
    }
}

TEST(SorAxis, FollowsThePanelOffsetWhereTheAcquisitionOffsetIsContradicted)
{
    SorSketch sketch = sketchWithZeroAt(400);
    sketch.fxd.frontPanelOffset = 20'000;
    sketch.fxd.acquisitionOffset = 20'000; // of the wrong sign
    EXPECT_EQ(axisOf(sketch).port, 20'000);
    EXPECT_NE(axisOf(sketch).note, "");
}

TEST(SorAxis, FollowsAnAcquisitionOffsetOfTheWrongSign)
{
    SorSketch sketch = sketchWithZeroAt(400);
    sketch.fxd.acquisitionOffset = 20'000;
    EXPECT_EQ(axisOf(sketch).port, 20'000);
    EXPECT_NE(axisOf(sketch).note, "");
}

/// Their zero is the port then, and 0 m is there.
TEST(SorAxis, FollowsEventsThatDoNotCountFromTheUsersZero)
{
    SorSketch sketch = sketchWithZeroAt(300);
    sketch.fxd.frontPanelOffset = 15'000;
    sketch.gen.userOffset = 10'000;
    const sor::Axis axis = axisOf(sketch);
    EXPECT_DOUBLE_EQ(axis.firstSample_ns, -3000.0);
    EXPECT_NE(axis.note, "");
}

TEST(SorAxis, KeepsTheRuleForAShiftWithinThreePulseWidths)
{
    // 100 ns are 500 counts: 1500 counts are three pulse widths, 30 samples.
    SorSketch sketch = sketchWithZeroAt(0);
    sketch.fxd.frontPanelOffset = 1500;
    EXPECT_EQ(axisOf(sketch).port, 1500);
    sketch.fxd.frontPanelOffset = 1600;
    EXPECT_EQ(axisOf(sketch).port, 0);
}

/// A peak may stand a pulse of ten samples and five more behind its event.
TEST(SorAxis, APeakThatComesLaterBelongsToNoEvent)
{
    for (const std::size_t late : {0U, 15U, 16U}) {
        SorSketch sketch = sketchWithZeroAt(0);
        sketch.samples =
            fibreSamples(8000, {late, 1000 + late, 2000 + late, 3000 + late}, 10, 3000 + late);
        sketch.fxd.frontPanelOffset = 25'000;
        EXPECT_EQ(axisOf(sketch).port, late <= 15 ? 0 : 25'000) << late;
    }
}

/// A decibel is clear, and two of them are wanted: the fall at the end is another.
TEST(SorAxis, KeepsTheRuleWherePeaksAreNotClear)
{
    for (const int rise : {900, 1100}) {
        SorSketch sketch = sketchWithZeroAt(0);
        for (std::size_t i = 0; i < 3010; ++i) {
            const bool isPeak = i % 1000 < 10;
            sketch.samples[i] = static_cast<std::uint16_t>(20'000 - (isPeak ? rise : 0));
        }
        sketch.fxd.frontPanelOffset = 25'000;
        EXPECT_EQ(axisOf(sketch).port, rise > 1000 ? 0 : 25'000) << rise;
    }
}

TEST(SorAxis, KeepsTheRuleOnASinglePieceOfEvidence)
{
    SorSketch sketch = sketchWithZeroAt(0);
    sketch.fxd.frontPanelOffset = 25'000;
    sketch.keyEvents.events = {keyEvent(1, 50'000, "1F9999")};
    EXPECT_EQ(axisOf(sketch).port, 25'000);
    EXPECT_EQ(axisOf(sketch).note, "");
}

TEST(SorAxis, CountsTheDropAtTheEndAsEvidence)
{
    SorSketch sketch = sketchWithZeroAt(0);
    sketch.samples = fibreSamples(8000, {1000}, 10, 3000); // no reflection at the end
    sketch.fxd.frontPanelOffset = 25'000;
    sketch.keyEvents.events = {keyEvent(1, 50'000, "1F9999"), keyEvent(2, 150'000, "0E9999")};
    EXPECT_EQ(axisOf(sketch).port, 0);
}

TEST(SorAxis, AnEndWhereTheFibreGoesOnIsNoEvidence)
{
    SorSketch sketch = sketchWithZeroAt(0);
    // Neither where the offset puts the end (sample 3500) nor without it (3000): one peak is too
    // little.
    sketch.samples = fibreSamples(8000, {1000}, 10, 3300);
    sketch.fxd.frontPanelOffset = 25'000;
    sketch.keyEvents.events = {keyEvent(1, 50'000, "1F9999"), keyEvent(2, 150'000, "0E9999")};
    EXPECT_EQ(axisOf(sketch).port, 25'000);
    EXPECT_EQ(axisOf(sketch).note, "");
}

TEST(SorAxis, KeepsTheRuleWhereOneEventFitsIt)
{
    SorSketch sketch = sketchWithZeroAt(0);
    sketch.samples = fibreSamples(8000, {1000, 2000, 2500}, 10, 6000);
    sketch.fxd.frontPanelOffset = 25'000;
    // One where the rule has it (1500 + 500 samples), two others where the offset does not count.
    sketch.keyEvents.events = {keyEvent(1, 75'000, "1F9999"), keyEvent(2, 50'000, "1F9999"),
                               keyEvent(3, 125'000, "1F9999")};
    EXPECT_EQ(axisOf(sketch).port, 25'000);
}

TEST(SorAxis, IsNotMovedByNoise)
{
    SorSketch sketch = SorSketch::plain();
    // Behind the end there is noise only; whatever stands out of it is no evidence.
    sketch.fxd.frontPanelOffset = -250'000;
    sketch.samples = fibreSamples(8000, {}, 10, 10);
    for (int i = 1; i < 12; ++i) {
        sketch.keyEvents.events.push_back(keyEvent(i, 12'350 * i, "1F9999"));
    }
    EXPECT_EQ(axisOf(sketch).port, -250'000);
}

TEST(SorAxis, KeepsTheRuleWithoutEvents)
{
    SorSketch sketch = sketchWithZeroAt(0);
    sketch.fxd.frontPanelOffset = 25'000;
    sketch.leftOut = {"KeyEvents"};
    EXPECT_EQ(axisOf(sketch).port, 25'000);
}

TEST(SorAxis, HasNoIntervalWhereTheFileTellsNone)
{
    SorSketch sketch = sketchWithZeroAt(0);
    sketch.leftOut = {"FxdParams"};
    const sor::Axis axis = axisOf(sketch);
    EXPECT_TRUE(std::isnan(axis.sampleInterval_ns));
    EXPECT_DOUBLE_EQ(axis.firstSample_ns, 0.0);
}

} // namespace
