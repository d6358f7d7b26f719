#include "plot/plot.h"
#include "plot/qmpanner.h"

#include <qwt_scale_div.h>

#include <QMouseEvent>
#include <QSignalSpy>
#include <QtTest>
#include <QWidget>
#include <QWindow>

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace {

/// Remembers the types of the events that come through to it.
class Canvas : public QWidget
{
public:
    using QWidget::QWidget;

    std::vector<QEvent::Type> seen;

    [[nodiscard]] bool saw(QEvent::Type type) const
    {
        return std::find(seen.begin(), seen.end(), type) != seen.end();
    }

protected:
    bool event(QEvent* event) override
    {
        seen.push_back(event->type());
        return QWidget::event(event);
    }
};

/// A finger on a window: real mouse events, which find their widget themselves.
class Panner : public testing::Test
{
protected:
    Panner()
        : panner(new QmPanner(&canvas))
        , moving(panner, SIGNAL(moving(QPoint)))
                 , moved(panner, SIGNAL(moved(QPoint)))
    {
        canvas.resize(400, 300);
        canvas.show();
        QCoreApplication::processEvents();
        canvas.seen.clear();
    }

    void press(QPoint at)
    {
        QTest::mousePress(canvas.windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
    }

    void moveTo(QPoint at) { QTest::mouseMove(canvas.windowHandle(), at); }

    void release(QPoint at)
    {
        QTest::mouseRelease(canvas.windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
    }

    static QPoint delta(const QSignalSpy& spy, int index)
    {
        return spy.at(index).first().toPoint();
    }

    Canvas canvas;
    QmPanner* panner;
    QSignalSpy moving;
    QSignalSpy moved;
};

TEST_F(Panner, LivesAsLongAsTheWidget)
{
    EXPECT_EQ(panner->parent(), &canvas);
}

TEST_F(Panner, ADragOfThirtyPixelsIsNoStepAndOneOfThirtyOneIs)
{
    press({100, 100});
    moveTo({120, 110});
    EXPECT_EQ(moving.size(), 0);
    moveTo({121, 110});
    ASSERT_EQ(moving.size(), 1);
    EXPECT_EQ(delta(moving, 0), QPoint(-21, -10));
}

TEST_F(Panner, AStepCountsFromTheLastOne)
{
    press({100, 100});
    moveTo({140, 100});
    moveTo({160, 100}); // 20 pixels more
    moveTo({170, 100}); // 30 pixels more
    ASSERT_EQ(moving.size(), 1);
    moveTo({175, 90});
    ASSERT_EQ(moving.size(), 2);
    EXPECT_EQ(delta(moving, 0), QPoint(-40, 0));
    EXPECT_EQ(delta(moving, 1), QPoint(-35, 10));
    release({175, 90});
    ASSERT_EQ(moved.size(), 1);
    EXPECT_EQ(delta(moved, 0), QPoint(-75, 10)) << "the whole drag";
}

TEST_F(Panner, SmallMovesAddUpToAStep)
{
    press({100, 100});
    for (int x = 101; x <= 131; ++x) {
        moveTo({x, 100});
    }
    ASSERT_EQ(moving.size(), 1);
    EXPECT_EQ(delta(moving, 0), QPoint(-31, 0));
}

TEST_F(Panner, AShortDragHasNoStepButAnEnd)
{
    press({100, 100});
    moveTo({103, 100});
    release({103, 100});
    EXPECT_EQ(moving.size(), 0);
    ASSERT_EQ(moved.size(), 1);
    EXPECT_EQ(delta(moved, 0), QPoint(-3, 0));
}

TEST_F(Panner, ATapSaysNothing)
{
    press({100, 100});
    release({100, 100});
    EXPECT_EQ(moving.size(), 0);
    EXPECT_EQ(moved.size(), 0);
}

TEST_F(Panner, ADragThatComesBackIsATapAtItsEnd)
{
    press({100, 100});
    moveTo({200, 100});
    moveTo({100, 100});
    release({100, 100});
    EXPECT_EQ(moving.size(), 2);
    EXPECT_EQ(moved.size(), 0);
}

TEST_F(Panner, ANewPressStartsAnew)
{
    press({100, 100});
    moveTo({140, 100});
    release({140, 100});
    QTest::qWait(QTest::mouseDoubleClickInterval); // else the second press is a double click
    press({300, 200});
    moveTo({310, 200});
    release({310, 200});
    EXPECT_EQ(moving.size(), 1);
    ASSERT_EQ(moved.size(), 2);
    EXPECT_EQ(delta(moved, 1), QPoint(-10, 0));
}

TEST_F(Panner, TakesPressMoveAndReleaseAndNothingElse)
{
    press({100, 100});
    moveTo({110, 100});
    release({110, 100});
    QTest::mouseDClick(&canvas, Qt::LeftButton);
    QTest::keyClick(&canvas, Qt::Key_Left);
    EXPECT_FALSE(canvas.saw(QEvent::MouseButtonPress));
    EXPECT_FALSE(canvas.saw(QEvent::MouseMove));
    EXPECT_FALSE(canvas.saw(QEvent::MouseButtonRelease));
    EXPECT_TRUE(canvas.saw(QEvent::MouseButtonDblClick));
    EXPECT_TRUE(canvas.saw(QEvent::KeyPress));
}

TEST_F(Panner, LeavesOtherWidgetsAlone)
{
    Canvas other;
    other.installEventFilter(panner);
    QTest::mousePress(&other, Qt::LeftButton, Qt::NoModifier, {5, 5});
    QTest::mouseRelease(&other, Qt::LeftButton, Qt::NoModifier, {90, 90});
    EXPECT_TRUE(other.saw(QEvent::MouseButtonPress));
    EXPECT_TRUE(other.saw(QEvent::MouseButtonRelease));
    EXPECT_EQ(moved.size(), 0);
}

TEST(NewPanner, WithoutAWidgetTakesNothing)
{
    QmPanner panner(nullptr);
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(1.0, 1.0), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    EXPECT_FALSE(panner.eventFilter(nullptr, &event));
}

TEST(PannerOnAPlot, LetsTheTraceFollowTheFinger)
{
    Waveform::Plot plot;
    plot.setMaxX(10000.0);
    plot.setAxisScale(QwtPlot::xBottom, 2000.0, 4000.0);
    plot.setAxisScale(QwtPlot::yLeft, 10.0, 30.0);
    plot.resize(800, 480);
    plot.show();
    QCoreApplication::processEvents();
    const QmPanner panner(plot.canvas());
    ASSERT_TRUE(QObject::connect(&panner, SIGNAL(moving(QPoint)), &plot, SLOT(shiftScale(QPoint))));

    QWindow* window = plot.windowHandle();
    const QPoint start = plot.canvas()->mapTo(&plot, QPoint(200, 100));
    const double underFinger = plot.invTransform(QwtPlot::xBottom, 200);
    const double levelUnderFinger = plot.invTransform(QwtPlot::yLeft, 100);
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, start);
    QTest::mouseMove(window, start + QPoint(80, 40));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, start + QPoint(80, 40));

    // The frame around the canvas makes up for a pixel or two of some hundred.
    const double pixel = 2000.0 / plot.canvas()->width();
    EXPECT_NEAR(plot.invTransform(QwtPlot::xBottom, 280), underFinger, 1.5 * pixel);
    const double row = 20.0 / plot.canvas()->height();
    EXPECT_NEAR(plot.invTransform(QwtPlot::yLeft, 140), levelUnderFinger, 1.5 * row);
    EXPECT_LT(plot.axisScaleDiv(QwtPlot::xBottom).lowerBound(), 2000.0);
    EXPECT_GT(plot.axisScaleDiv(QwtPlot::yLeft).lowerBound(), 10.0);
}

} // namespace
