#include "platform/launcher/palettefactory.h"
#include "refls/reflstablemodel.h"
#include "tests/support/tracefiles.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <ctime>

namespace {

using testing_support::SorSketch;
using testing_support::TraceFiles;
using Waveform::ReflsTableModel;

class TraceSet : public testing::Test
{
protected:
    TraceSet()
        : tester(&model, QAbstractItemModelTester::FailureReportingMode::Warning)
        , mainChanged(&model, SIGNAL(mainReflChanged(Reflectogram)))
                      , deleted(&model, SIGNAL(reflDeleted(Reflectogram)))
                                , allDeleted(&model, SIGNAL(allReflsDeleted()))
                                             , resized(&model, SIGNAL(resize()))
                                                       , resets(&model, SIGNAL(modelReset()))
    {
    }

    Reflectogram add(const QString& name)
    {
        const Reflectogram refl = files.plain(name);
        model.addRefl(refl);
        return refl;
    }

    void forgetSignals()
    {
        for (QSignalSpy* spy : {&mainChanged, &deleted, &allDeleted, &resized, &resets}) {
            spy->clear();
        }
    }

    Reflectogram newMain() const
    {
        return mainChanged.isEmpty() ? Reflectogram()
                                     : mainChanged.last().first().value<Reflectogram>();
    }

    QString text(int row, int column) const
    {
        return model.data(model.index(row, column), Qt::DisplayRole).toString();
    }

    QColor colour(int row, int column, Qt::ItemDataRole role) const
    {
        return model.data(model.index(row, column), role).value<QBrush>().color();
    }

    TraceFiles files;
    ReflsTableModel model;
    QAbstractItemModelTester tester;
    QSignalSpy mainChanged;
    QSignalSpy deleted;
    QSignalSpy allDeleted;
    QSignalSpy resized;
    QSignalSpy resets;
};

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

TEST_F(TraceSet, AlignsTextInTheMiddleAndNumbersAtTheRight)
{
    add("a.sor");
    for (int column = 0; column < 7; ++column) {
        const int alignment = model.data(model.index(0, column), Qt::TextAlignmentRole).toInt();
        EXPECT_EQ(alignment, (column < 2 ? Qt::AlignHCenter : Qt::AlignRight) | Qt::AlignVCenter);
    }
}

TEST_F(TraceSet, AddedTraceBecomesTheMainOne)
{
    const Reflectogram first = add("a.sor");
    EXPECT_EQ(newMain(), first);
    EXPECT_EQ(resized.size(), 1);
    const Reflectogram second = add("b.sor");
    EXPECT_EQ(newMain(), second);
    EXPECT_EQ(model.mainRefl(), second);
    EXPECT_EQ(mainChanged.size(), 2);
}

TEST_F(TraceSet, TellsOfTheAdditionBeforeTheNewMainTrace)
{
    QStringList order;
    QObject::connect(&model, &ReflsTableModel::resize, [&] { order << "resize"; });
    QObject::connect(&model, &ReflsTableModel::mainReflChanged, [&] { order << "main"; });
    add("a.sor");
    EXPECT_EQ(order, QStringList({"resize", "main"}));
}

TEST_F(TraceSet, SameFileIsLoadedOnce)
{
    const QString file = files.write("a.sor", SorSketch::plain());
    model.addReflFromFile(file);
    model.addReflFromFile(file);
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_FALSE(model.isNewRefl(file));
    EXPECT_TRUE(model.isNewRefl(file + "x"));
}

TEST_F(TraceSet, UnreadableFileAddsNothingAndSaysNothing)
{
    model.addReflFromFile(files.path("missing.sor"));
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(resized.size(), 0);
    EXPECT_EQ(mainChanged.size(), 0);
}

TEST_F(TraceSet, ColoursFollowTheNumberOfTracesEverAdded)
{
    // Other tests of this process have added traces: find where the cycle stands.
    const QList<QColor> cycle {Qt::darkBlue, Qt::black, Qt::darkMagenta, Qt::darkGreen};
    const Reflectogram first = add("0.sor");
    const int start = cycle.indexOf(model.getColor(first));
    ASSERT_GE(start, 0);
    for (int i = 1; i < 6; ++i) {
        const Reflectogram refl = add(QString("%1.sor").arg(i));
        EXPECT_EQ(model.getColor(refl), cycle.at((start + i) % 4));
    }
    model.deleteAllRefls();
    const Reflectogram after = add("after.sor");
    EXPECT_EQ(model.getColor(after), cycle.at((start + 6) % 4));
    model.deleteRefl(0);
    EXPECT_EQ(model.getColor(add("later.sor")), cycle.at((start + 7) % 4));
}

TEST_F(TraceSet, TraceOutsideTheSetHasTheColourOfTheFirst)
{
    const Reflectogram first = add("a.sor");
    add("b.sor");
    EXPECT_EQ(model.getColor(Reflectogram()), model.getColor(first));
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

TEST_F(TraceSet, ChoosingTheMainTraceAgainChangesNothing)
{
    add("a.sor");
    add("b.sor");
    forgetSignals();
    model.setMainRefl(1);
    EXPECT_EQ(mainChanged.size(), 0);
    EXPECT_EQ(resets.size(), 0);
    model.setMainRefl(0);
    EXPECT_EQ(mainChanged.size(), 1);
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(TraceSet, MainTraceThatIsNotInTheSetMeansNone)
{
    add("a.sor");
    forgetSignals();
    model.setMainRefl(files.plain("stranger.sor"));
    ASSERT_EQ(mainChanged.size(), 1);
    EXPECT_EQ(newMain(), Reflectogram());
    EXPECT_FALSE(model.mainRefl().isValid());
}

TEST_F(TraceSet, DeletingTheLastMainRowMovesTheMarkUp)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    forgetSignals();
    model.deleteRefl(1);
    EXPECT_EQ(newMain(), first);
    EXPECT_EQ(mainChanged.size(), 1);
    ASSERT_EQ(deleted.size(), 1);
    EXPECT_EQ(deleted.first().first().value<Reflectogram>(), second);
}

TEST_F(TraceSet, DeletingTheMainTraceInTheMiddleMakesItsFollowerMain)
{
    add("a.sor");
    add("b.sor");
    const Reflectogram third = add("c.sor");
    model.setMainRefl(1);
    forgetSignals();
    model.deleteRefl(1);
    EXPECT_EQ(newMain(), third);
    EXPECT_EQ(model.mainRefl(), third);
}

TEST_F(TraceSet, MarkStaysOnItsRowWhenARowAboveIsDeleted)
{
    add("a.sor");
    add("b.sor");
    const Reflectogram third = add("c.sor");
    model.setMainRefl(1);
    forgetSignals();
    model.deleteRefl(0);
    EXPECT_EQ(mainChanged.size(), 0);
    EXPECT_EQ(model.mainRefl(), third);
}

TEST_F(TraceSet, DeletingTheOnlyTraceTellsOfNoMainTraceFirst)
{
    const Reflectogram only = add("a.sor");
    forgetSignals();
    QStringList order;
    QObject::connect(&model, &ReflsTableModel::mainReflChanged, [&] { order << "main"; });
    QObject::connect(&model, &ReflsTableModel::reflDeleted, [&] { order << "deleted"; });
    QObject::connect(&model, &ReflsTableModel::modelReset, [&] { order << "reset"; });
    model.deleteRefl(only);
    EXPECT_EQ(order, QStringList({"main", "reset", "deleted"}));
    EXPECT_EQ(newMain(), Reflectogram());
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(TraceSet, DeletingByAReferenceIntoTheSetIsSafe)
{
    add("a.sor");
    const Reflectogram second = add("b.sor");
    model.deleteRefl(model.refls().first());
    ASSERT_EQ(model.rowCount(), 1);
    EXPECT_EQ(model.refls().first(), second);
}

TEST_F(TraceSet, DeletingWhatIsNotThereIsSilent)
{
    add("a.sor");
    forgetSignals();
    model.deleteRefl(files.plain("stranger.sor"));
    model.deleteRefl(7);
    model.deleteRefl(-1);
    EXPECT_EQ(deleted.size(), 0);
    EXPECT_EQ(resets.size(), 0);
    EXPECT_EQ(model.rowCount(), 1);
}

TEST_F(TraceSet, DeletingAllSaysSoOnceAndNamesNoMainTrace)
{
    add("a.sor");
    add("b.sor");
    forgetSignals();
    QStringList order;
    QObject::connect(&model, &ReflsTableModel::allReflsDeleted, [&] { order << "deleted"; });
    QObject::connect(&model, &ReflsTableModel::modelReset, [&] { order << "reset"; });
    model.deleteAllRefls();
    EXPECT_EQ(order, QStringList({"deleted", "reset"}));
    EXPECT_EQ(allDeleted.size(), 1);
    EXPECT_EQ(mainChanged.size(), 0);
    EXPECT_EQ(deleted.size(), 0);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(model.mainRefl().isValid());
}

TEST_F(TraceSet, TracesMeasuredTogetherBelongTogether)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    EXPECT_EQ(model.association(first), QList<Reflectogram> {first});
    model.associate(second, first);
    const QList<Reflectogram> both {first, second};
    EXPECT_EQ(model.association(first), both);
    EXPECT_EQ(model.association(second), both);
}

TEST_F(TraceSet, GroupThatExistsIsNotExtended)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    const Reflectogram third = add("c.sor");
    model.associate(second, first);
    model.associate(third, first);
    EXPECT_EQ(model.association(first).size(), 2);
    EXPECT_EQ(model.association(third), QList<Reflectogram> {third});
    model.associate(first, third); // the newer group is found first
    EXPECT_EQ(model.association(first), QList<Reflectogram>({third, first}));
}

TEST_F(TraceSet, GroupOfOneIsDissolved)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    model.associate(second, first);
    model.deleteRefl(second);
    EXPECT_EQ(model.association(first), QList<Reflectogram> {first});
    const Reflectogram third = add("c.sor");
    model.associate(third, first); // in no group any more, so it founds one
    EXPECT_EQ(model.association(first), QList<Reflectogram>({first, third}));
    model.deleteAllRefls();
    EXPECT_EQ(model.association(first), QList<Reflectogram> {first});
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return resets.size() > 0; }, 5000));
    EXPECT_NE(text(0, 5), "-");
    EXPECT_GT(text(0, 5).toDouble(), 10.0);
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(TraceSet, UpdateResetsTheModel)
{
    forgetSignals();
    model.update();
    EXPECT_EQ(resets.size(), 1);
}

} // namespace
