#include "platform/otdr/core/pyramid.h"

#include "platform/otdr/core/extremescan.h"

#include <algorithm>
#include <utility>

namespace otdr {

namespace {

using scan::keyOf;
using scan::kGroup;

constexpr std::size_t kGroupBits = 6;
constexpr std::size_t kFanBits = 4;
constexpr std::size_t kFan = 1 << kFanBits; // groups of one level in a group of the next
static_assert(kGroup == 1 << kGroupBits);

/// A stretch of fewer samples is read as it is.
constexpr std::size_t kFewestSamples = 4 * kGroup;

/// A stretch of more groups is answered from the next level: more are dear to read, fewer are more
/// often cut where it matters.
constexpr std::size_t kMostGroups = 128;

/// Stretches of so many samples are likely to have the groups read that their ends cut: longer ones
/// seldom have their best there, shorter ones are read as they are.
constexpr SampleRange kOftenCut {kFewestSamples, 16 * kGroup};

/// How long before it may be read the group that a border cuts is asked for: about as long as the
/// memory takes.
constexpr std::size_t kStretchesAhead = 16;

/// Whether stretches are of such a size, by their mean.
bool areOftenCut(gsl::span<const std::size_t> borders)
{
    if (borders.size() < 2) {
        return false;
    }
    const std::size_t mean = (borders.back() - borders.front()) / (borders.size() - 1);
    return kOftenCut.first <= mean && mean < kOftenCut.last;
}

} // namespace

Pyramid::Pyramid(RawSamples shared)
    : samples(std::move(shared))
    , high {scan::kSmallestFirst, {}, {}}
    , low {scan::kLargestFirst, {}, {}}
{
    readSamples();
    addLevels(high);
    addLevels(low);
}

void Pyramid::readSamples()
{
    const std::size_t groups = (samples.size() + kGroup - 1) / kGroup;
    for (Tree* tree : {&high, &low}) {
        tree->levels.emplace_back(groups);
        tree->positions.resize(groups);
    }
    std::uint16_t* highest = high.levels.front().data();
    std::uint16_t* lowest = low.levels.front().data();
    const std::uint16_t* counts = samples.data();
    for (std::size_t g = 0; g < groups; ++g) {
        const std::size_t first = g * kGroup;
        const std::size_t n = std::min(kGroup, samples.size() - first);
        const scan::GroupExtremes found = n == kGroup ? scan::groupExtremes(counts + first)
                                                      : scan::plainExtremes(counts + first, n);
        highest[g] = found.smallest.count;
        lowest[g] = found.largest.count;
        high.positions[g] = static_cast<std::uint8_t>(found.smallest.position);
        low.positions[g] = static_cast<std::uint8_t>(found.largest.position);
    }
}

void Pyramid::addLevels(Tree& tree)
{
    while (tree.levels.back().size() > kFan) {
        const std::vector<std::uint16_t>& below = tree.levels.back();
        std::vector<std::uint16_t> level((below.size() + kFan - 1) / kFan);
        for (std::size_t g = 0; g < level.size(); ++g) {
            const std::size_t n = std::min(kFan, below.size() - g * kFan);
            level[g] = scan::best(below.data() + g * kFan, n, tree.flip).count;
        }
        tree.levels.push_back(std::move(level));
    }
}

std::optional<Extremes> Pyramid::extremes(std::size_t first, std::size_t last) const
{
    last = std::min(last, samples.size());
    if (first >= last) {
        return std::nullopt;
    }
    return Extremes {best(high, {first, last}), best(low, {first, last})};
}

std::optional<Sample> Pyramid::highest(std::size_t first, std::size_t last) const
{
    last = std::min(last, samples.size());
    if (first >= last) {
        return std::nullopt;
    }
    return best(high, {first, last});
}

template <typename Take>
void Pyramid::forEachStretch(gsl::span<const std::size_t> borders, Take take) const
{
    const bool announces = areOftenCut(borders);
    std::size_t first = borders.empty() ? 0 : borders.front();
    for (std::size_t k = 0; k < borders.size(); ++k) {
        if (announces) {
            announceCut(borders, k + kStretchesAhead);
        }
        const std::size_t last = borders[k];
        if (first < last) {
            take(SampleRange {first, last});
        }
        first = last;
    }
}

void Pyramid::appendHighest(gsl::span<const std::size_t> borders, std::vector<Sample>& out) const
{
    forEachStretch(borders, [&](SampleRange stretch) { out.push_back(best(high, stretch)); });
}

void Pyramid::appendExtremes(gsl::span<const std::size_t> borders, std::vector<Sample>& out) const
{
    forEachStretch(borders, [&](SampleRange stretch) {
        const Sample top = best(high, stretch);
        const Sample bottom = best(low, stretch);
        out.push_back(top.index <= bottom.index ? top : bottom);
        if (top.index != bottom.index) {
            out.push_back(top.index < bottom.index ? bottom : top);
        }
    });
}

/// The groups that borders cut lie apart: waiting for one after the other, where the caches have
/// other things, would cost more than all the rest.
void Pyramid::announceCut(gsl::span<const std::size_t> borders, std::size_t k) const
{
    if (k < borders.size() && borders[k] + kGroup <= samples.size()) {
        scan::announceGroup(samples.data() + borders[k] / kGroup * kGroup);
    }
}

/// The best sample of a stretch that is not empty.
Sample Pyramid::best(const Tree& tree, SampleRange range) const
{
    if (range.count() < kFewestSamples) {
        return bestOfSamples(tree, range);
    }
    std::size_t level = 0;
    for (std::size_t most = kMostGroups * kGroup;
         most < range.count() && level + 1 < tree.levels.size(); most *= kFan) {
        ++level;
    }
    return bestFrom(tree, level, range);
}

/// The same by way of the groups of a level. A group at either end that lies in the stretch only in
/// part is opened only where its best would change the answer.
Sample Pyramid::bestFrom(const Tree& tree, std::size_t level, SampleRange range) const
{
    const std::vector<std::uint16_t>& groups = tree.levels[level];
    // Shifts, because two divisions would be a third of the cost of a query.
    const std::size_t shift = kGroupBits + level * kFanBits;
    const std::size_t first = (range.first + (std::size_t {1} << shift) - 1) >> shift;
    const std::size_t last = range.last >> shift;
    if (first >= last) {
        return level > 0 ? bestFrom(tree, level - 1, range) : bestOfSamples(tree, range);
    }
    const SampleRange whole {first << shift, last << shift};
    const scan::Place inner = scan::best(groups.data() + first, last - first, tree.flip);
    std::int16_t bestKey = keyOf(inner.count, tree.flip);
    std::optional<Sample> cut;
    if (range.first < whole.first && keyOf(groups[first - 1], tree.flip) <= bestKey) {
        const Sample left = bestOfPart(tree, level, first - 1, {range.first, whole.first});
        if (keyOf(left.raw, tree.flip) <= bestKey) {
            cut = left;
            bestKey = keyOf(left.raw, tree.flip);
        }
    }
    if (whole.last < range.last && keyOf(groups[last], tree.flip) < bestKey) {
        const Sample right = bestOfPart(tree, level, last, {whole.last, range.last});
        if (keyOf(right.raw, tree.flip) < bestKey) {
            cut = right;
        }
    }
    return cut ? *cut : bestOfGroup(tree, level, first + inner.position);
}

/// The best sample of the part of a group that lies in the stretch.
Sample Pyramid::bestOfPart(const Tree& tree, std::size_t level, std::size_t group,
                           SampleRange range) const
{
    if (level > 0) {
        return bestFrom(tree, level - 1, range);
    }
    const std::size_t index = group * kGroup + tree.positions[group];
    if (range.first <= index && index < range.last) {
        return {index, tree.levels[0][group]};
    }
    return bestOfSamples(tree, range);
}

Sample Pyramid::bestOfSamples(const Tree& tree, SampleRange range) const
{
    const scan::Place found = scan::best(samples.data() + range.first, range.count(), tree.flip);
    return {range.first + found.position, found.count};
}

/// The first sample with the best count of a whole group.
Sample Pyramid::bestOfGroup(const Tree& tree, std::size_t level, std::size_t group)
{
    for (; level > 0; --level) {
        const std::vector<std::uint16_t>& below = tree.levels[level - 1];
        const std::size_t first = group * kFan;
        const std::size_t n = std::min(kFan, below.size() - first);
        group = first + scan::best(below.data() + first, n, tree.flip).position;
    }
    return {group * kGroup + tree.positions[group], tree.levels[0][group]};
}

std::size_t Pyramid::bytes() const
{
    std::size_t sum = 0;
    for (const Tree* tree : {&high, &low}) {
        sum += tree->positions.size();
        for (const std::vector<std::uint16_t>& level : tree->levels) {
            sum += level.size() * sizeof(std::uint16_t);
        }
    }
    return sum;
}

} // namespace otdr
