#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/core/trace.h"
#include "platform/otdr/reflectogram.h"
#include "tests/support/tracefiles.h"

#include <QFile>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

namespace {

using testing_support::realTraces;
using testing_support::SorSketch;
using testing_support::TraceBuilder;
using testing_support::TraceFiles;
using namespace testing_support; // the units of the builder

// The plain trace: 50 counts of 100 ps a sample at a group index of 1.468.
const double kSpacing_m = 5e-9 * 299'792'458.0 / 1.468;

/// The events without the fibre between them.
EventList eventsProper(const Reflectogram& refl)
{
    EventList events = refl.getEventList();
    const auto isFibre = [](const Event& event) { return event.type == Event::Fiber; };
    events.erase(std::remove_if(events.begin(), events.end(), isFibre), events.end());
    return events;
}

TEST(Reflectogram, EmptyHandleHoldsNothingAndStandsEveryQuestion)
{
    const Reflectogram empty;
    EXPECT_FALSE(empty.isValid());
    EXPECT_EQ(empty.maxdist(), 0.0);
    EXPECT_EQ(empty.smpl2dist(1.0), 0.0);
    EXPECT_EQ(empty.powerAtDist(100.0), 0.0F);
    EXPECT_LT(empty.endOfFiber(), 0.0);
    EXPECT_TRUE(empty.fileName().isEmpty());
    EXPECT_TRUE(empty.getEventList().isEmpty());
    EXPECT_EQ(empty.sorData(), nullptr);
    EXPECT_FALSE(empty.isMeasured());
    EXPECT_EQ(empty.paramsToString(), QString());
    Reflectogram copy = empty;
    EXPECT_EQ(copy.save("/nowhere/at/all.sor"), -1);
    copy.setIOR(1.5);
    copy.setHelix(1.0);
    copy.fillOrl();
    EXPECT_EQ(copy, empty);
}

TEST(Reflectogram, TwoEmptyHandlesAreEqualAndTwoLoadsOfOneFileAreNot)
{
    const TraceFiles files;
    EXPECT_EQ(Reflectogram(), Reflectogram());
    const Reflectogram one = files.plain();
    const Reflectogram copy = one; // NOLINT(performance-unnecessary-copy-initialization): the test
    EXPECT_EQ(one, copy);
    EXPECT_NE(one, Reflectogram(one.fileName()));
    EXPECT_NE(one, Reflectogram());
}

TEST(Reflectogram, CountsSamplesAsMetresWhereDistancesAreNotKnown)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    EXPECT_TRUE(Reflectogram(files.write("known.sor", sketch)).hasDistances());
    sketch.leftOut = {"FxdParams"};
    const Reflectogram refl(files.write("unknown.sor", sketch));
    ASSERT_TRUE(refl.isValid()) << qPrintable(refl.error());
    EXPECT_FALSE(refl.hasDistances());
    EXPECT_NEAR(refl.smpl2dist(1.0), 1.0, 1e-12);
    EXPECT_NEAR(refl.maxdist(), 3999.0, 1e-9);
    EXPECT_LT(refl.endOfFiber(), 0.0) << "the time of its last event is no distance";
    EXPECT_TRUE(Reflectogram().hasDistances());
}

TEST(Reflectogram, TellsWhatTheFileSays)
{
    const TraceFiles files;
    const Reflectogram refl = files.plain();
    ASSERT_TRUE(refl.isValid()) << qPrintable(refl.error());
    EXPECT_EQ(refl.wavelength(), 1550);
    EXPECT_EQ(refl.pulseWidth(), 100.0);
    EXPECT_EQ(refl.parameters().rbs, -81.5);
    EXPECT_NEAR(refl.IOR(), 1.468, 1e-12);
    EXPECT_NEAR(refl.dataSpacing(), 10.0, 1e-9);
    EXPECT_NEAR(refl.smpl2dist(1.0), kSpacing_m, 1e-9);
    EXPECT_NEAR(refl.maxdist(), 3999 * kSpacing_m, 1e-6);
    EXPECT_NEAR(refl.endOfFiber(), 3000 * kSpacing_m, 1e-6);
    EXPECT_EQ(refl.fileName(), files.path("plain.sor"));
    EXPECT_FALSE(refl.isMeasured());
    ASSERT_NE(refl.sorData(), nullptr);
    EXPECT_EQ(refl.sorData()->fxdParams().dateTime, 1'700'000'000);
    ASSERT_NE(refl.sorData()->keyEvents(), nullptr);
    EXPECT_DOUBLE_EQ(refl.sorData()->keyEvents()->totalLoss, 3.12);
    EXPECT_DOUBLE_EQ(refl.sorData()->keyEvents()->orl, 32.5);
    EXPECT_EQ(refl.paramsToString(), "1550 nm, 100 ns, 30 s, IOR 1.4680");
}

TEST(Reflectogram, TimeThatAFileDoesNotTellIsNotZeroSeconds)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.averagingTime = 0;
    const Reflectogram refl(files.write("untold.sor", sketch));
    EXPECT_EQ(refl.paramsToString(), "1550 nm, 100 ns, - s, IOR 1.4680");
}

TEST(Reflectogram, LevelIsCountsBelowTheTopAndLinearBetweenSamples)
{
    const TraceFiles files;
    const Reflectogram refl = files.plain();
    const auto samples = refl.trace()->samples();
    const double at100 = (65535 - samples[100]) * 0.001;
    const double at101 = (65535 - samples[101]) * 0.001;
    EXPECT_NEAR(refl.powerAtDist(100 * kSpacing_m), at100, 1e-4);
    EXPECT_NEAR(refl.powerAtDist(100.25 * kSpacing_m), 0.75 * at100 + 0.25 * at101, 1e-4);
    EXPECT_NEAR(refl.powerAtDist(-500.0), (65535 - samples[0]) * 0.001, 1e-4);
    EXPECT_NEAR(refl.powerAtDist(1e6), (65535 - samples[3999]) * 0.001, 1e-4);
}

TEST(Reflectogram, EventsOfAFileStandAtTheirSamples)
{
    const TraceFiles files;
    const EventList events = eventsProper(files.plain());
    ASSERT_EQ(events.size(), 3);
    EXPECT_EQ(events[0].type, Event::SpanStart);
    EXPECT_EQ(events[0].position, 0);
    EXPECT_EQ(events[1].type, Event::NonReflective);
    EXPECT_EQ(events[1].position, 1000);
    EXPECT_NEAR(events[1].coordinate, 1000 * kSpacing_m, 1e-6);
    EXPECT_DOUBLE_EQ(events[1].loss, 0.12);
    EXPECT_DOUBLE_EQ(events[1].attenuationBefore, 0.19);
    EXPECT_FALSE(Event::isKnown(events[1].reflectance));
    EXPECT_EQ(events[2].type, Event::SpanEnd);
    EXPECT_EQ(events[2].position, 3000);
    EXPECT_DOUBLE_EQ(events[2].reflectance, -14.7);
}

TEST(Reflectogram, FibreOfAFileStandsBetweenItsEventsAsTheSecondOfThemTellsIt)
{
    const TraceFiles files;
    const EventList events = files.plain().getEventList();
    ASSERT_EQ(events.size(), 5);
    const Event& fibre = events[1];
    EXPECT_EQ(fibre.type, Event::Fiber);
    EXPECT_EQ(fibre.position, 0);
    EXPECT_NEAR(fibre.length, 1000 * kSpacing_m, 1e-6);
    EXPECT_NEAR(fibre.attenuation(), 0.19, 1e-9);
    EXPECT_NEAR(fibre.loss, 0.19 * kSpacing_m, 1e-9);
    EXPECT_EQ(events[3].type, Event::Fiber);
    EXPECT_EQ(events[3].position, 1000);
    EXPECT_NEAR(events[3].length, 2000 * kSpacing_m, 1e-6);
}

/// A count of 0.001 dB is lost from each sample to the next, 10 ns there and back.
TEST(Reflectogram, ReturnLossOfTheFibreInAFileIsThatOfItsTrace)
{
    const TraceFiles files;
    const Reflectogram refl = files.plain();
    const EventList events = refl.getEventList();
    ASSERT_EQ(events.size(), 5);
    const auto expected_dB = [](int samples) {
        const double decay = 0.001 * std::log(10.0) / 5.0;
        return 81.5 - 10.0 * std::log10(10.0 * -std::expm1(-decay * samples) / decay);
    };
    EXPECT_NEAR(events[1].orl, expected_dB(1000), 0.02);
    EXPECT_NEAR(events[3].orl, expected_dB(2000), 0.02);
    for (const Event& event : events) {
        EXPECT_EQ(Event::isKnown(event.orl), event.type == Event::Fiber);
    }
}

TEST(Reflectogram, IsSearchedOnceAndAnewWhenItChanges)
{
    const TraceFiles files;
    Reflectogram refl =
        files.measured(testing_support::TraceBuilder().fibre({6000.0}).splice({3000.0}, {0.3}));
    const auto found = refl.detection();
    ASSERT_TRUE(found);
    EXPECT_GE(found->events.size(), 2U);
    EXPECT_EQ(refl.detection(), found);
    EXPECT_EQ(Reflectogram(refl).detection(), found) << "copies share it";
    refl.setIOR(1.6);
    EXPECT_NE(refl.detection(), found);
    EXPECT_FALSE(Reflectogram().detection());
    EXPECT_FALSE(Reflectogram(files.path("none.sor")).detection());
}

TEST(Reflectogram, IsSearchedFromAnyThread)
{
    const TraceFiles files;
    Reflectogram refl =
        files.measured(testing_support::TraceBuilder().fibre({6000.0}).splice({3000.0}, {0.3}));
    std::vector<std::thread> threads(4);
    std::atomic<int> good {0};
    for (std::thread& thread : threads) {
        thread = std::thread([&good, refl] {
            for (int i = 0; i < 5; ++i) {
                const auto found = refl.detection();
                good += found && found->events.size() >= 2 ? 1 : 0;
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        refl.setIOR(1.5 + 0.001 * i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 20);
}

TEST(Reflectogram, FibreWhoseAttenuationAFileDoesNotTellHasALengthOnly)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events[1].attenuation = 0;
    const TraceFiles files;
    const Reflectogram refl(files.write("untold.sor", sketch));
    const Event fibre = refl.getEventList().value(1);
    ASSERT_EQ(fibre.type, Event::Fiber);
    EXPECT_NEAR(fibre.length, 1000 * kSpacing_m, 1e-6);
    EXPECT_FALSE(Event::isKnown(fibre.loss));
    EXPECT_FALSE(Event::isKnown(fibre.attenuation()));
}

TEST(Reflectogram, NoFibreLiesBetweenEventsOfAFileAtOnePlace)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events[1].position = sketch.keyEvents.events[0].position;
    const TraceFiles files;
    const EventList events = Reflectogram(files.write("same.sor", sketch)).getEventList();
    ASSERT_EQ(events.size(), 4);
    EXPECT_EQ(events[2].type, Event::Fiber);
}

TEST(Reflectogram, PositionsCountFromTheUsersZeroBehindALaunchFibre)
{
    SorSketch sketch = SorSketch::plain();
    sketch.gen.userOffset = 5000; // a hundred samples
    for (auto& event : sketch.keyEvents.events) {
        event.position -= 5000;
    }
    const TraceFiles files;
    const Reflectogram refl(files.write("launch.sor", sketch));
    ASSERT_TRUE(refl.isValid());
    EXPECT_EQ(eventsProper(refl)[0].position, -100);
    EXPECT_EQ(eventsProper(refl)[2].position, 2900);
    EXPECT_NEAR(refl.maxdist(), 3899 * kSpacing_m, 1e-6);
    // The splice's sample is the same one of the record, now nearer to 0 m.
    EXPECT_NEAR(refl.powerAtDist(900 * kSpacing_m), files.plain().powerAtDist(1000 * kSpacing_m),
                1e-6);
}

TEST(Reflectogram, ChangesAreSeenByAllHolders)
{
    const TraceFiles files;
    Reflectogram one = files.plain();
    const Reflectogram other = one;
    one.setIOR(1.5);
    EXPECT_EQ(other.IOR(), 1.5);
    one.setHelix(2.0);
    EXPECT_EQ(other.helix(), 2.0);
    one.setEventList({Event(Event::SpanEnd, 77, 1)});
    EXPECT_EQ(other.getEventList().size(), 1);
    EXPECT_EQ(other.endOfFiber(), 77.0);
    one.setSupParams({"S", "", "", "", "", "", ""});
    EXPECT_EQ(other.sorData()->supParams().supplierName, "S");
}

TEST(Reflectogram, GroupIndexAndHelixScaleDistancesAndEventsAlike)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    const double end = refl.endOfFiber();
    const double last = refl.maxdist();
    refl.setIOR(1.468 * 2.0);
    EXPECT_NEAR(refl.endOfFiber(), end / 2.0, 1e-6);
    EXPECT_NEAR(refl.maxdist(), last / 2.0, 1e-6);
    EXPECT_NEAR(eventsProper(refl)[1].attenuationBefore, 0.38, 1e-9);
    EXPECT_NEAR(refl.getEventList()[1].attenuation(), 0.38, 1e-9) << "the fibre before it";
    EXPECT_EQ(eventsProper(refl)[2].position, 3000);
    refl.setIOR(1.468);
    refl.setHelix(25.0);
    EXPECT_NEAR(refl.maxdist(), last / 1.25, 1e-6);
    EXPECT_NEAR(refl.endOfFiber(), end / 1.25, 1e-6);
}

TEST(Reflectogram, RefusesAGroupIndexThatCannotBe)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    for (const double ior : {0.0, -1.5, 0.99, std::nan(""), HUGE_VAL}) {
        refl.setIOR(ior);
        EXPECT_NEAR(refl.IOR(), 1.468, 1e-12);
    }
    refl.setHelix(-100.0);
    EXPECT_EQ(refl.helix(), 0.0);
}

TEST(Reflectogram, SnapshotTakesTheParametersOfTheMeasurement)
{
    const TraceFiles files;
    WfMeasParams params;
    params.ior = 1.4682;
    params.helix = 1.0;
    params.rbs = -81.9;
    params.distance = 5000.0;
    params.duration = 15;
    const Reflectogram refl = files.measured(TraceBuilder().fibre(3_km), params);
    ASSERT_TRUE(refl.isValid()) << qPrintable(refl.error());
    EXPECT_TRUE(refl.isMeasured());
    EXPECT_EQ(refl.IOR(), 1.4682);
    EXPECT_EQ(refl.helix(), 1.0);
    EXPECT_EQ(refl.parameters().rbs, -81.9);
    EXPECT_EQ(refl.wavelength(), 1550);
    EXPECT_EQ(refl.parameters().distance, 5000.0);
    EXPECT_EQ(refl.parameters().duration, 15);
    EXPECT_LT(refl.endOfFiber(), 0.0);
    EXPECT_EQ(refl.sorData()->keyEvents(), nullptr);
    EXPECT_FLOAT_EQ(refl.powerAtDist(0.0), 45.0F);
}

TEST(Reflectogram, SnapshotOfParametersThatCannotBeHasADistanceAllTheSame)
{
    const TraceFiles files;
    for (const double impossible : {std::nan(""), HUGE_VAL, -HUGE_VAL, -100.0}) {
        WfMeasParams params;
        params.ior = impossible;
        params.helix = impossible;
        const Reflectogram refl = files.measured(TraceBuilder().fibre(3_km), params);
        EXPECT_EQ(refl.helix(), 0.0) << impossible;
        EXPECT_NEAR(refl.maxdist(), 3000.0, 50.0) << impossible;
        EXPECT_EQ(refl.notes().size(), 2) << impossible;
    }
}

TEST(Reflectogram, PipeIsRefusedWithoutWaitingForIt)
{
    const TraceFiles files;
    const QString pipe = files.path("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const Reflectogram refl(pipe);
    EXPECT_FALSE(refl.isValid());
    EXPECT_TRUE(refl.error().contains(pipe));
}

TEST(Reflectogram, OpenedSnapshotIsNoMeasurementAndSaysWhatWasAssumed)
{
    const TraceFiles files;
    const Reflectogram refl(files.writeSnapshot("snapshot.bin", TraceBuilder()));
    ASSERT_TRUE(refl.isValid());
    EXPECT_FALSE(refl.isMeasured());
    EXPECT_THAT(refl.notes().join(' ').toStdString(), testing::HasSubstr("group index"));
}

TEST(Reflectogram, RefreshReplacesTheTraceForAllHoldersAndForgetsWhatWasComputed)
{
    const TraceFiles files;
    Reflectogram refl = files.measured(TraceBuilder().fibre(3_km));
    const Reflectogram holder = refl;
    refl.fillOrl();
    refl.setEventList({Event(Event::SpanEnd, 3000, 10)});
    ASSERT_NE(holder.sorData()->keyEvents(), nullptr);

    const QString file = files.writeSnapshot("wfsnapshot.bin", TraceBuilder().fibre(2_km));
    WfMeasParams params;
    params.ior = 1.468; // that of the builder
    ASSERT_TRUE(refl.updateFromFile(file, params));
    EXPECT_NEAR(holder.maxdist(), 2000.0, 5.0);
    EXPECT_TRUE(holder.isMeasured());
    EXPECT_TRUE(holder.getEventList().isEmpty());
    EXPECT_EQ(holder.sorData()->keyEvents(), nullptr);
}

TEST(Reflectogram, FailedRefreshKeepsTheTraceAndSaysWhy)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    const double last = refl.maxdist();
    EXPECT_FALSE(refl.updateFromFile(files.path("missing.bin"), WfMeasParams()));
    EXPECT_TRUE(refl.isValid());
    EXPECT_EQ(refl.maxdist(), last);
    EXPECT_EQ(refl.fileName(), files.path("plain.sor"));
    EXPECT_FALSE(refl.error().isEmpty());
}

TEST(Reflectogram, SnapshotWithoutSamplesIsNoTraceAndNoRefresh)
{
    const TraceFiles files;
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = 10.0;
    const QString file = files.write("none.bin", otdr::encodeSnapshot(snapshot));
    const Reflectogram none(file, WfMeasParams());
    EXPECT_FALSE(none.isValid());
    EXPECT_EQ(none.error(), file + ": no trace: the file holds no samples");

    Reflectogram refl = files.measured(TraceBuilder().fibre(3_km));
    const double last = refl.maxdist();
    EXPECT_FALSE(refl.updateFromFile(file, WfMeasParams()));
    EXPECT_TRUE(refl.isValid());
    EXPECT_EQ(refl.maxdist(), last);
}

TEST(Reflectogram, FileThatIsNoTraceIsInvalidWithAReason)
{
    const TraceFiles files;
    const QString text = files.path("notes.txt");
    QFile file(text);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("The quick brown fox jumps over the lazy dog.");
    file.close();
    for (const QString& name : {text, files.path(""), files.path("missing.sor")}) {
        const Reflectogram refl(name);
        EXPECT_FALSE(refl.isValid());
        EXPECT_FALSE(refl.error().isEmpty()) << qPrintable(name);
    }
}

TEST(Reflectogram, FillOrlMakesTheKeyEventsBlockEvenWhereNothingCanBeComputed)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    sketch.samples.assign(20, 65535);
    Reflectogram refl(files.write("dark.sor", sketch));
    ASSERT_TRUE(refl.isValid()) << qPrintable(refl.error());
    ASSERT_EQ(refl.sorData()->keyEvents(), nullptr);
    refl.fillOrl();
    ASSERT_NE(refl.sorData()->keyEvents(), nullptr);
    EXPECT_TRUE(std::isnan(refl.sorData()->keyEvents()->totalLoss));
}

TEST(Reflectogram, EarlierSorDataDoesNotChangeUnderItsReader)
{
    const TraceFiles files;
    Reflectogram refl = files.measured(TraceBuilder().fibre(3_km));
    const auto before = refl.sorData();
    refl.fillOrl();
    EXPECT_EQ(before->keyEvents(), nullptr);
    EXPECT_NE(refl.sorData()->keyEvents(), nullptr);
}

// Under ThreadSanitizer this is the proof that the handle may be shared between threads.
TEST(Reflectogram, MayBeReadWhileItIsRefreshedAndComputed)
{
    const TraceFiles files;
    Reflectogram refl = files.measured(TraceBuilder().fibre(3_km));
    const QString file = refl.fileName();
    std::atomic<bool> done {false};
    std::thread worker([&] {
        Reflectogram copy = refl;
        while (!done) {
            copy.fillOrl();
        }
    });
    for (int i = 0; i < 50; ++i) {
        refl.updateFromFile(file, WfMeasParams());
        refl.setIOR(1.4 + 0.001 * i);
        refl.setEventList({Event(Event::SpanEnd, 2900 + i, 10)});
        EXPECT_GT(refl.maxdist(), 0.0);
        EXPECT_GT(refl.powerAtDist(500.0), 0.0F);
        EXPECT_EQ(refl.getEventList().size(), 1);
        const auto sor = refl.sorData();
        ASSERT_NE(sor, nullptr);
    }
    done = true;
    worker.join();
}

TEST(Reflectogram, RealTracesOpenWithTheirEventsInOrderAndOnTheTrace)
{
    if (realTraces().isEmpty()) {
        GTEST_SKIP() << "no real traces here";
    }
    for (const QString& file : realTraces()) {
        const Reflectogram refl(file);
        ASSERT_TRUE(refl.isValid()) << qPrintable(file + ": " + refl.error());
        EXPECT_GT(refl.wavelength(), 800) << qPrintable(file);
        EXPECT_GT(refl.pulseWidth(), 0.0) << qPrintable(file);
        double before = -1e9;
        for (const Event& event : refl.getEventList()) {
            EXPECT_GE(event.coordinate, before) << qPrintable(file);
            before = event.coordinate;
            EXPECT_NEAR(static_cast<double>(event.position) * refl.smpl2dist(1.0), event.coordinate,
                        0.5 * refl.smpl2dist(1.0) + 1e-6)
                << qPrintable(file);
        }
    }
}

} // namespace
