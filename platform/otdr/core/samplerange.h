#pragma once

#include <cmath>
#include <cstddef>

namespace otdr {

/// Samples first .. last - 1; none where first == last.
struct SampleRange
{
    std::size_t first = 0;
    std::size_t last = 0;

    [[nodiscard]] std::size_t count() const { return last - first; }

    [[nodiscard]] bool empty() const { return first == last; }
};

/// The index of the first sample at or behind a fractional index, cut to 0 .. size; size for NaN.
[[nodiscard]] inline std::size_t sampleAtOrBehind(double index, std::size_t size)
{
    if (index <= 0.0) {
        return 0;
    }
    if (!(index < static_cast<double>(size))) {
        return size;
    }
    // By hand: without SSE4.1 std::ceil is a call, and a decimation makes thousands.
    const auto whole = static_cast<std::size_t>(index);
    return static_cast<double>(whole) < index ? whole + 1 : whole;
}

/// The samples i of a trace of `size` samples with from <= i < to; none where one is NaN.
[[nodiscard]] inline SampleRange samplesBetween(double from, double to, std::size_t size)
{
    if (!(from < to)) {
        return {};
    }
    return {sampleAtOrBehind(from, size), sampleAtOrBehind(to, size)};
}

/// The samples i of a trace of `size` samples with from <= i <= to; none where one is NaN.
[[nodiscard]] inline SampleRange samplesWithin(double from, double to, std::size_t size)
{
    return from <= to ? samplesBetween(from, std::floor(to) + 1.0, size) : SampleRange {};
}

} // namespace otdr
