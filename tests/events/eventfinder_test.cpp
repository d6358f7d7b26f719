#include "events/eventfinder.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <cmath>
#include <memory>
#include <utility>

namespace {

using testing_support::expectWarning;
using testing_support::FakePrograms;
using testing_support::logged;
using testing_support::messages;
using testing_support::TraceFiles;
using namespace testing_support;

/// Writes down what the finder emits, in order.
class FinderListener : public QObject
{
    Q_OBJECT

public:
    explicit FinderListener(EventFinder* finder)
    {
        connect(finder, SIGNAL(started()), SLOT(started()));
        connect(finder, SIGNAL(finished()), SLOT(finished()));
        connect(finder, SIGNAL(error()), SLOT(error()));
        connect(finder, SIGNAL(worksNow(bool)), SLOT(worksNow(bool)));
        connect(finder, SIGNAL(eventListReady(EventList)), SLOT(listReady(EventList)));
        connect(finder, SIGNAL(eventListReady(EventCoordList)), SLOT(listReady(EventCoordList)));
    }

    QStringList log;
    EventList events;
    EventCoordList coordinates;

public slots:

    void started() { log << "started"; }

    void finished() { log << "finished"; }

    void error() { log << "error"; }

    void worksNow(bool works) { log << (works ? "works" : "rests"); }

    void listReady(EventList list)
    {
        log << "events";
        events = list;
    }

    void listReady(EventCoordList list)
    {
        log << "coordinates";
        coordinates = list;
    }
};

class Finder : public testing::Test
{
protected:
    Finder()
        : finder(std::make_unique<EventFinder>())
        , listener(finder.get())
        , file(files.writeSnapshot("wfsnapshot.bin",
                                   TraceBuilder()
                                       .fibre(8_km)
                                       .connector(2_km, 0.5_dB, 12_dB)
                                       .splice(5_km, 0.3_dB)
                                       .behind(500)
                                       .noise(0.001_dB, 5)))
    {
        params.ior = 1.468;
    }

    void prints(const QString& output) const
    {
        programs.make("wfevfind", "printf '%b' '" + output + "'");
    }

    /// Looks for the events of a file and waits until the program is gone.
    void run(const QString& name)
    {
        const int before = listener.log.size(); // what an earlier run said is none of this one
        finder->run(name, params);
        ASSERT_TRUE(QTest::qWaitFor(
            [this, before] {
                const QStringList said = listener.log.mid(before);
                return said.contains("finished") || said.contains("error");
            },
            10000));
        QTest::qWait(20); // a crash has two words
    }

    void run() { run(file); }

    /// The line of an event at this distance.
    QString line(const QString& kind, double distance_m) const
    {
        const double sample = distance_m / (0.299792458 / (2.0 * params.ior) * 10.0);
        return QString("%1 = %2\\n").arg(kind).arg(std::lround(sample));
    }

    FakePrograms programs;
    TraceFiles files;
    std::unique_ptr<EventFinder> finder;
    FinderListener listener;
    QString file;
    WfMeasParams params;
};

TEST_F(Finder, RunsTheProgramOnTheTraceFile)
{
    const QString seen = programs.path("seen");
    programs.make("wfevfind", "printf '%s|' \"$@\" > " + seen);
    const QString name = files.writeSnapshot("a trace; of mine", TraceBuilder());
    run(name);
    QFile arguments(seen);
    ASSERT_TRUE(arguments.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString(arguments.readAll()), "-i|" + name + "|");
}

TEST_F(Finder, GoodRunEndsWithBothLists)
{
    prints(line("n", 5000.5) + line("r", 2000.5) + line("n", 8000.5));
    run();
    EXPECT_EQ(listener.log,
              QStringList({"started", "works", "finished", "rests", "events", "coordinates"}));
    ASSERT_EQ(listener.events.size(), 4);
    EXPECT_EQ(listener.events[0].type, Event::SpanStart);
    EXPECT_EQ(listener.events[1].type, Event::Reflective);
    EXPECT_EQ(listener.events[2].type, Event::NonReflective);
    EXPECT_EQ(listener.events[3].type, Event::SpanEnd);
    EXPECT_EQ(listener.events[1].width, 10.0); // 100 ns
    EXPECT_NEAR(listener.events[1].loss, 0.5, 0.03);
    EXPECT_NEAR(listener.events[2].loss, 0.3, 0.03);
    EXPECT_TRUE(Event::isKnown(listener.events[1].reflectance));
    EXPECT_EQ(listener.coordinates, EventCoordList({0.0, 2000.0, 5000.0, 8000.0}));
}

TEST_F(Finder, WithTheRealProgramTellsTheEventsOfTheFibre)
{
    QFile::link(WAVEFORM_BIN "/wfevfind", programs.path("wfevfind"));
    const TraceBuilder link = TraceBuilder()
                                  .fibre(8_km)
                                  .connector(2_km, 0.5_dB, 12_dB)
                                  .splice(5_km, 0.3_dB)
                                  .behind(1500)
                                  .noise(0.01_dB, 5)
                                  .noiseFloor(8_dB);
    run(files.writeSnapshot("measured.bin", link));
    EXPECT_EQ(listener.log,
              QStringList({"started", "works", "finished", "rests", "events", "coordinates"}));
    ASSERT_EQ(listener.events.size(), 4);
    EXPECT_EQ(listener.events[0].type, Event::SpanStart);
    EXPECT_EQ(listener.events[1].type, Event::Reflective);
    EXPECT_EQ(listener.events[2].type, Event::NonReflective);
    EXPECT_EQ(listener.events[3].type, Event::SpanEnd);
    const double places_m[] = {0.0, 2000.0, 5000.0, 8000.0};
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(listener.coordinates[i], places_m[i], 10.2) << "within a pulse";
    }
    EXPECT_NEAR(listener.events[1].loss, 0.5, 0.05);
    EXPECT_NEAR(listener.events[2].loss, 0.3, 0.05);
    EXPECT_TRUE(Event::isKnown(listener.events[1].reflectance));
}

TEST_F(Finder, WithTheRealProgramAFileThatIsNoTraceIsToldWithoutAList)
{
    QFile::link(WAVEFORM_BIN "/wfevfind", programs.path("wfevfind"));
    expectWarning("Event finder: Error! Process return code: 1");
    expectWarning("Error log \"wfevfind: ");
    run(files.write("text.bin", ByteSketch().text("no trace").done));
    EXPECT_EQ(listener.log, QStringList({"started", "works", "finished", "rests"}));
}

TEST_F(Finder, SaysThatItWorksBeforeTheProgramHasStarted)
{
    prints("");
    finder->run(file, params);
    EXPECT_EQ(listener.log, QStringList({"started", "works"}));
}

TEST_F(Finder, OutputWithoutLinesIsASpanStartAlone)
{
    prints("");
    run();
    ASSERT_EQ(listener.events.size(), 1);
    EXPECT_EQ(listener.events[0].type, Event::SpanStart);
    EXPECT_EQ(listener.coordinates, EventCoordList({0.0}));
}

TEST_F(Finder, TakesTheParametersOfTheRun)
{
    prints("r = 2000\\n");
    run();
    const double before = listener.events[1].coordinate;
    EXPECT_EQ(before, std::floor(20000 * 0.299792458 / (2.0 * 1.468)));
    listener.log.clear();
    params.ior = 1.5;
    run();
    EXPECT_EQ(listener.events[1].coordinate, std::floor(20000 * 0.299792458 / (2.0 * 1.5)));
}

TEST_F(Finder, EachRunStartsFromAnEmptyList)
{
    prints("r = 2000\\n");
    run();
    listener.log.clear();
    run();
    EXPECT_EQ(listener.events.size(), 2);
}

TEST_F(Finder, GarbageIsNoEvents)
{
    programs.make("wfevfind", "head -c 200000 /dev/urandom; printf '\\n'");
    run();
    EXPECT_TRUE(listener.log.endsWith("coordinates"));
    ASSERT_FALSE(listener.events.isEmpty());
    EXPECT_EQ(listener.events[0].type, Event::SpanStart);
}

TEST_F(Finder, ReturnCodeIsToldWithoutAList)
{
    programs.make("wfevfind", "printf 'r = 2000\\n'; exit 3");
    expectWarning("Event finder: Error! Process return code: 3");
    run();
    EXPECT_EQ(listener.log, QStringList({"started", "works", "finished", "rests"}));
    EXPECT_FALSE(logged("Error log"));
}

TEST_F(Finder, WhatAFailedProgramSaysGoesToTheLog)
{
    programs.make("wfevfind", "echo 'wfevfind: no such trace' >&2; exit 1");
    expectWarning("Event finder: Error! Process return code: 1");
    expectWarning("Error log \"wfevfind: no such trace");
    run();
    EXPECT_FALSE(listener.log.contains("events"));
}

TEST_F(Finder, WhatAGoodProgramSaysAsideDoesNot)
{
    programs.make("wfevfind", "echo 'by the way' >&2; printf 'r = 2000\\n'");
    run();
    EXPECT_EQ(listener.events.size(), 2);
    EXPECT_FALSE(logged("by the way"));
}

TEST_F(Finder, CrashIsToldTwice)
{
    programs.make("wfevfind", "echo 'it hurts' >&2; kill -SEGV $$");
    expectWarning("Event finder: Error! Process crashed.");
    expectWarning("Event finder: Error! Process crashed!");
    expectWarning("Error log \"it hurts");
    run();
    EXPECT_EQ(listener.log,
              QStringList({"started", "works", "error", "rests", "finished", "rests"}));
    EXPECT_FALSE(logged("return code"));
}

TEST_F(Finder, MissingProgramIsAnError)
{
    expectWarning("Event finder: Error! Process failed to start.");
    run();
    EXPECT_EQ(listener.log, QStringList({"started", "works", "error", "rests"}));
}

TEST_F(Finder, EachProcessErrorHasItsText)
{
    const std::pair<QProcess::ProcessError, const char*> texts[] = {
        {QProcess::FailedToStart, "Event finder: Error! Process failed to start."},
        {QProcess::Crashed, "Event finder: Error! Process crashed."},
        {QProcess::Timedout, "Event finder: Error! Wait operation timed out."},
        {QProcess::ReadError, "Event finder: Error! Process read error."},
        {QProcess::WriteError, "Event finder: Error! Process write error."},
        {QProcess::UnknownError, "Event finder: Error! Unknown error."},
    };
    for (const auto& [error, text] : texts) {
        expectWarning(text);
        ASSERT_TRUE(QMetaObject::invokeMethod(finder.get(), "onError",
                                              Q_ARG(QProcess::ProcessError, error)));
        EXPECT_TRUE(messages().endsWith(text));
    }
    EXPECT_EQ(listener.log.count("error"), 6);
    EXPECT_EQ(listener.log.count("rests"), 6);
}

TEST_F(Finder, StopEndsAProgramThatHangs)
{
    const QString alive = programs.path("alive");
    programs.make("wfevfind", "touch " + alive + "; exec sleep 600");
    finder->run(file, params);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(alive); }, 10000));
    // It ends by a signal, as one that crashed.
    expectWarning("Event finder: Error! Process crashed.");
    expectWarning("Event finder: Error! Process crashed!");
    finder->stop();
    EXPECT_EQ(listener.log,
              QStringList({"started", "works", "error", "rests", "finished", "rests"}));
    listener.log.clear();
    prints("r = 2000\\n");
    run();
    EXPECT_EQ(listener.events.size(), 2) << "it can be run again";
}

TEST_F(Finder, StopWithoutARunSaysThatItHasEnded)
{
    EXPECT_EQ(finder->stop(), 0);
    EXPECT_EQ(listener.log, QStringList({"finished", "rests"}));
    programs.make("wfevfind", "exit 3");
    expectWarning("Event finder: Error! Process return code: 3");
    run();
    EXPECT_EQ(finder->stop(), 3);
}

TEST_F(Finder, ThatGoesTakesItsProgramAlongInSilence)
{
    const QString alive = programs.path("alive");
    programs.make("wfevfind",
                  "echo $$ > " + alive + ".new; mv " + alive + ".new " + alive
                      + "; exec sleep 600");
    finder->run(file, params);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(alive); }, 10000));
    finder.reset();
    EXPECT_EQ(listener.log, QStringList({"started", "works"}));
    QFile pid(alive);
    ASSERT_TRUE(pid.open(QIODevice::ReadOnly));
    EXPECT_FALSE(QFile::exists("/proc/" + pid.readAll().trimmed()));
}

TEST_F(Finder, FileThatIsNotThereIsMeasuredAgainstNothing)
{
    prints("r = 2000\\n");
    run();
    listener.log.clear();
    run(files.path("missing"));
    // The header is still that of the run before, the trace is not.
    ASSERT_EQ(listener.events.size(), 2);
    EXPECT_FALSE(Event::isKnown(listener.events[1].loss));
    EXPECT_TRUE(logged("Can't open reflectogram file '"));
}

TEST_F(Finder, TraceFileWithoutTheHeaderHasASpanStartOnly)
{
    prints("r = 2000\\n");
    run(files.write("plain.sor", testing_support::SorSketch::plain()));
    ASSERT_EQ(listener.events.size(), 1);
    EXPECT_EQ(listener.events[0].width, 0.0);
}

TEST(NewFinder, HasReadNoHeaderAndSaysSoOnce)
{
    const EventFinder finder;
    EXPECT_EQ(messages().count("Can't open reflectogram file '"), 1);
    EXPECT_TRUE(logged("void wf_packet_header::initFrom(QString)"));
}

TEST(NewFinder, EmitsNothing)
{
    EventFinder finder;
    const QSignalSpy works(&finder, SIGNAL(worksNow(bool)));
    const QSignalSpy finished(&finder, SIGNAL(finished()));
    QCoreApplication::processEvents();
    EXPECT_TRUE(works.isEmpty() && finished.isEmpty());
}

TEST(EventCoordinates, AreThoseOfTheEventsInTheirOrder)
{
    EXPECT_EQ(eventCoordList({Event(Event::NonReflective, 700, 10), Event(Event::SpanStart, 0, 1)}),
              EventCoordList({700.0, 0.0}));
    EXPECT_TRUE(eventCoordList({}).isEmpty());
}

} // namespace

#include "eventfinder_test.moc"
