#include "tests/refls/traceset.h"
#include "tests/support/metamethods.h"

#include <QtTest>

namespace {

using testing_support::SorSketch;
using testing_support::TraceSet;
using Waveform::ReflsTableModel;

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

TEST_F(TraceSet, TellsOfANewMainTraceBeforeItsRowsAreReset)
{
    add("a.sor");
    add("b.sor");
    QStringList order;
    QObject::connect(&model, &ReflsTableModel::mainReflChanged, [&] { order << "main"; });
    QObject::connect(&model, &ReflsTableModel::modelReset, [&] { order << "reset"; });
    model.setMainRefl(0);
    EXPECT_EQ(order, QStringList({"main", "reset"}));
    order.clear();
    add("c.sor");
    EXPECT_EQ(order, QStringList({"reset", "main", "reset"}));
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

TEST_F(TraceSet, TraceAfterAllWereDeletedIsTheMainOne)
{
    add("a.sor");
    model.deleteAllRefls();
    forgetSignals();
    const Reflectogram next = add("b.sor");
    EXPECT_EQ(mainChanged.size(), 1);
    EXPECT_EQ(newMain(), next);
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

TEST_F(TraceSet, UpdateResetsTheModel)
{
    forgetSignals();
    model.update();
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(TraceSet, MarkOfTheLastRowMovesUpInSilenceWhereARowAboveIsDeleted)
{
    add("a.sor");
    add("b.sor");
    const Reflectogram third = add("c.sor");
    forgetSignals();
    model.deleteRefl(0);
    EXPECT_EQ(model.mainRefl(), third);
    EXPECT_EQ(mainChanged.size(), 0);
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(TraceSet, DeletingBelowTheMarkLeavesIt)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    model.setMainRefl(first);
    forgetSignals();
    model.deleteRefl(second);
    EXPECT_EQ(model.mainRefl(), first);
    EXPECT_EQ(mainChanged.size(), 0);
    EXPECT_EQ(deleted.size(), 1);
}

TEST_F(TraceSet, DeletingTheOnlyTraceTellsOfNoMainOneAlsoWhereNoneWasMain)
{
    add("a.sor");
    model.setMainRefl(-1);
    forgetSignals();
    model.deleteRefl(0);
    ASSERT_EQ(mainChanged.size(), 1);
    EXPECT_EQ(newMain(), Reflectogram());
}

TEST_F(TraceSet, RowThatDoesNotExistHasNoMainTrace)
{
    add("a.sor");
    forgetSignals();
    model.setMainRefl(5);
    ASSERT_EQ(mainChanged.size(), 1);
    EXPECT_EQ(newMain(), Reflectogram());
    EXPECT_FALSE(model.mainRefl().isValid());
}

TEST_F(TraceSet, TraceAddedTwiceIsMeantInItsFirstRow)
{
    const Reflectogram first = add("a.sor");
    add("b.sor");
    model.addRefl(first);
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(colour(0, 1, Qt::ForegroundRole), QColor(Qt::white));
    EXPECT_FALSE(model.data(model.index(2, 1), Qt::ForegroundRole).isValid());
}

TEST_F(TraceSet, NameOfAFileIsComparedLetterByLetter)
{
    const QString file = files.write("a.sor", SorSketch::plain());
    model.addReflFromFile(file);
    QString sameFile = file;
    sameFile.replace("/a.sor", "/./a.sor");
    EXPECT_TRUE(model.isNewRefl(sameFile));
    model.addReflFromFile(sameFile);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(TraceSet, ColoursAreCountedAcrossSets)
{
    const QList<QColor> cycle {Qt::darkBlue, Qt::black, Qt::darkMagenta, Qt::darkGreen};
    const int here = cycle.indexOf(model.getColor(add("a.sor")));
    ReflsTableModel other;
    other.addRefl(files.plain("b.sor"));
    EXPECT_EQ(other.getColor(other.mainRefl()), cycle.at((here + 1) % 4));
}

TEST_F(TraceSet, ColourGoesWithItsTrace)
{
    add("a.sor");
    const Reflectogram second = add("b.sor");
    const QColor colourOfSecond = model.getColor(second);
    model.deleteRefl(0);
    EXPECT_EQ(model.getColor(second), colourOfSecond);
    EXPECT_EQ(model.getColor(Reflectogram()), colourOfSecond) << "it is the first now";
}

TEST_F(TraceSet, FifthTraceIsTaken) // how many may be loaded is decided before they come here
{
    for (int i = 0; i < 5; ++i) {
        add(QString("%1.sor").arg(i));
    }
    EXPECT_EQ(model.rowCount(), 5);
}

TEST_F(TraceSet, GroupsOfTheDeletedTraceAreDissolvedAndOthersStay)
{
    const Reflectogram first = add("a.sor");
    const Reflectogram second = add("b.sor");
    const Reflectogram third = add("c.sor");
    const Reflectogram fourth = add("d.sor");
    model.associate(second, first);
    model.associate(fourth, third);
    model.deleteRefl(first);
    EXPECT_EQ(model.association(second), QList<Reflectogram> {second});
    EXPECT_EQ(model.association(third), QList<Reflectogram>({third, fourth}));
}

TEST_F(TraceSet, SignalsAndSlotsAreTheAgreedOnes)
{
    const QStringList agreed = {
        "signal resize()",
        "signal reflDeleted(Reflectogram refl)",
        "signal mainReflChanged(Reflectogram refl)",
        "signal allReflsDeleted()",
        "public deleteAllRefls()",
        "public deleteRefl(int row)",
        "public setMainRefl(int row)",
        "public setMainRefl(Reflectogram refl)",
        "public update()",
        "public addReflFromFile(QString file)",
        "public associate(Reflectogram refl, Reflectogram target)",
    };
    EXPECT_EQ(testing_support::agreedMethods(ReflsTableModel::staticMetaObject, agreed), agreed);
}

} // namespace
