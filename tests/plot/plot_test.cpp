#include "plot/otdrdistancescaledraw.h"
#include "plot/plot.h"
#include "tests/plot/shownpart.h"
#include "tests/support/echo.h"
#include "tests/support/paintcounter.h"

#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_scale_widget.h>

#include <QFrame>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using Waveform::Plot;

class Chart : public testing::Test
{
protected:
    Chart()
    {
        plot.enableAxis(QwtPlot::xBottom, true);
        plot.enableAxis(QwtPlot::yLeft, true);
        plot.setMaxX(10000.0);
        plot.resize(800, 480);
        plot.show();
        QCoreApplication::processEvents();
        view(2000.0, 4000.0, 10.0, 30.0);
    }

    void view(double x1, double x2, double y1, double y2)
    {
        plot.setAxisScale(QwtPlot::xBottom, x1, x2);
        plot.setAxisScale(QwtPlot::yLeft, y1, y2);
        plot.replot();
    }

    QRectF shown() { return testing_support::shownPart(plot); }

    int width() { return plot.canvas()->geometry().width(); }

    int height() { return plot.canvas()->geometry().height(); }

    Plot plot;
};

TEST_F(Chart, IsBuiltAsTheScreenWantsIt)
{
    EXPECT_EQ(plot.windowTitle(), "Plot");
    EXPECT_EQ(plot.focusPolicy(), Qt::ClickFocus);
    EXPECT_EQ(plot.property("palette_id").toString(), "chart");
    EXPECT_FALSE(plot.autoReplot());
    EXPECT_TRUE(plot.plotLayout()->alignCanvasToScale(QwtPlot::xBottom));
    EXPECT_TRUE(plot.plotLayout()->alignCanvasToScale(QwtPlot::yLeft));
    auto* frame = qobject_cast<QFrame*>(plot.canvas());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->frameShadow(), QFrame::Plain);
    EXPECT_EQ(frame->frameShape(), QFrame::StyledPanel);
    EXPECT_NE(dynamic_cast<OtdrDistanceScaleDraw*>(plot.axisScaleDraw(QwtPlot::xBottom)), nullptr);
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        const QFont font = plot.axisWidget(axis)->font();
        EXPECT_EQ(font.family(), "Liberation Sans");
        EXPECT_EQ(font.pointSize(), 16);
        EXPECT_EQ(font.weight(), 75);
        EXPECT_FALSE(font.italic());
        EXPECT_EQ(plot.axisWidget(axis)->spacing(), 0);
        EXPECT_EQ(plot.axisScaleDraw(axis)->tickLength(QwtScaleDiv::MinorTick), 4.0);
        EXPECT_EQ(plot.axisScaleDraw(axis)->tickLength(QwtScaleDiv::MajorTick), 8.0);
    }
    EXPECT_EQ(plot.axisScaleDraw(QwtPlot::yLeft)->minimumExtent(), 80.0);
    EXPECT_EQ(plot.canvasBackground().color(), plot.palette().color(QPalette::Window));
}

TEST_F(Chart, LevelAxisEndsWhereTheDistanceLabelsBegin)
{
    int start = 0;
    int end = 0;
    plot.axisWidget(QwtPlot::xBottom)->getMinBorderDist(start, end);
    EXPECT_EQ(start, 80);
    EXPECT_EQ(end, 15);
    plot.axisWidget(QwtPlot::yLeft)->getMinBorderDist(start, end);
    EXPECT_EQ(start, 10);
    EXPECT_EQ(end, static_cast<int>(plot.axisScaleDraw(QwtPlot::xBottom)->extent(plot.font())));
}

TEST(NewChart, HasItsTitleInTheUsersLanguage)
{
    const testing_support::Echo language;
    const Plot plot;
    EXPECT_EQ(plot.windowTitle(), "<Plot>");
}

TEST(NewChart, StartsWithoutVisibleAxes)
{
    const Plot plot;
    EXPECT_FALSE(plot.axisEnabled(QwtPlot::xBottom));
    EXPECT_FALSE(plot.axisEnabled(QwtPlot::yLeft));
}

TEST_F(Chart, GridIsDottedAndAttachedOnce)
{
    ASSERT_EQ(plot.itemList(QwtPlotItem::Rtti_PlotGrid).size(), 1);
    const auto* grid =
        dynamic_cast<QwtPlotGrid*>(plot.itemList(QwtPlotItem::Rtti_PlotGrid).first());
    ASSERT_NE(grid, nullptr);
    EXPECT_TRUE(grid->xMinEnabled());
    EXPECT_TRUE(grid->yMinEnabled());
    EXPECT_EQ(grid->z(), 20.0);
    for (const QPen& pen : {grid->majorPen(), grid->minorPen()}) {
        EXPECT_EQ(pen.brush(), plot.palette().brush(QPalette::Mid));
        EXPECT_EQ(pen.style(), Qt::DotLine);
        EXPECT_EQ(pen.width(), 0);
        EXPECT_EQ(pen.capStyle(), Qt::SquareCap);
        EXPECT_EQ(pen.joinStyle(), Qt::BevelJoin);
    }
}

TEST_F(Chart, LabelOfZeroIsNotCutByTheLevelAxis)
{
    view(0.0, 4000.0, 0.0, 50.0);
    QCoreApplication::processEvents();
    EXPECT_TRUE(plot.axisWidget(QwtPlot::xBottom)->mask().isEmpty());
}

TEST_F(Chart, ClipIsTheViewWithOneWidthOnEachSideAndAPointAPixel)
{
    const wf_clip_t clip = plot.clip();
    EXPECT_DOUBLE_EQ(clip.start, 0.0);
    EXPECT_DOUBLE_EQ(clip.end, 6000.0);
    EXPECT_EQ(clip.points, 3 * width());
}

TEST_F(Chart, ClipKnowsAScaleThatWasJustSet)
{
    plot.setAxisScale(QwtPlot::xBottom, 100.0, 200.0);
    const wf_clip_t clip = plot.clip();
    EXPECT_DOUBLE_EQ(clip.start, 0.0);
    EXPECT_DOUBLE_EQ(clip.end, 300.0);
}

TEST_F(Chart, PanKnowsAScaleThatWasJustSet)
{
    plot.setAxisScale(QwtPlot::xBottom, 100.0, 200.0);
    double min = 0.0;
    double max = 0.0;
    EXPECT_TRUE(plot.newBounds(QwtPlot::xBottom, width(), min, max));
    EXPECT_NEAR(min, 200.0, 1e-9);
    EXPECT_NEAR(max, 300.0, 1e-9);
}

TEST_F(Chart, ClipOfAReversedAxisStillWidens)
{
    plot.setAxisScale(QwtPlot::xBottom, 4000.0, 2000.0);
    const wf_clip_t clip = plot.clip();
    EXPECT_DOUBLE_EQ(clip.start, 2000.0);
    EXPECT_DOUBLE_EQ(clip.end, 4000.0);
}

TEST_F(Chart, DragMovesBothAxesByItsPixels)
{
    const QSignalSpy scaled(&plot, SIGNAL(scaledTo(QRectF)));
    const double dx = 50.0 * 2000.0 / width();
    const double dy = -30.0 * 20.0 / height();
    plot.shiftScale(QPoint(50, 30));
    EXPECT_NEAR(shown().x(), 2000.0 + dx, 1e-9);
    EXPECT_NEAR(shown().width(), 2000.0, 1e-9);
    EXPECT_NEAR(shown().y(), 10.0 + dy, 1e-9);
    ASSERT_EQ(scaled.size(), 1);
    const QRectF region = scaled.first().first().toRectF();
    EXPECT_NEAR(region.x(), shown().x(), 1e-9);
    EXPECT_NEAR(region.height(), 20.0, 1e-9);
}

TEST_F(Chart, DragOfNothingIsSilent)
{
    const QSignalSpy scaled(&plot, SIGNAL(scaledTo(QRectF)));
    plot.shiftScale(QPoint(0, 0));
    EXPECT_EQ(scaled.size(), 0);
}

TEST_F(Chart, DragAtTheStopIsSilent)
{
    view(-1000.0, 1000.0, -10.0, 10.0); // half a screen before 0 on both axes
    const QSignalSpy scaled(&plot, SIGNAL(scaledTo(QRectF)));
    plot.shiftScale(QPoint(-20, 20));
    EXPECT_EQ(scaled.size(), 0);
    EXPECT_EQ(shown(), QRectF(-1000.0, -10.0, 2000.0, 20.0));

    view(9000.0, 11000.0, 40.0, 60.0); // half a screen beyond the last distance and 50 dB
    plot.shiftScale(QPoint(20, -20));
    EXPECT_EQ(scaled.size(), 0);
}

TEST_F(Chart, DragThatEndedAtAStopIsSilentWhenItIsRepeatedWhateverTheSpan)
{
    constexpr QPoint kFar(1000000, -1000000);
    for (int step = 1; step < 200; ++step) {
        plot.setMaxX(1000.0 + 123.456789 * step);
        view(100.0, 100.0 + 7.654321 * step, 10.0, 10.0 + 0.123457 * step);
        plot.shiftScale(kFar);
        const QSignalSpy scaled(&plot, SIGNAL(scaledTo(QRectF)));
        plot.shiftScale(kFar);
        EXPECT_EQ(scaled.size(), 0) << step;
        plot.shiftScale(-kFar);
        EXPECT_EQ(scaled.size(), 1) << step;
        plot.shiftScale(-kFar);
        EXPECT_EQ(scaled.size(), 1) << step;
    }
}

TEST_F(Chart, DragIsPaintedOnceAndNotAtAllAtTheStop)
{
    testing_support::PaintCounter painted;
    painted.attach(&plot);
    const auto paints = [&](QPoint delta) {
        QCoreApplication::processEvents();
        painted.count = 0;
        plot.shiftScale(delta);
        QCoreApplication::processEvents();
        return painted.count;
    };
    EXPECT_EQ(paints({20, 20}), 1);
    view(-1000.0, 1000.0, -10.0, 10.0);
    EXPECT_EQ(paints({-20, 20}), 0);
    painted.detach();
}

TEST_F(Chart, DragTellsTheViewAfterItIsThere)
{
    QRectF seen;
    QObject::connect(&plot, &Plot::scaledTo, &plot, [&] { seen = shown(); });
    plot.shiftScale(QPoint(50, 30));
    EXPECT_EQ(seen, shown());
    EXPECT_GT(seen.x(), 2000.0);
}

TEST_F(Chart, DragBeyondAStopIsClampedAndKeepsTheSpan)
{
    plot.shiftScale(QPoint(-100000, 100000));
    EXPECT_NEAR(shown().x(), -1000.0, 1e-9);
    EXPECT_NEAR(shown().width(), 2000.0, 1e-9);
    EXPECT_NEAR(shown().y(), -10.0, 1e-9);
    plot.shiftScale(QPoint(100000, -100000));
    EXPECT_NEAR(shown().right(), 11000.0, 1e-9);
    EXPECT_NEAR(shown().width(), 2000.0, 1e-9);
    EXPECT_NEAR(shown().bottom(), 60.0, 1e-9);
    EXPECT_NEAR(shown().height(), 20.0, 1e-9);
}

TEST_F(Chart, OneAxisAtItsStopLetsTheOtherMove)
{
    view(-1000.0, 1000.0, 10.0, 30.0);
    const QSignalSpy scaled(&plot, SIGNAL(scaledTo(QRectF)));
    plot.shiftScale(QPoint(-20, -20));
    EXPECT_EQ(scaled.size(), 1);
    EXPECT_EQ(shown().x(), -1000.0);
    EXPECT_GT(shown().y(), 10.0);
}

TEST_F(Chart, NewBoundsTellsTheBoundsEvenWhereNothingMoves)
{
    double min = 0.0;
    double max = 0.0;
    EXPECT_FALSE(plot.newBounds(QwtPlot::xBottom, 0, min, max));
    EXPECT_EQ(min, 2000.0);
    EXPECT_EQ(max, 4000.0);
}

TEST_F(Chart, ResizeAndPanTellTheOverlaysTheMaps)
{
    qRegisterMetaType<QwtScaleMap>("QwtScaleMap");
    QSignalSpy maps(&plot, SIGNAL(transformMapsChanged(QwtScaleMap, QwtScaleMap)));
    QSignalSpy resized(&plot, SIGNAL(resized()));
    plot.resize(900, 500);
    QCoreApplication::processEvents();
    EXPECT_EQ(resized.size(), 1);
    EXPECT_EQ(maps.size(), 1);
    plot.shiftScale(QPoint(10, 0));
    EXPECT_EQ(maps.size(), 2);
}

class MapRecorder : public QObject
{
    Q_OBJECT

public:
    QwtScaleMap x;
    QwtScaleMap y;

public slots:

    void take(const QwtScaleMap& xMap, const QwtScaleMap& yMap)
    {
        x = xMap;
        y = yMap;
    }
};

TEST_F(Chart, MapsComeWithTheDistanceFirst)
{
    MapRecorder recorder;
    QObject::connect(&plot,
                     SIGNAL(transformMapsChanged(QwtScaleMap, QwtScaleMap)), &recorder,
                            SLOT(take(QwtScaleMap, QwtScaleMap)));
    plot.emitTransformMaps();
    EXPECT_EQ(recorder.x.s1(), 2000.0);
    EXPECT_EQ(recorder.x.s2(), 4000.0);
    EXPECT_EQ(recorder.y.s1(), 10.0);
    EXPECT_EQ(recorder.y.s2(), 30.0);
}

} // namespace

#include "plot_test.moc"
