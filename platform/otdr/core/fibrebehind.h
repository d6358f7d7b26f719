#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <optional>

namespace otdr {

/// Light that stands so far above the RMS noise shows within some pulses whether it is that of
/// fibre, dB.
constexpr double kPlainAboveNoise_dB = 4.0;

/// What single-mode fibre loses in a kilometre at most.
constexpr double kSteepFibre_dBPerKm = 0.7;

/// Across so many pulses a fall is looked for: the light before and behind it is undisturbed by the
/// pulse itself.
constexpr double kFallPulses = 2.0;

/// Tells fibre from the tail of what stood before it, behind a fall of the light.
class FibreBehind
{
public:
    /// Refers to the trace. lastLit: behind this index there is only noise; usualSlope_dB: of the
    /// fibre, by the sample.
    FibreBehind(const FibreTrace& trace, double lastLit, double usualSlope_dB);

    /// Whether what lies right behind a fall between two indices is fibre again, or the fall was
    /// that of a peak: the fibre loses less than threshold_dB there. fibreFrom: where the fibre
    /// before it begins.
    [[nodiscard]] bool follows(double fibreFrom, double from, double to, double threshold_dB) const;

    /// Where fibre shows behind a fall, beyond the tail and the events that follow it at once:
    /// plainly, as a line that falls as the fibre before does, where that is known, and stays
    /// straight; or even, if no weaker than that fibre but for less than threshold_dB.
    [[nodiscard]] std::optional<double> seenFrom(double fibreFrom, double from, double to,
                                                 double threshold_dB) const;

private:
    [[nodiscard]] std::optional<double> plainlyFrom(double fibreFrom, double from, double to) const;
    [[nodiscard]] std::optional<double> evenFrom(double fibreFrom, double from, double to,
                                                 double threshold_dB) const;
    [[nodiscard]] double levelBefore_dB(double fibreFrom, double index) const;
    [[nodiscard]] double tellingLength(double start, double threshold_dB) const;
    [[nodiscard]] double untilChange(double from, double to, double threshold_dB) const;
    [[nodiscard]] bool isPlain(double from, double to, const std::optional<SideLine>& before) const;
    [[nodiscard]] bool falls(double from, double length) const;
    [[nodiscard]] bool tells(const std::optional<SideLine>& line) const;
    [[nodiscard]] bool isSteeper(const SideLine& line, const std::optional<SideLine>& before) const;

    const FibreTrace& trace;
    double w;
    double shortest; ///< stretch that shows fibre, samples
    double lastLit;
    double usualSlope_dB;
};

} // namespace otdr
