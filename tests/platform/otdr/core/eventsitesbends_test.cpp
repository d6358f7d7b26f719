#include "tests/platform/otdr/core/drawnsites.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace testing_support;
using otdr::EventSites;
using otdr::Site;

constexpr double kLeastLoss_dB = 0.015;
constexpr double kSignificance = 5.0;

/// Fibre of 6000 samples that falls by 0.0005 dB from one to the next, and by so much more from the
/// bend on.
DrawnFibre withBend(double bendAt, double steeper_dB, double sigma_dB,
                    const std::vector<DrawnEvent>& events = {})
{
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    return {6000, scaleOf(kSitesPulse, 2000.0),
            [=](double i) {
                double level = 40.0 - 0.0005 * i - steeper_dB * std::max(0.0, i - bendAt);
                for (const DrawnEvent& event : events) {
                    level += eventLevel_dB(shape, i - event.at, 0.0, -event.loss_dB);
                }
                return level;
            },
            sigma_dB};
}

EventSites divided(const DrawnFibre& fibre, const std::vector<Site>& sought)
{
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add(sought);
    sites.measure();
    sites.divideAtBends(kLeastLoss_dB, kSignificance);
    return sites;
}

TEST(EventSitesBends, FibresOfDifferentAttenuationAreDividedAndNothingIsLostThere)
{
    for (const double steeper_dB : {0.0003, -0.0002}) {
        const DrawnFibre fibre = withBend(3000.0, steeper_dB, 0.005);
        const EventSites sites = divided(fibre, {});
        ASSERT_EQ(sites.sites().size(), 1U) << steeper_dB;
        const Site& bend = sites.sites().front();
        EXPECT_NEAR(bend.at, 3000.0, 50.0);
        EXPECT_TRUE(bend.isBorder);
        EXPECT_NEAR(bend.left->line.slope_dB, -0.0005, 2e-6);
        EXPECT_NEAR(bend.right->line.slope_dB, -0.0005 - steeper_dB, 2e-6);
        EXPECT_NEAR(bend.loss_dB, 0.0, 0.01);
    }
}

/// Four places: the plainest parts the link, and then its parts are looked through.
TEST(EventSitesBends, EachOfManyFibresIsDividedFromTheNext)
{
    const DrawnFibre fibre(
        10'000, scaleOf(kSitesPulse, 2000.0),
        [](double i) {
            double level = 40.0;
            for (double begin = 0.0; begin < i; begin += 2000.0) {
                const bool isSteep = std::fmod(begin, 4000.0) > 0.0;
                level -= (isSteep ? 0.0008 : 0.0005) * std::min(2000.0, i - begin);
            }
            return level;
        },
        0.001);
    EventSites sites(*fibre, 50.0, 9950.0);
    sites.divideAtBends(kLeastLoss_dB, kSignificance);
    ASSERT_EQ(sites.sites().size(), 4U);
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_NEAR(sites.sites()[k].at, 2000.0 * static_cast<double>(k + 1), 50.0);
        EXPECT_TRUE(sites.sites()[k].isBorder) << k;
    }
}

TEST(EventSitesBends, EvenFibreIsNotDivided)
{
    for (const double sigma_dB : {0.0, 0.005, 0.05}) {
        EXPECT_TRUE(divided(withBend(3000.0, 0.0, sigma_dB), {}).sites().empty()) << sigma_dB;
    }
}

/// A quarter of the change times the 2900 samples on either side is what a line would stray by.
TEST(EventSitesBends, LinesMayStrayByLessThanFourThousandths)
{
    EXPECT_TRUE(divided(withBend(3000.0, 4e-6, 0.0005), {}).sites().empty());
    EXPECT_EQ(divided(withBend(3000.0, 8e-6, 0.0005), {}).sites().size(), 1U);
}

TEST(EventSitesBends, BendsThatNoiseMakesArePassedOver)
{
    constexpr double kSlopeError = 3.14e-5; // sqrt(2 * 12 / 2900^3), by the scatter
    EXPECT_TRUE(divided(withBend(3000.0, 5.0 * kSlopeError * 0.05, 0.05), {}).sites().empty());
    EXPECT_EQ(divided(withBend(3000.0, 60.0 * kSlopeError * 0.05, 0.05), {}).sites().size(), 1U);
}

/// Eight dead zones of each fibre: what bends shorter ones may be a tail.
TEST(EventSitesBends, FibresOfAFewDeadZonesTellNoBend)
{
    const DrawnFibre fibre = withBend(3000.0, 0.0003, 0.001);
    for (const double gaps : {7.0, 10.0}) {
        EventSites sites(*fibre, 3000.0 - gaps * fibre->gap(), 3000.0 + gaps * fibre->gap());
        sites.divideAtBends(kLeastLoss_dB, kSignificance);
        EXPECT_EQ(sites.sites().size(), gaps > 8.0 ? 1U : 0U);
    }
}

/// So a change of level between such fibres is not taken for a bend beside it.
TEST(EventSitesBends, LossesBetweenFibresOfAFewDeadZonesStay)
{
    const DrawnFibre fibre = withBend(3000.0, 0.003, 0.0005);
    const double beside = 3000.0 - fibre->gap();
    EventSites sites(*fibre, 100.0, 3000.0 + 7.0 * fibre->gap());
    sites.add({siteAt(fibre, beside)});
    sites.measure();
    sites.divideAtBends(kLeastLoss_dB, kSignificance);
    EXPECT_EQ(placesOf(sites), std::vector<double> {beside});
}

/// A record of so few pulses does not tell what its fibre strays by.
TEST(EventSitesBends, LossesOfAShortRecordStay)
{
    const DrawnFibre fibre(
        1000, scaleOf(kSitesPulse, 2000.0),
        [](double i) { return 40.0 - 0.0005 * i - 0.0012 * std::max(0.0, i - 500.0); }, 0.0005);
    ASSERT_FALSE(fibre->noise().knowsWander());
    EventSites sites(*fibre, 10.0, 990.0);
    sites.add({siteAt(fibre, 450.0)});
    sites.measure();
    sites.divideAtBends(kLeastLoss_dB, kSignificance);
    EXPECT_EQ(placesOf(sites), std::vector<double> {450.0});
}

TEST(EventSitesBends, LossBesideABendIsToldByTheFibreUpToIt)
{
    const DrawnFibre fibre = withBend(3000.0, 0.0002, 0.005, {{1500.0, 0.1}});
    EventSites whole(*fibre, 100.0, 5900.0);
    whole.add({siteAt(fibre, 1500.0)});
    whole.measure();
    EXPECT_GT(std::abs(whole.sites().front().loss_dB - 0.1), 0.02);

    const EventSites sites = divided(fibre, {siteAt(fibre, 1500.0)});
    ASSERT_EQ(sites.sites().size(), 2U);
    EXPECT_NEAR(sites.sites().front().at, 1500.0, 1e-9);
    EXPECT_NEAR(sites.sites().front().loss_dB, 0.1, 4.0 * sites.sites().front().error_dB);
    EXPECT_LT(sites.sites().front().error_dB, 0.001);
}

/// Seen from beside it, a bend seems to lose its slope times the distance.
TEST(EventSitesBends, WhatABendAloneExplainsIsNoLoss)
{
    const DrawnFibre fibre = withBend(3000.0, 0.0003, 0.005);
    EventSites beside(*fibre, 100.0, 5900.0);
    beside.add({siteAt(fibre, 2850.0)});
    beside.measure();
    EXPECT_GT(beside.sites().front().statistic(), 2.0 * kSignificance);
    EXPECT_GT(std::abs(beside.sites().front().loss_dB), kLeastLoss_dB);

    const EventSites sites = divided(fibre, {siteAt(fibre, 2850.0)});
    ASSERT_EQ(sites.sites().size(), 1U);
    EXPECT_TRUE(sites.sites().front().isBorder);
    EXPECT_NEAR(sites.sites().front().at, 3000.0, 50.0);
    EXPECT_LT(std::abs(sites.sites().front().loss_dB), kLeastLoss_dB);
}

/// What reflects is no bend, whatever its lines tell.
TEST(EventSitesBends, AReflectionBesideABendStaysWhereItIs)
{
    const DrawnFibre fibre = withBend(3000.0, 0.0003, 0.005);
    const EventSites sites = divided(fibre, {peakAt(fibre, 2850.0, 3.0)});
    ASSERT_FALSE(sites.sites().empty());
    EXPECT_EQ(sites.sites().front().at, 2850.0);
    EXPECT_TRUE(sites.sites().front().reflects());
}

/// Lines beside a bend cross there, wherever the places lie at which it is looked for.
TEST(EventSitesBends, ASharpBendIsPlacedWhereItsLinesCross)
{
    for (const double beside : {2850.0, 2857.0, 3111.0, 3140.0}) {
        const DrawnFibre fibre = withBend(3000.0, 0.0006, 0.0003);
        const EventSites sites = divided(fibre, {siteAt(fibre, beside)});
        ASSERT_EQ(sites.sites().size(), 1U) << beside;
        EXPECT_TRUE(sites.sites().front().isBorder) << beside;
        EXPECT_NEAR(sites.sites().front().loss_dB, 0.0, 0.004) << beside;
        EXPECT_NEAR(sites.sites().front().at, 3000.0, 20.0) << beside;
    }
}

/// A change of level that no scan has offered is none: it may be the end of the fibre, and lines on
/// both sides of a bend beside it run into that.
TEST(EventSitesBends, WhatSeemsLostWhereABendIsSoughtIsNotListed)
{
    const DrawnFibre fibre = withBend(3000.0, 0.0, 0.005, {{5600.0, 8.0}});
    const EventSites sites = divided(fibre, {});
    ASSERT_FALSE(sites.sites().empty());
    for (const Site& site : sites.sites()) {
        EXPECT_TRUE(site.isBorder) << site.at;
    }
}

/// By lines that are told from the same slope nothing is known of a bend.
TEST(EventSitesBends, LossesOfLevelFibreOfUnknownLengthStay)
{
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    const DrawnFibre fibre {6000, scaleOf(kSitesPulse), [&](double i) {
                                return 40.0 + eventLevel_dB(shape, i - 3000.0, 0.0, -0.1);
                            }};
    EXPECT_EQ(placesOf(divided(fibre, {siteAt(fibre, 3000.0)})), std::vector<double> {3000.0});
}

TEST(EventSitesBends, ALossWhereFibresOfDifferentAttenuationMeetStaysWhereItIs)
{
    for (const double loss_dB : {0.08, -0.08}) {
        const DrawnFibre fibre = withBend(3000.0, 0.0003, 0.005, {{3000.0, loss_dB}});
        const EventSites sites = divided(fibre, {siteAt(fibre, 3000.0)});
        ASSERT_EQ(placesOf(sites), std::vector<double> {3000.0});
        EXPECT_FALSE(sites.sites().front().isBorder);
        EXPECT_NEAR(sites.sites().front().loss_dB, loss_dB, 0.01);
    }
}

} // namespace
