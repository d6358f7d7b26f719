#include "platform/otdr/core/eventsites.h"
#include "tests/platform/otdr/core/drawnsites.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

using namespace testing_support;
using otdr::EventSites;
using otdr::Site;

/// A receiver that was overloaded recovers: light that seems to be gained at the reflection is lost
/// again where it has done so.
TEST(EventSites, WhatAReflectionGainsTooMuchOfIsNotLostBehindIt)
{
    const auto placesWith = [](double gain_dB) {
        const DrawnFibre fibre =
            fibreWith({{2000.0, -gain_dB, 12.0}, {2300.0, gain_dB + 0.2}}, 0.003);
        otdr::EventSites sites(*fibre, 60.0, 5900.0);
        sites.add({peakAt(fibre, 2000.0, 12.0), siteAt(fibre, 2300.0)});
        sites.dropUnlikely(0.015, 5.0);
        return placesOf(sites);
    };
    EXPECT_EQ(placesWith(0.3), (std::vector<double> {2000.0, 2300.0}));
    EXPECT_EQ(placesWith(1.0), std::vector<double> {2000.0});
}

/// Light that a receiver has swung below the fibre for some pulses behind a reflection at 2000.
double swung_dB(double index, double depth_dB)
{
    return index < 2000.0 ? 0.0 : -depth_dB * std::exp(-(index - 2000.0) / (3.0 * kPulse));
}

/// Places at the reflection and where the receiver has swung back, and the loss of the first.
EventSites swungSites(const DrawnFibre& fibre, double backAt = 2000.0 + 5.0 * kPulse)
{
    EventSites sites(*fibre, 60.0, 5900.0);
    Site back;
    back.at = backAt;
    back.behind = back.at + 2.0 * kPulse;
    Site bright = peakAt(fibre, 2000.0, 12.0);
    bright.behind = 2000.0 + 2.5 * kPulse; // its flank is over
    sites.add({bright, back});
    sites.dropUnlikely(0.015, 5.0);
    return sites;
}

TEST(EventSites, WhatAReceiverSwingsBackByIsNoGain)
{
    const DrawnFibre plain = fibreWith({{2000.0, 0.2, 12.0}}, 0.003);
    const DrawnFibre fibre(6000, scaleOf(kPulse), [&](double i) {
        return plain->samples().level_dB(static_cast<std::size_t>(i)) + swung_dB(i, 0.3);
    });
    const EventSites sites = swungSites(fibre);
    EXPECT_EQ(placesOf(sites), std::vector<double> {2000.0});
    EXPECT_NEAR(sites.sites().front().loss_dB, 0.2, 0.01);
}

/// The reflection of the port swings it as well. The fibre in front of the first event is taken
/// from where that is over.
TEST(EventSites, WhatAReceiverSwingsBackByBehindThePortIsNoGain)
{
    const double port = 60.0;
    const DrawnFibre plain = fibreWith({{3000.0, 0.2}}, 0.003);
    const DrawnFibre fibre(6000, scaleOf(kPulse), [&](double i) {
        const double swung = -0.3 * std::exp(-std::max(0.0, i - port) / (5.0 * kPulse));
        return plain->samples().level_dB(static_cast<std::size_t>(i)) + swung;
    });
    EventSites sites(*fibre, port, 5900.0);
    sites.add({siteAt(fibre, port + 4.0 * kPulse), siteAt(fibre, 3000.0)});
    sites.dropUnlikely(0.015, 5.0);
    ASSERT_EQ(placesOf(sites), std::vector<double> {3000.0});
    const Site& loss = sites.sites().front();
    EXPECT_NEAR(loss.loss_dB, 0.2, 0.005);
    EXPECT_EQ(loss.left->line.first(), sites.fibreFrom(0));
    EXPECT_GT(sites.fibreFrom(0), port + 5.0 * kPulse);
}

/// Noise now and then rises by more than the light before it: by four standard errors, never.
TEST(EventSites, WhatAReceiverSwingsBackByIsNoGainInNoiseEither)
{
    for (const std::uint64_t seed : {1, 2, 3, 4, 5, 6, 7, 8}) {
        const DrawnFibre plain = fibreWith({{2000.0, 0.2, 12.0}});
        const DrawnFibre fibre(
            6000, scaleOf(kPulse),
            [&](double i) {
                return plain->samples().level_dB(static_cast<std::size_t>(i)) + swung_dB(i, 0.6);
            },
            0.05, seed);
        EXPECT_EQ(placesOf(swungSites(fibre)), std::vector<double> {2000.0}) << seed;
    }
}

/// Nor does a line run over it: that would tell a smaller gain, or a greater loss.
TEST(EventSites, LinesBeginWhereTheReceiverHasSwungBack)
{
    const auto lossWith = [](double depth_dB) {
        const DrawnFibre plain = fibreWith({{2000.0, 0.2, 12.0}, {2400.0, 0.1}}, 0.003);
        const DrawnFibre fibre(6000, scaleOf(kPulse), [&](double i) {
            return plain->samples().level_dB(static_cast<std::size_t>(i)) + swung_dB(i, depth_dB);
        });
        EventSites sites(*fibre, 60.0, 5900.0);
        Site bright = peakAt(fibre, 2000.0, 12.0);
        bright.behind = 2000.0 + 2.5 * kPulse;
        sites.add({bright, siteAt(fibre, 2400.0)});
        sites.measure();
        return sites.sites().front().loss_dB;
    };
    EXPECT_NEAR(lossWith(0.0), 0.2, 0.005);
    EXPECT_NEAR(lossWith(0.1), 0.2, 0.005);
    EXPECT_NEAR(lossWith(0.3), 0.2, 0.012) << "but for the last of it, which noise hides";
}

TEST(EventSites, AGainBehindAReflectionIsOneWhereTheFibreBetweenThemIsStraight)
{
    const double back = 2000.0 + 5.0 * kPulse;
    const DrawnFibre fibre = fibreWith({{2000.0, 0.2, 12.0}, {back, -0.2}}, 0.003);
    EXPECT_EQ(placesOf(swungSites(fibre)), (std::vector<double> {2000.0, back}));
}

/// Fibres of one link need not fall alike, and a receiver may swing on the way to a gain. Wherever
/// in the ramp the gain was seen first, it comes at once.
TEST(EventSites, AGainBehindAReflectionIsOneWhereTheFibreBetweenThemIsFlatter)
{
    const double foot = 2000.0 + 7.0 * kPulse;
    for (const double depth_dB : {0.0, 0.05}) {
        for (const double late : {0.0, 0.5 * kPulse, kPulse}) {
            const DrawnFibre plain = fibreWith({{2000.0, 0.2, 12.0}, {foot, -0.2}}, 0.003);
            const DrawnFibre fibre(6000, scaleOf(kPulse, 2000.0), [&](double i) {
                const double flatter_dB = 0.0004 * std::clamp(i - 2000.0, 0.0, foot - 2000.0);
                return plain->samples().level_dB(static_cast<std::size_t>(i)) + flatter_dB
                    + swung_dB(i, depth_dB);
            });
            EXPECT_EQ(placesOf(swungSites(fibre, foot + late)).size(), 2U)
                << depth_dB << ' ' << late;
        }
    }
}

/// Of a tenth of a decibel, so near to the reflection that hardly a pulse of light tells the swing.
TEST(EventSites, ASmallGainInASwingIsOneWhereverInItsRampItWasSeen)
{
    const double foot = 2000.0 + 4.5 * kPulse;
    for (const double depth_dB : {0.05, 0.2, 0.4}) {
        for (const double late : {0.0, 0.5 * kPulse, kPulse}) {
            const DrawnFibre plain = fibreWith({{2000.0, 0.2, 12.0}, {foot, -0.1}}, 0.003);
            const DrawnFibre fibre(6000, scaleOf(kPulse, 2000.0), [&](double i) {
                return plain->samples().level_dB(static_cast<std::size_t>(i))
                    + swung_dB(i, depth_dB);
            });
            EXPECT_EQ(placesOf(swungSites(fibre, foot + late)).size(), 2U)
                << depth_dB << ' ' << late;
        }
    }
}

} // namespace
