#include "platform/otdr/detectedevents.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/tracefigures.h"
#include "tests/support/tracebuilder.h"
#include "tests/support/tracefiles.h"
#include "tests/support/uniformreturnloss.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using testing_support::TraceBuilder;
using testing_support::TraceFiles;
using namespace testing_support; // the units of the builder

/// A trace with what is found on it.
Reflectogram searched(const TraceFiles& files, const TraceBuilder& builder)
{
    Reflectogram refl = files.measured(builder);
    refl.setEventList(eventListOf(detectionOf(*refl.state()), *refl.state()));
    return refl;
}

/// Losses of fibre and events as a reader of the table would add them up.
double sumOf(const EventList& events)
{
    double sum = 0.0;
    for (const Event& event : events) {
        const bool isEnd = event.type == Event::SpanStart || event.type == Event::SpanEnd;
        sum += isEnd || !Event::isKnown(event.loss) ? 0.0 : event.loss;
    }
    return sum;
}

/// An event at a place of a link that was measured.
Event eventAt(const Reflectogram& refl, const TraceBuilder& link, Length at,
              Event::Type type = Event::NonReflective)
{
    Event event(type, 0, 10);
    event.position = std::lround(link.indexOf(at));
    event.coordinate = refl.smpl2dist(static_cast<double>(event.position));
    return event;
}

TEST(TraceFigures, LossesOfTheListAddUpToThatOfTheSpan)
{
    const TraceFiles files;
    for (const Length first : {Length {120.0}, Length {400.0}, Length {2000.0}}) {
        const Reflectogram refl = searched(files,
                                           TraceBuilder()
                                               .fibre(6_km)
                                               .connector(first, 0.4_dB, 8_dB)
                                               .splice(3_km, 0.2_dB)
                                               .connector(5_km, 0.3_dB, 6_dB)
                                               .behind(3000)
                                               .noise(0.02_dB, 3)
                                               .noiseFloor(8_dB));
        ASSERT_GE(refl.getEventList().size(), 7);
        const KeyEventsBlock figures = keyFigures(*refl.state());
        EXPECT_NEAR(figures.totalLoss, sumOf(refl.getEventList()), 0.001) << first.m;
        EXPECT_NEAR(figures.totalLoss, 6 * 0.2 + 0.9, 0.05) << first.m;
    }
}

TEST(TraceFigures, EventThatHidesTheLastFibreCountsInTheLossOfTheSpan)
{
    const TraceFiles files;
    const TraceBuilder builder =
        TraceBuilder().fibre(6_km).splice(5_km, 0.8_dB).reflectingEnd(9_dB).behind(3000);
    Reflectogram refl = files.measured(builder);
    Event start = eventAt(refl, builder, 0_km, Event::SpanStart);
    start.reflOut = builder.trueLevel_dB(0_km);
    Event hidden = eventAt(refl, builder, 5_km, Event::NonReflective);
    hidden.reflIn = start.reflOut - 5 * 0.2;
    Event fibre = eventAt(refl, builder, 5_km, Event::Fiber);
    fibre.length = refl.smpl2dist(builder.indexOf(1_km));
    fibre.loss = 0.2;
    Event end = eventAt(refl, builder, 6_km, Event::SpanEnd);
    end.reflIn = hidden.reflIn - fibre.loss; // on the line before the hidden one
    refl.setEventList({start, hidden, fibre, end});
    EXPECT_NEAR(keyFigures(*refl.state()).totalLoss, 6 * 0.2 + 0.8, 0.02);
    hidden.reflOut = hidden.reflIn - 0.83;
    end.reflIn = hidden.reflOut - fibre.loss;
    refl.setEventList({start, hidden, fibre, end});
    EXPECT_NEAR(keyFigures(*refl.state()).totalLoss, 6 * 0.2 + 0.83, 1e-9)
        << "what was seen on both sides of it is told as it was measured";
}

TEST(TraceFigures, NothingIsToldOfASpanThatShowsNoFibre)
{
    const TraceFiles files;
    Reflectogram refl = files.measured(TraceBuilder().fibre(6_km));
    for (const long position : {0, 2}) { // nothing at the port, and an end within a pulse of it
        Event end(Event::SpanEnd, position, 10);
        end.position = position;
        refl.setEventList({Event(Event::SpanStart, 0, 10), end});
        const KeyEventsBlock figures = keyFigures(*refl.state());
        EXPECT_TRUE(std::isnan(figures.totalLoss)) << figures.totalLoss;
        EXPECT_TRUE(std::isnan(figures.orl)) << figures.orl;
    }
}

/// The list of a measured trace without what its search told of the lines beside the events, as a
/// list that comes from elsewhere.
EventList withoutLines(EventList events)
{
    for (Event& event : events) {
        event.reflIn = Event::kUnknown;
        event.reflOut = Event::kUnknown;
        event.beforeFrom = Event::kUnknown;
        event.behindFrom = Event::kUnknown;
        event.behindTo = Event::kUnknown;
    }
    return events;
}

/// A pulse of 10 us is a kilometre long: what half of it loses, there and back, is 0.2 dB.
TEST(TraceFigures, ReturnLossOfALongPulseIsThatOfTheSearch)
{
    const TraceFiles files;
    const Reflectogram refl = files.measured(
        TraceBuilder().fibre(60_km).pulse(10000).behind(3000).noise(0.005_dB, 4).noiseFloor(8_dB));
    TraceState state = *refl.state();
    state.pulse_ns = 10000.0;
    const otdr::Detection found = detectionOf(state);
    ASSERT_TRUE(std::isfinite(found.returnLoss_dB));
    state.events = eventListOf(found, state);
    EXPECT_NEAR(keyFigures(state).orl, found.returnLoss_dB, 0.02);
    state.events = withoutLines(state.events);
    EXPECT_NEAR(keyFigures(state).orl, found.returnLoss_dB, 0.02);
}

/// A link behind a launch fibre, with what is found on it.
TraceState behindLaunchFibre(const TraceFiles& files, Decibels atStart)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(8_km)
                                     .pulse(500)
                                     .behind(3000)
                                     .noise(0.004_dB, 4)
                                     .noiseFloor(8_dB)
                                     .connector(2_km, atStart, 6_dB)
                                     .splice(5_km, 0.2_dB);
    TraceState state = *files.measured(builder).state();
    otdr::TraceAxis axis = state.trace->axis();
    axis.firstSample_ns = -builder.indexOf(2_km) * axis.sampleInterval_ns;
    state.trace = std::make_shared<const otdr::Trace>(state.trace->samples(),
                                                      state.trace->dbPerCount(), axis);
    state.pulse_ns = 500.0;
    state.events = eventListOf(detectionOf(state), state);
    return state;
}

TEST(TraceFigures, WhatIsLostAtTheStartBehindALaunchFibreIsOfTheSpan)
{
    const TraceFiles files;
    for (const Decibels atStart : {0.5_dB, 0.05_dB}) {
        TraceState state = behindLaunchFibre(files, atStart);
        const otdr::Detection found = detectionOf(state);
        ASSERT_NEAR(found.spanLoss_dB, 6 * 0.2 + 0.2 + atStart.dB, 0.02);
        for (const double tolerance_dB : {0.01, 0.05}) { // with its lines, and without
            const KeyEventsBlock figures = keyFigures(state);
            EXPECT_NEAR(figures.totalLoss, found.spanLoss_dB, tolerance_dB);
            EXPECT_NEAR(figures.orl, found.returnLoss_dB, tolerance_dB);
            state.events = withoutLines(state.events);
        }
    }
}

TEST(TraceFigures, ReturnLossOfASectionIsThatOfTheFibreBetweenItsEvents)
{
    const TraceFiles files;
    const Reflectogram refl = searched(files,
                                       TraceBuilder()
                                           .fibre(12_km)
                                           .connector(4_km, 0.3_dB, 14_dB)
                                           .splice(8_km, 0.2_dB)
                                           .reflectingEnd(15_dB)
                                           .behind(3000)
                                           .noise(0.002_dB, 5)
                                           .noiseFloor(8_dB));
    const EventList events = refl.getEventList();
    ASSERT_EQ(events.size(), 7);
    const TraceState& state = *refl.state();
    for (int i = 1; i < events.size(); i += 2) {
        const double expected_dB =
            uniformReturnLoss_dB(events[i].length, 0.2, state.backscatter_dB, state.metresPerNs());
        EXPECT_NEAR(sectionReturnLoss_dB(state, events[i - 1], events[i + 1]), expected_dB, 0.05);
        EXPECT_NEAR(events[i].orl, expected_dB, 0.05);
    }
}

/// Places of other instruments are off by up to a pulse: what reflects there is none of the fibre.
TEST(TraceFigures, ReturnLossOfASectionHoldsNoReflectionThatStandsNextToItsEnds)
{
    const TraceFiles files;
    const TraceBuilder builder =
        TraceBuilder().fibre(12_km).reflection(4_km, 20_dB).reflection(8_km, 20_dB); // 10 m a pulse
    Reflectogram refl = files.measured(builder);
    for (const double off_m : {-8.0, 0.0, 8.0}) {
        const Event from = eventAt(refl, builder, Length {4000.0 + off_m});
        const Event to = eventAt(refl, builder, Length {8000.0 + off_m});
        refl.setEventList({from, to});
        const TraceState& state = *refl.state();
        const double length_m = to.coordinate - from.coordinate;
        EXPECT_NEAR(sectionReturnLoss_dB(state, from, to),
                    uniformReturnLoss_dB(length_m, 0.2, state.backscatter_dB, state.metresPerNs()),
                    0.02)
            << off_m;
    }
}

/// What lies before it is another section: a line over both would not be that of its fibre.
TEST(TraceFigures, ReturnLossOfAShortSectionIsThatOfItsOwnFibre)
{
    const TraceFiles files;
    const TraceBuilder builder = TraceBuilder().fibre(12_km).splice(4_km, 6_dB);
    const Reflectogram refl = files.measured(builder);
    const TraceState& state = *refl.state();
    const Event from = eventAt(refl, builder, 4_km);
    const Event to = eventAt(refl, builder, 4060_m);
    const double length_m = to.coordinate - from.coordinate;
    EXPECT_NEAR(sectionReturnLoss_dB(state, from, to),
                uniformReturnLoss_dB(length_m, 0.2, state.backscatter_dB, state.metresPerNs()),
                0.05);
}

TEST(TraceFigures, ReturnLossOfASectionThatNoFibreShowsOfIsUnknown)
{
    const TraceFiles files;
    const TraceBuilder builder =
        TraceBuilder().fibre(6_km).behind(3000).noise(0.01_dB, 6).noiseFloor(8_dB);
    const Reflectogram refl = files.measured(builder);
    const auto at = [&](Length place) { return eventAt(refl, builder, place); };
    const TraceState& state = *refl.state();
    EXPECT_TRUE(std::isfinite(sectionReturnLoss_dB(state, at(1_km), at(2_km))));
    EXPECT_TRUE(std::isnan(sectionReturnLoss_dB(state, at(1000_m), at(1012_m))));
    EXPECT_NEAR(sectionReturnLoss_dB(state, at(1000_m), at(1012_m), 0.5),
                uniformReturnLoss_dB(at(12_m).coordinate - at(0_m).coordinate, 0.5 / 0.012,
                                     state.backscatter_dB, state.metresPerNs()),
                0.2)
        << "by what the file tells";
    EXPECT_TRUE(std::isnan(sectionReturnLoss_dB(state, at(6500_m), at(7500_m)))) << "noise";
    EXPECT_TRUE(std::isnan(sectionReturnLoss_dB(state, at(50_km), at(60_km)))) << "beyond";
    EXPECT_TRUE(std::isnan(sectionReturnLoss_dB(state, at(2_km), at(1_km))));
    TraceState bright = state;
    bright.backscatter_dB = 0.0; // more than goes in
    EXPECT_TRUE(std::isnan(sectionReturnLoss_dB(bright, at(1_km), at(2_km))));
}

} // namespace
