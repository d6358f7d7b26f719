#include "platform/otdr/core/echoes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

using otdr::DetectedEvent;
using Kind = DetectedEvent::Kind;

constexpr double kEchoesPulse = 20.0;

/// A reflection on fibre that loses nothing, so that echoes are as strong as their reflectors make
/// them.
DetectedEvent reflector(double index, double reflectance_dB, double loss_dB = 0.0)
{
    DetectedEvent event;
    event.kind = Kind::Reflective;
    event.index = index;
    event.reflectance_dB = reflectance_dB;
    event.loss_dB = loss_dB;
    event.lossError_dB = 0.001;
    event.before.level_dB = 30.0;
    event.before.samples = 100;
    return event;
}

bool isLastAnEcho(std::vector<DetectedEvent> events, double port = 0.0)
{
    otdr::markEchoes(events, kEchoesPulse, port);
    for (std::size_t i = 0; i + 1 < events.size(); ++i) {
        EXPECT_FALSE(events[i].echo) << i;
    }
    return events.back().echo;
}

TEST(Echoes, StandAsFarBehindAReflectorAsTheyLieBehindThePort)
{
    EXPECT_TRUE(isLastAnEcho({reflector(3000, -40.0), reflector(6000, -112.0)}));
    EXPECT_TRUE(isLastAnEcho({reflector(3000, -40.0), reflector(5500, -112.0)}, 500.0));
    EXPECT_FALSE(isLastAnEcho({reflector(3000, -40.0), reflector(6000, -112.0)}, 500.0));
}

/// Half a pulse, and the fiftieth part of a thousandth of the distance: 10.12 samples here.
TEST(Echoes, PlacesAgreeWithinHalfAPulse)
{
    for (const double sign : {-1.0, 1.0}) {
        EXPECT_TRUE(isLastAnEcho({reflector(3000, -40.0), reflector(6000 + sign * 10.0, -112.0)}));
        EXPECT_FALSE(isLastAnEcho({reflector(3000, -40.0), reflector(6000 + sign * 10.3, -112.0)}));
    }
    // At 500,000 samples the distance gives 10 more.
    EXPECT_TRUE(isLastAnEcho({reflector(250'000, -40.0), reflector(500'019, -112.0)}));
    EXPECT_FALSE(isLastAnEcho({reflector(250'000, -40.0), reflector(500'021, -112.0)}));
}

TEST(Echoes, ComeFromTwoReflectorsToo)
{
    // Twice at 3300 and once at 2000: 1300 behind the further.
    EXPECT_TRUE(
        isLastAnEcho({reflector(2000, -40.0), reflector(3300, -45.0), reflector(4600, -130.0)}));
    EXPECT_FALSE(
        isLastAnEcho({reflector(2000, -40.0), reflector(3300, -45.0), reflector(4630, -130.0)}));
}

/// To 3400, back to 2000, on to 4100, home: 1400 behind 4100.
TEST(Echoes, ComeFromThreeReflectorsToo)
{
    const std::vector<DetectedEvent> mirrors = {reflector(2000, -40.0), reflector(3400, -45.0),
                                                reflector(4100, -50.0)};
    const auto isEcho = [&](double index, double reflectance_dB) {
        std::vector<DetectedEvent> events = mirrors;
        events.push_back(reflector(index, reflectance_dB));
        return isLastAnEcho(events);
    };
    EXPECT_TRUE(isEcho(5500, -131.0)); // all three and 4 dB
    EXPECT_FALSE(isEcho(5500, -130.9));
    EXPECT_FALSE(isEcho(5520, -131.0));
}

/// What overloads the receiver reflects more than is seen: as much as glass in air, it may be.
TEST(Echoes, OfAnOverloadMayBeAsStrongAsThoseOfGlassInAir)
{
    DetectedEvent bright = reflector(3000, -30.0);
    EXPECT_FALSE(isLastAnEcho({bright, reflector(6000, -54.1)}));
    bright.hidden_dB = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(isLastAnEcho({bright, reflector(6000, -54.1)})); // -30 - 14 - 14 + 4
    EXPECT_FALSE(isLastAnEcho({bright, reflector(6000, -53.9)}));
    bright.hidden_dB = 4.0; // seen on the way there and back
    EXPECT_TRUE(isLastAnEcho({bright, reflector(6000, -70.1)})); // -30 - 22 - 22 + 4
    EXPECT_FALSE(isLastAnEcho({bright, reflector(6000, -69.9)}));
    bright.hidden_dB = 10.0;
    EXPECT_FALSE(isLastAnEcho({bright, reflector(6000, -53.9)}));
}

/// Of more reflections than any link has, the strongest are taken. No two of these stand together
/// where the last one is.
TEST(Echoes, AreSoughtOfTheStrongest)
{
    const auto isEchoAmong = [](int others, double index, double reflectance_dB) {
        std::vector<DetectedEvent> events = {reflector(149'000, -61.0), reflector(150'000, -20.0)};
        for (int i = 0; i < others; ++i) {
            events.push_back(reflector(100'000 + 397 * i, -60.0));
        }
        std::sort(events.begin(), events.end(),
                  [](const DetectedEvent& a, const DetectedEvent& b) { return a.index < b.index; });
        events.push_back(reflector(index, reflectance_dB));
        return isLastAnEcho(events);
    };
    EXPECT_TRUE(isEchoAmong(5, 300'000, -66.0));
    EXPECT_TRUE(isEchoAmong(200, 300'000, -66.0));
    EXPECT_TRUE(isEchoAmong(5, 298'000, -148.0));
    EXPECT_FALSE(isEchoAmong(200, 298'000, -148.0));
}

/// Twice the further reflector, once the nearer, and 4 dB for what is not known of them: the port
/// reflects -30 dB.
TEST(Echoes, AreNotStrongerThanTheirPathAllows)
{
    EXPECT_TRUE(isLastAnEcho({reflector(3000, -40.0), reflector(6000, -106.0)}));
    EXPECT_FALSE(isLastAnEcho({reflector(3000, -40.0), reflector(6000, -105.9)}));
    EXPECT_TRUE(
        isLastAnEcho({reflector(2000, -40.0), reflector(3300, -45.0), reflector(4600, -126.0)}));
    EXPECT_FALSE(
        isLastAnEcho({reflector(2000, -40.0), reflector(3300, -45.0), reflector(4600, -125.9)}));
}

/// An echo has not lost what the fibre loses between the reflector and its place: seen as a
/// reflection there it seems the stronger by that, twice.
TEST(Echoes, SeemStrongerByTheFibreThatTheyDidNotPass)
{
    DetectedEvent echo = reflector(6000, -96.0);
    echo.before.level_dB = 25.0;
    EXPECT_TRUE(isLastAnEcho({reflector(3000, -40.0), echo}));
    echo.reflectance_dB = -95.9;
    EXPECT_FALSE(isLastAnEcho({reflector(3000, -40.0), echo}));
}

/// Between two reflectors light passes the fibre twice more than the direct way.
TEST(Echoes, LoseWhatTheFibreBetweenTheirReflectorsLoses)
{
    DetectedEvent further = reflector(3300, -45.0);
    further.before.level_dB = 29.0;
    DetectedEvent echo = reflector(4600, -128.0);
    echo.before.level_dB = 29.0;
    EXPECT_TRUE(isLastAnEcho({reflector(2000, -40.0), further, echo}));
    echo.reflectance_dB = -127.9;
    EXPECT_FALSE(isLastAnEcho({reflector(2000, -40.0), further, echo}));
}

TEST(Echoes, LoseNothing)
{
    const DetectedEvent mirror = reflector(3000, -40.0);
    EXPECT_TRUE(isLastAnEcho({mirror, reflector(6000, -112.0, 0.019)}));
    EXPECT_TRUE(isLastAnEcho({mirror, reflector(6000, -112.0, -0.019)}));
    EXPECT_FALSE(isLastAnEcho({mirror, reflector(6000, -112.0, 0.02)}));
    EXPECT_FALSE(isLastAnEcho({mirror, reflector(6000, -112.0, -0.02)}));
    // Three standard errors may be chance.
    DetectedEvent vague = reflector(6000, -112.0, 0.029);
    vague.lossError_dB = 0.01;
    EXPECT_TRUE(isLastAnEcho({mirror, vague}));
    vague.loss_dB = 0.031;
    EXPECT_FALSE(isLastAnEcho({mirror, vague}));
    vague.loss_dB = DetectedEvent::kUnknown;
    EXPECT_TRUE(isLastAnEcho({mirror, vague}));
}

TEST(Echoes, AreReflections)
{
    DetectedEvent loss = reflector(6000, -112.0);
    loss.kind = Kind::NonReflective;
    EXPECT_FALSE(isLastAnEcho({reflector(3000, -40.0), loss}));
}

TEST(Echoes, WantAReflectorWhoseStrengthIsKnown)
{
    EXPECT_FALSE(isLastAnEcho({reflector(3000, DetectedEvent::kUnknown), reflector(6000, -112.0)}));
}

/// What stands at the port is the port.
TEST(Echoes, HaveNoReflectorWithinAPulseOfThePort)
{
    EXPECT_FALSE(isLastAnEcho({reflector(20, -40.0), reflector(40, -112.0)}));
    EXPECT_TRUE(isLastAnEcho({reflector(21, -40.0), reflector(42, -112.0)}));
}

/// An echo reflects nothing itself.
TEST(Echoes, HaveNoEchoesOfTheirOwn)
{
    std::vector<DetectedEvent> events = {reflector(3000, -40.0), reflector(6000, -106.0),
                                         reflector(12000, -240.0)};
    otdr::markEchoes(events, kEchoesPulse, 0.0);
    EXPECT_TRUE(events[1].echo);
    EXPECT_FALSE(events[2].echo);
}

/// A reflection in the dead zone of the port has fibre behind it alone.
TEST(Echoes, OfAReflectorWithoutFibreInFrontAreTakenByThatBehindIt)
{
    DetectedEvent cord = reflector(40, -40.0);
    cord.before = {};
    cord.behind = reflector(40, -40.0).before;
    const DetectedEvent connector = reflector(3000, -45.0);
    // As far behind the connector as that lies behind the cord, by -45 - 40 - 45 and 4 dB.
    EXPECT_TRUE(isLastAnEcho({cord, connector, reflector(5960, -126.0)}));
    EXPECT_FALSE(isLastAnEcho({cord, connector, reflector(5960, -125.9)}));
}

TEST(Echoes, OfReflectorsWithoutFibreBesideThemAreAsStrongAsTheseMakeThem)
{
    DetectedEvent bare = reflector(3000, -45.0);
    bare.before = {};
    EXPECT_TRUE(isLastAnEcho({bare, reflector(6000, -116.0)}));
    EXPECT_FALSE(isLastAnEcho({bare, reflector(6000, -115.9)}));
}

} // namespace
