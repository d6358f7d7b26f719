#include "platform/otdr/core/lightbehind.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using namespace testing_support;

constexpr double kFallAt = 1000.0; ///< fibre at 40 dB before it
constexpr double kSeenAhead = 5.0 * kPulse; ///< an end is seen from so far

DrawnFibre recordOf(const std::function<double(double behind)>& behind_dB)
{
    const auto level_dB = [=](double i) { return i < kFallAt ? 40.0 : behind_dB(i - kFallAt); };
    return {6000, scaleOf(kPulse), level_dB};
}

/// How far behind kFallAt a peak is over that is so high for so long, and then comes down.
double overBehind(double height_dB, double length)
{
    const DrawnFibre fibre =
        recordOf([=](double behind) { return behind < length ? 40.0 + height_dB : 35.0; });
    return otdr::LightBehind(*fibre, kSudden_dB).peakOver(kFallAt) - kFallAt;
}

TEST(LightBehind, APeakIsOverBehindItsLastBrightSample)
{
    EXPECT_EQ(overBehind(10.0, kPulse), kPulse - 1.0);
    EXPECT_EQ(overBehind(10.0, 10.0 * kPulse), 10.0 * kPulse - 1.0);
    EXPECT_EQ(overBehind(10.0, 14.0 * kPulse), 12.0 * kPulse - 1.0) << "no receiver is so slow";
    EXPECT_EQ(overBehind(2.9, kPulse), 0.0) << "nothing rises";
}

TEST(LightBehind, APeakIsOverInFrontOfTheNext)
{
    const DrawnFibre fibre = recordOf([](double behind) {
        return behind < kPulse || (behind > 3.0 * kPulse && behind < 4.0 * kPulse) ? 50.0 : 35.0;
    });
    EXPECT_EQ(otdr::LightBehind(*fibre, kSudden_dB).peakOver(kFallAt), kFallAt + kPulse - 1.0);
}

/// How far behind kFallAt a tail is over that starts so high above the fibre before, falls by so
/// much with every pulse, and holds an echo of a height half-way.
double tailOver(double above_dB, double fall_dB, double echo_dB = 0.0)
{
    const DrawnFibre fibre = recordOf([=](double behind) {
        const double pulses = behind / kPulse;
        const double middle = 0.5 * (above_dB - kSudden_dB) / fall_dB;
        const double echo = pulses > middle && pulses < middle + 1.0 ? echo_dB : 0.0;
        return std::max(dark_dB(behind), 40.0 + above_dB - fall_dB * pulses + echo);
    });
    return otdr::LightBehind(*fibre, kSudden_dB).tailOver(kFallAt, kFallAt, 6000.0) - kFallAt;
}

TEST(LightBehind, ATailIsOverWhereItIsAsLowAsALossBelowAPeak)
{
    EXPECT_NEAR(tailOver(8.0, 0.5), 10.0 * kPulse, 1.5 * kPulse);
    EXPECT_NEAR(tailOver(5.0, 0.1), 20.0 * kPulse, 1.5 * kPulse);
    EXPECT_EQ(tailOver(2.9, 0.1), 0.0) << "it is already";
    EXPECT_EQ(tailOver(5.0, 4.0), 0.0) << "the flank of a peak";
    EXPECT_EQ(tailOver(8.0, 0.5, 2.0), 0.0) << "something else stands there";
    EXPECT_EQ(tailOver(8.0, 0.0), 0.0) << "light that stays";
}

TEST(LightBehind, ATailDoesNotEndSuddenly)
{
    const DrawnFibre fibre =
        recordOf([](double behind) { return behind < 600.0 ? 48.0 - 0.002 * behind : 41.0; });
    EXPECT_EQ(otdr::LightBehind(*fibre, kSudden_dB).tailOver(kFallAt, kFallAt, 6000.0), kFallAt);
}

/// Where light ends suddenly behind a fall at kFallAt, counted from there; -1 where it does not.
double endsBehind(const std::function<double(double behind)>& behind_dB)
{
    const DrawnFibre fibre = recordOf(behind_dB);
    const auto end = otdr::LightBehind(*fibre, kSudden_dB).endsSuddenly(kFallAt, kFallAt, 5000.0);
    return end ? *end - kFallAt : -1.0;
}

/// Of light that ends at 600, with a reflection of a height for a pulse.
std::function<double(double)> endingAt600(double level_dB, double slope_dB, double height_dB)
{
    return [=](double behind) {
        const double light = level_dB - slope_dB * behind;
        const double end = behind < 600.0 + kPulse ? light + height_dB : dark_dB(behind);
        return behind < 600.0 ? light : end;
    };
}

TEST(LightBehind, EndsWhereEvenLightFallsIntoDarkness)
{
    EXPECT_NEAR(endsBehind(endingAt600(30.0, 0.0002, 0.0)), 600.0, kSeenAhead);
    EXPECT_NEAR(endsBehind(endingAt600(30.0, 0.0002, 15.0)), 600.0, kSeenAhead);
    EXPECT_NEAR(endsBehind(endingAt600(7.0, 0.0, 5.0)), 600.0, kSeenAhead);
}

/// The higher a reflection overloads the receiver, the later is it down.
TEST(LightBehind, EndsBehindAPeakHoweverLongItComesDown)
{
    const auto peakThen = [](double fall_dB, double light_dB) {
        return [=](double b) {
            const double flank_dB = 50.0 - fall_dB * (b - 600.0) / kPulse;
            return b < 600.0 ? 30.0 : std::max(light_dB, flank_dB);
        };
    };
    for (const double fall_dB : {1.2, 1.5, 2.0, 4.0}) {
        EXPECT_NEAR(endsBehind(peakThen(fall_dB, 1.0)), 600.0, kSeenAhead) << fall_dB;
        EXPECT_EQ(endsBehind(peakThen(fall_dB, 30.0)), -1.0) << fall_dB << ", the light goes on";
    }
    const auto toTheEnd = [](double b) { return b < 4850.0 ? 30.0 : 50.0 - 0.1 * (b - 4850.0); };
    EXPECT_EQ(endsBehind(toTheEnd), -1.0) << "hardly any of the record follows";
}

TEST(LightBehind, DoesNotEndWhereItFades)
{
    for (const double fall_dB : {0.05, 0.1, 0.5, 2.0, 8.0}) {
        for (const double echo_dB : {0.0, 5.0, 15.0}) {
            const auto fading = [=](double behind) {
                const bool isEcho = behind > 300.0 && behind < 300.0 + kPulse;
                return std::max(dark_dB(behind), 36.0 - fall_dB * behind / kPulse)
                    + (isEcho ? echo_dB : 0.0);
            };
            EXPECT_EQ(endsBehind(fading), -1.0) << fall_dB << ' ' << echo_dB;
        }
    }
    const auto slowing = [](double b) { return 34.0 - 5.0 * std::log10(1.0 + b / kPulse); };
    EXPECT_EQ(endsBehind(slowing), -1.0) << "up to the end of what is looked at";
}

TEST(LightBehind, DoesNotEndWhereItFallsTooSteeplyToBeEven)
{
    EXPECT_GT(endsBehind(endingAt600(30.0, 0.4 / (5.0 * kPulse), 0.0)), 0.0);
    EXPECT_EQ(endsBehind(endingAt600(30.0, 0.6 / (4.0 * kPulse), 0.0)), -1.0);
}

/// The receiver has less than before to recover from behind an echo, and shows less.
TEST(LightBehind, DoesNotEndAtTheEchoOfTheFall)
{
    const auto endingAt = [](double index) {
        return [=](double b) {
            const double level_dB = b < index ? 30.0 : 45.0;
            return b < index + kPulse ? level_dB : 26.0;
        };
    };
    EXPECT_EQ(endsBehind(endingAt(kFallAt)), -1.0) << "as far behind as the port is in front";
    EXPECT_NEAR(endsBehind(endingAt(kFallAt - 10.0 * kPulse)), kFallAt - 10.0 * kPulse, kSeenAhead);
    EXPECT_NEAR(endsBehind(endingAt(kFallAt + 10.0 * kPulse)), kFallAt + 10.0 * kPulse, kSeenAhead);
}

TEST(LightBehind, DoesNotEndWhereItIsHardlyBrighterThanNoise)
{
    EXPECT_EQ(endsBehind(endingAt600(3.2, 0.0, 8.0)), -1.0);
}

TEST(LightBehind, DoesNotEndWhereAsMuchOfItFollows)
{
    const auto leaving = [](double lost_dB) {
        return [=](double b) {
            const double left_dB = b < 4500.0 ? 30.0 - lost_dB : dark_dB(b);
            return b < 600.0 ? 30.0 : left_dB;
        };
    };
    EXPECT_EQ(endsBehind(leaving(2.8)), -1.0);
    EXPECT_NEAR(endsBehind(leaving(3.2)), 600.0, 2.0 * kPulse);
}

} // namespace
