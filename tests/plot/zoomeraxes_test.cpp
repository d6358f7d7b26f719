#include "tests/plot/zoomertest.h"

#include <QKeyEvent>
#include <QtTest>
#include <QWidget>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(Zoomer, OneAxisZoomsAlone)
{
    zoomer->zoomIn(QwtPlot::xBottom);
    expectShown({2250.0, 10.0, 500.0, 20.0});
    zoomer->zoomIn(QwtPlot::yLeft);
    expectShown({2250.0, 15.0, 500.0, 10.0});
    zoomer->zoomOut(QwtPlot::xBottom);
    expectShown({2000.0, 15.0, 1000.0, 10.0});
    zoomer->zoomOut(QwtPlot::yLeft);
    expectShown({2000.0, 10.0, 1000.0, 20.0});
    EXPECT_EQ(listener.bounds, QRectF(2000.0, 10.0, 1000.0, 20.0));
    EXPECT_EQ(listener.said.size(), 4 * 3U);
}

TEST_F(Zoomer, OneAxisLandsOnItsLimits)
{
    view({2000.0, 10.0, 0.8, 0.08});
    zoomer->zoomIn(QwtPlot::xBottom);
    EXPECT_NEAR(shown().width(), 0.5, 1e-9);
    zoomer->zoomIn(QwtPlot::yLeft);
    EXPECT_NEAR(shown().height(), 0.05, 1e-9);
    listener.said.clear();
    zoomer->zoomIn(QwtPlot::xBottom);
    zoomer->zoomIn(QwtPlot::yLeft);
    EXPECT_THAT(listener.said, IsEmpty());

    view({1000.0, 5.0, 9000.0, 40.0});
    zoomer->zoomOut(QwtPlot::xBottom);
    zoomer->zoomOut(QwtPlot::yLeft);
    expectShown({500.0, 0.0, 10000.0, 50.0});
    listener.said.clear();
    zoomer->zoomOut(QwtPlot::xBottom);
    zoomer->zoomOut(QwtPlot::yLeft);
    EXPECT_THAT(listener.said, IsEmpty());
}

TEST_F(Zoomer, OneAxisIsNotBoundedByTheFullView)
{
    zoomer->setMaxRange(40000.0);
    view({0.0, 0.0, 10000.0, 50.0});
    zoomer->zoomOut(QwtPlot::xBottom);
    expectShown({-5000.0, 0.0, 20000.0, 50.0});
}

TEST_F(Zoomer, LeavesTheOtherAxesAlone)
{
    for (const QwtPlot::Axis axis : {QwtPlot::xTop, QwtPlot::yRight}) {
        zoomer->zoomIn(axis);
        zoomer->zoomOut(axis);
        zoomer->zoomTo(1.0, 2.0, axis);
    }
    EXPECT_THAT(listener.said, IsEmpty());
    EXPECT_EQ(zoomer->currentRect(), QRectF(2000.0, 10.0, 1000.0, 20.0));
}

TEST_F(Zoomer, ZoomToDistancesLetsTheLevelsScaleThemselves)
{
    zoomer->currentRect();
    zoomer->zoomTo(300.0, 900.0);
    EXPECT_EQ(shown().x(), 300.0);
    EXPECT_EQ(shown().width(), 600.0);
    EXPECT_FALSE(plot.axisAutoScale(QwtPlot::xBottom));
    EXPECT_TRUE(plot.axisAutoScale(QwtPlot::yLeft));
    EXPECT_EQ(listener.bounds, QRectF(300.0, 10.0, 600.0, 20.0));
    EXPECT_THAT(listener.said, ElementsAre("out", "in", "bounds"));
}

TEST_F(Zoomer, ZoomToLevelsKeepsThemUpsideDown)
{
    zoomer->setMaxRect({0.0, 0.0, 1000.0, 20.0}); // of the size that is shown
    zoomer->currentRect();
    zoomer->zoomTo(5.0, 25.0, QwtPlot::yLeft);
    EXPECT_EQ(shown().y(), 5.0);
    EXPECT_EQ(shown().height(), 20.0);
    EXPECT_TRUE(plot.axisAutoScale(QwtPlot::xBottom));
    EXPECT_FALSE(plot.axisAutoScale(QwtPlot::yLeft));
    EXPECT_EQ(listener.bounds, QRectF(2000.0, 25.0, 1000.0, -20.0));
    EXPECT_TRUE(zoomer->zoomed()) << "the negative height differs from that of the full view";
    EXPECT_THAT(listener.said, ElementsAre("out", "in", "bounds"));
}

class KeyTarget : public QWidget
{
public:
    std::vector<int> pressed;
    int released = 0;

protected:
    void keyPressEvent(QKeyEvent* event) override { pressed.push_back(event->key()); }

    void keyReleaseEvent(QKeyEvent* /*event*/) override { ++released; }
};

class ZoomerKeys : public Zoomer
{
protected:
    ZoomerKeys() { target.installEventFilter(zoomer); }

    KeyTarget target;
};

TEST_F(ZoomerKeys, ArrowsZoomOneAxisAndGoNoFurther)
{
    QTest::keyClick(&target, Qt::Key_Left);
    expectShown({1500.0, 10.0, 2000.0, 20.0});
    QTest::keyClick(&target, Qt::Key_Right);
    expectShown({2000.0, 10.0, 1000.0, 20.0});
    QTest::keyClick(&target, Qt::Key_Up);
    expectShown({2000.0, 15.0, 1000.0, 10.0});
    QTest::keyClick(&target, Qt::Key_Down);
    expectShown({2000.0, 10.0, 1000.0, 20.0});
    EXPECT_THAT(target.pressed, IsEmpty());
    EXPECT_EQ(target.released, 4) << "only presses are taken";
    EXPECT_EQ(listener.said.size(), 4 * 3U);
}

TEST_F(ZoomerKeys, AnArrowAtItsLimitIsTakenAllTheSame)
{
    view({2000.0, 10.0, 0.5, 20.0});
    QTest::keyClick(&target, Qt::Key_Right);
    EXPECT_THAT(listener.said, IsEmpty());
    EXPECT_THAT(target.pressed, IsEmpty());
}

TEST_F(ZoomerKeys, OtherKeysPass)
{
    const std::vector<int> keys {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End,
                                 Qt::Key_Space,  Qt::Key_A,        Qt::Key_Plus};
    for (const int key : keys) {
        QTest::keyClick(&target, static_cast<Qt::Key>(key));
    }
    EXPECT_EQ(target.pressed, keys);
    EXPECT_THAT(listener.said, IsEmpty());
}

TEST_F(ZoomerKeys, WithoutAWatchedObjectNothingIsTaken)
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
    EXPECT_FALSE(zoomer->eventFilter(nullptr, &event));
    EXPECT_THAT(listener.said, IsEmpty());
    EXPECT_TRUE(zoomer->eventFilter(&target, &event));
}

} // namespace
