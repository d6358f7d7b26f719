#include "platform/otdr/core/heldtop.h"
#include "platform/otdr/core/pulseshape.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace {

using namespace testing_support;
using otdr::hiddenAbove_dB;

constexpr double kHeldAt = 1000.0;

/// A reflection of 12 dB that the receiver cuts off so much below its top.
DrawnFibre cutOffBy(double cut_dB)
{
    const otdr::PulseShape shape(kPulse, 1.6);
    return {4000, scaleOf(kPulse), [=](double i) {
                const double level_dB =
                    eventLevel_dB(shape, i - kHeldAt, 30.0, 30.0, 12.0) - 0.0001 * i;
                return std::min(level_dB, 42.0 - 0.0001 * kHeldAt - cut_dB);
            }};
}

/// At the first of the highest samples, and at the last.
std::pair<std::size_t, std::size_t> topsOf(const DrawnFibre& fibre)
{
    const otdr::RawSamples& counts = fibre->samples().samples();
    const auto first = std::min_element(counts.begin(), counts.end());
    const auto last = std::find_if(first, counts.end(), [&](auto count) { return count > *first; });
    const auto index = [&](auto place) { return static_cast<std::size_t>(place - counts.begin()); };
    return {index(first), index(last) - 1};
}

TEST(HeldTop, OfAReceiverThatFollowsHidesNothing)
{
    const DrawnFibre fibre = cutOffBy(-1.0);
    const auto [first, last] = topsOf(fibre);
    EXPECT_EQ(hiddenAbove_dB(*fibre, first, std::nullopt), 0.0);
    EXPECT_EQ(hiddenAbove_dB(*fibre, last, std::nullopt), 0.0);
}

TEST(HeldTop, ForMostOfThePulseHidesSomeDecibels)
{
    const DrawnFibre fibre = cutOffBy(1.0);
    const auto [first, last] = topsOf(fibre);
    EXPECT_EQ(hiddenAbove_dB(*fibre, first, std::nullopt), 4.0);
    EXPECT_EQ(hiddenAbove_dB(*fibre, last, std::nullopt), 4.0);
}

/// What the falling flank says of the receiver may explain that the top is flat.
TEST(HeldTop, IsNoneWhereAFastFlankExplainsIt)
{
    const DrawnFibre fibre = cutOffBy(0.05);
    const std::size_t top = topsOf(fibre).first;
    ASSERT_EQ(hiddenAbove_dB(*fibre, top, 1.6), 4.0);
    EXPECT_EQ(hiddenAbove_dB(*fibre, top, 0.1), 0.0);
}

TEST(HeldTop, ForLongerThanThePulseHidesAnyLightSeenFromAnywhereOnIt)
{
    const DrawnFibre fibre = cutOffBy(9.0);
    const auto [first, last] = topsOf(fibre);
    ASSERT_GT(last - first, static_cast<std::size_t>(1.05 * kPulse + 1.0));
    for (std::size_t top = first; top <= last; ++top) {
        EXPECT_TRUE(std::isinf(hiddenAbove_dB(*fibre, top, std::nullopt))) << top;
    }
}

/// The fibre in front of what hardly stands out is as high as its top: no more of it is looked at
/// than tells that.
TEST(HeldTop, IsToldByThePulseAroundItHoweverLongTheTraceIs)
{
    const DrawnFibre fibre(200'000, scaleOf(kPulse), [](double) { return 30.0; });
    EXPECT_TRUE(std::isinf(hiddenAbove_dB(*fibre, 0, std::nullopt)));
    EXPECT_TRUE(std::isinf(hiddenAbove_dB(*fibre, 199'999, std::nullopt)));
}

} // namespace
