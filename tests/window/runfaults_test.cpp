// The window during runs that go wrong: what is on the screen stays true, and the next press of the
// button starts.

#include "acquisition/gatherpatience.h"
#include "acquisition/otdrmeascontroller.h"
#include "tests/support/warnings.h"
#include "tests/window/screen.h"
#include "window/window.h"

namespace {

using namespace testing_support; // the fixture, doubles, builder and units

class FaultyMeasuring : public Screen
{
protected:
    /// Shell words that put a file in place of the snapshot as the acquisition program does.
    static QString put(const QString& file)
    {
        return QString("mkdir -p /tmp/user/.wfgather; cp %1 /tmp/user/.wfgather/new; "
                       "mv /tmp/user/.wfgather/new /tmp/user/wfsnapshot.bin; sleep 0.2;")
            .arg(file);
    }

    QString good() const
    {
        return put(files.writeSnapshot("good.bin", TraceBuilder().fibre(2_km)));
    }

    QString damaged() const { return put(files.write("damaged.bin", Bytes(500))); }

    static QString traceStart()
    {
        return "printf '1 G {;'; sleep 0.1; printf '2 M { 1/1 wavelength 1550 duration 15 ior "
               "1.468 "
               "helix 0 distance 5000 pulse 100 rbs -81.9;'; sleep 0.1;";
    }

    void runToEnd(const QString& script)
    {
        programs.make("wfgather", script);
        stopped->clear();
        press();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !stopped->isEmpty(); }, 15000));
        QTest::qWait(100);
        expectIdle();
    }

    void expectIdle() const
    {
        EXPECT_FALSE(model->running());
        EXPECT_EQ(action()->text(), "Start");
        EXPECT_TRUE(action()->isEnabled()) << "the user is locked out";
    }
};

TEST_F(FaultyMeasuring, FailureAfterAGoodStartIsShownAndTheTraceSoFarStays)
{
    runToEnd(traceStart() + good()
             + "printf '3 M * RT 14;'; sleep 0.1; echo 'no light' >&2; exit 3");
    EXPECT_EQ(warning(), "The acquisition program failed (code 3): no light");
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_TRUE(refls()->mainRefl().isValid());
}

TEST_F(FaultyMeasuring, DamagedRefreshIsShownAndLeavesTheTraceBefore)
{
    runToEnd(traceStart() + good() + damaged() + "printf '4 M };5 A {;6 A };7 G };'");
    EXPECT_TRUE(warning().startsWith("The measured trace cannot be used: "))
        << qPrintable(warning());
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_NEAR(refls()->mainRefl().maxdist(), 2000.0, 15.0);
}

TEST_F(FaultyMeasuring, EventsOfAnUnusableTraceGoToNoOther)
{
    const Reflectogram loaded = load("a.sor");
    const EventList its = loaded.getEventList();
    ASSERT_FALSE(its.isEmpty());
    const int ticks = shownTicks();
    runToEnd(traceStart() + damaged()
             + "printf '4 M };5 A {;6 A * n position 1000 loss 3;7 A };8 G };'");
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_EQ(refls()->mainRefl(), loaded);
    EXPECT_EQ(loaded.getEventList(), its);
    EXPECT_EQ(shownTicks(), ticks);
}

TEST_F(FaultyMeasuring, ProgramThatSaysNothingMoreDoesNotLockTheButton)
{
    auto* controller = model->findChild<OtdrMeasController*>();
    controller->patience().setSilenceLimit(300);
    for (const char* last : {"printf '1 G {;';", "printf '1 G {;2 A {;3 A };';"}) {
        expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
        runToEnd(QString(last) + "exec sleep 60");
        EXPECT_EQ(warning(), "The acquisition program did not answer any more and was ended.");
    }
}

TEST_F(FaultyMeasuring, MessagesInTheWrongOrderLeaveTheButtonReady)
{
    for (const char* messages : {
             "1 G };2 A };3 M * RT 5;",
             "1 A };2 A {;3 M };4 M * RT 3;5 G {;6 G };7 A };",
             "1 G {;2 G };3 G {;4 A };",
             "1 M };2 M { 1/1 pulse 5;3 A {;4 G };5 M };",
         }) {
        runToEnd(QString("printf '%1'; sleep 0.2; printf '8 A };9 M * RT 7;'").arg(messages));
    }
    runToEnd(traceStart() + good() + "printf '4 M };5 A {;6 A };7 G };'");
    EXPECT_EQ(refls()->rowCount(), 1);
}

} // namespace
