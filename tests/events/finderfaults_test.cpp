// An event finder program that fails: the run ends, no list comes, the next run works.

#include "events/eventfinder.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // doubles, builder and units

class FaultyFinder : public testing::Test
{
protected:
    /// Runs a script as the event finder; whether it ended with a list.
    bool findsWith(const QString& script)
    {
        programs.make("wfevfind", script);
        return finds();
    }

    bool finds()
    {
        QSignalSpy lists(&finder, SIGNAL(eventListReady(EventList)));
        QSignalSpy works(&finder, SIGNAL(worksNow(bool)));
        finder.run(file, params);
        EXPECT_TRUE(QTest::qWaitFor([&] { return works.size() >= 2; }, 20000))
            << "the run does not end";
        QTest::qWait(50); // a crash has two words
        EXPECT_FALSE(works.last().first().toBool());
        return lists.size() == 1;
    }

    static void expectCrashLogged()
    {
        expectWarning("Event finder: Error! Process crashed.");
        expectWarning("Event finder: Error! Process crashed!");
    }

    void expectGoodRun() { EXPECT_TRUE(findsWith("printf 'r = 2000\\n'")); }

    const FakePrograms programs;
    const TraceFiles files {};
    const QString file = files.writeSnapshot("wfsnapshot.bin", TraceBuilder().fibre(8_km));
    EventFinder finder;
    WfMeasParams params;
};

TEST_F(FaultyFinder, MissingOrNotExecutableIsLogged)
{
    expectWarning("Event finder: Error! Process failed to start.");
    EXPECT_FALSE(finds());
    programs.make("wfevfind", "printf 'r = 2000\\n'");
    QFile::setPermissions(programs.path("wfevfind"), QFile::ReadOwner | QFile::WriteOwner);
    expectWarning("Event finder: Error! Process failed to start.");
    EXPECT_FALSE(finds());
    expectGoodRun();
}

TEST_F(FaultyFinder, FailureAfterGoodLinesGivesNoList)
{
    expectWarning("Event finder: Error! Process return code: 3");
    EXPECT_FALSE(findsWith("printf 'r = 2000\\n'; sleep 0.1; exit 3"));
    expectGoodRun();
}

TEST_F(FaultyFinder, OneThatIsKilledGivesNoList)
{
    expectCrashLogged();
    EXPECT_FALSE(findsWith("printf 'r = 2000\\n'; kill -KILL $$"));
    expectGoodRun();
}

TEST_F(FaultyFinder, FloodIsEnded)
{
    for (const char* flood : {"exec cat /dev/zero", "exec yes 'n = 2000'"}) {
        expectCrashLogged();
        EXPECT_FALSE(findsWith(flood));
    }
    expectGoodRun();
}

TEST_F(FaultyFinder, FloodOfComplaintsIsKeptAtItsEnd)
{
    expectWarning("Event finder: Error! Process return code: 1");
    expectWarning("last words");
    EXPECT_FALSE(findsWith("yes 'complaint' | head -c 3000000 >&2; echo 'last words' >&2; exit 1"));
    EXPECT_LT(messages().size(), 200000);
    expectGoodRun();
}

TEST_F(FaultyFinder, GarbageIsNoEventAndDoesNoHarm)
{
    for (const char* garbage :
         {"head -c 300000 /dev/urandom", R"(printf '\000\000\n')", R"(printf 'r = \n= 5\nr =5\n')",
          R"(printf 'r = 99999999999999999999\nn = -5\ne = nan\n')", "printf 'r = 2000'",
          R"(head -c 500000 /dev/zero | tr '\0' 'r')"}) {
        EXPECT_TRUE(findsWith(QString(garbage) + "; exit 0")) << garbage;
    }
    expectGoodRun();
}

TEST_F(FaultyFinder, OneThatHangsIsEndedByAStopWhateverItIgnores)
{
    const QString alive = programs.path("alive");
    for (const char* hang :
         {"exec sleep 600", "trap '' TERM; while true; do sleep 0.1; done", "exec sleep 600 >&-"}) {
        QFile::remove(alive);
        programs.make("wfevfind", "touch " + alive + "; " + hang);
        QSignalSpy works(&finder, SIGNAL(worksNow(bool)));
        finder.run(file, params);
        ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(alive); }, 10000));
        expectCrashLogged();
        finder.stop();
        ASSERT_TRUE(QTest::qWaitFor([&] { return works.size() >= 2; }, 10000));
        QTest::qWait(50);
    }
    expectGoodRun();
}

} // namespace
