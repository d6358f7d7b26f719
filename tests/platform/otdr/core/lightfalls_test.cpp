#include "platform/otdr/core/lightfalls.h"
#include "platform/otdr/core/trace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

namespace {

constexpr double kFallsPulse = 10.0;
constexpr std::size_t kReach = 256;

/// Falls of 8,000 samples of these levels, dB, with a little noise.
std::vector<double> fallsOf(const std::function<double(double)>& level_dB, double sigma_dB = 0.01)
{
    std::mt19937_64 random(5);
    std::normal_distribution<double> normal;
    std::vector<std::uint16_t> counts(8000);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double level = level_dB(static_cast<double>(i)) + sigma_dB * normal(random);
        counts[i] = static_cast<std::uint16_t>(
            std::lround(otdr::kNoSignal - std::max(0.0, level) / otdr::kUsualDbPerCount));
    }
    const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
    return otdr::lightFalls(trace, kFallsPulse, 0, counts.size(), kReach);
}

/// Light that falls by so much within a pulse behind a place.
double fallen_dB(double i, double place, double fall_dB)
{
    return -fall_dB * std::min(1.0, std::max(0.0, (i - place) / kFallsPulse));
}

TEST(LightFalls, AreFoundWhereverTheyStand)
{
    for (double place = 3000.0; place < 3300.0; place += 23.0) {
        for (const double fall_dB : {1.5, 6.0, 15.0}) {
            const auto falls =
                fallsOf([=](double i) { return 30.0 + fallen_dB(i, place, fall_dB); });
            ASSERT_EQ(falls.size(), 1U) << place << ' ' << fall_dB;
            EXPECT_NEAR(falls.front(), place + 0.5 * kFallsPulse, kFallsPulse) << fall_dB;
        }
    }
}

/// A splitter with a short drop behind it, and the end.
TEST(LightFalls, OfOneStretchAreAllTold)
{
    for (const double apart : {40.0, 60.0, 100.0, 200.0, 400.0}) {
        for (double place = 3000.0; place < 3260.0; place += 37.0) {
            const auto falls = fallsOf([=](double i) {
                return 30.0 + fallen_dB(i, place, 8.0) + fallen_dB(i, place + apart, 12.0);
            });
            ASSERT_EQ(falls.size(), 2U) << apart << ' ' << place;
            EXPECT_NEAR(falls[0], place + 0.5 * kFallsPulse, kFallsPulse) << apart;
            EXPECT_NEAR(falls[1], place + apart + 0.5 * kFallsPulse, kFallsPulse) << apart;
        }
    }
}

TEST(LightFalls, AreNoReflectionsNorWhatFibreLoses)
{
    EXPECT_TRUE(fallsOf([](double i) { return 30.0 - 0.001 * i; }).empty());
    EXPECT_TRUE(fallsOf([](double i) { return 30.0 + fallen_dB(i, 3000.0, 0.8); }).empty());
    for (const double pulses : {1.0, 3.0, 10.0, 20.0}) {
        const auto reflection = [=](double i) {
            return 20.0 + (i >= 3000.0 && i < 3000.0 + pulses * kFallsPulse ? 15.0 : 0.0);
        };
        EXPECT_TRUE(fallsOf(reflection).empty()) << pulses;
    }
}

TEST(LightFalls, StandEmptyAndTinyTraces)
{
    for (const std::size_t size : {0U, 1U, 2U, 15U}) {
        std::vector<std::uint16_t> counts(size, 30000);
        if (size > 1) {
            counts.back() = 60000;
        }
        const otdr::Trace trace(otdr::RawSamples(counts), otdr::kUsualDbPerCount, {});
        for (const double pulse : {0.1, 1.0, 100.0}) {
            EXPECT_LE(otdr::lightFalls(trace, pulse, 0, size, kReach).size(), 1U) << size;
        }
    }
}

} // namespace
