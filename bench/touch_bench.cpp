// A step under the finger, from the event that begins it to the painted canvas of 1280 x 720:
// panning and zooming four traces with ticks, overview and markers, whatever their length.

#include "bench/touchedplot.h"
#include "tests/support/allocatedbytes.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

constexpr int k16Thousand = 16'000;
constexpr int k1Million = 1'000'000;
constexpr int k10Million = 10'000'000;
constexpr int kStep_px = 40;

struct View
{
    double from_m;
    double to_m;
};

constexpr View kWhole {0.0, 50000.0};
constexpr View kZoomed {16000.0, 18000.0};

/// Steps there and back. Says what a step asks the heap for and how often it paints.
template <typename There, typename Back>
void measure(benchmark::State& state, TouchedPlot& touched, There there, Back back)
{
    there();
    back();
    bool isThere = false;
    const int painted = touched.paintCount();
    const std::size_t allocated = testing_support::allocatedBytes();
    for (auto _ : state) {
        if (isThere) {
            back();
        } else {
            there();
        }
        isThere = !isThere;
    }
    const auto steps = static_cast<double>(state.iterations());
    state.counters["bytes"] =
        static_cast<double>(testing_support::allocatedBytes() - allocated) / steps;
    state.counters["paints"] = (touched.paintCount() - painted) / steps;
}

void pan(benchmark::State& state, TouchedPlot& touched)
{
    measure(
        state, touched, [&] { touched.pan(-kStep_px); }, [&] { touched.pan(kStep_px); });
}

void zoom(benchmark::State& state, TouchedPlot& touched)
{
    measure(
        state, touched, [&] { touched.zoom(Qt::Key_Right); }, [&] { touched.zoom(Qt::Key_Left); });
}

void panStepWholeView(benchmark::State& state)
{
    TouchedPlot touched(static_cast<std::size_t>(state.range(0)), kWhole.from_m, kWhole.to_m);
    pan(state, touched);
}

void panStepZoomed(benchmark::State& state)
{
    TouchedPlot touched(static_cast<std::size_t>(state.range(0)), kZoomed.from_m, kZoomed.to_m);
    pan(state, touched);
}

/// With a stretch of fibre highlighted that fills half the canvas.
void panStepHighlight(benchmark::State& state)
{
    TouchedPlot touched(static_cast<std::size_t>(state.range(0)), kZoomed.from_m - 1000.0,
                        kZoomed.to_m + 1000.0);
    touched.chooseStretch(7); // 16 to 18 km
    pan(state, touched);
}

void zoomStepWholeView(benchmark::State& state)
{
    TouchedPlot touched(static_cast<std::size_t>(state.range(0)), kWhole.from_m, kWhole.to_m);
    zoom(state, touched);
}

void zoomStepZoomed(benchmark::State& state)
{
    TouchedPlot touched(static_cast<std::size_t>(state.range(0)), kZoomed.from_m, kZoomed.to_m);
    zoom(state, touched);
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgName("samples")->Arg(k16Thousand)->Arg(k1Million)->Arg(k10Million);
    bench->Unit(benchmark::kMicrosecond);
}

BENCHMARK(panStepWholeView)->Apply(sizes);
BENCHMARK(panStepZoomed)->Apply(sizes);
BENCHMARK(panStepHighlight)->Apply(sizes);
BENCHMARK(zoomStepWholeView)->Apply(sizes);
BENCHMARK(zoomStepZoomed)->Apply(sizes);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--picture") == 0) {
        TouchedPlot touched(k16Thousand, kZoomed.from_m, kZoomed.to_m);
        return touched.picture().save(argv[2]) ? 0 : 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
