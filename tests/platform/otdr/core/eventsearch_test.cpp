#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/eventsearch.h"
#include "tests/platform/otdr/core/searchedlink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace testing_support;
using otdr::EventSearch;

otdr::SearchScale scaleFoundOn(const DrawnFibre& link, const otdr::DetectionSettings& settings = {},
                               double metresPerNs = 0.1)
{
    return EventSearch(link->samples(), measurement(metresPerNs), settings).trace().scale();
}

TEST(EventSearch, CountsInSamples)
{
    const DrawnFibre link = linkOf({}, 1.6);
    otdr::DetectionSettings settings;
    settings.longestWindow_m = 300.0;
    const otdr::SearchScale scale = scaleFoundOn(link, settings);
    EXPECT_DOUBLE_EQ(scale.pulse, kPulse);
    EXPECT_DOUBLE_EQ(scale.kilometre, 10'000.0);
    EXPECT_DOUBLE_EQ(scale.longestWindow, 3000.0);
    EXPECT_DOUBLE_EQ(scale.timeConstant, 1.6);
}

/// Multimode fibre falls by some dB/km at 850 nm; at the long wavelengths none falls by more than
/// 0.7.
TEST(EventSearch, KnowsByTheWavelengthHowSteepFibreMayBe)
{
    const DrawnFibre link = linkOf({}, 1.6);
    const auto steepestAt = [&](int wavelength_nm, double metresPerNs) {
        otdr::Measurement at = measurement(metresPerNs);
        at.wavelength_nm = wavelength_nm;
        return EventSearch(link->samples(), at, {}).trace().scale().steepest_dB;
    };
    EXPECT_DOUBLE_EQ(steepestAt(1310, 0.1), 0.7 / 10'000.0);
    EXPECT_DOUBLE_EQ(steepestAt(1625, 0.1), 0.7 / 10'000.0);
    EXPECT_TRUE(std::isinf(steepestAt(850, 0.1)));
    EXPECT_TRUE(std::isinf(steepestAt(0, 0.1))) << "unknown";
    EXPECT_TRUE(std::isinf(steepestAt(1550, 0.0))) << "no metres";
}

TEST(EventSearch, LinesAreNoLongerThanTheTraceAndNoShorterThanEightSamples)
{
    const DrawnFibre link = linkOf({}, 1.6);
    otdr::DetectionSettings settings;
    settings.longestWindow_m = 1e6;
    EXPECT_EQ(scaleFoundOn(link, settings).longestWindow, 12'000.0);
    settings.longestWindow_m = 0.1;
    EXPECT_EQ(scaleFoundOn(link, settings).longestWindow, 8.0);
    const otdr::SearchScale unknown = scaleFoundOn(link, settings, 0.0);
    EXPECT_EQ(unknown.longestWindow, 12'000.0);
    EXPECT_EQ(unknown.kilometre, 0.0);
}

TEST(EventSearch, LearnsASlowReceiverFromAReflection)
{
    const DrawnFibre link = linkOf({{5000.0, 0.2, 15.0}}, 10.0);
    EXPECT_NEAR(scaleFoundOn(link).timeConstant, 10.0, 1.5);
}

/// The port and the darkness in front of it are no fibre: a flank that is read above a line through
/// them is another one.
TEST(EventSearch, LearnsASlowReceiverFromAReflectionCloseBehindThePort)
{
    constexpr double kPort = 60.0;
    const otdr::PulseShape shape(kPulse, 8.0);
    for (const double connector : {kPort + 110.0, kPort + 150.0, kPort + 230.0}) {
        const DrawnFibre link(
            900, scaleOf(kPulse),
            [&](double i) {
                const double port = otdr::powerRatio(12.0) * shape.peak(i - kPort);
                const double light = otdr::powerRatio(15.0) * shape.peak(i - connector);
                const double fibre =
                    otdr::powerRatio(-0.0004 * i) * (shape.step(i - kPort) + light);
                return 35.0 + otdr::levelOfRatio_dB(fibre + port + otdr::powerRatio(-33.0));
            },
            0.003);
        EXPECT_NEAR(scaleFoundOn(link).timeConstant, 8.0, 1.5) << connector;
    }
}

/// What recovers from an overload looks slower than the receiver is.
TEST(EventSearch, LearnsTheReceiverFromTheFastestReflection)
{
    const otdr::PulseShape slow(kPulse, 25.0);
    const otdr::PulseShape fast(kPulse, 8.0);
    const DrawnFibre link(
        12000, scaleOf(kPulse),
        [&](double i) {
            return 40.0 - 0.00003 * i + eventLevel_dB(slow, i - 3000.0, 0.0, 0.0, 15.0)
                + eventLevel_dB(fast, i - 7000.0, 0.0, 0.0, 15.0);
        },
        0.003);
    EXPECT_NEAR(scaleFoundOn(link).timeConstant, 8.0, 1.5);
}

/// With a pulse of a nanosecond or two the receiver might be far slower than suits the pulse; a
/// steep flank shows that it is not.
TEST(EventSearch, LearnsAFastReceiverFromAReflection)
{
    const DrawnFibre link = linkOf({{5000.0, 0.2, 8.0}}, 1.6);
    const otdr::Trace trace(link->samples().samples(), otdr::kUsualDbPerCount,
                            otdr::TraceAxis {0.1, 0.0}); // so that 1 ns is ten samples
    const EventSearch search(trace, {0.1 * kPulse, 0.1, -80.0}, {});
    EXPECT_NEAR(search.trace().scale().timeConstant, 1.6, 0.8);
}

/// Receivers are tried that differ by a factor of 1.8, and then half a step to both sides of the
/// best: it is told to a quarter of a step, 1.8^(1/4), and a little for the noise.
TEST(EventSearch, LearnsASlowReceiverFromClearLosses)
{
    for (const double timeConstant : {5.0, 6.5, 8.0, 10.0, 16.0}) {
        const DrawnFibre link =
            linkOf({{3000.0, 0.3, 0.0}, {6000.0, 0.4, 0.0}, {9000.0, 0.3, 0.0}}, timeConstant);
        const double found = scaleFoundOn(link).timeConstant;
        EXPECT_GT(found, timeConstant / 1.25) << timeConstant;
        EXPECT_LT(found, timeConstant * 1.25) << timeConstant;
    }
}

/// The falling side of a low reflection may look like the ramp of a loss: no receiver is so slow.
TEST(EventSearch, NoReceiverTakesLongerThanTwoPulses)
{
    const otdr::PulseShape shape(kPulse, 1.6);
    const auto level_dB = [&](double i) {
        const double fibre =
            shape.step(i) - 0.2 * shape.step(i - 80.0) - 0.8 * shape.step(i - 200.0);
        const double light = fibre + 14.0 * shape.peak(i) + 5.0 * shape.peak(i - 80.0);
        return std::max(22.0 + 5.0 * std::log10(std::max(1e-9, light)), dark_dB(i));
    };
    const DrawnFibre link(6000, scaleOf(kPulse), level_dB, 0.002);
    const EventSearch search(link->samples(), measurement(), {});
    EXPECT_LE(search.trace().scale().timeConstant, 2.0 * kPulse);
    EXPECT_NEAR(search.extent().end, 200.0, 0.5 * kPulse);
}

/// The only reflection of a trace may be one that the receiver was slow to recover from.
TEST(EventSearch, LossesTellThatTheReceiverIsAsFastAsUsual)
{
    const otdr::PulseShape slow(kPulse, 12.0);
    const otdr::PulseShape usual(kPulse, 1.6);
    const DrawnFibre link(
        12000, scaleOf(kPulse),
        [&](double i) {
            return 40.0 - 0.00003 * i + eventLevel_dB(slow, i - 2000.0, 0.0, 0.0, 15.0)
                + eventLevel_dB(usual, i - 5000.0, 0.0, -0.3)
                + eventLevel_dB(usual, i - 7000.0, 0.0, -0.4)
                + eventLevel_dB(usual, i - 9000.0, 0.0, -0.3);
        },
        0.003);
    EXPECT_DOUBLE_EQ(scaleFoundOn(link).timeConstant, 1.6);
}

/// Ramps with sharp corners, as of a long pulse and a receiver that was made for short ones: taken
/// for rounded ones, their corners would be losses before them and light upon them.
TEST(EventSearch, LearnsAReceiverFasterThanSuitsThePulse)
{
    for (const double timeConstant : {0.2, 0.4, 0.8}) {
        const otdr::PulseShape shape(kPulse, timeConstant);
        const DrawnFibre link(
            12000, scaleOf(kPulse),
            [&](double i) {
                return 40.0 - 0.00003 * i + eventLevel_dB(shape, i - 3000.0, 0.0, -0.3)
                    + eventLevel_dB(shape, i - 6000.0, 0.0, -0.4)
                    + eventLevel_dB(shape, i - 9000.0, 0.0, -0.3);
            },
            0.0005);
        const otdr::Trace trace(link->samples().samples(), otdr::kUsualDbPerCount,
                                otdr::TraceAxis {10.0, 0.0});
        const EventSearch search(trace, {10.0 * kPulse, 0.1, -80.0}, {});
        EXPECT_LT(search.trace().scale().timeConstant, 2.0 * timeConstant);
        ASSERT_EQ(search.places().sites().size(), 3U) << timeConstant;
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_FALSE(search.places().sites()[k].reflects()) << timeConstant;
            EXPECT_NEAR(search.places().sites()[k].at, 3000.0 * static_cast<double>(k + 1), 1.0);
        }
    }
}

TEST(EventSearch, KeepsTheUsualReceiverWhereNothingSpeaksAgainstIt)
{
    const DrawnFibre link = linkOf({{3000.0, 0.3, 0.0}, {6000.0, 0.1, 15.0}}, 1.6);
    EXPECT_DOUBLE_EQ(scaleFoundOn(link).timeConstant, 1.6);
}

/// Noise that has passed a receiver of this time constant, too.
std::vector<double> smoothNoise_dB(std::size_t samples, double sigma_dB, std::uint64_t seed,
                                   double timeConstant = 1.6)
{
    const double alike = std::exp(-1.0 / timeConstant);
    std::mt19937_64 random(seed);
    std::normal_distribution<double> normal(0.0, sigma_dB);
    std::vector<double> noise(samples);
    double value = normal(random);
    for (double& one : noise) {
        one = value;
        value = alike * value + std::sqrt(1.0 - alike * alike) * normal(random);
    }
    return noise;
}

/// Some slow ramp always follows the noise around a loss a little better.
TEST(EventSearch, LearnsNoReceiverFromNoise)
{
    const otdr::PulseShape shape(kPulse, 1.6);
    for (std::uint64_t seed = 1; seed <= 400; ++seed) {
        const std::vector<double> noise = smoothNoise_dB(6000, 0.06, seed);
        const DrawnFibre link(6000, scaleOf(kPulse), [&](double i) {
            return 40.0 - 0.00003 * i + eventLevel_dB(shape, i - 3000.0, 0.0, -0.085)
                + noise[static_cast<std::size_t>(i)];
        });
        EXPECT_DOUBLE_EQ(scaleFoundOn(link).timeConstant, 1.6) << seed;
    }
}

/// The time constant found on fibre with slow changes of level behind a reflection that a receiver
/// as fast as usual shows, with noise that has passed one of this time constant.
double foundBehindAFastReflection(double slow, double noiseConstant)
{
    const otdr::PulseShape gentle(kPulse, slow);
    const otdr::PulseShape usual(kPulse, 1.6);
    const std::vector<double> noise = smoothNoise_dB(12000, 0.003, 1, noiseConstant);
    const DrawnFibre link(12000, scaleOf(kPulse), [&](double i) {
        return 40.0 - 0.00003 * i + eventLevel_dB(usual, i - 2000.0, 0.0, 0.0, 8.0)
            + eventLevel_dB(gentle, i - 4000.0, 0.0, -0.4)
            + eventLevel_dB(gentle, i - 6000.0, 0.0, -0.3)
            + eventLevel_dB(gentle, i - 8000.0, 0.0, -0.4) + noise[static_cast<std::size_t>(i)];
    });
    return scaleFoundOn(link).timeConstant;
}

/// What falls more slowly is a tail, of which a receiver so slow would make one event after
/// another.
TEST(EventSearch, NoLossMakesTheReceiverSlowerThanAReflectionShowsIt)
{
    for (const double slow : {8.0, 16.0, 30.0}) {
        EXPECT_LT(foundBehindAFastReflection(slow, 1.6), 3.2) << slow;
    }
}

/// An instrument may smooth its trace, but for what it takes for a reflection: the noise tells.
TEST(EventSearch, LossesOfASmoothedTraceAreSlowerThanItsReflections)
{
    for (const double slow : {8.0, 10.0}) {
        EXPECT_NEAR(foundBehindAFastReflection(slow, slow), slow, 0.25 * slow);
    }
}

/// With the receiver that its losses show, the fibre goes on behind a splitter at 2000, where the
/// light scatters ten times more.
TEST(EventSearch, NoiseIsThatOfAllTheFibre)
{
    const otdr::PulseShape shape(kPulse, 8.0);
    const double left = std::pow(10.0, -5.5 / 5.0);
    std::mt19937_64 random(4);
    std::normal_distribution<double> noise(0.0, std::pow(10.0, 4.0 / 5.0));
    const DrawnFibre link(9000, scaleOf(kPulse), [&](double i) {
        const double kept = 1.0 - 0.2 * shape.step(i - 400.0) - 0.15 * shape.step(i - 1200.0);
        const double lit =
            shape.step(i) - (1.0 - left) * shape.step(i - 2000.0) - left * shape.step(i - 6000.0);
        const double power = std::pow(10.0, (13.0 - 0.00002 * i) / 5.0) * kept * lit
            + 9.0 * left * kept * std::pow(10.0, 13.0 / 5.0) * shape.peak(i - 6000.0)
            + noise(random);
        return power > 1.0 ? 5.0 * std::log10(power) : 0.0;
    });
    const EventSearch search(link->samples(), measurement(), {});
    EXPECT_NEAR(search.extent().end, 6000.0, kPulse);
    EXPECT_GT(search.trace().noise().sigma_dB(4000.0), 0.3);
    EXPECT_LT(search.trace().noise().sigma_dB(1000.0), 0.1);
}

TEST(EventSearch, FindsEachPlaceOnce)
{
    const DrawnFibre link = linkOf(
        {{2000.0, 0.1, 0.0}, {5000.0, 0.2, 8.0}, {5200.0, -0.1, 0.0}, {8000.0, 0.0, 1.5}}, 1.6);
    const EventSearch search(link->samples(), measurement(), {});
    ASSERT_EQ(search.places().sites().size(), 4U);
    const double truth[] = {2000.0, 5000.0, 5200.0, 8000.0};
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_NEAR(search.places().sites()[k].at, truth[k], 1.0) << k;
        EXPECT_EQ(search.places().sites()[k].peak.has_value(), k % 2 == 1) << k;
    }
}

/// -70 dB stand 0.9 dB above the fibre where a pulse of 20 ns scatters -80 dB a nanosecond.
TEST(EventSearch, ListsNoReflectionLowerThanTheLeast)
{
    const DrawnFibre link = linkOf({{5000.0, 0.0, 1.2}}, 1.6);
    otdr::DetectionSettings settings;
    EXPECT_EQ(EventSearch(link->samples(), measurement(), settings).places().sites().size(), 1U);
    settings.reflectance_dB = -65.0; // 2.1 dB above the fibre
    const EventSearch search(link->samples(), measurement(), settings);
    for (const otdr::Site& site : search.places().sites()) {
        EXPECT_TRUE(site.isBorder);
    }
}

/// The light of one that is too weak would else be told as a gain with a loss behind it.
TEST(EventSearch, WeakReflectionIsNeitherAGainNorALoss)
{
    for (const double height_dB : {0.1, 0.17, 0.3, 0.6}) {
        const DrawnFibre link = linkOf({{5000.0, 0.0, height_dB}}, 1.6);
        const EventSearch search(link->samples(), measurement(), {});
        for (const otdr::Site& site : search.places().sites()) {
            EXPECT_TRUE(site.isBorder) << height_dB << " at " << site.at;
        }
    }
}

TEST(EventSearch, ReflectionCloseBehindTheLaunchIsNoStep)
{
    // Between its foot and the dead zone of the port there is no room for a window of the scans.
    for (int part = 0; part < 8; ++part) {
        const double at = 48.0 + part;
        const DrawnFibre link =
            linkOf({{1.0, 0.0, 6.0}, {at, 0.26, 1.45}, {3000.0, 0.1, 0.0}}, 1.6);
        const EventSearch search(link->samples(), measurement(), {});
        const auto& sites = search.places().sites();
        ASSERT_EQ(sites.size(), 2U) << at;
        EXPECT_TRUE(sites[0].peak) << at;
        EXPECT_NEAR(sites[0].at, at, 0.5);
        EXPECT_NEAR(sites[0].loss_dB, 0.26, 0.02) << at;
    }
}

} // namespace
