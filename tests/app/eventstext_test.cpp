#include "app/eventstext.h"
#include "tests/support/tracefiles.h"

#include <QStringList>

#include <gmock/gmock.h>

namespace {

using testing_support::TraceFiles;

Event eventAt(Event::Type type, long position, double loss, double reflectance)
{
    Event event(type, 0, 10);
    event.position = position;
    event.loss = loss;
    event.reflectance = reflectance;
    return event;
}

/// The words of a line.
QStringList words(const QString& line)
{
    return line.simplified().split(' ');
}

class EventsText : public testing::Test
{
protected:
    QStringList linesOf(const EventList& events)
    {
        refl.setEventList(events);
        return eventsText(refl).split('\n', Qt::SkipEmptyParts);
    }

    TraceFiles files;
    Reflectogram refl = files.plain("link.sor");
};

TEST_F(EventsText, SaysWhichTraceItIsAndItsFigures)
{
    const QString title = linesOf({}).first();
    EXPECT_TRUE(title.startsWith("link.sor: ")) << qPrintable(title);
    EXPECT_TRUE(title.contains(refl.paramsToString()));
    EXPECT_TRUE(title.contains("total loss 3.12 dB, ORL 32.50 dB")) << qPrintable(title);
}

TEST_F(EventsText, EventsAreNumberedAndSectionsLeftOut)
{
    const QStringList lines = linesOf(
        {eventAt(Event::SpanStart, 0, 0.0, -45.0), eventAt(Event::Fiber, 0, 0.5, 0.0),
         eventAt(Event::NonReflective, 1000, 0.25, -60.0),
         eventAt(Event::Reflective, 2000, 0.5, -51.25), eventAt(Event::SpanEnd, 3000, 9.0, -14.7)});
    ASSERT_EQ(lines.size(), 6);
    EXPECT_EQ(words(lines[2]).mid(0, 3), QStringList({"1", "start", "0.00"}));
    EXPECT_EQ(words(lines[3]).mid(3), QStringList({"0.25", "-", "-"}));
    EXPECT_EQ(words(lines[4]).mid(0, 2), QStringList({"3", "reflective"}));
    EXPECT_EQ(words(lines[4]).mid(3), QStringList({"0.50", "-51.25", "-"}));
    EXPECT_EQ(words(lines[5]).mid(3), QStringList({"-", "-14.70", "-"}));
}

TEST_F(EventsText, LossOfExactlyZeroIsADashAsInTheTable)
{
    const QStringList lines = linesOf({eventAt(Event::Reflective, 2000, 0.0, -51.25)});
    EXPECT_EQ(words(lines.last()).mid(3), QStringList({"-", "-51.25", "-"}));
}

TEST_F(EventsText, ColumnsStandBelowEachOther)
{
    const QStringList lines = linesOf({eventAt(Event::Reflective, 10, 0.5, -5.0),
                                       eventAt(Event::NonReflective, 2'000'000, -12.25, 0.0)});
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[1].size(), lines[2].size());
    EXPECT_EQ(lines[2].size(), lines[3].size());
    const int lossEnd = lines[1].indexOf("Loss dB") + 7;
    EXPECT_EQ(lines[2].mid(lossEnd - 4, 4), "0.50");
    EXPECT_EQ(lines[3].mid(lossEnd - 6, 6), "-12.25");
}

TEST_F(EventsText, TraceWithoutEventsSaysSo)
{
    EXPECT_EQ(linesOf({}).last().trimmed(), "no events");
    EXPECT_EQ(linesOf({eventAt(Event::Fiber, 0, 0.5, 0.0)}).last().trimmed(), "no events");
}

} // namespace
