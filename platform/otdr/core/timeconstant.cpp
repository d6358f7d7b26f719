#include "platform/otdr/core/timeconstant.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/fibretrace.h"
#include "platform/otdr/core/peakgroup.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

/// The flank of a peak, dB below its height, and what a time constant takes off, 5 log10(e).
constexpr double kHighFlank_dB = 3.5;
constexpr double kLowFlank_dB = 9.0;
constexpr double kLeastFlank_dB = 4.5;
constexpr double kLongestFlankPulses = 20.0;

/// The part of its height to which a peak is seen to rise, and no faster than by this part of the
/// time that its receiver would take.
constexpr double kRisen = 0.6;
constexpr double kSlowRise = 0.5;

/// Whether a peak rises as slowly as it falls with a time constant, samples: what recovers from an
/// overload has risen at once.
bool risesWith(const FibreTrace& trace, const PeakGroup& peak, const Line& before, double constant)
{
    const double foot = peak.feet.front();
    const double risen = 1.0 + kRisen * (powerRatio(peak.heights_dB.front()) - 1.0);
    auto i = static_cast<std::size_t>(std::max(0.0, foot));
    while (static_cast<double>(i) < trace.size()
           && powerRatio(trace.samples().level_dB(i) - before.at(static_cast<double>(i))) < risen) {
        ++i;
    }
    // 1 - exp(-t / tau) = 0.6, and the sample before.
    return static_cast<double>(i) - foot + 1.0 > kSlowRise * -std::log1p(-kRisen) * constant;
}

} // namespace

std::optional<double> timeConstantOf(const FibreTrace& trace, const PeakGroup& peak,
                                     const Line& before)
{
    const double height = peak.heights_dB.front();
    if (peak.saturated() || peak.feet.size() > 1 || height < kLeastFlank_dB) {
        return std::nullopt;
    }
    // Behind the pulse its light falls as exp(-t / tau): 5 log10(e) dB of the trace for each.
    const double full = levelOfRatio_dB(powerRatio(height) - 1.0);
    const double high = full - kHighFlank_dB;
    const double low = std::max(full - kLowFlank_dB, 0.0);
    std::optional<double> from;
    double fromLevel = 0.0;
    double top = full;
    const auto last = static_cast<std::size_t>(
        std::min(peak.feet.front() + kLongestFlankPulses * trace.shape().pulse(), trace.size()));
    auto i =
        static_cast<std::size_t>(std::max(0.0, peak.feet.front() + 0.5 * trace.shape().pulse()));
    for (; i < last; ++i) {
        const auto index = static_cast<double>(i);
        const double ratio = powerRatio(trace.samples().level_dB(i) - before.at(index)) - 1.0;
        const double over = ratio > 0.0 ? levelOfRatio_dB(ratio) : low - 1.0;
        if (over > high) {
            from.reset();
            top = over;
        } else if (!from && over >= low) {
            from = index;
            fromLevel = over;
        } else if (over < low) {
            // Where no sample lies on the flank, it has come down from the top within one.
            const double constant = from
                ? (index - *from) / std::max(0.5, fromLevel - over) * kDbPerNeper
                : kDbPerNeper / std::max(0.5, top - low);
            return risesWith(trace, peak, before, constant) ? std::optional(constant)
                                                            : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace otdr
