#include "platform/otdr/core/fibreend.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

namespace {

using namespace testing_support;
using End = otdr::FibreExtent::End;

otdr::FibreExtent extentOf(const TraceBuilder& builder)
{
    const auto trace = builder.build();
    otdr::SearchScale scale;
    scale.pulse = builder.pulseSamples();
    scale.timeConstant = 0.08 * scale.pulse;
    scale.kilometre = builder.indexOf(2_km) - builder.indexOf(1_km);
    scale.longestWindow = 5.0 * scale.kilometre;
    const otdr::FibreTrace fibre(*trace, scale);
    return otdr::findFibre(fibre, 3.0);
}

TraceBuilder link()
{
    return TraceBuilder().fibre(12_km).behind(3000).noise(0.01_dB, 11).noiseFloor(8_dB);
}

TEST(FibreEnd, OfACutStandsAtItsFoot)
{
    const TraceBuilder builder = link();
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, OfAReflectionStandsAtItsFoot)
{
    const TraceBuilder builder = link().reflectingEnd(12_dB);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, IsNotAConnector)
{
    const TraceBuilder builder = link().connector(4_km, 0.5_dB, 15_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.0);
}

/// A patch cord behind the last connector, long enough to be seen: the end is its far end.
TEST(FibreEnd, OfAShortPieceBehindAConnectorIsTheFarOne)
{
    for (const double length_m : {20.0, 30.0, 60.0, 120.0}) {
        const TraceBuilder builder = link().connector(Length {12000.0 - length_m}, 0.3_dB, 10_dB);
        EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.5) << length_m;
    }
    const TraceBuilder builder = link().connector(11.9_km, 0.3_dB, 10_dB).reflectingEnd(12_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.5);
}

TEST(FibreEnd, IsFoundWhereTheRecordBehindItIsDarkAndWithoutNoise)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).behind(3000);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::Found);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.5);
}

TEST(FibreEnd, IsNotASplitter)
{
    const TraceBuilder builder = link().splice(5_km, 10_dB);
    EXPECT_NEAR(extentOf(builder).end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, OfARecordThatEndsOnFibreIsOutOfRange)
{
    const TraceBuilder builder = TraceBuilder().fibre(12_km).noise(0.01_dB, 12);
    const auto extent = extentOf(builder);
    EXPECT_EQ(extent.kind, End::OutOfRange);
    EXPECT_NEAR(extent.end, builder.indexOf(12_km), 2.0);
}

TEST(FibreEnd, LaunchIsWhereLightBegins)
{
    const TraceBuilder builder = link().front(500);
    EXPECT_NEAR(extentOf(builder).launch, 500.0, 1.0);
}

TEST(FibreEnd, LaunchReflectionIsOverWhereTheFibreBegins)
{
    const TraceBuilder builder = link().reflection(0_km, 10_dB);
    const auto extent = extentOf(builder);
    EXPECT_GE(extent.first, builder.pulseSamples());
    EXPECT_LT(extent.first, 6.0 * builder.pulseSamples());
}

} // namespace
