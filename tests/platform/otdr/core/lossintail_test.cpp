#include "platform/otdr/core/lossintail.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

namespace {

using namespace testing_support;
using otdr::isBeforeLoss;
using otdr::lossInTail;

/// A loss at 1000 samples of fibre that falls by 3 mdB in each.
DrawnFibre fibreThatLoses(double loss_dB, double sigma_dB = 0.0)
{
    const otdr::PulseShape shape(20.0, 1.6);
    return {3000, scaleOf(20.0),
            [=](double i) {
                return 40.0 - 0.003 * i + eventLevel_dB(shape, i - 1000.0, 0.0, -loss_dB);
            },
            sigma_dB};
}

/// The ramp of the loss must lie in the dead zone, here 32 samples, behind the pulse of 20.
TEST(BeforeLoss, IsThePulseOfFibreInFrontOfIt)
{
    const DrawnFibre fibre = fibreThatLoses(0.4);
    for (const double from : {970.0, 978.0, 986.0}) {
        EXPECT_TRUE(isBeforeLoss(*fibre, from)) << from;
    }
    for (const double from : {500.0, 960.0, 992.0, 1010.0, 1030.0, 2000.0}) {
        EXPECT_FALSE(isBeforeLoss(*fibre, from)) << from;
    }
}

TEST(BeforeLoss, IsNotInFrontOfAGain)
{
    const DrawnFibre fibre = fibreThatLoses(-0.4);
    for (double from = 900.0; from < 1100.0; from += 2.0) {
        EXPECT_FALSE(isBeforeLoss(*fibre, from)) << from;
    }
}

/// However slow it is: what is left of it falls the less the lower it is.
TEST(BeforeLoss, IsNoTail)
{
    for (const double constant : {5.0, 20.0, 100.0, 1000.0}) {
        const DrawnFibre fibre(3000, scaleOf(20.0), [=](double i) {
            const double tail = i < 1000.0 ? 0.0 : std::exp(-(i - 1000.0) / constant);
            return 30.0 - 0.003 * i + 5.0 * std::log10(1.0 + 9.0 * tail);
        });
        for (double from = 1000.0; from < 2500.0; from += 5.0) {
            EXPECT_FALSE(isBeforeLoss(*fibre, from)) << constant << ", " << from;
        }
    }
}

/// A receiver that swings back rises to the fibre as this falls, and light is even there.
TEST(BeforeLoss, IsNoSwingBackToTheFibre)
{
    const DrawnFibre fibre(3000, scaleOf(20.0), [](double i) {
        const double swing = i < 1000.0 ? 0.0 : std::exp(-(i - 1000.0) / 60.0);
        return 30.0 - 0.003 * i - 0.5 * swing;
    });
    for (double from = 1000.0; from < 2500.0; from += 5.0) {
        EXPECT_FALSE(isBeforeLoss(*fibre, from)) << from;
    }
}

/// Light that rises within the pulse goes on to be that of a reflection.
TEST(BeforeLoss, IsNotWhereLightRises)
{
    const DrawnFibre fibre(3000, scaleOf(20.0), [](double i) {
        return 30.0 + (i >= 1000.0 && i < 1008.0 ? 0.3 : 0.0) - (i < 1008.0 ? 0.0 : 0.4);
    });
    EXPECT_TRUE(isBeforeLoss(*fibre, 968.0));
    EXPECT_FALSE(isBeforeLoss(*fibre, 984.0));
}

TEST(BeforeLoss, IsToldThroughNoise)
{
    EXPECT_TRUE(isBeforeLoss(*fibreThatLoses(0.4, 0.002), 970.0));
    const DrawnFibre noisy = fibreThatLoses(0.0, 0.05);
    for (double from = 100.0; from < 2900.0; from += 1.0) {
        EXPECT_FALSE(isBeforeLoss(*noisy, from)) << from;
    }
}

TEST(BeforeLoss, IsNotBehindTheRecord)
{
    const DrawnFibre fibre = fibreThatLoses(0.4);
    for (const double from : {2950.0, 2999.0, 3000.0, 9000.0}) {
        EXPECT_FALSE(isBeforeLoss(*fibre, from)) << from;
    }
}

/// Anywhere in front of the ramp that leaves this, of 20 samples and its rounded end, within the
/// dead zone of 32.
TEST(LossInTail, IsWhereTheLightFalls)
{
    for (const double loss_dB : {0.05, 0.4, 2.0}) {
        const auto found = lossInTail(*fibreThatLoses(loss_dB, 0.002), 960.0, 1040.0, 3000.0);
        ASSERT_TRUE(found) << loss_dB;
        EXPECT_NEAR(*found, 994.0, 7.0) << loss_dB;
    }
}

TEST(LossInTail, IsToldByMeansOfLongPulses)
{
    const otdr::PulseShape shape(160.0, 12.8);
    const DrawnFibre fibre(
        9000, scaleOf(160.0),
        [&](double i) { return 40.0 + eventLevel_dB(shape, i - 3000.0, 0.0, -0.3); }, 0.005);
    const auto found = lossInTail(*fibre, 2700.0, 3300.0, 9000.0);
    ASSERT_TRUE(found);
    EXPECT_NEAR(*found, 3000.0, 20.0);
}

/// Whatever is taken for the fibre behind it.
TEST(LossInTail, IsNotThatOfATail)
{
    for (const double constant : {8.0, 20.0, 60.0, 200.0}) {
        const DrawnFibre fibre(
            3000, scaleOf(20.0),
            [=](double i) {
                const double tail = i < 1000.0 ? 0.0 : std::exp(-(i - 1000.0) / constant);
                return 30.0 - 0.0003 * i + 5.0 * std::log10(1.0 + 0.3 * tail);
            },
            0.001);
        for (double to = 1020.0; to < 1300.0; to += 10.0) {
            EXPECT_FALSE(lossInTail(*fibre, 1000.0, to, 3000.0)) << constant << ", " << to;
        }
    }
}

TEST(LossInTail, IsNotWhereNothingFalls)
{
    const DrawnFibre straight = fibreThatLoses(0.0, 0.01);
    const DrawnFibre gain = fibreThatLoses(-0.4, 0.01);
    for (double to = 980.0; to < 1200.0; to += 5.0) {
        EXPECT_FALSE(lossInTail(*straight, 960.0, to, 3000.0)) << to;
        EXPECT_FALSE(lossInTail(*gain, 960.0, to, 3000.0)) << to;
    }
}

/// Five errors of 40 samples that scatter by 0.05 dB are 0.04 dB.
TEST(LossInTail, IsNotWithinTheNoise)
{
    EXPECT_FALSE(lossInTail(*fibreThatLoses(0.02, 0.05), 960.0, 1040.0, 3000.0));
    EXPECT_TRUE(lossInTail(*fibreThatLoses(0.8, 0.05), 960.0, 1040.0, 3000.0));
}

/// Samples that are alike tell less: a receiver that smooths over 30 of them makes falls of its
/// own.
TEST(LossInTail, IsNotWithinNoiseThatIsAlike)
{
    const double alike = std::exp(-1.0 / 15.0);
    int found = 0;
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        std::mt19937_64 random(seed);
        std::normal_distribution<double> normal(0.0, 0.03 * std::sqrt(1.0 - alike * alike));
        double noise = 0.0;
        const DrawnFibre fibre(3000, scaleOf(20.0), [&](double i) {
            noise = alike * noise + normal(random);
            return 30.0 - 0.0003 * i + noise;
        });
        for (double from = 900.0; from < 1100.0; from += 20.0) {
            found += lossInTail(*fibre, from, from + 80.0, 3000.0) ? 1 : 0;
        }
    }
    EXPECT_EQ(found, 0);
}

/// It would be the falling edge of a reflection.
TEST(LossInTail, IsNotBehindARise)
{
    const DrawnFibre fibre(3000, scaleOf(20.0), [](double i) {
        return 30.0 + (i >= 980.0 && i < 1000.0 ? 0.5 : 0.0) - (i < 1000.0 ? 0.0 : 0.2);
    });
    EXPECT_FALSE(lossInTail(*fibre, 940.0, 1040.0, 3000.0));
    EXPECT_TRUE(lossInTail(*fibre, 980.0, 1040.0, 3000.0));
}

/// The fibre that follows is seen for a pulse at least, and light in front of the loss for half of
/// one.
TEST(LossInTail, IsUnknownWhereTooLittleIsSeen)
{
    const DrawnFibre fibre = fibreThatLoses(0.4);
    EXPECT_TRUE(lossInTail(*fibre, 960.0, 1040.0, 1062.0));
    EXPECT_FALSE(lossInTail(*fibre, 960.0, 1040.0, 1058.0));
    EXPECT_FALSE(lossInTail(*fibre, 1010.0, 1040.0, 3000.0));
    EXPECT_FALSE(lossInTail(*fibre, 960.0, 970.0, 3000.0));
    EXPECT_FALSE(lossInTail(*fibre, 2990.0, 2995.0, 3000.0));
}

} // namespace
