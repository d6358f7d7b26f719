#include "platform/otdr/core/tailfit.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace {

using namespace testing_support;
using otdr::TailFit;
using otdr::UsualSlope;

constexpr double kTailFrom = 100.0;
constexpr double kFitNoise_dB = 0.005;
constexpr double kFitSlope_dB = -0.0005;
constexpr UsualSlope kKnownSlope {kFitSlope_dB, 0.00005};
constexpr UsualSlope kNoSlope {};

double fibreLevel_dB(double index)
{
    return 30.0 + kFitSlope_dB * index;
}

/// Light that stands on fibre, so bright at index 100 as a part of the fibre there, and fades with
/// a time constant in pulses.
double withTail_dB(double fibre_dB, double index, double part, double pulses)
{
    const double tail = part * std::pow(10.0, fibreLevel_dB(kTailFrom) / 5.0)
        * std::exp(-(index - kTailFrom) / (pulses * kPulse));
    return 5.0 * std::log10(std::pow(10.0, fibre_dB / 5.0) + tail);
}

DrawnFibre fibreDrawn(const std::function<double(double index)>& level_dB, std::uint64_t seed = 1)
{
    return {3000, scaleOf(kPulse), level_dB, kFitNoise_dB, seed};
}

DrawnFibre tailOf(double part, double pulses, std::uint64_t seed = 1)
{
    return fibreDrawn([=](double i) { return withTail_dB(fibreLevel_dB(i), i, part, pulses); },
                      seed);
}

TEST(TailFit, TellsTheFibreUnderATail)
{
    for (const double pulses : {1.0, 4.0, 15.0}) {
        const DrawnFibre fibre = tailOf(0.3, pulses);
        const TailFit fit(*fibre, {{{kTailFrom, 2000.0}}}, kNoSlope);
        ASSERT_TRUE(fit.isPlain()) << pulses;
        const auto line = fit.fibre(0);
        ASSERT_TRUE(line) << pulses;
        EXPECT_NEAR(line->at(kTailFrom), fibreLevel_dB(kTailFrom),
                    4.0 * line->errorAt_dB(kTailFrom))
            << pulses;
        EXPECT_NEAR(line->line.slope_dB, kFitSlope_dB, 4.0 * line->slopeError_dB) << pulses;
        EXPECT_LT(line->errorAt_dB(kTailFrom), 0.015) << pulses;
    }
}

/// What is told of the fibre is off by as much as its standard errors say.
TEST(TailFit, KnowsItsErrors)
{
    double squares = 0.0;
    double slopeSquares = 0.0;
    constexpr int kTraces = 100;
    for (int seed = 1; seed <= kTraces; ++seed) {
        const DrawnFibre fibre = tailOf(0.3, 4.0, static_cast<std::uint64_t>(seed));
        const auto line = TailFit(*fibre, {{{kTailFrom, 2000.0}}}, kNoSlope).fibre(0);
        ASSERT_TRUE(line);
        squares += std::pow(
            (line->at(kTailFrom) - fibreLevel_dB(kTailFrom)) / line->errorAt_dB(kTailFrom), 2);
        slopeSquares += std::pow((line->line.slope_dB - kFitSlope_dB) / line->slopeError_dB, 2);
    }
    // Of 100 traces to 7 %; what is left of neighbours may seem alike by chance.
    EXPECT_NEAR(std::sqrt(squares / kTraces), 0.9, 0.25);
    EXPECT_NEAR(std::sqrt(slopeSquares / kTraces), 0.9, 0.25);
}

TEST(TailFit, IsNotPlainWhereThereIsNone)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const DrawnFibre fibre = tailOf(0.0, 1.0, seed);
        const TailFit fit(*fibre, {{{kTailFrom, 2000.0}}}, kKnownSlope);
        EXPECT_TRUE(fit.isKnown());
        EXPECT_FALSE(fit.isPlain()) << seed;
        EXPECT_LE(fit.squares(), fit.straightSquares());
    }
}

/// Light that is missing behind an event is no tail.
TEST(TailFit, IsNotPlainWhereTheLightFallsShort)
{
    const DrawnFibre fibre = tailOf(-0.2, 4.0);
    const TailFit fit(*fibre, {{{kTailFrom, 2000.0}}}, kKnownSlope);
    EXPECT_FALSE(fit.isPlain());
    EXPECT_DOUBLE_EQ(fit.squares(), fit.straightSquares());
}

/// Waves of the fibre, as coherent light makes them, bend a line here and there.
TEST(TailFit, IsNotPlainOnWaves)
{
    const DrawnFibre fibre = fibreDrawn(
        [](double i) { return fibreLevel_dB(i) + 0.03 * std::cos((i - kTailFrom) / 150.0); });
    const TailFit fit(*fibre, {{{kTailFrom, 2000.0}}}, kNoSlope);
    EXPECT_FALSE(fit.isPlain());
    EXPECT_GT(fit.misfit(), 10.0);
}

/// Nothing is taken from the receiver's light by what is lost in the fibre.
TEST(TailFit, IsOneForAllPieces)
{
    const auto fibreAt = [](double i) {
        return fibreLevel_dB(i) - (i < 300.0 ? 0.0 : 0.5) - (i < 600.0 ? 0.0 : 0.2);
    };
    const DrawnFibre fibre =
        fibreDrawn([&](double i) { return withTail_dB(fibreAt(i), i, 0.3, 12.0); });
    const TailFit fit(*fibre, {{{kTailFrom, 295.0}}, {{305.0, 595.0}}, {{605.0, 1500.0}}},
                      kKnownSlope);
    ASSERT_TRUE(fit.isPlain());
    EXPECT_LT(fit.misfit(), 1.6);
    const double middles[] = {200.0, 450.0, 1000.0};
    for (std::size_t k = 0; k < 3; ++k) {
        const auto line = fit.fibre(k);
        ASSERT_TRUE(line) << k;
        EXPECT_NEAR(line->at(middles[k]), fibreAt(middles[k]), 4.0 * line->errorAt_dB(middles[k]))
            << k;
        EXPECT_LT(line->errorAt_dB(middles[k]), 0.01) << k;
    }
}

/// What stands between two stretches of one line is left out.
TEST(TailFit, TakesStretchesOfOneLineTogether)
{
    const DrawnFibre fibre = fibreDrawn([](double i) {
        const double level_dB = withTail_dB(fibreLevel_dB(i), i, 0.3, 8.0);
        return i >= 250.0 && i < 290.0 ? 60.0 : level_dB;
    });
    const TailFit fit(*fibre, {{{kTailFrom, 249.0}, {291.0, 1500.0}}}, kKnownSlope);
    ASSERT_TRUE(fit.isPlain());
    EXPECT_LT(fit.misfit(), 1.6);
    const auto line = fit.fibre(0);
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->at(270.0), fibreLevel_dB(270.0), 4.0 * line->errorAt_dB(270.0));
}

/// On a short piece a tail is but another slope: one has to know what fibre falls by.
TEST(TailFit, NeedsTheUsualSlopeOnAShortPiece)
{
    const DrawnFibre fibre = tailOf(0.2, 15.0);
    const std::vector<TailFit::Piece> piece {{{kTailFrom, 250.0}}};
    EXPECT_FALSE(TailFit(*fibre, piece, kNoSlope).isPlain());
    const TailFit known(*fibre, piece, kKnownSlope);
    EXPECT_TRUE(known.isPlain());
    ASSERT_TRUE(known.fibre(0));
    EXPECT_NEAR(known.fibre(0)->line.slope_dB, kFitSlope_dB, 4.0 * kKnownSlope.spread_dB);
}

/// Four means of a quarter of a pulse are the least.
TEST(TailFit, IsUnknownOnPiecesTooShortForIt)
{
    const DrawnFibre fibre = tailOf(0.3, 4.0);
    EXPECT_TRUE(TailFit(*fibre, {{{kTailFrom, kTailFrom + 20.0}}}, kKnownSlope).isKnown());
    EXPECT_FALSE(TailFit(*fibre, {{{kTailFrom, kTailFrom + 15.0}}}, kKnownSlope).isKnown());
    EXPECT_FALSE(TailFit(*fibre, {{{kTailFrom, 300.0}}, {{310.0, 325.0}}}, kKnownSlope).isKnown());
    EXPECT_FALSE(TailFit(*fibre, {{{5000.0, 6000.0}}}, kKnownSlope).isKnown())
        << "behind the record";
    EXPECT_FALSE(TailFit(*fibre, {{{5000.0, 6000.0}}}, kKnownSlope).isPlain());
}

/// Of straight fibre noise leaves what it is: one for each mean.
TEST(TailFit, LeavesTheNoise)
{
    const DrawnFibre fibre = tailOf(0.3, 4.0);
    const TailFit fit(*fibre, {{{kTailFrom, 2000.0}}}, kNoSlope);
    EXPECT_LT(fit.misfit(), 1.6);
    EXPECT_GT(fit.straightSquares(), 100.0 * fit.squares());
}

} // namespace
