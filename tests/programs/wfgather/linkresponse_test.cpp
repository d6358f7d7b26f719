#include "platform/otdr/core/constants.h"
#include "programs/wfgather/linkresponse.h"
#include "tests/programs/wfgather/measured.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using namespace wfgather_test;
using gather::Fibre;
using gather::LinkResponse;
using gather::responseOf;
using gather::Spectrum;
using gather::TruthEvent;
using testing::DoubleNear;

double dB(double fraction)
{
    return 10.0 * std::log10(fraction);
}

double timeTo(double at_m)
{
    return at_m / otdr::metresPerNs(kIor);
}

std::vector<TruthEvent> ghostsOf(const Fibre& fibre)
{
    std::vector<TruthEvent> ghosts;
    for (const TruthEvent& event : gather::truthOf(fibre, 1550)) {
        if (event.ghost) {
            ghosts.push_back(event);
        }
    }
    return ghosts;
}

} // namespace

TEST(Spectrum, InterpolatesBetweenTwoWavelengthsAndTakesTheNearestBeyond)
{
    const Spectrum spectrum({{1310, 0.34}, {1550, 0.20}});
    EXPECT_DOUBLE_EQ(spectrum.at(1310), 0.34);
    EXPECT_DOUBLE_EQ(spectrum.at(1550), 0.20);
    EXPECT_NEAR(spectrum.at(1430), 0.27, 1e-12);
    EXPECT_DOUBLE_EQ(spectrum.at(850), 0.34);
    EXPECT_DOUBLE_EQ(spectrum.at(1650), 0.20);
    EXPECT_DOUBLE_EQ(Spectrum(1.5).at(1310), 1.5);
    EXPECT_TRUE(std::isnan(Spectrum().at(1310)));
    EXPECT_EQ(spectrum.lowest(), 0.20);
    EXPECT_TRUE(std::isnan(Spectrum().lowest()));
}

TEST(LinkResponse, BackscatterDecaysByTwiceTheAttenuation)
{
    const LinkResponse response = responseOf(uniformFibre(10000.0, 0.2), 1550);
    ASSERT_EQ(response.backscatter.size(), 1U);
    const auto& stretch = response.backscatter.front();
    EXPECT_NEAR(dB(stretch.power_perNs), -81.9, 1e-9);
    EXPECT_NEAR(dB(std::exp(-stretch.decay_perNs * timeTo(1000.0))), -0.4, 1e-9);
    EXPECT_NEAR(stretch.to_ns, timeTo(10000.0), 1e-6);
}

/// So dark that no power is left to count in.
TEST(LinkResponse, AFibreThatSwallowsAllLightAnswersWithNumbers)
{
    Fibre fibre = uniformFibre(25'210.0, 180.0);
    fibre.events = {connector(10.0, 1.0, -40.0), connector(24'000.0, 1.0, -40.0),
                    connector(25'000.0, 1.0, -40.0)};
    fibre.endReflectance_dB = Spectrum(-14.7);
    const LinkResponse response = responseOf(fibre, 1550);
    for (const auto& stretch : response.backscatter) {
        EXPECT_NEAR(stretch.decay_perNs * timeTo(1000.0), 2.0 * 180.0 * std::log(10.0) / 10.0,
                    1e-9);
    }
    for (const auto& reflection : response.reflections) {
        EXPECT_TRUE(std::isfinite(reflection.power)) << reflection.at_ns;
    }
    EXPECT_EQ(response.reflections[1].power, 0.0);
}

TEST(LinkResponse, AReflectorStandsBeforeTheLossOfItsEvent)
{
    const LinkResponse response = responseOf(fibreWith({connector(5000.0, 1.0, -40.0)}), 1550);
    ASSERT_EQ(response.reflections.size(), 1U);
    EXPECT_NEAR(dB(response.reflections[0].power), -40.0 - 2.0, 1e-9); // 5 km there and back
    EXPECT_NEAR(dB(response.backscatter[1].power_perNs), -81.9 - 2.0 - 2.0, 1e-9);
}

TEST(LinkResponse, AFibreWithoutAttenuationStaysAsStrong)
{
    const LinkResponse response = responseOf(uniformFibre(1000.0, 0.0), 1550);
    EXPECT_EQ(response.backscatter[0].decay_perNs, 0.0);
}

TEST(LinkResponse, EventsAtPortBorderAndEndAllCount)
{
    Fibre fibre = fibreWith(
        {connector(0.0, 0.5, -50.0), connector(4000.0, 0.5, -50.0), connector(9000.0, 0.0, -50.0)},
        4000.0);
    fibre.sections.push_back({5000.0, Spectrum(0.2), Spectrum(-80.0)});
    const LinkResponse response = responseOf(fibre, 1550);
    ASSERT_GE(response.reflections.size(), 3U);
    EXPECT_NEAR(dB(response.reflections[0].power), -50.0, 1e-9);
    EXPECT_NEAR(dB(response.reflections[1].power), -50.0 - 1.0 - 1.6, 1e-9);
    EXPECT_NEAR(dB(response.reflections[2].power), -50.0 - 2.0 - 3.6, 1e-9);
    ASSERT_EQ(response.backscatter.size(), 2U);
    EXPECT_NEAR(dB(response.backscatter[1].power_perNs), -80.0 - 2.0 - 1.6, 1e-9);
}

TEST(LinkResponse, TheEchoOfEndAndPortStandsAtTwiceTheLength)
{
    Fibre fibre = fibreWith({connector(0.0, 0.0, -40.0)}, 3000.0);
    fibre.endReflectance_dB = Spectrum(-14.7);
    const auto ghosts = ghostsOf(fibre);
    ASSERT_EQ(ghosts.size(), 1U);
    EXPECT_NEAR(ghosts[0].at_m, 6000.0, 1e-6);
    // Twice the end, once the port, twice there and back over 3 km of 0.2 dB/km.
    EXPECT_NEAR(ghosts[0].reflectance_dB, 2 * -14.7 - 40.0 - 2 * 1.2, 1e-9);
}

TEST(LinkResponse, TheLossOfTheNearReflectorCountsTwiceInItsEcho)
{
    // Light passes the loss of the connector once on its way in and once on its way out; the
    // reflection between is behind it.
    Fibre fibre = fibreWith({connector(1000.0, 0.7, -30.0)}, 2500.0);
    fibre.endReflectance_dB = Spectrum(-20.0);
    const auto ghosts = ghostsOf(fibre);
    ASSERT_EQ(ghosts.size(), 1U);
    EXPECT_NEAR(ghosts[0].at_m, 4000.0, 1e-6);
    const double paths = 2 * 0.7 + 2 * 2.5 * 0.2 + 2 * 1.5 * 0.2;
    EXPECT_NEAR(ghosts[0].reflectance_dB, 2 * -20.0 - 30.0 - paths, 1e-9);
}

TEST(LinkResponse, TwoFarReflectorsEchoBothWaysAtTheSameTime)
{
    Fibre fibre = fibreWith({connector(0.0, 0.0, -40.0), connector(1000.0, 0.0, -35.0)}, 2500.0);
    fibre.sections.front().attenuation_dBPerKm = Spectrum(0.0);
    fibre.endReflectance_dB = Spectrum(-20.0);
    const auto ghosts = ghostsOf(fibre);
    std::vector<double> places;
    double mixed_dB = 0.0;
    for (const TruthEvent& ghost : ghosts) {
        places.push_back(ghost.at_m);
        if (std::abs(ghost.at_m - 3500.0) < 1.0) {
            mixed_dB = ghost.reflectance_dB;
        }
    }
    EXPECT_THAT(places, testing::Pointwise(DoubleNear(1e-6), {2000.0, 3500.0, 4000.0, 5000.0}));
    EXPECT_NEAR(mixed_dB, -35.0 - 40.0 - 20.0 + dB(2.0), 1e-9);
}

TEST(LinkResponse, OfManyReflectorsTheStrongestMakeTheEchoes)
{
    std::vector<gather::FibreEvent> events;
    events.reserve(1000);
    for (int i = 0; i < 1000; ++i) {
        events.push_back(connector(5.0 * i, 0.0, i == 500 || i == 700 ? -20.0 : -60.0));
    }
    const auto ghosts = ghostsOf(fibreWith(events));
    EXPECT_LT(ghosts.size(), 10000U);
    const bool strongestFound = std::any_of(ghosts.begin(), ghosts.end(), [](const auto& ghost) {
        return std::abs(ghost.at_m - 4500.0) < 1e-6
            && std::abs(ghost.reflectance_dB - (-60.0 - 0.4 * 3.5 - 0.4 * 1.0)) < 1e-6;
    });
    EXPECT_TRUE(strongestFound);
}

TEST(Truth, TellsAGainerByTheChangeOfBackscatter)
{
    Fibre fibre = fibreWith({splice(4000.0, 0.05)}, 4000.0);
    fibre.sections.push_back({4000.0, Spectrum(0.2), Spectrum(-81.5)});
    fibre.sections.push_back({2000.0, Spectrum(0.2), Spectrum(-81.9)});
    const auto truth = gather::truthOf(fibre, 1550);
    ASSERT_EQ(truth.size(), 3U);
    EXPECT_NEAR(truth[0].loss_dB, 0.05, 1e-12);
    EXPECT_NEAR(truth[0].apparentLoss_dB, 0.05 - 0.2, 1e-9);
    EXPECT_EQ(truth[1].kind, "joint");
    EXPECT_NEAR(truth[1].at_m, 8000.0, 1e-9);
    EXPECT_NEAR(truth[1].apparentLoss_dB, 0.2, 1e-9);
    EXPECT_TRUE(truth[2].end);
    for (const auto& event : truth) {
        EXPECT_NEAR(event.time_ns, timeTo(event.at_m), 1e-6) << event.kind;
    }
    EXPECT_NEAR(truth[2].at_m, 10000.0, 1e-9);
}

TEST(Truth, FindsABorderWhoseSumIsNotExact)
{
    Fibre fibre = fibreWith({splice(0.3, 0.05)}, 0.1);
    fibre.sections.push_back({0.2, Spectrum(0.2), Spectrum(-81.9)});
    fibre.sections.push_back({0.5, Spectrum(0.2), Spectrum(-81.5)});
    ASSERT_NE(0.1 + 0.2, 0.3);
    const auto truth = gather::truthOf(fibre, 1550);
    ASSERT_EQ(truth.size(), 2U);
    EXPECT_NEAR(truth[0].apparentLoss_dB, 0.05 - 0.2, 1e-9);
}
