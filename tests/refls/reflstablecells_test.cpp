// What the table shows of the traces.

#include "platform/launcher/palettefactory.h"
#include "tests/refls/traceset.h"
#include "tests/support/echo.h"
#include "tests/support/inlocale.h"

#include <QSemaphore>
#include <QThreadPool>
#include <QtTest>

#include <ctime>

namespace {

using namespace testing_support; // fixture, builder and units
using Waveform::ReflsTableModel;

TEST_F(TraceSet, HasSevenColumnsEvenWhenEmpty)
{
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 7);
    EXPECT_FALSE(model.mainRefl().isValid());
    QStringList headers;
    for (int column = 0; column < 7; ++column) {
        headers << model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }
    EXPECT_EQ(headers,
              QStringList({"Name", "Date", QString(QChar(0x03BB)), "Distance", "Pulse", "ORL",
                           "Total loss"}));
    EXPECT_EQ(model.headerData(3, Qt::Vertical, Qt::DisplayRole).toInt(), 4);
}

TEST_F(TraceSet, ShowsWhatEachTraceSays)
{
    add("north.first.sor");
    EXPECT_EQ(text(0, 0), "north");
    EXPECT_EQ(text(0, 1), "14.11.2023 22:13");
    EXPECT_EQ(model.data(model.index(0, 2), Qt::DisplayRole), QVariant(1550));
    EXPECT_EQ(model.data(model.index(0, 2), Qt::DisplayRole).type(), QVariant::Int);
    EXPECT_EQ(text(0, 3), QString::number(model.refls().first().endOfFiber(), 'f', 2));
    EXPECT_EQ(model.data(model.index(0, 4), Qt::DisplayRole).type(), QVariant::Double);
    EXPECT_EQ(model.data(model.index(0, 4), Qt::DisplayRole).toDouble(), 100.0);
    EXPECT_EQ(text(0, 5), "32.50");
    EXPECT_EQ(text(0, 6), "3.12");
    EXPECT_FALSE(model.data(model.index(0, 0), Qt::ToolTipRole).isValid());
}

TEST_F(TraceSet, NumbersHaveTheMarkOfTheLocale)
{
    add("north.sor");
    const InLocale german(QLocale("de_DE"));
    EXPECT_EQ(text(0, 3),
              QString::number(model.refls().first().endOfFiber(), 'f', 2).replace('.', ','));
    EXPECT_EQ(text(0, 5), "32,50");
    EXPECT_EQ(text(0, 6), "3,12");
}

TEST_F(TraceSet, DateBeyondThirtyTwoBitsOfMillisecondsIsRight)
{
    SorSketch late = SorSketch::plain();
    late.fxd.dateTime_s = 4'102'444'800U; // 2100-01-01
    model.addReflFromFile(files.write("late.sor", late));
    EXPECT_EQ(text(0, 1), "01.01.2100 00:00");
}

TEST_F(TraceSet, DateIsThatOfUniversalTimeWhereverOneIs)
{
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Asia/Tokyo");
    tzset();
    add("a.sor");
    EXPECT_EQ(text(0, 1), "14.11.2023 22:13");
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
}

TEST_F(TraceSet, WhatAFileDoesNotTellIsNotShownAsIfItDid)
{
    SorSketch bare = SorSketch::plain();
    bare.leftOut = {"FxdParams"};
    model.addReflFromFile(files.write("bare.sor", bare));
    EXPECT_EQ(text(0, 1), "-") << "when it was measured";
    EXPECT_EQ(text(0, 3), "-") << "how long the fibre is";
}

TEST_F(TraceSet, FibreThatEndsAtTheStartHasADistance)
{
    Reflectogram refl = files.plain();
    refl.setEventList({Event(Event::SpanEnd, 0, 10)});
    model.addRefl(refl);
    EXPECT_EQ(text(0, 3), "0.00");
}

TEST_F(TraceSet, IndexOutsideHasNoValue)
{
    add("a.sor");
    EXPECT_FALSE(model.data(QModelIndex(), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.data(model.index(1, 0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.data(model.index(0, 7), Qt::DisplayRole).isValid());
}

/// Makes an index of any cell, as a view may still hold one that there was before.
struct AnyCell : ReflsTableModel
{
    using ReflsTableModel::createIndex;
};

TEST_F(TraceSet, CellBesideTheTableHasNoValue)
{
    AnyCell set;
    set.addRefl(files.plain());
    for (const int role :
         {Qt::DisplayRole, Qt::TextAlignmentRole, Qt::ForegroundRole, Qt::BackgroundRole}) {
        EXPECT_TRUE(set.data(set.createIndex(0, 6), role).isValid()) << role;
        EXPECT_FALSE(set.data(set.createIndex(0, 7), role).isValid()) << role;
        EXPECT_FALSE(set.data(set.createIndex(1, 6), role).isValid()) << role;
    }
}

TEST_F(TraceSet, AlignsTextInTheMiddleAndNumbersAtTheRight)
{
    add("a.sor");
    for (int column = 0; column < 7; ++column) {
        const int alignment = model.data(model.index(0, column), Qt::TextAlignmentRole).toInt();
        EXPECT_EQ(alignment, (column < 2 ? Qt::AlignHCenter : Qt::AlignRight) | Qt::AlignVCenter);
    }
}

TEST_F(TraceSet, NameIsWrittenInTheTracesColourAndTheMainRowInWhite)
{
    const Reflectogram first = add("a.sor");
    add("b.sor");
    EXPECT_EQ(colour(0, 0, Qt::ForegroundRole), model.getColor(first));
    EXPECT_FALSE(model.data(model.index(0, 1), Qt::ForegroundRole).isValid());
    EXPECT_FALSE(model.data(model.index(0, 0), Qt::BackgroundRole).isValid());
    for (int column = 0; column < 7; ++column) {
        EXPECT_EQ(colour(1, column, Qt::ForegroundRole), QColor(Qt::white));
        EXPECT_EQ(
            colour(1, column, Qt::BackgroundRole),
            PaletteFactory::getPalette("GenericWindow").color(QPalette::Current, QPalette::Button));
    }
}

TEST_F(TraceSet, UnknownFibreEndShowsAsDash)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events.pop_back();
    sketch.keyEvents.summary = {};
    model.addReflFromFile(files.write("open.sor", sketch));
    EXPECT_EQ(text(0, 3), "-");
    EXPECT_EQ(text(0, 5), "-"); // stored as 0, which means not measured
}

TEST_F(TraceSet, ReturnLossIsComputedInTheBackgroundWhereTheFileHasNone)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    model.addReflFromFile(files.write("new.sor", sketch));
    forgetSignals();
    EXPECT_EQ(text(0, 6), "-");
    EXPECT_EQ(text(0, 5), "-");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !resets.isEmpty(); }, 5000));
    EXPECT_NE(text(0, 5), "-");
    EXPECT_GT(text(0, 5).toDouble(), 10.0);
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(TraceSet, HeadersSpeakTheUsersLanguageButTheWavelengthDoesNot)
{
    const testing_support::Echo echo;
    QStringList headers;
    for (int column = 0; column < 7; ++column) {
        headers << model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }
    EXPECT_EQ(headers,
              QStringList({"<Name>", "<Date>", QString(QChar(0x03BB)), "<Distance>", "<Pulse>",
                           "<ORL>", "<Total loss>"}));
}

TEST_F(TraceSet, HeadersAreHorizontalTextAndNothingElse)
{
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::TextAlignmentRole).isValid());
    EXPECT_EQ(model.headerData(7, Qt::Horizontal, Qt::DisplayRole).toInt(), 8); // as any table's
    EXPECT_EQ(model.headerData(0, Qt::Vertical, Qt::DisplayRole).toInt(), 1);
}

TEST_F(TraceSet, TraceThatWasJustMeasuredHasNoFiguresYet)
{
    const Reflectogram fresh = files.measured(TraceBuilder().fibre(2_km));
    ASSERT_EQ(fresh.sorData()->keyEvents(), nullptr);
    model.addRefl(fresh);
    EXPECT_EQ(text(0, 3), "-");
    EXPECT_EQ(text(0, 6), "-");
}

TEST_F(TraceSet, EmptyTraceIsARowOfDashesAndComputesNothing)
{
    model.addRefl(Reflectogram());
    forgetSignals();
    EXPECT_EQ(text(0, 0), "");
    EXPECT_EQ(text(0, 1), "-");
    EXPECT_EQ(text(0, 5), "-");
    EXPECT_EQ(text(0, 6), "-");
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(resets.size(), 0);
}

TEST_F(TraceSet, ChangedMainTraceTakesTheMarkAlong)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    model.setMainRefl(first);
    EXPECT_EQ(colour(0, 0, Qt::ForegroundRole), QColor(Qt::white));
    EXPECT_EQ(colour(1, 0, Qt::ForegroundRole), model.getColor(second));
    EXPECT_TRUE(model.data(model.index(0, 6), Qt::BackgroundRole).isValid());
    EXPECT_FALSE(model.data(model.index(1, 6), Qt::BackgroundRole).isValid());
}

/// The only thread of the pool, kept busy until it is let go.
class BusyPool
{
public:
    BusyPool()
        : threads(QThreadPool::globalInstance()->maxThreadCount())
    {
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        QThreadPool::globalInstance()->start([this] { gate.acquire(); });
    }

    ~BusyPool()
    {
        gate.release();
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(threads);
    }

    BusyPool(const BusyPool&) = delete;
    BusyPool& operator=(const BusyPool&) = delete;

private:
    const int threads;
    QSemaphore gate;
};

TEST_F(TraceSet, EachLookAtAMissingReturnLossStartsAComputationOfItsOwn)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    model.addReflFromFile(files.write("new.sor", sketch));
    {
        const BusyPool busy;
        forgetSignals();
        for (int look = 0; look < 3; ++look) {
            EXPECT_EQ(text(0, 5), "-");
        }
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return resets.size() == 3; }));
    EXPECT_NE(text(0, 5), "-");
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(resets.size(), 3) << "what is known was computed again";
}

TEST_F(TraceSet, MayGoWhileItsReturnLossIsComputed)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    const Reflectogram refl(files.write("new.sor", sketch));
    {
        const BusyPool busy;
        ReflsTableModel other;
        other.addRefl(refl);
        EXPECT_EQ(other.data(other.index(0, 5), Qt::DisplayRole).toString(), "-");
    }
    QCoreApplication::processEvents();
    ASSERT_NE(refl.sorData()->keyEvents(), nullptr);
}

} // namespace
