// How the plugin's objects hang together, and that nothing of it speaks up on the console.

#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/pluginicon.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfigmodel.h"
#include "plugin/plugin.h"
#include "refls/reflstablemodel.h"
#include "storage/keeper.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/plugin/untakenconnection.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"
#include "window/window.h"

#include <QPushButton>
#include <QThread>
#include <QThreadPool>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace testing_support; // doubles and builders
using Waveform::Keeper;
using Waveform::Model;
using Waveform::Plugin;
using Waveform::Window;

class Wiring : public testing::Test
{
protected:
    /// The plugin with all that it makes, its window on the screen.
    void show()
    {
        expectWarning(kUntakenConnection);
        plugin = std::make_unique<Plugin>();
        window()->resize(800, 480);
        window()->show();
        ASSERT_NE(plugin->myKeeper(), nullptr);
        QCoreApplication::processEvents();
    }

    Window* window() const { return qobject_cast<Window*>(plugin->window()); }

    Keeper* keeper() const { return qobject_cast<Keeper*>(plugin->myKeeper()); }

    void press() const { QTest::mouseClick(window()->actionButton(), Qt::LeftButton); }

    const AcquisitionDir directory;
    const ConfigHome home;
    const FakePrograms programs;
    TraceFiles files;
    std::unique_ptr<Plugin> plugin;
};

TEST_F(Wiring, KeeperIsConnectedToWindowAndTraces)
{
    show();
    EXPECT_EQ(keeper()->parent(), plugin.get());

    struct Link
    {
        const char* signal;
        QObject* to;
        const char* member;
    };

    const Link links[] = {
        {SIGNAL(loadRefl(QString)), window()->reflsTableModel(), SLOT(addReflFromFile(QString))},
                {SIGNAL(setTitle(QString)), window(), SIGNAL(setTitle(QString))},
                        {SIGNAL(setTitle(QString)), window(), SLOT(setWindowTitle(QString))},
                                {SIGNAL(setWaitWindowVisible(bool)), window(),
                                        SLOT(setWaitWindowVisible(bool))},
                                        {SIGNAL(showNotification(QString)),
                                                window()->notification(), SLOT(show(QString))},
                                        };
    for (const Link& link : links) {
        EXPECT_TRUE(QObject::disconnect(keeper(), link.signal, link.to, link.member))
            << link.signal;
    }
}

TEST_F(Wiring, FileThatTheKeeperLoadsIsAMemberOfTheSet)
{
    show();
    emit keeper()->loadRefl(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(window()->reflsTableModel()->rowCount(), 1);
    QThreadPool::globalInstance()->waitForDone();
}

TEST_F(Wiring, WaitWindowFollowsTheKeeper)
{
    show();
    const auto isWaiting = [this] {
        for (const QDialog* dialog : window()->findChildren<QDialog*>()) {
            if (dialog->isVisible() && dialog->isModal()) {
                return true;
            }
        }
        return false;
    };
    emit keeper()->setWaitWindowVisible(true);
    EXPECT_TRUE(isWaiting());
    emit keeper()->setWaitWindowVisible(false);
    EXPECT_FALSE(isWaiting());
}

TEST_F(Wiring, NotificationFromAnotherThreadIsShownByTheGui)
{
    show();
    std::unique_ptr<QThread> worker(
        QThread::create([this] { emit keeper()->showNotification("Saved"); }));
    worker->start();
    ASSERT_TRUE(worker->wait(5000));
    EXPECT_EQ(window()->notification()->text(), "");
    QCoreApplication::processEvents();
    EXPECT_EQ(window()->notification()->text(), "Saved");
    window()->notification()->hide();
}

TEST_F(Wiring, ModelAndKeeperWorkWithThePluginsCard)
{
    show();
    const auto* model = qobject_cast<Model*>(plugin->model());
    EXPECT_EQ(model->cardController(), plugin->card());
    CardController* card = plugin->card();
    card->setRevision("8.8");
    card->unplug();
    card->plug();
    EXPECT_TRUE(model->supParams().moduleId.endsWith(" 8.8"));
}

TEST_F(Wiring, WindowIsMadeOnTheScreenOfTheIcon)
{
    expectWarning(kUntakenConnection);
    QWidget screen;
    PluginIcon icon("Waveform", QIcon(), &screen);
    Plugin made;
    made.setIcon(&icon);
    EXPECT_EQ(made.window()->parentWidget(), &screen);
    made.release();
}

TEST_F(Wiring, IconWhoseButtonIsGoneIsAsNone)
{
    expectWarning(kUntakenConnection);
    QWidget screen;
    PluginIcon icon("Waveform", QIcon(), &screen);
    delete icon.button();
    Plugin made;
    made.setIcon(&icon);
    EXPECT_EQ(made.window()->parentWidget(), nullptr);
}

class ForeignModel : public Plugin
{
public:
    CardModel* createCardModel() override { return new MeasModel(cardController); }
};

TEST_F(Wiring, ModelOfAnotherKindGetsAKeeperWithoutOne)
{
    expectWarning(kUntakenConnection);
    ForeignModel foreign;
    auto* made = qobject_cast<Keeper*>(foreign.myKeeper());
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->configFileName().isEmpty());
}

TEST_F(Wiring, SettingsAreKeptInTheFileAndNotOnTheCard)
{
    plugin = std::make_unique<Plugin>();
    int onTheCard = 0;
    QObject::connect(plugin->card(), &CardController::configUpdated, [&] { ++onTheCard; });
    auto* config = ZuConfigModel::instance(plugin->card(), "zuotdr");
    config->setting("pulse", "MeasParams")->tryChange(30);
    EXPECT_EQ(onTheCard, 0);
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").value().toInt(), 30);
    config->freeLater();
}

TEST_F(Wiring, EndGivesTheSharedConfigurationBackAndDeletesItNot)
{
    plugin = std::make_unique<Plugin>();
    QPointer<ZuConfigModel> config = ZuConfigModel::instance(plugin->card(), "zuotdr");
    plugin.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_FALSE(config.isNull()) << "another user still has it";
    config->freeLater();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(config.isNull()) << "the plugin has kept it";
}

// Whatever is written on the console but the announced line fails these.

TEST_F(Wiring, IsSilentFromStartToQuit)
{
    show();
    for (const char* name : {"a.sor", "b.sor"}) {
        emit keeper()->loadRefl(files.write(name, SorSketch::plain()));
    }
    window()->reflsTableModel()->setMainRefl(0);
    const QString snapshot = files.writeSnapshot("made.bin", TraceBuilder());
    programs.make(
        "wfgather",
        "printf '1 G {;'; sleep 0.1; printf '2 M { 1/1 wavelength 1550 duration 1 ior 1.5 "
        "helix 0 distance 10000 pulse 100 rbs -80;'; sleep 0.1; mkdir -p "
        "/tmp/user/.wfgather; cp "
            + snapshot
            + " /tmp/user/.wfgather/n; mv /tmp/user/.wfgather/n "
              "/tmp/user/wfsnapshot.bin; sleep 0.2; printf '4 M };5 A {;6 A * s position "
              "0;7 A };8 G };'");
    QSignalSpy stopped(plugin->model(), SIGNAL(stopped(MeasModel*)));
    press();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 15'000));
    EXPECT_EQ(window()->reflsTableModel()->rowCount(), 3);
    for (QPushButton* button : window()->findChildren<QPushButton*>()) {
        if (button->isVisible() && button->isEnabled() && button != window()->actionButton()) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    window()->reflsTableModel()->deleteAllRefls();
    QThreadPool::globalInstance()->waitForDone();
    plugin.reset();
    EXPECT_EQ(messages().count("QObject::"), 1);
}

TEST_F(Wiring, IsSilentWhenItEndsInTheMiddleOfARun)
{
    for (const char* answer : {"exit 0", "printf '9 G };'; exit 0"}) {
        show();
        programs.make("wfgather",
                      QString("trap \"%1\" TERM; printf '1 G {;2 M * RT 5;5 A {;'; while true; do "
                              "sleep 0.05; done")
                          .arg(answer));
        press();
        ASSERT_TRUE(QTest::qWaitFor(
            [this] { return window()->actionButton()->text().startsWith("Events"); }, 5000));
        plugin.reset();
    }
    EXPECT_EQ(messages().count("QObject::"), 2) << "one of each";
    EXPECT_EQ(messages().count("QProcess"), 0);
}

} // namespace
