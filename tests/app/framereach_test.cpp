// The whole application on the instrument's screen: fingers, keys, day and night.

#include "app/frame.h"
#include "app/host.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/appearance.h"
#include "platform/launcher/nightswitch.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/wrappanel.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/platform/launcher/look.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/reach.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace testing_support;

/// The host with the plugin in the launcher's look, a trace loaded.
class WholeFrame : public testing::Test
{
protected:
    void SetUp() override
    {
        expectWarning("No such slot Waveform::Window::rescalePlot("); // is not to take
        appearance = std::make_unique<Appearance>();
        host = std::make_unique<Host>();
        ASSERT_EQ(host->load(), "");
        host->frame()->resize(800, 480);
        host->frame()->show();
        ASSERT_EQ(host->open({files.write("a.sor", SorSketch::plain())}), QStringList());
        QCoreApplication::processEvents();
    }

    void TearDown() override
    {
        host.reset();
        appearance.reset();
    }

    Frame& frame() const { return *host->frame(); }

    NightSwitch* night() const { return frame().findChild<NightSwitch*>(); }

    QWidget* named(const char* className) const
    {
        const auto all = frame().findChildren<QWidget*>();
        for (QWidget* widget : all) {
            if (widget->inherits(className)) {
                return widget;
            }
        }
        return nullptr;
    }

    const AcquisitionDir directory;
    const ConfigHome config;
    const LookKept before {};
    TraceFiles files;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<Host> host;
};

QColor ground(const QWidget& widget)
{
    return widget.palette().color(QPalette::Window);
}

TEST_F(WholeFrame, FingersHitEveryButton)
{
    EXPECT_EQ(smallTargets(frame()).join('\n').toStdString(), "");
}

TEST_F(WholeFrame, ButtonsAtTheTopHaveTheRoomAboveThemThatTheyHaveBelow)
{
    const auto* button = frame().findChild<QPushButton*>("helpButton");
    const int above = button->geometry().top();
    const int below = host->window()->mapTo(&frame(), QPoint()).y() - above - button->height();
    EXPECT_GT(above, 0);
    EXPECT_EQ(above, below);
}

TEST_F(WholeFrame, WindowFillsAllBelowTheButtons)
{
    const QRect place(host->window()->mapTo(&frame(), QPoint()), host->window()->size());
    EXPECT_EQ(place.left(), 0);
    EXPECT_EQ(place.bottomRight(), frame().rect().bottomRight());
}

TEST_F(WholeFrame, TitleStandsOutByItsWeight)
{
    const QLabel* title = nullptr;
    for (const QLabel* label :
         frame().findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
        title = label->text().isEmpty() ? title : label;
    }
    ASSERT_NE(title, nullptr);
    EXPECT_TRUE(title->font().bold());
}

TEST_F(WholeFrame, TabComesByEverything)
{
    EXPECT_EQ(unreachable(frame()).join('\n').toStdString(), "");
    EXPECT_TRUE(tabChain(frame()).contains(night()));
}

TEST_F(WholeFrame, SpaceAndEnterPressEveryButton)
{
    EXPECT_EQ(deafToKeys(frame()).join('\n').toStdString(), "");
}

TEST_F(WholeFrame, TurnsDarkAtOnceButForThePaperOfTheTraces)
{
    const QColor day = ground(frame());
    const QWidget* plot = named("Waveform::Plot");
    const QWidget* traces = named("Waveform::ReflsTableView");
    ASSERT_NE(plot, nullptr);
    ASSERT_NE(traces, nullptr);
    QTest::mouseClick(night(), Qt::LeftButton);
    EXPECT_LT(ground(frame()).lightness(), 60);
    EXPECT_GT(day.lightness(), 200);
    EXPECT_EQ(ground(*plot), QColor(Qt::white));
    EXPECT_GT(traces->palette().color(QPalette::Base).lightness(), 200);
    for (const QWidget* child : plot->findChildren<QPushButton*>()) {
        EXPECT_LT(child->palette().color(QPalette::ButtonText).lightness(), 100);
    }
    // What is really drawn beside and in the chart.
    const QImage picture = frame().grab().toImage();
    const auto at = [&](const QWidget& widget, QPoint pos) {
        return picture.pixelColor(widget.mapTo(&frame(), pos)).lightness();
    };
    EXPECT_GT(at(*plot, {3, plot->height() / 2}), 200);
    EXPECT_LT(picture.pixelColor(3, 3).lightness(), 60);
}

TEST_F(WholeFrame, SwitchIsPressedByKeysToo)
{
    night()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(night(), Qt::Key_Return);
    EXPECT_LT(ground(frame()).lightness(), 60);
    QTest::keyClick(night(), Qt::Key_Space);
    EXPECT_GT(ground(frame()).lightness(), 200);
}

} // namespace
