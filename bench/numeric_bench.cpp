#include "platform/otdr/core/crc32.h"
#include "platform/otdr/core/decimation.h"
#include "platform/otdr/core/linefit.h"
#include "platform/otdr/core/loss.h"
#include "platform/otdr/core/returnloss.h"
#include "platform/otdr/core/trace.h"
#include "tests/support/tracebuilder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

namespace {

using otdr::Trace;
using testing_support::TraceBuilder;

constexpr std::size_t kSmall = 16'000;
constexpr std::size_t kLarge = 10'000'000;
constexpr std::size_t kScreen = 3840; // points: a wide screen, a point a column

enum Kind : int
{
    Noisy, ///< half fibre with scatter, half noise floor with every other sample at the ceiling
    Sloping, ///< a falling line without noise
};

/// Made once for each size and kind.
const Trace& traceOf(std::size_t size, int kind)
{
    static std::map<std::pair<std::size_t, int>, std::shared_ptr<const Trace>> traces;
    std::shared_ptr<const Trace>& trace = traces[{size, kind}];
    if (!trace) {
        const std::size_t fibre = kind == Noisy ? size / 2 : size;
        TraceBuilder builder;
        builder.sampling(1e6 / static_cast<double>(size)).launch({40.0});
        builder.pulse(20.0 * 1e6 / static_cast<double>(size));
        const double step_m = builder.indexOf({1.0});
        const testing_support::Length length {static_cast<double>(fibre) / step_m};
        builder.fibre(length).attenuation({20.0 / length.m * 1000.0});
        if (kind == Noisy) {
            builder.behind(size - fibre).noise({0.05}, 1).noiseFloor({12.0});
            builder.connector({length.m * 0.31}, {0.3}, {8.0});
            builder.splice({length.m * 0.7}, {0.1});
        }
        trace = builder.build();
    }
    return *trace;
}

const Trace& traceOf(const benchmark::State& state)
{
    return traceOf(static_cast<std::size_t>(state.range(0)), static_cast<int>(state.range(1)));
}

void countSamples(benchmark::State& state, std::size_t samples)
{
    const auto passes = static_cast<std::int64_t>(state.iterations());
    state.SetItemsProcessed(passes * static_cast<std::int64_t>(samples));
    state.SetBytesProcessed(passes * static_cast<std::int64_t>(2 * samples));
}

void sizesAndKinds(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"samples", "kind"});
    for (const int kind : {Noisy, Sloping}) {
        bench->Args({kSmall, kind})->Args({kLarge, kind});
    }
}

// Yardsticks: what reading the same bytes costs, and the plainest way to all extremes.

void yardstickReadMemory(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    for (auto _ : state) {
        std::uint16_t all = 0;
        for (const std::uint16_t raw : trace.samples()) {
            all = static_cast<std::uint16_t>(all | raw);
        }
        benchmark::DoNotOptimize(all);
    }
    countSamples(state, trace.size());
}

BENCHMARK(yardstickReadMemory)->Apply(sizesAndKinds);

void yardstickPlainScan(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            std::minmax_element(trace.samples().begin(), trace.samples().end()));
    }
    countSamples(state, trace.size());
}

BENCHMARK(yardstickPlainScan)->Apply(sizesAndKinds);

void pyramidBuild(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    for (auto _ : state) {
        const otdr::Pyramid pyramid(trace.samples());
        benchmark::DoNotOptimize(&pyramid);
        state.counters["bytes"] = static_cast<double>(pyramid.bytes());
    }
    countSamples(state, trace.size());
}

BENCHMARK(pyramidBuild)->Apply(sizesAndKinds);

/// Window about the middle, of 1/zoom of the trace.
template <typename Decimate>
void decimate(benchmark::State& state, Decimate function)
{
    const Trace& trace = traceOf(state);
    const auto size = static_cast<double>(trace.size());
    const double width = size / static_cast<double>(state.range(2));
    const double first = (size - width) / 2.0 + 0.3;
    benchmark::DoNotOptimize(&trace.pyramid());
    std::size_t points = 0;
    for (auto _ : state) {
        const std::vector<otdr::Sample> result = function(trace, first, first + width, kScreen);
        points = result.size();
        benchmark::DoNotOptimize(result.data());
    }
    state.counters["points"] = static_cast<double>(points);
    countSamples(state, static_cast<std::size_t>(width));
}

void sizesAndZooms(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"samples", "kind", "zoom"});
    for (const int kind : {Noisy, Sloping}) {
        bench->Args({kSmall, kind, 1})->Args({kSmall, kind, 3});
        for (const int zoom : {1, 3, 10, 30, 100, 1000}) {
            bench->Args({kLarge, kind, zoom});
        }
    }
}

void peaksTo3840(benchmark::State& state)
{
    decimate(state, otdr::decimatePeaks);
}

BENCHMARK(peaksTo3840)->Apply(sizesAndZooms)->Unit(benchmark::kMicrosecond);

void envelopeTo3840(benchmark::State& state)
{
    decimate(state, otdr::decimateEnvelope);
}

BENCHMARK(envelopeTo3840)->Apply(sizesAndZooms)->Unit(benchmark::kMicrosecond);

/// The first picture after something else had the caches: 64 MB are written between two
/// decimations.
void peaksTo3840ColdCaches(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    benchmark::DoNotOptimize(&trace.pyramid());
    std::vector<std::uint64_t> other(8'000'000);
    for (auto _ : state) {
        state.PauseTiming();
        std::fill(other.begin(), other.end(), other.front() + 1);
        benchmark::DoNotOptimize(other.data());
        state.ResumeTiming();
        const auto end = static_cast<double>(trace.size());
        const std::vector<otdr::Sample> result = otdr::decimatePeaks(trace, 0.0, end, kScreen);
        benchmark::DoNotOptimize(result.data());
    }
    countSamples(state, trace.size());
}

BENCHMARK(peaksTo3840ColdCaches)
    ->Apply(sizesAndKinds)
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(50);

void lineSumsBuild(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    for (auto _ : state) {
        const otdr::PrefixSums sums(trace.samples());
        benchmark::DoNotOptimize(&sums);
        state.counters["bytes"] = static_cast<double>(sums.bytes());
    }
    countSamples(state, trace.size());
}

BENCHMARK(lineSumsBuild)->Apply(sizesAndKinds);

void powerSumsBuild(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    for (auto _ : state) {
        const otdr::PowerSums sums(trace.samples(), trace.dbPerCount());
        benchmark::DoNotOptimize(&sums);
        state.counters["bytes"] = static_cast<double>(sums.bytes());
    }
    countSamples(state, trace.size());
}

BENCHMARK(powerSumsBuild)->Apply(sizesAndKinds);

/// Walks over the trace, so that each fit meets other samples.
std::size_t next(std::size_t at, std::size_t size)
{
    constexpr std::size_t kStride = 9973;
    return (at + kStride) % (size / 2);
}

void lineFit(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    benchmark::DoNotOptimize(&trace.sums());
    std::size_t at = 1;
    for (auto _ : state) {
        at = next(at, trace.size());
        benchmark::DoNotOptimize(otdr::fitLine(trace, at, at + trace.size() / 2 - 17));
    }
}

BENCHMARK(lineFit)->Apply(sizesAndKinds);

void lossOfEvent(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    benchmark::DoNotOptimize(&trace.sums());
    otdr::EventSite site;
    site.pulse = 20.0;
    site.longestWindow = 5000.0;
    std::size_t at = 1;
    for (auto _ : state) {
        at = next(at, trace.size());
        site.index = static_cast<double>(at);
        benchmark::DoNotOptimize(otdr::eventLoss(trace, site));
    }
}

BENCHMARK(lossOfEvent)->Apply(sizesAndKinds);

void returnLoss(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    benchmark::DoNotOptimize(&trace.powerSums());
    std::size_t at = 1;
    for (auto _ : state) {
        at = next(at, trace.size());
        const auto from = static_cast<double>(at);
        const auto to = from + static_cast<double>(trace.size()) / 2.0;
        benchmark::DoNotOptimize(otdr::returnLoss_dB(trace, {from, to, 40.0, -81.9}));
    }
}

BENCHMARK(returnLoss)->Apply(sizesAndKinds);

void crc32OfSamples(benchmark::State& state)
{
    const Trace& trace = traceOf(state);
    const gsl::span<const std::uint16_t> samples(trace.samples().data(), trace.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(otdr::crc32(gsl::as_bytes(samples)));
    }
    countSamples(state, trace.size());
}

BENCHMARK(crc32OfSamples)->Apply(sizesAndKinds);

} // namespace
