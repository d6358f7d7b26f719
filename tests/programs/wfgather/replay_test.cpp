#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/sorwriter.h"
#include "programs/wfgather/replayedtrace.h"
#include "tests/programs/wfgather/gatherprocess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>

namespace {

using namespace wfgather_test;
using gather::readReplay;
using gather::Replay;
using gather::TraceParams;

/// A trace as an instrument writes it: 100 samples every 25 ns, the port at sample 10.
otdr::sor::File goodFile()
{
    otdr::sor::File file;
    file.hasGen = file.hasFxd = true;
    file.gen.wavelength_nm = 1625;
    file.fxd.actualWavelength = 16250;
    file.fxd.acquisitionOffset = -1250;
    file.fxd.pulses = {{500, 1250000, 100}};
    file.fxd.groupIndex = 146850;
    file.fxd.backscatter = 825;
    file.fxd.averages = 4321;
    file.fxd.averagingTime = 300;
    file.fxd.acquisitionRange = 12500;
    std::vector<std::uint16_t> counts;
    counts.reserve(100);
    for (int i = 0; i < 100; ++i) {
        counts.push_back(static_cast<std::uint16_t>(i < 10 ? 65535 : 20000 + 50 * i));
    }
    file.data.samples = otdr::RawSamples(counts);
    return file;
}

class ReplayFile : public testing::Test
{
protected:
    otdr::Result<Replay> replay(const otdr::sor::File& file, const TraceParams& wanted = {})
    {
        const auto bytes = otdr::encodeSor(file);
        EXPECT_TRUE(bytes);
        QFile written(directory.filePath("trace.sor"));
        EXPECT_TRUE(written.open(QIODevice::WriteOnly));
        written.write(reinterpret_cast<const char*>(bytes->data()),
                      static_cast<qint64>(bytes->size()));
        written.close();
        return readReplay(path(), wanted);
    }

    [[nodiscard]] std::string path() const { return directory.filePath("trace.sor").toStdString(); }

    QTemporaryDir directory;
};

} // namespace

TEST_F(ReplayFile, IsAnnouncedAsItWasMeasured)
{
    TraceParams wanted;
    wanted.helix_percent = 0.7;
    const auto served = replay(goodFile(), wanted);
    ASSERT_TRUE(served) << served.error().message;
    const TraceParams& params = served->params;
    EXPECT_EQ(params.wavelength_nm, 1625);
    EXPECT_EQ(params.pulse_ns, 500);
    EXPECT_DOUBLE_EQ(params.ior, 1.4685);
    EXPECT_DOUBLE_EQ(params.backscatter_dB, -82.5);
    EXPECT_EQ(params.duration_s, 30);
    EXPECT_NEAR(params.distance_m, 12500 * 1e-10 * otdr::kSpeedOfLight / 1.4685, 1e-6);
    EXPECT_EQ(params.helix_percent, 0.7); // a trace file has none
}

TEST_F(ReplayFile, ServesTheSamplesWhereTheyLie)
{
    const auto served = replay(goodFile());
    ASSERT_TRUE(served);
    EXPECT_TRUE(served->snapshot.samples == goodFile().data.samples);
    EXPECT_DOUBLE_EQ(served->snapshot.sampleInterval_ns, 25.0);
    EXPECT_DOUBLE_EQ(served->snapshot.firstSample_ns, -250.0); // ten samples before the port
    EXPECT_EQ(served->snapshot.averages, 4321U);
    EXPECT_EQ(served->snapshot.pulse_ns, 500U);
    EXPECT_EQ(served->snapshot.wavelength_nm, 1625);
    EXPECT_EQ(served->snapshot.countsPerDb, 1000);
}

TEST_F(ReplayFile, TakesWhatTheFileDoesNotTellFromTheSettings)
{
    otdr::sor::File file = goodFile();
    file.gen.wavelength_nm = 0;
    file.fxd.actualWavelength = 0;
    file.fxd.pulses[0].width_ns = 0;
    file.fxd.backscatter = 0;
    file.fxd.averagingTime = 0;
    file.fxd.acquisitionRange = 0;
    TraceParams wanted;
    wanted.wavelength_nm = 1310;
    wanted.pulse_ns = 30;
    wanted.distance_m = 2500.0;
    wanted.duration_s = 60;
    wanted.backscatter_dB = -79.0;
    const auto served = replay(file, wanted);
    ASSERT_TRUE(served);
    EXPECT_EQ(served->params.wavelength_nm, 1310);
    EXPECT_EQ(served->params.pulse_ns, 30);
    EXPECT_EQ(served->params.distance_m, 2500.0);
    EXPECT_EQ(served->params.duration_s, 60);
    EXPECT_EQ(served->params.backscatter_dB, -79.0);
}

TEST_F(ReplayFile, InRealtimeHasNoDuration)
{
    TraceParams wanted;
    wanted.duration_s = 0;
    EXPECT_EQ(replay(goodFile(), wanted)->params.duration_s, 0);
}

TEST_F(ReplayFile, AnotherScaleFactorIsBroughtToTheUsualOne)
{
    otdr::sor::File file = goodFile();
    file.data.scaleFactor = 500;
    file.data.samples = otdr::RawSamples({65535, 65533, 65435, 1});
    const auto served = replay(file);
    ASSERT_TRUE(served);
    // Levels of 0, 0.001, 0.05 and 32.767 dB.
    EXPECT_TRUE(served->snapshot.samples == otdr::RawSamples({65535, 65534, 65485, 32768}));

    file.data.scaleFactor = 4000; // beyond what 16 bits hold
    EXPECT_TRUE(replay(file)->snapshot.samples == otdr::RawSamples({65535, 65527, 65135, 0}));
}

/// What the levels of a file count from means nothing: noise that stands far above no signal leaves
/// the light no less room.
TEST_F(ReplayFile, ACoarseScaleLosesNothingOfTheLight)
{
    otdr::sor::File file = goodFile();
    file.data.scaleFactor = 2000;
    file.data.samples = otdr::RawSamples({40'000, 30'000, 20'000, 8'000});
    EXPECT_TRUE(replay(file)->snapshot.samples == otdr::RawSamples({65535, 45535, 25535, 1535}));
}

TEST_F(ReplayFile, WhatIsNoTraceIsAnError)
{
    EXPECT_EQ(readReplay(path(), {}).error().code, otdr::ErrorCode::CannotOpen);
    QFile file(directory.filePath("trace.sor"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Map, but no trace");
    file.close();
    EXPECT_FALSE(readReplay(path(), {}));
}

TEST_F(ReplayFile, IsServedRefreshByRefresh)
{
    ASSERT_TRUE(replay(goodFile()));
    const RunDirectory run("[MeasParams]\nduration=2\nwavelength=all\n[Simulation]\ntimeScale=0\n"
                           "replay="
                           + path() + "\n");
    GatherProcess gather(run);
    const std::string range =
        QByteArray::number(12500 * 1e-10 * otdr::kSpeedOfLight / 1.4685, 'g', 12).toStdString();
    EXPECT_THAT(gather.rest(),
                testing::ElementsAre("G {", "C * 1",
                                     "M { 1/1 wavelength 1625 duration 30 ior 1.4685 helix 0 "
                                     "distance "
                                         + range + " pulse 500 rbs -82.5",
                                     "M * RT 1 ET 1", "M * RT 0 ET 2", "M }", "A {", "A }", "G }"));
    EXPECT_EQ(gather.wait(), 0);
    ASSERT_TRUE(run.snapshot());
    EXPECT_EQ(run.snapshot()->sequence, 2U);
    EXPECT_TRUE(run.snapshot()->samples == goodFile().data.samples);
}

TEST_F(ReplayFile, InRealtimeRunsUntilItIsStopped)
{
    ASSERT_TRUE(replay(goodFile()));
    const RunDirectory run("[MeasParams]\nduration=0\n[Simulation]\nreplay=" + path() + "\n");
    GatherProcess gather(run);
    gather.readTo("M * RT 0 ET 1");
    gather.signal(SIGTERM);
    EXPECT_EQ(gather.rest().back(), "G }");
    EXPECT_EQ(gather.wait(), 0);
}

TEST(Replay, RealTracesComeThroughUnchanged)
{
    const QDir traces(WAVEFORM_TRACES);
    const QStringList names = traces.entryList({"*.sor"}, QDir::Files);
    if (names.isEmpty()) {
        GTEST_SKIP() << "no real traces beside the source tree";
    }
    for (const QString& name : names) {
        const std::string path = traces.absoluteFilePath(name).toStdString();
        const auto file = otdr::readSorFile(path);
        ASSERT_TRUE(file) << path;
        const RunDirectory run("[MeasParams]\nduration=1\n[Simulation]\ntimeScale=0\nreplay=\""
                               + path + "\"\n");
        GatherProcess gather(run);
        EXPECT_EQ(gather.rest().back(), "G }") << path;
        EXPECT_EQ(gather.wait(), 0);
        const auto snapshot = run.snapshot();
        ASSERT_TRUE(snapshot) << path;
        EXPECT_TRUE(snapshot->samples == file->data.samples) << path;
        const otdr::sor::Axis axis = otdr::sor::axisOf(*file);
        EXPECT_EQ(snapshot->sampleInterval_ns, axis.sampleInterval_ns) << path;
        EXPECT_EQ(snapshot->firstSample_ns, axis.firstSample_ns) << path;
        EXPECT_EQ(snapshot->pulse_ns, file->fxd.pulses.front().width_ns) << path;
    }
}
