#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace otdr {

/// Where the height of a reflection was seen.
struct SeenHeight
{
    double at = 0.0; ///< index: the fibre under it may have lost some light already
    double shown = 1.0; ///< part of its light that the receiver shows there
};

/// What stands above the fibre at a reflection, or at several within one dead zone.
struct PeakGroup
{
    std::vector<double> feet; ///< index of each rise, in order; at least one
    std::vector<double> heights_dB; ///< of each above the fibre before the group
    double behind = 0.0; ///< from here on the fibre is undisturbed

    /// By how much the highest may stand higher than an overloaded receiver shows, dB.
    double hidden_dB = 0.0;

    /// Where each height was seen; empty where a fit tells the heights of the light alone.
    std::vector<SeenHeight> seen = {};

    [[nodiscard]] bool saturated() const { return hidden_dB > 0.0; }

    /// The same of one of them: those as high as the highest are held at the same level.
    [[nodiscard]] double hiddenAt_dB(std::size_t i) const;

    /// Of the highest.
    [[nodiscard]] double height_dB() const;

    /// Whether it is one so low that its whole shape places it, and not its edge.
    [[nodiscard]] bool isLow() const;
};

/// Index of the rise to the highest reflection of a group.
[[nodiscard]] double highestFoot(const PeakGroup& peak);

/// Leaves out what rises less than this, but the highest.
void dropLowFeet(PeakGroup& peak, double least_dB);

/// Where no tail of brighter light is left on the fibre between two indices, the first of which
/// lies behind its dead zone. What stands above the line through all the fibre that follows is
/// tail, and once it is no more seen it goes on in the noise for a while; at most a part of that
/// fibre is given to it. brightness_dB: by how much the light outshone the fibre.
[[nodiscard]] double clearOfTail(const FibreTrace& trace, double from, double to,
                                 double brightness_dB);

/// Whether what lies before a place, in the fibre from `from` on, falls as no fibre does: a loss
/// whose far side would look like a reflection above that line.
[[nodiscard]] bool isBehindALoss(const FibreTrace& trace, double at, double from);

/// How far before a reflection the fibre is looked at, samples.
[[nodiscard]] double fibreBeforePeak(const FibreTrace& trace);

/// Looks closely at a reflection near `at`, between the undisturbed fibre that begins at `from` and
/// what comes next at `to`: all its feet lie before that.
[[nodiscard]] PeakGroup measurePeak(const FibreTrace& trace, double at, double from, double to);

} // namespace otdr
