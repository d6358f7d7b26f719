#include "platform/otdr/core/shortfibre.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

namespace {

using namespace testing_support;

constexpr double kShortPulse = 20.0;

/// A record that is dark behind 3000.
DrawnFibre recordOf(const std::function<double(double)>& level_dB)
{
    return {4000, {kShortPulse, 0.08 * kShortPulse, 5000.0, 1000.0}, [=](double i) {
                return i < 3000.0 ? level_dB(i) : dark_dB(i);
            }};
}

TEST(ShortFibre, AChangeIsThatBeyondWhatFibreLoses)
{
    const DrawnFibre fibre =
        recordOf([](double i) { return 40.0 - 0.001 * i - (i < 1000.0 ? 0.0 : 4.0); });
    EXPECT_NEAR(changeAt_dB(*fibre, 500.0, -0.001), 0.0, 1e-3);
    EXPECT_NEAR(changeAt_dB(*fibre, 500.0, 0.0), 0.001 * 3.0 * kShortPulse, 1e-3);
    EXPECT_NEAR(changeAt_dB(*fibre, 980.0, -0.001), 4.0, 1e-3);
    EXPECT_NEAR(highest_dB(*fibre, 990.0, 1010.0), 39.01, 1e-3);
}

/// Behind a connector at 1000, so long a piece and then a loss.
bool isCord(double length, double fibre_dB, double slope_dB = 0.0)
{
    const DrawnFibre fibre = recordOf([=](double i) {
        const double behind = i - 1030.0;
        return i < 1000.0  ? 30.0
            : behind < 0.0 ? 45.0
                           : (behind < length ? fibre_dB - slope_dB * behind : 20.0);
    });
    return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).isPatchCord(1030.0, 30.0);
}

TEST(ShortFibre, APatchCordIsLevelUpToTheNextChange)
{
    EXPECT_TRUE(isCord(40.0, 29.5));
    EXPECT_TRUE(isCord(180.0, 29.5));
    EXPECT_FALSE(isCord(400.0, 29.5)) << "no change within ten pulses";
    EXPECT_TRUE(isCord(40.0, 29.5, 0.004));
    EXPECT_FALSE(isCord(40.0, 29.5, 0.02)) << "falls by 0.4 dB in a pulse";
}

/// With long pulses fibre itself loses half a decibel on the way that tells a change.
TEST(ShortFibre, WhatFibreLosesOnTheWayIsNoChange)
{
    const double pulse = 400.0;
    const auto isCordBefore = [=](double loss_dB) {
        const DrawnFibre fibre(20'000, {pulse, 0.08 * pulse, 20'000.0, 1000.0}, [=](double i) {
            return 35.0 - 0.0004 * i - (i < 6000.0 ? 0.0 : loss_dB);
        });
        const otdr::ShortFibre piece(*fibre, kSudden_dB, -0.0004);
        return piece.isPatchCord(5000.0, 35.0 - 0.0004 * 5000.0);
    };
    EXPECT_FALSE(isCordBefore(2.8));
    EXPECT_TRUE(isCordBefore(3.2));
}

TEST(ShortFibre, APatchCordStandsAsHighAsTheFibreBeforeButForALoss)
{
    EXPECT_TRUE(isCord(40.0, 30.2));
    EXPECT_FALSE(isCord(40.0, 30.4));
    EXPECT_TRUE(isCord(40.0, 27.1));
    EXPECT_FALSE(isCord(40.0, 26.9));
}

/// A reflection at 1000 whose flank is over at 1030, with a tail of so many decibels that fades
/// with this constant on a piece of fibre of 120 samples.
std::optional<double> cordIn(double tail_dB, double constant, double fibre_dB = 29.5)
{
    const DrawnFibre fibre = recordOf([=](double i) {
        const double behind = i - 1030.0;
        const double tail = tail_dB * std::exp(-std::max(0.0, behind) / constant);
        return i < 1000.0 ? 30.0 : i < 1030.0 ? 45.0 : behind < 120.0 ? fibre_dB + tail : 10.0;
    });
    return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).patchCordBehindTail(1030.0, 30.0);
}

TEST(ShortFibre, APatchCordMayBeginWithATail)
{
    const auto cord = cordIn(2.0, 8.0);
    ASSERT_TRUE(cord);
    EXPECT_GT(*cord, 1030.0 + 8.0 * std::log(2.0 / 0.1)) << "what is left of the tail is level";
    EXPECT_LT(*cord, 1030.0 + 4.0 * kShortPulse);
    EXPECT_FALSE(cordIn(2.0, 80.0)) << "falls all the way";
    EXPECT_FALSE(cordIn(2.0, 8.0, 26.0)) << "much weaker than the fibre before";
}

/// Nor is it where light rises: the top of an echo in the tail behind an end is level, too.
TEST(ShortFibre, NoPatchCordBeginsOnATopThatRises)
{
    const auto cordBehind = [](double top_dB) {
        const DrawnFibre fibre = recordOf([=](double i) {
            const double tail = 33.0 - 0.12 * (i - 1030.0);
            return i < 1000.0               ? 30.0
                : i < 1030.0                ? 45.0
                : i < 1064.0 || i >= 1086.0 ? tail
                                            : std::max(tail, top_dB);
        });
        return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).patchCordBehindTail(1030.0, 30.0);
    };
    EXPECT_FALSE(cordBehind(30.1));
}

/// Behind a splitter of 10 dB at 1000, which may reflect, so long a piece and then a reflection.
std::optional<double> dropIn(double length, double slope_dB, double height_dB = 0.0)
{
    const DrawnFibre fibre = recordOf([=](double i) {
        const double behind = i - 1000.0;
        const bool isEnd = behind >= length && behind < length + kShortPulse;
        return behind < 0.0 ? 30.0
            : behind < kShortPulse && height_dB > 0.0
            ? 30.0 + height_dB
            : (behind < length ? 20.0 - slope_dB * behind : (isEnd ? 35.0 : 1.0));
    });
    const double top = height_dB > 0.0 ? 1000.0 + kShortPulse : 985.0;
    return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).dropBehind(985.0, top, 30.0);
}

TEST(ShortFibre, ADropIsLevelUpToItsEnd)
{
    for (const double length : {45.0, 80.0, 150.0}) {
        const auto drop = dropIn(length, 0.0);
        ASSERT_TRUE(drop) << length;
        EXPECT_NEAR(*drop, 1000.0, kShortPulse) << length;
    }
    EXPECT_FALSE(dropIn(80.0, 0.03));
}

/// As bright as the fibre before, and in front of a reflection, it is that fibre.
TEST(ShortFibre, ADropInFrontOfAReflectionIsWeakerThanTheFibreBefore)
{
    const auto droppedBy = [](double loss_dB) {
        const DrawnFibre fibre = recordOf([=](double i) {
            return i < 1000.0 ? 30.0 : (i < 1100.0 ? 30.0 - loss_dB : (i < 1120.0 ? 45.0 : 1.0));
        });
        return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).dropBehind(985.0, 1099.0, 30.0);
    };
    EXPECT_TRUE(droppedBy(3.5));
    EXPECT_FALSE(droppedBy(1.0));
}

TEST(ShortFibre, BehindAHighPeakNoDropIsKnown)
{
    EXPECT_TRUE(dropIn(120.0, 0.0, 5.0));
    EXPECT_FALSE(dropIn(120.0, 0.0, 12.0));
}

TEST(ShortFibre, IsSeenWhereAnyLightIsLevel)
{
    const auto seenIn = [](double slope_dB) {
        const DrawnFibre fibre = recordOf([=](double i) { return 30.0 - slope_dB * i; });
        return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).isSeenBetween(10.0, 300.0);
    };
    EXPECT_TRUE(seenIn(0.0));
    EXPECT_TRUE(seenIn(0.004));
    EXPECT_FALSE(seenIn(0.03));
}

/// Level light from 80 on, which falls by 10 dB at 200.
TEST(ShortFibre, IsFirstSeenWhereItChangesInTime)
{
    const DrawnFibre fibre = recordOf(
        [](double i) { return i < 80.0 ? 30.0 + 0.1 * (80.0 - i) : (i < 200.0 ? 30.0 : 20.0); });
    const otdr::ShortFibre piece(*fibre, kSudden_dB, 0.0);
    const auto first = piece.firstBetween(10.0, 300.0, 31.0);
    ASSERT_TRUE(first);
    EXPECT_NEAR(*first, 80.0, 0.25 * kShortPulse);
    EXPECT_FALSE(piece.firstBetween(10.0, 150.0, 31.0)) << "the change comes later";
    EXPECT_FALSE(piece.firstBetween(10.0, 190.0, 29.0)) << "too bright";
}

TEST(ShortFibre, HasFallenWhereItHardlyFallsAnyMore)
{
    const DrawnFibre fibre = recordOf(
        [](double i) { return i < 1000.0 ? 45.0 : std::max(30.0, 45.0 - 0.5 * (i - 1000.0)); });
    const otdr::ShortFibre piece(*fibre, kSudden_dB, 0.0);
    EXPECT_NEAR(piece.fallenFrom(1000.0), 1030.0, kShortPulse);
    EXPECT_GE(piece.fallenFrom(1000.0), 1028.0);
    EXPECT_EQ(piece.shortest(), 10.0);
}

/// Three pulses behind the fall it has not come down yet: what is even there for half a pulse is so
/// by chance, in front of the darkness.
TEST(ShortFibre, ATailThatIsLevelForHalfAPulseIsNoDrop)
{
    const auto dropBehindTail = [](double tailSamples) {
        const DrawnFibre fibre = recordOf([=](double i) {
            const double behind = i - 1000.0;
            const double tail = 24.0 - 0.06 * std::min(behind, tailSamples);
            return behind < 0.0 ? 30.0 : behind < 90.0 ? tail : dark_dB(i);
        });
        return otdr::ShortFibre(*fibre, kSudden_dB, 0.0).dropBehind(990.0, 990.0, 30.0);
    };
    EXPECT_TRUE(dropBehindTail(50.0)) << "it has come down";
    EXPECT_FALSE(dropBehindTail(66.0));
}

} // namespace
