#include "platform/otdr/core/eventsites.h"
#include "tests/platform/otdr/core/drawnsites.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace testing_support;
using otdr::EventSites;

/// Too short to tell its slope, a stretch takes that of the other fibre, and is not sure of it.
TEST(EventSites, AShortStretchTakesTheUsualSlope)
{
    const DrawnFibre fibre = fibreWith({}, 0.01);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2000.0), siteAt(fibre, 2060.0)});
    sites.measure();
    const auto& line = sites.sites().front().right;
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->line.slope_dB, -0.0005, 1e-4);
    EXPECT_DOUBLE_EQ(line->slopeError_dB, 0.03 / 2000.0);
}

/// The median by what they weigh: of two that weigh the same it is the steeper one.
TEST(EventSites, OfTwoPiecesKnownAsWellTheSteeperHasTheUsualSlope)
{
    for (const double behind_dB : {-0.0004, -0.0016}) {
        const DrawnFibre fibre(6000, scaleOf(kSitesPulse, 2000.0), [&](double i) {
            return i < 2920.0 ? 40.0 - 0.001 * i : 37.0 + behind_dB * (i - 2920.0);
        });
        EventSites sites(*fibre, 100.0, 5773.0);
        sites.add({siteAt(fibre, 2900.0), siteAt(fibre, 2938.0)}); // five samples between them
        sites.measure();
        ASSERT_EQ(sites.fibre(0)->line.samples, sites.fibre(2)->line.samples);
        ASSERT_EQ(sites.fibre(0)->slopeError_dB, sites.fibre(2)->slopeError_dB);
        EXPECT_NEAR(sites.fibre(1)->line.slope_dB, std::min(-0.001, behind_dB), 1e-6);
    }
}

/// Where much is lost everywhere, what lies between losses seems to fall as no fibre does.
TEST(EventSites, TheUsualSlopeIsNoSteeperThanFibreIs)
{
    const auto between = [](double steepest_dB) {
        otdr::SearchScale scale = scaleOf(kSitesPulse, 2000.0);
        scale.steepest_dB = steepest_dB;
        const DrawnFibre fibre(6000, scale, [](double i) { return 40.0 - 0.001 * i; });
        EventSites sites(*fibre, 100.0, 5770.0);
        sites.add({siteAt(fibre, 2900.0), siteAt(fibre, 2938.0)});
        sites.measure();
        return sites.fibre(1)->line.slope_dB;
    };
    EXPECT_NEAR(between(0.002), -0.001, 1e-6);
    EXPECT_DOUBLE_EQ(between(0.0005), -0.0005);
}

TEST(EventSites, AStretchTakesItsOwnSlopeWhereItIsSurerOfThat)
{
    const auto level = [](double i) {
        return 40.0 - 0.0005 * i - (i < 1000.0 ? 0.0 : 0.0025 * (std::min(i, 1100.0) - 1000.0));
    };
    const auto stretchWith = [&](double kilometre) {
        const DrawnFibre fibre(6000, scaleOf(kSitesPulse, kilometre), level);
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({siteAt(fibre, 1000.0 - fibre->gap()), siteAt(fibre, 1101.0)});
        return *sites.fibre(1);
    };
    // Fibres of one link differ by 0.03 dB/km, so that the kilometre decides how sure that is.
    const double own = stretchWith(1.0).slopeError_dB;
    double even = 0.03 / own;
    even = 0.03 / even < own ? std::nextafter(even, 0.0) : even;
    even = 0.03 / even > own ? std::nextafter(even, 1e9) : even;
    EXPECT_NEAR(stretchWith(0.99 * even).line.slope_dB, -0.003, 1e-4);
    EXPECT_NEAR(stretchWith(even).line.slope_dB, -0.0005, 1e-4);
    EXPECT_NEAR(stretchWith(1.01 * even).line.slope_dB, -0.0005, 1e-4);
}

} // namespace
