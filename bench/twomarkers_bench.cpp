// Moving a marker by a pixel, with the fitted line on and the return loss computed in the
// background: everything but painting the screen. The cost is that of the widgets, whatever the
// length of the trace.

#include "bench/benchtrace.h"
#include "plot/plot.h"
#include "plot/qmplotmarker.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersview.h"

#include <QApplication>
#include <QThreadPool>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

namespace {

/// A sloping line with noise.
std::vector<std::uint16_t> samples(std::size_t count)
{
    std::mt19937 random(1);
    std::normal_distribution<double> noise;
    std::vector<std::uint16_t> counts(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double place = static_cast<double>(i) / static_cast<double>(count);
        const double level_dB = 40.0 - 15.0 * place + 0.05 * noise(random);
        counts[i] = static_cast<std::uint16_t>(std::lround(65535.0 - 1000.0 * level_dB));
    }
    return counts;
}

const Reflectogram& trace(std::size_t count)
{
    static std::map<std::size_t, Reflectogram> made;
    Reflectogram& refl = made[count];
    if (!refl.isValid()) {
        refl = benchTraceOf(samples(count));
    }
    return refl;
}

/// The chart as the window shows it, with the markers over a stretch of 40 km.
struct Chart
{
    explicit Chart(std::size_t count)
        : view(true, plot.canvas())
        , model(true, nullptr)
    {
        plot.enableAxis(QwtPlot::xBottom, true);
        plot.enableAxis(QwtPlot::yLeft, true);
        plot.setAxisScale(QwtPlot::xBottom, 0.0, kBenchRange_m);
        plot.setAxisScale(QwtPlot::yLeft, 0.0, 50.0);
        view.attachToPlot(&plot);
        view.setModel(&model);
        plot.resize(1280, 720);
        plot.show();
        plot.replot();
        plot.emitTransformMaps();
        const auto markers = plot.canvas()->findChildren<QmPlotMarker*>();
        left = markers.first();
        right = markers.last();
        left->setXValue(2000.0);
        right->setXValue(42000.0);
        model.setReflectogram(trace(count));
        QApplication::processEvents();
    }

    Waveform::Plot plot;
    Waveform::TwoMarkersView view;
    Waveform::TwoMarkersModel model;
    QmPlotMarker* left = nullptr;
    QmPlotMarker* right = nullptr;
};

void moveMarker(benchmark::State& state)
{
    Chart chart(static_cast<std::size_t>(state.range(0)));
    int dx = 1;
    for (auto _ : state) {
        chart.left->moveBy(dx);
        dx = -dx;
    }
}

/// The same with the return loss waited for and shown.
void moveMarkerTillReturnLoss(benchmark::State& state)
{
    Chart chart(static_cast<std::size_t>(state.range(0)));
    int dx = 1;
    for (auto _ : state) {
        chart.left->moveBy(dx);
        dx = -dx;
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::FutureCallOut);
    }
}

/// What the model alone takes of it.
void measure(benchmark::State& state)
{
    Chart chart(static_cast<std::size_t>(state.range(0)));
    chart.view.hide();
    chart.model.disconnect();
    for (auto _ : state) {
        chart.model.calculate();
    }
}

constexpr int k16Thousand = 16'000;
constexpr int k10Million = 10'000'000;

BENCHMARK(moveMarker)->Arg(k16Thousand)->Arg(k10Million)->Unit(benchmark::kMicrosecond);
BENCHMARK(moveMarkerTillReturnLoss)
    ->Arg(k16Thousand)
    ->Arg(k10Million)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(measure)->Arg(k16Thousand)->Arg(k10Million)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
