#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/report.h"
#include "tests/support/tracefiles.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace {

using otdrreport::Report;
using testing_support::keyEvent;
using testing_support::SorSketch;
using testing_support::TraceFiles;

Report report(const SorSketch& sketch, const QString& name = "plain.sor")
{
    const TraceFiles files;
    const Reflectogram refl(files.write(name, sketch));
    EXPECT_TRUE(refl.isValid()) << qPrintable(refl.error());
    return otdrreport::reportOf(*refl.state());
}

TEST(Report, SaysWhatTheFileSays)
{
    const Report said = report(SorSketch::plain(), "north.sor");
    EXPECT_EQ(said.fileName, "north.sor");
    EXPECT_EQ(said.date_s, 1'700'000'000);
    EXPECT_EQ(said.cable, "Cable 7");
    EXPECT_EQ(said.fibre, "12");
    EXPECT_EQ(said.from, "North");
    EXPECT_EQ(said.to, "South");
    EXPECT_EQ(said.comment, "first light");
    EXPECT_EQ(said.supplier, "Sketch");
    EXPECT_EQ(said.mainframe, "Main 1");
    EXPECT_EQ(said.moduleSerial, "0002");
    EXPECT_EQ(said.software, "1.0");
    EXPECT_EQ(said.wavelength_nm, 1550);
    EXPECT_EQ(said.pulse_ns, 100.0);
    EXPECT_DOUBLE_EQ(said.ior, 1.468);
    EXPECT_DOUBLE_EQ(said.backscatter_dB, -81.5);
    EXPECT_EQ(said.samples, 4000U);
    EXPECT_EQ(said.averages, 4096.0);
    EXPECT_DOUBLE_EQ(said.averagingTime_s, 30.0);
}

TEST(Report, SummaryIsThatOfTheFile)
{
    const Report said = report(SorSketch::plain());
    EXPECT_NEAR(said.spanLength_m, 3063.27, 0.01);
    EXPECT_DOUBLE_EQ(said.spanLoss_dB, 3.12);
    EXPECT_DOUBLE_EQ(said.spanReturnLoss_dB, 32.5);
    EXPECT_NEAR(said.spanAttenuation_dBPerKm, 3.12 / 3.06327, 1e-5);
}

TEST(Report, WhatTheFileDoesNotGiveIsUnknown)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.summary = {};
    sketch.fxd.averagingTime = 0;
    sketch.fxd.dateTime_s = 0;
    sketch.fxd.averages = 0;
    sketch.fxd.backscatter = 0;
    const Report said = report(sketch);
    EXPECT_TRUE(std::isnan(said.spanLoss_dB));
    EXPECT_TRUE(std::isnan(said.spanReturnLoss_dB));
    EXPECT_TRUE(std::isnan(said.spanAttenuation_dBPerKm));
    EXPECT_TRUE(std::isnan(said.averagingTime_s));
    EXPECT_TRUE(std::isnan(said.backscatter_dB));
    EXPECT_EQ(said.date_s, 0);
    EXPECT_EQ(said.averages, 0.0);
}

TEST(Report, WithoutHowItWasMeasuredNoDistanceIsKnown)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"FxdParams"};
    const Report said = report(sketch);
    EXPECT_TRUE(std::isnan(said.spanLength_m));
    EXPECT_TRUE(std::isnan(said.spanAttenuation_dBPerKm));
    EXPECT_DOUBLE_EQ(said.spanLoss_dB, 3.12) << "which needs no distance";
    EXPECT_TRUE(std::isnan(said.events.at(1).distance_m));
    EXPECT_FALSE(said.chart.hasDistances);
    EXPECT_TRUE(report(SorSketch::plain()).chart.hasDistances);
}

TEST(Report, WithoutASpacingTheWindowIsThatOfTheSamples)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.pulses[0].dataSpacing = 0;
    sketch.fxd.acquisitionRange = 0;
    const Report said = report(sketch);
    EXPECT_FALSE(said.chart.hasDistances);
    EXPECT_NEAR(said.spanLength_m, 3063.27, 0.01) << "the events tell their own distances";
    sketch.keyEvents.events.clear();
    EXPECT_EQ(said.chart.window.end_m, report(sketch).chart.window.end_m);
}

TEST(Report, SectionsLieBetweenTheEvents)
{
    const Report said = report(SorSketch::plain());
    ASSERT_EQ(said.events.size(), 3);
    EXPECT_FALSE(said.events[0].before.exists()) << "nothing lies before 0 m";
    const auto& section = said.events[1].before;
    EXPECT_NEAR(section.length_m, 1021.09, 0.01);
    EXPECT_DOUBLE_EQ(section.attenuation_dBPerKm, 0.19);
    EXPECT_NEAR(section.loss_dB, 0.19 * 1.02109, 1e-5);
    EXPECT_NEAR(said.events[2].before.start_m, 1021.09, 0.01);
    EXPECT_TRUE(std::isnan(said.events[2].before.loss_dB)) << "its attenuation was not measured";
}

TEST(Report, FirstSectionBeginsAtZeroUnlessTheFirstEventLiesBeforeIt)
{
    SorSketch late = SorSketch::plain();
    late.keyEvents.events.erase(late.keyEvents.events.begin());
    EXPECT_NEAR(report(late).events.first().before.length_m, 1021.09, 0.01);

    SorSketch early = SorSketch::plain();
    early.keyEvents.events[0].position = -1000;
    const Report said = report(early);
    EXPECT_FALSE(said.events.first().before.exists());
    EXPECT_NEAR(said.events[1].before.length_m, 51'000 * 0.0204218, 0.01);
}

TEST(Report, LossOfZeroWasNotMeasured)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events[1].loss = 0;
    const Report said = report(sketch);
    EXPECT_TRUE(std::isnan(said.events[0].loss_dB));
    EXPECT_TRUE(std::isnan(said.events[1].loss_dB)) << "the screen shows a dash, too";
    EXPECT_TRUE(std::isnan(said.events[2].loss_dB));
    EXPECT_TRUE(std::isnan(said.events[1].reflectance_dB));
    EXPECT_DOUBLE_EQ(said.events[2].reflectance_dB, -14.7);
}

TEST(Report, BoundIsThatOfAReflectanceThatIsTold)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events[1] = keyEvent(2, 50'000, "2F9999", 210, -40'000);
    EXPECT_TRUE(report(sketch).events[1].saturated);
    sketch.keyEvents.events[1].reflectance = 0;
    EXPECT_FALSE(report(sketch).events[1].saturated) << "a dash is no bound";
}

TEST(Report, EndOfTheTraceIsNotTheEndOfTheFibre)
{
    EXPECT_TRUE(report(SorSketch::plain()).events.last().endsFibre);
    SorSketch cut = SorSketch::plain();
    cut.keyEvents.events[2] = keyEvent(3, 150'000, "1O9999", 0, -14'700);
    const Report said = report(cut);
    EXPECT_EQ(said.events.last().kind, 'e');
    EXPECT_FALSE(said.events.last().endsFibre);
    EXPECT_TRUE(std::isnan(said.spanLength_m));
}

TEST(Report, EventsStandInOrderAlongTheFibreWithNumbersThatRise)
{
    SorSketch kept = SorSketch::plain();
    kept.keyEvents.events[0].number = 4;
    kept.keyEvents.events[1].number = 5;
    kept.keyEvents.events[2].number = 9;
    EXPECT_EQ(report(kept).events.last().number, 9) << "the file's own numbers";

    SorSketch mixed = SorSketch::plain();
    std::swap(mixed.keyEvents.events[0], mixed.keyEvents.events[1]);
    const Report said = report(mixed);
    EXPECT_LT(said.events[0].distance_m, said.events[1].distance_m);
    EXPECT_EQ(said.events[0].number, 1);

    SorSketch zeros = SorSketch::plain();
    for (auto& event : zeros.keyEvents.events) {
        event.number = 0;
    }
    EXPECT_EQ(report(zeros).events.last().number, 3);
}

TEST(Report, FileWithoutEventsHasNone)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    const Report said = report(sketch);
    EXPECT_TRUE(said.events.isEmpty());
    EXPECT_TRUE(std::isnan(said.spanLength_m));
    EXPECT_FALSE(said.chart.path.isEmpty());
}

TEST(Report, TellsWhatWasOddAboutTheFile)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    const TraceFiles files;
    const Reflectogram refl(files.write("a.sor", sketch));
    EXPECT_EQ(otdrreport::reportOf(*refl.state()).notes, refl.notes());
}

TEST(Report, EveryRealTraceHasOne)
{
    for (const QString& path : testing_support::realTraces()) {
        const Reflectogram refl(path);
        const Report said = otdrreport::reportOf(*refl.state());
        const EventList events = refl.getEventList();
        const auto fibres = std::count_if(events.begin(), events.end(), [](const Event& event) {
            return event.type == Event::Fiber;
        });
        EXPECT_EQ(said.events.size(), events.size() - fibres) << qPrintable(path);
        EXPECT_FALSE(said.chart.path.isEmpty()) << qPrintable(path);
    }
}

} // namespace
