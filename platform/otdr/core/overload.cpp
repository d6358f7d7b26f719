#include "platform/otdr/core/overload.h"

#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace otdr {

namespace {

/// Samples of an overloaded receiver differ by no more: by their rounding, or by this.
constexpr double kSame_dB = 0.002;
constexpr double kSameCounts = 1.0;

/// For so much of a pulse at least, and for so many samples. What lies further apart than some
/// pulses is another place.
constexpr double kTopPulses = 0.3;
constexpr double kFewestSamples = 2.0;
constexpr double kApartPulses = 2.0;

constexpr int kFewestPlaces = 2;

} // namespace

double overloadLevel_dB(const Trace& trace, double pulse)
{
    constexpr double kNone = std::numeric_limits<double>::infinity();
    if (trace.size() == 0) {
        return kNone;
    }
    const RawSamples& counts = trace.samples();
    // Counts grow as light gets weaker.
    const double brightest = *std::min_element(counts.begin(), counts.end());
    const double most = brightest + std::max(kSameCounts, kSame_dB / trace.dbPerCount());
    const double fewest = std::max(kFewestSamples, kTopPulses * pulse);
    const auto isAtTop = [most](std::uint16_t count) { return count <= most; };
    int places = 0;
    double lastEnd = -kNone;
    for (auto top = std::find_if(counts.begin(), counts.end(), isAtTop); top != counts.end();) {
        const auto end = std::find_if_not(top, counts.end(), isAtTop);
        const auto begin = static_cast<double>(top - counts.begin());
        if (static_cast<double>(end - top) >= fewest) {
            places += begin > lastEnd + kApartPulses * pulse ? 1 : 0;
            lastEnd = static_cast<double>(end - counts.begin());
        }
        top = std::find_if(end, counts.end(), isAtTop);
    }
    return places >= kFewestPlaces ? trace.toLevel_dB(most) : kNone;
}

} // namespace otdr
