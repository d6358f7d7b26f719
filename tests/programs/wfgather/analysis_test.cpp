#include "platform/otdr/detectedevents.h"
#include "platform/otdr/otdr.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/traceloader.h"
#include "programs/wfgather/analysis.h"
#include "programs/wfgather/fibrefile.h"
#include "programs/wfgather/replayedtrace.h"
#include "programs/wfgather/simulatedtrace.h"
#include "tests/programs/wfgather/gatherprocess.h"
#include "tests/support/tracefiles.h"

#include <gmock/gmock.h>

#include <csignal>

namespace {

using namespace wfgather_test;
using gather::analyse;
using gather::TraceParams;
using gather::TruthEvent;

WfMeasParams measParams(const TraceParams& announced)
{
    WfMeasParams params;
    params.ior = announced.ior;
    params.helix = announced.helix_percent;
    params.distance = announced.distance_m;
    params.wavelength = static_cast<quint16>(announced.wavelength_nm);
    params.pulse = static_cast<quint16>(announced.pulse_ns);
    params.rbs = announced.backscatter_dB;
    params.duration = announced.duration_s;
    return params;
}

/// What is found on a file by who opens it.
/// With the usual thresholds: a replay is a measurement of ours, whoever measured before.
EventList eventsOfFile(const QString& path, const WfMeasParams* params = nullptr)
{
    const auto state = loadTrace(path, params);
    EXPECT_TRUE(state) << qPrintable(path);
    return state ? eventListOf(detectionOf(*state, {}), *state) : EventList();
}

/// The events that the messages tell, as the application reads them.
EventList eventsOf(const std::vector<std::string>& messages)
{
    EventList events;
    for (const std::string& text : eventsIn(messages)) {
        events << OTDR::createEventFromString(QString::fromStdString(text), Reflectogram());
    }
    return events;
}

EventList without(Event::Type type, EventList events)
{
    events.erase(std::remove_if(events.begin(), events.end(),
                                [type](const Event& event) { return event.type == type; }),
                 events.end());
    return events;
}

TraceParams demoParams(const gather::Fibre& fibre, int wavelength_nm)
{
    TraceParams params;
    params.wavelength_nm = wavelength_nm;
    params.ior = fibre.ior.at(wavelength_nm);
    params.backscatter_dB = fibre.sections.front().backscatter_dB.at(wavelength_nm);
    return params;
}

} // namespace

class AnalysisAt : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Wavelengths, AnalysisAt, testing::Values(1310, 1550, 1625));

TEST_P(AnalysisAt, FindsWhatHappensOnTheDemoFibre)
{
    const auto fibre = gather::demoFibre();
    ASSERT_TRUE(fibre);
    const TraceParams params = demoParams(*fibre, GetParam());
    gather::SimulatedTrace trace(*fibre, {params, 15.0, 3});
    trace.measure(15.0);
    const EventList found =
        without(Event::SpanStart, without(Event::Fiber, analyse(trace.snapshot(), params)));
    std::vector<TruthEvent> truth;
    for (const TruthEvent& event : gather::truthOf(*fibre, GetParam())) {
        if (!event.ghost && event.at_m > 0.0) {
            truth.push_back(event);
        }
    }
    ASSERT_EQ(found.size(), static_cast<int>(truth.size()));
    for (int i = 0; i < found.size(); ++i) {
        const TruthEvent& event = truth[static_cast<std::size_t>(i)];
        EXPECT_NEAR(found[i].coordinate, event.at_m, found[i].width);
        EXPECT_EQ(found[i].type == Event::SpanEnd, event.end) << event.at_m;
        EXPECT_EQ(Event::isKnown(found[i].reflectance), !std::isnan(event.reflectance_dB));
        if (!event.end) {
            EXPECT_NEAR(found[i].loss, event.apparentLoss_dB, 0.02) << event.at_m;
        }
    }
}

TEST(Analysis, IsThatOfWhoReadsTheSnapshotAndWasTold)
{
    const RunDirectory directory(
        "[MeasParams]\nduration=2\nwavelength=1550\nior1550=1.47\nhelix=1.5\nrbs=-80.5\n"
        + std::string(kFast));
    GatherProcess gather(directory);
    const EventList told = eventsOf(gather.rest());
    WfMeasParams params;
    params.ior = 1.47;
    params.helix = 1.5;
    params.rbs = -80.5;
    EXPECT_GE(told.size(), 9);
    EXPECT_EQ(told, eventsOfFile(QString::fromStdString(directory.snapshotPath()), &params));
}

TEST(Analysis, TellsTheStartTheFibreAndTheEndBetweenItsBraces)
{
    const RunDirectory directory("[MeasParams]\nduration=2\nwavelength=all\n" + std::string(kFast));
    GatherProcess gather(directory);
    const std::vector<std::string> messages = gather.rest();
    int blocks = 0;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        if (messages[i].rfind("A * s ", 0) == 0) {
            EXPECT_EQ(messages[i - 1], "A {");
            EXPECT_EQ(messages[i + 1].rfind("A * f ", 0), 0U) << messages[i + 1];
        }
        if (messages[i] == "A }") {
            ++blocks;
            EXPECT_EQ(messages[i - 1].rfind("A * e ", 0), 0U) << messages[i - 1];
        }
    }
    EXPECT_EQ(blocks, 2);
}

TEST(Analysis, AStoppedTraceIsAnalysedAsFarAsItGot)
{
    const RunDirectory directory("[MeasParams]\nduration=600\n[Simulation]\nseed=7\n");
    GatherProcess gather(directory);
    gather.readTo("M * RT 599");
    gather.signal(SIGTERM);
    const EventList told = eventsOf(gather.rest());
    ASSERT_FALSE(told.isEmpty());
    EXPECT_EQ(told.first().type, Event::SpanStart);
    EXPECT_EQ(told.last().type, Event::SpanEnd);
}

TEST(Analysis, ARecordShorterThanTheFibreHasNoEnd)
{
    const RunDirectory directory("[MeasParams]\nduration=2\ndistance=5000\n" + std::string(kFast));
    GatherProcess gather(directory);
    const std::vector<std::string> events = eventsIn(gather.rest());
    ASSERT_FALSE(events.empty());
    for (const std::string& event : events) {
        EXPECT_NE(event.front(), 'e') << event;
    }
}

TEST(Analysis, AReplayedTraceIsAnalysedLikeItsFile)
{
    const QStringList files = testing_support::realTraces();
    if (files.isEmpty()) {
        GTEST_SKIP() << "no real traces beside the source tree";
    }
    for (const QString& file : files) {
        const auto replay = gather::readReplay(file.toStdString(), {});
        ASSERT_TRUE(replay) << qPrintable(file);
        const EventList served = analyse(replay->snapshot, replay->params);
        const EventList stored = eventsOfFile(file);
        ASSERT_EQ(served.size(), stored.size()) << qPrintable(file);
        for (int i = 0; i < served.size(); ++i) {
            EXPECT_EQ(served[i].type, stored[i].type) << qPrintable(file);
            EXPECT_EQ(served[i].position, stored[i].position) << qPrintable(file);
        }
    }
}

TEST(Analysis, AReplayTellsItsEvents)
{
    const QStringList files = testing_support::realTraces();
    if (files.isEmpty()) {
        GTEST_SKIP() << "no real traces beside the source tree";
    }
    const RunDirectory directory("[MeasParams]\nduration=1\n[Simulation]\ntimeScale=0\nreplay=\""
                                 + files.first().toStdString() + "\"\n");
    GatherProcess gather(directory);
    const auto replay = gather::readReplay(files.first().toStdString(), {});
    ASSERT_TRUE(replay);
    const EventList told = eventsOf(gather.rest());
    EXPECT_FALSE(told.isEmpty());
    const WfMeasParams params = measParams(replay->params);
    EXPECT_EQ(told, eventsOfFile(QString::fromStdString(directory.snapshotPath()), &params));
}
