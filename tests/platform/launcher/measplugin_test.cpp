#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/measplugin.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/pluginicon.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

namespace {

QStringList diary;

class DiaryModel : public MeasModel
{
public:
    explicit DiaryModel(CardController* card)
        : MeasModel(card)
    {
        diary << "model";
    }

    ~DiaryModel() override { diary << "~model"; }

protected:
    void doInit() override { diary << "init"; }
};

class DiaryWindow : public MeasWindow
{
public:
    DiaryWindow() { diary << "window"; }

    ~DiaryWindow() override { diary << "~window"; }

    void setModel(PluginModel* model) override
    {
        MeasWindow::setModel(model);
        diary << (model == nullptr ? "setModel(null)" : "setModel");
    }
};

class DiaryKeeper : public AbstractKeeper
{
public:
    DiaryKeeper() { diary << "keeper"; }

    ~DiaryKeeper() override { diary << "~keeper"; }

    int doSave(const QString& /*name*/) override { return 0; }

    int doLoad() override { return 0; }

    [[nodiscard]] bool fileExists(const QString& /*name*/) const override { return false; }

    [[nodiscard]] QString reportAutoName() const override { return {}; }
};

/// A plugin that asks for things while it makes others.
class FakePlugin : public MeasPlugin
{
public:
    FakePlugin()
        : MeasPlugin("otdr")
    {
        setName("Fake");
        diary.clear();
    }

    CardModel* createCardModel() override
    {
        if (curious) {
            EXPECT_EQ(model(), nullptr);
            EXPECT_EQ(window(), nullptr);
            EXPECT_EQ(myKeeper(), nullptr);
        }
        return new DiaryModel(cardController);
    }

    PluginWindow* createWindow() override
    {
        if (curious) {
            EXPECT_NE(model(), nullptr);
            EXPECT_EQ(window(), nullptr);
            EXPECT_EQ(myKeeper(), nullptr);
        }
        return withWindow ? new DiaryWindow : nullptr;
    }

    AbstractKeeper* createKeeper() override
    {
        ++keeperCalls;
        if (incurious) {
            return new DiaryKeeper;
        }
        EXPECT_NE(model(), nullptr);
        EXPECT_EQ(window() != nullptr, withWindow);
        EXPECT_EQ(myKeeper(), nullptr);
        return window() == nullptr ? nullptr : new DiaryKeeper;
    }

    PluginIcon* createIcon() override
    {
        ++iconCalls;
        return nullptr;
    }

    bool curious = false;
    bool incurious = false;
    bool withWindow = true;
    int keeperCalls = 0;
    int iconCalls = 0;
};

} // namespace

TEST(MeasPlugin, MakesNothingUntilItIsAsked)
{
    {
        const FakePlugin plugin;
    }
    EXPECT_TRUE(diary.isEmpty());
}

TEST(MeasPlugin, MakesModelWindowAndKeeperOnceInThisOrder)
{
    const QStringList order {"model", "init", "window", "setModel", "keeper"};
    FakePlugin plugin;
    AbstractKeeper* keeper = plugin.myKeeper();
    ASSERT_NE(keeper, nullptr);
    EXPECT_EQ(diary, order);
    EXPECT_EQ(plugin.myKeeper(), keeper);
    PluginWindow* window = plugin.window();
    EXPECT_EQ(plugin.window(), window);
    EXPECT_EQ(plugin.model(), plugin.model());
    EXPECT_EQ(window->pluginModel(), plugin.model());
    EXPECT_EQ(diary, order);
}

TEST(MeasPlugin, MakesTheSameWhicheverIsAskedForFirst)
{
    const QStringList order {"model", "init", "window", "setModel", "keeper"};
    {
        FakePlugin plugin;
        plugin.model();
        EXPECT_EQ(diary, (QStringList {"model", "init"}));
        plugin.window();
        plugin.myKeeper();
        EXPECT_EQ(diary, order);
    }
    FakePlugin plugin;
    plugin.window();
    EXPECT_EQ(diary, (QStringList {"model", "init", "window", "setModel"}));
    plugin.model();
    plugin.myKeeper();
    EXPECT_EQ(diary, order);
}

TEST(MeasPlugin, AnswersNullForWhatIsStillBeingMade)
{
    FakePlugin plugin;
    plugin.curious = true;
    EXPECT_NE(plugin.myKeeper(), nullptr);
    EXPECT_EQ(diary, (QStringList {"model", "init", "window", "setModel", "keeper"}));
}

TEST(MeasPlugin, GivesTheWindowItsModelEvenIfTheModelAskedForTheWindow)
{
    FakePlugin plugin;
    plugin.curious = true;
    plugin.model();
    EXPECT_EQ(diary, (QStringList {"model", "init"}));
    EXPECT_EQ(plugin.window()->pluginModel(), plugin.model());
}

TEST(MeasPlugin, MakesTheWindowBeforeAKeeperThatDoesNotAskForIt)
{
    FakePlugin plugin;
    plugin.incurious = true;
    plugin.myKeeper();
    EXPECT_EQ(diary, (QStringList {"model", "init", "window", "setModel", "keeper"}));
}

TEST(MeasPlugin, AsksAFactoryOnceEvenIfItMadeNothing)
{
    FakePlugin plugin;
    plugin.withWindow = false;
    EXPECT_EQ(plugin.myKeeper(), nullptr);
    EXPECT_EQ(plugin.myKeeper(), nullptr);
    EXPECT_EQ(plugin.window(), nullptr);
    EXPECT_EQ(plugin.keeperCalls, 1);
    plugin.showWindow(); // nothing to show
}

TEST(MeasPlugin, DeletesKeeperWindowAndModelInThisOrder)
{
    {
        FakePlugin plugin;
        plugin.myKeeper();
        diary.clear();
        plugin.release();
        EXPECT_EQ(diary, (QStringList {"~keeper", "~window", "~model"}));
        EXPECT_EQ(plugin.myKeeper(), nullptr);
        EXPECT_EQ(plugin.window(), nullptr);
        EXPECT_EQ(plugin.model(), nullptr);
        plugin.release();
    }
    EXPECT_EQ(diary.size(), 3);
    {
        FakePlugin plugin;
        plugin.myKeeper();
        diary.clear();
    }
    EXPECT_EQ(diary, (QStringList {"~keeper", "~window", "~model"}));
}

TEST(MeasPlugin, StandsAWindowThatItsFrameHasDeleted)
{
    FakePlugin plugin;
    auto frame = std::make_unique<QWidget>();
    plugin.window()->setParent(frame.get());
    frame.reset();
    EXPECT_EQ(plugin.window(), nullptr);
    EXPECT_EQ(diary.count("~window"), 1);
}

TEST(MeasPlugin, IsReachedByTheInterfaceIdentifier)
{
    FakePlugin plugin;
    QObject* object = &plugin;
    auto* interface = qobject_cast<LauncherPluginInterface*>(object);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface, static_cast<LauncherPluginInterface*>(&plugin));
    EXPECT_NE(object->qt_metacast("waveform.launcher.LauncherPluginInterface2/1.0"), nullptr);
    const std::string identifier = LauncherPluginInterface_iid;
    const std::string ending = "LauncherPluginInterface2/1.0";
    EXPECT_EQ(identifier.substr(identifier.size() - ending.size()), ending);
    EXPECT_EQ(interface->name(), "Fake");
    EXPECT_EQ(interface->category(), "otdr");
    EXPECT_NE(interface->card(), nullptr);
    EXPECT_TRUE(interface->isOptionsOpen());
    EXPECT_EQ(interface->window(), plugin.window());
    EXPECT_EQ(interface->model(), plugin.model());
    EXPECT_EQ(interface->myKeeper(), plugin.myKeeper());
    EXPECT_EQ(interface->status(), nullptr);
}

TEST(MeasPlugin, AsksForItsIconOnceUnlessTheHostGaveOne)
{
    FakePlugin plugin;
    EXPECT_EQ(plugin.icon(), nullptr);
    EXPECT_EQ(plugin.icon(), nullptr);
    EXPECT_EQ(plugin.iconCalls, 1);

    QWidget screen;
    PluginIcon icon("Fake", QIcon(), &screen);
    FakePlugin given;
    given.setIcon(&icon);
    EXPECT_EQ(given.icon(), &icon);
    EXPECT_EQ(given.iconCalls, 0);
}

TEST(MeasPlugin, ShowsItsWindow)
{
    FakePlugin plugin;
    plugin.showWindow();
    EXPECT_TRUE(plugin.window()->isVisible());
}
