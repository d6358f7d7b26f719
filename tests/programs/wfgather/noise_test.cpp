#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/linefit.h"
#include "programs/wfgather/settings.h"
#include "programs/wfgather/sources.h"
#include "tests/programs/wfgather/measured.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace wfgather_test;
using gather::Fibre;
using gather::SimulatedTrace;
using gather::Spectrum;

/// Fibre of 1 km on a range of 10 km: nine tenths of the samples are noise.
Fibre shortFibre(double dynamicRange_dB)
{
    Fibre fibre = uniformFibre(1000.0);
    fibre.dynamicRange_dB = Spectrum(dynamicRange_dB);
    return fibre;
}

Shot shotOf(int pulse_ns, double time_s)
{
    Shot shot;
    shot.pulse_ns = pulse_ns;
    shot.range_m = 10000.0;
    shot.time_s = time_s;
    return shot;
}

/// Level of the RMS noise behind the fibre, dB. Half of the samples are below zero and clipped; the
/// other half has the same mean square.
double noiseLevel(const otdr::Snapshot& snapshot)
{
    double squares = 0.0;
    const std::size_t first = snapshot.samples.size() / 5;
    for (std::size_t i = first; i < snapshot.samples.size(); ++i) {
        const double level = (65535 - snapshot.samples[i]) / 1000.0;
        squares += level > 0.0 ? std::pow(10.0, 2.0 * level / 5.0) : 0.0;
    }
    const auto count = static_cast<double>(snapshot.samples.size() - first);
    return 2.5 * std::log10(2.0 * squares / count);
}

// 16,000 samples, correlated over about two, half of them clipped: the variance is known to
// sqrt(2 * 2 * 1.8 / 16000) = 2.1 %, its level in decibels to 0.023. Four times that:
constexpr double kSure_dB = 0.1;

} // namespace

TEST(DynamicRange, GrowsWithPulseAndTime)
{
    EXPECT_NEAR(gather::dynamicRange_dB(41.6, 20000, 180), 41.6, 1e-12);
    EXPECT_NEAR(gather::dynamicRange_dB(41.6, 100, 180), 22.0, 0.1);
    EXPECT_NEAR(gather::dynamicRange_dB(41.6, 500, 60), 26.8, 0.1);
    EXPECT_NEAR(gather::dynamicRange_dB(41.6, 20000, 18), 39.1, 1e-9);
}

TEST(Noise, StandsTheDynamicRangeBelowTheBackscatterAtThePort)
{
    for (const int pulse : {30, 100, 275}) {
        for (const double time : {15.0, 180.0}) {
            const Shot shot = shotOf(pulse, time);
            SimulatedTrace trace(shortFibre(42.0), request(shot));
            trace.measure(time);
            const double range = trace.launchLevel_dB() - noiseLevel(trace.snapshot());
            EXPECT_NEAR(range, gather::dynamicRange_dB(42.0, pulse, time), kSure_dB)
                << pulse << " ns, " << time << " s";
        }
    }
}

TEST(Noise, StandsSomeDecibelsAboveTheFloorOfTheSamples)
{
    SimulatedTrace trace(shortFibre(42.0), request(shotOf(100, 15.0)));
    trace.measure(15.0);
    EXPECT_NEAR(noiseLevel(trace.snapshot()), 6.0, kSure_dB);
}

TEST(Noise, FallsByTwoAndAHalfDecibelsForTenTimesTheShots)
{
    SimulatedTrace trace(shortFibre(42.0), request(shotOf(100, 100.0)));
    trace.measure(1.0);
    const double one = noiseLevel(trace.snapshot());
    int measured_s = 1;
    for (const int seconds : {2, 4, 10, 40, 100}) {
        for (; measured_s < seconds; ++measured_s) {
            trace.measure(1.0);
        }
        // Both levels are estimates, and the first is part of the second.
        EXPECT_NEAR(one - noiseLevel(trace.snapshot()), 2.5 * std::log10(seconds), 1.5 * kSure_dB)
            << seconds << " s";
    }
}

TEST(Noise, OneLongMeasurementIsAsQuietAsManyShortOnes)
{
    SimulatedTrace atOnce(shortFibre(42.0), request(shotOf(100, 60.0)));
    SimulatedTrace bit(shortFibre(42.0), request(shotOf(100, 60.0)));
    atOnce.measure(60.0);
    for (int i = 0; i < 60; ++i) {
        bit.measure(1.0);
    }
    EXPECT_NEAR(noiseLevel(atOnce.snapshot()), noiseLevel(bit.snapshot()), 1.5 * kSure_dB);
    EXPECT_NEAR(atOnce.snapshot().averages, bit.snapshot().averages, 60.0);
}

TEST(Noise, OnTheFibreIsSmallerTheStrongerTheLight)
{
    // sigma = 2.171 * 10^(-x/5) dB at x dB above the noise, white noise in power.
    Fibre fibre = uniformFibre(9000.0, 0.2);
    fibre.dynamicRange_dB = Spectrum(34.0);
    const Measured measured = measure(fibre, shotOf(100, 15.0));
    const double noise_dB = measured.launch_dB - gather::dynamicRange_dB(34.0, 100, 15.0);
    for (const double at_m : {500.0, 4000.0, 8000.0}) {
        const auto line = otdr::fitLineBetween(*measured.trace, measured.indexOf(at_m),
                                               measured.indexOf(at_m + 900.0));
        ASSERT_TRUE(line);
        const double above = line->level_dB - noise_dB;
        const double expected = 2.171 * std::pow(10.0, -above / 5.0);
        EXPECT_NEAR(line->sigma_dB / expected, 1.0, 0.15) << at_m << " m";
    }
}

TEST(Noise, RefreshesAreOneMeasurementThatGoesOn)
{
    Fibre fibre = uniformFibre(9000.0);
    fibre.dynamicRange_dB = Spectrum(38.0);
    SimulatedTrace trace(fibre, request(shotOf(100, 15.0)));
    double before = 0.0;
    double correlation = 0.0;
    std::vector<double> last;
    for (int i = 0; i < 15; ++i) {
        trace.measure(1.0);
        EXPECT_GT(trace.snapshot().averages, before);
        before = trace.snapshot().averages;
    }
    // The 16th second changes an average of 15 by little: both agree but for a fifteenth.
    const otdr::Snapshot fifteen = trace.snapshot();
    trace.measure(1.0);
    const otdr::Snapshot sixteen = trace.snapshot();
    double difference = 0.0;
    double scatter = 0.0;
    const std::size_t last8km = fifteen.samples.size() * 8 / 10;
    for (std::size_t i = fifteen.samples.size() / 2; i < last8km; ++i) {
        const double step = fifteen.samples[i] - sixteen.samples[i];
        difference += step * step;
        const double neighbour = fifteen.samples[i] - fifteen.samples[i + 10];
        scatter += neighbour * neighbour;
    }
    correlation = difference / scatter;
    EXPECT_LT(correlation, 0.1); // independent averages would give about 1
}

/// Level shortly behind the port of a whole measurement of the demo link, dB.
double levelAfter(int duration_s)
{
    gather::Settings settings;
    settings.duration_s = duration_s;
    settings.pulse_ns = 1000;
    settings.seed = 1;
    const auto sources = gather::sourcesFor(settings);
    EXPECT_TRUE(sources);
    gather::TraceSource& trace = *sources->front();
    trace.measure(settings.isRealtime() ? gather::kRealtimeRefresh_s : duration_s);
    const otdr::Snapshot snapshot = trace.snapshot();
    const double perMetre = 1.0 / (snapshot.sampleInterval_ns * otdr::metresPerNs(kIor));
    return (65535 - snapshot.samples[static_cast<std::size_t>(400.0 * perMetre)]) / 1000.0;
}

TEST(Noise, StandsAtTheSameLevelHoweverLongIsMeasured)
{
    // So the backscatter rises by what the dynamic range gains: 2.5 dB for ten times as long.
    const double usual = levelAfter(15);
    EXPECT_NEAR(levelAfter(150), usual + 2.5, 0.1);
    EXPECT_NEAR(levelAfter(0), usual + 2.5 * std::log10(0.3 / 15.0), 0.1) << "realtime";
}

TEST(Noise, StartsAfreshInRealtime)
{
    SimulatedTrace trace(shortFibre(42.0), request(shotOf(100, 0.3)));
    trace.measure(0.3);
    const otdr::Snapshot first = trace.snapshot();
    trace.restart();
    trace.measure(0.3);
    EXPECT_EQ(trace.snapshot().averages, first.averages);
    EXPECT_FALSE(trace.snapshot().samples == first.samples);
    EXPECT_NEAR(noiseLevel(trace.snapshot()), noiseLevel(first), 1.5 * kSure_dB);
}

TEST(Noise, TheSameSeedGivesTheSameSamples)
{
    const auto samples = [](std::uint64_t seed, int wavelength) {
        Shot shot = shotOf(100, 15.0);
        shot.seed = seed;
        shot.wavelength_nm = wavelength;
        SimulatedTrace trace(shortFibre(42.0), request(shot)); // alike at every wavelength
        trace.measure(1.0);
        trace.measure(1.0);
        return trace.snapshot().samples;
    };
    EXPECT_TRUE(samples(1, 1550) == samples(1, 1550));
    EXPECT_FALSE(samples(1, 1550) == samples(2, 1550));
    EXPECT_FALSE(samples(1, 1550) == samples((std::uint64_t {1} << 40U) + 1, 1550));
    EXPECT_FALSE(samples(1, 1550) == samples(1, 1310));
}

TEST(Noise, IsAsLikeItsNeighbourAsTheReceiverIsSlow)
{
    // 100 ns: samples every 5 ns behind a low-pass of 8 ns, so exp(-5/8) from one to the next.
    SimulatedTrace trace(shortFibre(42.0), request(shotOf(100, 15.0)));
    trace.measure(15.0);
    const otdr::Snapshot snapshot = trace.snapshot();
    // Signs alone survive the clipping: P(same sign) = 1/2 + asin(rho) / pi.
    double same = 0.0;
    const std::size_t first = snapshot.samples.size() / 5;
    for (std::size_t i = first + 1; i < snapshot.samples.size(); ++i) {
        same += (snapshot.samples[i] == 65535) == (snapshot.samples[i - 1] == 65535) ? 1.0 : 0.0;
    }
    const double share = same / static_cast<double>(snapshot.samples.size() - first - 1);
    const double expected = 0.5 + std::asin(std::exp(-5.0 / 8.0)) / std::acos(-1.0);
    EXPECT_NEAR(share, expected, 0.02); // 16,000 pairs: 0.004 and a little more, for they overlap
}

TEST(Noise, AveragesNeverOverflow)
{
    SimulatedTrace trace(shortFibre(42.0), request(shotOf(100, 15.0)));
    for (int i = 0; i < 50; ++i) {
        trace.measure(36000.0);
    }
    EXPECT_EQ(trace.snapshot().averages, 4294967295U);
    EXPECT_GT(trace.launchLevel_dB() - noiseLevel(trace.snapshot()), 20.0);
}
