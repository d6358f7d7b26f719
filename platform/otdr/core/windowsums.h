#pragma once

#include "platform/otdr/core/trace.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace otdr {

/// What a window of samples tells of a line through it, in whole numbers.
struct WindowSums
{
    std::int64_t y = 0; ///< sum of the raw counts
    std::int64_t xy2 = 0; ///< sum of twice the distance from the middle times the raw count
};

/// Running sums over one tile of a trace at a time: a window within it costs four reads, and what a
/// scan needs stays in the cache however long the trace is.
class NearSums
{
public:
    /// For tiles of no more samples than this.
    explicit NearSums(std::size_t longest);

    /// Goes over to the samples first .. last - 1.
    void fill(const Trace& trace, std::size_t first, std::size_t last);

    /// Of the samples first .. last - 1, which lie in the tile.
    [[nodiscard]] WindowSums of(std::size_t first, std::size_t last) const
    {
        const std::size_t from = first - begin;
        const std::size_t to = last - begin;
        const std::int64_t y = sums[to].y - sums[from].y;
        return {y,
                2 * (sums[to].xy - sums[from].xy) - static_cast<std::int64_t>(from + to - 1) * y};
    }

private:
    struct Sum
    {
        std::int64_t y = 0;
        std::int64_t xy = 0;
    };

    std::size_t begin = 0;
    std::vector<Sum> sums;
};

/// The same anywhere on a trace, from the sums that it keeps: for windows that are too long for a
/// tile, and tried at so few places that more steps for each do not count.
class FarSums
{
public:
    /// Refers to the trace, which must outlive it.
    explicit FarSums(const Trace& trace)
        : sums(trace.sums())
    {
    }

    [[nodiscard]] WindowSums of(std::size_t first, std::size_t last) const;

private:
    const PrefixSums& sums;
};

} // namespace otdr
