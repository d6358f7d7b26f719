#include "events/foundevents.h"
#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/losscalc.h"
#include "platform/otdr/otdr.h"
#include "platform/otdr/reflcoefcalc.h"
#include "platform/otdr/reflectogram.h"
#include "tests/support/tracefiles.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using testing::ElementsAre;
using testing_support::TraceFiles;
using namespace testing_support;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A file whose samples stand a decimetre apart, from a pulse ten metres and a half long.
TraceScale decimetres()
{
    TraceScale scale;
    std::memcpy(scale.header.magic, "WFPK", 4);
    const double metresPerNs = OTDR::ns2meters(1.0, scale.header, scale.params);
    scale.header.sampleInterval_ns = 0.1 / metresPerNs;
    scale.header.pulse_ns = static_cast<std::uint32_t>(std::lround(10.5 / metresPerNs));
    return scale;
}

std::vector<Event::Type> types(const EventList& events)
{
    std::vector<Event::Type> found;
    for (const Event& event : events) {
        found.push_back(event.type);
    }
    return found;
}

std::vector<double> coordinates(const EventList& events)
{
    std::vector<double> found;
    for (const Event& event : events) {
        found.push_back(event.coordinate);
    }
    return found;
}

TEST(FinderOutput, NamesEventsInTheOrderOfItsLines)
{
    const EventList events = eventsFromOutput("n = 20005\nr = 4007\n", decimetres());
    EXPECT_THAT(types(events), ElementsAre(Event::NonReflective, Event::Reflective));
    // Whole metres, cut off and not rounded.
    EXPECT_THAT(coordinates(events), ElementsAre(2000.0, 400.0));
    EXPECT_EQ(events[0].position, 20005);
    EXPECT_EQ(events[1].position, 4007);
    EXPECT_EQ(events[0].width, 10.0);
    EXPECT_FALSE(Event::isKnown(events[0].loss));
}

TEST(FinderOutput, HasNoEventNearerThan150Metres)
{
    TraceScale scale = decimetres();
    while (OTDR::smpl2meters(1500, scale.header, scale.params) < 150.0) {
        scale.header.sampleInterval_ns = std::nextafter(scale.header.sampleInterval_ns, kInfinity);
    }
    ASSERT_NEAR(OTDR::smpl2meters(1499, scale.header, scale.params), 149.9, 1e-9);
    const EventList events = eventsFromOutput("r = 1\nr = 1499\nr = 1500\n", scale);
    EXPECT_THAT(coordinates(events), ElementsAre(150.0));
    EXPECT_EQ(events[0].position, 1500);
}

TEST(FinderOutput, OnlyLowerCaseRIsReflective)
{
    const EventList events = eventsFromOutput(
        "R = 2000\nr = 3000\ne = 4000\np = 5000\n = 6000\nr  = 7000\n", decimetres());
    EXPECT_THAT(types(events),
                ElementsAre(Event::NonReflective, Event::Reflective, Event::NonReflective,
                            Event::NonReflective, Event::NonReflective, Event::NonReflective));
}

TEST(FinderOutput, EndsAtTheFirstZeroByte)
{
    QByteArray output("r = 2000\n");
    output.append('\0').append("r = 3000\n");
    EXPECT_THAT(coordinates(eventsFromOutput(output, decimetres())), ElementsAre(200.0));
}

TEST(FinderOutput, MayEndWithoutANewlineAndHaveEmptyLines)
{
    EXPECT_THAT(coordinates(eventsFromOutput("\n\nr = 2000\n\nn = 3000", decimetres())),
                ElementsAre(200.0, 300.0));
}

TEST(FinderOutput, LinesThatSayNoSampleAreNoEvents)
{
    for (const char* output : {"", "\n", "r", "r = ", "r = x", "r=2000", "r =2000", "r = 2000.5",
                               " = ", "\xff\xfe = \x80", "r = 99999999999999999999999",
                               "r = 9223372036854775807", "r = -2000"}) {
        EXPECT_THAT(eventsFromOutput(output, decimetres()), testing::IsEmpty()) << output;
    }
}

TEST(FinderOutput, PositionCountsFromTheStartOfTheFibre)
{
    TraceScale scale = decimetres();
    scale.header.firstSample_ns = -1000.0 * scale.header.sampleInterval_ns;
    const EventList events = eventsFromOutput("r = 2000\nr = 3007\n", scale);
    EXPECT_THAT(coordinates(events), ElementsAre(200.0)) << "the first one lies at 100 m";
    EXPECT_EQ(events[0].position, 2007);
}

TEST(FinderOutput, PositionThatNoTraceHasIsNoEvent)
{
    TraceScale scale = decimetres();
    scale.header.sampleInterval_ns = 1e-6;
    scale.header.firstSample_ns = 1e4; // a kilometre, and ten thousand million samples
    EXPECT_GT(OTDR::smpl2meters(2000, scale.header, scale.params), 150.0);
    EXPECT_THAT(eventsFromOutput("r = 2000\n", scale), testing::IsEmpty());
}

TEST(FinderOutput, HeaderThatIsNonePutsNothingOnTheFibre)
{
    TraceScale scale = decimetres();
    scale.header.magic[0] = 'M';
    EXPECT_THAT(eventsFromOutput("r = 2000\n", scale), testing::IsEmpty());
    EXPECT_EQ(spanStartEvent(scale).width, 0.0);
}

TEST(FinderOutput, ImpossibleHeaderOrParametersGiveNoEvents)
{
    for (const double interval : {0.0, kNaN, kInfinity, -1.0, 1e300}) {
        TraceScale scale = decimetres();
        scale.header.sampleInterval_ns = interval;
        EXPECT_THAT(eventsFromOutput("r = 2000\n", scale), testing::IsEmpty()) << interval;
    }
    for (const double first : {kNaN, kInfinity, 1e300}) {
        TraceScale scale = decimetres();
        scale.header.firstSample_ns = first;
        EXPECT_THAT(eventsFromOutput("r = 2000\n", scale), testing::IsEmpty()) << first;
    }
    TraceScale scale = decimetres();
    scale.params.ior = 0.0;
    EXPECT_THAT(eventsFromOutput("r = 2000\n", scale), testing::IsEmpty());
    EXPECT_EQ(spanStartEvent(scale).width, 0.0);
}

TEST(SpanStart, IsAsWideAsThePulseAndAtTheSampleAtZero)
{
    TraceScale scale = decimetres();
    scale.header.firstSample_ns = -50.0;
    const Event start = spanStartEvent(scale);
    EXPECT_EQ(start.type, Event::SpanStart);
    EXPECT_EQ(start.coordinate, 0.0);
    EXPECT_EQ(start.position, 0);
    EXPECT_EQ(start.width, 10.0);
}

class MeasuredEvents : public testing::Test
{
protected:
    MeasuredEvents()
        : trace(files.measured(TraceBuilder()
                                   .fibre(8_km)
                                   .connector(2_km, 0.5_dB, 12_dB)
                                   .splice(5_km, 0.3_dB)
                                   .behind(500)
                                   .noise(0.001_dB, 5),
                               parameters()))
    {
    }

    static WfMeasParams parameters()
    {
        WfMeasParams params;
        params.ior = 1.468;
        return params;
    }

    Event at(Event::Type type, double distance_m) const { return at(trace, type, distance_m); }

    static Event at(const Reflectogram& refl, Event::Type type, double distance_m)
    {
        Event event(type, static_cast<long>(distance_m), 10);
        event.position = std::lround(distance_m / refl.smpl2dist(1.0));
        return event;
    }

    TraceFiles files;
    Reflectogram trace;
};

TEST_F(MeasuredEvents, HaveTheLossOfTheTrace)
{
    EventList events {at(Event::SpanStart, 0), at(Event::Reflective, 2000),
                      at(Event::NonReflective, 5000), at(Event::NonReflective, 8000)};
    trace.setEventList(events);
    measureEvents(events, trace);
    EXPECT_NEAR(events[1].loss, 0.5, 0.02);
    EXPECT_NEAR(events[2].loss, 0.3, 0.02);
    EXPECT_NEAR(events[2].reflIn - events[2].reflOut, events[2].loss, 1e-9);
    EXPECT_NEAR(events[1].reflIn, 45.0 - 0.4, 0.02);
}

TEST_F(MeasuredEvents, ReflectanceIsThatOfThePeakAboveTheLevelBefore)
{
    EventList events {at(Event::Reflective, 2000), at(Event::NonReflective, 5000)};
    measureEvents(events, trace);
    double height_dB = 0.0;
    const double reflectance = ReflcoefCalc(trace)(2000.0, events[0].reflIn, height_dB);
    EXPECT_NEAR(height_dB, 12.0, 0.1);
    EXPECT_EQ(events[0].reflectance, reflectance);
    EXPECT_FALSE(Event::isKnown(events[1].reflectance)) << "it was no end when it was measured";
}

TEST_F(MeasuredEvents, ReflectanceIsThatOfAPeakThatTheWholeMetresOfItsEventStopShortOf)
{
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = 0.5;
    snapshot.pulse_ns = 5; // half a metre of fibre
    snapshot.samples = otdr::RawSamples(TraceBuilder()
                                            .sampling(0.5)
                                            .pulse(5.0)
                                            .fibre(1_km)
                                            .reflection(400.95_m, 12_dB)
                                            .behind(500)
                                            .noise(0.001_dB, 5)
                                            .counts());
    const Reflectogram fine(files.write("fine.bin", otdr::encodeSnapshot(snapshot)), parameters());
    EventList events {at(fine, Event::Reflective, 400.95)};
    ASSERT_EQ(events[0].coordinate, 400.0);
    measureEvents(events, fine);
    EXPECT_NEAR(events[0].reflectance, otdr::reflectance_dB(12.0, parameters().rbs, 5.0), 0.1);
}

TEST_F(MeasuredEvents, AreSortedAndTheLastBecomesTheEnd)
{
    EventList events {at(Event::NonReflective, 8000), at(Event::Reflective, 2000),
                      at(Event::NonReflective, 5000), at(Event::SpanStart, 0)};
    measureEvents(events, trace);
    EXPECT_THAT(coordinates(events), ElementsAre(0.0, 2000.0, 5000.0, 8000.0));
    EXPECT_THAT(
        types(events),
        ElementsAre(Event::SpanStart, Event::Reflective, Event::NonReflective, Event::SpanEnd));
}

TEST_F(MeasuredEvents, ThatHaveAnEndAreNotSorted)
{
    EventList events {at(Event::SpanEnd, 8000), at(Event::NonReflective, 5000),
                      at(Event::Reflective, 2000), at(Event::SpanStart, 0)};
    trace.setEventList(events);
    measureEvents(events, trace);
    EXPECT_THAT(
        types(events),
        ElementsAre(Event::SpanEnd, Event::NonReflective, Event::Reflective, Event::SpanStart));
    EXPECT_NEAR(events[1].loss, 0.3, 0.02) << "measured all the same";
}

TEST_F(MeasuredEvents, EndHasItsReflectanceMeasured)
{
    EventList events {at(Event::SpanEnd, 2000)};
    measureEvents(events, trace);
    EXPECT_EQ(events[0].reflectance, ReflcoefCalc(trace)(2000.0, events[0].reflIn, 0));
    EXPECT_TRUE(Event::isKnown(events[0].reflectance));
}

TEST_F(MeasuredEvents, ReflectiveEndHasALevelBeforeItAndNoneBehind)
{
    const Reflectogram bright = files.measured(TraceBuilder()
                                                   .fibre(8.01_km)
                                                   .reflection(8_km, 20_dB)
                                                   .behind(4000)
                                                   .noise(0.001_dB, 5)
                                                   .noiseFloor(10_dB),
                                               parameters());
    EventList events {at(Event::SpanStart, 0), at(Event::Reflective, 8000)};
    measureEvents(events, bright);
    EXPECT_EQ(events[1].type, Event::SpanEnd);
    EXPECT_NEAR(events[1].reflIn, 45.0 - 1.6, 0.05);
    EXPECT_FALSE(Event::isKnown(events[1].reflOut));
    EXPECT_FALSE(Event::isKnown(events[1].loss));
    double height_dB = 0.0;
    EXPECT_EQ(events[1].reflectance, ReflcoefCalc(bright)(8000.0, events[1].reflIn, height_dB));
    EXPECT_NEAR(height_dB, 20.0, 0.1);
}

TEST_F(MeasuredEvents, SingleEventIsNoEnd)
{
    EventList events {at(Event::SpanStart, 0)};
    measureEvents(events, trace);
    EXPECT_THAT(types(events), ElementsAre(Event::SpanStart));
    EventList none;
    measureEvents(none, trace);
    EXPECT_TRUE(none.isEmpty());
}

TEST_F(MeasuredEvents, AreUnknownWithoutATrace)
{
    EventList events {at(Event::SpanStart, 0), at(Event::Reflective, 2000)};
    measureEvents(events, Reflectogram());
    EXPECT_THAT(types(events), ElementsAre(Event::SpanStart, Event::SpanEnd));
    EXPECT_FALSE(Event::isKnown(events[1].loss));
    EXPECT_FALSE(Event::isKnown(events[1].reflectance));
}

TEST_F(MeasuredEvents, BeyondTheTraceDoNoHarm)
{
    EventList events {at(Event::Reflective, 200000), at(Event::Reflective, 1e8)};
    measureEvents(events, trace);
    EXPECT_EQ(events.size(), 2);
}

} // namespace
