// Where the focus of the keys is, and what they press.

#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/focusreturn.h"
#include "platform/launcher/nameprompt.h"
#include "platform/launcher/nightswitch.h"
#include "tests/app/hosting.h"
#include "tests/support/reach.h"

#include <QApplication>

namespace {

using namespace testing_support; // the fixture

class NoName : public NamePrompt
{
public:
    std::optional<QString> askName(const QString& /*proposed*/) override { return std::nullopt; }

    bool askOverwrite(const QString& /*name*/) override { return false; }
};

class Focus : public Hosting
{
protected:
    void SetUp() override
    {
        load();
        host->frame()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(host->frame()));
    }

    void loadTrace()
    {
        ASSERT_EQ(host->open({files.write("a.sor", SorSketch::plain())}), QStringList());
        QCoreApplication::processEvents();
    }

    /// Presses a key where keys go now.
    void press(Qt::Key key) const
    {
        QWidget* focused = QApplication::focusWidget();
        QTest::keyClick(focused == nullptr ? host->frame() : focused, key);
    }

    const FocusReturn keeping;
};

TEST_F(Focus, StaysWithTheButtonThatMeasuresThroughoutARun)
{
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 0.2);
    loadTrace();
    QSignalSpy started(host->model(), SIGNAL(started(MeasModel*)));
    QSignalSpy stopped(host->model(), SIGNAL(stopped(MeasModel*)));
    action()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text().contains("nm"); }, 30'000));
    EXPECT_TRUE(action()->hasFocus());
    press(Qt::Key_Space); // stops
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 30'000));
    QCoreApplication::processEvents();
    EXPECT_TRUE(action()->hasFocus());
    EXPECT_EQ(started.size(), 1);
}

TEST_F(Focus, OfAZoomButtonAtItsLimitPressesNoOther)
{
    loadTrace();
    QPushButton* in = button("zoomInButton");
    in->setFocus(Qt::TabFocusReason);
    constexpr int kMost = 60;
    int presses = 0;
    while (in->isVisible() && ++presses < kMost) {
        press(Qt::Key_Space);
    }
    ASSERT_LT(presses, kMost);
    for (int i = 0; i < 3; ++i) {
        press(Qt::Key_Space);
        EXPECT_FALSE(in->isVisible()) << "zoomed out again";
    }
    press(Qt::Key_Left);
    EXPECT_TRUE(in->isVisible());
    EXPECT_TRUE(in->hasFocus());
}

TEST_F(Focus, IsOnSaveAgainAfterSaving)
{
    loadTrace();
    host->keeper()->setNamePrompt(std::make_unique<NoName>());
    button("saveButton")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_TRUE(button("saveButton")->hasFocus());
}

TEST_F(Focus, GoesThroughTheTopOfTheFrameAsOneReads)
{
    loadTrace();
    EXPECT_EQ(host->frame()->focusWidget(), button("loadButton")) << "where it begins";
    auto* night = host->frame()->findChild<NightSwitch*>();
    night->setFocus();
    EXPECT_EQ(tabChain(*host->frame()).mid(0, 4),
              QList<QWidget*>({button("loadButton"), button("saveButton"), button("helpButton"),
                               button("zoomOffButton")}));
}

} // namespace
