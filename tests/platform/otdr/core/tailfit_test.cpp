#include "platform/otdr/core/tailfit.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
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

/// What is told of the fibre is off by as much as its standard errors say, at both its ends.
TEST(TailFit, KnowsItsErrors)
{
    constexpr int kTraces = 100; // tell it to 7 %
    constexpr double kEnd = 2000.0;
    for (const double pulses : {1.0, 4.0, 15.0}) {
        double begin = 0.0;
        double end = 0.0;
        double slope = 0.0;
        for (int seed = 1; seed <= kTraces; ++seed) {
            const DrawnFibre fibre = tailOf(0.3, pulses, static_cast<std::uint64_t>(seed));
            const auto line = TailFit(*fibre, {{{kTailFrom, kEnd}}}, kNoSlope).fibre(0);
            ASSERT_TRUE(line);
            // The noise is white, but with the tail in it neighbours seem alike.
            const double share = fibre->noise().correlation() / kTraces;
            const auto offAt = [&](double index) {
                const double errors =
                    (line->at(index) - fibreLevel_dB(index)) / line->errorAt_dB(index);
                return share * errors * errors;
            };
            begin += offAt(kTailFrom);
            end += offAt(kEnd);
            slope +=
                share * std::pow((line->line.slope_dB - kFitSlope_dB) / line->slopeError_dB, 2);
        }
        EXPECT_NEAR(std::sqrt(begin), 1.0, 0.25) << pulses;
        EXPECT_NEAR(std::sqrt(end), 1.0, 0.25) << pulses;
        EXPECT_NEAR(std::sqrt(slope), 1.0, 0.25) << pulses;
    }
}

/// The brighter the tail, the better its time constant must be told.
TEST(TailFit, LeavesNothingOfABrightTail)
{
    for (const double pulses : {3.0, 4.0, 4.7, 6.0}) {
        const DrawnFibre fibre = tailOf(50.0, pulses);
        const TailFit fit(*fibre, {{{kTailFrom, 2000.0}}}, kNoSlope);
        ASSERT_TRUE(fit.isPlain()) << pulses;
        EXPECT_LT(fit.misfit(), 2.5) << pulses;
        ASSERT_TRUE(fit.fibre(0)) << pulses;
        EXPECT_NEAR(fit.fibre(0)->at(kTailFrom), fibreLevel_dB(kTailFrom), 0.05) << pulses;
    }
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
    const DrawnFibre even = tailOf(0.0, 1.0);
    const TailFit without(*even, {{{kTailFrom, 2000.0}}}, kNoSlope);
    ASSERT_TRUE(fit.fibre(0) && without.fibre(0));
    EXPECT_GT(fit.fibre(0)->slopeError_dB, 3.0 * without.fibre(0)->slopeError_dB)
        << "what is left adds to the errors";
}

/// By ten standard errors.
TEST(TailFit, IsPlainBeyondAllChance)
{
    const auto isPlain = [](double part) {
        const DrawnFibre fibre = tailOf(part, 4.0, 2);
        return TailFit(*fibre, {{{kTailFrom, 2000.0}}}, kKnownSlope).isPlain();
    };
    EXPECT_FALSE(isPlain(0.0035));
    EXPECT_TRUE(isPlain(0.01));
}

/// Where the tail outshines the fibre a hundred times nothing is told of that.
TEST(TailFit, SeesNoFibreInDeepTails)
{
    const DrawnFibre fibre =
        fibreDrawn([](double i) { return withTail_dB(fibreLevel_dB(i) - 20.0, i, 1.0, 10.0); });
    const TailFit fit(*fibre, {{{kTailFrom, 300.0}}}, kKnownSlope);
    EXPECT_TRUE(fit.isPlain());
    EXPECT_FALSE(fit.fibre(0));
}

/// What fades still more slowly is no tail of a receiver.
TEST(TailFit, FadesAsReceiversDo)
{
    const auto misfitOf = [](double pulses) {
        const DrawnFibre fibre = tailOf(1.0, pulses);
        return TailFit(*fibre, {{{kTailFrom, 2900.0}}}, kKnownSlope).misfit();
    };
    EXPECT_LT(misfitOf(19.0), 1.6);
    EXPECT_GT(misfitOf(35.0), 3.0);
}

/// It is one value more, and stays that however often the line is laid anew.
TEST(TailFit, WeighsTheUsualSlope)
{
    const DrawnFibre fibre = tailOf(0.0, 1.0);
    const std::vector<TailFit::Piece> piece {{{kTailFrom, 200.0}}};
    const UsualSlope other {kFitSlope_dB - 0.0002, 0.00004}; // light above that is no tail either
    const TailFit fit(*fibre, piece, other);
    const TailFit own(*fibre, piece, kNoSlope);
    ASSERT_TRUE(fit.fibre(0) && own.fibre(0));
    const double off_dB = fit.fibre(0)->line.slope_dB - other.slope_dB;
    const double apart_dB = own.fibre(0)->line.slope_dB - other.slope_dB;
    const double byOwn = std::pow(own.fibre(0)->slopeError_dB, -2);
    const double byOther = std::pow(other.spread_dB, -2);
    EXPECT_NEAR(off_dB / apart_dB, byOwn / (byOwn + byOther), 0.05);
    EXPECT_GT(fit.squares() - own.squares(), 0.9 * apart_dB * off_dB * byOther)
        << "what it differs by is left";
}

/// Nothing is taken from the receiver's light by what is lost in the fibre.
TEST(TailFit, IsOneForAllPieces)
{
    const auto fibreAt = [](double i) {
        return fibreLevel_dB(i) - (i < 300.0 ? 0.0 : 0.5) - (i < 600.0 ? 0.0 : 0.2);
    };
    DrawnFibre fibre = fibreDrawn([&](double i) { return withTail_dB(fibreAt(i), i, 0.3, 12.0); });
    fibre.changed().setNoise(fibre->noiseBetween({{280.0, 320.0}, {580.0, 620.0}}, 3000.0));
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
    EXPECT_TRUE(
        std::isfinite(TailFit(*fibre, {{{kTailFrom, kTailFrom + 20.0}}}, kNoSlope).misfit()))
        << "of four means as many values";
    EXPECT_FALSE(TailFit(*fibre, {{{kTailFrom, kTailFrom + 15.0}}}, kKnownSlope).isKnown());
    EXPECT_FALSE(TailFit(*fibre, {{{kTailFrom, 300.0}}, {{310.0, 325.0}}}, kKnownSlope).isKnown());
    EXPECT_FALSE(TailFit(*fibre, {{{5000.0, 6000.0}}}, kKnownSlope).isKnown())
        << "behind the record";
    EXPECT_FALSE(TailFit(*fibre, {{{5000.0, 6000.0}}}, kKnownSlope).isPlain());
}

/// What a piece has beyond the record tells nothing, and does no harm.
TEST(TailFit, EndsWithTheRecord)
{
    const DrawnFibre fibre = tailOf(0.3, 4.0);
    const TailFit beyond(*fibre, {{{kTailFrom, 9000.0}}}, kKnownSlope);
    const TailFit whole(*fibre, {{{kTailFrom, 3000.0}}}, kKnownSlope);
    EXPECT_TRUE(beyond.isPlain());
    EXPECT_EQ(beyond.squares(), whole.squares());
    EXPECT_EQ(beyond.misfit(), whole.misfit());
    EXPECT_FALSE(TailFit(*fibre, {{{2990.0, 9000.0}}}, kKnownSlope).isKnown())
        << "two means are left";
}

/// Light as no fibre has it: weights differ by ten orders, and of squares rounding is left.
TEST(TailFit, HasSquaresOfAnyLight)
{
    for (double dark = 35.0; dark < 90.0; dark += 1.0) {
        const DrawnFibre fibre(100, scaleOf(4.3), [=](double i) { return i < dark ? 0.0 : 65.0; });
        const TailFit fit(*fibre, {{{32.0, 100.0}}}, {-0.0008, 0.0003});
        EXPECT_GE(fit.squares(), 0.0) << dark;
    }
}

/// Steps of a mean each, up and down: neighbours are as unlike as can be. Of eight means the tail
/// takes two, level and slope take two, and what is known of the slope is one more.
TEST(TailFit, TellsWhatIsLeftByWhatIsFree)
{
    const DrawnFibre fibre = fibreDrawn([](double i) {
        const bool isUp = static_cast<int>((i - kTailFrom) / 5.0) % 2 == 0;
        return fibreLevel_dB(i) + (isUp ? 0.05 : -0.05);
    });
    const std::vector<TailFit::Piece> piece {{{kTailFrom, kTailFrom + 40.0}}};
    const TailFit known(*fibre, piece, kKnownSlope);
    const TailFit unknown(*fibre, piece, kNoSlope);
    ASSERT_GT(known.misfit(), 1.0);
    ASSERT_GT(unknown.misfit(), 1.0);
    EXPECT_DOUBLE_EQ(known.misfit(), known.squares() / 5.0);
    EXPECT_DOUBLE_EQ(unknown.misfit(), unknown.squares() / 4.0);
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
