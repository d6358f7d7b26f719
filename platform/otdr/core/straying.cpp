#include "platform/otdr/core/straying.h"

#include "platform/otdr/core/fibretrace.h"
#include "platform/otdr/core/scatter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

constexpr double kShortestLine = 8.0;

/// Lines are laid at places an eighth of their length apart, or further: at about so many.
constexpr double kPlacesPerLine = 8.0;
constexpr double kMostPlaces = 128.0;

/// So many pairs of lines that do not overlap tell something.
constexpr double kFewestPairs = 6.0;

/// The square of a median of n distances scatters by so many times 1 / sqrt(n) of itself: by
/// chance it exceeds what noise makes it, and that would be held against the longest lines.
constexpr double kChanceOfSquare = 1.7;

using Stretch = std::pair<double, double>;

/// What pairs of lines of one length tell.
struct Pairs
{
    double apart = 0.0; ///< of them would not overlap
    std::vector<double> distances_dB;
    std::vector<double> errors_dB; ///< that noise makes
};

Pairs pairsOf(const FibreTrace& trace, const std::vector<Stretch>& stretches, double samples)
{
    const double both = 2.0 * samples + trace.gap();
    double room = 0.0;
    Pairs pairs;
    for (const auto& [from, to] : stretches) {
        room += std::max(0.0, to - from - both);
        pairs.apart += std::max(0.0, std::floor((to - from) / both));
    }
    const double step = std::max({1.0, samples / kPlacesPerLine, room / kMostPlaces});
    for (const auto& [from, to] : stretches) {
        for (double at = from + samples; at + trace.gap() + samples <= to; at += step) {
            const auto left = trace.fit(at - samples, at);
            const auto right = trace.fit(at + trace.gap(), at + trace.gap() + samples);
            if (left && right) {
                const double middle = at + 0.5 * trace.gap();
                pairs.distances_dB.push_back(std::abs(right->at(middle) - left->at(middle)));
                pairs.errors_dB.push_back(
                    std::hypot(left->errorAt_dB(middle), right->errorAt_dB(middle)));
            }
        }
    }
    return pairs;
}

} // namespace

Straying::Straying(const FibreTrace& trace, const std::vector<Stretch>& stretches)
    : shortest(std::max(kShortestLine, trace.gap()))
{
    for (double samples = shortest; samples <= trace.scale().longestWindow; samples *= 2.0) {
        Pairs pairs = pairsOf(trace, stretches, samples);
        if (pairs.apart < kFewestPairs || pairs.distances_dB.empty()) {
            break;
        }
        const double distance_dB = medianOf(pairs.distances_dB) / kMedianOfNormal;
        const double noise_dB = medianOf(pairs.errors_dB);
        const double chance = 1.0 + kChanceOfSquare / std::sqrt(pairs.apart);
        variances.push_back(
            std::max(0.0, 0.5 * (distance_dB * distance_dB - chance * noise_dB * noise_dB)));
    }
}

double Straying::ofLine_dB(double samples) const
{
    if (variances.empty()) {
        return 0.0;
    }
    const double doublings = std::floor(std::log2(std::max(1.0, samples / shortest)));
    const auto longest = static_cast<double>(variances.size() - 1);
    return std::sqrt(variances[static_cast<std::size_t>(std::min(doublings, longest))]);
}

} // namespace otdr
