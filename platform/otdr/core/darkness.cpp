#include "platform/otdr/core/darkness.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace otdr {

namespace {

/// Samples tell enough if there are so many.
constexpr std::size_t kEnough = 16384;

/// What lies of a normal distribution below one sigma, and below minus one.
constexpr double kBelowOneSigma = 0.8413;
constexpr double kBelowMinusOneSigma = 0.1587;

/// Nothing but dropouts lies below the level of this part of the samples.
constexpr double kDropouts = 0.02;

/// Of pure noise, the level that 16 % exceed and the median lie far apart; of light with noise,
/// close together. 1 dB: light of 1.7 times the noise.
constexpr double kLeastSpread_dB = 1.0;

/// So many samples of one value are no chance, and are compared with as many of what is before.
constexpr std::size_t kFewestFill = 64;
constexpr std::size_t kBeforeFill = 512;

/// Neighbours in noise differ by so much, dB, one in so many at least; in light only at an event.
constexpr double kNoise_dB = 1.0;
constexpr std::size_t kNoisePart = 20;

/// What is stored for no light lies within so much of the darkest sample.
constexpr double kDarkest_dB = 3.0;

/// What stands above this part of a record's darkness is light.
constexpr double kNearlyAll = 0.98;

/// The value that this part of the values, 0 .. 1, do not exceed.
double quantileOf(std::vector<double>& values, double part)
{
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

/// Whether neighbours among the samples differ as they do in noise.
bool isRestless(const Trace& trace, std::size_t first, std::size_t last)
{
    std::size_t jumps = 0;
    for (std::size_t i = first + 1; i < last; ++i) {
        jumps += std::abs(trace.level_dB(i) - trace.level_dB(i - 1)) > kNoise_dB ? 1 : 0;
    }
    return jumps * kNoisePart > last - first;
}

} // namespace

Darkness darknessOf(const Trace& trace, std::size_t first, std::size_t last)
{
    std::vector<double> levels;
    const std::size_t stride = std::max<std::size_t>(1, (last - first) / kEnough);
    for (std::size_t i = first; i < last; i += stride) {
        levels.push_back(trace.level_dB(i));
    }
    Darkness dark;
    dark.rms_dB = quantileOf(levels, kBelowOneSigma);
    dark.median_dB = quantileOf(levels, 0.5);
    dark.least_dB = *std::min_element(levels.begin(), levels.end());
    dark.most_dB = quantileOf(levels, kNearlyAll);
    dark.isEmpty = dark.median_dB <= dark.least_dB;
    // Light is below its noise where that much of it is cut off at the least level; of fibre with
    // darkness behind it, the greater part may be as strong as the strongest.
    const double lowest = quantileOf(levels, kDropouts);
    const double median = powerRatio(dark.median_dB);
    const bool isSkewed = median - powerRatio(lowest) < 2.0 * (powerRatio(dark.rms_dB) - median);
    const bool isCutOff = quantileOf(levels, kBelowMinusOneSigma) <= lowest && isSkewed;
    dark.isNoise = dark.rms_dB - (isCutOff ? lowest : dark.median_dB) >= kLeastSpread_dB;
    return dark;
}

bool isDark(const Trace& trace, std::size_t first, std::size_t last)
{
    const Darkness dark = darknessOf(trace, first, last);
    const RawSamples& counts = trace.samples();
    const double darkest = trace.toLevel_dB(*std::max_element(counts.begin(), counts.end()));
    return dark.isNoise || (dark.isEmpty && dark.least_dB < darkest + kDarkest_dB)
        || isRestless(trace, first, last);
}

std::size_t measuredSamples(const Trace& trace)
{
    const RawSamples& counts = trace.samples();
    const std::size_t size = counts.size();
    std::size_t end = size;
    while (end > 0 && counts[end - 1] == counts[size - 1]) {
        --end;
    }
    if (size - end < kFewestFill || end == 0) {
        return size;
    }
    const bool isFill =
        counts[size - 1] == 0 || isRestless(trace, end - std::min(end, kBeforeFill), end);
    return isFill ? end : size;
}

} // namespace otdr
