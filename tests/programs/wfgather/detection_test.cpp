#include "programs/wfgather/receiver.h"
#include "tests/programs/wfgather/measured.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using gather::detect;
using gather::LinkResponse;
using gather::Sampling;
using gather::timeConstant_ns;

constexpr double kBackscatter_perNs = 1e-8;

LinkResponse backscatter(double decay_perNs, double length_ns)
{
    LinkResponse response;
    response.launch_perNs = kBackscatter_perNs;
    response.backscatter = {{0.0, length_ns, kBackscatter_perNs, decay_perNs}};
    return response;
}

LinkResponse reflection(double at_ns, double power)
{
    LinkResponse response;
    response.launch_perNs = kBackscatter_perNs;
    response.reflections = {{at_ns, power, false}};
    return response;
}

double sum(const std::vector<double>& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0);
}

/// Index at which a rising edge crosses a value, between samples by a straight line.
double crossing(const std::vector<double>& values, double level)
{
    std::size_t i = 1;
    while (i < values.size() && values[i] < level) {
        ++i;
    }
    const double before = values[i - 1];
    return static_cast<double>(i) - 1.0 + (level - before) / (values[i] - before);
}

} // namespace

TEST(Receiver, BackscatterFollowsItsClosedForm)
{
    // An exponential passes each linear stage with a factor: the rectangle, the two boxes that
    // round its edges, the low-pass and its tail (0.3 %, eight time constants).
    for (const double pulse : {10.0, 100.0, 5000.0}) {
        const double d = 1e-5;
        const auto power = detect(backscatter(d, 1e6), pulse, {pulse / 10.0, 1000});
        const double tau = timeConstant_ns(pulse);
        const auto box = [d](double width) { return std::expm1(d * width) / (d * width); };
        const double lowPass = 0.997 / (1.0 - d * tau) + 0.003 / (1.0 - 8.0 * d * tau);
        const double factor = box(pulse) * box(0.1 * pulse) * box(0.1 * pulse) * lowPass;
        for (const std::size_t i : {200U, 500U, 999U}) {
            const double expected = factor * std::exp(-d * static_cast<double>(i) * pulse / 10.0);
            EXPECT_NEAR(power[i] / expected, 1.0, 1e-4) << pulse << " ns, sample " << i;
        }
    }
}

TEST(Receiver, BackscatterInTwoPartsIsThatOfTheWhole)
{
    const double d = 1e-4;
    const auto whole = detect(backscatter(d, 8000.0), 10.0, {5.0, 2000});
    for (const double border : {4000.0, 4000.3, 4000.9, 4004.7}) { // of a cell and within one
        LinkResponse parts = backscatter(d, border);
        parts.backscatter.push_back(
            {border, 8000.0, kBackscatter_perNs * std::exp(-d * border), d});
        const auto power = detect(parts, 10.0, {5.0, 2000});
        for (std::size_t i = 0; i < power.size(); ++i) {
            ASSERT_NEAR(power[i], whole[i], 1e-6) << border << ' ' << i;
        }
    }
}

TEST(Receiver, BackscatterEndsWithinACell)
{
    // What comes in all is the energy that was scattered, wherever the end lies.
    const auto energy = [](double length_ns) {
        return 5.0 * sum(detect(backscatter(0.0, length_ns), 10.0, {5.0, 2000}));
    };
    for (const double beyond : {0.1, 0.4, 0.8}) {
        EXPECT_NEAR(energy(4000.0 + beyond) - energy(4000.0), beyond, 0.01) << beyond;
    }
}

TEST(Receiver, APulseKeepsTheEnergyOfTheRectangle)
{
    for (const double pulse : {5.0, 100.0, 2000.0}) {
        const double interval = pulse / 8.0;
        const auto power = detect(reflection(10.0 * pulse, 1e-6), pulse, {interval, 1000});
        // In multiples of the backscatter at the port: R W / (b W) over W.
        const double expected = 1e-6 / kBackscatter_perNs;
        EXPECT_NEAR(sum(power) * interval / expected, 1.0, 1e-4) << pulse << " ns";
    }
}

TEST(Receiver, AReflectionRisesToItsReflectanceOverTheBackscatter)
{
    for (const double pulse : {10.0, 100.0, 1000.0}) {
        const auto power = detect(reflection(10.0 * pulse, 1e-6), pulse, {pulse / 50.0, 1000});
        const double top = *std::max_element(power.begin(), power.end());
        const double expected = 1e-6 / (kBackscatter_perNs * pulse);
        EXPECT_NEAR(10.0 * std::log10(top / expected), 0.0, 0.03) << pulse << " ns";
    }
}

TEST(Receiver, NothingComesBeforeItsEvent)
{
    const double pulse = 100.0;
    const auto power = detect(reflection(1000.0, 1e-6), pulse, {5.0, 1000});
    const double top = *std::max_element(power.begin(), power.end());
    EXPECT_EQ(*std::max_element(power.begin(), power.begin() + 200), 0.0);
    EXPECT_GT(power[203], 0.0);
    EXPECT_GT(power[205], 0.1 * top);
}

TEST(Receiver, APeakIsAsWideAsThePulse)
{
    const double pulse = 100.0;
    const auto power = detect(reflection(1000.0, 1e-6), pulse, {2.5, 1000});
    const double half = *std::max_element(power.begin(), power.end()) / 2.0;
    const double rise = crossing(power, half);
    const std::vector<double> backwards(power.rbegin(), power.rend());
    const double fall = static_cast<double>(power.size() - 1) - crossing(backwards, half);
    EXPECT_NEAR((fall - rise) * 2.5 / pulse, 1.0, 0.02);
}

TEST(Receiver, AnEventIsPlacedBetweenTheSamples)
{
    const auto centre = [](double at_ns) {
        const auto power = detect(reflection(at_ns, 1e-6), 1000.0, {20.0, 2000});
        double moment = 0.0;
        for (std::size_t i = 0; i < power.size(); ++i) {
            moment += power[i] * static_cast<double>(i);
        }
        return moment / sum(power);
    };
    for (const double shift : {0.1, 0.25, 0.5, 0.75, 1.0}) {
        EXPECT_NEAR(centre(1000.0 + shift * 20.0) - centre(1000.0), shift, 0.01);
    }
}

TEST(Receiver, ReflectionsAddUp)
{
    const Sampling sampling {10.0, 500};
    const auto one = detect(reflection(1000.0, 1e-6), 100.0, sampling);
    const auto other = detect(reflection(1055.0, 3e-6), 100.0, sampling);
    LinkResponse both = reflection(1000.0, 1e-6);
    both.reflections.push_back({1055.0, 3e-6, true});
    const auto together = detect(both, 100.0, sampling);
    for (std::size_t i = 0; i < together.size(); ++i) {
        EXPECT_NEAR(together[i], one[i] + other[i], 1e-9);
    }
}

TEST(Receiver, ClipsAtItsLimitAndTakesTimeToRecover)
{
    const Sampling sampling {5.0, 2000};
    const double limit = std::pow(10.0, gather::kSaturation_dB / 5.0);
    const double fits = limit * kBackscatter_perNs * 100.0 * 0.99;
    const auto below = detect(reflection(1000.0, fits), 100.0, sampling);
    const auto above = detect(reflection(1000.0, 50.0 * fits), 100.0, sampling);
    EXPECT_NEAR(*std::max_element(below.begin(), below.end()), 0.99 * limit, 0.005 * limit);
    EXPECT_EQ(*std::max_element(above.begin(), above.end()), limit);
    const auto clipped = std::count(above.begin(), above.end(), limit);
    EXPECT_GE(clipped * sampling.interval_ns, 80.0); // a flat top of nearly a pulse

    const auto lastAbove = [](const std::vector<double>& power, double level) {
        const auto found =
            std::find_if(power.rbegin(), power.rend(), [&](double p) { return p > level; });
        return static_cast<double>(power.rend() - found);
    };
    // An exponential with one pulse as its time constant takes ln(1000) pulses to fall by 15 dB.
    const double longer = (lastAbove(above, 1.0) - lastAbove(below, 1.0)) * sampling.interval_ns;
    EXPECT_GT(longer, 300.0);
    EXPECT_LT(longer, 800.0);
}

TEST(Receiver, AWeakOverloadIsForgottenSoon)
{
    const Sampling sampling {5.0, 2000};
    const double limit = std::pow(10.0, gather::kSaturation_dB / 5.0);
    const double justOver = limit * kBackscatter_perNs * 100.0 * 1.01;
    const auto weak = detect(reflection(1000.0, justOver), 100.0, sampling);
    const auto strong = detect(reflection(1000.0, 20.0 * justOver), 100.0, sampling);
    EXPECT_LT(sum(weak), 0.7 * sum(strong));
}

TEST(Receiver, StandsEventsOutsideOfTheRecord)
{
    LinkResponse response = backscatter(1e-5, 1e9);
    response.backscatter.push_back({1e9, 2e9, 1e-9, 1e-5});
    response.reflections = {
        {0.0, 1e-6, false}, {999.0, 1e-6, false}, {1000.0, 1e-6, false}, {1e9, 1e-3, false}};
    const auto power = detect(response, 100.0, {10.0, 101});
    EXPECT_EQ(power.size(), 101U);
    EXPECT_TRUE(std::all_of(power.begin(), power.end(), [](double p) { return p >= 0.0; }));
    EXPECT_NEAR(power[90], 1.0, 0.05);
}

/// Nobody would wait for it if the cost grew as the square of the samples.
TEST(Receiver, TakesAMillionSamples)
{
    const auto power = detect(backscatter(1e-7, 1e9), 100.0, {20.0, 1'000'000});
    EXPECT_EQ(power.size(), 1'000'000U);
    EXPECT_GT(power[1000], 0.0);
}
