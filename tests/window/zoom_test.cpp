#include "plot/qmminiplot.h"
#include "tests/window/screen.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace {

using namespace testing_support; // fixture and builders

class Zooming : public Screen
{
protected:
    Zooming() { refl = load("a.sor"); }

    QPushButton* button(const QString& name) const { return window->findChild<QPushButton*>(name); }

    QmMiniPlot* miniPlot() const { return window->findChild<QmMiniPlot*>(); }

    void touch(const QString& name) { QTest::mouseClick(button(name), Qt::LeftButton); }

    /// A finger that goes this way over the canvas.
    void drag(const QPoint& from, const QPoint& by)
    {
        QWidget* canvas = plot()->canvas();
        QTest::mousePress(canvas, Qt::LeftButton, Qt::NoModifier, from);
        for (int step = 1; step <= 4; ++step) {
            const QPoint at = from + by * step / 4;
            QMouseEvent move(QEvent::MouseMove, at, canvas->mapToGlobal(at), Qt::LeftButton,
                             Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(canvas, &move);
        }
        QTest::mouseRelease(canvas, Qt::LeftButton, Qt::NoModifier, from + by);
    }

    Reflectogram refl;
};

TEST_F(Zooming, FullViewOffersToZoomInOnly)
{
    EXPECT_TRUE(button("zoomOffButton")->isVisible());
    EXPECT_TRUE(button("zoomInButton")->isVisible());
    EXPECT_FALSE(button("zoomOutButton")->isVisible());
    EXPECT_FALSE(miniPlot()->isVisible());
    EXPECT_EQ(button("zoomOutButton")->text(), QString(QChar(0x2013)));
    for (const char* name : {"zoomOffButton", "zoomInButton"}) {
        EXPECT_GE(button(name)->height(), 52) << name;
        EXPECT_EQ(button(name)->font().pointSize(), 28) << name;
        EXPECT_TRUE(button(name)->font().bold()) << name;
        EXPECT_EQ(button(name)->palette().color(QPalette::Button).alpha(), 128) << name;
    }
}

TEST_F(Zooming, StepHalvesBothSpansAndShowsTheOverview)
{
    const QRectF before = view();
    touch("zoomInButton");
    EXPECT_NEAR(view().width(), before.width() / 2, 1e-6);
    EXPECT_NEAR(view().height(), before.height() / 2, 1e-6);
    EXPECT_NEAR(view().center().x(), before.center().x(), 1e-6);
    EXPECT_TRUE(button("zoomOutButton")->isVisible());
    EXPECT_TRUE(miniPlot()->isVisible());
    touch("zoomOutButton");
    EXPECT_NEAR(view().width(), before.width(), 1e-6);
    EXPECT_FALSE(button("zoomOutButton")->isVisible());
    EXPECT_FALSE(miniPlot()->isVisible());
}

TEST_F(Zooming, FullViewIsThatOfTheLengthWhichIndexAndHelixFactorLeave)
{
    configure("helix", 25.0);
    touch("zoomInButton");
    touch("zoomOffButton");
    EXPECT_NEAR(view().right(), refl.maxdist(), 1e-6);
    configure("helix", 0.0); // a longer trace than the view
    touch("zoomInButton");
    touch("zoomOffButton");
    EXPECT_NEAR(view().right(), refl.maxdist(), 1e-6);
}

TEST_F(Zooming, CurvesAreSampledForEachView)
{
    touch("zoomInButton");
    touch("zoomInButton");
    const ReflCurve* curve = shownCurves()[0];
    EXPECT_NEAR(curve->sample(0).x(), std::max(0.0, view().x() - view().width()),
                refl.smpl2dist(1.0));
}

TEST_F(Zooming, EndsAtFiveSamplesAndGoesBackInOneTouch)
{
    for (int i = 0; i < 40 && button("zoomInButton")->isVisible(); ++i) {
        touch("zoomInButton");
    }
    EXPECT_FALSE(button("zoomInButton")->isVisible());
    EXPECT_GE(view().width(), 5 * refl.smpl2dist(1.0) - 1e-6);
    EXPECT_LT(view().width(), 20 * refl.smpl2dist(1.0));
    touch("zoomOffButton");
    EXPECT_NEAR(view().width(), refl.maxdist(), 1e-6);
    EXPECT_EQ(view().height(), 50.0);
}

TEST_F(Zooming, EndsAtHalfAMetreAndATwentiethOfADecibel)
{
    SorSketch dense = SorSketch::plain();
    dense.fxd.pulses.front().dataSpacing /= 100; // five samples are less
    load("dense.sor", dense);
    for (int i = 0; i < 40; ++i) {
        QTest::keyClick(window.get(), Qt::Key_Right);
        QTest::keyClick(window.get(), Qt::Key_Up);
    }
    EXPECT_NEAR(view().width(), 0.5, 1e-6);
    EXPECT_NEAR(view().height(), 0.05, 1e-6);
}

TEST_F(Zooming, DragMovesTheTraceWithTheFinger)
{
    touch("zoomInButton");
    const QwtScaleMap map = plot()->canvasMap(QwtPlot::xBottom);
    const double under = map.invTransform(300);
    drag(QPoint(300, 150), QPoint(120, 0));
    EXPECT_NEAR(plot()->canvasMap(QwtPlot::xBottom).invTransform(420), under,
                2.0 * view().width() / plot()->canvas()->width());
}

TEST_F(Zooming, TapDoesNotMoveTheTrace)
{
    touch("zoomInButton");
    const QRectF before = view();
    QTest::mouseClick(plot()->canvas(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    EXPECT_EQ(view(), before);
}

TEST_F(Zooming, ArrowKeysZoomOneAxisWhereverTheFocusIs)
{
    const QRectF before = view();
    QTest::keyClick(action(), Qt::Key_Right);
    EXPECT_LT(view().width(), before.width());
    EXPECT_EQ(view().height(), before.height());
    const double width = view().width();
    QTest::keyClick(window.get(), Qt::Key_Up);
    EXPECT_LT(view().height(), before.height());
    EXPECT_EQ(view().width(), width);
}

TEST_F(Zooming, KeysOfTheFrameReachTheWindow)
{
    QWidget frame;
    ASSERT_EQ(window->eventFilters(), QList<QObject*> {window.get()});
    frame.installEventFilter(window->eventFilters().first());
    const QRectF before = view();
    QTest::keyClick(&frame, Qt::Key_Right);
    EXPECT_LT(view().width(), before.width());
}

TEST_F(Zooming, OverviewShowsWhichPartIsSeen)
{
    const auto overview = [this] { return miniPlot()->grab().toImage(); };
    touch("zoomInButton");
    const QImage half = overview();
    touch("zoomInButton");
    const QImage quarter = overview();
    EXPECT_NE(quarter, half);
    drag(QPoint(300, 100), QPoint(-100, 0));
    EXPECT_NE(overview(), quarter);
}

TEST_F(Zooming, OverviewFollowsTheHelixFactor)
{
    touch("zoomInButton");
    const QImage before = miniPlot()->grab().toImage();
    configure("helix", 10.0);
    EXPECT_NE(miniPlot()->grab().toImage(), before);
}

TEST_F(Zooming, KeysThatTheWindowLeavesEndAtTheFrameAroundIt)
{
    QWidget frame;
    auto* page = new QVBoxLayout(&frame);
    auto* other = new QLabel(&frame);
    page->addWidget(other);
    page->addWidget(window.get());
    frame.installEventFilter(window->eventFilters().first());
    frame.show();
    const QRectF before = view();
    for (QWidget* pressed : QWidgetList {action(), window.get(), &frame}) {
        QTest::keyClick(pressed, Qt::Key_A);
    }
    EXPECT_EQ(view(), before);
    QTest::keyClick(action(), Qt::Key_Right);
    EXPECT_DOUBLE_EQ(view().width(), before.width() / 2.0) << "not one step";
    QTest::keyClick(other, Qt::Key_Left);
    EXPECT_DOUBLE_EQ(view().width(), before.width()) << "not one step";
    window->setParent(nullptr); // the fixture deletes it
}

TEST_F(Zooming, DeletingTheMainTraceHidesItsButtonAndTheOverview)
{
    touch("zoomInButton");
    refls()->deleteAllRefls();
    EXPECT_FALSE(button("zoomOffButton")->isVisible());
    EXPECT_FALSE(miniPlot()->isVisible());
}

TEST_F(Zooming, NothingIsOfferedWhenTheLastTraceIsGone)
{
    const QRectF full = view();
    for (const bool one : {true, false}) {
        touch("zoomInButton");
        drag(QPoint(300, 100), QPoint(-100, 0));
        if (one) {
            refls()->deleteRefl(0);
        } else {
            refls()->deleteAllRefls();
        }
        for (const char* name : {"zoomOffButton", "zoomInButton", "zoomOutButton"}) {
            EXPECT_FALSE(button(name)->isVisible()) << name;
        }
        EXPECT_FALSE(miniPlot()->isVisible());
        EXPECT_EQ(view(), full);
        load("next.sor");
        EXPECT_TRUE(button("zoomOffButton")->isVisible());
        EXPECT_TRUE(button("zoomInButton")->isVisible());
    }
}

TEST_F(Zooming, OthersThanTheDeletedTraceKeepTheirView)
{
    load("next.sor");
    touch("zoomInButton");
    const QRectF half = view();
    refls()->deleteRefl(1);
    EXPECT_EQ(view(), half);
    EXPECT_TRUE(button("zoomOutButton")->isVisible());
}

TEST_F(Zooming, DeletingTheLastTraceEmptiesTheOverview)
{
    const auto inkInOverview = [this] {
        const QImage image = miniPlot()->grab().toImage();
        int count = 0;
        for (int x = 10; x < image.width() - 10; ++x) {
            for (int y = 10; y < image.height() - 10; ++y) {
                count += image.pixelColor(x, y).lightness() < 200 ? 1 : 0;
            }
        }
        return count;
    };
    touch("zoomInButton");
    EXPECT_GT(inkInOverview(), 100);
    refls()->deleteRefl(0);
    EXPECT_FALSE(button("zoomOffButton")->isVisible());
    EXPECT_EQ(inkInOverview(), 0);
}

} // namespace
