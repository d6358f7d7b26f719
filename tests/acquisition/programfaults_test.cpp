// An acquisition program that fails in every way: the run ends once, the reason is told, the next
// run works.

#include "platform/otdr/event.h"
#include "tests/acquisition/faultyrun.h"

#include <QFile>

#include <csignal>

namespace {

using namespace testing_support; // the fixture, doubles, builder and units

class FaultyProgram : public FaultyRun
{
protected:
    /// A start that fails; what the model says of it.
    QString failureOfStart()
    {
        started->clear();
        stopped->clear();
        expectCrashLogged();
        expectWarning("int OtdrMeasController::start()");
        expectWarning("virtual int Waveform::Model::start(unsigned int) can not start");
        EXPECT_EQ(model->start(0), -1);
        expectIdle();
        return model->failure();
    }

    /// Whether the process that wrote its number into this file is there.
    static bool lives(const QString& numberFile)
    {
        QFile file(numberFile);
        return file.open(QIODevice::ReadOnly) && ::kill(file.readAll().trimmed().toInt(), 0) == 0;
    }
};

TEST_F(FaultyProgram, MissingOneIsNamed)
{
    EXPECT_EQ(failureOfStart(),
              "The acquisition program " + programs.path("wfgather") + " could not be started.");
    expectGoodRun();
}

TEST_F(FaultyProgram, OneThatMayNotBeExecutedIsNamed)
{
    programs.make("wfgather", "printf '1 G {;'");
    QFile::setPermissions(programs.path("wfgather"), QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_TRUE(failureOfStart().contains(programs.path("wfgather")));
    expectGoodRun();
}

TEST_F(FaultyProgram, DirectoryInItsPlaceIsNamed)
{
    ASSERT_TRUE(QDir().mkdir(programs.path("wfgather")));
    EXPECT_TRUE(failureOfStart().contains(programs.path("wfgather")));
    ASSERT_TRUE(QDir().rmdir(programs.path("wfgather")));
    expectGoodRun();
}

TEST_F(FaultyProgram, FailureAtOnceIsToldInItsOwnWords)
{
    EXPECT_EQ(failureOf("echo 'looking' >&2; echo 'wfgather: no light' >&2; exit 3"),
              "The acquisition program failed (code 3): wfgather: no light");
    EXPECT_EQ(failureOf("exit 3"), "The acquisition program failed (code 3).");
    expectGoodRun();
}

TEST_F(FaultyProgram, FailureAfterAGoodStartIsTold)
{
    EXPECT_EQ(failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + snapshot()
                        + "printf '3 M * RT 14 ET 1;'; sleep 0.1; exit 4"),
              "The acquisition program failed (code 4).");
    EXPECT_EQ(measured->size(), 1) << "what was measured before stays";
    expectGoodRun();
}

TEST_F(FaultyProgram, FailureIsKnownWhenTheEndIsAnnounced)
{
    QString known;
    QObject::connect(model.get(), qOverload<MeasModel*>(&MeasModel::stopped),
                     [&] { known = model->failure(); });
    failureOf("printf '1 G {;'; sleep 0.1; exit 4");
    EXPECT_EQ(known, "The acquisition program failed (code 4).");
}

TEST_F(FaultyProgram, CodeAfterTheLastMessageIsNoFailure)
{
    EXPECT_EQ(failureOf("printf '1 G {;2 G };'; exit 5"), "");
}

TEST_F(FaultyProgram, EndWithoutTheLastMessageIsTold)
{
    const QString told = "The acquisition program ended before the measurement was complete.";
    EXPECT_EQ(failureOf("exit 0"), told);
    EXPECT_EQ(failureOf("printf '1 G {;'; sleep 0.1"), told);
    EXPECT_EQ(
        failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + snapshot() + "printf '3 M };'"),
        told);
    expectGoodRun();
}

TEST_F(FaultyProgram, TraceWithoutItsEndIsTold)
{
    EXPECT_EQ(
        failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + snapshot() + "printf '7 G };'"),
        "The acquisition program ended before the measurement was complete.");
    EXPECT_EQ(failureOf("printf '1 G {;7 G };'"), "") << "the trace of the run before";
    expectGoodRun();
}

TEST_F(FaultyProgram, OneThatIsKilledInTheMiddleIsTold)
{
    expectCrashLogged();
    EXPECT_EQ(failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + snapshot()
                        + "echo 'no memory' >&2; kill -SEGV $$"),
              "The acquisition program crashed: no memory");
    expectGoodRun();
}

TEST_F(FaultyProgram, OneThatSaysNothingIsEnded)
{
    patience().setSilenceLimit(300);
    for (const char* before : {"", "printf '1 G {;';", "printf '1 G {;2 A {;3 A };';"}) {
        expectCrashLogged();
        EXPECT_EQ(failureOf(QString(before) + "exec sleep 60"),
                  "The acquisition program did not answer any more and was ended.");
    }
    expectGoodRun();
}

TEST_F(FaultyProgram, OneThatSaysNothingAndDoesNotObeyIsKilled)
{
    patience().setSilenceLimit(300);
    expectCrashLogged();
    EXPECT_EQ(failureOf("trap '' TERM; printf '1 G {;'; while true; do sleep 0.1; done"),
              "The acquisition program did not answer any more and was ended.");
    expectGoodRun();
}

TEST_F(FaultyProgram, OneThatDoesNotStopIsKilledAndTold)
{
    programs.make("wfgather", "trap '' TERM; while true; do printf '1 M * X 1;'; sleep 0.1; done");
    ASSERT_EQ(model->start(0), 0);
    QTest::qWait(200);
    model->stop(QString());
    expectCrashLogged();
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(model->failure(),
              "The acquisition program did not stop when it was told to and was ended.");
    expectGoodRun();
}

TEST_F(FaultyProgram, OneThatDiesOfTheStopIsNoFailure)
{
    programs.make("wfgather", "printf '1 G {;'; exec sleep 60");
    ASSERT_EQ(model->start(0), 0);
    QTest::qWait(200);
    expectCrashLogged();
    model->stop(QString());
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(model->failure(), "");
}

TEST_F(FaultyProgram, SlowOneHasTheMoreTimeTheSlowerItIs)
{
    patience().setSilenceLimit(100);
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 20);
    EXPECT_EQ(failureOf("printf '1 G {;'; sleep 0.7; printf '2 G };'"), "");
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 0.01);
    expectCrashLogged();
    EXPECT_NE(failureOf("printf '1 G {;'; exec sleep 60"), "") << "a fast one has the usual time";
}

TEST_F(FaultyProgram, MessagesThatWaitedForABusyReaderAreNoSilence)
{
    patience().setSilenceLimit(300);
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1; printf '2 M * X 1;'; sleep 0.7; printf '3 G };'");
    ASSERT_EQ(model->start(0), 0);
    patience().setSilenceLimit(2000);
    QThread::msleep(500); // longer than the silence that the start allowed
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(model->failure(), "");
}

TEST_F(FaultyProgram, OneThatClosesItsOutputAndLivesOnIsEnded)
{
    patience().setSilenceLimit(300);
    expectCrashLogged();
    EXPECT_EQ(failureOf("printf '1 G {;'; exec sleep 60 >&-"),
              "The acquisition program did not answer any more and was ended.");
    expectGoodRun();
}

TEST_F(FaultyProgram, FloodWithoutAMessageIsEndedInBoundedMemory)
{
    patience().setSilenceLimit(700);
    int alive = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++alive; });
    timer.start(5);
    const double before_MB = residentMegabytes();
    expectCrashLogged();
    EXPECT_EQ(failureOf("printf '1 G {;'; exec cat /dev/zero"),
              "The acquisition program did not answer any more and was ended.");
    expectCrashLogged();
    EXPECT_NE(failureOf("exec yes 'no separator'"), "");
    EXPECT_LT(residentMegabytes() - before_MB, 100.0);
    EXPECT_GT(alive, 5) << "nothing else was done";
    expectGoodRun();
}

TEST_F(FaultyProgram, FloodOfMessagesCanBeStopped)
{
    QSignalSpy ticks(model.get(), SIGNAL(measTick(int, int)));
    programs.make("wfgather", "printf '1 G {;'; exec yes '2 M * RT 5;'");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ticks.size() > 1000; }, 10000));
    expectCrashLogged();
    model->stop(QString());
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(model->failure(), "");
    ticks.clear();
    expectGoodRun();
}

TEST_F(FaultyProgram, FloodOfEventsIsCutOff)
{
    QSignalSpy lists(model.get(), SIGNAL(eventListReady(EventList)));
    EXPECT_EQ(failureOf("printf '1 G {;5 A {;'; sleep 0.1; yes '6 A * n position 5;' | head -n "
                        "30000; sleep 0.1; printf '8 A };9 G };'"),
              "");
    ASSERT_EQ(lists.size(), 1);
    EXPECT_EQ(lists.first().first().value<EventList>().size(), 10000);
}

TEST_F(FaultyProgram, FloodOfComplaintsIsCutToItsLastLine)
{
    const QString told = failureOf("yes 'complaint' | head -c 3000000 >&2; echo >&2; "
                                   "head -c 5000 /dev/zero | tr '\\0' 'x' >&2; exit 1");
    EXPECT_TRUE(told.startsWith("The acquisition program failed (code 1): xxx"))
        << qPrintable(told);
    EXPECT_LT(told.size(), 300);
}

TEST_F(FaultyProgram, GarbageDoesNoHarm)
{
    const QString end = "printf ';9 G };'; exit 0";
    for (const char* garbage : {
             "head -c 300000 /dev/urandom;",
             R"(printf '\000\000\000';)",
             R"(printf '1 \377\376 {;\303;2 M { \377/\377 pulse \377;';)",
             ("printf '2 M { -1/99999999999999999999 wavelength -5 duration 1e99 ior nan;3 M * RT "
              "99999999999999 ET inf;';"),
             R"(printf '4 A * ;5 A * n position 1e999 loss x;6 A * \001;';)",
             R"(printf ';;;;;; ; ; ;\n\r\n{ } * ;';)",
             "printf '7 M * '; yes 'key value' | head -c 3000000; printf ';';",
             R"(printf '7 A * '; yes 'loss 0.1' | tr '\n' ' ' | head -c 3000000; printf ';';)",
         }) {
        failureOf(QString(garbage) + "sleep 0.1;" + end);
    }
    expectGoodRun();
}

TEST_F(FaultyProgram, MessagesInTheWrongOrderLeaveAnIdleModel)
{
    for (const char* messages : {
             "1 G };",
             "1 M };2 A };3 A * n position 5;4 G };",
             "1 A };2 A {;3 M };4 M * RT 3;5 G {;6 G };",
             "1 G {;2 G {;3 G };4 G };5 G };",
             "1 G {;2 M { 1/1 pulse 5;3 M { 1/1 pulse 5;4 M };5 M };6 G };",
             "1 G };2 G {;3 M { 1/1 pulse 5;4 M };5 G };",
             "1 G {;2 A {;3 G };4 A };",
             "1 C * 5;2 G };3 C * 1;",
             "1 M * RT 5;2 G };3 M * RT 4;4 A };5 G {;",
         }) {
        failureOf(QString("printf '%1'; sleep 0.1").arg(messages));
    }
    expectGoodRun();
}

TEST_F(FaultyProgram, WhatItSaysAfterTheLastMessageIsNotListenedTo)
{
    QSignalSpy analysed(model.get(), SIGNAL(analisisFinished()));
    QSignalSpy ticks(model.get(), SIGNAL(measTick(int, int)));
    QSignalSpy traces(model.get(), SIGNAL(measStarted()));
    failureOf("printf '1 G {;2 G };3 A };4 M * RT 3;5 M { 1/1 pulse 3;'; sleep 0.2; "
              "printf '6 G {;7 A };8 M * RT 3;'; sleep 0.2");
    QTest::qWait(500);
    EXPECT_EQ(analysed.size(), 0);
    EXPECT_EQ(ticks.size(), 0);
    EXPECT_EQ(traces.size(), 0);
    expectIdle();
}

TEST_F(FaultyProgram, OneThatStaysAfterTheLastMessageIsKilledAtLast)
{
    const QString number = files.path("number");
    EXPECT_EQ(failureOf("trap '' TERM; echo $$ > " + number
                        + "; printf '1 G {;2 G };'; while true; do sleep 0.1; done"),
              "");
    ASSERT_TRUE(lives(number));
    expectCrashLogged();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !lives(number); }, 10000));
    EXPECT_EQ(model->failure(), "");
    expectIdle();
}

} // namespace
