#include "platform/otdr/core/peakgroup.h"
#include "platform/otdr/core/timeconstant.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace testing_support;
using otdr::PeakGroup;

/// Fibre at 30 dB with a top of 15 dB over it between two indices, and a pulse of 20 samples.
DrawnFibre withTop(double from, double to)
{
    return {4000, scaleOf(20.0), [=](double i) { return i >= from && i < to ? 45.0 : 30.0; }};
}

/// Behind the pulse light falls as exp(-t / tau): the slope of the flank tells tau.
TEST(TimeConstant, IsThatOfTheFallingFlank)
{
    for (const double tau : {3.0, 8.0, 15.0}) {
        const otdr::PulseShape shape(20.0, tau);
        const DrawnFibre fibre(4000, scaleOf(20.0), [&](double i) {
            return eventLevel_dB(shape, i - 1000.0, 30.0, 30.0, 15.0);
        });
        PeakGroup peak {{1000.0}, {15.0}, 1200.0};
        const auto found = timeConstantOf(*fibre, peak, flatLine(30.0));
        ASSERT_TRUE(found) << tau;
        EXPECT_NEAR(*found, tau, 0.1 * tau);
        peak.hidden_dB = 4.0;
        EXPECT_FALSE(timeConstantOf(*fibre, peak, flatLine(30.0)));
        peak.hidden_dB = 0.0;
        peak.feet.push_back(1010.0);
        EXPECT_FALSE(timeConstantOf(*fibre, peak, flatLine(30.0)));
        EXPECT_FALSE(timeConstantOf(*fibre, {{1000.0}, {4.4}, 1200.0}, flatLine(30.0)));
    }
}

/// No sample lies on the flank: it has come down within one.
TEST(TimeConstant, OfAReceiverFasterThanItsSamplesIsLessThanOne)
{
    const DrawnFibre fibre = withTop(1000.0, 1020.0);
    const auto found = timeConstantOf(*fibre, {{999.5}, {15.0}, 1200.0}, flatLine(30.0));
    ASSERT_TRUE(found);
    EXPECT_LT(*found, 1.0);
}

/// A receiver that recovers from an overload comes down slowly; it has risen at once.
TEST(TimeConstant, IsUnknownOfWhatRisesFasterThanItFalls)
{
    for (const double recovery : {8.0, 20.0, 60.0}) {
        const DrawnFibre fibre(4000, scaleOf(20.0), [=](double i) {
            const double tail = 999.0 * std::exp(-std::max(0.0, i - 1020.0) / recovery);
            return 30.0 + (i < 1000.0 ? 0.0 : 5.0 * std::log10(1.0 + tail));
        });
        const PeakGroup peak {{999.5}, {15.0}, 1400.0, false};
        EXPECT_FALSE(timeConstantOf(*fibre, peak, flatLine(30.0))) << recovery;
    }
}

TEST(TimeConstant, IsUnknownWhereLightDoesNotComeDown)
{
    const DrawnFibre fibre = withTop(1000.0, 4000.0);
    EXPECT_FALSE(timeConstantOf(*fibre, {{1000.0}, {15.0}, 1200.0}, flatLine(30.0)));
}

} // namespace
