#include "acquisition/model.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/warningwindow.h"
#include "plugin/plugin.h"
#include "refls/reflstablemodel.h"
#include "storage/keeper.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/plugin/untakenconnection.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/warnings.h"
#include "window/window.h"

#include <QLibrary>
#include <QPluginLoader>
#include <QSignalSpy>

#include <gmock/gmock.h>

namespace {

using testing_support::AcquisitionDir;
using testing_support::ConfigHome;
using testing_support::expectWarning;
using testing_support::kUntakenConnection;
using Waveform::Keeper;
using Waveform::Model;
using Waveform::Plugin;
using Waveform::Window;

class PluginTest : public testing::Test
{
protected:
    const AcquisitionDir directory;
    const ConfigHome home;
};

TEST_F(PluginTest, MakesItsThreeObjectsOnceAndWiresThem)
{
    expectWarning(kUntakenConnection);
    Plugin plugin;
    auto* model = qobject_cast<Model*>(plugin.model());
    auto* window = qobject_cast<Window*>(plugin.window());
    auto* keeper = qobject_cast<Keeper*>(plugin.myKeeper());
    ASSERT_NE(model, nullptr);
    ASSERT_NE(window, nullptr);
    ASSERT_NE(keeper, nullptr);
    EXPECT_EQ(plugin.model(), model);
    EXPECT_EQ(plugin.window(), window);
    EXPECT_EQ(plugin.myKeeper(), keeper);
    EXPECT_EQ(window->pluginModel(), model);
    EXPECT_EQ(window->parentWidget(), nullptr); // no icon, no parent
    EXPECT_NE(keeper->config(), nullptr);
    EXPECT_FALSE(keeper->configFileName().isEmpty()) << "the keeper has no model";
}

TEST_F(PluginTest, HasItsNameAndCategory)
{
    Plugin plugin;
    EXPECT_EQ(plugin.name(), "Waveform");
    EXPECT_EQ(plugin.category(), "otdr");
    EXPECT_TRUE(plugin.isOptionsOpen());
}

TEST_F(PluginTest, AnswersToItsClassAndToTheLaunchersInterface)
{
    Plugin plugin;
    QObject* object = &plugin;
    EXPECT_EQ(object->qt_metacast("Waveform::Plugin"), &plugin);
    EXPECT_EQ(object->qt_metacast(LauncherPluginInterface_iid),
              static_cast<LauncherPluginInterface*>(&plugin));
    EXPECT_EQ(object->qt_metacast("no such class"), nullptr);
    EXPECT_TRUE(QString(LauncherPluginInterface_iid).endsWith("LauncherPluginInterface2/1.0"));
    EXPECT_STREQ(object->metaObject()->className(), "Waveform::Plugin");
}

TEST_F(PluginTest, KeeperSpeaksThroughTheWindow)
{
    expectWarning(kUntakenConnection);
    Plugin plugin;
    auto* keeper = qobject_cast<Keeper*>(plugin.myKeeper());
    auto* window = qobject_cast<Window*>(plugin.window());
    const QSignalSpy titles(window, SIGNAL(setTitle(QString)));
    emit keeper->setTitle("A title");
    ASSERT_EQ(titles.size(), 1);
    EXPECT_EQ(titles.first().first().toString(), "A title");
    EXPECT_EQ(window->windowTitle(), "A title");

    emit keeper->showNotification("Something to know");
    EXPECT_EQ(window->notification()->text(), "") << "a notification must be queued";
    QCoreApplication::processEvents();
    EXPECT_EQ(window->notification()->text(), "Something to know");
    window->notification()->hide();
}

TEST_F(PluginTest, LoadedFilesReachTheSetOfTraces)
{
    expectWarning(kUntakenConnection);
    Plugin plugin;
    auto* keeper = qobject_cast<Keeper*>(plugin.myKeeper());
    auto* window = qobject_cast<Window*>(plugin.window());
    emit keeper->loadRefl("/no/such/file.sor");
    EXPECT_EQ(window->reflsTableModel()->rowCount(), 0);
    EXPECT_TRUE(QObject::disconnect(keeper,
                                    SIGNAL(loadRefl(QString)), window->reflsTableModel(),
                                           SLOT(addReflFromFile(QString))));
}

class ForeignWindow : public Plugin
{
public:
    PluginWindow* createWindow() override { return new PluginWindow; }
};

TEST_F(PluginTest, WindowOfAnotherKindGetsNoKeeper)
{
    ForeignWindow plugin;
    ASSERT_NE(plugin.window(), nullptr);
    EXPECT_EQ(plugin.myKeeper(), nullptr);
    EXPECT_EQ(plugin.findChild<Keeper*>(), nullptr);
}

TEST_F(PluginTest, LibraryHandsOutOneObjectAndANewOneAfterItsEnd)
{
    QLibrary library(WAVEFORM_PLUGIN);
    ASSERT_TRUE(library.load()) << qPrintable(library.errorString());
    using Instance = QObject* (*)();
    const auto instance = reinterpret_cast<Instance>(library.resolve("qt_plugin_instance"));
    ASSERT_NE(instance, nullptr);
    QObject* first = instance();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(instance(), first);
    delete first;
    QObject* second = instance();
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(second->metaObject()->className(), "Waveform::Plugin");
    EXPECT_EQ(instance(), second);
    delete second;
}

TEST_F(PluginTest, LibraryTellsTheQtItWasBuiltFor)
{
    QLibrary library(WAVEFORM_PLUGIN);
    ASSERT_TRUE(library.load());
    using Query = const char* (*)();
    const auto query =
        reinterpret_cast<Query>(library.resolve("qt_plugin_query_verification_data"));
    ASSERT_NE(query, nullptr);
    const QString data = query();
    EXPECT_TRUE(
        data.startsWith("pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=" QT_VERSION_STR "\n"))
        << qPrintable(data);
    EXPECT_TRUE(data.contains("\ndebug="));
    EXPECT_TRUE(data.contains("\nbuildkey="));
}

TEST_F(PluginTest, IsFoundByTheQtPluginLoader)
{
    const QPluginLoader loader(WAVEFORM_PLUGIN);
    EXPECT_EQ(loader.metaData().value("IID").toString(), LauncherPluginInterface_iid);
}

} // namespace
