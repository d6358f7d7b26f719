#include "platform/otdr/core/scatter.h"

#include "platform/otdr/core/trace.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace otdr {

namespace {

/// Differences of fewer counts are small; 1 dB for nearly every trace.
constexpr std::size_t kSmallNumbers = 1024;

/// Median of whole numbers from 0 on that are mostly small. These are counted: no processor
/// foresees the branches of a sort, which would cost more than all else that is done with a block.
double medianOfSmall(std::vector<int>& values)
{
    std::array<std::uint32_t, kSmallNumbers> found {};
    for (const int value : values) {
        ++found[static_cast<std::size_t>(std::min(value, static_cast<int>(kSmallNumbers) - 1))];
    }
    std::size_t below = 0;
    for (std::size_t value = 0; value + 1 < kSmallNumbers; ++value) {
        below += found[value];
        if (below > values.size() / 2) {
            return static_cast<double>(value);
        }
    }
    return medianOf(values);
}

} // namespace

int secondDifferenceAt(const Trace& trace, std::size_t i, std::size_t lag)
{
    const RawSamples& counts = trace.samples();
    return std::abs(int {counts[i - lag]} - 2 * int {counts[i]} + int {counts[i + lag]});
}

double scatterBy_dB(const Trace& trace, std::vector<int>& differences)
{
    return medianOfSmall(differences) * trace.dbPerCount() / (kMedianOfNormal * std::sqrt(6.0));
}

double scatterOf_dB(const Trace& trace, std::size_t first, std::size_t last, std::size_t lag)
{
    std::vector<int> differences;
    last = std::min(last, trace.size());
    for (std::size_t i = first + lag; i + lag < last; ++i) {
        differences.push_back(secondDifferenceAt(trace, i, lag));
    }
    return differences.empty() ? 0.0 : scatterBy_dB(trace, differences);
}

} // namespace otdr
