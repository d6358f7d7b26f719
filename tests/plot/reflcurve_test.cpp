#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "tests/support/tracefiles.h"

#include <qwt_plot_canvas.h>
#include <qwt_text.h>

#include <QImage>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builder and units

class Curve : public testing::Test
{
protected:
    Curve()
        : refl(files.plain())
        , curve(whole, refl, Qt::darkBlue)
    {
    }

    TraceFiles files;
    Reflectogram refl;
    const wf_clip_t whole {0.0, 5000.0, 600};
    ReflCurve curve;
};

TEST_F(Curve, IsBuiltToBeFilledFromTheBaseline)
{
    EXPECT_EQ(curve.style(), QwtPlotCurve::Sticks);
    EXPECT_TRUE(curve.testRenderHint(QwtPlotItem::RenderAntialiased));
    EXPECT_EQ(curve.curveFitter(), nullptr);
    EXPECT_TRUE(curve.testPaintAttribute(QwtPlotCurve::ClipPolygons));
    EXPECT_EQ(curve.baseline(), 0.0);
    EXPECT_EQ(curve.z(), 20.0);
    EXPECT_EQ(curve.title().text(), refl.paramsToString());
    EXPECT_EQ(curve.reflectogram(), refl);
    const QPen pen = curve.pen();
    EXPECT_EQ(pen.widthF(), 1.0);
    EXPECT_EQ(pen.style(), Qt::SolidLine);
    EXPECT_EQ(pen.capStyle(), Qt::SquareCap);
    EXPECT_EQ(pen.joinStyle(), Qt::BevelJoin);
    EXPECT_EQ(curve.color(), QColor(Qt::darkBlue));
    EXPECT_GT(curve.dataSize(), 300U);
    EXPECT_LE(curve.dataSize(), 600U);
}

TEST_F(Curve, SaysWhenItsSamplesWereReplaced)
{
    const QSignalSpy changed(&curve, SIGNAL(dataChanged()));
    curve.scale({0.0, 100.0, 50});
    EXPECT_EQ(changed.size(), 1);
    curve.scale({0.0, 200.0, 50}, true);
    EXPECT_EQ(changed.size(), 2);
}

TEST_F(Curve, IsSilentWhereAskedToBe)
{
    const QSignalSpy changed(&curve, SIGNAL(dataChanged()));
    const auto before = curve.dataSize();
    curve.scale({0.0, 100.0, 5}, false);
    EXPECT_EQ(changed.size(), 0);
    EXPECT_NE(curve.dataSize(), before);
}

TEST_F(Curve, SamplesAreThoseOfTheTraceWhenItWasScaled)
{
    curve.scale(whole);
    const double farthest_m = refl.maxdist();
    refl.setIOR(2.0 * refl.IOR());
    const int last = static_cast<int>(curve.dataSize()) - 1;
    EXPECT_NEAR(curve.sample(last).x(), std::min(farthest_m, whole.end), farthest_m / 100.0);
    curve.scale(whole);
    EXPECT_LE(curve.sample(static_cast<int>(curve.dataSize()) - 1).x(), 0.51 * farthest_m);
}

TEST_F(Curve, AnotherTraceKeepsColourAndPlaceInTheStack)
{
    SorSketch other = SorSketch::plain();
    other.gen.wavelength_nm = 1310;
    other.fxd.actualWavelength = 13100;
    const Reflectogram second(files.write("other.sor", other));
    curve.setZ(100.0);
    const QSignalSpy changed(&curve, SIGNAL(dataChanged()));
    curve.setReflectogram(whole, second);
    EXPECT_EQ(curve.reflectogram(), second);
    EXPECT_EQ(curve.title().text(), second.paramsToString());
    EXPECT_EQ(curve.color(), QColor(Qt::darkBlue));
    EXPECT_EQ(curve.z(), 100.0);
    EXPECT_EQ(changed.size(), 1);
}

TEST_F(Curve, LimitRaisesOnlyWhatIsBelow)
{
    QPolygonF points(QVector<QPointF> {{1.0, -3.0}, {2.0, 0.0}, {3.0, 7.0}});
    curve.limitYBy(points, 0.0);
    EXPECT_EQ(points, QPolygonF(QVector<QPointF> {{1.0, 0.0}, {2.0, 0.0}, {3.0, 7.0}}));
}

TEST_F(Curve, DarkestSampleLiesOnTheBaseline)
{
    SorSketch dark = SorSketch::plain();
    dark.scaleFactor = 1000;
    dark.samples.assign(4000, 65535);
    curve.setReflectogram(whole, Reflectogram(files.write("dark.sor", dark)));
    ASSERT_GT(curve.dataSize(), 0U);
    for (std::size_t i = 0; i < curve.dataSize(); ++i) {
        EXPECT_EQ(curve.sample(static_cast<int>(i)).y(), 0.0);
    }
}

TEST_F(Curve, EmptyTraceHasNoSamples)
{
    curve.setReflectogram(whole, Reflectogram());
    EXPECT_EQ(curve.dataSize(), 0U);
}

/// The canvas as it is drawn, without axes.
QImage canvasOf(Waveform::Plot& plot)
{
    plot.replot();
    return plot.canvas()->grab().toImage();
}

TEST_F(Curve, IsDrawnAsAnAreaWithoutGapsInItsColour)
{
    Waveform::Plot plot;
    plot.enableAxis(QwtPlot::xBottom, true);
    plot.enableAxis(QwtPlot::yLeft, true);
    plot.setAxisScale(QwtPlot::xBottom, 0.0, 3000.0);
    plot.setAxisScale(QwtPlot::yLeft, 0.0, 65.0);
    plot.resize(800, 480);
    plot.show();
    QCoreApplication::processEvents();
    curve.scale(plot.clip());
    curve.attach(&plot);
    const QImage image = canvasOf(plot);
    const QRgb blue = QColor(Qt::darkBlue).rgb();
    const int row = image.height() - 10; // well below every level of the fibre
    const int left = 4;
    for (int x = left; x < image.width() - left; ++x) {
        EXPECT_EQ(image.pixel(x, row), blue) << x;
    }
    curve.detach();
    EXPECT_NE(canvasOf(plot).pixel(100, row), blue);
}

TEST_F(Curve, SticksThatStandApartLeaveThePaperBetweenThem)
{
    Waveform::Plot plot;
    const double step = refl.smpl2dist(1.0);
    plot.setAxisScale(QwtPlot::xBottom, 1000.0 * step, 1020.0 * step);
    plot.setAxisScale(QwtPlot::yLeft, 0.0, 65.0);
    plot.resize(800, 480);
    plot.show();
    QCoreApplication::processEvents();
    curve.attach(&plot);
    const QImage image = canvasOf(plot);
    const QRgb blue = QColor(Qt::darkBlue).rgb();
    const QwtScaleMap xMap = plot.canvasMap(QwtPlot::xBottom);
    const int row = image.height() - 10;
    for (int sample = 1001; sample < 1019; ++sample) {
        const int x = qRound(xMap.transform(sample * step));
        EXPECT_EQ(image.pixel(x, row), blue) << sample;
        EXPECT_NE(image.pixel(x - 3, row), blue) << sample;
        EXPECT_NE(image.pixel(x + 3, row), blue) << sample;
    }
    curve.detach();
}

TEST_F(Curve, StandsInTheRowsOfItsLevel)
{
    Waveform::Plot plot;
    plot.setAxisScale(QwtPlot::xBottom, 0.0, 3000.0);
    plot.setAxisScale(QwtPlot::yLeft, 0.0, 65.0);
    plot.resize(800, 480);
    plot.show();
    QCoreApplication::processEvents();
    curve.attach(&plot);
    const QImage image = canvasOf(plot);
    const QRgb blue = QColor(Qt::darkBlue).rgb();
    const QwtScaleMap xMap = plot.canvasMap(QwtPlot::xBottom);
    const QwtScaleMap yMap = plot.canvasMap(QwtPlot::yLeft);
    for (const double distance : {500.0, 1500.0, 2500.0}) {
        const int x = qRound(xMap.transform(distance));
        const int y = qRound(yMap.transform(refl.powerAtDist(xMap.invTransform(x))));
        EXPECT_EQ(image.pixel(x, y + 2), blue) << distance;
        EXPECT_NE(image.pixel(x, y - 2), blue) << distance;
    }
    curve.detach();
}

} // namespace
