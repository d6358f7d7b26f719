#include "programs/wfgather/sampling.h"

#include <gtest/gtest.h>

namespace {

using gather::Sampling;
using gather::samplingFor;

/// Round-trip time of a range in fibre of index 1.468, ns.
double timeOf(double range_m)
{
    return range_m * 2.0 * 1.468 / 0.299792458;
}

constexpr double kRanges_m[] = {1000, 2500, 5000, 10000, 20000, 40000, 80000, 160000};
constexpr double kPulses_ns[] = {5, 10, 30, 100, 275, 1000, 5000, 10000, 20000};

} // namespace

TEST(Sampling, CoversTheRangeAndNoMore)
{
    for (const double range : kRanges_m) {
        for (const double pulse : kPulses_ns) {
            const Sampling sampling = samplingFor(timeOf(range), pulse);
            const double last_ns = static_cast<double>(sampling.count - 1) * sampling.interval_ns;
            EXPECT_LE(last_ns, timeOf(range));
            EXPECT_GT(last_ns + sampling.interval_ns, timeOf(range));
        }
    }
}

TEST(Sampling, KeepsBetweenTheFewestAndTheMostSamples)
{
    for (const double range : kRanges_m) {
        for (const double pulse : kPulses_ns) {
            const Sampling sampling = samplingFor(timeOf(range), pulse);
            EXPECT_GE(sampling.count, 16384U) << range << " m, " << pulse << " ns";
            EXPECT_LE(sampling.count, 131072U) << range << " m, " << pulse << " ns";
        }
    }
}

TEST(Sampling, TakesFiveSamplesOfAPulseWhereTheLimitAllows)
{
    for (const double range : kRanges_m) {
        for (const double pulse : kPulses_ns) {
            const Sampling sampling = samplingFor(timeOf(range), pulse);
            if (timeOf(range) / (pulse / 5.0) < 60000.0) { // the next round figure still fits
                EXPECT_LE(sampling.interval_ns, pulse / 5.0) << range << " m, " << pulse << " ns";
            }
        }
    }
}

TEST(Sampling, TakesRoundIntervals)
{
    EXPECT_DOUBLE_EQ(samplingFor(timeOf(10000), 100).interval_ns, 5.0);
    EXPECT_DOUBLE_EQ(samplingFor(timeOf(10000), 5).interval_ns, 1.0);
    EXPECT_DOUBLE_EQ(samplingFor(timeOf(160000), 20000).interval_ns, 50.0);
    EXPECT_DOUBLE_EQ(samplingFor(timeOf(5000), 100).interval_ns, 2.5);
}

TEST(Sampling, StandsTheShortestAndTheLongestRange)
{
    EXPECT_DOUBLE_EQ(samplingFor(timeOf(10), 1).interval_ns, 0.5);
    EXPECT_LE(samplingFor(timeOf(500000), 1).count, 131072U);
}
