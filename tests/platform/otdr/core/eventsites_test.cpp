#include "platform/otdr/core/eventsites.h"
#include "tests/platform/otdr/core/drawnsites.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

using namespace testing_support;
using otdr::EventSites;
using otdr::Site;

TEST(Site, StatisticIsTheLossOverItsError)
{
    Site site;
    EXPECT_EQ(site.statistic(), 0.0);
    site.loss_dB = -0.5;
    site.error_dB = 0.1;
    EXPECT_DOUBLE_EQ(site.statistic(), 5.0);
    site.error_dB = 0.0;
    EXPECT_EQ(site.statistic(), 0.0);
}

TEST(EventSites, KeepsItsPlacesInOrder)
{
    const DrawnFibre fibre = fibreWith({});
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0), siteAt(fibre, 1000.0)});
    sites.add({siteAt(fibre, 2000.0)});
    EXPECT_EQ(placesOf(sites), (std::vector<double> {1000.0, 2000.0, 3000.0}));
}

/// They may meet, and overlap by a sample; no more.
TEST(EventSites, LeavesOutWhatFallsIntoADeadZone)
{
    const DrawnFibre fibre = fibreWith({});
    EventSites sites(*fibre, 100.0, 5900.0);
    const auto site = [](double at, double behind) {
        Site one;
        one.at = at;
        one.behind = behind;
        return one;
    };
    sites.add({site(1000.0, 1050.0)});
    sites.add({site(1048.9, 1099.0), site(951.0, 1001.1), site(1000.0, 1050.0)});
    EXPECT_EQ(placesOf(sites), (std::vector<double> {1000.0}));
    sites.add({site(1049.0, 1099.0), site(951.0, 1001.0)});
    EXPECT_EQ(placesOf(sites), (std::vector<double> {951.0, 1000.0, 1049.0}));
}

/// Patch cords of three pulses: no piece of the record is fibre alone before the places are known.
TEST(EventSites, LearnTheSlopeOfTheFibreBetweenThem)
{
    std::vector<DrawnEvent> events;
    for (double at = 500.0; at < 5500.0; at += 75.0) {
        events.push_back({at, 0.3, 0.0});
    }
    const DrawnFibre fibre = fibreWith(events, 0.003);
    EventSites sites(*fibre, 100.0, 5900.0);
    for (const DrawnEvent& event : events) {
        sites.add({siteAt(fibre, event.at)});
    }
    sites.measure();
    for (const Site& site : sites.sites()) {
        EXPECT_NEAR(site.loss_dB, 0.3, 0.02) << site.at;
        EXPECT_LT(site.error_dB, 0.02) << site.at;
    }
}

/// A foot without a reflection is known to a sample; a reflection rises before it stands out, and
/// the light of the end falls.
TEST(EventSites, FibreLiesBetweenTheDeadZonesAndTheNextFoot)
{
    const DrawnFibre fibre = fibreWith({});
    EventSites sites(*fibre, 100.0, 5900.0);
    EXPECT_EQ(sites.fibreFrom(0), 100.0);
    EXPECT_EQ(sites.fibreTo(0), 5900.0 - 0.2 * 20.0);
    sites.add({siteAt(fibre, 1000.0), peakAt(fibre, 2000.0, 3.0)});
    EXPECT_EQ(sites.fibreTo(0), 999.0);
    EXPECT_EQ(sites.fibreFrom(1), 1000.0 + fibre->gap());
    EXPECT_DOUBLE_EQ(sites.fibreTo(1), 2000.0 - 0.15 * 20.0); // it rises before it stands out
    EXPECT_EQ(sites.fibreFrom(2), 2000.0 + fibre->gap());
    EXPECT_EQ(sites.fibreTo(2), 5900.0 - 0.2 * 20.0);
    const auto line = sites.fibre(1);
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->line.slope_dB, -0.0005, 1e-6);
}

TEST(EventSites, MeasuresALossWithItsError)
{
    const DrawnFibre fibre = fibreWith({{2000.0, 0.2}}, 0.01);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2000.0)});
    sites.measure();
    const Site& site = sites.sites().front();
    EXPECT_NEAR(site.loss_dB, 0.2, 4.0 * site.error_dB);
    const double seen = 2000.0 + fibre->shape().centre();
    EXPECT_DOUBLE_EQ(site.error_dB,
                     std::hypot(site.left->errorAt_dB(seen), site.right->errorAt_dB(seen)));
    EXPECT_LT(site.error_dB, 0.002);
}

/// Where fibres fall differently the lines meet at the event, half a pulse before it is seen.
TEST(EventSites, MeasuresWhereTheEventIsSeenFromBothSides)
{
    const DrawnFibre fibre(6000, scaleOf(kSitesPulse, 2000.0), [](double i) {
        const double behind = i - 3000.0;
        return 40.0 - (behind < 0.0 ? 0.0005 : 0.001) * behind;
    });
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0 - fibre->shape().centre())});
    sites.measure();
    EXPECT_NEAR(sites.sites().front().loss_dB, 0.0, 4e-4);
}

TEST(EventSites, LinesAreNoLongerThanTheLongestWindow)
{
    otdr::SearchScale scale = scaleOf(kSitesPulse, 2000.0);
    scale.longestWindow = 500.0;
    const DrawnFibre fibre(6000, scale, [](double i) { return 40.0 - 0.0005 * i; });
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0)});
    sites.measure();
    EXPECT_EQ(sites.sites().front().left->line.samples, 500U);
    EXPECT_EQ(sites.sites().front().right->line.samples, 500U);
}

TEST(EventSites, WithoutThreeSamplesThereIsNoLine)
{
    const DrawnFibre fibre = fibreWith({});
    EventSites sites(*fibre, 1996.5, 5900.0);
    sites.add({siteAt(fibre, 2000.0)}); // 2.5 before it, but for the sample of its foot
    sites.measure();
    EXPECT_FALSE(sites.sites().front().left);
    EXPECT_TRUE(std::isnan(sites.sites().front().loss_dB));
    EventSites more(*fibre, 1996.0, 5900.0);
    more.add({siteAt(fibre, 2000.0)});
    more.measure();
    EXPECT_TRUE(more.sites().front().left);
}

TEST(EventSites, DropsWhatALineThroughBothSidesExplains)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.2}}, 0.005);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 1000.0), siteAt(fibre, 2000.0), siteAt(fibre, 3000.0),
               siteAt(fibre, 4000.0)});
    sites.dropUnlikely(0.015, 5.0);
    ASSERT_EQ(placesOf(sites), std::vector<double> {3000.0});
    // Measured anew between the neighbours that are left.
    EXPECT_GT(sites.sites().front().left->line.samples, 2500U);
    EXPECT_GT(sites.sites().front().right->line.samples, 2500U);
}

TEST(EventSites, ALossMayBeAsSmallAsTheLeastThatIsListed)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.05}}, 0.1);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0)});
    sites.measure();
    const double loss_dB = sites.sites().front().loss_dB;
    sites.dropUnlikely(loss_dB, 2.0);
    ASSERT_EQ(sites.sites().size(), 1U);
    EXPECT_FALSE(sites.sites().front().isBorder);
    // Ten standard errors would make it a border.
    ASSERT_LT(loss_dB, 10.0 * sites.sites().front().error_dB);
    sites.dropUnlikely(std::nextafter(loss_dB, 1.0), 2.0);
    EXPECT_TRUE(sites.sites().empty());
}

/// Lines that ran over a small change would tell wrong losses at both of its neighbours.
TEST(EventSites, AClearChangeTooSmallToBeListedStaysAsABorder)
{
    const DrawnFibre fibre = fibreWith({{2000.0, 0.1}, {3000.0, 0.01}, {4000.0, 0.1}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2000.0), siteAt(fibre, 3000.0), siteAt(fibre, 4000.0)});
    sites.dropUnlikely(0.015, 5.0);
    ASSERT_EQ(placesOf(sites), (std::vector<double> {2000.0, 3000.0, 4000.0}));
    EXPECT_FALSE(sites.sites()[0].isBorder);
    EXPECT_TRUE(sites.sites()[1].isBorder);
    EXPECT_FALSE(sites.sites()[2].isBorder);
    for (const std::size_t k : {0U, 2U}) {
        EXPECT_NEAR(sites.sites()[k].loss_dB, 0.1, 3.0 * sites.sites()[k].error_dB) << k;
    }
}

/// Between two others that are near, what is left of a tail may bend a line by a hundredth of a
/// decibel, not by a tenth.
TEST(EventSites, APlainChangeTooSmallToBeListedIsABorderWithLittleFibreBesideIt)
{
    const auto places = [](double loss_dB, double away) {
        const DrawnFibre fibre =
            fibreWith({{3000.0 - away, 0.5}, {3000.0, loss_dB}, {3000.0 + away, 0.5}}, 0.0005);
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add(
            {siteAt(fibre, 3000.0 - away), siteAt(fibre, 3000.0), siteAt(fibre, 3000.0 + away)});
        sites.dropUnlikely(0.2, 5.0);
        return sites.sites().size();
    };
    EXPECT_EQ(places(0.1, 80.0), 3U);
    EXPECT_EQ(places(0.1, 50.0), 2U);
    EXPECT_EQ(places(0.03, 80.0), 2U);
    EXPECT_EQ(places(0.03, 400.0), 3U);
}

/// What it loses counts as anywhere: not at all, too little to be sure, or enough. What is unknown
/// tells nothing.
TEST(EventSites, LightThatIsTooWeakStaysAsABorderUnlessItLosesEnough)
{
    const DrawnFibre fibre = fibreWith({{2000.0, 0.0, 0.1}, {4000.0, 0.1, 0.1}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    std::vector<Site> places = {siteAt(fibre, 102.0), siteAt(fibre, 2000.0), siteAt(fibre, 4000.0)};
    for (Site& site : places) {
        site.glows = true;
    }
    sites.add(places);
    sites.dropUnlikely(0.015, 5.0);
    ASSERT_EQ(placesOf(sites), (std::vector<double> {2000.0, 4000.0}))
        << "there is no fibre before the first";
    EXPECT_TRUE(sites.sites()[0].isBorder);
    EXPECT_FALSE(sites.sites()[1].isBorder);

    const DrawnFibre noisy = fibreWith({{3000.0, 0.05, 0.1}}, 0.5);
    EventSites doubtful(*noisy, 100.0, 5900.0);
    Site site = siteAt(noisy, 3000.0);
    site.glows = true;
    doubtful.add({site});
    doubtful.dropUnlikely(0.015, 5.0);
    ASSERT_EQ(doubtful.sites().size(), 1U);
    EXPECT_TRUE(doubtful.sites().front().isBorder);
}

TEST(EventSites, ASmallChangeIsDroppedWhereItIsNotClear)
{
    for (const DrawnEvent& small : {DrawnEvent {3000.0, 0.01}, DrawnEvent {3000.0, 0.003}}) {
        const double sigma = small.loss_dB > 0.005 ? 0.02 : 0.001;
        const DrawnFibre fibre = fibreWith({small}, sigma);
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({siteAt(fibre, 3000.0)});
        sites.dropUnlikely(0.015, 5.0);
        EXPECT_TRUE(sites.sites().empty()) << small.loss_dB;
    }
}

/// Too close to each other for a line between them, neither tells its loss: the nearer one goes,
/// and what is behind it can be measured.
TEST(EventSites, OfPlacesThatTellNothingTheFirstIsDropped)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.3}});
    EventSites sites(*fibre, 100.0, 5900.0);
    const double next = 2960.0 + fibre->gap() + 3.0;
    sites.add({siteAt(fibre, 2960.0), siteAt(fibre, next)});
    sites.dropUnlikely(0.015, 5.0);
    EXPECT_EQ(placesOf(sites), std::vector<double> {next});
}

TEST(EventSites, KeepsReflectionsWhateverTheyLose)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.0, 2.0}});
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({peakAt(fibre, 3000.0, 2.0), siteAt(fibre, 4000.0)});
    sites.dropUnlikely(0.015, 5.0);
    EXPECT_EQ(placesOf(sites), std::vector<double> {3000.0});
}

TEST(EventSites, TwoPlacesOfOneRampBecomeOne)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.3}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 2985.0), siteAt(fibre, 2985.0 + fibre->gap() + 5.0)});
    ASSERT_EQ(sites.sites().size(), 2U);
    sites.measure();
    sites.mergePairs();
    ASSERT_EQ(sites.sites().size(), 1U);
    EXPECT_NEAR(sites.sites().front().at, 3000.0, 0.5);
    EXPECT_DOUBLE_EQ(sites.sites().front().behind, sites.sites().front().at + fibre->gap());
    EXPECT_NEAR(sites.sites().front().loss_dB, 0.3, 0.005);
}

/// Of a splitter they are one also where the receiver is several times slower than it is thought.
TEST(EventSites, TwoPlacesOnTheSlowRampOfASplitterBecomeOne)
{
    for (const double slower : {2.0, 4.0, 6.0}) {
        const otdr::PulseShape slow(kSitesPulse, slower * 0.08 * kSitesPulse);
        const DrawnFibre fibre(
            6000, scaleOf(kSitesPulse, 2000.0),
            [&](double i) {
                return 40.0 - 0.0005 * i + eventLevel_dB(slow, i - 3000.0, 0.0, -8.0);
            },
            0.002);
        EventSites sites(*fibre, 100.0, 5900.0);
        sites.add({siteAt(fibre, 2985.0), siteAt(fibre, 2985.0 + fibre->gap() + 5.0)});
        sites.measure();
        sites.mergePairs();
        ASSERT_EQ(sites.sites().size(), 1U) << slower;
        EXPECT_NEAR(sites.sites().front().at, 3000.0, 3.0) << slower;
    }
}

TEST(EventSites, TwoLossesStayTwo)
{
    const double next = 3000.0 + 1.8 * fibreWith({})->gap();
    const DrawnFibre fibre = fibreWith({{3000.0, 0.3}, {next, 0.2}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0), siteAt(fibre, next)});
    sites.measure();
    sites.mergePairs();
    EXPECT_EQ(sites.sites().size(), 2U);
}

/// A tail may be waited for as far as there is fibre for a line.
TEST(EventSites, MeasuresALossBetweenNeighboursThatLeaveLittleFibre)
{
    const double gap = fibreWith({})->gap();
    const double next = 3000.0 + gap + 6.0;
    const DrawnFibre fibre = fibreWith({{3000.0, 4.0}, {next, 0.3}}, 0.0005);
    EventSites sites(*fibre, 100.0, 5900.0);
    sites.add({siteAt(fibre, 3000.0), siteAt(fibre, next)});
    sites.measure();
    EXPECT_NEAR(sites.sites()[0].loss_dB, 4.0, 0.05);
    EXPECT_NEAR(sites.sites()[1].loss_dB, 0.3, 0.05);
}

/// What a low reflection looks like to a search for steps.
TEST(EventSites, AGainWithALossBehindItIsOneReflection)
{
    const DrawnFibre fibre = fibreWith({{3000.0, 0.0, 0.3}}, 0.002);
    EventSites sites(*fibre, 100.0, 5900.0);
    Site gain;
    gain.at = 3000.0;
    gain.behind = 3005.0;
    sites.add({gain, siteAt(fibre, 3019.0)});
    sites.measure();
    ASSERT_LT(sites.sites()[0].loss_dB, 0.0);
    ASSERT_GT(sites.sites()[1].loss_dB, 0.0);
    sites.mergePairs();
    ASSERT_EQ(sites.sites().size(), 1U);
    EXPECT_NEAR(sites.sites().front().at, 3000.0, 0.5);
}

/// A reflection at 2000 whose tail hides the fibre up to 2400, and a change of level behind it.
DrawnFibre fibreBehindATail(double at, double loss_dB)
{
    otdr::SearchScale scale = scaleOf(kSitesPulse, 2000.0);
    scale.longestWindow = 200.0;
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    return {6000, scale,
            [=](double i) {
                const double tail = i > 2000.0 ? 3.0 * std::exp((2000.0 - i) / 40.0) : 0.0;
                return 40.0 - 0.0005 * i + eventLevel_dB(shape, i - 2000.0, 0.0, -0.2, 12.0)
                    + eventLevel_dB(shape, i - at, 0.0, -loss_dB) + tail;
            },
            0.002};
}

/// The reflection as it is measured, and with lines made longer.
std::pair<Site, Site> measuredAndLengthened(const DrawnFibre& fibre)
{
    EventSites sites(*fibre, 100.0, 5900.0);
    Site site = peakAt(fibre, 2000.0, 12.0);
    site.behind = 2400.0;
    sites.add({site});
    sites.measure();
    const Site measured = sites.sites().front();
    sites.lengthenLines();
    return {measured, sites.sites().front()};
}

/// Told 400 samples beyond itself, a line of 200 is worth little.
TEST(EventSites, ALineThatBeginsFarBehindItsEventIsLonger)
{
    const auto [measured, longer] = measuredAndLengthened(fibreBehindATail(5000.0, 0.0));
    ASSERT_EQ(measured.right->line.samples, 200U);
    EXPECT_NEAR(static_cast<double>(longer.right->line.samples), 4.0 * (longer.clear - 2000.0),
                1.0);
    EXPECT_EQ(longer.left->line.samples, measured.left->line.samples);
    EXPECT_LT(longer.error_dB, 0.25 * measured.error_dB);
    EXPECT_NEAR(longer.loss_dB, 0.2, 3.0 * longer.error_dB);
}

/// A loss of 0.01 dB is too small to be listed, and ten standard errors of a mean of 200 samples.
TEST(EventSites, ALineIsNoLongerThanTheFibreIsStraight)
{
    const auto [measured, longer] = measuredAndLengthened(fibreBehindATail(3300.0, 0.01));
    EXPECT_LE(longer.clear + static_cast<double>(longer.right->line.samples), 3300.0);
    EXPECT_GT(longer.right->line.samples, measured.right->line.samples);
    EXPECT_NEAR(longer.loss_dB, 0.2, 3.0 * longer.error_dB);
}

/// Where fibres of different attenuation meet, and nothing is lost.
TEST(EventSites, ALineIsNoLongerThanTheFibreFallsAlike)
{
    const DrawnFibre straight = fibreBehindATail(5000.0, 0.0);
    const double first = measuredAndLengthened(straight).first.clear + 200.0;
    const DrawnFibre bent(6000, straight->scale(), [&](double i) {
        const double steeper = i > first ? 0.0002 * (i - first) : 0.0;
        return straight->samples().level_dB(static_cast<std::size_t>(i)) - steeper;
    });
    const auto [measured, longer] = measuredAndLengthened(bent);
    ASSERT_EQ(measured.clear + 200.0, first);
    EXPECT_EQ(longer.right->line.samples, 200U);
}

/// Two lines that fall alike, one below the other.
TEST(EventSites, ALineIsNoLongerThanTheFibreKeepsItsLevel)
{
    const DrawnFibre straight = fibreBehindATail(5000.0, 0.0);
    const double first = measuredAndLengthened(straight).first.clear + 200.0;
    const DrawnFibre lower(6000, straight->scale(), [&](double i) {
        return straight->samples().level_dB(static_cast<std::size_t>(i)) - (i < first ? 0.0 : 0.01);
    });
    const auto [measured, longer] = measuredAndLengthened(lower);
    ASSERT_EQ(measured.clear + 200.0, first);
    EXPECT_EQ(longer.right->line.samples, 200U);
}

TEST(EventSites, ALineIsNoLongerThanTheWayToTheNextPlace)
{
    const DrawnFibre fibre = fibreBehindATail(3000.0, 0.3);
    EventSites sites(*fibre, 100.0, 5900.0);
    Site site = peakAt(fibre, 2000.0, 12.0);
    site.behind = 2400.0;
    sites.add({site, siteAt(fibre, 3000.0)});
    sites.measure();
    sites.lengthenLines();
    EXPECT_LE(sites.sites().front().clear
                  + static_cast<double>(sites.sites().front().right->line.samples),
              3000.0);
    EXPECT_EQ(sites.sites().back().right->line.samples, 200U);
}

} // namespace
