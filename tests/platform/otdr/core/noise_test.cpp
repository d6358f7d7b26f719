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

NoiseProfile profileOf(const otdr::Trace& trace, double pulse = 10.0)
{
    return {trace, pulse, 0, trace.size()};
}

TEST(NoiseProfile, TellsTheScatterOfSamples)
{
    const auto trace = TraceBuilder().fibre(20_km).noise(0.02_dB, 3).build();
    const NoiseProfile noise = profileOf(*trace);
    for (double at = 500.0; at < 19000.0; at += 1000.0) {
        EXPECT_NEAR(noise.sigma_dB(at), 0.02, 0.004) << at;
    }
}

TEST(NoiseProfile, KnowsNeitherSlopesNorEvents)
{
    const auto trace = TraceBuilder()
                           .fibre(20_km)
                           .attenuation(1.0_dB)
                           .splice(5_km, 0.5_dB)
                           .connector(10_km, 0.3_dB, 8.0_dB)
                           .noise(0.01_dB, 4)
                           .build();
    const NoiseProfile noise = profileOf(*trace);
    for (double at = 500.0; at < 19000.0; at += 500.0) {
        EXPECT_NEAR(noise.sigma_dB(at), 0.01, 0.003) << at;
    }
}

TEST(NoiseProfile, WhiteNoiseIsNotCorrelated)
{
    const auto trace = TraceBuilder().fibre(40_km).noise(0.02_dB, 5).build();
    EXPECT_NEAR(profileOf(*trace).correlation(), 1.0, 0.25);
}

/// Means of four neighbours: the variance of a long mean is four times that of independent samples.
TEST(NoiseProfile, NeighboursThatAreAlikeCountLess)
{
    std::mt19937_64 random(6);
    std::normal_distribution<double> normal(0.0, 40.0);
    std::vector<double> fresh(40003);
    for (double& value : fresh) {
        value = normal(random);
    }
    std::vector<std::uint16_t> counts(40000);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double mean = (fresh[i] + fresh[i + 1] + fresh[i + 2] + fresh[i + 3]) / 4.0;
        counts[i] = static_cast<std::uint16_t>(20000.5 + mean);
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {});
    const NoiseProfile noise = profileOf(trace, 20.0);
    EXPECT_NEAR(noise.sigma_dB(20000.0), 0.02, 0.003);
    EXPECT_NEAR(noise.correlation(), 4.0, 1.0);
}

/// Steps of 50 counts, and of one count for noise of three.
TEST(NoiseProfile, KnowsFibreThatIsMeasuredInStepsGreaterThanItsNoise)
{
    const auto fibre = TraceBuilder().fibre(8_km).noise(0.003_dB, 8).build();
    EXPECT_FALSE(profileOf(*fibre).isRounded());
    std::vector<std::uint16_t> counts(fibre->samples().begin(), fibre->samples().end());
    for (std::uint16_t& count : counts) {
        count = static_cast<std::uint16_t>((count + 25) / 50 * 50);
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, fibre->axis());
    EXPECT_TRUE(profileOf(trace).isRounded());
}

/// Splices four to ten pulses apart: samples closer than they are tell the noise better.
TEST(NoiseProfile, OfALesserReachIsThatBetweenCloseEvents)
{
    std::mt19937_64 random(8);
    std::uniform_real_distribution<double> apart_m(40.0, 100.0);
    TraceBuilder builder = TraceBuilder().fibre(8_km).launch(60_dB).noise(0.002_dB, 8);
    for (double at_m = 50.0; at_m < 7900.0; at_m += apart_m(random)) {
        builder.splice({at_m}, 0.2_dB);
    }
    const auto trace = builder.build();
    const NoiseProfile usual = profileOf(*trace);
    const NoiseProfile closer(*trace, 10.0, 0, trace->size(), {}, 0.5);
    EXPECT_GT(usual.wander_dB(), 0.02);
    EXPECT_LT(closer.wander_dB(), 0.5 * usual.wander_dB());
}

/// Levels that jump to and fro: second differences of neighbours are all twice the jump.
otdr::NoiseProfile jumping(int nearCounts, int farCounts, double fall_dB = 1.0)
{
    std::vector<std::uint16_t> counts(512);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const bool isNear = i < 256;
        const int level = 30000 + (isNear ? 0 : static_cast<int>(1000.0 * fall_dB));
        const int jump = i % 2 == 0 ? 0 : (isNear ? nearCounts : farCounts);
        counts[i] = static_cast<std::uint16_t>(level + jump);
    }
    return {otdr::Trace(otdr::RawSamples(counts), 0.001, {}), 1.0, 0, counts.size()};
}

/// Stronger light scatters less: what scatters more than the weaker light behind it, and by more
/// than two fifths, which is chance, shows an event and no noise.
TEST(NoiseProfile, IsLevelledOutWhereTheNearerFibreScattersClearlyMore)
{
    const double far = jumping(5, 5).sigma_dB(384.0);
    EXPECT_NEAR(jumping(7, 5).sigma_dB(128.0), 1.4 * far, 1e-9);
    EXPECT_NEAR(jumping(8, 5).sigma_dB(128.0), far, 1e-9);
    EXPECT_NEAR(jumping(3, 5).sigma_dB(128.0), 0.6 * far, 1e-9);
    // Weaker light may scatter more.
    EXPECT_NEAR(jumping(8, 5, -1.0).sigma_dB(128.0), 1.6 * far, 1e-9);
}

/// Beyond 0.4 dB the median of the differences is more than what is counted, 1 dB.
TEST(NoiseProfile, TellsScatterOfAnySize)
{
    for (const double sigma : {0.01, 0.1, 0.38, 0.45, 2.0}) {
        const auto trace = TraceBuilder().fibre(10_km).noise(Decibels {sigma}, 3).build();
        const NoiseProfile noise = profileOf(*trace);
        for (double at = 500.0; at < 9000.0; at += 1000.0) {
            EXPECT_NEAR(noise.sigma_dB(at), sigma, 0.2 * sigma) << at;
        }
    }
}

/// Noise of a pole of 20 samples on fibre with a loss every four pulses, a record of 40 pulses:
/// (1 + c) / (1 - c) with c = exp(-1 / 20) is 40.
TEST(NoiseProfile, OfARecordOfFewPulsesIsMeasuredBetweenItsEvents)
{
    const double pulse = 250.0;
    const double c = std::exp(-1.0 / 20.0);
    std::mt19937_64 random(12);
    std::normal_distribution<double> normal(0.0, 30.0);
    std::vector<std::uint16_t> counts(10000);
    double noise = normal(random);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        noise = c * noise + std::sqrt(1.0 - c * c) * normal(random);
        const double part = std::fmod(static_cast<double>(i), 4.0 * pulse) / pulse;
        const double lost =
            std::floor(static_cast<double>(i) / (4.0 * pulse)) + std::min(1.0, part);
        counts[i] = static_cast<std::uint16_t>(std::lround(20000.0 + 300.0 * lost + noise));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
    const NoiseProfile found = profileOf(trace, pulse);
    EXPECT_GT(found.correlation(), 20.0);
    EXPECT_LT(found.correlation(), 80.0);
    EXPECT_NEAR(found.sigma_dB(5000.0), 0.03, 0.01);
}

/// Light that falls evenly scatters by a power of e more from place to place.
TEST(NoiseProfile, FollowsTheLightBetweenItsBlocksAndToTheEnds)
{
    std::mt19937_64 random(13);
    std::normal_distribution<double> normal;
    std::vector<std::uint16_t> counts(20000);
    const auto sigma = [](double i) { return 0.005 * std::exp(i / 6000.0); };
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i] = static_cast<std::uint16_t>(
            std::lround(20000.0 + 1000.0 * sigma(static_cast<double>(i)) * normal(random)));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
    const NoiseProfile noise = profileOf(trace, 300.0); // blocks of 3000 samples
    for (double at = 0.0; at < 20000.0; at += 500.0) {
        EXPECT_NEAR(noise.sigma_dB(at) / sigma(at), 1.0, 0.2) << at;
    }
}

TEST(NoiseProfile, OutsideItsStretchIsThatOfItsEnds)
{
    const auto trace = TraceBuilder().fibre(10_km).noise(0.02_dB, 5).build();
    const NoiseProfile noise(*trace, 10.0, 1000, 8000);
    EXPECT_EQ(noise.sigma_dB(-1e9), noise.sigma_dB(1000.0));
    EXPECT_EQ(noise.sigma_dB(1e9), noise.sigma_dB(8000.0));
    EXPECT_EQ(noise.sigma_dB(std::nan("")), noise.sigma_dB(1000.0));
}

/// Flat light whose scatter grows from one end to the other.
TEST(NoiseProfile, NoPlaceOfAStretchHasLessThanItsLeast)
{
    std::mt19937_64 random(9);
    std::normal_distribution<double> normal;
    std::vector<std::uint16_t> counts(10000);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double wave = 60.0 + 50.0 * std::sin(0.001 * static_cast<double>(i));
        counts[i] = static_cast<std::uint16_t>(30000.0 + wave * normal(random));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
    const NoiseProfile noise(trace, 10.0, 100, 9900);
    for (double from = -500.0; from < 10500.0; from += 333.0) {
        for (const double length : {0.0, 10.0, 256.0, 1000.0, 5000.0}) {
            double least = noise.sigma_dB(from);
            for (double at = from; at <= from + length; at += 1.0) {
                least = std::min(least, noise.sigma_dB(at));
            }
            const double told = noise.leastSigma_dB(from, from + length);
            EXPECT_LE(told, least);
            // Two blocks more than the stretch has may count.
            EXPECT_GE(told, noise.leastSigma_dB(from - 512.0, from + length + 512.0));
        }
    }
    EXPECT_LT(noise.leastSigma_dB(4000.0, 5000.0), 0.5 * noise.leastSigma_dB(1000.0, 2000.0));
}

/// Light of 24 dB and behind a place so much less, with a receiver's noise of 10 dB; what is given
/// stands above it.
otdr::Trace fallingAt(double place, double fall_dB, double peakPulses, double peak_dB)
{
    std::mt19937_64 random(21);
    std::normal_distribution<double> noise(0.0, std::pow(10.0, 10.0 / 5.0));
    std::vector<std::uint16_t> counts(10000);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double behind = static_cast<double>(i) - place;
        const bool isPeak = behind >= 0.0 && behind < 10.0 * peakPulses;
        const double level_dB = 24.0 - (behind < 0.0 ? 0.0 : fall_dB) + (isPeak ? peak_dB : 0.0);
        const double power = std::max(1.0, std::pow(10.0, level_dB / 5.0) + noise(random));
        counts[i] = static_cast<std::uint16_t>(65535.5 - 5000.0 * std::log10(power));
    }
    return otdr::Trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
}

double scatterAt(double level_dB)
{
    return 5.0 / std::log(10.0) * std::pow(10.0, (10.0 - level_dB) / 5.0);
}

/// Wherever it stands within the blocks that the scatter is told by.
TEST(NoiseProfile, ChangesAtOnceWhereTheLightFallsForGood)
{
    for (double place = 5000.0; place < 5300.0; place += 37.0) {
        for (const double peak_dB : {0.0, 6.0}) {
            const NoiseProfile noise = profileOf(fallingAt(place, 8.0, 1.0, peak_dB));
            for (const double away : {10.0, 60.0, 150.0, 1000.0}) {
                EXPECT_NEAR(noise.sigma_dB(place - away) / scatterAt(24.0), 1.0, 0.3)
                    << place << ' ' << away;
                EXPECT_NEAR(noise.sigma_dB(place + 30.0 + away) / scatterAt(16.0), 1.0, 0.3)
                    << place << ' ' << away;
            }
        }
    }
}

/// So little of the light lies behind it that this alone would tell nothing.
TEST(NoiseProfile, IsLearntInFrontOfAFallAsWell)
{
    const NoiseProfile noise = profileOf(fallingAt(9500.0, 8.0, 1.0, 0.0));
    EXPECT_TRUE(noise.knowsWander());
    EXPECT_NEAR(noise.correlation(), 1.0, 0.3);
}

/// So near to each other that hardly a sample between them shows its scatter: what the light lost
/// tells it.
TEST(NoiseProfile, BetweenTwoFallsFollowsFromTheLight)
{
    for (const double apart : {35.0, 45.0, 80.0, 150.0}) {
        for (double place = 5000.0; place < 5260.0; place += 61.0) {
            std::mt19937_64 random(22);
            std::normal_distribution<double> noise(0.0, std::pow(10.0, 10.0 / 5.0));
            std::vector<std::uint16_t> counts(10000);
            for (std::size_t i = 0; i < counts.size(); ++i) {
                const double behind = static_cast<double>(i) - place;
                const double level_dB = 26.0 - (behind < 0.0 ? 0.0 : (behind < apart ? 5.0 : 10.0));
                const double power = std::max(1.0, std::pow(10.0, level_dB / 5.0) + noise(random));
                counts[i] = static_cast<std::uint16_t>(65535.5 - 5000.0 * std::log10(power));
            }
            const NoiseProfile profile =
                profileOf(otdr::Trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {}));
            const double between = profile.sigma_dB(place + 0.5 * apart) / scatterAt(21.0);
            EXPECT_GT(between, 0.4) << apart << ' ' << place;
            EXPECT_LT(between, 2.5) << apart << ' ' << place;
            EXPECT_NEAR(profile.sigma_dB(place - 20.0) / scatterAt(26.0), 1.0, 0.4) << place;
            EXPECT_NEAR(profile.sigma_dB(place + apart + 40.0) / scatterAt(16.0), 1.0, 0.4)
                << place;
        }
    }
}

/// Behind it the light is what it was, however long the receiver was held at its top.
TEST(NoiseProfile, DoesNotChangeBehindAReflection)
{
    for (const double pulses : {1.0, 4.0, 8.0}) {
        const NoiseProfile noise = profileOf(fallingAt(5100.0, 0.0, pulses, 12.0));
        for (double at = 4000.0; at < 6000.0; at += 50.0) {
            EXPECT_NEAR(noise.sigma_dB(at) / scatterAt(24.0), 1.0, 0.3) << pulses << ' ' << at;
        }
    }
}

/// Light without noise, but for rounding, and behind a place with noise that has passed a pole of
/// two samples: (1 + c) / (1 - c) with c = exp(-1 / 2) is 4.
TEST(NoiseProfile, LikenessIsToldByWhatScattersAndNotByRoundings)
{
    const double c = std::exp(-0.5);
    for (const std::size_t noisy : {800U, 1500U, 3000U, 6000U}) {
        for (const std::uint64_t seed : {1, 2, 3}) {
            std::mt19937_64 random(seed);
            std::normal_distribution<double> normal(0.0, 30.0);
            std::vector<std::uint16_t> counts(20000);
            double noise = normal(random);
            for (std::size_t i = 0; i < counts.size(); ++i) {
                noise = c * noise + std::sqrt(1.0 - c * c) * normal(random);
                const bool isNoisy = i + noisy >= counts.size();
                const double level = 20000.0 + 0.37 * static_cast<double>(i);
                counts[i] =
                    static_cast<std::uint16_t>(std::lround(level + (isNoisy ? noise : 0.0)));
            }
            const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
            const double correlation = profileOf(trace, 25.0).correlation();
            EXPECT_GT(correlation, 2.0) << noisy << ' ' << seed;
            EXPECT_LT(correlation, 8.0) << noisy << ' ' << seed;
        }
    }
}

/// An instrument that measures in steps of 50 counts: differences are none for most samples.
TEST(NoiseProfile, StepsOfTheMeasurementAreNoise)
{
    std::mt19937_64 random(9);
    std::normal_distribution<double> normal(0.0, 10.0);
    std::vector<std::uint16_t> counts(20000);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double exact = 20000.0 + 0.05 * static_cast<double>(i) + normal(random);
        counts[i] = static_cast<std::uint16_t>(50.0 * std::round(exact / 50.0));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {});
    const NoiseProfile noise = profileOf(trace, 20.0);
    for (double at = 500.0; at < 19500.0; at += 1000.0) {
        EXPECT_GT(noise.sigma_dB(at), 0.014) << at;
        EXPECT_LT(noise.sigma_dB(at), 0.025) << at;
    }
}

/// Fibre with a loss or a gain of 0.2 dB every so many metres; pulses are 10 m long.
TraceBuilder crowdedFibre(int spacing_m)
{
    TraceBuilder link = TraceBuilder().fibre(20_km).noise(0.005_dB, 8);
    for (int k = 1; k * spacing_m < 20000; ++k) {
        link.splice(Length {static_cast<double>(k * spacing_m)},
                    Decibels {k % 2 == 0 ? 0.2 : -0.2});
    }
    return link;
}

/// Ten pulses show a bend, and two of three hold a step. The others tell the noise, if no better
/// than to a few times; all of them would have it that neighbours are as alike as means can tell,
/// 32 times.
TEST(NoiseProfile, LessThanHalfOfTheFibreTellsItsNoise)
{
    const auto trace = crowdedFibre(170).build();
    const NoiseProfile noise = profileOf(*trace);
    EXPECT_LT(noise.correlation(), 8.0);
    EXPECT_LT(noise.wander_dB(), 0.003);
}

TEST(NoiseProfile, EventsThatAreKnownTellNothingOfIt)
{
    const TraceBuilder link = crowdedFibre(70);
    const auto trace = link.build();
    const double pulse = link.pulseSamples();
    std::vector<otdr::Disturbance> events;
    for (int k = 1; k * 70 < 20000; ++k) {
        const double at = link.indexOf(Length {70.0 * k});
        events.push_back({at - 1.0, at + 1.5 * pulse});
    }
    const NoiseProfile unknown(*trace, pulse, 0, trace->size());
    EXPECT_GT(unknown.wander_dB(), 0.03);
    const NoiseProfile known(*trace, pulse, 0, trace->size(), events);
    EXPECT_NEAR(known.sigma_dB(10000.0), 0.005, 0.0015);
    EXPECT_NEAR(known.correlation(), 1.0, 0.5);
    EXPECT_LT(known.wander_dB(), 0.003);
}

/// Shorter means, that tell more between events which stand close to each other, tell less of noise
/// that is alike for long: one event on much fibre changes nothing.
TEST(NoiseProfile, IsToldByLongMeansWhereFewEventsAreKnown)
{
    const double alike = std::exp(-1.0 / 16.0);
    std::mt19937_64 random(8);
    std::normal_distribution<double> normal(0.0, 20.0 * std::sqrt(1.0 - alike * alike));
    double noise = 0.0;
    std::vector<std::uint16_t> counts(60000);
    for (std::uint16_t& count : counts) {
        noise = alike * noise + normal(random);
        count = static_cast<std::uint16_t>(20000.5 + noise);
    }
    const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {});
    const NoiseProfile without(trace, 20.0, 0, trace.size());
    const NoiseProfile with(trace, 20.0, 0, trace.size(), {{30000.0, 30050.0}});
    EXPECT_NEAR(with.correlation(), without.correlation(), 0.02 * without.correlation());
}

/// With nothing connected no fibre is left to tell it.
TEST(NoiseProfile, StandsAStretchWithoutSamples)
{
    for (const bool isDark : {false, true}) {
        const std::vector<std::uint16_t> counts(2000, isDark ? 65535 : 20000);
        const otdr::Trace trace(otdr::RawSamples(counts), 0.001, {});
        const NoiseProfile noise(trace, 10.0, 5, 5);
        EXPECT_GT(noise.sigma_dB(5.0), 0.0);
        EXPECT_TRUE(std::isfinite(noise.rms_dB()));
        EXPECT_EQ(noise.wander_dB(), 0.0);
    }
}

TEST(NoiseProfile, StandsEmptyAndTinyTraces)
{
    for (const std::size_t size : {0U, 1U, 2U, 17U, 300U}) {
        const otdr::Trace trace(otdr::RawSamples(std::vector<std::uint16_t>(size, 30000)), 0.001,
                                {});
        const NoiseProfile noise(trace, 5.0, 0, size);
        EXPECT_GT(noise.sigma_dB(0.0), 0.0) << size;
        EXPECT_GE(noise.correlation(), 1.0) << size;
    }
}

} // namespace
