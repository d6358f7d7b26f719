#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace otdr::scan {

// The innermost loops of the pyramid: the best of a short row of counts, and the first place that
// holds it.
//
// A count whose bits are turned over by one of the two patterns below is a signed number that is
// the smaller the better the count. Signed, because SSE2, which every 64-bit PC has, knows no other
// 16-bit minimum.

constexpr std::uint16_t kSmallestFirst = 0x8000; ///< the best count is the smallest
constexpr std::uint16_t kLargestFirst = 0x7fff; ///< the best count is the largest

[[nodiscard]] inline std::int16_t keyOf(std::uint16_t count, std::uint16_t flip)
{
    return static_cast<std::int16_t>(count ^ flip);
}

/// One count of a row.
struct Place
{
    std::size_t position = 0;
    std::uint16_t count = 0;
};

/// The best of n > 0 counts, the first of equal ones; one by one. Count and place are compared as
/// one number, which takes no branch: where the best stands is noise.
[[nodiscard]] inline Place plainBest(const std::uint16_t* counts, std::size_t n, std::uint16_t flip)
{
    constexpr int kPlaceBits = 48;
    const auto ranked = [=](std::size_t i) {
        const auto key = static_cast<std::uint64_t>(keyOf(counts[i], flip) + 0x8000);
        return key << kPlaceBits | i;
    };
    std::uint64_t best = ranked(0);
    for (std::size_t i = 1; i < n; ++i) {
        best = std::min(best, ranked(i));
    }
    const auto position = static_cast<std::size_t>(best & ((std::uint64_t {1} << kPlaceBits) - 1));
    return {position, counts[position]};
}

constexpr std::size_t kGroup = 64; ///< counts of a group: two cache lines

/// Tells the processor that a group is going to be read; answers nothing.
inline void announceGroup(const std::uint16_t* counts)
{
#if defined(__GNUC__)
    __builtin_prefetch(counts);
    __builtin_prefetch(counts + kGroup / 2);
#else
    static_cast<void>(counts);
#endif
}

/// Both ends of a group.
struct GroupExtremes
{
    Place smallest;
    Place largest;
};

/// The smallest and the largest of n > 0 counts, the first of equal ones.
[[nodiscard]] inline GroupExtremes plainExtremes(const std::uint16_t* counts, std::size_t n)
{
    return {plainBest(counts, n, kSmallestFirst), plainBest(counts, n, kLargestFirst)};
}

#if defined(__SSE2__)

constexpr std::size_t kLanes = 8;

[[nodiscard]] inline __m128i load(const std::uint16_t* counts)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(counts));
}

/// The smallest lane, in all lanes.
[[nodiscard]] inline __m128i smallestLane(__m128i keys)
{
    keys = _mm_min_epi16(keys, _mm_shuffle_epi32(keys, 0x4e)); // 4 lanes on
    keys = _mm_min_epi16(keys, _mm_shuffle_epi32(keys, 0xb1)); // 2 lanes on
    const __m128i swapped = _mm_shufflehi_epi16(_mm_shufflelo_epi16(keys, 0xb1), 0xb1);
    return _mm_min_epi16(keys, swapped);
}

[[nodiscard]] inline std::uint16_t firstLane(__m128i lanes)
{
    return static_cast<std::uint16_t>(_mm_cvtsi128_si32(lanes));
}

/// Lane by lane: b where the mask is all ones, a where it is 0.
[[nodiscard]] inline __m128i either(__m128i mask, __m128i a, __m128i b)
{
    return _mm_or_si128(_mm_and_si128(mask, b), _mm_andnot_si128(mask, a));
}

/// The best count that each lane has met, and where.
struct LanesSoFar
{
    __m128i keys;
    __m128i positions;

    void meet(__m128i otherKeys, __m128i otherPositions)
    {
        const __m128i better = _mm_cmpgt_epi16(keys, otherKeys);
        keys = _mm_min_epi16(keys, otherKeys);
        positions = either(better, positions, otherPositions);
    }

    [[nodiscard]] Place place(__m128i flips) const
    {
        const __m128i best = smallestLane(keys);
        const __m128i none = _mm_set1_epi16(0x7fff);
        const __m128i holders = either(_mm_cmpeq_epi16(keys, best), none, positions);
        return {firstLane(smallestLane(holders)), firstLane(_mm_xor_si128(best, flips))};
    }
};

/// The best of n counts, 0 < n <= 2^15, the first of equal ones. One pass without a branch on what
/// it meets: the place of the best is noise, and each wrong guess of the processor would cost more
/// than all the rest.
[[nodiscard]] inline Place best(const std::uint16_t* counts, std::size_t n, std::uint16_t flip)
{
    if (n < kLanes) {
        return plainBest(counts, n, flip);
    }
    const __m128i flips = _mm_set1_epi16(static_cast<short>(flip));
    const __m128i lanes = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
    const __m128i eight = _mm_set1_epi16(kLanes);
    __m128i here = lanes;
    LanesSoFar best {_mm_xor_si128(load(counts), flips), here};
    for (std::size_t i = kLanes; i + kLanes <= n; i += kLanes) {
        here = _mm_add_epi16(here, eight);
        best.meet(_mm_xor_si128(load(counts + i), flips), here);
    }
    // The last eight overlap those before them, which does no harm and leaves no odd ends.
    const __m128i end = _mm_add_epi16(_mm_set1_epi16(static_cast<short>(n - kLanes)), lanes);
    best.meet(_mm_xor_si128(load(counts + n - kLanes), flips), end);
    return best.place(flips);
}

/// Position of the first count of a group that has this value; one does.
[[nodiscard]] inline std::size_t firstInGroup(const std::uint16_t* counts, __m128i value)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kGroup; i += 2 * kLanes) {
        const __m128i a = _mm_cmpeq_epi16(load(counts + i), value);
        const __m128i b = _mm_cmpeq_epi16(load(counts + i + kLanes), value);
        const int sixteen = _mm_movemask_epi8(_mm_packs_epi16(a, b));
        bits |= static_cast<std::uint64_t>(sixteen) << i;
    }
    return static_cast<std::size_t>(__builtin_ctzll(bits));
}

/// The smallest and the largest of the counts of a whole group, the first of equal ones.
[[nodiscard]] inline GroupExtremes groupExtremes(const std::uint16_t* counts)
{
    const __m128i flips = _mm_set1_epi16(static_cast<short>(kSmallestFirst));
    const __m128i ones = _mm_set1_epi16(-1);
    __m128i least = _mm_xor_si128(load(counts), flips);
    __m128i most = least;
    for (std::size_t i = kLanes; i < kGroup; i += kLanes) {
        const __m128i keys = _mm_xor_si128(load(counts + i), flips);
        least = _mm_min_epi16(least, keys);
        most = _mm_max_epi16(most, keys);
    }
    const __m128i smallest = _mm_xor_si128(smallestLane(least), flips);
    const __m128i reversed = smallestLane(_mm_xor_si128(most, ones));
    const __m128i largest = _mm_xor_si128(_mm_xor_si128(reversed, ones), flips);
    return {{firstInGroup(counts, smallest), firstLane(smallest)},
            {firstInGroup(counts, largest), firstLane(largest)}};
}

#else

[[nodiscard]] inline Place best(const std::uint16_t* counts, std::size_t n, std::uint16_t flip)
{
    return plainBest(counts, n, flip);
}

[[nodiscard]] inline GroupExtremes groupExtremes(const std::uint16_t* counts)
{
    return plainExtremes(counts, kGroup);
}

#endif

} // namespace otdr::scan
