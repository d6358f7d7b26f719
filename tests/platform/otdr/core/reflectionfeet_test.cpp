#include "platform/otdr/core/reflectionfeet.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

using namespace testing_support;

constexpr double kPort = 100.0;
constexpr double kRecord = 12000.0;

/// Light behind the port by a formula, for 10,500 samples, in a record that is dark otherwise.
DrawnFibre litFrom100(const std::function<double(double behind)>& level_dB)
{
    return {static_cast<std::size_t>(kRecord), scaleOf(kPulse), [=](double i) {
                const bool isLit = i >= kPort && i < kPort + 10500.0;
                return isLit ? std::max(dark_dB(i), level_dB(i - kPort)) : dark_dB(i);
            }};
}

/// What rises by a height for a pulse, so far behind the port.
struct Bump
{
    double at;
    double height_dB;
};

/// A tail behind the port that falls by 0.1 dB within a pulse, with reflections on it.
double tailWith(const std::vector<Bump>& bumps, double behind)
{
    double level_dB = behind < kPulse ? 60.0 : 45.0 - 0.005 * behind;
    for (const Bump& bump : bumps) {
        level_dB += behind >= bump.at && behind < bump.at + kPulse ? bump.height_dB : 0.0;
    }
    return level_dB;
}

using Feet = std::vector<double>;

/// The feet of what reflects, counted from the port.
Feet feetIn(const std::function<double(double behind)>& level_dB)
{
    const DrawnFibre fibre = litFrom100(level_dB);
    Feet feet = otdr::reflectionFeet(*fibre, kPort + 2.0 * kPulse, kRecord, kSudden_dB);
    for (double& foot : feet) {
        foot -= kPort - 0.5;
    }
    return feet;
}

Feet feetOf(const std::vector<Bump>& bumps)
{
    return feetIn([=](double behind) { return tailWith(bumps, behind); });
}

TEST(ReflectionFeet, AreWhereTheTailRises)
{
    EXPECT_EQ(feetOf({{300.0, 5.0}}), Feet {300.0});
    EXPECT_EQ(feetOf({{300.0, 0.8}}), Feet {300.0});
    EXPECT_EQ(feetOf({{300.0, 0.45}}), Feet {});
    EXPECT_EQ(feetOf({}), Feet {});
    EXPECT_EQ(feetOf({{300.0, 5.0}, {470.0, 3.0}}), (Feet {300.0, 470.0}));
}

/// A receiver that comes back from a swing rises once, and by no more than a little.
TEST(ReflectionFeet, AreNotWhatRisesAndStaysUnlessItIsSudden)
{
    const auto comingBack = [](double rise_dB) {
        return feetIn([=](double behind) {
            return behind < 300.0 ? 40.0 : 30.0 + (behind < 340.0 ? 0.0 : rise_dB);
        });
    };
    EXPECT_EQ(comingBack(2.0), Feet {});
    EXPECT_EQ(comingBack(2.9), Feet {});
    EXPECT_EQ(comingBack(3.1), Feet {340.0});
}

/// Where it swings for less than half a pulse the light goes on as before, on a tail too, which
/// alone falls by more within two pulses than a reflection does.
TEST(ReflectionFeet, AreNotBehindAGapNarrowerThanThePulse)
{
    const auto behindGap = [](double samples, double rise_dB) {
        return feetIn([=](double behind) {
            const double tail_dB = behind < kPulse ? 60.0 : 50.0 - 0.05 * (behind - kPulse);
            const bool isGap = behind >= 300.0 && behind < 300.0 + samples;
            const bool isUp = behind >= 300.0 + samples && behind < 300.0 + samples + kPulse;
            return tail_dB - (isGap ? 5.0 : 0.0) + (isUp ? rise_dB : 0.0);
        });
    };
    EXPECT_EQ(behindGap(8.0, 0.0), Feet {});
    EXPECT_EQ(behindGap(12.0, 0.0), Feet {312.0}) << "light may be as dark as that";
    EXPECT_EQ(behindGap(8.0, 2.0), Feet {308.0}) << "it rises above what was before the gap";
}

/// Where a receiver swings back beyond where it would have been, it does so by no more than that.
TEST(ReflectionFeet, AreNotWhereASwingOvershoots)
{
    const auto overshooting = [](double rise_dB) {
        return feetIn([=](double behind) {
            const double tail_dB = behind < kPulse ? 60.0 : 45.0 - 0.005 * behind;
            const bool isGap = behind >= 300.0 && behind < 308.0;
            const bool isUp = behind >= 308.0 && behind < 308.0 + kPulse;
            return tail_dB - (isGap ? 5.0 : 0.0) + (isUp ? rise_dB : 0.0);
        });
    };
    EXPECT_EQ(overshooting(0.4), Feet {});
    EXPECT_EQ(overshooting(0.7), Feet {308.0});
}

TEST(ReflectionFeet, AreOfTwoWithANarrowGapBetween)
{
    EXPECT_EQ(feetOf({{300.0, 4.0}, {326.0, 4.3}}), (Feet {300.0, 326.0}));
}

TEST(ReflectionFeet, AreOfWhatRisesByLessThanASteepTailFell)
{
    EXPECT_EQ(feetIn([](double behind) {
                  const double tail_dB = behind < kPulse ? 60.0 : 60.0 - 0.15 * (behind - kPulse);
                  const bool isUp = behind >= 150.0 && behind < 150.0 + kPulse;
                  return tail_dB + (isUp ? 3.6 : 0.0);
              }),
              Feet {150.0});
}

/// It has come down before the receiver swings back for good.
TEST(ReflectionFeet, AreOfWhatFallsWithinTwoPulses)
{
    EXPECT_EQ(feetIn([](double behind) {
                  const bool isUp = behind >= 300.0 && (behind < 320.0 || behind >= 360.0);
                  return behind < kPulse ? 60.0 : (isUp ? 42.0 : 40.0);
              }),
              Feet {300.0});
}

/// Its top is that of the middle of its pulse: it takes a while to rise, and is seen from 0.2 dB
/// on.
TEST(ReflectionFeet, AreOfWhatRisesSlowlyToo)
{
    EXPECT_EQ(feetIn([](double behind) {
                  const double on = behind - 300.0;
                  const double rise_dB = on < 0.0 || on > 25.0 ? 0.0 : std::min(0.6, 0.1 * on);
                  return behind < kPulse ? 60.0 : 40.0 + rise_dB;
              }),
              Feet {302.0});
}

/// Noise of 2 dB: light must stand 2 dB above it, and rise by twenty times its power.
TEST(ReflectionFeet, AreNotInTheNoise)
{
    const auto inLightOf = [](double level_dB, double height_dB) {
        return feetIn([=](double behind) {
            const bool rises = behind >= 600.0 && behind < 600.0 + kPulse;
            return behind < 500.0 ? 40.0 : level_dB + (rises ? height_dB : 0.0);
        });
    };
    EXPECT_EQ(inLightOf(3.9, 10.0), Feet {});
    EXPECT_EQ(inLightOf(4.1, 10.0), Feet {600.0});
    EXPECT_EQ(inLightOf(5.0, 3.7), Feet {});
    EXPECT_EQ(inLightOf(5.0, 4.1), Feet {600.0});
}

/// For a third of a pulse that is noise.
TEST(ReflectionFeet, AreOfWhatLastsForAPulse)
{
    const auto lasting = [](double samples) {
        return feetIn([=](double behind) {
            const bool isUp = behind >= 300.0 && behind < 300.0 + samples;
            return behind < kPulse ? 60.0 : 40.0 + (isUp ? 2.0 : 0.0);
        });
    };
    EXPECT_EQ(lasting(7.0), Feet {});
    EXPECT_EQ(lasting(14.0), Feet {300.0});
}

/// It comes from where light gets to that went from one to another once more.
TEST(ReflectionFeet, AreOfNoEcho)
{
    EXPECT_EQ(feetOf({{300.0, 10.0}, {600.0, 4.0}}), Feet {300.0}) << "to the port and back";
    EXPECT_EQ(feetOf({{300.0, 10.0}, {638.0, 4.0}}), Feet {300.0}) << "within two pulses";
    EXPECT_EQ(feetOf({{300.0, 10.0}, {650.0, 4.0}}), (Feet {300.0, 650.0}));
    EXPECT_EQ(feetOf({{300.0, 10.0}, {500.0, 10.0}, {700.0, 4.0}}), (Feet {300.0, 500.0}))
        << "between the two";
    EXPECT_EQ(feetOf({{300.0, 10.0}, {500.0, 10.0}, {800.0, 4.0}}), (Feet {300.0, 500.0}))
        << "all the way of both";
    EXPECT_EQ(feetOf({{300.0, 10.0}, {500.0, 10.0}, {750.0, 4.0}}), (Feet {300.0, 500.0, 750.0}));
}

/// Nothing sends an echo towards the port, however bright it is.
TEST(ReflectionFeet, MayHaveBrighterOnesBehind)
{
    EXPECT_EQ(feetOf({{300.0, 10.0}, {400.0, 1.0}, {500.0, 4.0}, {600.0, 9.0}}),
              (Feet {300.0, 400.0, 500.0}));
}

TEST(ReflectionFeet, AreOfWhatIsBrighterThanAnEcho)
{
    EXPECT_EQ(feetOf({{300.0, 4.0}, {600.0, 10.0}}), (Feet {300.0, 600.0}));
    EXPECT_EQ(feetOf({{300.0, 4.0}, {500.0, 10.0}, {700.0, 12.0}}), (Feet {300.0, 500.0, 700.0}));
}

/// Only the brightest are asked for their echoes.
TEST(ReflectionFeet, AreOfNoEchoAmongHundreds)
{
    std::vector<Bump> bumps {{5000.0, 25.0}, {10000.0, 10.0}};
    for (int i = 0; i < 80; ++i) {
        bumps.push_back({100.0 + 60.0 * i, 1.0});
    }
    const auto level_dB = [&](double behind) { return tailWith(bumps, behind) + 0.003 * behind; };
    const Feet found = feetIn(level_dB);
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.back(), 5000.0);
}

} // namespace
