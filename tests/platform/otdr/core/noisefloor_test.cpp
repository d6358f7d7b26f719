#include "platform/otdr/core/noise.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace testing_support;
using otdr::NoiseProfile;

/// The noise of a whole record.
NoiseProfile wholeOf(const otdr::Trace& trace, double pulse = 10.0)
{
    return {trace, pulse, 0, trace.size()};
}

/// On a logarithmic scale the level that 16 % exceed is that of one standard deviation.
TEST(NoiseProfile, FloorIsTheLevelOfTheRmsNoise)
{
    std::mt19937_64 random(7);
    std::normal_distribution<double> power(0.0, 1.0);
    const auto fibre = TraceBuilder().fibre(5_km).noise(0.01_dB, 7).build();
    std::vector<std::uint16_t> counts(fibre->samples().begin(), fibre->samples().end());
    for (int i = 0; i < 8000; ++i) {
        const double value = power(random);
        const double level_dB = value > 0.0 ? 12.0 + 5.0 * std::log10(value) : 0.0;
        counts.push_back(static_cast<std::uint16_t>(65535.0 - 1000.0 * std::max(0.0, level_dB)));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, fibre->axis());
    EXPECT_NEAR(wholeOf(trace).rms_dB(), 12.0, 0.3);
}

/// Who sets the range to a little more than the length of the fibre leaves little noise behind it.
TEST(NoiseProfile, FloorIsThatOfTheLittleNoiseThatARecordHas)
{
    std::mt19937_64 random(7);
    std::normal_distribution<double> power(0.0, 1.0);
    for (const int noisy : {1200, 600, 450, 250, 150}) {
        const auto fibre = TraceBuilder().fibre(12_km).noise(0.002_dB, 7).build();
        std::vector<std::uint16_t> counts(fibre->samples().begin(), fibre->samples().end());
        for (int i = 0; i < noisy; ++i) {
            const double value = power(random);
            const double level_dB = value > 0.0 ? 12.0 + 5.0 * std::log10(value) : 0.0;
            counts.push_back(
                static_cast<std::uint16_t>(65535.0 - 1000.0 * std::max(0.0, level_dB)));
        }
        const otdr::Trace trace(otdr::RawSamples(counts), 0.001, fibre->axis());
        EXPECT_NEAR(wholeOf(trace).rms_dB(), 12.0, 2.0) << noisy;
    }
}

/// A converter of few steps, its noise cut off at the least of them, and every sample the mean of
/// two: two fifths of them stands at that least level, and no wide scatter shows the noise.
TEST(NoiseProfile, FloorOfNoiseThatIsCutOffIsNotTakenForLight)
{
    std::mt19937_64 random(8);
    std::discrete_distribution<int> steps({64, 17, 9, 5, 3, 1, 1});
    const auto fibre = TraceBuilder().fibre(2_km).launch(15_dB).noise(0.01_dB, 8).build();
    std::vector<std::uint16_t> counts(fibre->samples().begin(), fibre->samples().end());
    for (int i = 0; i < 8000; ++i) {
        const double power = 2.0 + 0.5 * (steps(random) + steps(random));
        counts.push_back(static_cast<std::uint16_t>(65535.0 - 5000.0 * std::log10(power)));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, fibre->axis());
    EXPECT_NEAR(wholeOf(trace).rms_dB(), 5.0 * std::log10(3.5), 0.3);
}

/// Darkness without noise in less than half of what is looked at: the rest is the fibre before it.
TEST(NoiseProfile, FloorIsNotTheFibreInFrontOfAShortDarkRecord)
{
    for (const std::size_t dark : {240U, 360U, 480U}) {
        const auto trace =
            TraceBuilder().fibre(12_km).behind(dark).launch(45_dB).noise(0.01_dB, 9).build();
        EXPECT_LT(wholeOf(*trace).rms_dB(), 30.0) << dark;
    }
}

/// Darkness that is lifted to three times its noise scatters too little to be known as such; still
/// it tells the noise, and not the fibre up to which the scatter is looked at.
TEST(NoiseProfile, FloorOfLiftedDarknessIsToldByItsOwnScatter)
{
    std::mt19937_64 random(9);
    std::normal_distribution<double> power(3.0, 1.0);
    const auto fibre = TraceBuilder().fibre(8_km).launch(25_dB).noise(0.006_dB, 8).build();
    std::vector<std::uint16_t> counts(fibre->samples().begin(), fibre->samples().end());
    for (int i = 0; i < 8000; ++i) {
        const double level_dB = 12.0 + 5.0 * std::log10(std::max(0.01, power(random)));
        counts.push_back(static_cast<std::uint16_t>(65535.0 - 1000.0 * level_dB));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, fibre->axis());
    EXPECT_NEAR(wholeOf(trace).rms_dB(), 12.0, 0.7);
    EXPECT_NEAR(NoiseProfile(trace, 10.0, 0, 7000).rms_dB(), 12.0, 0.7) << "of the fibre alone";
}

/// What is looked at last is fibre but for the little darkness behind it: its level tells the floor
/// with its own scatter, not with that of the darkness.
TEST(NoiseProfile, FloorOfARecordThatEndsSoonIsToldByTheFibre)
{
    for (const std::uint64_t seed : {3, 4, 5, 6}) {
        const auto fibre = TraceBuilder().fibre(8_km).launch(25_dB).noise(0.1_dB, seed).build();
        std::vector<std::uint16_t> counts(fibre->samples().begin(), fibre->samples().end());
        const double floor_dB = wholeOf(*fibre, 20.0).rms_dB();
        const std::size_t lit = counts.size();
        std::mt19937_64 random(seed);
        std::normal_distribution<double> power(0.0, 1.0);
        for (int i = 0; i < 95; ++i) {
            const double level_dB = floor_dB + 5.0 * std::log10(std::max(0.01, power(random)));
            counts.push_back(
                static_cast<std::uint16_t>(65535.0 - 1000.0 * std::max(0.0, level_dB)));
        }
        const otdr::Trace trace(otdr::RawSamples(counts), 0.001, fibre->axis());
        EXPECT_NEAR(NoiseProfile(trace, 20.0, 0, lit).rms_dB(), floor_dB, 0.7) << seed;
    }
}

/// s = 2.17 x 10^((floor - level) / 5): the scatter of the last of the fibre tells the floor.
TEST(NoiseProfile, FloorBelowTheRecordFollowsFromTheScatter)
{
    const auto trace =
        TraceBuilder().fibre(20_km).attenuation(0.0_dB).launch(20_dB).noise(0.02_dB, 8).build();
    EXPECT_NEAR(wholeOf(*trace).rms_dB(), 20.0 + 5.0 * std::log10(0.02 / 2.1715), 1.0);
}

} // namespace
