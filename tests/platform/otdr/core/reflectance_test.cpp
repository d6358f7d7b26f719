#include "platform/otdr/core/reflectance.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using otdr::Peak;
using otdr::peakAbove;
using otdr::peakHeight_dB;
using otdr::reflectance_dB;
using namespace testing_support;

/// Peak heights at 1550 nm, backscatter -81.9 dB, to a tenth of a decibel or better.
struct PeakRow
{
    double reflectance;
    double pulse_ns;
    double height;
    double tolerance;
};

constexpr PeakRow kTable[] = {
    {-14.7, 5, 30.1, 0.06},     {-14.7, 100, 23.6, 0.06},    {-14.7, 1000, 18.6, 0.06},
    {-14.7, 20000, 12.1, 0.06}, {-35, 10, 18.5, 0.06},       {-35, 500, 10.0, 0.06},
    {-35, 10000, 3.9, 0.06},    {-45, 30, 11.1, 0.06},       {-45, 1000, 3.9, 0.06},
    {-45, 20000, 0.48, 0.006},  {-55, 5, 10.0, 0.06},        {-55, 1000, 0.87, 0.006},
    {-65, 100, 0.87, 0.006},    {-65, 20000, 0.005, 0.0006},
};

TEST(Reflectance, OfKnownPeaksIsThatOfTheTable)
{
    for (const PeakRow& row : kTable) {
        EXPECT_NEAR(peakHeight_dB(row.reflectance, -81.9, row.pulse_ns), row.height, row.tolerance)
            << row.reflectance << " dB, " << row.pulse_ns << " ns";
    }
}

TEST(Reflectance, AndPeakHeightAreInverse)
{
    for (double reflectance = -90.0; reflectance < 0.0; reflectance += 2.5) {
        for (const double pulse_ns : {3.0, 100.0, 20000.0}) {
            const double height = peakHeight_dB(reflectance, -80.0, pulse_ns);
            EXPECT_NEAR(reflectance_dB(height, -80.0, pulse_ns), reflectance, 1e-9);
        }
    }
}

TEST(Reflectance, OfAPeakThatDoublesThePowerIsThatOfTheBackscatterInThePulse)
{
    // 10^(H/5) - 1 = 1: as much light is reflected as the pulse scatters back.
    EXPECT_NEAR(reflectance_dB(5.0 * std::log10(2.0), -80.0, 100.0), -60.0, 1e-12);
}

TEST(Reflectance, GrowsByTenForTenTimesThePulse)
{
    EXPECT_NEAR(reflectance_dB(7.0, -80.0, 1000.0) - reflectance_dB(7.0, -80.0, 100.0), 10.0,
                1e-12);
}

TEST(Reflectance, OfAPeakAsHighAsAnAbsurdScaleMakesItIsFinite)
{
    // Twice the height, and what the backscatter in a pulse of 100 ns returns.
    EXPECT_NEAR(reflectance_dB(4000.0, -80.0, 100.0), 8000.0 - 60.0, 1e-6);
}

TEST(Reflectance, IsUnknownWithoutAPeakOrAPulse)
{
    EXPECT_TRUE(std::isnan(reflectance_dB(0.0, -80.0, 100.0)));
    EXPECT_TRUE(std::isnan(reflectance_dB(-1.0, -80.0, 100.0)));
    EXPECT_TRUE(std::isnan(reflectance_dB(5.0, -80.0, 0.0)));
    EXPECT_TRUE(std::isnan(reflectance_dB(std::nan(""), -80.0, 100.0)));
    EXPECT_TRUE(std::isnan(peakHeight_dB(-40.0, -80.0, 0.0)));
    EXPECT_TRUE(std::isnan(peakHeight_dB(-40.0, -80.0, -5.0)));
}

TEST(PeakAbove, FindsTheTopAndItsHeight)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km).reflection(4_km, 9_dB);
    const double at = builder.indexOf(4_km);
    const double base = builder.trueLevel_dB(3.999_km);
    const std::optional<Peak> peak =
        peakAbove(*builder.build(), at, at + builder.pulseSamples(), base);
    ASSERT_TRUE(peak);
    EXPECT_EQ(peak->index, static_cast<std::size_t>(std::ceil(at)));
    EXPECT_NEAR(peak->height_dB, 9.0, 0.002);
    EXPECT_NEAR(peak->level_dB, base + 9.0, 0.002);
}

TEST(PeakAbove, GivesBackTheReflectanceThatWasPutIn)
{
    const double height = peakHeight_dB(-45.0, -81.9, 100.0);
    const TraceBuilder builder = TraceBuilder().pulse(100).reflection(4_km, {height});
    const double at = builder.indexOf(4_km);
    const std::optional<Peak> peak = peakAbove(*builder.build(), at, at + builder.pulseSamples(),
                                               builder.trueLevel_dB(3.9999_km));
    ASSERT_TRUE(peak);
    EXPECT_NEAR(reflectance_dB(peak->height_dB, -81.9, 100.0), -45.0, 0.005);
}

TEST(PeakAbove, IncludesBothEndsOfTheStretch)
{
    const otdr::Trace trace(otdr::RawSamples(std::vector<std::uint16_t> {50000, 60000, 40000}),
                            0.001, {});
    EXPECT_EQ(peakAbove(trace, 0.0, 2.0, 1.0)->index, 2U);
    EXPECT_EQ(peakAbove(trace, 0.0, 1.9, 1.0)->index, 0U);
    EXPECT_EQ(peakAbove(trace, 0.1, 1.9, 1.0)->index, 1U);
    EXPECT_EQ(peakAbove(trace, -9.0, 99.0, 1.0)->index, 2U);
}

TEST(PeakAbove, IsNothingWhereNothingStandsOut)
{
    const otdr::Trace trace(otdr::RawSamples(std::vector<std::uint16_t> {55535, 55535}), 0.001, {});
    EXPECT_FALSE(peakAbove(trace, 0.0, 1.0, 10.0));
    EXPECT_TRUE(peakAbove(trace, 0.0, 1.0, 9.999));
    EXPECT_FALSE(peakAbove(trace, 5.0, 9.0, 0.0));
    EXPECT_FALSE(peakAbove(trace, 1.0, 0.0, 0.0));
    EXPECT_FALSE(peakAbove(trace, std::nan(""), 1.0, 0.0));
    EXPECT_FALSE(peakAbove(trace, 0.0, 1.0, std::nan("")));
}

} // namespace
