#include "platform/otdr/core/risinglight.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using namespace testing_support;
using otdr::risesIn;

/// Behind a loss of 10 dB the light scatters a hundred times more.
TEST(RisingLight, NoiseBehindALossIsNone)
{
    std::mt19937_64 random(3);
    std::normal_distribution<double> normal;
    const DrawnFibre fibre(4000, scaleOf(20.0), [&](double i) {
        return (i < 2000.0 ? 30.0 : 20.0) + (i < 2000.0 ? 0.003 : 0.3) * normal(random);
    });
    EXPECT_TRUE(risesIn(*fibre, 1950.0, 2300.0).empty());
}

TEST(RisingLight, IsWhatRisesBySoMuch)
{
    const DrawnFibre fibre(2000, scaleOf(20.0),
                           [](double i) { return i < 500.0 ? 30.0 : (i < 1000.0 ? 31.0 : 36.0); });
    EXPECT_EQ(risesIn(*fibre, 100.0, 1500.0, 0.9).size(), 2U);
    EXPECT_EQ(risesIn(*fibre, 100.0, 1500.0, 1.1).size(), 1U);
    EXPECT_EQ(risesIn(*fibre, 100.0, 1500.0, 5.1).size(), 0U);
}

/// Ten samples, half a pulse, and one more that may have begun to rise.
TEST(RisingLight, FibreBeforeItIsLevel)
{
    const auto beforeRise = [](double slope_dB) {
        const DrawnFibre fibre(2000, scaleOf(20.0), [=](double i) {
            return 30.0 - slope_dB * i + (i < 1000.0 ? 0.0 : 5.0);
        });
        return fibreBeforeRise(*fibre, 900.0, 1100.0);
    };
    EXPECT_EQ(beforeRise(0.0), 1000.0 - 0.5 - 1.0 - 10.0);
    EXPECT_TRUE(beforeRise(0.002));
    EXPECT_FALSE(beforeRise(0.003)) << "falls by 0.06 dB in a pulse, as a tail does";
}

/// The first sample above the fibre, of what also falls again; light that stays is no peak.
TEST(RisingLight, FirstPeakBeginsWhereItLeavesTheFibre)
{
    const auto firstIn = [](const std::vector<Raised>& stretches) {
        return firstPeak(*withRaised(stretches), 900.0, 1100.0, flatLine(30.0));
    };
    EXPECT_EQ(firstIn({{1000, 1020, 3.0}}), 1000.0);
    EXPECT_EQ(firstIn({{950, 960, 1.0}, {1000, 1020, 3.0}}), 950.0);
    EXPECT_EQ(firstIn({{950, 960, 0.2}, {1000, 1020, 3.0}}), 1000.0);
    EXPECT_FALSE(firstIn({{1000, 1200, 3.0}}));
    EXPECT_FALSE(firstIn({{1000, 1020, 0.2}}));
    EXPECT_FALSE(firstIn({}));
}

} // namespace
