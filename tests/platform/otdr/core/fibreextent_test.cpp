#include "platform/otdr/core/fibreend.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

using namespace testing_support;

/// A receiver that is overloaded holds its top and then falls; what rises by more than 3 dB above
/// it is another reflection.
TEST(FibreExtent, LaunchThatIsHeldAtItsTopIsOverWhereItFalls)
{
    const auto firstWhere = [](double rise_dB) {
        const DrawnFibre fibre(6000, scaleOf(20.0), [=](double i) {
            const double behind_dB = i < 3000.0 ? 30.0 : 0.0;
            return i < 32.0 ? 40.0 : (i < 80.0 ? 40.0 + rise_dB : behind_dB);
        });
        return otdr::findFibre(*fibre, 3.0).first;
    };
    EXPECT_EQ(firstWhere(0.0), 80.0);
    EXPECT_EQ(firstWhere(3.0), 80.0);
    EXPECT_LT(firstWhere(3.001), 35.0);
}

/// However slowly it has risen to its top.
TEST(FibreExtent, LaunchThatRisesSlowlyIsOverWhereItFalls)
{
    const DrawnFibre fibre(6000, scaleOf(20.0), [](double i) {
        return i < 5.0 ? 30.0 + 2.0 * i : (i < 80.0 ? 40.0 : 30.0);
    });
    EXPECT_EQ(otdr::findFibre(*fibre, 3.0).first, 80.0);
}

TEST(FibreExtent, LaunchThatDoesNotFallInSixPulsesIsFibre)
{
    const auto firstWhere = [](double held) {
        const DrawnFibre fibre(6000, scaleOf(20.0),
                               [=](double i) { return i < held ? 40.0 : 36.9; });
        return otdr::findFibre(*fibre, 3.0).first;
    };
    EXPECT_EQ(firstWhere(119.0), 119.0);
    EXPECT_LT(firstWhere(120.0), 60.0);
}

/// Behind a peak a patch cord may stand as high as the fibre before it, but for the last of a tail:
/// three tenths of a decibel higher it is the tail itself.
TEST(FibreExtent, AShortPieceOfFibreStandsNoHigherThanThatBefore)
{
    const auto endWith = [](double above_dB) {
        const DrawnFibre fibre(8000, scaleOf(20.0), [=](double i) {
            const double noise = std::fmod(i, 3.0) == 0.0 ? 6.0 : 0.0;
            const double piece = i < 4020.0 ? 12.0 : above_dB;
            return i < 4000.0 ? 32.0 : (i < 4045.0 ? 32.0 + piece : noise);
        });
        return otdr::findFibre(*fibre, 3.0).end;
    };
    EXPECT_NEAR(endWith(0.0), 4044.5, 1.0);
    EXPECT_NEAR(endWith(0.299), 4044.5, 1.0);
    EXPECT_NEAR(endWith(0.3), 3999.5, 1.0);
    EXPECT_NEAR(endWith(0.301), 3999.5, 1.0);
}

/// Fibre is followed in stretches of 32 samples: the rest of the record shows noise if it has two.
TEST(FibreExtent, LightReachesToTheEndOfARecordWithoutTwoStretchesOfNoise)
{
    const double dark = 60.0 + 14.0 * 32.0;
    const auto lastLit = [=](std::size_t samples) {
        const DrawnFibre fibre(samples, scaleOf(20.0), [=](double i) {
            const double noise = std::fmod(i, 3.0) == 0.0 ? 6.0 : 0.0;
            return i < 60.0 ? 50.0 : (i < dark ? 30.0 : noise);
        });
        return otdr::findFibre(*fibre, 3.0).lastLit;
    };
    EXPECT_EQ(lastLit(572), dark);
    EXPECT_EQ(lastLit(571), 570.0);
}

/// A record is cut where it was measured no further: what stands behind that is none of it.
TEST(FibreExtent, DoesNotReachBehindTheRecord)
{
    const auto endBefore = [](std::uint16_t behind) {
        std::vector<std::uint16_t> counts(1000, 25000);
        counts.back() = 65535;
        counts.resize(1010, behind);
        const otdr::Trace trace(otdr::RawSamples(counts).first(1000), 0.001, {});
        const otdr::FibreTrace fibre(trace, scaleOf(20.0));
        return otdr::findFibre(fibre, 3.0).end;
    };
    EXPECT_EQ(endBefore(25000), endBefore(65535));
}

/// The fibre in front of the end is the straight piece behind what is lost some pulses before, in
/// noise as well.
TEST(FibreExtent, EndsAtItsFootBehindALossInNoise)
{
    const double pulse = 40.0;
    const double end = 6000.0;
    const otdr::PulseShape shape(pulse, 0.08 * pulse);
    for (const double pulses : {3.0, 4.0, 5.0}) {
        for (const double loss_dB : {0.0, 0.3, 0.6}) {
            const DrawnFibre fibre(
                9000, scaleOf(pulse, 1000.0),
                [&](double i) {
                    const double dark = std::fmod(i, 3.0) * 2.0;
                    const double loss =
                        eventLevel_dB(shape, i - (end - pulses * pulse), 0.0, -loss_dB);
                    const double lit =
                        40.0 - 0.0002 * i + loss + eventLevel_dB(shape, i - end, 0.0, -45.0);
                    return std::max(lit, dark);
                },
                0.02);
            const otdr::FibreExtent extent = otdr::findFibre(*fibre, 3.0);
            EXPECT_NEAR(extent.end, end, 0.5 * pulse) << pulses << ' ' << loss_dB;
        }
    }
}

/// With long pulses fibre itself loses a decibel from before a reflection to behind it.
TEST(FibreExtent, WhatFibreLosesOnTheWayIsNoFall)
{
    const double pulse = 400.0;
    const otdr::PulseShape shape(pulse, 0.08 * pulse);
    for (const double kilometre : {0.0, 1000.0, 5000.0}) {
        for (const double height_dB : {0.0, 2.0, 2.6, 2.9}) {
            const DrawnFibre fibre(24'000, scaleOf(pulse, kilometre), [&](double i) {
                const double line = 36.0 - 0.001 * i;
                const double event = eventLevel_dB(shape, i - 6000.0, 0.0, -0.4, height_dB);
                const double next = eventLevel_dB(shape, i - 11'000.0, 0.0, -0.3);
                return i < 20'000.0 ? line + event + next : std::fmod(i, 3.0) * 2.0;
            });
            const otdr::FibreExtent extent = otdr::findFibre(*fibre, 3.0);
            EXPECT_EQ(extent.kind, otdr::FibreExtent::End::Found) << kilometre << ' ' << height_dB;
            EXPECT_NEAR(extent.end, 19'999.5, 2.0) << kilometre << ' ' << height_dB;
        }
    }
}

/// Behind fibre of ten pulses, which loses 0.2 dB in all, the tail of its end: eight times as long,
/// most of what the light falls by is its fall.
TEST(FibreExtent, WhatATailFallsByIsNotWhatFibreLoses)
{
    const double pulse = 100.0;
    const double end = 10.0 * pulse;
    for (const double above_dB : {5.0, 10.0}) {
        for (const double perPulse_dB : {0.6, 1.0}) {
            const DrawnFibre fibre(16'000, scaleOf(pulse, 1000.0), [=](double i) {
                const double behind = std::max(0.0, i - end) / pulse;
                const double tail_dB = 44.0 + above_dB - perPulse_dB * behind;
                const double dark_dB = std::fmod(i, 3.0) * 2.0;
                return i < end ? 44.0 - 0.0002 * i : std::max(tail_dB, dark_dB);
            });
            const otdr::FibreExtent extent = otdr::findFibre(*fibre, 3.0);
            EXPECT_EQ(extent.kind, otdr::FibreExtent::End::Found) << above_dB << ' ' << perPulse_dB;
            EXPECT_NEAR(extent.end, end, 0.1 * pulse) << above_dB << ' ' << perPulse_dB;
        }
    }
}

} // namespace
