// The controller's reading of single messages, where the whole run does not tell.

#include "acquisition/otdrmeascontroller.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/metamethods.h"
#include "tests/support/warnings.h"

#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // doubles

class GatherRules : public testing::Test
{
protected:
    GatherRules()
        : controller(nullptr)
        , traces(&controller, SIGNAL(measStarted(int, int, WfMeasParams)))
                 , finished(&controller, SIGNAL(finished()))
    {
    }

    /// One message as it comes out of the program's text.
    void say(const QString& message)
    {
        QMetaObject::invokeMethod(&controller, "preprocessMsg", Q_ARG(QString, message));
    }

    WfMeasParams lastTrace() const { return traces.last().at(2).value<WfMeasParams>(); }

    const FakePrograms programs;
    OtdrMeasController controller;
    QSignalSpy traces;
    QSignalSpy finished;
};

TEST_F(GatherRules, SignalsAndSlotsAreTheAgreedOnesInTheirOrder)
{
    const QStringList agreed = {
        "signal started()",
        "signal trailsPrepared(int count)",
        "signal measStarted(int num, int from, WfMeasParams params)",
        "signal measTick(int rTime, int wavelength)",
        "signal measTick(QVariantMap& data)",
        "signal measFinished(int num)",
        "signal analisisStarted()",
        "signal wfEventFound(QString event)",
        "signal analisisFinished()",
        "signal finished()",
        "signal error()",
        ("public setStartParams(QString snapshotFileName, QString configFileName, QString "
         "cardInterfaceName, QString pollerInterfaceName, QString errLogFileName)"),
        "public setSnapshotFileName(QString name)",
        "public setConfigFileName(QString name)",
        "public setCardIfaceName(QString name)",
        "public setPollerIfaceName(QString name)",
        "public setErrLogFileName(QString name)",
        "public start()",
        ("public start(QString snapshotFileName, QString configFileName, QString "
         "cardInterfaceName, QString pollerInterfaceName, QString errLogFileName)"),
        "public stop()",
        "private readGatherOutput()",
        "private preprocessMsg(QString msg)",
        "private readGatherMsg(QStringList msg)",
        "private readMeasMsg(QStringList msg)",
        "private readAnalisisMsg(QStringList msg)",
        "private readConfigMsg(QStringList msg)",
        "private onError(QProcess::ProcessError processError)",
        "private onFinished()",
    };
    EXPECT_EQ(agreedMethods(OtdrMeasController::staticMetaObject, agreed), agreed);
}

TEST_F(GatherRules, FollowsItsProcess)
{
    auto* process = controller.findChild<QProcess*>();
    ASSERT_NE(process, nullptr);
    const std::pair<const char*, const char*> links[] = {
        {SIGNAL(readyRead()), SLOT(readGatherOutput())},
                {SIGNAL(error(QProcess::ProcessError)), SLOT(onError(QProcess::ProcessError))},
                        {SIGNAL(finished(int)), SLOT(onFinished())},
                        };
    for (const auto& [signal, slot] : links) {
        EXPECT_TRUE(QObject::disconnect(process, signal, &controller, slot)) << signal;
    }
}

TEST_F(GatherRules, CallIsThatOfAllNamesWhicheverWayTheyWereSet)
{
    const OtdrMeasController given("/a", "/b", "card", "poller", "log", nullptr);
    EXPECT_EQ(given.arguments(), QStringList({"-o", "/a", "-c", "/b"}));
    controller.setSnapshotFileName("/c");
    controller.setConfigFileName("/d");
    controller.setCardIfaceName("card");
    controller.setPollerIfaceName("poller");
    controller.setErrLogFileName("log");
    EXPECT_EQ(controller.arguments(), QStringList({"-o", "/c", "-c", "/d"}));
    EXPECT_EQ(controller.program(), programs.path("wfgather"));
}

TEST_F(GatherRules, ProgramIsLookedForInItsFixedPlace)
{
    const QByteArray before = qgetenv("WAVEFORM_PROGRAMS");
    qunsetenv("WAVEFORM_PROGRAMS");
    EXPECT_EQ(controller.program(), "/usr/local/bin/wfgather");
    qputenv("WAVEFORM_PROGRAMS", before);
}

TEST_F(GatherRules, TickBeforeATraceCarriesTheFirstWavelength)
{
    const QSignalSpy ticks(&controller, SIGNAL(measTick(int, int)));
    say("1 M * RT 7");
    ASSERT_EQ(ticks.size(), 1);
    EXPECT_EQ(ticks.first(), QVariantList({7, 1310}));
}

TEST_F(GatherRules, FirstOfRepeatedKeysCounts)
{
    say("1 M { 1/1 pulse 30 pulse 40");
    EXPECT_EQ(lastTrace().pulse, 30);
}

TEST_F(GatherRules, KeyWithoutAValueReadsZero)
{
    say("1 M { 1/1 wavelength 1310 pulse");
    EXPECT_EQ(lastTrace().pulse, 0);
    EXPECT_EQ(lastTrace().wavelength, 1310);
}

TEST_F(GatherRules, ValueThatIsNoNumberReadsZero)
{
    say("1 M { one/two wavelength blue duration 1.5 ior x helix x distance x pulse -1 rbs x");
    ASSERT_EQ(traces.size(), 1);
    EXPECT_EQ(traces.first().at(0).toInt(), 0);
    EXPECT_EQ(traces.first().at(1).toInt(), 0);
    const WfMeasParams params = lastTrace();
    EXPECT_EQ(params.wavelength, 0);
    EXPECT_EQ(params.duration, 0);
    EXPECT_EQ(params.ior, 0.0);
    EXPECT_EQ(params.distance, 0.0);
    EXPECT_EQ(params.pulse, 0);
    EXPECT_EQ(params.rbs, 0.0);
}

TEST_F(GatherRules, EmptyPartsOfTheNumbersAreSkipped)
{
    say("1 M { //2//4/ pulse 30");
    EXPECT_EQ(traces.first().at(0).toInt(), 2);
    EXPECT_EQ(traces.first().at(1).toInt(), 4);
}

TEST_F(GatherRules, EndOfATraceTellsTheNumberOfTheLastOneBegun)
{
    const QSignalSpy ends(&controller, SIGNAL(measFinished(int)));
    say("1 M { 2/4 pulse 30");
    say("2 M }");
    ASSERT_EQ(ends.size(), 1);
    EXPECT_EQ(ends.first().first().toInt(), 2);
}

TEST_F(GatherRules, MessageOfOneWordIsIgnored)
{
    const QSignalSpy analysis(&controller, SIGNAL(analisisStarted()));
    say("A");
    say("A{");
    EXPECT_EQ(analysis.size(), 0);
    say("A A {"); // the first word is free
    EXPECT_EQ(analysis.size(), 1);
}

TEST_F(GatherRules, CountOfTracesThatIsMissingReadsZero)
{
    const QSignalSpy prepared(&controller, SIGNAL(trailsPrepared(int)));
    say("1 C *");
    say("1 C * 3 4");
    ASSERT_EQ(prepared.size(), 2);
    EXPECT_EQ(prepared.at(0).first().toInt(), 0);
    EXPECT_EQ(prepared.at(1).first().toInt(), 3);
}

TEST_F(GatherRules, LastMessageEndsTheRunThoughTheProgramLivesOn)
{
    programs.make("wfgather", "printf '1 G {;2 G };'; sleep 0.5");
    ASSERT_EQ(controller.start(), 0);
    EXPECT_TRUE(controller.running());
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished.size() == 1; }, 5000));
    EXPECT_FALSE(controller.running());
    const auto* process = controller.findChild<QProcess*>();
    EXPECT_NE(process->state(), QProcess::NotRunning);
    EXPECT_TRUE(QTest::qWaitFor([&] { return finished.size() == 2; }, 5000))
        << "the end of the process is told as well";
}

TEST_F(GatherRules, StopAnswersTheExitCodeOfTheProgram)
{
    programs.make("wfgather", "printf '1 G {;2 G };'; exit 3");
    ASSERT_EQ(controller.start(), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished.size() == 2; }, 5000));
    EXPECT_EQ(controller.stop(), 3);
}

TEST_F(GatherRules, ProgramThatCannotBeStartedIsLoggedWithItsReason)
{
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError) \"");
    expectWarning("int OtdrMeasController::start() \"");
    EXPECT_EQ(controller.start("/a", "/b", "card", "poller", "log"), -1);
    EXPECT_FALSE(controller.running());
    EXPECT_EQ(finished.size(), 1);
    EXPECT_TRUE(
        messages().contains(QRegularExpression("int OtdrMeasController::start\\(\\) \"[^\"]+\" 0")))
        << qPrintable(messages());
    EXPECT_TRUE(messages().contains(QRegularExpression("ProcessError\\) \"[^\"]+\" -?[0-9]+")));
}

} // namespace
