#include "platform/otdr/core/windowsums.h"

namespace otdr {

NearSums::NearSums(std::size_t longest)
    : sums(longest + 1)
{
}

void NearSums::fill(const Trace& trace, std::size_t first, std::size_t last)
{
    begin = first;
    const std::uint16_t* counts = trace.samples().data() + first;
    const std::size_t size = last - first;
    std::int64_t y = 0;
    std::int64_t xy = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::int64_t raw = counts[i];
        y += raw;
        xy += static_cast<std::int64_t>(i) * raw;
        sums[i + 1] = {y, xy};
    }
}

WindowSums FarSums::of(std::size_t first, std::size_t last) const
{
    const LineSums all = sums.sumsWithoutSquares(first, last);
    const auto n = static_cast<std::int64_t>(all.samples);
    // Of an even number of samples the middle lies half a sample behind the one that sums count
    // from.
    return {all.y + all.base * n, 2 * all.xy - (n % 2 == 0 ? all.y : 0)};
}

} // namespace otdr
