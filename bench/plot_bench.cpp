// Redrawing four traces on a canvas of 1280 x 720: the curve of this application, whatever the
// length of its trace, beside plain plot curves that draw all samples.

#include "bench/benchtrace.h"
#include "platform/otdr/decimize.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"

#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>

#include <QApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

constexpr int kCurves = 4;

/// The chart with a canvas of 1280 x 720, painted at once when replot() is called.
std::unique_ptr<Waveform::Plot> chart(double from_m, double to_m)
{
    auto plot = std::make_unique<Waveform::Plot>();
    plot->enableAxis(QwtPlot::xBottom, true);
    plot->enableAxis(QwtPlot::yLeft, true);
    plot->setAxisScale(QwtPlot::xBottom, from_m, to_m);
    plot->setAxisScale(QwtPlot::yLeft, 0.0, 50.0);
    plot->resize(1280, 720);
    plot->show();
    const QSize missing = QSize(1280, 720) - plot->canvas()->size();
    plot->resize(plot->size() + missing);
    QApplication::processEvents();
    qobject_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::ImmediatePaint, true);
    return plot;
}

void redraw(benchmark::State& state, double from_m, double to_m)
{
    const auto plot = chart(from_m, to_m);
    std::vector<std::unique_ptr<ReflCurve>> curves;
    for (unsigned int i = 0; i < kCurves; ++i) {
        curves.push_back(std::make_unique<ReflCurve>(
            plot->clip(), benchTrace(static_cast<std::size_t>(state.range(0)), i), Qt::darkBlue));
        curves.back()->attach(plot.get());
    }
    plot->replot();
    for (auto _ : state) {
        plot->replot();
    }
    for (const auto& curve : curves) {
        curve->detach();
    }
}

void redrawFullView(benchmark::State& state)
{
    redraw(state, 0.0, kBenchRange_m);
}

void redrawZoomed(benchmark::State& state)
{
    redraw(state, 16000.0, 18000.0);
}

void redrawSticksApart(benchmark::State& state)
{
    redraw(state, 16000.0, 17500.0);
}

/// The yardstick: the library's own curve with every sample.
void redrawPlainCurves(benchmark::State& state)
{
    const auto plot = chart(0.0, kBenchRange_m);
    std::vector<std::unique_ptr<QwtPlotCurve>> curves;
    for (unsigned int i = 0; i < kCurves; ++i) {
        const Reflectogram& refl = benchTrace(static_cast<std::size_t>(state.range(0)), i);
        const QPolygonF all = Decimize(refl, true)({0.0, 2.0 * kBenchRange_m, 1 << 30});
        curves.push_back(std::make_unique<QwtPlotCurve>());
        curves.back()->setSamples(all);
        curves.back()->setPen(Qt::darkBlue, 1.0);
        curves.back()->attach(plot.get());
    }
    plot->replot();
    for (auto _ : state) {
        plot->replot();
    }
    for (const auto& curve : curves) {
        curve->detach();
    }
}

/// What the chart costs without any curve: canvas, grid, axes.
void redrawEmptyChart(benchmark::State& state)
{
    const auto plot = chart(0.0, kBenchRange_m);
    plot->replot();
    for (auto _ : state) {
        plot->replot();
    }
}

/// Sampling a curve for a new view.
void rescale(benchmark::State& state)
{
    const auto plot = chart(0.0, kBenchRange_m);
    ReflCurve curve(plot->clip(), benchTrace(static_cast<std::size_t>(state.range(0)), 0),
                    Qt::black);
    const wf_clip_t clip = plot->clip();
    for (auto _ : state) {
        curve.scale(clip);
    }
}

constexpr int k16Thousand = 16'000;
constexpr int k10Million = 10'000'000;

BENCHMARK(redrawEmptyChart)->Unit(benchmark::kMicrosecond);
BENCHMARK(redrawFullView)->Arg(k16Thousand)->Arg(k10Million)->Unit(benchmark::kMicrosecond);
BENCHMARK(redrawZoomed)->Arg(k16Thousand)->Arg(k10Million)->Unit(benchmark::kMicrosecond);
BENCHMARK(redrawSticksApart)->Arg(k16Thousand)->Unit(benchmark::kMicrosecond);
BENCHMARK(redrawPlainCurves)->Arg(k16Thousand)->Unit(benchmark::kMicrosecond);
BENCHMARK(rescale)->Arg(k16Thousand)->Arg(k10Million)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
