// Snapshots that cannot be used, or are not what was expected.

#include "platform/otdr/event.h"
#include "tests/acquisition/faultyrun.h"
#include "tests/support/requiredcontents.h"

#include <QFile>

namespace {

using namespace testing_support; // the fixture, doubles, builder and units

class FaultySnapshot : public FaultyRun
{
protected:
    /// A run whose only snapshot is this file.
    QString failureWith(const QString& file)
    {
        return failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + put(file)
                         + "printf '4 M };5 A {;6 A * n position 1000;7 A };9 G };'");
    }

    QString fileOf(const QByteArray& bytes)
    {
        QString name = files.path(QString("snapshot%1").arg(++count));
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return name;
    }

    QByteArray good() const
    {
        return requiredContents(files.writeSnapshot("good.bin", TraceBuilder().fibre(2_km)));
    }

    int count = 0;
};

TEST_F(FaultySnapshot, DamagedOneIsTold)
{
    QByteArray flipped = good();
    flipped[flipped.size() / 2] = static_cast<char>(~flipped[flipped.size() / 2]);
    const QByteArray half = good().left(good().size() / 2);
    for (const QByteArray& bytes :
         {flipped, half, good().left(20), QByteArray(), QByteArray("broken"), good() + "x"}) {
        const QString told = failureWith(fileOf(bytes));
        EXPECT_TRUE(told.startsWith("The measured trace cannot be used: ")) << qPrintable(told);
    }
    expectGoodRun();
}

TEST_F(FaultySnapshot, OneWithoutSamplesIsTold)
{
    constexpr int kHeader = 48;
    QByteArray none = good().left(kHeader);
    for (const int field : {8, 44}) { // the number of samples and their checksum
        none.replace(field, 4, QByteArray(4, 0));
    }
    const QString told = failureWith(fileOf(none));
    EXPECT_TRUE(told.startsWith("The measured trace cannot be used: ")) << qPrintable(told);
    EXPECT_TRUE(told.endsWith("no trace: the file holds no samples")) << qPrintable(told);
    expectGoodRun();
}

TEST_F(FaultySnapshot, HugeOneIsRefusedUnread)
{
    const QString huge = fileOf(good());
    QFile file(huge);
    ASSERT_TRUE(file.resize(qint64 {5} << 30)); // takes no room on the disk
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart() + "mv " + huge
                      + " /tmp/user/wfsnapshot.bin; sleep 0.1; printf '4 M };9 G };'");
    const double before_MB = residentMegabytes();
    const QString told = failureOfRun();
    EXPECT_TRUE(told.startsWith("The measured trace cannot be used: ")) << qPrintable(told);
    EXPECT_EQ(model->checkWFSnapshot(), Model::UnreadableSnapshot);
    EXPECT_LT(residentMegabytes() - before_MB, 100.0);
    expectGoodRun();
}

TEST_F(FaultySnapshot, NoneAtAllIsTold)
{
    const QString told = failureOf("rm -f /tmp/user/wfsnapshot.bin; printf '1 G {;'; sleep 0.1;"
                                   + traceStart() + "printf '4 M };9 G };'");
    EXPECT_TRUE(told.startsWith("The measured trace cannot be used: ")) << qPrintable(told);
    EXPECT_EQ(measured->size(), 0);
}

TEST_F(FaultySnapshot, OneWithAnotherNumberOfSamplesIsTaken)
{
    EXPECT_EQ(failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + snapshot()
                        + snapshot(TraceBuilder().fibre(3_km))
                        + "printf '4 M };5 A {;6 A };9 G };'"),
              "");
    EXPECT_EQ(measured->size(), 2);
}

TEST_F(FaultySnapshot, EventsOfADamagedOneAreNotMeasuredAgainstTheTraceBefore)
{
    expectGoodRun(); // whose trace has a place for every sample
    QSignalSpy lists(model.get(), SIGNAL(eventListReady(EventList)));
    failureWith(fileOf("broken"));
    ASSERT_EQ(lists.size(), 1);
    const auto events = lists.first().first().value<EventList>();
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(events[0].position, 1000);
    EXPECT_EQ(events[0].coordinate, 0.0);
}

} // namespace
