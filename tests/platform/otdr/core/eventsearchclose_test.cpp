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

/// Losses and gains seven pulses from each other bend the trace wherever its noise is measured:
/// what is found of them tells it, and that finds the others.
TEST(EventSearch, FindsWhatStandsCloseToEachOther)
{
    std::vector<DrawnEvent> places;
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
        std::vector<DrawnEvent> places;
        for (double at = 100.0; at < 1500.0; at += apart(random)) {
            places.push_back({at, loss_dB(random), 0.0});
        }
        const otdr::PulseShape shape(kFewSamples, 0.08 * kFewSamples);
        const DrawnFibre link(
            1600, scaleOf(kFewSamples),
            [&](double i) { return 40.0 - 0.001 * i + eventsLevel_dB(shape, i, places); }, 0.002);
        const EventSearch search = fewSampled(link);
        const std::vector<otdr::Site>& sites = search.places().sites();
        const auto found = std::count_if(places.begin(), places.end(), [&](const DrawnEvent& one) {
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
