#include "platform/otdr/core/lossintail.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/risinglight.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace otdr {

namespace {

/// Fibre in front of a loss is told by a pulse of it, and no fewer samples than twice these: more
/// than this part of what it falls by there, and so many errors, are lost at once, and it rises by
/// no more than this part, where it does.
constexpr double kFewestSamples = 3.0;
constexpr double kLostPart = 0.5;
constexpr double kErrors = 5.0;
constexpr double kRisingPart = 0.05;

/// Light is compared by means, so many in a pulse, with so many pulses of the fibre that follows,
/// and one at least.
constexpr double kMeansPerPulse = 16.0;
constexpr double kFibrePulses = 6.0;

/// Time constants of tails that are tried, pulses, and from one to the next.
constexpr double kShortestTail = 0.3;
constexpr double kLongestTail = 30.0;
constexpr double kTailFactor = 1.5;

/// A tail that leaves so many times what the loss leaves is none.
constexpr double kLeavesMore = 4.0;

/// Light over that of the fibre behind it, less 1: means from the first index on.
struct Light
{
    double first;
    double samples; ///< of a mean
    std::vector<double> over;
};

Light lightOver(const FibreTrace& trace, const Line& fibre, double from, double to)
{
    const double samples = std::max(1.0, std::floor(trace.scale().pulse / kMeansPerPulse));
    Light light {std::ceil(std::max(0.0, from)), samples, {}};
    for (double at = light.first; at + samples <= std::min(to, trace.size()); at += samples) {
        const double middle = at + 0.5 * (samples - 1.0);
        light.over.push_back(powerRatio(trace.mean_dB(at, at + samples) - fibre.at(middle)) - 1.0);
    }
    return light;
}

/// A fall for good, with a ramp behind it that counts for nothing.
struct Fall
{
    std::size_t at = 0;
    std::size_t over = 0; ///< where the ramp is over
    double level = 0.0; ///< in front of it
    double squares = std::numeric_limits<double>::infinity(); ///< what it leaves of a mean
};

/// The fall from one level to the fibre that leaves least of the light.
Fall bestFall(const Light& light, double ramp, double fewest)
{
    const std::size_t n = light.over.size();
    const auto least = static_cast<std::size_t>(std::ceil(fewest / light.samples));
    const auto dead = static_cast<std::size_t>(std::ceil(ramp / light.samples));
    std::vector<double> sums(n + 1);
    std::vector<double> squares(n + 1);
    for (std::size_t i = 0; i < n; ++i) {
        sums[i + 1] = sums[i] + light.over[i];
        squares[i + 1] = squares[i] + light.over[i] * light.over[i];
    }
    Fall best;
    for (std::size_t at = least; at + dead + least <= n; ++at) {
        const double level = sums[at] / static_cast<double>(at);
        const double left = squares[at] - level * sums[at] + squares[n] - squares[at + dead];
        const double mean = left / static_cast<double>(n - dead);
        if (mean < best.squares) {
            best = {at, at + dead, level, mean};
        }
    }
    return best;
}

/// What the best tail leaves of a mean of the same light.
double leftByTails(const Light& light, const Fall& fall, double pulse)
{
    const std::size_t n = light.over.size();
    const auto counted = static_cast<double>(n - (fall.over - fall.at));
    double least = std::numeric_limits<double>::infinity();
    for (double constant = kShortestTail; constant < kLongestTail; constant *= kTailFactor) {
        const double fading = std::exp(-light.samples / (constant * pulse));
        double tail = 1.0;
        double product = 0.0;
        double tails = 0.0;
        double squares = 0.0;
        for (std::size_t i = 0; i < n; ++i, tail *= fading) {
            if (i < fall.at || i >= fall.over) {
                product += tail * light.over[i];
                tails += tail * tail;
                squares += light.over[i] * light.over[i];
            }
        }
        least = std::min(least, (squares - product * product / tails) / counted);
    }
    return least;
}

} // namespace

/// Between both pieces of light there is room for the ramp of the loss.
bool isBeforeLoss(const FibreTrace& trace, double index)
{
    const double half = std::max(kFewestSamples, 0.5 * trace.scale().pulse);
    const double below = index + 2.0 * half + trace.gap();
    const auto fallWithin = [&](double at) {
        return trace.mean_dB(at, at + half) - trace.mean_dB(at + half, at + 2.0 * half);
    };
    const double fall_dB =
        trace.mean_dB(index, index + 2.0 * half) - trace.mean_dB(below, below + 2.0 * half);
    const double even_dB = fallWithin(index);
    // What falls so much from one half to the next falls so many times as much from piece to piece.
    const double times = (below - index) / half;
    const double goesOn_dB = times * std::max({0.0, even_dB, fallWithin(below)});
    const double error_dB = kErrors * trace.noise().sigma_dB(below)
        * std::sqrt(2.0 * trace.noise().correlation() / half);
    return even_dB > -std::max(kRisingPart * fall_dB, error_dB)
        && fall_dB - goesOn_dB > std::max(kLostPart * fall_dB, times * error_dB);
}

std::optional<double> lossInTail(const FibreTrace& trace, double from, double to, double last)
{
    const double w = trace.scale().pulse;
    const double end = std::min(to + trace.gap(), last);
    const double seen = std::min(end + kFibrePulses * w, last);
    const auto fibre = trace.fit(to, seen);
    if (!fibre || seen - to < w) {
        return std::nullopt;
    }
    const Light light = lightOver(trace, fibre->line, from, end);
    const Fall fall = bestFall(light, trace.gap(), std::max(kFewestSamples, 0.5 * w));
    if (!(fall.level > kErrors * fibre->errorAt_dB(from) / kDbPerNeper)) {
        return std::nullopt;
    }
    const double tail = leftByTails(light, fall, w);
    const double sigma = trace.noise().sigma_dB(0.5 * (from + to)) / kDbPerNeper;
    const double error = kErrors * sigma * std::sqrt(trace.noise().correlation());
    const double samples = static_cast<double>(light.over.size()) * light.samples;
    const bool isLoss = tail > kLeavesMore * fall.squares
        && (tail - fall.squares) * samples > error * error && risesIn(trace, from, end).empty();
    return isLoss ? std::optional(light.first + static_cast<double>(fall.at) * light.samples)
                  : std::nullopt;
}

} // namespace otdr
