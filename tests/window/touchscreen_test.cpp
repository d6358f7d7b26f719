// Fingers on a screen that tells of touches and not of a mouse do as the mouse does.

#include "events/eventstableview.h"
#include "tests/platform/launcher/wrapbutton.h"
#include "tests/window/screen.h"
#include "window/measview.h"

#include <QTouchDevice>

namespace {

using namespace testing_support; // the fixture

class TouchScreen : public Screen
{
protected:
    TouchScreen()
        : device(QTest::createTouchDevice())
    {
        load("a.sor");
        QCoreApplication::processEvents();
    }

    void drag(QWidget* widget, const QPoint& from, const QPoint& by) const
    {
        QWidget* screen = widget->window();
        const QPoint start = widget->mapTo(screen, from);
        QTest::touchEvent(screen, device).press(0, start, screen);
        for (int step = 1; step <= 4 && !by.isNull(); ++step) {
            QTest::touchEvent(screen, device).move(0, start + by * step / 4, screen);
        }
        QTest::touchEvent(screen, device).release(0, start + by, screen);
        QCoreApplication::processEvents();
    }

    void tap(QWidget* widget, const QPoint& at) const { drag(widget, at, QPoint()); }

    void tap(QWidget* widget) const { tap(widget, widget->rect().center()); }

    template <typename T>
    T* shown() const
    {
        T* part = window->findChild<T*>();
        tap(buttonOf(*window->findChild<WrapPanel*>(), part));
        EXPECT_TRUE(part->isVisible());
        return part;
    }

    QTouchDevice* device;
};

TEST_F(TouchScreen, TapPressesAButtonAndADragMovesTheTrace)
{
    tap(window->findChild<QPushButton*>("zoomInButton"));
    const QRectF half = view();
    EXPECT_NEAR(half.width(), refls()->mainRefl().maxdist() / 2, 1e-6);
    drag(plot()->canvas(), {300, 60}, {-100, 0});
    EXPECT_GT(view().x(), half.x());
    EXPECT_NEAR(view().width(), half.width(), 1e-6);
}

TEST_F(TouchScreen, TapChoosesAnEvent)
{
    auto* events = shown<Waveform::EventsTableView>();
    tap(events->viewport(), events->visualRect(events->model()->index(0, 3)).center());
    EXPECT_EQ(events->currentIndex().row(), 0);
    EXPECT_EQ(tallTicks(), 1);
}

TEST_F(TouchScreen, TapChoosesAMode)
{
    auto* bar = shown<MeasView>();
    tap(bar->findChildren<QPushButton*>()[MeasView::TwoPointsLsa]);
    EXPECT_TRUE(bar->isUsingLsa());
}

} // namespace
