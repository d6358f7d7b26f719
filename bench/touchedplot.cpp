#include "bench/touchedplot.h"

#include "bench/benchtrace.h"
#include "platform/otdr/decimize.h"
#include "plot/qmplotmarker.h"
#include "twomarkers/twomarkersresultwidget.h"

#include <QApplication>
#include <QTest>

#include <cmath>

namespace {

constexpr QSize kCanvas(1280, 720);
constexpr QRect kOverview(960, 20, 300, 120);
constexpr QPoint kFinger(640, 500); ///< on nothing but the traces
constexpr Qt::GlobalColor kColors[] = {Qt::darkBlue, Qt::darkGreen, Qt::darkRed, Qt::darkMagenta};

} // namespace

TouchedPlot::TouchedPlot(std::size_t samples, double from_m, double to_m)
    : overview(plot.canvas())
    , model(true, nullptr)
    , twoMarkers(true, plot.canvas())
    , ticks(nullptr)
    , panner(plot.canvas())
    , zoomer(new QmPlotZoomer(&plot))
    , finger(plot)
{
    plot.enableAxis(QwtPlot::xBottom, true);
    plot.enableAxis(QwtPlot::yLeft, true);
    plot.resize(kCanvas);
    plot.show();
    plot.resize(plot.size() + kCanvas - plot.canvas()->size());
    overview.setGeometry(kOverview);
    overview.show();
    wire();
    addTraces(samples);
    addEvents(benchTrace(samples, 0));
    addMarkers(benchTrace(samples, 0));
    painted.setZ(1000.0);
    painted.attach(&plot);
    QApplication::processEvents();
    constexpr double kSpan_dB = Waveform::Plot::kMaxY - Waveform::Plot::kMinY;
    show({from_m, Waveform::Plot::kMinY, to_m - from_m, kSpan_dB});
    QApplication::processEvents();
    finger.press(*plot.canvas(), kFinger);
}

TouchedPlot::~TouchedPlot()
{
    finger.release();
    ticks.setCurve(nullptr);
    for (const auto& curve : curves) {
        curve->detach();
    }
    painted.detach();
}

void TouchedPlot::wire()
{
    constexpr double kSpan_dB = Waveform::Plot::kMaxY - Waveform::Plot::kMinY;
    plot.setMaxX(kBenchRange_m);
    overview.setScales({0.0, Waveform::Plot::kMaxY, kBenchRange_m, -kSpan_dB}, false);
    zoomer->setMaxRect({0.0, Waveform::Plot::kMinY, kBenchRange_m, kSpan_dB});
    plot.installEventFilter(zoomer);
    const auto highlight = [this](const QRectF& region) { overview.highlightArea(region); };
    const auto newBounds = QOverload<QRectF>::of(&QmPlotZoomer::newBounds);
    connect(&panner, &QmPanner::moving, &plot, &Waveform::Plot::shiftScale);
    connect(&plot, &Waveform::Plot::scaledTo, &overview, highlight);
    connect(&plot, &Waveform::Plot::scaledTo, this, &TouchedPlot::sampleFor);
    connect(zoomer, newBounds, this, &TouchedPlot::sampleFor);
    connect(zoomer, newBounds, &overview, highlight);
}

void TouchedPlot::addTraces(std::size_t samples)
{
    for (unsigned int seed = 0; seed < std::size(kColors); ++seed) {
        const Reflectogram& refl = benchTrace(samples, seed);
        curves.push_back(std::make_unique<ReflCurve>(plot.clip(), refl, kColors[seed]));
        curves.back()->attach(&plot);
    }
    const Decimize outline(benchTrace(samples, 0), false);
    overview.setSamples(outline({0.0, kBenchRange_m, overview.width()}), true);
}

/// A tick every 2 km, with the fibre between two of them.
void TouchedPlot::addEvents(const Reflectogram& refl)
{
    EventList events;
    for (int tick = 1; tick <= kTicks; ++tick) {
        Event event(Event::Reflective, 2000L * tick, 10);
        event.position = std::lround(2000.0 * tick / refl.smpl2dist(1.0));
        events << event;
        event.type = Event::Fiber;
        events << event;
    }
    events.removeLast();
    Reflectogram(refl).setEventList(events); // a handle: the curve's trace has them
    ticks.attach(&plot);
    ticks.setVisible(true);
    ticks.setCurve(curves.front().get());
    ticks.setActiveMarker(0);
}

void TouchedPlot::addMarkers(const Reflectogram& refl)
{
    twoMarkers.setModel(&model);
    twoMarkers.attachToPlot(&plot);
    model.setReflectogram(refl);
    twoMarkers.results()->adjustSize();
    twoMarkers.show();
    const auto markers = plot.canvas()->findChildren<QmPlotMarker*>();
    double at_m = 16500.0;
    for (QmPlotMarker* marker : markers) {
        marker->setXValue(at_m);
        at_m += 1000.0;
    }
    overview.setMarkers(markers);
    model.calculate();
}

void TouchedPlot::chooseStretch(int tick)
{
    ticks.setActiveMarker(2 * tick + 1);
}

void TouchedPlot::show(const QRectF& region)
{
    zoomer->zoomTo(region);
}

void TouchedPlot::sampleFor(const QRectF& region)
{
    const double margin = std::abs(region.width());
    const wf_clip_t clip {region.x() - margin, region.x() + region.width() + margin,
                          3 * plot.canvas()->width()};
    for (const auto& curve : curves) {
        curve->scale(clip);
    }
    plot.replot();
    plot.emitTransformMaps();
}

void TouchedPlot::pan(int dx)
{
    const int before = painted.count;
    finger.moveBy(dx);
    awaitPaint(before);
}

void TouchedPlot::zoom(Qt::Key key)
{
    const int before = painted.count;
    QTest::keyPress(plot.windowHandle(), key);
    awaitPaint(before);
}

void TouchedPlot::awaitPaint(int before)
{
    while (painted.count == before) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}
