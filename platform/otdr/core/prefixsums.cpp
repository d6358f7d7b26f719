#include "platform/otdr/core/prefixsums.h"

#include "platform/otdr/core/decibels.h"

#include <algorithm>
#include <limits>
#include <utility>

// Compiled with -O3: the loops over whole blocks gain from vector instructions.

namespace otdr {

namespace {

constexpr std::size_t kBlock = 64;
constexpr std::int64_t kMiddle = 32768; // of the counts: halves what the sums have to hold

/// The smallest count, that of the strongest sample. Signed, because SSE2 knows no other 16-bit
/// minimum.
std::uint16_t smallestCount(const RawSamples& samples)
{
    std::int16_t smallest = std::numeric_limits<std::int16_t>::max();
    for (const std::uint16_t raw : samples) {
        smallest = std::min(smallest, static_cast<std::int16_t>(raw ^ 0x8000U));
    }
    return static_cast<std::uint16_t>(static_cast<std::uint16_t>(smallest) ^ 0x8000U);
}

} // namespace

/// Sums over a short stretch, sample by sample.
template <bool squares>
PrefixSums::Running PrefixSums::straightSum(std::size_t first, std::size_t last) const
{
    // Of a short stretch, counted from its own start, 64 bits are far from needed: 32 make faster
    // vectors.
    const std::uint16_t* counts = samples.data() + first;
    const auto n = static_cast<std::int16_t>(last - first);
    std::int32_t y = 0;
    std::int32_t xy = 0;
    std::int64_t yy = 0;
    for (std::int16_t i = 0; i < n; ++i) {
        const auto value = static_cast<std::int16_t>(counts[i] - kMiddle);
        y += value;
        xy += static_cast<std::int32_t>(i) * value;
        if (squares) {
            const std::int32_t square = static_cast<std::int32_t>(value) * value;
            yy += square;
        }
    }
    const auto sum = static_cast<std::uint64_t>(static_cast<std::int64_t>(y));
    return {sum, static_cast<std::uint64_t>(static_cast<std::int64_t>(xy)) + first * sum,
            static_cast<std::uint64_t>(yy)};
}

PrefixSums::PrefixSums(RawSamples shared)
    : samples(std::move(shared))
{
    const std::size_t blocks = samples.size() / kBlock;
    marks.resize(blocks + 1);
    for (std::size_t b = 0; b < blocks; ++b) {
        marks[b + 1] = marks[b] + straightSum<true>(b * kBlock, (b + 1) * kBlock);
    }
}

std::int64_t PrefixSums::straightTotal(std::size_t first, std::size_t last) const
{
    const std::uint16_t* counts = samples.data();
    std::int32_t y = 0; // of at most two blocks
    for (std::size_t i = first; i < last; ++i) {
        y += static_cast<std::int16_t>(counts[i] - kMiddle);
    }
    return y;
}

/// The mark nearest to an index: what lies between is half a block at most, but behind the last
/// mark.
std::size_t PrefixSums::markNear(std::size_t i) const
{
    return std::min((i + kBlock / 2) / kBlock, marks.size() - 1);
}

template <bool squares>
PrefixSums::Running PrefixSums::before(std::size_t i) const
{
    const std::size_t mark = markNear(i);
    const std::size_t at = mark * kBlock;
    return at <= i ? marks[mark] + straightSum<squares>(at, i)
                   : marks[mark] - straightSum<squares>(i, at);
}

std::int64_t PrefixSums::totalBefore(std::size_t i) const
{
    const std::size_t mark = markNear(i);
    const std::size_t at = mark * kBlock;
    const auto total = static_cast<std::int64_t>(marks[mark].y);
    return at <= i ? total + straightTotal(at, i) : total - straightTotal(i, at);
}

double PrefixSums::mean(std::size_t first, std::size_t last) const
{
    last = std::min(last, samples.size());
    if (first >= last) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const std::size_t n = last - first;
    const std::int64_t total =
        n <= 2 * kBlock ? straightTotal(first, last) : totalBefore(last) - totalBefore(first);
    return kMiddle + static_cast<double>(total) / static_cast<double>(n);
}

LineSums PrefixSums::sums(std::size_t first, std::size_t last) const
{
    return sumsWith<true>(first, last);
}

LineSums PrefixSums::sumsWithoutSquares(std::size_t first, std::size_t last) const
{
    return sumsWith<false>(first, last);
}

template <bool squares>
LineSums PrefixSums::sumsWith(std::size_t first, std::size_t last) const
{
    last = std::min(last, samples.size());
    LineSums result;
    if (first >= last || last - first > kLongest) {
        return result;
    }
    const Running sum = before<squares>(last) - before<squares>(first);
    const std::size_t n = last - first;
    result.samples = n;
    result.centre = first + (n - 1) / 2;

    // From the middle of the counts to the mean of these: small numbers lose nothing when they
    // become doubles.
    const auto y = static_cast<std::int64_t>(sum.y);
    const auto count = static_cast<std::int64_t>(n);
    const std::int64_t shift = y / count;
    const std::int64_t positions = n % 2 == 0 ? count / 2 : 0; // sum of i - centre
    result.base = kMiddle + shift;
    result.y = y - shift * count;
    result.xy = static_cast<std::int64_t>(sum.xy - result.centre * sum.y) - shift * positions;
    if (squares) {
        result.yy = static_cast<std::int64_t>(sum.yy) - 2 * shift * y + shift * shift * count;
    }
    return result;
}

PowerSums::PowerSums(RawSamples shared, double dbPerCount)
    : samples(std::move(shared))
{
    const double strongest = smallestCount(samples);
    strongest_dB = (65535.0 - strongest) * dbPerCount;
    for (std::size_t byte = 0; byte < 256; ++byte) {
        const auto value = static_cast<double>(byte);
        upperByte[byte] = powerRatio((strongest - 256.0 * value) * dbPerCount);
        lowerByte[byte] = powerRatio(-value * dbPerCount);
    }
    const std::size_t blocks = samples.size() / kBlock;
    marks.resize(blocks + 1);
    for (std::size_t b = 0; b < blocks; ++b) {
        marks[b + 1] = plus(marks[b], straightSum(b * kBlock, (b + 1) * kBlock));
    }
}

/// The exact sum but for 2^-106 of it (two-sum after Knuth, then renormalised).
PowerSums::Running PowerSums::plus(Running sum, double value)
{
    const double high = sum.high + value;
    const double part = high - sum.high;
    const double low = sum.low + ((sum.high - (high - part)) + (value - part));
    const double total = high + low;
    return {total, low - (total - high)};
}

double PowerSums::straightSum(std::size_t first, std::size_t last) const
{
    double sum = 0.0;
    for (std::size_t i = first; i < last; ++i) {
        sum += upperByte[samples[i] >> 8U] * lowerByte[samples[i] & 0xffU];
    }
    return sum;
}

double PowerSums::sum(std::size_t first, std::size_t last, double reference_dB) const
{
    last = std::min(last, samples.size());
    if (first >= last) {
        return 0.0;
    }
    const std::size_t firstMark = (first + kBlock - 1) / kBlock;
    const std::size_t lastMark = last / kBlock;
    double sum = 0.0;
    if (firstMark > lastMark) {
        sum = straightSum(first, last);
    } else {
        // Adding what sticks out on both sides, rather than taking away what does not belong, keeps
        // a weak stretch beside a strong peak as good as any.
        const Running& from = marks[firstMark];
        const Running& to = marks[lastMark];
        sum = (to.high - from.high) + (to.low - from.low);
        sum += straightSum(first, firstMark * kBlock) + straightSum(lastMark * kBlock, last);
    }
    return sum * powerRatio(strongest_dB - reference_dB);
}

} // namespace otdr
