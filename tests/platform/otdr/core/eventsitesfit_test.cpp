#include "platform/otdr/core/eventfit.h"
#include "platform/otdr/core/eventsites.h"
#include "tests/platform/otdr/core/drawnsites.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace testing_support;
using otdr::EventSites;
using otdr::Site;

/// Places at 3000 and three and a half dead zones behind it, and what divides the fibre between
/// them.
std::vector<double> dividedBetween(const DrawnFibre& fibre)
{
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0), siteAt(fibre, 3000.0 + 3.5 * fibre->gap())});
    sites.measure();
    sites.findCloseChanges(5.0);
    return placesOf(sites);
}

/// No scan has room there, and a line over the middle one would take a part of it from both.
TEST(EventSites, ALossBetweenTwoOthersDividesShortFibre)
{
    const double gap = fibreWith({})->gap();
    for (const double loss_dB : {0.3, -0.1}) {
        const double at = 3000.0 + 1.8 * gap;
        const DrawnFibre fibre =
            fibreWith({{3000.0, 0.2}, {at, loss_dB}, {3000.0 + 3.5 * gap, 0.4}}, 0.001);
        const std::vector<double> places = dividedBetween(fibre);
        ASSERT_EQ(places.size(), 3U) << loss_dB;
        EXPECT_NEAR(places[1], at, 0.5) << loss_dB;
    }
}

/// What fibre itself loses between the two levels is no change.
TEST(EventSites, ALossDividesShortSteepFibre)
{
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    const double gap = fibreWith({})->gap();
    const double at = 3000.0 + 1.8 * gap;
    const DrawnFibre fibre(
        6000, scaleOf(kSitesPulse, 2000.0),
        [&](double i) {
            return 60.0 - 0.005 * i + eventLevel_dB(shape, i - 3000.0, 0.0, -0.2)
                + eventLevel_dB(shape, i - at, 0.0, -0.1)
                + eventLevel_dB(shape, i - 3000.0 - 3.5 * gap, 0.0, -0.4);
        },
        0.001);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0), siteAt(fibre, 3000.0 + 3.5 * gap)});
    sites.measure();
    sites.findCloseChanges(5.0);
    ASSERT_EQ(sites.sites().size(), 3U);
    EXPECT_NEAR(sites.sites()[1].at, at, 0.5);
    EXPECT_DOUBLE_EQ(sites.sites()[1].behind, sites.sites()[1].at + gap);
}

TEST(EventSites, StraightShortFibreIsNotDivided)
{
    const double gap = fibreWith({})->gap();
    for (const double sigma_dB : {0.0, 0.001, 0.05}) {
        const DrawnFibre fibre = fibreWith({{3000.0, 0.2}, {3000.0 + 3.5 * gap, 0.4}}, sigma_dB);
        EXPECT_EQ(dividedBetween(fibre).size(), 2U) << sigma_dB;
    }
}

/// It falls by as much as a loss, but not within a pulse.
TEST(EventSites, ATailOnShortFibreIsNoLoss)
{
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    const DrawnFibre fibre(
        6000, scaleOf(kSitesPulse, 2000.0),
        [&](double i) {
            const double tail = i > 3000.0 ? 0.5 * std::exp((3000.0 - i) / 40.0) : 0.0;
            return 40.0 - 0.0005 * i + eventLevel_dB(shape, i - 3000.0, 0.0, -0.2) + tail;
        },
        0.001);
    EXPECT_EQ(dividedBetween(fibre).size(), 2U);
}

/// Of long fibre the ends, where a scan has no room on one side; to a sample, which is refined
/// later.
TEST(EventSites, OnlyTheEndsOfLongFibreAreDivided)
{
    const double gap = fibreWith({})->gap();
    const double length = 40.0 * gap;
    for (const double part : {1.8, 12.0, 38.2}) {
        const double at = 3000.0 + part * gap;
        const DrawnFibre fibre =
            fibreWith({{3000.0, 0.2}, {at, 0.1}, {3000.0 + length, 0.4}}, 0.001);
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({siteAt(fibre, 3000.0), siteAt(fibre, 3000.0 + length)});
        sites.measure();
        sites.findCloseChanges(5.0);
        const bool isFound = part != 12.0;
        ASSERT_EQ(sites.sites().size(), isFound ? 3U : 2U) << part;
        if (isFound) {
            EXPECT_NEAR(sites.sites()[1].at, at, 1.0) << part;
        }
    }
}

/// A reflection of 3 dB with a loss 3.3 pulses behind it: what its tail would be.
TEST(EventSites, ALossIsFoundInWhatSeemsATail)
{
    const double at = 3000.0 + 3.3 * kSitesPulse;
    const DrawnFibre fibre = fibreWith({{3000.0, 0.1, 3.0}, {at, 0.05}}, 0.003);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({peakAt(fibre, 3000.0, 3.0)});
    sites.measure();
    ASSERT_GT(sites.lineFrom(1), at);
    sites.findLossesInTails();
    ASSERT_EQ(sites.sites().size(), 2U);
    EXPECT_NEAR(sites.sites()[1].at, at, 0.5 * kSitesPulse);
    EXPECT_DOUBLE_EQ(sites.sites()[1].behind, sites.sites()[1].at + fibre->gap());
}

TEST(EventSites, NoLossIsFoundInATail)
{
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    for (const double constant : {10.0, 30.0, 100.0}) {
        const DrawnFibre fibre(
            6000, scaleOf(kSitesPulse, 2000.0),
            [&](double i) {
                const double tail = i > 3000.0 ? 0.3 * std::exp((3000.0 - i) / constant) : 0.0;
                return 40.0 - 0.0005 * i + eventLevel_dB(shape, i - 3000.0, 0.0, -0.1, 3.0)
                    + 5.0 * std::log10(1.0 + tail);
            },
            0.001);
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({peakAt(fibre, 3000.0, 3.0)});
        sites.measure();
        sites.findLossesInTails();
        EXPECT_EQ(sites.sites().size(), 1U) << constant;
    }
}

TEST(EventSites, RefiningMovesALossToItsFoot)
{
    const DrawnFibre fibre = fibreWith({{3000.4, 0.3}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2990.0)});
    sites.measure();
    sites.refine(20.0);
    EXPECT_NEAR(sites.sites().front().at, 3000.4, 0.2);
    EXPECT_DOUBLE_EQ(sites.sites().front().behind, sites.sites().front().at + fibre->gap());
    EXPECT_NEAR(sites.sites().front().loss_dB, 0.3, 0.002);
}

/// Lines that were fitted about a wrong place hold a part of the ramp, and bend towards it.
TEST(EventSites, RefiningGoesOnWhileItsLinesMoveThePlace)
{
    const DrawnFibre fibre = fibreWith({{3000.4, 0.3}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2982.0)});
    sites.measure();
    sites.refine(8.0); // at once
    EXPECT_NEAR(sites.sites().front().at, 3000.4, 0.2);
    EXPECT_NEAR(sites.sites().front().loss_dB, 0.3, 0.002);
}

TEST(EventSites, RefiningMovesALowReflectionToItsShape)
{
    const DrawnFibre fibre = fibreWith({{3000.4, 0.1, 1.0}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    Site low = peakAt(fibre, 2995.0, 0.7);
    low.peak->seen = {{3003.0}};
    sites.add({low});
    sites.measure();
    sites.refine(20.0);
    const Site& site = sites.sites().front();
    EXPECT_NEAR(site.at, 3000.4, 0.1);
    EXPECT_TRUE(site.peak->seen.empty()) << "a fit tells the light alone";
    EXPECT_EQ(site.peak->feet.front(), site.at);
    EXPECT_NEAR(site.peak->heights_dB.front(), 1.0, 0.01);
    EXPECT_EQ(site.behind, site.peak->behind);
    EXPECT_GE(site.behind, site.at + fibre->gap());
}

/// The edge of a high reflection tells its place better than its shape.
TEST(EventSites, RefiningLeavesHighSaturatedAndGroupedReflectionsWhereTheyStand)
{
    const DrawnFibre fibre = fibreWith({{3000.4, 0.1, 1.0}}, 0.002);
    Site high = peakAt(fibre, 2995.0, 1.6);
    Site saturated = peakAt(fibre, 2995.0, 0.7);
    saturated.peak->hidden_dB = 4.0;
    Site group = peakAt(fibre, 2995.0, 0.7);
    group.peak->feet.push_back(3005.0);
    group.peak->heights_dB.push_back(0.7);
    for (const Site& site : {high, saturated, group}) {
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({site});
        sites.measure();
        sites.refine(20.0);
        EXPECT_EQ(placesOf(sites), std::vector<double> {2995.0});
    }
}

TEST(EventSites, AReflectionLowerThanTheLeastIsNone)
{
    const DrawnFibre fibre = fibreWith({});
    EventSites sites(*fibre, 100.0, 5900.0);
    Site group = peakAt(fibre, 3000.0, 0.1);
    group.peak->feet.push_back(3010.0);
    group.peak->heights_dB.push_back(0.1);
    sites.add({peakAt(fibre, 1000.0, 0.1), peakAt(fibre, 2000.0, 0.25), group});
    sites.dropLowPeaks(0.25);
    EXPECT_FALSE(sites.sites()[0].peak);
    EXPECT_EQ(sites.sites()[0].peakStatistic, 0.0);
    EXPECT_TRUE(sites.sites()[1].peak);
    EXPECT_EQ(sites.sites()[1].peakStatistic, 10.0);
    EXPECT_TRUE(sites.sites()[2].peak);
}

TEST(EventSites, AReflectionThatIsNotListedStaysAsLight)
{
    const DrawnFibre fibre = fibreWith({});
    EventSites sites(*fibre, 100.0, 5900.0);
    Site group = peakAt(fibre, 3000.0, 0.1);
    group.peak->feet.push_back(3010.0);
    group.peak->heights_dB.push_back(0.25);
    sites.add({peakAt(fibre, 102.0, 0.24), peakAt(fibre, 1000.0, 0.24), peakAt(fibre, 2000.0, 0.25),
               group});
    sites.measure();
    sites.hideLowPeaks(0.25);
    sites.dropUnlikely(0.015, 5.0);
    ASSERT_EQ(placesOf(sites), (std::vector<double> {1000.0, 2000.0, 3000.0}))
        << "there is no fibre before the first";
    EXPECT_FALSE(sites.sites()[0].reflects());
    EXPECT_TRUE(sites.sites()[0].isBorder);
    EXPECT_TRUE(sites.sites()[1].reflects());
    EXPECT_FALSE(sites.sites()[1].isBorder);
    EXPECT_TRUE(sites.sites()[2].reflects());
    EXPECT_EQ(sites.sites()[2].peak->feet, std::vector<double> {3010.0});
}

/// Light too weak to be listed bends the ramp all the same.
TEST(EventSites, LightTooWeakToBeListedTellsTheFoot)
{
    const DrawnFibre fibre = fibreWith({{3000.4, 0.1, 0.05}}, 0.001);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2995.0)});
    sites.measure();
    sites.refine(20.0);
    EXPECT_GT(sites.sites().front().at, 3003.0); // as the ramp alone has it
    sites.findReflections(0.1, 5.0);
    sites.refine(20.0);
    const Site& site = sites.sites().front();
    EXPECT_FALSE(site.peak);
    EXPECT_TRUE(site.glows);
    EXPECT_NEAR(site.at, 3000.4, 0.5);
    EXPECT_DOUBLE_EQ(site.behind, site.at + fibre->gap());
}

/// What is no pulse on a ramp moves no foot: here a step up a pulse before the loss.
TEST(EventSites, LightOfAnotherShapeTellsNoFoot)
{
    const DrawnFibre fibre = fibreWith({{2960.0, -0.04}, {3000.4, 0.14}}, 0.001);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0)});
    sites.measure();
    sites.findReflections(0.1, 5.0);
    EXPECT_FALSE(sites.sites().front().glows);
}

/// A loss before a reflection bends the line through both sides of it; once it is known, the line
/// ends behind it.
TEST(EventSites, MeasuresAReflectionAnewBehindAPlaceThatItsLineRanOver)
{
    const DrawnFibre fibre = fibreWith({{2930.0, 0.4}, {3000.4, 0.3, 4.0}}, 0.001);
    const otdr::PeakGroup bent = measurePeak(*fibre, 3000.0, 100.0, 5900.0);
    ASSERT_GT(std::abs(bent.heights_dB.front() - 4.0), 0.05);
    Site site;
    site.at = bent.feet.front();
    site.behind = bent.behind;
    site.peak = bent;
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2930.0), site});
    sites.measure();
    sites.remeasurePeaks(0.05);
    const Site& found = sites.sites().back();
    EXPECT_NEAR(found.at, 3000.4, 1.0);
    EXPECT_EQ(found.at, found.peak->feet.front());
    EXPECT_EQ(found.behind, found.peak->behind);
    EXPECT_NEAR(found.peak->heights_dB.front(), 4.0, 0.03);
}

TEST(EventSites, LeavesReflectionsWithFibreEnoughBeforeThemAsTheyWere)
{
    const DrawnFibre fibre = fibreWith({{1000.0, 0.4}, {3000.4, 0.3, 4.0}}, 0.001);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 1000.0), peakAt(fibre, 3010.0, 3.0)});
    sites.measure();
    sites.remeasurePeaks(0.05);
    EXPECT_EQ(sites.sites().back().at, 3010.0);
    EXPECT_EQ(sites.sites().back().peak->heights_dB.front(), 3.0);
}

TEST(EventSites, FindsALowReflectionOnTheRampOfALoss)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.2, 0.3}, {4500.0, 0.2}}, 0.005);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2997.0), siteAt(fibre, 4500.0)});
    sites.measure();
    sites.findReflections(0.1, 5.0);
    const Site& site = sites.sites()[0];
    ASSERT_TRUE(site.peak);
    EXPECT_NEAR(site.at, 3000.0, 0.3);
    EXPECT_NEAR(site.peak->heights_dB.front(), 0.3, 0.02);
    EXPECT_EQ(site.peak->feet.front(), site.at);
    EXPECT_DOUBLE_EQ(site.behind, site.at + fibre->gap());
    EXPECT_EQ(site.peak->behind, site.behind);
    EXPECT_GT(site.peakStatistic, 5.0);
    EXPECT_FALSE(sites.sites()[1].peak);
}

TEST(EventSites, FindsNoReflectionLowerThanTheLeastOrOfLessThanItsSignificance)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.2, 0.3}}, 0.005);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2997.0)});
    sites.measure();
    sites.findReflections(0.35, 5.0);
    EXPECT_FALSE(sites.sites()[0].peak);
    sites.findReflections(0.1, 1000.0);
    EXPECT_FALSE(sites.sites()[0].peak);
}

/// To be more than what is asked is to exceed it.
TEST(EventSites, AReflectionExceedsItsLimits)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.2, 0.3}}, 0.005);
    const auto found = [&](double height_dB, double significance) {
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({siteAt(fibre, 2997.0)});
        sites.measure();
        sites.findReflections(height_dB, significance);
        return sites.sites().front();
    };
    const Site site = found(0.1, 5.0);
    ASSERT_TRUE(site.peak);
    const double height_dB = site.peak->heights_dB.front();
    EXPECT_FALSE(found(height_dB, 5.0).peak);
    EXPECT_TRUE(found(std::nextafter(height_dB, 0.0), 5.0).peak);
    EXPECT_FALSE(found(0.1, site.peakStatistic).peak);
    EXPECT_TRUE(found(0.1, std::nextafter(site.peakStatistic, 0.0)).peak);
}

/// A reflection whose dead zone would reach the next place is none.
TEST(EventSites, AReflectionLeavesRoomForTheNextPlace)
{
    const DrawnFibre fibre = fibreWith({{3000.3, 0.0, 0.5}});
    const auto sitesWith = [&](double next) {
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({siteAt(fibre, 2990.0), siteAt(fibre, next)});
        sites.measure();
        return sites;
    };
    // The fibre up to the next place has a part in where the foot is: both are sought together.
    double next = 3003.0 + fibre->gap();
    for (int i = 0; i < 5; ++i) {
        const EventSites sites = sitesWith(next);
        const Site& site = sites.sites().front();
        const double foot = otdr::fitPeak(*fibre, site.at, site.left->line, site.right->line).foot;
        next = foot + fibre->gap();
        next = next - fibre->gap() < foot ? std::nextafter(next, 6000.0) : next;
        next = next - fibre->gap() > foot ? std::nextafter(next, 0.0) : next;
    }
    const auto isFound = [&](double place) {
        EventSites sites = sitesWith(place);
        sites.findReflections(0.1, 5.0);
        return sites.sites().front().peak.has_value();
    };
    EXPECT_FALSE(isFound(next));
    EXPECT_TRUE(isFound(next + 1e-9));
}

/// A tail that the samples next to it hide in their noise shows beside all the fibre that follows.
TEST(EventSites, LinesBeginBehindTheTailOfAReflection)
{
    const double at = 3000.0;
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    const DrawnFibre fibre(
        6000, scaleOf(kSitesPulse, 2000.0),
        [&](double i) {
            const double tail = i > at + 60.0 ? 0.08 * std::exp((at + 60.0 - i) / 40.0) : 0.0;
            return 40.0 - 0.0005 * i + eventLevel_dB(shape, i - at, 0.0, -0.2, 12.0) + tail;
        },
        0.02);
    EventSites sites(*fibre, 100.0, 5900.0);
    Site site = peakAt(fibre, at, 12.0);
    site.behind = at + 60.0;
    sites.add({site});
    sites.measure();
    const Site& found = sites.sites().front();
    EXPECT_GT(found.clear, at + 60.0 + 2.5 * kSitesPulse);
    EXPECT_LE(found.clear, at + 60.0 + 10.0 * kSitesPulse);
    EXPECT_EQ(sites.lineFrom(1), found.clear);
    EXPECT_EQ(sites.fibreFrom(1), found.behind);
    EXPECT_NEAR(found.loss_dB, 0.2, 2.5 * found.error_dB);

    // Of short fibre half at most is given to it.
    sites.add({siteAt(fibre, at + 160.0)});
    sites.measure();
    EXPECT_LE(sites.sites().front().clear, at + 60.0 + 50.0);
}

/// A reflection without fibre between it and the one before.
Site crowdedAt(const DrawnFibre& fibre, double at, double height_dB, double behind)
{
    Site site = peakAt(fibre, at, height_dB);
    site.behind = behind;
    site.peak->behind = behind;
    return site;
}

/// Each alone has no fibre on one side, and the loss of both would be lost.
TEST(EventSites, ReflectionsWithoutFibreBetweenThemAreOneGroup)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.1, 3.0}, {3032.0, 0.2, 4.0}});
    EventSites sites(*fibre, 100.0, 5900.0);
    Site first = crowdedAt(fibre, 3000.0, 3.0, 3031.0);
    first.peakStatistic = 20.0;
    Site second = crowdedAt(fibre, 3032.0, 1.0, 3120.0); // on the light of the first
    second.peak->hidden_dB = 4.0;
    const Site alone = peakAt(fibre, 5000.0, 1.0);
    sites.add({first, second, alone});
    sites.measure();
    sites.joinCrowded();
    ASSERT_EQ(placesOf(sites), (std::vector<double> {3000.0, 5000.0}));
    const Site& group = sites.sites().front();
    EXPECT_EQ(group.peak->feet, (std::vector<double> {3000.0, 3032.0}));
    ASSERT_EQ(group.peak->heights_dB.size(), 2U);
    EXPECT_NEAR(group.peak->heights_dB[0], 3.0, 0.05);
    EXPECT_NEAR(group.peak->heights_dB[1], 3.885, 0.02) << "above the fibre before the first";
    EXPECT_EQ(group.peak->seen.size(), 2U);
    EXPECT_EQ(group.peak->hidden_dB, 4.0);
    EXPECT_EQ(group.peak->behind, 3120.0);
    EXPECT_EQ(group.behind, 3120.0);
    EXPECT_EQ(group.peakStatistic, 20.0);
    EXPECT_NEAR(group.loss_dB, 0.3, 0.002);
}

/// Over the fibre before the first it is 1.9 dB below it: behind a splitter.
TEST(EventSites, ReflectionOfAGroupIsAsHighAsAboveTheFibreThatTheOneBeforeLeaves)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 4.0, 3.0}, {3032.0, 4.0, 2.1}});
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({crowdedAt(fibre, 3000.0, 3.0, 3031.0), crowdedAt(fibre, 3032.0, 2.1, 3120.0)});
    sites.measure();
    sites.joinCrowded();
    ASSERT_EQ(sites.sites().size(), 1U);
    sites.hideLowPeaks(0.5);
    const Site& group = sites.sites().front();
    ASSERT_EQ(group.peak->feet, (std::vector<double> {3000.0, 3032.0}));
    EXPECT_EQ(group.peak->heights_dB[1], 2.1);
}

TEST(EventSites, ReflectionsWithFibreBetweenThemStandAlone)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.1, 0.8}, {3060.0, 0.2, 0.8}});
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({peakAt(fibre, 3000.0, 0.8), peakAt(fibre, 3060.0, 0.8)});
    sites.joinCrowded();
    EXPECT_EQ(sites.sites().size(), 2U);
}

TEST(EventSites, LinesBeginAtOnceBehindALossOrALowReflection)
{
    const DrawnFibre fibre = fibreWith({{2000.0, 0.1}, {4000.0, 0.1, 0.9}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2000.0), peakAt(fibre, 4000.0, 0.9)});
    sites.measure();
    for (const Site& site : sites.sites()) {
        EXPECT_EQ(site.clear, site.behind);
    }
}

} // namespace
