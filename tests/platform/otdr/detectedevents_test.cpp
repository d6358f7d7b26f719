#include "platform/otdr/core/constants.h"
#include "platform/otdr/detectedevents.h"
#include "tests/support/tracebuilder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

namespace {

using namespace testing_support;
using otdr::DetectedEvent;
using otdr::Detection;
using Kind = DetectedEvent::Kind;
using Evidence = DetectedEvent::Evidence;

/// A trace of the builder with 0 m at an index of its record.
TraceState stateOf(const TraceBuilder& builder, double zero = 0.0)
{
    const auto drawn = builder.build();
    const double interval_ns = drawn->axis().sampleInterval_ns;
    TraceState state;
    state.trace = std::make_shared<const otdr::Trace>(
        drawn->samples(), drawn->dbPerCount(), otdr::TraceAxis {interval_ns, -zero * interval_ns});
    state.pulse_ns = 100.0;
    state.backscatter_dB = -80.0;
    state.ior = otdr::kDefaultGroupIndex;
    return state;
}

EventList eventsOf(const TraceState& state)
{
    return eventListOf(detectionOf(state), state);
}

std::string typesOf(const EventList& events)
{
    std::string types;
    for (const Event& event : events) {
        types += static_cast<char>(event.type);
    }
    return types;
}

/// A splice, a connector and an end, well apart.
TraceBuilder link()
{
    return TraceBuilder()
        .fibre(12_km)
        .splice(4_km, 0.2_dB)
        .connector(8_km, 0.3_dB, 9_dB)
        .behind(3000)
        .noise(0.01_dB, 21)
        .noiseFloor(8_dB);
}

DetectedEvent found(Kind kind, double index)
{
    DetectedEvent event;
    event.kind = kind;
    event.evidence = Evidence::Peak;
    event.index = index;
    return event;
}

/// 4000 samples without noise, for detections written by hand.
TraceState handState(double zero = 0.0)
{
    return stateOf(TraceBuilder().fibre(4_km), zero);
}

TEST(DetectedEvents, TheSearchIsToldWhatTheTraceTells)
{
    TraceState state = stateOf(TraceBuilder().fibre(1_km));
    state.wavelength_nm = 1625;
    const otdr::Measurement told = measurementOf(state);
    EXPECT_EQ(told.pulse_ns, state.pulse_ns);
    EXPECT_EQ(told.metresPerNs, state.metresPerNs());
    EXPECT_EQ(told.backscatter_dB, state.backscatter_dB);
    EXPECT_EQ(told.wavelength_nm, 1625);
}

TEST(DetectedEvents, NothingIsFoundWithoutATrace)
{
    const TraceState nothing;
    EXPECT_TRUE(detectionOf(nothing).events.empty());
    Detection detection;
    detection.events = {found(Kind::Start, 0.0)};
    EXPECT_TRUE(eventListOf(detection, nothing).isEmpty());
}

TEST(DetectedEvents, ListBeginsAtTheStartAndHasTheFibreBetweenTheEvents)
{
    const EventList events = eventsOf(stateOf(link()));
    EXPECT_EQ(typesOf(events), "sfnfrfe");
    EXPECT_TRUE(std::is_sorted(events.begin(), events.end(), [](const Event& a, const Event& b) {
        return a.coordinate < b.coordinate;
    }));
}

TEST(DetectedEvents, LossesBelowTheThresholdOfTheFileAreNotListed)
{
    TraceState state = stateOf(link());
    auto file = std::make_shared<otdr::sor::File>();
    state.file = file;
    EXPECT_EQ(typesOf(eventsOf(state)), "sfnfrfe");
    file->fxd.lossThreshold = 250;
    EXPECT_EQ(typesOf(eventsOf(state)), "sfrfe");
}

TEST(DetectedEvents, EventStandsAtItsSampleAndAtItsDistance)
{
    const TraceBuilder builder = link();
    const TraceState state = stateOf(builder);
    const EventList events = eventsOf(state);
    ASSERT_EQ(typesOf(events), "sfnfrfe");
    const Event& connector = events[4];
    EXPECT_NEAR(connector.coordinate, 8000.0, 2.0);
    EXPECT_NEAR(static_cast<double>(connector.position), builder.indexOf(8_km), 2.0);
    EXPECT_NEAR(connector.width, 100.0 * state.metresPerNs(), 1e-9);
    EXPECT_NEAR(connector.loss, 0.3, 0.01);
    EXPECT_NEAR(connector.reflIn - connector.reflOut, 0.3, 0.03);
    EXPECT_TRUE(Event::isKnown(connector.reflectance));
    EXPECT_FALSE(Event::isKnown(events[2].reflectance)) << "a splice reflects nothing";
}

TEST(DetectedEvents, EventTellsTheFibreThatItsLossWasMeasuredBy)
{
    const TraceState state = stateOf(link());
    const Detection detection = detectionOf(state);
    const EventList events = eventListOf(detection, state);
    ASSERT_EQ(typesOf(events), "sfnfrfe");
    const auto coordinateOf = [&](double index) {
        return state.trace->distanceAt(index, state.metresPerNs());
    };
    const DetectedEvent& splice = detection.events[1];
    EXPECT_NEAR(events[2].beforeFrom, coordinateOf(splice.before.first()), 1e-6);
    EXPECT_NEAR(events[2].behindFrom, coordinateOf(splice.behind.first()), 1e-6);
    EXPECT_NEAR(events[2].behindTo, coordinateOf(splice.behind.last()), 1e-6);
    EXPECT_FALSE(Event::isKnown(events.first().beforeFrom));
    EXPECT_FALSE(Event::isKnown(events.last().behindFrom));
}

TEST(DetectedEvents, SectionReachesFromEventToEvent)
{
    const TraceState state = stateOf(link());
    const Detection detection = detectionOf(state);
    const EventList events = eventListOf(detection, state);
    ASSERT_EQ(typesOf(events), "sfnfrfe");
    double loss = 0.0;
    for (int i = 0; i < events.size(); ++i) {
        if (events[i].type != Event::Fiber) {
            loss += i > 0 && i + 1 < events.size() ? events[i].loss : 0.0;
            continue;
        }
        EXPECT_EQ(events[i].coordinate, events[i - 1].coordinate);
        EXPECT_EQ(events[i].position, events[i - 1].position);
        EXPECT_NEAR(events[i].length, events[i + 1].coordinate - events[i].coordinate, 1e-9);
        EXPECT_NEAR(events[i].attenuation(), 0.2, 0.005);
        EXPECT_TRUE(Event::isKnown(events[i].orl));
        EXPECT_NEAR(events[i + 1].attenuationBefore, 0.2, 0.005);
        loss += events[i].loss;
    }
    EXPECT_NEAR(loss, detection.spanLoss_dB, 1e-9) << "sections and events make up the span";
    EXPECT_FALSE(Event::isKnown(events[0].attenuationBefore));
}

TEST(DetectedEvents, FibreBeyondTheRecordHasNoEnd)
{
    const TraceBuilder builder =
        TraceBuilder().fibre(12_km).splice(4_km, 0.2_dB).noise(0.01_dB, 21);
    const EventList events = eventsOf(stateOf(builder));
    EXPECT_THAT(typesOf(events), testing::StartsWith("sfn"));
    EXPECT_THAT(typesOf(events), testing::Not(testing::HasSubstr("e")));
}

TEST(DetectedEvents, BehindALaunchFibreZeroIsInTheMiddle)
{
    const TraceBuilder builder = link().connector(1_km, 0.2_dB, 8_dB);
    const double zero = builder.indexOf(1_km);
    const EventList events = eventsOf(stateOf(builder, zero));
    // The port, the launch fibre, then the span: its first connector is its start.
    ASSERT_THAT(typesOf(events), testing::EndsWith("sfnfrfe"));
    const auto start = std::find_if(events.begin(), events.end(), [](const Event& event) {
        return event.type == Event::SpanStart;
    });
    EXPECT_EQ(std::count_if(events.begin(), events.end(),
                            [](const Event& event) { return event.type == Event::SpanStart; }),
              1);
    EXPECT_NEAR(start->coordinate, 0.0, 2.0);
    EXPECT_NEAR(static_cast<double>(start->position), 0.0, 2.0);
    EXPECT_NEAR(start->loss, 0.2, 0.02);
    EXPECT_NEAR(events.last().coordinate, 11000.0, 5.0);
    for (auto event = events.begin(); event != start; ++event) {
        EXPECT_LT(event->coordinate, 0.0);
    }
}

TEST(DetectedEvents, ZeroWithinAFibreIsAStartToo)
{
    const TraceBuilder builder = link();
    const EventList events = eventsOf(stateOf(builder, builder.indexOf(6_km)));
    EXPECT_THAT(typesOf(events), testing::HasSubstr("nfsfrfe"));
    const Event& splice = events[static_cast<int>(typesOf(events).find('n'))];
    EXPECT_NEAR(splice.coordinate, -2000.0, 3.0);
    EXPECT_LT(splice.position, 0);
}

TEST(DetectedEvents, KindsAreThoseOfTheEventTable)
{
    Detection detection;
    detection.events = {found(Kind::Start, 0.0), found(Kind::Reflective, 500.0),
                        found(Kind::NonReflective, 1000.0), found(Kind::Gain, 1500.0),
                        found(Kind::End, 2000.0)};
    EXPECT_EQ(typesOf(eventListOf(detection, handState())), "srnpe");
}

TEST(DetectedEvents, EchoesAreNotListed)
{
    Detection detection;
    detection.events = {found(Kind::Start, 0.0), found(Kind::Reflective, 500.0),
                        found(Kind::Reflective, 1000.0), found(Kind::End, 2000.0)};
    detection.events[2].echo = true;
    detection.sections = {{0.0, 500.0, 0.1, 0.21}, {500.0, 2000.0, 0.3, 0.19}};
    const EventList events = eventListOf(detection, handState());
    EXPECT_EQ(typesOf(events), "sfrfe");
    EXPECT_EQ(events.last().attenuationBefore, events[events.size() - 2].attenuation());
}

TEST(DetectedEvents, EventTellsTheAttenuationOfTheFibreThatIsListedBeforeIt)
{
    Detection detection;
    detection.events = {found(Kind::Start, 0.0), found(Kind::Reflective, 500.0),
                        found(Kind::End, 540.0)};
    // The slope of a short piece in noise and tails is no loss of fibre.
    detection.sections = {{0.0, 500.0, 0.1, 0.21}, {500.0, 540.0, 0.02, 3.35}};
    const EventList events = eventListOf(detection, handState());
    ASSERT_EQ(typesOf(events), "sfrfe");
    for (const int fibre : {1, 3}) {
        EXPECT_DOUBLE_EQ(events[fibre + 1].attenuationBefore,
                         events[fibre].loss * 1000.0 / events[fibre].length);
    }
    EXPECT_EQ(events[3].loss, 0.02);
}

TEST(DetectedEvents, FibreWhoseEndIsHiddenLosesByItsSlope)
{
    Detection detection;
    detection.events = {found(Kind::Start, 0.0), found(Kind::End, 2000.0)};
    detection.sections = {{0.0, 2000.0, DetectedEvent::kUnknown, 0.2}};
    const EventList events = eventListOf(detection, handState());
    ASSERT_EQ(typesOf(events), "sfe");
    EXPECT_NEAR(events[1].loss, 0.2 * events[1].length / 1000.0, 1e-12);
    EXPECT_NEAR(events[2].attenuationBefore, 0.2, 1e-12);
    detection.sections = {{0.0, 2000.0}};
    EXPECT_FALSE(Event::isKnown(eventListOf(detection, handState())[2].attenuationBefore));
}

TEST(DetectedEvents, RangeThatEndsIsNoEndButItsFibreIsListed)
{
    Detection detection;
    detection.events = {found(Kind::Start, 0.0), found(Kind::End, 2000.0)};
    detection.events[1].evidence = Evidence::Range;
    detection.sections = {{0.0, 2000.0, 0.4, 0.2}};
    const EventList events = eventListOf(detection, handState());
    EXPECT_EQ(typesOf(events), "sf");
    EXPECT_EQ(events[1].loss, 0.4);
}

TEST(DetectedEvents, EventsOfOneDeadZoneHaveNoFibreBetweenThem)
{
    Detection detection;
    detection.events = {found(Kind::Start, 0.0), found(Kind::Reflective, 500.0),
                        found(Kind::Reflective, 512.0), found(Kind::End, 2000.0)};
    detection.events[1].loss_dB = 0.3; // of both
    detection.sections = {{0.0, 500.0, 0.1, 0.21}, {500.0, 2000.0, 0.3, 0.19}};
    const EventList events = eventListOf(detection, handState());
    std::string types = typesOf(events);
    EXPECT_EQ(types.size(), 6U);
    EXPECT_EQ(std::count(types.begin(), types.end(), 'f'), 2);
    types.erase(std::remove(types.begin(), types.end(), 'f'), types.end());
    EXPECT_EQ(types, "srre");
    EXPECT_EQ(events.last().attenuationBefore, events[events.size() - 2].attenuation());
}

TEST(DetectedEvents, WhatWasNotMeasuredStaysUnknownAndALowerBoundSaysSo)
{
    Detection detection;
    detection.events = {found(Kind::End, 2000.0)};
    detection.events[0].reflectance_dB = -30.0;
    detection.events[0].hidden_dB = 4.0;
    detection.events[0].before = {1000.0, 40.0, -0.001, 0.0, 500};
    const Event end = eventListOf(detection, handState()).first();
    EXPECT_TRUE(end.saturated);
    EXPECT_EQ(end.reflectance, -30.0);
    EXPECT_DOUBLE_EQ(end.reflIn, 39.0);
    for (const double unknown :
         {end.loss, end.reflOut, end.orl, end.length, end.attenuationBefore}) {
        EXPECT_FALSE(Event::isKnown(unknown));
    }
}

TEST(DetectedEvents, PositionsAreRoundedToTheNextSample)
{
    Detection detection;
    detection.events = {found(Kind::Reflective, 1000.4), found(Kind::Reflective, 2000.6)};
    const TraceState state = handState(500.0);
    const EventList events = eventListOf(detection, state);
    EXPECT_EQ(events[0].position, 500);
    EXPECT_EQ(events[1].position, 1501);
    EXPECT_NEAR(events[1].coordinate, 1501.0 * 10.0 * state.metresPerNs(), 1e-9)
        << "a table tells the sample; a file is to tell the same";
}

} // namespace
