// The host with the real plugin and the real acquisition program, in one process with the test.

#include "app/frame.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/nameprompt.h"
#include "tests/app/hosting.h"
#include "tests/platform/launcher/answer.h"
#include "tests/support/fakeprogram.h"

#include <QPointer>
#include <QThreadPool>

#include <gmock/gmock.h>

#include <atomic>
#include <memory>

namespace {

using namespace testing_support; // directories and builders

TEST(FrameOfAWindow, LetsItGoAtItsEnd)
{
    const QPointer<PluginWindow> window = new PluginWindow;
    {
        const Frame frame(window, nullptr);
        EXPECT_EQ(window->parentWidget(), &frame);
    }
    ASSERT_FALSE(window.isNull()) << "the plugin's window was deleted with the frame";
    EXPECT_EQ(window->parentWidget(), nullptr);
    delete window.data();
}

TEST_F(Hosting, ShowsThePluginUnderItsTitle)
{
    load();
    EXPECT_EQ(host->frame()->windowTitle(), "Waveform");
    EXPECT_TRUE(host->window()->isVisible());
    EXPECT_EQ(host->frame()->size(), QSize(800, 480)) << "the page does not fit the instrument";
}

TEST_F(Hosting, ButtonsFollowTheKeeper)
{
    load();
    EXPECT_TRUE(button("loadButton")->isEnabled());
    EXPECT_FALSE(button("saveButton")->isEnabled());
    EXPECT_TRUE(host->open({files.write("a.sor", SorSketch::plain())}).isEmpty());
    EXPECT_TRUE(button("saveButton")->isEnabled());
    for (const char* name : {"loadButton", "saveButton"}) {
        EXPECT_GE(button(name)->height(), 44) << name;
    }
}

TEST_F(Hosting, FileThatIsNoTraceIsNamedWithItsReasonAndTheOthersOpen)
{
    load();
    const QStringList problems =
        host->open({files.path("missing.sor"), files.write("a.sor", SorSketch::plain())});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().contains("missing.sor"));
    EXPECT_TRUE(button("saveButton")->isEnabled());
}

TEST_F(Hosting, MeasuresAndSavesAtTheTouchOfTwoButtons)
{
    load();
    ASSERT_TRUE(measure());
    ASSERT_TRUE(button("saveButton")->isEnabled());
    host->keeper()->setNamePrompt(std::make_unique<Answer>("link 7"));
    QTest::mouseClick(button("saveButton"), Qt::LeftButton);
    const Reflectogram saved(files.path("home/otdr/link 7.sor"));
    ASSERT_TRUE(saved.isValid()) << qPrintable(saved.error());
    EXPECT_EQ(saved.parameters().duration, 3);
}

TEST_F(Hosting, NameThatLeadsElsewhereStaysInTheStorageDirectory)
{
    load();
    ASSERT_TRUE(host->open({files.write("a.sor", SorSketch::plain())}).isEmpty());
    host->keeper()->setNamePrompt(std::make_unique<Answer>("../../outside"));
    QTest::mouseClick(button("saveButton"), Qt::LeftButton);
    EXPECT_FALSE(QFile::exists(files.path("outside.sor")));
    EXPECT_EQ(QDir(files.path("home/otdr")).entryList({"*.sor"}).size(), 1);
}

TEST_F(Hosting, LoadAndSaveAreOffDuringARun)
{
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 1);
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "duration", 60);
    load();
    QTest::mouseClick(action(), Qt::LeftButton);
    EXPECT_FALSE(button("loadButton")->isEnabled());
    QSignalSpy stopped(host->model(), SIGNAL(stopped(MeasModel*)));
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return action()->isEnabled() && action()->text() != "Stop"; }, 10'000));
    QTest::mouseClick(action(), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 10'000));
    EXPECT_TRUE(button("loadButton")->isEnabled());
    EXPECT_TRUE(button("saveButton")->isEnabled());
}

TEST_F(Hosting, LeavesQuietlyInTheMiddleOfARun)
{
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 1);
    load();
    QTest::mouseClick(action(), Qt::LeftButton);
    QTest::qWait(300);
    host->frame()->close();
    host.reset();
}

TEST_F(Hosting, LeavesWhenWhatIsComputedInTheBackgroundIsDone)
{
    load();
    std::atomic<bool> done = false;
    QThreadPool::globalInstance()->start([&done] {
        QThread::msleep(300);
        done = true;
    });
    host.reset();
    EXPECT_TRUE(done) << "code of the plugin may run after it was unloaded";
    QThreadPool::globalInstance()->waitForDone();
}

TEST_F(Hosting, MayLeaveAndComeBackInOneProcess)
{
    load();
    ASSERT_TRUE(measure());
    host.reset();
    load();
    EXPECT_FALSE(button("saveButton")->isEnabled());
    ASSERT_TRUE(measure());
}

/// Closes the window while the save that asks is under way.
class ClosingPrompt : public NamePrompt
{
public:
    explicit ClosingPrompt(QWidget* window)
        : window(window)
    {
    }

    std::optional<QString> askName(const QString& /*proposed*/) override
    {
        window->close();
        stillOpen = window->isVisible();
        return "last";
    }

    bool askOverwrite(const QString& /*name*/) override { return true; }

    static bool stillOpen;

private:
    QWidget* window;
};

bool ClosingPrompt::stillOpen = false;

TEST_F(Hosting, ClosingWaitsForASaveUnderWay)
{
    load();
    ASSERT_TRUE(host->open({files.write("a.sor", SorSketch::plain())}).isEmpty());
    host->keeper()->setNamePrompt(std::make_unique<ClosingPrompt>(host->frame()));
    QTest::mouseClick(button("saveButton"), Qt::LeftButton);
    EXPECT_TRUE(ClosingPrompt::stillOpen);
    EXPECT_TRUE(QFile::exists(files.path("home/otdr/last.sor")));
    EXPECT_FALSE(host->frame()->isVisible());
}

TEST_F(Hosting, ClosingGivesUpAReportThatHangs)
{
    load();
    ASSERT_TRUE(host->open({files.write("a.sor", SorSketch::plain())}).isEmpty());
    const FakePrograms programs;
    programs.make("otdrreport", "exec sleep 60");
    host->keeper()->setNamePrompt(std::make_unique<ClosingPrompt>(host->frame()));
    QTest::mouseClick(button("saveButton"), Qt::LeftButton);
    EXPECT_TRUE(Reflectogram(files.path("home/otdr/last.sor")).isValid());
    EXPECT_FALSE(host->frame()->isVisible());
}

} // namespace
