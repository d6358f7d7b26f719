// What is saved of a trace, read back.

#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/trace.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/tracestate.h"
#include "tests/support/requiredcontents.h"
#include "tests/support/tracefiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

using testing_support::SorSketch;
using testing_support::TraceBuilder;
using testing_support::TraceFiles;
using namespace testing_support; // the units of the builder

TEST(Reflectogram, UnchangedFileIsSavedByteForByte)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    refl.fillOrl(); // computing for the screen is no change of the trace
    ASSERT_EQ(refl.save(files.path("copy.sor")), 0);
    EXPECT_EQ(requiredContents(files.path("copy.sor")), requiredContents(files.path("plain.sor")));
}

TEST(Reflectogram, SavedChangesAreReadBack)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    refl.setIOR(1.475);
    refl.setSupParams({"Supplier", "Main", "1", "Module", "2", "3.0", "other"});
    Event end(Event::SpanEnd, 2500, 10);
    end.position = 2462;
    end.coordinate = 2500.0;
    end.reflectance = -30.5;
    refl.setEventList({end});
    ASSERT_EQ(refl.save(files.path("changed.sor")), 0);

    const Reflectogram read(files.path("changed.sor"));
    ASSERT_TRUE(read.isValid()) << qPrintable(read.error());
    EXPECT_NEAR(read.IOR(), 1.475, 1e-9);
    EXPECT_EQ(read.sorData()->supParams().supplierName, "Supplier");
    ASSERT_EQ(read.getEventList().size(), 1);
    EXPECT_EQ(read.getEventList()[0].type, Event::SpanEnd);
    EXPECT_NEAR(read.getEventList()[0].coordinate, 2500.0, 0.011); // half a count of 2 cm
    EXPECT_NEAR(read.getEventList()[0].reflectance, -30.5, 1e-9);
    EXPECT_EQ(read.trace()->samples(), refl.trace()->samples());
}

TEST(Reflectogram, SavedWithAnotherIndexItTellsWhatItTold)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.acquisitionRangeDistance = 40'844; // tenths of metres at an index of 1.468
    Reflectogram refl(files.write("plain.sor", sketch));
    refl.setIOR(1.468 * 1.05);
    ASSERT_EQ(refl.save(files.path("index.sor")), 0);
    const Reflectogram read(files.path("index.sor"));
    ASSERT_EQ(read.getEventList().size(), refl.getEventList().size());
    for (int i = 0; i < read.getEventList().size(); ++i) {
        const Event now = refl.getEventList()[i];
        const Event later = read.getEventList()[i];
        EXPECT_NEAR(later.coordinate, now.coordinate, 0.02) << i;
        if (now.type == Event::Fiber && Event::isKnown(now.loss)) {
            EXPECT_NEAR(later.attenuation(), now.attenuation(), 0.0006) << i;
            EXPECT_NEAR(later.loss, now.loss, 0.001) << i;
        }
    }
    const auto readFile = otdr::readSorFile(files.path("index.sor").toStdString());
    ASSERT_TRUE(readFile);
    EXPECT_NEAR(readFile->fxd.acquisitionRangeDistance,
                10.0 * readFile->fxd.acquisitionRange * otdr::sor::metresPerCount(*readFile), 1.0);
}

TEST(Reflectogram, SavedWithAnotherIndexItMakesNoFigureOfOneThatIsNotKnown)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events[1].attenuation = std::numeric_limits<std::int16_t>::min();
    Reflectogram refl(files.write("plain.sor", sketch));
    refl.setIOR(1.44);
    ASSERT_EQ(refl.save(files.path("index.sor")), 0);
    const Reflectogram read(files.path("index.sor"));
    ASSERT_TRUE(read.isValid());
    for (const Event& event : read.getEventList()) {
        EXPECT_FALSE(Event::isKnown(event.attenuationBefore));
    }
}

TEST(Reflectogram, SavedTraceTellsLengthsOfTheFibreAndNotOfTheCable)
{
    const TraceFiles files;
    WfMeasParams params;
    params.ior = 1.468;
    params.helix = 25.0; // a kilometre of cable holds 1.25 km of fibre
    Reflectogram refl = files.measured(TraceBuilder().fibre(3_km), params);
    Event splice(Event::NonReflective, 2000, 10);
    splice.attenuationBefore = 0.25; // of that kilometre of cable
    refl.setEventList({splice});
    ASSERT_EQ(refl.save(files.path("cable.sor")), 0);

    const Reflectogram read(files.path("cable.sor"));
    ASSERT_EQ(read.getEventList().size(), 1);
    const Event stored = read.getEventList().at(0);
    EXPECT_NEAR(stored.coordinate, 2500.0, 0.011);
    EXPECT_NEAR(stored.attenuationBefore, 0.2, 1e-9);
    const auto& fxd = read.state()->file->fxd;
    const double wholeFibre_m = read.smpl2dist(static_cast<double>(read.trace()->size()));
    EXPECT_NEAR(fxd.acquisitionRangeDistance, 10.0 * wholeFibre_m, 1.0);
}

TEST(Reflectogram, MeasuredTraceIsSavedWithItsParametersAndReadBackTheSame)
{
    const TraceFiles files;
    WfMeasParams params;
    params.ior = 1.4682;
    params.rbs = -81.9;
    params.duration = 15;
    const QString snapshot = files.writeSnapshot(
        "wfsnapshot.bin", TraceBuilder().fibre(3_km).splice(1_km, 0.3_dB), 10.0, -200.0);
    Reflectogram refl(snapshot, params);
    refl.fillOrl();
    QString error;
    ASSERT_EQ(refl.save(files.path("new.sor"), &error), 0) << qPrintable(error);

    const Reflectogram read(files.path("new.sor"));
    ASSERT_TRUE(read.isValid()) << qPrintable(read.error());
    EXPECT_TRUE(read.notes().isEmpty()) << qPrintable(read.notes().join('\n'));
    EXPECT_EQ(read.trace()->samples(), refl.trace()->samples());
    EXPECT_EQ(read.wavelength(), 1550);
    EXPECT_EQ(read.pulseWidth(), 100.0);
    EXPECT_NEAR(read.IOR(), 1.4682, 1e-9);
    EXPECT_NEAR(read.parameters().rbs, -81.9, 1e-9);
    EXPECT_NEAR(read.maxdist(), refl.maxdist(), 0.02);
    EXPECT_NEAR(read.powerAtDist(700.0), refl.powerAtDist(700.0), 1e-4);
    EXPECT_EQ(read.sorData()->fxdParams().averages, 64U);
    EXPECT_DOUBLE_EQ(read.sorData()->fxdParams().averagingTime, 15.0);
    EXPECT_NEAR(static_cast<double>(read.sorData()->fxdParams().dateTime),
                static_cast<double>(refl.sorData()->fxdParams().dateTime), 0.5);
}

/// Other software measures the loss again by the markers beside it.
TEST(Reflectogram, SavedLossIsThatOfTheFibreBetweenItsMarkers)
{
    const TraceFiles files;
    const auto link = TraceBuilder().fibre(3_km).splice(1_km, 0.3_dB).splice(2_km, 0.1_dB);
    Reflectogram refl = files.measured(link, WfMeasParams());
    refl.setHelix(10.0);
    Event splice(Event::NonReflective, 1000, 10);
    splice.beforeFrom = 120.0;
    splice.behindFrom = 1090.0;
    splice.behindTo = 1950.0;
    Event unmeasured(Event::NonReflective, 2000, 10);
    Event odd(Event::NonReflective, 2500, 10);
    odd.beforeFrom = 2510.0; // no list of ours has it so, a message may
    odd.behindFrom = 2490.0;
    odd.behindTo = 2480.0;
    refl.setEventList({splice, unmeasured, odd});
    ASSERT_EQ(refl.save(files.path("markers.sor")), 0);

    const Reflectogram read(files.path("markers.sor"));
    const auto file = read.state()->file;
    const double metres = otdr::sor::metresPerCount(*file) / 1.1; // of cable
    const auto markers = [&](std::size_t event, std::size_t marker) {
        return file->keyEvents->events[event].markers[marker] * metres;
    };
    const double expected[] = {120.0, 1000.0, 1090.0, 1950.0};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(markers(0, i), expected[i], 0.011) << i;
    }
    EXPECT_NEAR(markers(1, 0), 1090.0, 0.011) << "from where the fibre before it is undisturbed";
    EXPECT_NEAR(markers(1, 3), 2500.0, 0.011) << "up to the next event";
    for (const auto& event : file->keyEvents->events) {
        EXPECT_TRUE(std::is_sorted(event.markers.begin(), event.markers.begin() + 4));
        EXPECT_EQ(event.markers[1], event.position);
    }
}

TEST(Reflectogram, LinesOfALossKeepTheirPlaceInTheFibreWithAnotherIndex)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    Event splice(Event::NonReflective, 1000, 10);
    splice.beforeFrom = 100.0;
    splice.behindFrom = 1100.0;
    splice.behindTo = 2000.0;
    refl.setEventList({splice});
    refl.setIOR(refl.IOR() * 1.25);
    const Event now = refl.getEventList()[0];
    EXPECT_NEAR(now.beforeFrom, 80.0, 1e-9);
    EXPECT_NEAR(now.behindFrom, 880.0, 1e-9);
    EXPECT_NEAR(now.behindTo, 1600.0, 1e-9);
}

TEST(Reflectogram, NotesOnceWhatOfItsFileWasNotSaved)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.makers = {{"Mine", Bytes(4)}, {"Ours", Bytes(4)}};
    Reflectogram refl(files.write("plain.sor", sketch));
    ASSERT_EQ(refl.save(files.path("copy.sor")), 0);
    EXPECT_EQ(refl.notes(), QStringList()) << "all of it was saved";

    refl.setEventList({});
    EXPECT_EQ(refl.save(files.path("no/such/directory.sor")), -1);
    EXPECT_EQ(refl.notes(), QStringList()) << "nothing was saved";

    const Reflectogram shown = refl;
    ASSERT_EQ(refl.save(files.path("changed.sor")), 0);
    ASSERT_EQ(refl.save(files.path("again.sor")), 0);
    ASSERT_EQ(shown.notes().size(), 1);
    EXPECT_TRUE(shown.notes()[0].endsWith(R"(left out: "Mine", "Ours")"))
        << qPrintable(shown.notes()[0]);
    EXPECT_EQ(Reflectogram(files.path("changed.sor")).notes(), QStringList());
}

TEST(Reflectogram, SaveThatFailsLeavesTheOldFileAndSaysWhy)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    QString error;
    EXPECT_EQ(refl.save(files.path("no/such/directory.sor"), &error), -1);
    EXPECT_FALSE(error.isEmpty());
}

} // namespace
