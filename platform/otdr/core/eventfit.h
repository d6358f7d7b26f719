#pragma once

#include "platform/otdr/core/fibretrace.h"

namespace otdr {

/// Where the level goes over from one line to the other.
struct StepFit
{
    double foot = 0.0; ///< index at which the change begins
    double squares = 0.0; ///< what the fit leaves, dB squared
    double scatter_dB = 0.0; ///< of the samples about the fit
};

/// The place within `reach` samples of `at` at which the ramp of a pulse fits best between two
/// lines. Good to about s sqrt(w) / step samples.
[[nodiscard]] StepFit fitStep(const FibreTrace& trace, const PulseShape& shape, double at,
                              double reach, const Line& before, const Line& behind);

/// Samples that such a fit looks at, with a small reach.
[[nodiscard]] double rampSamples(const FibreTrace& trace);

/// A reflection on fibre that goes over from one line to another.
struct PeakFit
{
    double foot = 0.0; ///< index at which it begins
    double height_dB = 0.0; ///< above the fibre before it
    double error_dB = 0.0; ///< standard error of the height
    double scatter_dB = 0.0; ///< of the samples about the fit
};

/// The place near `at`, within a pulse, at which the light of a pulse on the ramp between two lines
/// fits best, with its height.
[[nodiscard]] PeakFit fitPeak(const FibreTrace& trace, double at, const Line& before,
                              const Line& behind);

/// By how much such a fit leaves less than the best ramp alone, standard deviations.
[[nodiscard]] double gainOverRamp(const FibreTrace& trace, const PeakFit& fit, double at,
                                  const Line& before, const Line& behind);

/// The foot of the end of the fibre near `at`, where light falls without a reflection.
[[nodiscard]] double footOfFall(const FibreTrace& trace, double at, const Line& before);

} // namespace otdr
