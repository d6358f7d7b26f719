#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace otdr {

class Trace;

/// Standard deviation of the samples first .. last - 1 about the fibre, dB, by the median of second
/// differences over `lag` samples, > 0: slopes do not count, nor what disturbs few of them. 0 where
/// there are none.
[[nodiscard]] double scatterOf_dB(const Trace& trace, std::size_t first, std::size_t last,
                                  std::size_t lag);

/// By how many counts sample i, lag <= i < size - lag, is off the middle between those at a
/// distance on both sides, twice.
[[nodiscard]] int secondDifferenceAt(const Trace& trace, std::size_t i, std::size_t lag);

/// The standard deviation of a sample that the second differences show, dB. At least one.
[[nodiscard]] double scatterBy_dB(const Trace& trace, std::vector<int>& differences);

/// Median of absolute values of a standard normal variable.
constexpr double kMedianOfNormal = 0.6745;

/// The middle one of some values, at least one, which change their order.
template <typename Number>
[[nodiscard]] double medianOf(std::vector<Number>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return static_cast<double>(*middle);
}

} // namespace otdr
