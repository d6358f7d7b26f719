#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/eventsearch.h"
#include "tests/platform/otdr/core/drawnfibre.h"

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

struct DrawnPlace
{
    double at;
    double loss_dB;
    double height_dB;
};

/// 12,000 samples of a nanosecond and a decimetre each, as a receiver of this time constant shows
/// them.
DrawnFibre linkOf(const std::vector<DrawnPlace>& places, double timeConstant)
{
    const otdr::PulseShape shape(kPulse, timeConstant);
    return {12000, scaleOf(kPulse),
            [=](double i) {
                double level = 40.0 - 0.00003 * i;
                for (const DrawnPlace& place : places) {
                    level +=
                        eventLevel_dB(shape, i - place.at, 0.0, -place.loss_dB, place.height_dB);
                }
                return level;
            },
            0.003};
}

otdr::Measurement measurement(double metresPerNs = 0.1)
{
    return {kPulse, metresPerNs, -80.0};
}

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

/// Losses and gains seven pulses from each other bend the trace wherever its noise is measured:
/// what is found of them tells it, and that finds the others.
TEST(EventSearch, FindsWhatStandsCloseToEachOther)
{
    std::vector<DrawnPlace> places;
    for (int k = 1; k <= 80; ++k) {
        places.push_back({140.0 * k, (k % 3 == 0 ? -1.0 : 0.5) * (k % 7 == 0 ? 0.4 : 0.1), 0.0});
    }
    const DrawnFibre link = linkOf(places, 1.6);
    const EventSearch search(link->samples(), measurement(), {});
    const auto& found = search.places().sites();
    ASSERT_EQ(found.size(), places.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
        EXPECT_NEAR(found[k].at, places[k].at, 3.0) << k;
        EXPECT_NEAR(found[k].loss_dB, places[k].loss_dB, 0.005) << k;
    }
}

/// Of 0.3 dB, up to four pulses behind it: the fibre before the reflection begins behind the loss.
TEST(EventSearch, FindsALowReflectionCloseBehindALoss)
{
    for (const double apart : {52.0, 60.0, 68.0, 76.0}) {
        const DrawnFibre link = linkOf({{5000.0, 0.2, 0.0}, {5000.0 + apart, 0.0, 0.3}}, 1.6);
        const EventSearch search(link->samples(), measurement(), {});
        const std::vector<otdr::Site>& sites = search.places().sites();
        ASSERT_EQ(sites.size(), 2U) << apart;
        EXPECT_NEAR(sites[0].foot(), 5000.0, 1.0) << apart;
        EXPECT_NEAR(sites[0].loss_dB, 0.2, 0.01) << apart;
        EXPECT_NEAR(sites[1].foot(), 5000.0 + apart, 1.0) << apart;
        EXPECT_NEAR(sites[1].loss_dB, 0.0, 0.01) << apart;
    }
}

/// The splice of a pigtail behind its connector: what is left of the reflection's light would fade,
/// and the fibre between both stays where it is.
TEST(EventSearch, FindsALossCloseBehindAReflection)
{
    struct Connector
    {
        double height_dB;
        double pulsesApart;
    };

    for (const Connector& one : {Connector {1.5, 3.3}, {3.0, 2.5}, {3.0, 4.0}, {10.0, 3.0}}) {
        for (const double loss_dB : {0.05, 0.1, 0.2, 1.0}) {
            const double splice = 5000.0 + one.pulsesApart * kPulse;
            const DrawnFibre link =
                linkOf({{5000.0, 0.1, one.height_dB}, {splice, loss_dB, 0.0}}, 1.6);
            const EventSearch search(link->samples(), measurement(), {});
            const std::vector<otdr::Site>& sites = search.places().sites();
            ASSERT_EQ(sites.size(), 2U) << one.height_dB << ", " << loss_dB;
            EXPECT_NEAR(sites[0].foot(), 5000.0, 1.0) << one.height_dB << ", " << loss_dB;
            EXPECT_NEAR(sites[0].loss_dB, 0.1, 0.005) << one.height_dB << ", " << loss_dB;
            EXPECT_NEAR(sites[1].foot(), splice, 1.0) << one.height_dB << ", " << loss_dB;
            EXPECT_NEAR(sites[1].loss_dB, loss_dB, 0.005) << one.height_dB << ", " << loss_dB;
        }
    }
}

/// Both ends of a patch cord of three pulses.
TEST(EventSearch, FindsAReflectionCloseBehindAnother)
{
    for (const double apart : {3.0, 3.2, 3.5, 4.0, 5.0}) {
        const double second = 5000.0 + apart * kPulse;
        const DrawnFibre link = linkOf({{5000.0, 0.4, 3.5}, {second, 0.06, 2.8}}, 1.6);
        const EventSearch search(link->samples(), measurement(), {});
        std::vector<double> feet;
        for (const otdr::Site& site : search.places().sites()) {
            ASSERT_TRUE(site.reflects()) << apart;
            feet.insert(feet.end(), site.peak->feet.begin(), site.peak->feet.end());
        }
        ASSERT_EQ(feet.size(), 2U) << apart;
        EXPECT_NEAR(feet[0], 5000.0, 1.0) << apart;
        EXPECT_NEAR(feet[1], second, 1.0) << apart;
    }
}

/// With losses in front the first one is measured again, and then no longer holds the second: what
/// was scanned up to there is not what lies between them now.
TEST(EventSearch, FindsWhatNoLongerBelongsToAReflection)
{
    const DrawnFibre link = linkOf({{4834.0, 0.43, 0.0},
                                    {4926.0, 0.23, 0.0},
                                    {5000.0, 0.1, 1.5},
                                    {5063.0, 0.06, 2.8},
                                    {5283.0, 0.09, 0.0}},
                                   1.6);
    const EventSearch search(link->samples(), measurement(), {});
    const std::vector<otdr::Site>& sites = search.places().sites();
    ASSERT_EQ(sites.size(), 5U);
    EXPECT_NEAR(sites[2].foot(), 5000.0, 1.0);
    EXPECT_NEAR(sites[3].foot(), 5063.0, 1.0);
    EXPECT_TRUE(sites[2].reflects() && sites[3].reflects());
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

constexpr double kFewSamples = 8.0; ///< in a pulse

/// Fibre of pulses of few samples, as a formula of the index tells it.
EventSearch fewSampled(const DrawnFibre& link)
{
    return {link->samples(), {kFewSamples, 0.1, -80.0}, {}};
}

/// Splices three to ten pulses apart: hardly three pulses of the record are fibre alone, and what
/// seem to be waves of it hide them.
TEST(EventSearch, FindsEventsThatHideEachOther)
{
    for (const std::uint64_t seed : {1, 2, 3, 4, 5, 6}) {
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> apart(3.0 * kFewSamples, 10.0 * kFewSamples);
        std::uniform_real_distribution<double> loss_dB(0.05, 0.4);
        std::vector<DrawnPlace> places;
        for (double at = 100.0; at < 1500.0; at += apart(random)) {
            places.push_back({at, loss_dB(random), 0.0});
        }
        const otdr::PulseShape shape(kFewSamples, 0.08 * kFewSamples);
        const DrawnFibre link(
            1600, scaleOf(kFewSamples),
            [&](double i) {
                double level_dB = 40.0 - 0.001 * i;
                for (const DrawnPlace& place : places) {
                    level_dB += eventLevel_dB(shape, i - place.at, 0.0, -place.loss_dB);
                }
                return level_dB;
            },
            0.002);
        const EventSearch search = fewSampled(link);
        const std::vector<otdr::Site>& sites = search.places().sites();
        const auto found = std::count_if(places.begin(), places.end(), [&](const DrawnPlace& one) {
            return std::any_of(sites.begin(), sites.end(), [&](const otdr::Site& site) {
                return std::abs(site.foot() - one.at) < kFewSamples;
            });
        });
        EXPECT_GE(10 * found, 8 * static_cast<std::ptrdiff_t>(places.size())) << seed;
        EXPECT_LE(sites.size(), places.size()) << seed;
    }
}

/// Coherent light makes fibre wave; it rises as much as it falls.
TEST(EventSearch, TakesNoWavesForEventsThatHideEachOther)
{
    std::mt19937_64 random(4);
    std::normal_distribution<double> noise(0.0, 0.001);
    const DrawnFibre link(1600, scaleOf(kFewSamples), [&](double i) {
        const double wave_dB = 0.02 * std::sin(i / 9.0) + 0.02 * std::sin(i / 15.0);
        return 40.0 - 0.001 * i + wave_dB + noise(random);
    });
    const EventSearch search = fewSampled(link);
    EXPECT_TRUE(search.places().sites().empty());
    EXPECT_GT(search.trace().noise().wander_dB(), 0.01) << "of the 0.02 dB of the waves";
}

/// A converter of few steps shows fibre as stairs, of twelve pulses each here: what it strays by.
TEST(EventSearch, TakesNoStepsOfTheMeasurementForEventsThatHideEachOther)
{
    constexpr double kStep_dB = 0.1;
    for (const double sigma_dB : {0.0, 0.003, 0.01}) {
        std::mt19937_64 random(4);
        std::normal_distribution<double> noise;
        const DrawnFibre link(1600, scaleOf(kFewSamples), [&](double i) {
            const double level_dB = 40.0 - 0.001 * i + sigma_dB * noise(random);
            return kStep_dB * std::round(level_dB / kStep_dB);
        });
        EXPECT_TRUE(fewSampled(link).places().sites().empty()) << sigma_dB;
    }
}

/// Steps that could be losses and gains by turns, 0.04 dB each.
TEST(EventSearch, TakesNoWavesForEventsHoweverSteep)
{
    for (const double length : {80.0, 90.0, 120.0}) {
        std::mt19937_64 random(4);
        std::normal_distribution<double> noise(0.0, 0.001);
        const DrawnFibre link(1600, scaleOf(kFewSamples), [&](double i) {
            const double wave_dB = std::fmod(i, length) < 0.5 * length ? 0.02 : -0.02;
            return 40.0 - 0.001 * i + wave_dB + noise(random);
        });
        EXPECT_TRUE(fewSampled(link).places().sites().empty()) << length;
    }
}

} // namespace
