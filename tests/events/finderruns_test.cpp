// What a run of the event finder does to its program, its files and the log.

#include "events/eventfinder.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QPair>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <cmath>

namespace {

using namespace testing_support; // builder and units

QList<QPair<QtMsgType, QString>> heard;
QtMessageHandler usual = nullptr;

void hear(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    heard << qMakePair(type, text);
    usual(type, context, text);
}

/// Remembers with how much weight things are said, as long as it lives.
class Ear
{
public:
    Ear()
    {
        heard.clear();
        usual = qInstallMessageHandler(hear);
    }

    ~Ear() { qInstallMessageHandler(usual); }

    Ear(const Ear&) = delete;
    Ear& operator=(const Ear&) = delete;

    /// Whether a message that begins like this came with this weight, and once only.
    [[nodiscard]] static bool heardOnce(QtMsgType type, const QString& start)
    {
        int count = 0;
        bool isRight = true;
        for (const auto& message : qAsConst(heard)) {
            if (message.second.startsWith(start)) {
                ++count;
                isRight = isRight && message.first == type;
            }
        }
        return count == 1 && isRight;
    }
};

class FinderRun : public testing::Test
{
protected:
    FinderRun()
        : lists(&finder, SIGNAL(eventListReady(EventList)))
    {
        params.ior = 1.468;
    }

    [[nodiscard]] QProcess* process() const { return finder.findChild<QProcess*>(); }

    /// A fibre with one connector, sampled at so many ns.
    [[nodiscard]] QString snapshot(const QString& name, double interval_ns, Decibels loss) const
    {
        return files.writeSnapshot(name,
                                   TraceBuilder()
                                       .sampling(interval_ns)
                                       .fibre(8_km)
                                       .connector(2_km, loss, 12_dB)
                                       .behind(500)
                                       .noise(0.001_dB, 5),
                                   interval_ns);
    }

    void run(const QString& file)
    {
        finder.run(file, params);
        ASSERT_TRUE(QTest::qWaitFor([this] { return process()->state() == QProcess::NotRunning; }));
        QCoreApplication::processEvents();
    }

    /// A run of a program that fails, and says why.
    void runOneThatSays(const QByteArray& words)
    {
        programs.make("wfevfind", "echo '" + words + "' >&2; exit 3");
        expectWarning("Event finder: Error! Process return code: 3");
        expectWarning("Error log");
        run(snapshot("a.bin", 10.0, 0.5_dB));
    }

    [[nodiscard]] EventList found() const { return lists.last().first().value<EventList>(); }

    FakePrograms programs;
    TraceFiles files;
    EventFinder finder;
    QSignalSpy lists;
    WfMeasParams params;
};

TEST_F(FinderRun, ProgramIsItsOwnAndOpenInBothDirections)
{
    ASSERT_NE(process(), nullptr);
    programs.make("wfevfind", "exec sleep 600");
    finder.run(snapshot("a.bin", 10.0, 0.5_dB), params);
    ASSERT_TRUE(QTest::qWaitFor([this] { return process()->state() == QProcess::Running; }));
    EXPECT_EQ(process()->openMode(), QIODevice::ReadWrite);
}

TEST_F(FinderRun, ReadsHeaderAndTraceOfItsFileAnew)
{
    // The connector's sample in a file of 10 ns a sample, and in one of 20 ns.
    const double metresPerNs = 0.299792458 / (2.0 * params.ior);
    programs.make("wfevfind",
                  QString("case \"$2\" in *fine*) echo 'r = %1';; *) echo 'r = %2';; esac")
                      .arg(std::lround(2000.5 / metresPerNs / 10.0))
                      .arg(std::lround(2000.5 / metresPerNs / 20.0)));
    run(snapshot("fine.bin", 10.0, 0.5_dB));
    ASSERT_EQ(found().size(), 2);
    EXPECT_NEAR(found()[1].coordinate, 2000.0, 2.1);
    EXPECT_NEAR(found()[1].loss, 0.5, 0.05);
    run(snapshot("coarse.bin", 20.0, 1.5_dB));
    ASSERT_EQ(lists.size(), 2);
    EXPECT_NEAR(found()[1].coordinate, 2000.0, 2.1) << "by the spacing of the second file";
    EXPECT_NEAR(found()[1].loss, 1.5, 0.05) << "against the samples of the second file";
}

TEST_F(FinderRun, ReturnCodeIsAWarningAndWhatTheProgramSaidIsCritical)
{
    const Ear ear;
    runOneThatSays("no such trace");
    EXPECT_TRUE(Ear::heardOnce(QtWarningMsg, "Event finder: Error! Process return code: 3"));
    EXPECT_TRUE(Ear::heardOnce(QtCriticalMsg, "Error log \"no such trace"));
}

TEST_F(FinderRun, ErrorLogIsWhatTheProgramOfThisRunSaid)
{
    runOneThatSays("said first");
    const Ear ear;
    runOneThatSays("said second");
    EXPECT_TRUE(Ear::heardOnce(QtCriticalMsg, "Error log \"said second"));
}

TEST_F(FinderRun, CrashIsCriticalInBothItsMessages)
{
    programs.make("wfevfind", "kill -SEGV $$");
    expectWarning("Event finder: Error! Process crashed.");
    expectWarning("Event finder: Error! Process crashed!");
    const Ear ear;
    run(snapshot("a.bin", 10.0, 0.5_dB));
    EXPECT_TRUE(Ear::heardOnce(QtCriticalMsg, "Event finder: Error! Process crashed."));
    EXPECT_TRUE(Ear::heardOnce(QtCriticalMsg, "Event finder: Error! Process crashed!"));
    EXPECT_TRUE(lists.isEmpty());
}

TEST_F(FinderRun, ProgramThatDoesNotStartIsCritical)
{
    expectWarning("Event finder: Error! Process failed to start.");
    const Ear ear;
    run(snapshot("a.bin", 10.0, 0.5_dB));
    EXPECT_TRUE(Ear::heardOnce(QtCriticalMsg, "Event finder: Error! Process failed to start."));
}

TEST_F(FinderRun, FailureAfterAGoodRunSendsNoEmptyList)
{
    programs.make("wfevfind", "echo 'r = 2000'");
    run(snapshot("a.bin", 10.0, 0.5_dB));
    EXPECT_EQ(lists.size(), 1);
    programs.make("wfevfind", "echo 'r = 3000'; exit 1");
    expectWarning("Event finder: Error! Process return code: 1");
    run(snapshot("b.bin", 10.0, 0.5_dB));
    EXPECT_EQ(lists.size(), 1) << "receivers keep what they have";
}

TEST_F(FinderRun, NextOneMayBeStartedFromTheListOfTheLast)
{
    programs.make("wfevfind", "echo 'r = 3000'");
    const QString file = snapshot("a.bin", 10.0, 0.5_dB);
    QObject::connect(&finder, qOverload<EventList>(&EventFinder::eventListReady), &finder, [&] {
        if (lists.size() < 3) {
            finder.run(file, params);
        }
    });
    finder.run(file, params);
    ASSERT_TRUE(QTest::qWaitFor([this] { return lists.size() == 3; }));
    EXPECT_EQ(found().size(), 2);
}

} // namespace
