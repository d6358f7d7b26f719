#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/warningwindow.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class FakeModel : public MeasModel
{
public:
    using MeasModel::MeasModel;
    using MeasModel::setFailure;

    [[nodiscard]] bool running() const override { return MeasModel::running() && !claimsIdle; }

    int start(unsigned int mode) override
    {
        ++starts;
        if (announces) {
            started("");
        }
        if (code != 0) {
            setFailure(reason);
            if (endsItself) {
                stopped("");
            }
            return code;
        }
        return MeasModel::start(mode);
    }

    int stop(const QString& text) override
    {
        ++stops;
        return MeasModel::stop(text);
    }

    int starts = 0;
    int stops = 0;
    int code = 0;
    QString reason;
    bool announces = true;
    bool endsItself = true;
    bool claimsIdle = false;
};

class OpenWindow : public MeasWindow
{
public:
    using MeasWindow::addWidget;
    using MeasWindow::bottomPanel;
    using MeasWindow::pageLayout;
    using MeasWindow::progressWidget;

    QStringList diary;
    QStringList warnings;

protected:
    void measStarted() override
    {
        MeasWindow::measStarted();
        diary << "started";
    }

    void measStopped() override
    {
        MeasWindow::measStopped();
        diary << "stopped";
    }

    void doUpdate() override { diary << "update"; }

    void showWarning(const QString& text) override { warnings << text; }
};

} // namespace

TEST(MeasWindow, StartsAndStopsTheModelWithItsButton)
{
    CardController card;
    FakeModel model(&card);
    OpenWindow window;
    window.setModel(&model);
    EXPECT_EQ(window.actionButton()->text(), "Start");

    window.actionButton()->click();
    EXPECT_EQ(model.starts, 1);
    EXPECT_EQ(window.actionButton()->text(), "Stop");
    EXPECT_FALSE(window.progressWidget()->isHidden());

    window.actionButton()->click();
    EXPECT_EQ(model.starts, 1);
    EXPECT_EQ(model.stops, 1);
    EXPECT_EQ(window.actionButton()->text(), "Start");
    EXPECT_TRUE(window.progressWidget()->isHidden());
    EXPECT_EQ(window.diary, (QStringList {"started", "stopped"}));
    EXPECT_TRUE(window.warnings.isEmpty());
}

/// Its repeats would stop the run that it has started, and start the next one.
TEST(MeasWindow, EnterThatIsHeldStartsOnce)
{
    FakeModel model(nullptr);
    OpenWindow window;
    window.setModel(&model);
    for (const bool isRepeat : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", isRepeat);
        QApplication::sendEvent(window.actionButton(), &press);
    }
    EXPECT_EQ(model.starts, 1);
    EXPECT_EQ(model.stops, 0);
    QTest::keyClick(window.actionButton(), Qt::Key_Return);
    EXPECT_EQ(model.stops, 1);
}

TEST(MeasWindow, GivesTheButtonItsTextAndUseBackWhateverWasDoneToItMeanwhile)
{
    FakeModel model(nullptr);
    OpenWindow window;
    window.setModel(&model);
    window.actionButton()->click();
    window.actionButton()->setText("1550 nm\n03");
    window.actionButton()->setEnabled(false);
    model.stopped("");
    EXPECT_EQ(window.actionButton()->text(), "Start");
    EXPECT_TRUE(window.actionButton()->isEnabled());
}

TEST(MeasWindow, WarnsOnceOfAFailedStartAndIsIdleAgain)
{
    FakeModel model(nullptr);
    model.code = -5;
    model.reason = "The card refused \"check fiber\".";
    OpenWindow window;
    window.setModel(&model);
    window.actionButton()->click();
    EXPECT_EQ(window.warnings, QStringList {"The card refused \"check fiber\"."});
    EXPECT_EQ(window.diary, (QStringList {"started", "stopped"}));
    EXPECT_EQ(window.actionButton()->text(), "Start");
    EXPECT_TRUE(window.actionButton()->isEnabled());

    model.code = 0;
    window.actionButton()->click();
    EXPECT_EQ(window.actionButton()->text(), "Stop");
    EXPECT_EQ(window.warnings.size(), 1);
}

TEST(MeasWindow, NamesTheCodeWhereTheModelHasNoWords)
{
    FakeModel model(nullptr);
    model.code = -5;
    OpenWindow window;
    window.setModel(&model);
    window.actionButton()->click();
    ASSERT_EQ(window.warnings.size(), 1);
    EXPECT_TRUE(window.warnings.at(0).contains("-5"));
}

TEST(MeasWindow, IsIdleEvenIfTheModelForgotToSaySo)
{
    FakeModel model(nullptr);
    model.code = -1;
    model.endsItself = false;
    model.claimsIdle = true;
    OpenWindow window;
    window.setModel(&model);
    window.actionButton()->click();
    EXPECT_FALSE(model.isStarted());
    EXPECT_EQ(window.diary, (QStringList {"started", "stopped"}));
    EXPECT_EQ(window.actionButton()->text(), "Start");
    EXPECT_EQ(window.warnings.size(), 1);
}

TEST(MeasWindow, StaysIdleWhereTheModelNeverBegan)
{
    FakeModel model(nullptr);
    model.code = -1;
    model.announces = false;
    OpenWindow window;
    window.setModel(&model);
    window.actionButton()->click();
    EXPECT_TRUE(window.diary.isEmpty());
    EXPECT_TRUE(window.actionButton()->isEnabled());
    EXPECT_EQ(window.warnings.size(), 1);
}

TEST(MeasWindow, SaysOnceThatTheCardWentDuringARun)
{
    CardController card;
    FakeModel model(&card);
    OpenWindow window;
    window.setModel(&model);
    window.actionButton()->click();
    card.unplug();
    EXPECT_EQ(window.warnings.size(), 1);
    EXPECT_EQ(window.actionButton()->text(), "Start");
}

TEST(MeasWindow, FollowsRunningValues)
{
    FakeModel model(nullptr);
    OpenWindow window;
    window.setModel(&model);
    QVariantMap tick;
    model.updated(tick, "");
    EXPECT_EQ(window.diary, QStringList {"update"});
}

TEST(MeasWindow, LetsAnEarlierModelGo)
{
    FakeModel first(nullptr);
    FakeModel second(nullptr);
    OpenWindow window;
    window.setModel(&first);
    window.setModel(&second);
    EXPECT_EQ(window.pluginModel(), &second);
    first.start(0);
    EXPECT_TRUE(window.diary.isEmpty());
    window.setModel(&second);
    second.start(0);
    EXPECT_EQ(window.diary, QStringList {"started"});
    window.setModel(nullptr);
    EXPECT_EQ(window.pluginModel(), nullptr);
    window.actionButton()->click();
    EXPECT_EQ(second.stops, 0);
}

TEST(MeasWindow, StandsAModelThatWasDeleted)
{
    OpenWindow window;
    {
        FakeModel model(nullptr);
        window.setModel(&model);
    }
    window.actionButton()->click();
    EXPECT_EQ(window.pluginModel(), nullptr);
}

TEST(MeasWindow, StandsAProgressBarThatASubclassHasRemoved)
{
    FakeModel model(nullptr);
    OpenWindow window;
    window.pageLayout()->removeWidget(window.progressWidget());
    delete window.progressWidget();
    EXPECT_EQ(window.progressWidget(), nullptr);
    window.setModel(&model);
    window.actionButton()->click();
    window.actionButton()->click();
    EXPECT_EQ(window.diary, (QStringList {"started", "stopped"}));
}

TEST(MeasWindow, PutsContentAboveTheBottomPanelAndTheButtonAtItsRight)
{
    OpenWindow window;
    auto* content = new QWidget;
    auto* setting = new QWidget;
    setting->setMinimumHeight(20);
    window.addWidget(content);
    window.bottomPanel()->prependWidget(setting, 140, 0);
    window.resize(800, 480);
    window.show();
    EXPECT_GT(window.bottomPanel()->y(), content->y());
    EXPECT_EQ(content->width(), 800);
    EXPECT_GT(content->height(), 300);
    EXPECT_GE(window.actionButton()->height(), 44);
    EXPECT_GT(window.actionButton()->x(), setting->x());
    EXPECT_GT(window.actionButton()->geometry().right(), 780);
}

TEST(MeasWindow, ShowsItsWarningsWithoutBlocking)
{
    FakeModel model(nullptr);
    model.code = -1;
    model.reason = "no light";
    MeasWindow window;
    window.setModel(&model);
    window.show();
    window.actionButton()->click();
    auto* warning = window.findChild<WarningWindow*>();
    ASSERT_NE(warning, nullptr);
    EXPECT_TRUE(warning->isVisible());
    EXPECT_FALSE(warning->isModal());
    EXPECT_EQ(warning->text(), "no light");
}

TEST(PluginWindow, HasTheAnswersOfAPlainWindow)
{
    const PluginWindow window;
    EXPECT_FALSE(window.isScalable());
    EXPECT_TRUE(window.eventFilters().isEmpty());
    EXPECT_EQ(window.pluginModel(), nullptr);
}
