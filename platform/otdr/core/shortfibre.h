#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <optional>

namespace otdr {

/// By how much the level falls across the two pulses behind an index, beyond what fibre of this
/// slope, dB by the sample, loses on the way.
[[nodiscard]] double changeAt_dB(const FibreTrace& trace, double at, double slope_dB);

/// The highest level of a sample from one index to another, dB.
[[nodiscard]] double highest_dB(const FibreTrace& trace, double from, double to);

/// Tells fibre too short to show how it falls, a patch cord or a drop: by light that is level.
class ShortFibre
{
public:
    /// Refers to the trace. threshold_dB: a change of so much is sudden; usualSlope_dB: of the
    /// fibre, by the sample.
    ShortFibre(const FibreTrace& trace, double threshold_dB, double usualSlope_dB);

    /// Samples of the shortest piece that can be known as such.
    [[nodiscard]] double shortest() const;

    /// The first index behind the top of a peak where light hardly falls any more.
    [[nodiscard]] double fallenFrom(double top) const;

    /// Whether a piece of fibre begins between a peak and the next sudden change: level, and no
    /// lower than the fibre before the peak, at before_dB, but for the loss of an event.
    [[nodiscard]] bool isPatchCord(double begin, double before_dB) const;

    /// Where it begins if the tail of the peak, whose flank is over at an index, stands on the
    /// first of it; what is left of that falls less than what is level.
    [[nodiscard]] std::optional<double> patchCordBehindTail(double flankOver,
                                                            double before_dB) const;

    /// Where the fibre behind a splitter begins that ends within some pulses: level up to a sudden
    /// change. from: where the light begins to fall from before_dB; top: the last that stands
    /// above, from itself where nothing does. Behind a high peak that may be a tail with an echo.
    [[nodiscard]] std::optional<double> dropBehind(double from, double top, double before_dB) const;

    /// Whether light is level anywhere between two indices.
    [[nodiscard]] bool isSeenBetween(double from, double to) const;

    /// Where light below most_dB that is level begins between two indices, if it changes suddenly
    /// before the second.
    [[nodiscard]] std::optional<double> firstBetween(double from, double to, double most_dB) const;

private:
    [[nodiscard]] double half() const;
    [[nodiscard]] double fallBetween_dB(double at, double samples) const;
    [[nodiscard]] double steepest(double from) const;
    [[nodiscard]] std::optional<double> firstLevel(double from, double to, double most_dB) const;
    [[nodiscard]] bool isLevel(double from, double to, double least_dB, double most_dB) const;
    [[nodiscard]] std::optional<double> changeBehind(double from) const;

    const FibreTrace& trace;
    double w;
    double threshold_dB;
    double usualSlope_dB;
    double level_dB; ///< what falls by less within a pulse is level
};

} // namespace otdr
