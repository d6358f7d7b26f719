#include "platform/otdr/event.h"
#include "platform/otdr/otdr.h"
#include "platform/otdr/reflectogram.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace {

Event everything()
{
    Event event(Event::Reflective, 1234, 10);
    event.position = 2467;
    event.coordinate = 1234.567890123;
    event.loss = -0.123456789;
    event.reflIn = 33.25;
    event.reflOut = 33.37;
    event.reflectance = -52.1;
    event.orl = 31.7;
    event.length = 512.0;
    event.attenuationBefore = 0.195;
    event.beforeFrom = 1000.5;
    event.behindFrom = 1250.25;
    event.behindTo = 2000.125;
    event.saturated = true;
    return event;
}

TEST(Event, IsMadeFromACoordinateAndAWidthInMetres)
{
    const Event event(Event::NonReflective, 150, 20);
    EXPECT_EQ(event.type, Event::NonReflective);
    EXPECT_EQ(event.coordinate, 150.0);
    EXPECT_EQ(event.width, 20.0);
    EXPECT_FALSE(Event::isKnown(event.loss));
    EXPECT_FALSE(Event::isKnown(event.reflectance));
}

TEST(Event, TextKeepsEveryField)
{
    EXPECT_EQ(OTDR::createEventFromString(everything().toString(), Reflectogram()), everything());
}

TEST(Event, TextKeepsUnknownValuesUnknown)
{
    Event event(Event::SpanEnd, 5000, 10);
    event.position = 9999;
    const Event read = OTDR::createEventFromString(event.toString(), Reflectogram());
    EXPECT_EQ(read, event);
    EXPECT_FALSE(Event::isKnown(read.loss));
}

TEST(Event, TextIsOneLineOfWordsWithoutTheMessageSeparator)
{
    const QString text = everything().toString();
    EXPECT_EQ(text, text.simplified());
    EXPECT_FALSE(text.contains(';'));
}

TEST(Event, DamagedTextGivesAnEventWithUnknownValues)
{
    for (const char* text : {"", "x", "reflective position 3", "z position 4", "r position",
                             "r position x loss nan reflectance inf length 1e999"}) {
        const Event event = OTDR::createEventFromString(text, Reflectogram());
        EXPECT_EQ(event.position, 0) << text;
        EXPECT_FALSE(Event::isKnown(event.loss)) << text;
        EXPECT_FALSE(Event::isKnown(event.length)) << text;
    }
}

TEST(Event, EqualNeedsTheSamePositionAndTreatsUnknownAsEqual)
{
    Event a(Event::Reflective, 100, 10);
    Event b = a;
    EXPECT_EQ(a, b);
    b.position = 1;
    EXPECT_NE(a, b);
    b = a;
    b.loss = 0.1;
    EXPECT_NE(a, b);
}

TEST(Event, OrderIsThatAlongTheFibreWithStartFirstAndEndLast)
{
    EventList list {Event(Event::SpanEnd, 100, 10), Event(Event::Reflective, 100, 10),
                    Event(Event::NonReflective, 50, 10), Event(Event::Reflective, 0, 10),
                    Event(Event::SpanStart, 0, 10)};
    std::sort(list.begin(), list.end());
    QString kinds;
    for (const Event& event : list) {
        kinds += QLatin1Char(event.type);
    }
    EXPECT_EQ(kinds, "srnre");
}

TEST(Event, AttenuationOfASectionIsItsLossPerKilometre)
{
    Event section;
    section.loss = 0.7;
    section.length = 2000.0;
    EXPECT_DOUBLE_EQ(section.attenuation(), 0.35);
    section.length = 0.0;
    EXPECT_TRUE(std::isnan(section.attenuation()));
    section.length = Event::kUnknown;
    EXPECT_TRUE(std::isnan(section.attenuation()));
}

} // namespace
