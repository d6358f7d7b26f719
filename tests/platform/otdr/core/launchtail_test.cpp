#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/launchtail.h"
#include "platform/otdr/core/pulseshape.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using namespace testing_support;

/// Light from index 0 on; the record is dark behind 3000.
DrawnFibre launchOf(const std::function<double(double)>& level_dB)
{
    return {4000, scaleOf(kPulse),
            [=](double i) { return i < 3000.0 ? std::max(dark_dB(i), level_dB(i)) : dark_dB(i); }};
}

/// A reflection of the port for a pulse, fibre of 30 dB up to an index, and a tail behind it.
std::function<double(double)> endingAt(double end, double height_dB)
{
    return [=](double i) {
        const double tail_dB = 15.0 - 0.05 * (i - end);
        return i < kPulse ? 30.0 + height_dB : (i < end ? 30.0 : tail_dB);
    };
}

TEST(LaunchTail, IsOverWhereLightIsLevelThatChangesSuddenly)
{
    for (const double height_dB : {1.5, 5.0, 15.0}) {
        const DrawnFibre fibre = launchOf(endingAt(80.0, height_dB));
        const double over = otdr::LaunchTail(*fibre, kSudden_dB).over();
        EXPECT_GE(over, kPulse) << height_dB;
        EXPECT_LE(over, 50.0) << height_dB;
    }
}

/// Level light that goes on is fibre with the last of the tail on it, which lines must not bear.
TEST(LaunchTail, IsOverWhereItHasSettledIfTheFibreGoesOn)
{
    const DrawnFibre fibre = launchOf(
        [](double i) { return i < kPulse ? 45.0 : 30.0 + 1.0 * std::exp(-(i - kPulse) / 100.0); });
    EXPECT_GT(otdr::LaunchTail(*fibre, kSudden_dB).over(), 150.0);
}

bool reachesIn(const std::function<double(double)>& level_dB, double foot, double to)
{
    const DrawnFibre fibre = launchOf(level_dB);
    return otdr::LaunchTail(*fibre, kSudden_dB).reaches(foot, to);
}

TEST(LaunchTail, ReachesAsFarAsNothingIsLevel)
{
    const auto tail = [](double i) { return i < kPulse ? 45.0 : 41.0 - 0.05 * (i - kPulse); };
    EXPECT_TRUE(reachesIn(tail, 0.0, 300.0));
    EXPECT_FALSE(reachesIn(endingAt(80.0, 5.0), 0.0, 80.0));
    EXPECT_FALSE(reachesIn(endingAt(80.0, 1.1), 0.0, 80.0)) << "below the top by enough";
}

/// Light as high as the top, but for a decibel, is held there: for six pulses at most.
TEST(LaunchTail, WhatHoldsTheReceiverAtItsTopIsNotFibre)
{
    const auto heldFor = [](double held, double sag_dB) {
        return reachesIn(
            [=](double i) {
                return i < kPulse ? 45.0 : i < held ? 45.0 - sag_dB : 40.0 - 0.05 * (i - held);
            },
            0.0, 400.0);
    };
    EXPECT_TRUE(heldFor(100.0, 0.0));
    EXPECT_TRUE(heldFor(100.0, 0.9));
    EXPECT_FALSE(heldFor(100.0, 1.1));
    EXPECT_FALSE(heldFor(140.0, 0.0));
}

/// Behind the port a pulse and a half show nothing; behind another reflection that is its end.
TEST(LaunchTail, OfThePortTooLittleToTellIsFibre)
{
    const auto tail = [](double i) {
        const double first_dB = i < kPulse ? 45.0 : 41.0 - 0.05 * (i - kPulse);
        return i >= 200.0 && i < 200.0 + kPulse ? 45.0 : first_dB;
    };
    EXPECT_FALSE(reachesIn(tail, 0.0, 49.0));
    EXPECT_TRUE(reachesIn(tail, 0.0, 51.0));
    EXPECT_TRUE(reachesIn(tail, 199.5, 225.0));
}

/// What is outshone further on was not the receiver's top.
TEST(LaunchTail, ALowPortInFrontOfABrightReflectionIsNotHeld)
{
    const auto low = [](double i) {
        const double tail_dB = i < 90.0 ? 45.0 : 28.0 - 0.1 * (i - 90.0);
        return i < kPulse ? 30.5 : (i < 70.0 ? 30.0 : tail_dB);
    };
    EXPECT_FALSE(reachesIn(low, 0.0, 250.0));
}

/// A patch cord behind a port that hardly reflects: all its light is as high as its top. It ends as
/// suddenly as the pulse lets fibre end, and is not as even as a receiver that is held.
TEST(LaunchTail, IsOverInAShortFibreBehindAPortThatDoesNotReflect)
{
    const otdr::PulseShape shape(kPulse, 1.6);
    const auto overOf = [](const std::function<double(double)>& level_dB) {
        const DrawnFibre fibre(4000, scaleOf(kPulse),
                               [&](double i) { return std::max(dark_dB(i), level_dB(i)); });
        return otdr::LaunchTail(*fibre, kSudden_dB).over();
    };
    for (const double end : {50.0, 70.0, 90.0}) {
        const auto lit_dB = [&](double i) {
            return otdr::levelOfRatio_dB(shape.step(i) - shape.step(i - end) + 1e-9);
        };
        const auto cord_dB = [&](double i) { return 40.0 - 0.0005 * i + lit_dB(i); };
        EXPECT_LT(overOf(cord_dB), end - 0.5 * kPulse) << end;
        const auto held_dB = [&](double i) { return 40.0 + lit_dB(i); };
        EXPECT_GE(overOf(held_dB), end) << end;
        const auto recovering_dB = [&](double i) {
            return std::min(cord_dB(i), 40.0 - 0.1 * std::max(0.0, i - 0.5 * end));
        };
        EXPECT_GE(overOf(recovering_dB), 0.5 * end + 30.0) << end; // 3 dB below its top
    }
}

/// Fibre of 3000 samples behind a port of some height, with a loss on it; the receiver shows so
/// much of all light later, with this time constant.
DrawnFibre withLossBehindPort(double height_dB, double loss_dB, double lossAt, double latePart,
                              double lateSamples)
{
    const otdr::PulseShape shape(kPulse, 1.6);
    return {4000, scaleOf(kPulse),
            [=](double i) {
                const double fibre = shape.step(i) - shape.step(i - 3000.0)
                    - (1.0 - otdr::powerRatio(-loss_dB)) * (shape.step(i - lossAt));
                const double port = otdr::powerRatio(height_dB) - 1.0;
                const double late = latePart * std::exp(-(i - kPulse) / lateSamples);
                const double light = port * (shape.peak(i) + (i > kPulse ? late : 0.0));
                const double level_dB =
                    40.0 - 0.0005 * i + otdr::levelOfRatio_dB(std::max(fibre, 0.0) + light + 1e-9);
                return std::max(dark_dB(i), level_dB);
            },
            0.003};
}

/// The splice of a pigtail: what stands above the fibre behind it is no tail.
TEST(LaunchTail, IsOverInFrontOfALossCloseBehindThePort)
{
    for (const double height_dB : {0.0, 3.0, 8.0}) {
        for (const double pulses : {3.5, 4.0, 5.0}) {
            const double lossAt = pulses * kPulse;
            const DrawnFibre fibre = withLossBehindPort(height_dB, 0.2, lossAt, 0.0, 1.0);
            EXPECT_LT(otdr::LaunchTail(*fibre, kSudden_dB).over(), lossAt - 0.5 * kPulse)
                << height_dB << " " << pulses;
        }
    }
}

TEST(LaunchTail, IsNotOverInATailOfSomePulses)
{
    for (const double lateSamples : {10.0, 40.0}) {
        const DrawnFibre fibre = withLossBehindPort(8.0, 0.0, 2000.0, 0.05, lateSamples);
        const double late = 0.05 * (otdr::powerRatio(8.0) - 1.0);
        // The tail is a tenth of a decibel high where late e^(-t / T) is 0.047.
        EXPECT_GT(otdr::LaunchTail(*fibre, kSudden_dB).over(),
                  kPulse + lateSamples * std::log(late / 0.047))
            << lateSamples;
    }
}

} // namespace
