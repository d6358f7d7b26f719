#include "platform/otdr/core/windowsums.h"
#include "tests/platform/otdr/core/counts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace {

using otdr::FarSums;
using otdr::NearSums;
using otdr::Trace;
using otdr::WindowSums;
using testing_support::randomCounts;
using testing_support::traceOf;

WindowSums straightSums(const Trace& trace, std::size_t first, std::size_t last)
{
    WindowSums sums;
    for (std::size_t i = first; i < last; ++i) {
        const std::int64_t raw = trace.samples()[i];
        sums.y += raw;
        sums.xy2 +=
            (2 * static_cast<std::int64_t>(i) - static_cast<std::int64_t>(first + last - 1)) * raw;
    }
    return sums;
}

void expectSameSums(const WindowSums& found, const WindowSums& truth, std::size_t first,
                    std::size_t last)
{
    ASSERT_EQ(found.y, truth.y) << first << " .. " << last;
    ASSERT_EQ(found.xy2, truth.xy2) << first << " .. " << last;
}

TEST(WindowSums, AreExactForEveryWindowOfATile)
{
    const Trace trace = traceOf(randomCounts(400, 7));
    NearSums sums(150);
    for (const std::size_t begin : {0U, 1U, 133U, 250U}) {
        sums.fill(trace, begin, begin + 150);
        for (std::size_t first = begin; first < begin + 150; ++first) {
            for (std::size_t last = first + 1; last <= begin + 150; ++last) {
                expectSameSums(sums.of(first, last), straightSums(trace, first, last), first, last);
            }
        }
    }
}

TEST(WindowSums, AreExactForAnyWindowOfALongTrace)
{
    const Trace trace = traceOf(randomCounts(50'000, 7));
    const FarSums sums(trace);
    std::mt19937 generator(8);
    for (int round = 0; round < 300; ++round) {
        const std::size_t first = generator() % trace.size();
        const std::size_t last = first + 1 + generator() % (trace.size() - first);
        expectSameSums(sums.of(first, last), straightSums(trace, first, last), first, last);
    }
}

} // namespace
