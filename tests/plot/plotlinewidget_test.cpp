#include "plot/plotlinewidget.h"
#include "tests/plot/countingplot.h"

#include <qwt_scale_map.h>

#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing_support::CountingPlot;

class PlotLine : public testing::Test
{
protected:
    PlotLine()
        : widget(plot.canvas())
    {
        plot.enableAxis(QwtPlot::xBottom, true);
        plot.enableAxis(QwtPlot::yLeft, true);
        plot.resize(800, 480);
        plot.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&plot));
        view(0.0, 10000.0, 0.0, 50.0);
    }

    void view(double x1, double x2, double y1, double y2)
    {
        plot.setAxisScale(QwtPlot::xBottom, x1, x2);
        plot.setAxisScale(QwtPlot::yLeft, y1, y2);
        plot.replot();
        plot.emitTransformMaps();
    }

    /// The line that is drawn, in pixels of the canvas.
    [[nodiscard]] QLineF drawn() const { return widget.line().translated(widget.pos()); }

    /// Whether the line is drawn where its metres and decibels are now, as near as a widget's place
    /// can be.
    [[nodiscard]] testing::AssertionResult isAt(const QLineF& line) const
    {
        const QwtScaleMap x = plot.canvasMap(QwtPlot::xBottom);
        const QwtScaleMap y = plot.canvasMap(QwtPlot::yLeft);
        const QLineF at(x.transform(line.x1()), y.transform(line.y1()), x.transform(line.x2()),
                        y.transform(line.y2()));
        const double away = std::max(QLineF(drawn().p1(), at.p1()).length(),
                                     QLineF(drawn().p2(), at.p2()).length());
        // Half a pixel on each axis.
        return away <= 0.71 ? testing::AssertionSuccess()
                            : testing::AssertionFailure() << away << " pixels away";
    }

    const QLineF line {2000.0, 40.0, 6000.0, 38.5};
    CountingPlot plot;
    PlotLineWidget widget;
};

TEST_F(PlotLine, LiesWhereItsMetresAndDecibelsAre)
{
    widget.attach(&plot);
    widget.setLine(line);
    EXPECT_TRUE(isAt(line));
}

TEST_F(PlotLine, LineGivenBeforeThePlotIsKnownIsPlacedThen)
{
    widget.setLine(line);
    widget.attach(&plot);
    EXPECT_TRUE(isAt(line));
}

TEST_F(PlotLine, AttachKnowsAScaleThatWasJustSet)
{
    plot.setAxisScale(QwtPlot::xBottom, 1000.0, 8000.0);
    widget.setLine(line);
    widget.attach(&plot);
    plot.updateAxes();
    EXPECT_TRUE(isAt(line));
}

TEST_F(PlotLine, IsRedrawnAtTheSamePlaceAfterAZoom)
{
    widget.attach(&plot);
    widget.setLine(line);
    const QLineF before = drawn();
    view(1500.0, 6500.0, 30.0, 45.0);
    EXPECT_TRUE(isAt(line));
    EXPECT_GT(drawn().length(), 1.5 * before.length());
}

TEST_F(PlotLine, FollowsAPlotThatIsResized)
{
    widget.attach(&plot);
    widget.setLine(line);
    plot.resize(500, 300);
    QCoreApplication::processEvents();
    EXPECT_TRUE(isAt(line));
}

TEST_F(PlotLine, DetachedLineStaysInItsPixels)
{
    widget.attach(&plot);
    widget.setLine(line);
    const QLineF before = drawn();
    widget.detach();
    view(1500.0, 6500.0, 30.0, 45.0);
    EXPECT_EQ(drawn(), before);
    EXPECT_EQ(plot.followers(), 0);
}

TEST_F(PlotLine, AttachedAgainItFollowsOnce)
{
    widget.attach(&plot);
    widget.attach(&plot);
    EXPECT_EQ(plot.followers(), 1);
    widget.attach(nullptr);
    EXPECT_EQ(plot.followers(), 0);
}

TEST_F(PlotLine, NullLineIsNotDrawn)
{
    widget.attach(&plot);
    widget.setLine(QLineF());
    EXPECT_TRUE(widget.line().isNull());
}

TEST_F(PlotLine, LineBetweenFarEndsIsSeenInAViewOfAMetre)
{
    widget.attach(&plot);
    const QLineF longLine(0.0, 40.0, 100000.0, 20.0);
    widget.setLine(longLine);
    view(50000.0, 50001.0, 0.0, 50.0);
    const double level = plot.canvasMap(QwtPlot::yLeft).transform(30.0);
    EXPECT_LT(drawn().x1(), 0.0);
    EXPECT_GT(drawn().x2(), plot.canvas()->width());
    const double middle = drawn().pointAt((350.0 - drawn().x1()) / drawn().dx()).y();
    EXPECT_NEAR(middle, level, 1.0);
}

TEST(PlotLineOnItsOwn, OutlivesThePlotItWasAttachedTo)
{
    QWidget parent;
    PlotLineWidget widget(&parent);
    auto plot = std::make_unique<Waveform::Plot>();
    widget.attach(plot.get());
    plot.reset();
    widget.detach();
    widget.attach(nullptr);
    EXPECT_TRUE(widget.line().isNull());
}

} // namespace
