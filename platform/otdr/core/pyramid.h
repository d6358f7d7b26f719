#pragma once

#include "platform/otdr/core/rawsamples.h"
#include "platform/otdr/core/samplerange.h"

#include <gsl/span>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace otdr {

/// One sample of a trace.
struct Sample
{
    std::size_t index = 0;
    std::uint16_t raw = 0;

    friend bool operator==(const Sample& a, const Sample& b)
    {
        return a.index == b.index && a.raw == b.raw;
    }
};

/// The strongest and the weakest sample of a stretch of trace; of equal ones the first.
struct Extremes
{
    Sample highest; ///< strongest light: the smallest raw count
    Sample lowest; ///< weakest light: the largest raw count
};

/// Answers for any stretch of a trace which samples are its highest and its lowest, without reading
/// them all.
///
/// Keeps the smallest and the largest count of every 64 samples and where they are, then those of
/// every 1024, and so on: a twentieth of the memory of the samples. A query reads some dozens of
/// these, and samples only where one of its ends cuts a group that might hold the answer.
class Pyramid
{
public:
    /// Shares the samples. Cost: one pass over them.
    explicit Pyramid(RawSamples samples);

    /// Extremes of the samples first .. last - 1, cut to the trace; empty where no sample is left.
    [[nodiscard]] std::optional<Extremes> extremes(std::size_t first, std::size_t last) const;

    /// The highest sample of the samples first .. last - 1, cut to the trace; empty where no sample
    /// is left.
    [[nodiscard]] std::optional<Sample> highest(std::size_t first, std::size_t last) const;

    /// Appends the highest sample of each stretch borders[k] .. borders[k + 1] - 1, in order.
    /// Borders do not fall and lie within the trace; an empty stretch appends nothing. Faster than
    /// one query a stretch.
    void appendHighest(gsl::span<const std::size_t> borders, std::vector<Sample>& out) const;

    /// Appends the lowest and the highest of each stretch in order of index, one sample where they
    /// are the same.
    void appendExtremes(gsl::span<const std::size_t> borders, std::vector<Sample>& out) const;

    /// Bytes kept beside the samples.
    [[nodiscard]] std::size_t bytes() const;

private:
    /// The highest, or the lowest, count of each group, from groups of 64 samples up.
    struct Tree
    {
        std::uint16_t flip; ///< makes keys of the counts, see extremescan.h
        std::vector<std::vector<std::uint16_t>> levels;
        std::vector<std::uint8_t> positions; ///< of the first best sample in each group of 64
    };

    /// Builds the first level of both trees.
    void readSamples();
    static void addLevels(Tree& tree);

    /// Hands over each stretch between borders that is not empty, in order.
    template <typename Take>
    void forEachStretch(gsl::span<const std::size_t> borders, Take take) const;

    void announceCut(gsl::span<const std::size_t> borders, std::size_t k) const;
    [[nodiscard]] Sample best(const Tree& tree, SampleRange range) const;
    [[nodiscard]] Sample bestFrom(const Tree& tree, std::size_t level, SampleRange range) const;
    [[nodiscard]] Sample bestOfPart(const Tree& tree, std::size_t level, std::size_t group,
                                    SampleRange range) const;
    [[nodiscard]] Sample bestOfSamples(const Tree& tree, SampleRange range) const;
    [[nodiscard]] static Sample bestOfGroup(const Tree& tree, std::size_t level, std::size_t group);

    RawSamples samples;
    Tree high;
    Tree low;
};

} // namespace otdr
