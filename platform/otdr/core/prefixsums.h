#pragma once

#include "platform/otdr/core/rawsamples.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace otdr {

/// Sums over a stretch of samples with the index counted from `centre`, a sample in the middle of
/// the stretch, and the raw count from `base`; exact.
struct LineSums
{
    std::size_t samples = 0;
    std::size_t centre = 0;
    std::int64_t base = 0;
    std::int64_t y = 0; ///< sum of raw - base
    std::int64_t xy = 0; ///< sum of (i - centre) (raw - base)
    std::int64_t yy = 0; ///< sum of (raw - base) squared
};

/// Answers for any stretch of a trace the sums that a least-squares line needs, at a cost that does
/// not depend on its length.
///
/// Keeps running sums every 64 samples, in whole numbers that wrap around: a difference of two is
/// exact as long as itself fits, which it does for stretches of up to kLongest samples, wherever
/// they lie. Memory: a fifth of that of the samples.
class PrefixSums
{
public:
    /// Longest stretch whose sums fit into 64 bits: 2^15 counts times (2^25 samples)^2 / 4.
    static constexpr std::size_t kLongest = std::size_t {1} << 25;

    /// Shares the samples. Cost: one pass over them.
    explicit PrefixSums(RawSamples samples);

    /// Sums over the samples first .. last - 1, cut to the trace. All 0 for no samples, and for
    /// more than kLongest.
    [[nodiscard]] LineSums sums(std::size_t first, std::size_t last) const;

    /// The same where the scatter about the line is not asked for: yy stays 0, at half the cost.
    [[nodiscard]] LineSums sumsWithoutSquares(std::size_t first, std::size_t last) const;

    /// Mean raw count of the samples first .. last - 1, cut to the trace, however many; NaN for
    /// none.
    [[nodiscard]] double mean(std::size_t first, std::size_t last) const;

    /// Bytes kept beside the samples.
    [[nodiscard]] std::size_t bytes() const { return marks.size() * sizeof(Running); }

private:
    struct Running
    {
        std::uint64_t y = 0; ///< of raw - 2^15
        std::uint64_t xy = 0; ///< of i (raw - 2^15)
        std::uint64_t yy = 0;

        friend Running operator+(const Running& a, const Running& b)
        {
            return {a.y + b.y, a.xy + b.xy, a.yy + b.yy};
        }

        friend Running operator-(const Running& a, const Running& b)
        {
            return {a.y - b.y, a.xy - b.xy, a.yy - b.yy};
        }
    };

    /// Sums of the samples before index i.
    template <bool squares>
    [[nodiscard]] Running before(std::size_t i) const;
    template <bool squares>
    [[nodiscard]] Running straightSum(std::size_t first, std::size_t last) const;
    template <bool squares>
    [[nodiscard]] LineSums sumsWith(std::size_t first, std::size_t last) const;

    /// Of raw - 2^15 alone.
    [[nodiscard]] std::int64_t totalBefore(std::size_t i) const;
    [[nodiscard]] std::int64_t straightTotal(std::size_t first, std::size_t last) const;
    [[nodiscard]] std::size_t markNear(std::size_t i) const;

    RawSamples samples;
    std::vector<Running> marks;
};

/// Answers for any stretch of a trace the sum of its linear power, 10^(level / 5), at a cost that
/// does not depend on its length.
///
/// Power is counted relative to the strongest sample of the trace, and running sums are kept in two
/// doubles each: the sum of a far stretch is as good as that of a near one. Good to 1e-9 where the
/// stretch is less than 100 dB below the strongest sample; counts of 0.001 dB span 65 dB. Memory:
/// an eighth of that of the samples.
class PowerSums
{
public:
    /// Shares the samples; dbPerCount as in Trace. Cost: one pass over them.
    PowerSums(RawSamples samples, double dbPerCount);

    /// Sum of 10^((level - reference) / 5) over the samples first .. last - 1, cut to the trace.
    /// Levels as in Trace, dB. 0 for no samples.
    [[nodiscard]] double sum(std::size_t first, std::size_t last, double reference_dB) const;

    /// Bytes kept beside the samples.
    [[nodiscard]] std::size_t bytes() const { return marks.size() * sizeof(Running); }

private:
    /// high + low, |low| at most half a unit in the last place of high.
    struct Running
    {
        double high = 0.0;
        double low = 0.0;
    };

    [[nodiscard]] static Running plus(Running sum, double value);
    [[nodiscard]] double straightSum(std::size_t first, std::size_t last) const;

    RawSamples samples;
    double strongest_dB = 0.0;
    // 10^(level / 5) of a count is the product of the two factors of its bytes.
    std::array<double, 256> upperByte {};
    std::array<double, 256> lowerByte {};
    std::vector<Running> marks;
};

} // namespace otdr
