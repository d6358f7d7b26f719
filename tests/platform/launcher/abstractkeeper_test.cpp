#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/nameprompt.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

class FakeKeeper : public AbstractKeeper
{
public:
    int doSave(const QString& name) override
    {
        EXPECT_FALSE(isSaveEnabled());
        EXPECT_FALSE(isLoadEnabled());
        saved << name;
        if (during) {
            during();
        }
        return 0;
    }

    int doLoad() override
    {
        EXPECT_TRUE(isBusy());
        ++loads;
        if (during) {
            during();
        }
        return 0;
    }

    [[nodiscard]] bool fileExists(const QString& name) const override
    {
        return files.contains(name);
    }

    [[nodiscard]] QString reportAutoName() const override { return "trace_0001"; }

    using AbstractKeeper::isQuitWanted;
    using AbstractKeeper::setMeasStartDate;
    using AbstractKeeper::setMeasStopDate;

    QStringList files;
    QStringList saved;
    std::function<void()> during;
    int loads = 0;
};

/// What a scripted prompt answers and was asked.
struct Script
{
    QStringList names; // one for each question; then it gives up
    QList<bool> overwrites;
    QStringList asked;
    std::function<void()> whileAsking;
};

class ScriptedPrompt : public NamePrompt
{
public:
    explicit ScriptedPrompt(std::shared_ptr<Script> given)
        : script(std::move(given))
    {
    }

    std::optional<QString> askName(const QString& proposed) override
    {
        script->asked << "name " + proposed;
        if (script->whileAsking) {
            script->whileAsking();
        }
        return script->names.isEmpty() ? std::nullopt : std::optional(script->names.takeFirst());
    }

    bool askOverwrite(const QString& name) override
    {
        script->asked << "replace " + name;
        return !script->overwrites.isEmpty() && script->overwrites.takeFirst();
    }

private:
    std::shared_ptr<Script> script;
};

class Keeper : public testing::Test
{
protected:
    Keeper()
    {
        keeper->setNamePrompt(std::make_unique<ScriptedPrompt>(script));
        keeper->enableSave(true);
    }

    std::shared_ptr<Script> script = std::make_shared<Script>();
    std::unique_ptr<FakeKeeper> keeper = std::make_unique<FakeKeeper>();
};

} // namespace

TEST_F(Keeper, ProposesANameAndSavesUnderTheSafeFormOfTheAnswer)
{
    script->names = QStringList {"../my trace."};
    keeper->save();
    EXPECT_EQ(script->asked, QStringList {"name trace_0001"});
    EXPECT_EQ(keeper->saved, QStringList {"_my trace"});
}

TEST_F(Keeper, SavesNothingWhenTheUserGivesUp)
{
    keeper->save();
    EXPECT_TRUE(keeper->saved.isEmpty());
    EXPECT_TRUE(keeper->isSaveEnabled());
}

TEST_F(Keeper, SavesNothingUnderANameOfWhichNothingIsLeft)
{
    script->names = QStringList {" .. ", "second"};
    keeper->save();
    EXPECT_TRUE(keeper->saved.isEmpty());
    EXPECT_EQ(script->asked.size(), 1);
    EXPECT_FALSE(keeper->isBusy());
}

TEST_F(Keeper, AsksBeforeItReplacesAFile)
{
    keeper->files = QStringList {"old"};
    script->names = QStringList {"old"};
    script->overwrites = {true};
    keeper->save();
    EXPECT_EQ(script->asked, (QStringList {"name trace_0001", "replace old"}));
    EXPECT_EQ(keeper->saved, QStringList {"old"});
}

TEST_F(Keeper, AsksForAnotherNameWhereTheFileMustStay)
{
    keeper->files = QStringList {"old"};
    script->names = QStringList {"old", "new"};
    script->overwrites = {false};
    keeper->save();
    EXPECT_EQ(script->asked, (QStringList {"name trace_0001", "replace old", "name old"}));
    EXPECT_EQ(keeper->saved, QStringList {"new"});
}

TEST_F(Keeper, LooksForTheFileUnderItsSafeName)
{
    keeper->files = QStringList {"a_b"};
    script->names = QStringList {"a/b"};
    keeper->save();
    EXPECT_EQ(script->asked.value(1), "replace a_b");
    EXPECT_TRUE(keeper->saved.isEmpty());
}

TEST_F(Keeper, HasBothButtonsOffUntilTheSaveReturns)
{
    const QSignalSpy save(keeper.get(), SIGNAL(saveEnabled(bool)));
    const QSignalSpy load(keeper.get(), SIGNAL(loadEnabled(bool)));
    const QSignalSpy busy(keeper.get(), SIGNAL(busyChanged(bool)));
    script->names = QStringList {"x"};
    script->whileAsking = [this] {
        EXPECT_FALSE(keeper->isSaveEnabled());
        EXPECT_FALSE(keeper->isLoadEnabled());
        keeper->save(); // a second press is nothing
        keeper->load();
    };
    keeper->during = [this] { keeper->save(); };
    keeper->save();
    EXPECT_EQ(keeper->saved.size(), 1);
    EXPECT_EQ(keeper->loads, 0);
    const auto values = [](const QSignalSpy& spy) {
        QList<bool> list;
        for (const auto& one : spy) {
            list << one.at(0).toBool();
        }
        return list;
    };
    EXPECT_EQ(values(save), (QList<bool> {false, true}));
    EXPECT_EQ(values(load), (QList<bool> {false, true}));
    EXPECT_EQ(values(busy), (QList<bool> {true, false}));
}

TEST_F(Keeper, HasBothButtonsOffUntilTheLoadReturns)
{
    keeper->during = [this] {
        EXPECT_FALSE(keeper->isSaveEnabled());
        EXPECT_FALSE(keeper->isLoadEnabled());
        keeper->load();
    };
    keeper->load();
    EXPECT_EQ(keeper->loads, 1);
    EXPECT_TRUE(keeper->isLoadEnabled());
}

TEST_F(Keeper, KeepsWhatWasAskedOfTheButtonsDuringASaveForItsEnd)
{
    script->names = QStringList {"x"};
    const QSignalSpy save(keeper.get(), SIGNAL(saveEnabled(bool)));
    keeper->during = [this] {
        keeper->enableSave(false);
        keeper->enableSave(true);
        keeper->enableSave(false);
        EXPECT_FALSE(keeper->isSaveEnabled());
    };
    keeper->save();
    EXPECT_FALSE(keeper->isSaveEnabled());
    EXPECT_TRUE(keeper->isLoadEnabled());
    EXPECT_EQ(save.count(), 1); // off at the press, and off it stays
}

TEST_F(Keeper, AnnouncesOnlyRealChangesOfTheButtons)
{
    const QSignalSpy save(keeper.get(), SIGNAL(saveEnabled(bool)));
    const QSignalSpy load(keeper.get(), SIGNAL(loadEnabled(bool)));
    keeper->enableSave(true);
    EXPECT_EQ(save.count(), 0);
    keeper->enableSave(false);
    keeper->enableSave(false);
    EXPECT_EQ(save.count(), 1);
    keeper->enableLoad(false);
    EXPECT_EQ(load.count(), 1);
    EXPECT_FALSE(load.at(0).at(0).toBool());
    keeper->save();
    keeper->load();
    EXPECT_TRUE(script->asked.isEmpty());
    EXPECT_EQ(keeper->loads, 0);
}

TEST_F(Keeper, ForgetsAWishToQuitWithTheSaveThatTheUserGaveUp)
{
    script->whileAsking = [this] { keeper->quitWanted(); };
    keeper->save(); // no name is given
    EXPECT_TRUE(keeper->isQuitWanted());
    script->whileAsking = nullptr;
    script->names = QStringList {"x"};
    bool wanted = true;
    keeper->during = [&] {
        wanted = keeper->isQuitWanted();
        keeper->quitWanted();
        EXPECT_TRUE(keeper->isQuitWanted());
    };
    keeper->save();
    EXPECT_EQ(keeper->saved.size(), 1);
    EXPECT_FALSE(wanted);
}

TEST_F(Keeper, StandsBeingDeletedWhileItAsks)
{
    script->names = QStringList {"x"};
    script->whileAsking = [this] { keeper.reset(); };
    keeper->save();
    EXPECT_EQ(keeper, nullptr);
}

TEST(AbstractKeeper, CanLoadButNotSaveAtFirst)
{
    const FakeKeeper keeper;
    EXPECT_FALSE(keeper.isSaveEnabled());
    EXPECT_TRUE(keeper.isLoadEnabled());
    EXPECT_FALSE(keeper.measStopDate().isValid());
    EXPECT_EQ(keeper.config(), nullptr);
}

TEST(AbstractKeeper, KeepsTheDatesOfTheMeasurement)
{
    FakeKeeper keeper;
    const QDateTime start(QDate(2024, 2, 29), QTime(12, 0, 1));
    const QDateTime stop = start.addSecs(15);
    keeper.setMeasStartDate(start);
    keeper.setMeasStopDate(stop);
    EXPECT_EQ(keeper.measStartDate(), start);
    EXPECT_EQ(keeper.measStopDate(), stop);
}
