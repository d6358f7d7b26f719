// What a run does to the panels and to the action button's caption.

#include "platform/launcher/historycombo.h"
#include "refls/reflstableview.h"
#include "refls/refltablemenu.h"
#include "tests/window/screen.h"
#include "window/measview.h"

#include <QElapsedTimer>

namespace {

using namespace testing_support; // fixture, doubles, builders and units
using Waveform::ReflsTableView;

class RunPanels : public Screen
{
protected:
    RunPanels() { view()->show(); }

    ReflsTableView* view() const { return window->findChild<ReflsTableView*>(); }

    bool opensMenu() const
    {
        QCoreApplication::processEvents();
        const QPoint place = view()->visualRect(view()->model()->index(0, 1)).center();
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, {}, place);
        auto* menu = view()->findChild<ReflTableMenu*>();
        const bool opened = menu->isVisible();
        menu->hide();
        return opened;
    }

    int enabledBoxes() const
    {
        int count = 0;
        for (const HistoryCombo* box : window->findChildren<HistoryCombo*>()) {
            count += box->isEnabled() ? 1 : 0;
        }
        return count;
    }

    /// Runs until the press that stops it.
    void startEndlessRun()
    {
        programs.make("wfgather",
                      "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;2 M * RT 1;'; "
                      "while true; do sleep 0.05; done");
        press();
        ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text().contains("nm"); }));
    }

    void stopRun()
    {
        model->stop(QString());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !stopped->isEmpty(); }, 15'000));
    }
};

TEST_F(RunPanels, SettingsAndMenuAreOffDuringARun)
{
    load("a.sor");
    EXPECT_EQ(enabledBoxes(), 4);
    EXPECT_TRUE(opensMenu());
    startEndlessRun();
    EXPECT_EQ(enabledBoxes(), 0);
    EXPECT_FALSE(opensMenu());
    stopRun();
    EXPECT_EQ(enabledBoxes(), 4);
    EXPECT_TRUE(opensMenu());
}

TEST_F(RunPanels, RunWithoutACurveLeavesTheMenuOff)
{
    startEndlessRun();
    stopRun();
    EXPECT_EQ(enabledBoxes(), 4);
    load("a.sor");
    EXPECT_FALSE(opensMenu());
    stopped->clear();
    startEndlessRun();
    stopRun();
    EXPECT_TRUE(opensMenu());
}

TEST_F(RunPanels, RunWithoutACurveOffersNothingToZoom)
{
    const auto offered = [this](const char* name) {
        return window->findChild<QPushButton*>(name)->isVisible();
    };
    startEndlessRun();
    EXPECT_FALSE(offered("zoomInButton"));
    QTest::keyClick(window.get(), Qt::Key_Right);
    stopRun();
    EXPECT_FALSE(offered("zoomInButton"));
    EXPECT_FALSE(offered("zoomOutButton"));
    load("a.sor");
    EXPECT_TRUE(offered("zoomInButton"));
}

TEST_F(RunPanels, ActionButtonStaysInReachDuringARun)
{
    auto* bar = window->findChild<MeasView*>();
    QWidget* settings = action()->parentWidget();
    startEndlessRun();
    QTest::mouseClick(toggle(settings), Qt::LeftButton);
    EXPECT_TRUE(action()->isVisible());
    QTest::mouseClick(toggle(bar), Qt::LeftButton);
    EXPECT_TRUE(bar->isVisible());
    QTest::mouseClick(toggle(settings), Qt::LeftButton);
    EXPECT_TRUE(action()->isVisible());
    stopRun();
    QTest::mouseClick(toggle(settings), Qt::LeftButton);
    EXPECT_FALSE(action()->isVisible());
}

TEST_F(RunPanels, AnalysisIsAnimatedAndItsEndDisablesTheButton)
{
    programs.make("wfgather",
                  "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;5 A {;'; sleep 1.2; "
                  "printf '6 A };'; while true; do sleep 0.05; done");
    const QSignalSpy ended(model.get(), SIGNAL(analisisFinished()));
    const QObject context;
    QElapsedTimer shown; // begins when the window has shown the first text
    QObject::connect(model.get(), &Model::analisisStarted, &context, [&shown] { shown.start(); });
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text().startsWith("Events"); }));
    EXPECT_EQ(action()->text(), "Events.  ") << "the first one has a point";
    ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text() == "Events.. "; }));
    EXPECT_GE(shown.elapsed(), 450) << "half a second, and such timers may come a twentieth early";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ended.isEmpty(); }));
    EXPECT_FALSE(action()->isEnabled());
    const QString last = action()->text();
    QTest::qWait(600);
    EXPECT_EQ(action()->text(), last) << "the animation goes on";
    stopRun();
    EXPECT_TRUE(action()->isEnabled());
    EXPECT_EQ(action()->text(), "Start");
}

TEST_F(RunPanels, StopDuringTheAnalysisEndsTheAnimation)
{
    programs.make("wfgather",
                  "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;5 A {;'; "
                  "while true; do sleep 0.05; done");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text().startsWith("Events"); }));
    stopRun();
    EXPECT_EQ(action()->text(), "Start");
    QTest::qWait(600);
    EXPECT_EQ(action()->text(), "Start");
}

TEST_F(RunPanels, MessageGoesWhenARunStarts)
{
    window->notification()->show("In realtime mode you need sets pulse");
    startEndlessRun();
    EXPECT_FALSE(window->notification()->isVisible());
    EXPECT_EQ(warning(), "");
    stopRun();
}

} // namespace
