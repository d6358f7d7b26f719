#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/trace.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

namespace {

constexpr std::size_t kPulse = 20; // samples
constexpr std::size_t kPulsesBetween = 500; // from event to event
constexpr double kFibre = 0.9; // of the record; behind it there is noise
constexpr double kRecord_ns = 1e6; // of every trace: 100 km, sampled more or less finely

/// Every event's loss; the next one gains it back, so that a long trace stays on the scale.
constexpr double kStep_dB = 0.3;
constexpr double kPeak_dB = 8.0; // of every other event
constexpr double kLaunch_dB = 42.0;
constexpr double kFall_dB = 18.0; // from the port to the end
constexpr double kNoise_dB = 0.02;
constexpr double kFloor_dB = 8.0;

std::uint16_t rawCount(double level_dB)
{
    const double raw = std::round(otdr::kNoSignal - level_dB / otdr::kUsualDbPerCount);
    return static_cast<std::uint16_t>(std::clamp(raw, 0.0, 65535.0));
}

/// Level without noise at a sample of the fibre.
double level_dB(std::size_t i, std::size_t fibre)
{
    const std::size_t number = i / (kPulse * kPulsesBetween);
    const std::size_t behind = i % (kPulse * kPulsesBetween);
    const double ramp = std::min(1.0, static_cast<double>(behind) / static_cast<double>(kPulse));
    const double loss = number % 2 == 1 ? ramp : number > 0 ? 1.0 - ramp : 0.0;
    const bool isPeak = number % 2 == 1 && behind < kPulse;
    return kLaunch_dB - kFall_dB * static_cast<double>(i) / static_cast<double>(fibre)
        - kStep_dB * loss + (isPeak ? kPeak_dB : 0.0);
}

otdr::RawSamples samplesOf(std::size_t size)
{
    std::mt19937_64 generator(5);
    std::normal_distribution<double> gauss;
    const auto fibre = static_cast<std::size_t>(kFibre * static_cast<double>(size));
    std::vector<std::uint16_t> counts(size, otdr::kNoSignal);
    for (std::size_t i = 0; i < size; ++i) {
        const double scatter = gauss(generator);
        if (i < fibre) {
            counts[i] = rawCount(level_dB(i, fibre) + kNoise_dB * scatter);
        } else if (scatter > 0.0) {
            counts[i] = rawCount(kFloor_dB + 5.0 * std::log10(scatter));
        }
    }
    return otdr::RawSamples(counts);
}

/// Made once for each size.
const otdr::RawSamples& samplesFor(const benchmark::State& state)
{
    static std::map<std::int64_t, otdr::RawSamples> made;
    otdr::RawSamples& samples = made[state.range(0)];
    if (samples.empty()) {
        samples = samplesOf(static_cast<std::size_t>(state.range(0)));
    }
    return samples;
}

otdr::TraceAxis axisOf(const otdr::RawSamples& samples)
{
    return {kRecord_ns / static_cast<double>(samples.size()), 0.0};
}

otdr::Measurement measurementOf(const otdr::TraceAxis& axis)
{
    return {axis.sampleInterval_ns * static_cast<double>(kPulse),
            otdr::metresPerNs(otdr::kDefaultGroupIndex), -81.9};
}

void count(benchmark::State& state, std::size_t samples, const otdr::Detection& found)
{
    const auto all = static_cast<std::int64_t>(state.iterations() * samples);
    state.SetItemsProcessed(all);
    state.counters["events"] = static_cast<double>(found.events.size());
    if (std::isnan(found.end)) { // figures of a search that gave up early mean nothing
        state.SkipWithError("the end of the fibre was not found");
    }
}

/// A trace whose sums have been built, as one that is shown.
void detectOnTraceInUse(benchmark::State& state)
{
    const otdr::RawSamples& samples = samplesFor(state);
    const otdr::TraceAxis axis = axisOf(samples);
    const otdr::Trace trace(samples, otdr::kUsualDbPerCount, axis);
    otdr::Detection found = otdr::detectEvents(trace, measurementOf(axis));
    for (auto _ : state) {
        found = otdr::detectEvents(trace, measurementOf(axis));
        benchmark::DoNotOptimize(found.events.data());
    }
    count(state, samples.size(), found);
}

/// A trace just loaded: the sums are built on the way.
void detectOnFreshTrace(benchmark::State& state)
{
    const otdr::RawSamples& samples = samplesFor(state);
    const otdr::TraceAxis axis = axisOf(samples);
    otdr::Detection found;
    for (auto _ : state) {
        const otdr::Trace trace(samples, otdr::kUsualDbPerCount, axis);
        found = otdr::detectEvents(trace, measurementOf(axis));
        benchmark::DoNotOptimize(found.events.data());
    }
    count(state, samples.size(), found);
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgName("samples")->Arg(32'000)->Arg(1'000'000)->Arg(10'000'000);
    bench->Unit(benchmark::kMillisecond);
}

BENCHMARK(detectOnTraceInUse)->Apply(sizes);
BENCHMARK(detectOnFreshTrace)->Apply(sizes);

} // namespace
