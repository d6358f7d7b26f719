#include "platform/otdr/core/eventsites.h"
#include "tests/platform/otdr/core/drawnsites.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

using namespace testing_support;
using otdr::EventSites;

constexpr double kBrightAt = 2000.0;
constexpr double kTailedNoise_dB = 0.003;
constexpr double kLeastListed_dB = 0.015;
constexpr double kTailErrors = 5.0;

/// Fibre with a bright reflection at 2000 that leaves a tail of a fifth of the fibre's light, with
/// a time constant of seven pulses.
DrawnFibre tailedFibre(const std::vector<DrawnEvent>& events, double longestWindow = 1e6)
{
    const DrawnFibre plain = fibreWith(events, kTailedNoise_dB);
    otdr::SearchScale scale = scaleOf(kSitesPulse, 1000.0);
    scale.longestWindow = longestWindow;
    return {6000, scale, [&](double i) {
                const double level = plain->samples().level_dB(static_cast<std::size_t>(i));
                const double tail = i < kBrightAt ? 0.0
                                                  : 0.2 * std::pow(10.0, 39.0 / 5.0)
                        * std::exp(-(i - kBrightAt) / (7.0 * kSitesPulse));
                return 5.0 * std::log10(std::pow(10.0, level / 5.0) + tail);
            }};
}

/// The place at the reflection, and others.
EventSites tailedSites(const DrawnFibre& fibre, const std::vector<double>& others,
                       double height_dB = 20.0)
{
    EventSites sites(*fibre, 60.0, 5900.0);
    std::vector<otdr::Site> all {peakAt(fibre, kBrightAt, height_dB)};
    for (const double at : others) {
        all.push_back(siteAt(fibre, at));
    }
    sites.add(all);
    sites.measure();
    return sites;
}

const DrawnEvent kBrightEvent {kBrightAt, 0.2, 20.0};

/// A tail bends lines, and where two of them meet something seems to be lost.
TEST(EventSites, WhatATailAloneExplainsIsDropped)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent});
    EventSites sites = tailedSites(fibre, {2250.0});
    ASSERT_GT(std::abs(sites.sites()[1].loss_dB), kLeastListed_dB);
    EXPECT_TRUE(sites.dropTails());
    EXPECT_EQ(placesOf(sites), std::vector<double> {kBrightAt});
    EXPECT_GT(sites.sites()[0].right->line.samples, 3000u) << "its line goes on now";
    EXPECT_FALSE(sites.dropTails());
}

/// Wherever on the tail that is; nor by the waves of the fibre.
TEST(EventSites, NothingStandsOnATailByChance)
{
    const DrawnFibre even = tailedFibre({kBrightEvent});
    const DrawnFibre wavy(6000, scaleOf(kSitesPulse, 1000.0), [&](double i) {
        return even->samples().level_dB(static_cast<std::size_t>(i)) + 0.005 * std::cos(i / 100.0);
    });
    for (const DrawnFibre* fibre : {&even, &wavy}) {
        for (double at = 2150.0; at < 2700.0; at += 10.0) {
            EventSites sites = tailedSites(*fibre, {at});
            sites.dropTails();
            const bool isDropped = sites.sites().size() == 1;
            EXPECT_FALSE(!isDropped && sites.sites()[1].standsOnTail) << at;
        }
    }
}

/// What is lost in front of it is known by then.
TEST(EventSites, WhatATailAloneExplainsIsDroppedBehindALossToo)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {2250.0, 0.1}});
    EventSites sites = tailedSites(fibre, {2250.0, 2450.0});
    EXPECT_TRUE(sites.dropTails());
    EXPECT_EQ(placesOf(sites), (std::vector<double> {kBrightAt, 2250.0}));
}

/// Light that stands there is no tail.
TEST(EventSites, WhatReflectsOnATailIsNot)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {2250.0, 0.0, 1.0}});
    EventSites reflecting = tailedSites(fibre, {});
    reflecting.add({peakAt(fibre, 2250.0, 1.0)});
    reflecting.measure();
    EXPECT_FALSE(reflecting.dropTails());
    EventSites glowing = tailedSites(fibre, {});
    otdr::Site site = siteAt(fibre, 2250.0);
    site.glows = true;
    glowing.add({site});
    glowing.measure();
    EXPECT_FALSE(glowing.dropTails());
}

TEST(EventSites, WhatIsLostOnATailIsNot)
{
    for (const double loss_dB : {0.1, 0.02, -0.02}) {
        const DrawnFibre fibre = tailedFibre({kBrightEvent, {2300.0, loss_dB}});
        EventSites sites = tailedSites(fibre, {2300.0});
        EXPECT_FALSE(sites.dropTails());
        EXPECT_EQ(placesOf(sites), (std::vector<double> {kBrightAt, 2300.0}));
        EXPECT_TRUE(sites.sites()[1].standsOnTail) << loss_dB;
        sites.dropUnlikely(kLeastListed_dB, kTailErrors);
        EXPECT_EQ(placesOf(sites), (std::vector<double> {kBrightAt, 2300.0})) << loss_dB;
    }
}

/// Away from tails lines tell as much.
TEST(EventSites, WithoutATailNothingStandsOnOne)
{
    const DrawnFibre fibre = fibreWith({kBrightEvent, {2300.0, 0.1}}, kTailedNoise_dB);
    EventSites sites = tailedSites(fibre, {2300.0});
    EXPECT_FALSE(sites.dropTails());
    EXPECT_FALSE(sites.sites()[1].standsOnTail);
    EventSites none = tailedSites(fibre, {3300.0});
    EXPECT_FALSE(none.dropTails()) << "what lines explain is not for a tail to say";
}

TEST(EventSites, LossesOnATailAreThoseOfTheFibre)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {2500.0, 0.1}, {2900.0, 0.3}});
    EventSites sites = tailedSites(fibre, {2500.0, 2900.0});
    EXPECT_GT(std::abs(sites.sites()[0].loss_dB - 0.2), 0.05);
    EXPECT_GT(std::abs(sites.sites()[1].loss_dB - 0.1), 0.008);
    sites.takeTailsAway(kLeastListed_dB, kTailErrors);
    const double losses_dB[] = {0.2, 0.1, 0.3};
    for (std::size_t k = 0; k < 3; ++k) {
        const otdr::Site& site = sites.sites()[k];
        EXPECT_NEAR(site.loss_dB, losses_dB[k], 4.0 * site.error_dB) << k;
        EXPECT_LT(site.error_dB, 0.015) << k;
    }
}

/// Each bright reflection has its own.
TEST(EventSites, ATailReachesNoFurtherThanToBrighterLight)
{
    constexpr double kSecondAt = 2300.0;
    const DrawnFibre first = tailedFibre({kBrightEvent, {kSecondAt, 0.3, 20.0}});
    const DrawnFibre fibre(6000, scaleOf(kSitesPulse, 1000.0), [&](double i) {
        const double level = first->samples().level_dB(static_cast<std::size_t>(i));
        const double tail = i < kSecondAt
            ? 0.0
            : 0.2 * std::pow(10.0, 38.5 / 5.0) * std::exp(-(i - kSecondAt) / (7.0 * kSitesPulse));
        return 5.0 * std::log10(std::pow(10.0, level / 5.0) + tail);
    });
    EventSites sites = tailedSites(fibre, {});
    sites.add({peakAt(fibre, kSecondAt, 20.0)});
    sites.measure();
    EXPECT_GT(std::abs(sites.sites()[1].loss_dB - 0.3), 0.02);
    sites.takeTailsAway(kLeastListed_dB, kTailErrors);
    EXPECT_NEAR(sites.sites()[1].loss_dB, 0.3, 0.01);
}

/// The fibre between two places has one line, however it is seen.
TEST(EventSites, LinesOnATailBelongToBothTheirEvents)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {2500.0, 0.1}});
    EventSites sites = tailedSites(fibre, {2500.0});
    sites.takeTailsAway(kLeastListed_dB, kTailErrors);
    ASSERT_TRUE(sites.sites()[0].right && sites.sites()[1].left);
    EXPECT_EQ(sites.sites()[0].right->at(2250.0), sites.sites()[1].left->at(2250.0));
}

/// What is lost there, by the fibre's own lines, says what is listed.
TEST(EventSites, WhatATailHidesIsListedOnceItIsTakenAway)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {2300.0, -0.1}});
    EventSites sites = tailedSites(fibre, {2300.0});
    sites.dropTails();
    sites.takeTailsAway(0.05, kTailErrors);
    ASSERT_EQ(sites.sites().size(), 2u);
    EXPECT_FALSE(sites.sites()[1].isBorder);
    EXPECT_NEAR(sites.sites()[1].loss_dB, -0.1, 4.0 * sites.sites()[1].error_dB);
    sites.takeTailsAway(0.15, kTailErrors);
    EXPECT_TRUE(sites.sites()[1].isBorder);
}

/// Where all the fibre there is lies in a tail, it seems to fall as none does; that it falls like
/// fibre is known all the same, at the long wavelengths.
TEST(EventSites, FibreThatIsAllTailFallsLikeFibre)
{
    constexpr double kKilometre = 4000.0;
    const auto lossWith = [&](double steepest_dB) {
        otdr::SearchScale scale = scaleOf(kSitesPulse, kKilometre);
        scale.steepest_dB = steepest_dB;
        const DrawnFibre fibre(
            3000, scale,
            [=](double i) {
                const double level_dB = 40.0 - 0.3 / kKilometre * i - (i < 600.0 ? 0.0 : 0.2);
                const double tail = 0.5 * std::pow(10.0, 40.0 / 5.0) * std::exp(-i / 300.0);
                return 5.0 * std::log10(std::pow(10.0, level_dB / 5.0) + tail);
            },
            8.0 * kTailedNoise_dB);
        EventSites sites(*fibre, 60.0, 1200.0);
        sites.add({siteAt(fibre, 600.0)});
        sites.measure();
        sites.takeTailsAway(kLeastListed_dB, kTailErrors);
        return sites.sites().front();
    };
    const otdr::Site known = lossWith(0.7 / kKilometre);
    EXPECT_NEAR(known.left->line.slope_dB, -0.3 / kKilometre, 4.0 * known.left->slopeError_dB);
    const otdr::Site unknown = lossWith(std::numeric_limits<double>::infinity());
    EXPECT_LT(known.left->slopeError_dB, 0.5 * unknown.left->slopeError_dB);
}

/// Light of less than ten times the fibre's leaves nothing that counts.
TEST(EventSites, OnlyBrightLightLeavesATail)
{
    const DrawnFibre fibre = tailedFibre({{kBrightAt, 0.2, 3.0}});
    EventSites sites = tailedSites(fibre, {}, 3.0);
    const double before_dB = sites.sites()[0].loss_dB;
    sites.takeTailsAway(kLeastListed_dB, kTailErrors);
    EXPECT_EQ(sites.sites()[0].loss_dB, before_dB);
    const DrawnFibre brighter = tailedFibre({{kBrightAt, 0.2, 6.0}});
    EventSites told = tailedSites(brighter, {}, 6.0);
    EXPECT_GT(std::abs(told.sites()[0].loss_dB - 0.2), 0.005);
    told.takeTailsAway(kLeastListed_dB, kTailErrors);
    EXPECT_NEAR(told.sites()[0].loss_dB, 0.2, 4.0 * told.sites()[0].error_dB);
}

/// What lies further on than a line may reach has its own.
TEST(EventSites, LinesOnATailAreNoLongerThanOthers)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {3500.0, 0.1}}, 700.0);
    EventSites sites = tailedSites(fibre, {3500.0});
    const double before_dB = sites.sites()[1].left->at(3500.0);
    sites.takeTailsAway(kLeastListed_dB, kTailErrors);
    EXPECT_LE(sites.sites()[0].right->line.samples, 700u);
    EXPECT_LT(sites.sites()[0].right->line.last(), 3000.0);
    EXPECT_EQ(sites.sites()[1].left->at(3500.0), before_dB);
}

/// Two places with next to nothing between them take no tail from the fibre in front.
TEST(EventSites, ATailIsToldByTheFibreUpToCrowdedPlaces)
{
    const DrawnFibre fibre = tailedFibre({kBrightEvent, {2600.0, 0.3}});
    const double next = 2600.0 + fibre->gap() + 3.0;
    EventSites sites = tailedSites(fibre, {2600.0, next});
    EXPECT_FALSE(sites.sites()[1].right);
    EXPECT_GT(std::abs(sites.sites()[0].loss_dB - 0.2), 0.02);
    sites.dropTails();
    sites.takeTailsAway(kLeastListed_dB, kTailErrors);
    EXPECT_NEAR(sites.sites()[0].loss_dB, 0.2, 4.0 * sites.sites()[0].error_dB);
    EXPECT_FALSE(sites.sites()[1].right) << "where nothing was fitted nothing is";
}

} // namespace
