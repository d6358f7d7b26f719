#include "plot/plot.h"
#include "plot/qmpanner.h"
#include "plot/reflcurve.h"
#include "tests/plot/finger.h"
#include "tests/support/allocatedbytes.h"
#include "tests/support/paintcounter.h"
#include "tests/support/tracefiles.h"

#include <QtTest>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builder and units

/// Bytes asked for while a finger drags a trace of so many samples by a step, from the move to the
/// painted canvas.
std::size_t bytesOfAPanStep(double interval_ns)
{
    const TraceFiles files;
    TraceBuilder builder;
    builder.sampling(interval_ns).fibre(10_km).noise({0.05}, 2);
    const Reflectogram refl(files.writeSnapshot("trace", builder, interval_ns), WfMeasParams());

    Waveform::Plot plot;
    plot.setMaxX(10000.0);
    plot.setAxisScale(QwtPlot::xBottom, 0.0, 10000.0);
    plot.setAxisScale(QwtPlot::yLeft, 0.0, 50.0);
    plot.resize(800, 480);
    plot.show();
    ReflCurve curve(plot.clip(), refl, Qt::darkBlue);
    curve.attach(&plot);
    PaintCounter painted;
    painted.attach(&plot);
    const QmPanner panner(plot.canvas());
    QObject::connect(&panner, &QmPanner::moving, &plot, &Waveform::Plot::shiftScale);
    QObject::connect(&plot, &Waveform::Plot::scaledTo, [&] {
        curve.scale(plot.clip());
        plot.replot();
    });
    QCoreApplication::processEvents();

    Finger finger(plot);
    finger.press(*plot.canvas(), QPoint(400, 200));
    finger.moveBy(-40); // builds what is kept of a trace
    finger.moveBy(40);
    const int paintedBefore = painted.count;
    const std::size_t before = allocatedBytes();
    finger.moveBy(-40);
    const std::size_t bytes = allocatedBytes() - before;
    EXPECT_EQ(painted.count, paintedBefore + 1);
    curve.detach();
    painted.detach();
    return bytes;
}

TEST(PanStepUnderTheFinger, AllocatesNothingThatGrowsWithTheTrace)
{
    if (!countsAllocatedBytes()) {
        GTEST_SKIP() << "a sanitizer has the heap";
    }
    const std::size_t few = bytesOfAPanStep(10.0); // 10 thousand samples
    const std::size_t many = bytesOfAPanStep(0.05); // 2 million
    EXPECT_GT(few, 800U * 300U * 4U) << "the picture alone";
    EXPECT_LT(many, few + few / 10);
}

} // namespace
