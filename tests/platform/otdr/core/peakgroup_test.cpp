#include "platform/otdr/core/peakgroup.h"
#include "tests/support/tracebuilder.h"

#include <gtest/gtest.h>

namespace {

using namespace testing_support;
using otdr::FibreTrace;
using otdr::PeakGroup;

/// What stands at 5 km of a link, as a receiver of this time constant would have it.
PeakGroup measuredAt5km(const TraceBuilder& link, double timeConstantPulses)
{
    const auto trace = link.build();
    const double pulse = link.pulseSamples();
    FibreTrace fibre(*trace, {pulse, 0.2 * pulse, static_cast<double>(trace->size()), 0.0});
    fibre.setTimeConstant(timeConstantPulses * pulse);
    const double at = link.indexOf(5_km);
    return measurePeak(fibre, at, at - 200.0 * pulse, at + 200.0 * pulse);
}

TraceBuilder quiet()
{
    return TraceBuilder().fibre(10_km).noise(0.002_dB, 5);
}

TEST(PeakGroup, FootOfASharpRiseLiesAtItsFirstSample)
{
    const TraceBuilder link = quiet().reflection(5_km, 6_dB);
    const PeakGroup found = measuredAt5km(link, 0.2);
    ASSERT_EQ(found.feet.size(), 1U);
    EXPECT_NEAR(found.feet.front(), link.indexOf(5_km), 0.6);
    EXPECT_NEAR(found.heights_dB.front(), 6.0, 0.01);
}

/// Some instruments smooth the fibre, and leave reflections sharp: however slow the fibre shows the
/// receiver to be, nothing rises before it is seen to.
TEST(PeakGroup, FootIsNotSoughtWhereNothingRisesYet)
{
    const TraceBuilder link = quiet().reflection(5_km, 20_dB);
    for (const double timeConstantPulses : {0.2, 1.0, 3.0}) {
        const PeakGroup found = measuredAt5km(link, timeConstantPulses);
        EXPECT_NEAR(found.feet.front(), link.indexOf(5_km), 2.0) << timeConstantPulses;
    }
}

} // namespace
