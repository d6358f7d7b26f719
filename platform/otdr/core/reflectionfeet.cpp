#include "platform/otdr/core/reflectionfeet.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/risinglight.h"
#include "platform/otdr/core/shortfibre.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace otdr {

namespace {

/// A reflection rises by more than a tail does, to fall again within two pulses, or suddenly, from
/// light that stands so far above the RMS noise, and by so many times the noise.
constexpr double kTailRise_dB = 0.5;
constexpr double kPeakPulses = 2.0;
constexpr double kSeenAboveNoise_dB = 2.0;
constexpr double kTimesNoise = 20.0;

/// An echo stands within so many pulses of where light comes from that went a part of the way
/// twice. The brightest reflections are asked for theirs.
constexpr double kEchoPulses = 2.0;
constexpr std::size_t kBrightest = 64;

struct Reflection
{
    double foot; ///< where it begins to rise
    double top_dB; ///< its highest level
};

/// Whether the light was gone for less than half a pulse, and is back where it would have fallen
/// to: no fibre makes it so, but a receiver swings. Between two reflections it is gone as shortly,
/// but had risen before.
bool isBackFromSwing(const FibreTrace& trace, double foot, double base_dB, double top_dB)
{
    const double w = trace.scale().pulse;
    const double quarter = std::max(1.0, std::floor(0.25 * w));
    const auto before_dB = [&](double index) { return trace.mean_dB(index - quarter, index); };
    const double fall_dB = before_dB(foot - 2.0 * w) - before_dB(foot - w);
    const double expected_dB = before_dB(foot - w) - fall_dB;
    return fall_dB > -kTailRise_dB && top_dB < expected_dB + kTailRise_dB
        && highest_dB(trace, foot - 0.5 * w, foot) > 0.5 * (base_dB + top_dB);
}

/// Whether what rises is a reflection: a receiver that comes back from a swing rises but once, and
/// noise does not for long.
bool isPlain(const FibreTrace& trace, double foot, double sudden_dB)
{
    const double w = trace.scale().pulse;
    const double half = std::max(2.0, std::floor(0.5 * w));
    const double noise_dB = trace.noise().rms_dB();
    const double base_dB = trace.mean_dB(foot - half, foot);
    const double top_dB = trace.mean_dB(foot + 0.25 * w, foot + 0.25 * w + half);
    const double behind_dB = trace.mean_dB(foot + kPeakPulses * w, foot + (kPeakPulses + 1.0) * w);
    const bool isPeak =
        top_dB - std::max(base_dB, behind_dB) > kTailRise_dB || top_dB - base_dB > sudden_dB;
    return isPeak && !isBackFromSwing(trace, foot, base_dB, top_dB)
        && base_dB > noise_dB + kSeenAboveNoise_dB
        && powerRatio(top_dB) - powerRatio(base_dB) > kTimesNoise * powerRatio(noise_dB);
}

std::vector<Reflection> reflectionsIn(const FibreTrace& trace, double from, double to,
                                      double sudden_dB)
{
    std::vector<Reflection> plain;
    for (const double foot : risesIn(trace, from, to, kTailRise_dB)) {
        if (isPlain(trace, foot, sudden_dB)) {
            plain.push_back({foot, highest_dB(trace, foot, foot + trace.scale().pulse)});
        }
    }
    return plain;
}

/// What an echo may come from: the port and the brightest reflections behind it.
std::vector<Reflection> sources(const FibreTrace& trace, double to, double sudden_dB)
{
    const double launch = trace.launch();
    const double launchOver = launch + trace.gap();
    std::vector<Reflection> all = reflectionsIn(trace, launchOver, to, sudden_dB);
    if (all.size() > kBrightest) {
        std::nth_element(
            all.begin(), all.begin() + kBrightest, all.end(),
            [](const Reflection& a, const Reflection& b) { return a.top_dB > b.top_dB; });
        all.resize(kBrightest);
    }
    all.push_back({launch, highest_dB(trace, launch, launchOver)});
    return all;
}

/// Whether a reflection stands as far behind one as another behind a third, or the port, and is no
/// brighter than the two that it came from.
bool isEcho(const Reflection& seen, const std::vector<Reflection>& all, double tolerance)
{
    const auto canSend = [&](const Reflection& one) {
        return one.foot < seen.foot && one.top_dB > seen.top_dB;
    };
    const auto isAt = [&](double index) {
        return std::any_of(all.begin(), all.end(), [&](const Reflection& one) {
            return std::abs(one.foot - index) < tolerance;
        });
    };
    for (const Reflection& sent : all) {
        for (const Reflection& back : all) {
            if (canSend(sent) && canSend(back) && isAt(sent.foot + back.foot - seen.foot)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

std::vector<double> reflectionFeet(const FibreTrace& trace, double from, double to,
                                   double sudden_dB)
{
    const std::vector<Reflection> seen = reflectionsIn(trace, from, to, sudden_dB);
    if (seen.empty()) {
        return {};
    }
    const std::vector<Reflection> all = sources(trace, to, sudden_dB);
    const double tolerance = kEchoPulses * trace.scale().pulse;
    std::vector<double> feet;
    for (const Reflection& one : seen) {
        if (!isEcho(one, all, tolerance)) {
            feet.push_back(one.foot);
        }
    }
    return feet;
}

} // namespace otdr
