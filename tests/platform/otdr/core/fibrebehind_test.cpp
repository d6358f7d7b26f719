#include "platform/otdr/core/fibrebehind.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

namespace {

using namespace testing_support;

constexpr double kFall = 8000.0; ///< where light falls by 10 dB
constexpr double kEnd = 30000.0;
constexpr double kNoise_dB = 8.0; ///< level of its RMS
constexpr double kSlope_dB = 0.0002; ///< lost from sample to sample: 0.2 dB/km where 1000 make one

otdr::SearchScale scale()
{
    return {kPulse, 0.08 * kPulse, 5000.0, 1000.0};
}

/// Level of fibre with a splitter, and behind it also what is given, before the noise is added.
template <typename Behind>
DrawnFibre splitFibre(Behind behind, std::uint64_t seed = 1)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> noise(0.0, std::pow(10.0, kNoise_dB / 5.0));
    return DrawnFibre(40000, scale(), [&, behind](double i) {
        const double fibre_dB = 36.0 - kSlope_dB * i;
        const double level_dB = i < kFall ? fibre_dB : (i < kEnd ? fibre_dB - 10.0 : -50.0);
        const double shown_dB = i < kFall ? level_dB : behind(i - kFall, level_dB);
        const double power = std::pow(10.0, shown_dB / 5.0) + noise(random);
        return power > 1.0 ? 5.0 * std::log10(power) : 0.0;
    });
}

std::optional<double> seenIn(const DrawnFibre& fibre)
{
    const otdr::FibreBehind behind(*fibre, kEnd, -kSlope_dB);
    return behind.seenFrom(100.0, kFall - 10.0, kFall + kPulse, 3.0);
}

bool followsIn(const DrawnFibre& fibre)
{
    const otdr::FibreBehind behind(*fibre, kEnd, -kSlope_dB);
    return behind.follows(kFall - 400.0, kFall - 10.0, kFall + kPulse, 3.0);
}

double sum_dB(double a_dB, double b_dB)
{
    return 5.0 * std::log10(std::pow(10.0, a_dB / 5.0) + std::pow(10.0, b_dB / 5.0));
}

TEST(FibreBehind, FollowsAFallThatLeavesPlainLight)
{
    const DrawnFibre fibre =
        splitFibre([](double /*behind*/, double level_dB) { return level_dB; });
    EXPECT_TRUE(followsIn(fibre));
    EXPECT_TRUE(seenIn(fibre));
}

/// A connector or two behind the splitter: what lies right behind it is no straight line.
TEST(FibreBehind, IsSeenBeyondTheEventsThatFollowAtOnce)
{
    const auto crowded = [](double behind, double level_dB) {
        const bool isPeak = (behind > 90.0 && behind < 110.0) || (behind > 160.0 && behind < 180.0);
        return level_dB - (behind > 90.0 ? 0.4 : 0.0) + (isPeak ? 5.0 : 0.0);
    };
    for (const std::uint64_t seed : {1, 2, 3}) {
        const DrawnFibre fibre = splitFibre(crowded, seed);
        EXPECT_FALSE(followsIn(fibre)) << seed;
        EXPECT_TRUE(seenIn(fibre)) << seed;
    }
}

/// The fibre before the splitter is a hundred times brighter: little of it, late, bends the light
/// behind.
TEST(FibreBehind, IsSeenBeyondATail)
{
    const auto tailed = [](double behind, double level_dB) {
        return sum_dB(level_dB, 24.0 - 5.0 * behind / (8.0 * kPulse) / std::log(10.0));
    };
    for (const std::uint64_t seed : {1, 2, 3}) {
        const DrawnFibre fibre = splitFibre(tailed, seed);
        EXPECT_FALSE(followsIn(fibre)) << seed;
        EXPECT_TRUE(seenIn(fibre)) << seed;
    }
}

/// Power that falls with the time since the fall, by whatever exponent: bent where it is as steep
/// as fibre, and steeper than fibre where it is straight.
TEST(FibreBehind, IsNotSeenInATailAlone)
{
    for (const double exponent : {0.5, 1.0, 1.5, 2.0}) {
        const auto tail = [=](double behind, double /*level_dB*/) {
            return 32.0 - 5.0 * exponent * std::log10(1.0 + behind / kPulse);
        };
        for (const std::uint64_t seed : {1, 2, 3}) {
            const DrawnFibre fibre = splitFibre(tail, seed);
            EXPECT_FALSE(followsIn(fibre)) << exponent << ' ' << seed;
            EXPECT_FALSE(seenIn(fibre)) << exponent << ' ' << seed;
        }
    }
}

/// The losses of a link are not what its fibre falls by: the tail behind its end is steeper than
/// that, if not than the whole link.
TEST(FibreBehind, IsNotSeenInATailBehindALinkOfManyLosses)
{
    for (const double loss_dB : {0.3, 0.6, 1.0, 2.0}) {
        for (const double exponent : {0.5, 1.0, 1.5}) {
            const DrawnFibre fibre(40000, scale(), [=](double i) {
                const double spliced_dB = loss_dB * std::floor(std::min(i, kFall) / 1000.0);
                const double level_dB = 36.0 - kSlope_dB * std::min(i, kFall) - spliced_dB;
                const double since = std::max(0.0, i - kFall) / kPulse;
                return level_dB
                    - (i < kFall ? 0.0 : 3.5 + 5.0 * exponent * std::log10(1.0 + since));
            });
            EXPECT_FALSE(seenIn(fibre)) << loss_dB << ' ' << exponent;
        }
    }
}

/// Whether fibre is seen behind a fall of 10 dB that loses so much in a kilometre, where the fibre
/// before it, 0.2 dB, is looked at from this index on, and light ends at the other.
bool isSeenWith(double dbPerKm, double fibreFrom = 100.0, double lastLit = kEnd,
                double sigma_dB = 0.002)
{
    const DrawnFibre fibre(
        40000, scale(),
        [=](double i) {
            const double before_dB = 36.0 - kSlope_dB * std::min(i, kFall);
            return before_dB - (i < kFall ? 0.0 : 10.0 + dbPerKm / 1000.0 * (i - kFall));
        },
        sigma_dB);
    const otdr::FibreBehind behind(*fibre, lastLit, -kSlope_dB);
    return behind.seenFrom(fibreFrom, kFall - 10.0, kFall + kPulse, 3.0).has_value();
}

/// Hardly steeper than the fibre before, by 0.3 of its slope and 0.05 dB/km, and no flatter than
/// any fibre.
TEST(FibreBehind, IsSeenIfItFallsAsTheFibreBeforeDoes)
{
    EXPECT_FALSE(isSeenWith(0.03));
    EXPECT_TRUE(isSeenWith(0.07));
    EXPECT_TRUE(isSeenWith(0.2));
    EXPECT_TRUE(isSeenWith(0.29));
    EXPECT_FALSE(isSeenWith(0.35));
}

/// So little of the fibre before is known that any fibre's slope will do: up to 0.7 dB/km.
TEST(FibreBehind, IsSeenBehindAFibreOfUnknownSlopeIfItFallsAsAnyDoes)
{
    EXPECT_TRUE(isSeenWith(0.35, kFall - 16.0));
    EXPECT_TRUE(isSeenWith(0.67, kFall - 16.0));
    EXPECT_FALSE(isSeenWith(0.75, kFall - 16.0));
}

/// 0.12 dB a sample: a line through 200 of them tells its slope to 0.12 sqrt(12 / 200^3) dB, 0.15
/// dB/km, one through 800 to an eighth of that.
TEST(FibreBehind, IsNotSeenInSoLittleThatItsSlopeIsUnknown)
{
    EXPECT_FALSE(isSeenWith(0.2, 100.0, kFall + 300.0, 0.12));
    EXPECT_TRUE(isSeenWith(0.2, 100.0, kFall + 1100.0, 0.12));
}

/// 3 dB above the noise it takes ten pulses times four, and 2.5 times that for what is missing to
/// plain light: 2,000 samples, which a loss behind these leaves as they are.
TEST(FibreBehind, FollowsInWeakLightThatStaysStraightForLong)
{
    const auto follows = [](double lossAfter) {
        int times = 0;
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            const auto weak = [=](double behind, double /*level_dB*/) {
                return 11.0 - kSlope_dB * behind - (behind < lossAfter ? 0.0 : 6.0);
            };
            times += followsIn(splitFibre(weak, seed)) ? 1 : 0;
        }
        return times;
    };
    EXPECT_GE(follows(2600.0), 9);
    EXPECT_LE(follows(1300.0), 1);
}

/// Three pulses of it show, where the light falls again so soon.
TEST(FibreBehind, FollowsUpToTheNextFall)
{
    const auto follows = [](double pulses) {
        return followsIn(splitFibre([=](double behind, double level_dB) {
            return behind < pulses * kPulse ? level_dB : -50.0;
        }));
    };
    EXPECT_TRUE(follows(12.0));
    EXPECT_TRUE(follows(9.0));
    EXPECT_FALSE(follows(4.0));
}

/// However high it stands: what scatters by several decibels is darkness with something in
/// it.
TEST(FibreBehind, DoesNotFollowInWhatScattersLikeDarkness)
{
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        std::mt19937_64 random(seed);
        std::normal_distribution<double> normal;
        double noise = 0.0;
        const DrawnFibre fibre = splitFibre([&](double /*behind*/, double /*level_dB*/) {
            noise = 0.5 * noise + 0.866 * normal(random);
            return 16.0 + 8.0 * noise;
        });
        EXPECT_FALSE(followsIn(fibre)) << seed;
    }
}

/// Noise makes ten short pulses of fibre behind a reflection look steep.
TEST(FibreBehind, FollowsAPeakIfItsFallIsWithinChance)
{
    const auto follows = [](double fall_dB, double scatter_dB) {
        int count = 0;
        const DrawnFibre fibre(40000, {kPulse, 0.08 * kPulse, 5000.0, 20000.0}, [&](double i) {
            const double behind = std::clamp(i - kFall, 0.0, 1000.0);
            const double tail_dB = fall_dB * behind / (10.0 * kPulse);
            const double part = ++count % 3 == 0 ? 1.0 : -1.0 + 0.1 * (count % 7);
            return 30.0 - tail_dB + scatter_dB * part;
        });
        return followsIn(fibre);
    };
    EXPECT_TRUE(follows(0.38, 0.3));
    EXPECT_FALSE(follows(0.38, 0.03));
    EXPECT_FALSE(follows(0.9, 0.3));
}

/// Behind a reflection as behind a loss: 1.4 dB/km where the fibre before it falls by 0.2, of a
/// pulse that is 50 m long.
TEST(FibreBehind, DoesNotFollowAPeakInATailSteeperThanTheFibreBefore)
{
    const auto follows = [](double dbPerKm) {
        constexpr double kilometre = 20.0 * kPulse;
        const DrawnFibre fibre(40000, {kPulse, 0.08 * kPulse, 5000.0, kilometre}, [&](double i) {
            const double behind = std::max(0.0, i - kFall);
            return 36.0 - (0.2 * std::min(i, kFall) + dbPerKm * behind) / kilometre;
        });
        return followsIn(fibre);
    };
    EXPECT_TRUE(follows(0.2));
    EXPECT_TRUE(follows(0.5));
    EXPECT_FALSE(follows(1.4));
}

TEST(FibreBehind, IsNotSeenInNoiseOrInLightThatDoesNotFall)
{
    const auto dark = [](double /*behind*/, double /*level_dB*/) { return -50.0; };
    const auto level = [](double /*behind*/, double /*level_dB*/) { return 20.0; };
    for (const std::uint64_t seed : {1, 2, 3}) {
        EXPECT_FALSE(seenIn(splitFibre(dark, seed))) << seed;
        EXPECT_FALSE(seenIn(splitFibre(level, seed))) << seed;
    }
}

/// Events a dozen pulses from each other leave no straight line of ten.
TEST(FibreBehind, IsSeenWhereLightStaysEvenBetweenCloseEvents)
{
    const auto crowded = [](double behind, double /*level_dB*/) {
        return 34.0 - 0.2 * std::floor(behind / (9.0 * kPulse)) - kSlope_dB * behind;
    };
    for (const std::uint64_t seed : {1, 2, 3}) {
        const DrawnFibre fibre = splitFibre(crowded, seed);
        EXPECT_TRUE(seenIn(fibre)) << seed;
    }
}

/// On its way down a tail passes the level of the fibre before, and is not even there.
TEST(FibreBehind, IsNotEvenInATail)
{
    for (const double exponent : {0.5, 1.0, 2.0}) {
        const auto tail = [=](double behind, double /*level_dB*/) {
            return 36.0 + 5.0 * exponent * (1.5 - std::log10(1.0 + behind / kPulse));
        };
        EXPECT_FALSE(seenIn(splitFibre(tail))) << exponent;
    }
}

TEST(FibreBehind, IsNotSeenPlainlyWhereTheScaleIsUnknown)
{
    const DrawnFibre fibre(40000, {kPulse, 0.08 * kPulse, 5000.0, 0.0},
                           [](double i) { return (i < kFall ? 36.0 : 26.0) - kSlope_dB * i; });
    EXPECT_FALSE(seenIn(fibre));
}

} // namespace
