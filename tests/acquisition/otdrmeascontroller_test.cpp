#include "acquisition/otdrmeascontroller.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/warnings.h"

#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using testing_support::expectWarning;
using testing_support::FakePrograms;

/// Writes down what the controller emits, in order.
class GatherListener : public QObject
{
    Q_OBJECT

public:
    explicit GatherListener(OtdrMeasController* controller)
    {
        connect(controller, SIGNAL(started()), SLOT(started()));
        connect(controller, SIGNAL(trailsPrepared(int)), SLOT(trailsPrepared(int)));
        connect(controller,
                SIGNAL(measStarted(int, int, WfMeasParams)),
                       SLOT(measStarted(int, int, WfMeasParams)));
        connect(controller, SIGNAL(measTick(int, int)), SLOT(measTick(int, int)));
        connect(controller, SIGNAL(measTick(QVariantMap&)), SLOT(measTick(QVariantMap&)));
        connect(controller, SIGNAL(measFinished(int)), SLOT(measFinished(int)));
        connect(controller, SIGNAL(analisisStarted()), SLOT(analisisStarted()));
        connect(controller, SIGNAL(wfEventFound(QString)), SLOT(wfEventFound(QString)));
        connect(controller, SIGNAL(analisisFinished()), SLOT(analisisFinished()));
        connect(controller, SIGNAL(finished()), SLOT(finished()));
        connect(controller, SIGNAL(error()), SLOT(error()));
    }

    QStringList log;
    WfMeasParams params;
    QVariantMap map;

public slots:

    void started() { log << "started"; }

    void trailsPrepared(int count) { log << QString("prepared %1").arg(count); }

    void measStarted(int num, int from, WfMeasParams p)
    {
        log << QString("trace %1/%2").arg(num).arg(from);
        params = p;
    }

    void measTick(int rTime, int wavelength)
    {
        log << QString("tick %1 %2").arg(rTime).arg(wavelength);
    }

    void measTick(QVariantMap& data)
    {
        log << "map";
        map = data;
    }

    void measFinished(int num) { log << QString("trace end %1").arg(num); }

    void analisisStarted() { log << "analysis"; }

    void wfEventFound(QString event) { log << "event " + event; }

    void analisisFinished() { log << "analysis end"; }

    void finished() { log << "finished"; }

    void error() { log << "error"; }
};

class Gather : public testing::Test
{
protected:
    Gather()
        : controller(nullptr)
        , listener(&controller)
    {
    }

    /// Runs a program that prints this text at once and waits for its end.
    void run(const QString& output)
    {
        programs.make("wfgather", "printf '%s' '" + output + "'");
        ASSERT_EQ(controller.start(), 0);
        waitForEnd();
    }

    void waitForEnd()
    {
        ASSERT_TRUE(QTest::qWaitFor(
            [this] { return listener.log.contains("finished") || listener.log.contains("error"); },
            10000));
        QTest::qWait(50); // the process's own end may follow its message
    }

    FakePrograms programs;
    OtdrMeasController controller;
    GatherListener listener;
};

TEST_F(Gather, WholeRunBecomesSignalsInOrder)
{
    run("1 G {;\n2 C * 3;\n3 M { 1/3 wavelength 1310 duration 15 ior 1.4677 helix 0.5 distance "
        "10000 "
        "pulse 100 rbs -66.3;\n4 M * RT 14;5 M };6 A {;7 A * r position 5;8 A };\n9 G };");
    EXPECT_EQ(
        listener.log,
        QStringList({"started", "prepared 3", "trace 1/3", "tick 14 1310", "map", "trace end 1",
                     "analysis", "event r position 5", "analysis end", "finished", "finished"}));
    EXPECT_EQ(listener.params.wavelength, 1310);
    EXPECT_EQ(listener.params.duration, 15);
    EXPECT_EQ(listener.params.ior, 1.4677);
    EXPECT_EQ(listener.params.helix, 0.5);
    EXPECT_EQ(listener.params.distance, 10000.0);
    EXPECT_EQ(listener.params.pulse, 100);
    EXPECT_EQ(listener.params.rbs, -66.3);
    EXPECT_FALSE(controller.running());
}

TEST_F(Gather, CallsTheProgramWithSnapshotAndSettings)
{
    const QString seen = programs.path("seen");
    programs.make("wfgather", "printf '%s|' \"$@\" > " + seen);
    EXPECT_EQ(controller.start("/tmp/a snapshot", "/tmp/settings", "card", "poller", "log"), 0);
    waitForEnd();
    QFile file(seen);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "-o|/tmp/a snapshot|-c|/tmp/settings|");
}

TEST_F(Gather, EventsAreJoinedBySingleBlanks)
{
    run("x A *  1   2 3;");
    EXPECT_TRUE(listener.log.contains("event 1 2 3"));
}

TEST_F(Gather, TickCarriesItsPairsAsText)
{
    run("1 M { 1/1 wavelength 1550 duration 1;5 M * RT 7 X 2;");
    EXPECT_TRUE(listener.log.contains("tick 7 1550"));
    EXPECT_EQ(listener.map, QVariantMap({{"RT", "7"}, {"X", "2"}}));
    EXPECT_EQ(listener.log.indexOf("map"), listener.log.indexOf("tick 7 1550") + 1);
}

TEST_F(Gather, TickWithoutRemainingTimeCarriesOnlyTheMap)
{
    run("5 M * X 2 X 3 odd;");
    EXPECT_EQ(listener.log, QStringList({"map", "finished"}));
    EXPECT_EQ(listener.map, QVariantMap({{"X", "3"}}));
}

TEST_F(Gather, MissingParameterTakesTheFirstRemainingWord)
{
    run("3 M { 2/4 pulse 30;");
    EXPECT_TRUE(listener.log.contains("trace 2/4"));
    EXPECT_EQ(listener.params.pulse, 30);
    EXPECT_EQ(listener.params.wavelength, 0);
    EXPECT_EQ(listener.params.duration, 0);
    EXPECT_EQ(listener.params.distance, 0.0);
}

TEST_F(Gather, MissingParameterReadsTheFirstWordAsItsNumber)
{
    run("3 M { 1/1 42 pulse 30;");
    EXPECT_EQ(listener.params.pulse, 30);
    EXPECT_EQ(listener.params.wavelength, 42);
    EXPECT_EQ(listener.params.ior, 42.0);
}

TEST_F(Gather, TraceStartWithoutFurtherWordsIsIgnoredAndWithoutParametersReadsZero)
{
    run("1 M {;2 M { 3/;");
    EXPECT_EQ(listener.log, QStringList({"trace 3/0", "finished"}));
    EXPECT_EQ(listener.params.wavelength, 0);
}

TEST_F(Gather, ClassAndMarkerAreKnownByTheirFirstCharacter)
{
    run("1 Gather {start;2 Measurement }end;3 Config *all 2;");
    EXPECT_EQ(listener.log, QStringList({"started", "trace end 0", "prepared 2", "finished"}));
}

TEST_F(Gather, MalformedMessagesAreDropped)
{
    run("alone;;; ;\n\r;1 X {;2 G;3 M;4 A;5 C;6 G ?;7 M ?;8 A ?;9 C {;");
    EXPECT_EQ(listener.log, QStringList({"finished"}));
}

TEST_F(Gather, TextEndsAtTheFirstZeroByte)
{
    programs.make("wfgather", "printf '1 G {;\\0002 A {;'");
    ASSERT_EQ(controller.start(), 0);
    waitForEnd();
    EXPECT_EQ(listener.log, QStringList({"started", "finished"}));
}

TEST_F(Gather, MessageCutByAReadIsTwoFragments)
{
    programs.make("wfgather", "printf '1 A * one'; sleep 0.3; printf ' two;2 G };'");
    ASSERT_EQ(controller.start(), 0);
    waitForEnd();
    EXPECT_TRUE(listener.log.contains("event one"));
    EXPECT_FALSE(listener.log.join(' ').contains("two"));
}

TEST_F(Gather, OneByteAtATimeIsDroppedAndNeverJoined)
{
    programs.make("wfgather",
                  "for c in 1 ' ' G ' ' '{' ';' 2 ' ' A ' ' '{' ';'; do printf '%s' \"$c\"; sleep "
                  "0.05; done");
    ASSERT_EQ(controller.start(), 0);
    waitForEnd();
    EXPECT_EQ(listener.log, QStringList({"finished"}));
}

TEST_F(Gather, GarbageDoesNoHarm)
{
    programs.make("wfgather", "head -c 200000 /dev/urandom | tr -d '\\000'; exit 0");
    ASSERT_EQ(controller.start(), 0);
    waitForEnd();
    EXPECT_FALSE(controller.running());
}

TEST_F(Gather, MissingProgramFailsTheStart)
{
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    expectWarning("int OtdrMeasController::start()");
    EXPECT_EQ(controller.start(), -1);
    EXPECT_FALSE(controller.running());
    EXPECT_EQ(listener.log, QStringList({"error", "finished"}));
}

TEST_F(Gather, ProgramThatDiesIsAnErrorAndAnEnd)
{
    programs.make("wfgather", "printf '1 G {;'; kill -KILL $$");
    ASSERT_EQ(controller.start(), 0);
    EXPECT_TRUE(controller.running());
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    ASSERT_TRUE(QTest::qWaitFor([&] { return listener.log.contains("finished"); }, 5000));
    EXPECT_EQ(listener.log, QStringList({"started", "error", "finished"}));
    EXPECT_FALSE(controller.running());
}

TEST_F(Gather, IsIdleWhenItTellsHowItEnded)
{
    QList<bool> running;
    const auto note = [&] { running << controller.running(); };
    QObject::connect(&controller, &OtdrMeasController::error, note);
    QObject::connect(&controller, &OtdrMeasController::finished, note);
    run("1 G {;2 G };");
    programs.make("wfgather", "kill -KILL $$");
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    ASSERT_EQ(controller.start(), 0);
    listener.log.clear();
    waitForEnd();
    EXPECT_TRUE(listener.log.contains("error"));
    EXPECT_FALSE(running.contains(true));
}

TEST_F(Gather, StopAsksTheProgramToEnd)
{
    programs.make("wfgather",
                  "trap 'printf \"2 G };\"; exit 0' TERM; printf '1 G {;'; "
                  "while true; do sleep 0.05; done");
    ASSERT_EQ(controller.start(), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return listener.log.contains("started"); }, 5000));
    controller.stop();
    waitForEnd();
    EXPECT_FALSE(listener.log.contains("error"));
    EXPECT_FALSE(controller.running());
}

TEST_F(Gather, StopIsNotWaitedForAndAProgramThatIgnoresItIsKilledFiveSecondsLater)
{
    programs.make("wfgather", "trap '' TERM; printf '1 G {;'; while true; do sleep 0.1; done");
    ASSERT_EQ(controller.start(), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return listener.log.contains("started"); }, 5000));
    QElapsedTimer timer;
    timer.start();
    controller.stop();
    EXPECT_LT(timer.elapsed(), 1000);
    EXPECT_TRUE(controller.running());
    QTest::qWait(2000);
    controller.stop(); // a second press gives it no more time
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    ASSERT_TRUE(QTest::qWaitFor([&] { return listener.log.contains("finished"); }, 8000));
    EXPECT_GE(timer.elapsed(), 4900);
    EXPECT_LT(timer.elapsed(), 6900);
}

TEST_F(Gather, StopWithoutARunIsSilent)
{
    EXPECT_EQ(controller.stop(), 0);
    EXPECT_TRUE(listener.log.isEmpty());
}

TEST_F(Gather, ProgramMayBeStartedAgainAfterItsEnd)
{
    run("1 G {;2 G };");
    listener.log.clear();
    controller.waitForEnded(1000);
    run("1 G {;2 G };");
    EXPECT_EQ(listener.log.count("started"), 1);
}

TEST_F(Gather, ProgramThatStaysAfterItsLastMessageMakesRoomForTheNextRun)
{
    programs.make("wfgather", "printf '1 G {;2 G };'; while true; do sleep 0.1; done");
    ASSERT_EQ(controller.start(), 0);
    waitForEnd();
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    controller.waitForEnded(100);
    listener.log.clear();
    run("1 G {;2 G };");
    EXPECT_EQ(listener.log.count("started"), 1);
}

TEST(GatherGone, EndsAProgramThatStillRuns)
{
    const FakePrograms programs;
    programs.make("wfgather", "trap '' TERM; while true; do sleep 0.1; done");
    auto controller = std::make_unique<OtdrMeasController>(nullptr);
    ASSERT_EQ(controller->start(), 0);
    QElapsedTimer timer;
    timer.start();
    controller.reset();
    EXPECT_LT(timer.elapsed(), 3000);
}

} // namespace

#include "otdrmeascontroller_test.moc"
