#pragma once

#include "platform/otdr/core/linefit.h"

#include <gsl/span>

namespace otdr {

class Trace;

/// A stretch of trace whose return loss is asked for: the samples i with from <= i < to.
struct ReturnLossSection
{
    double from = 0.0; ///< sample index; may lie outside the trace
    double to = 0.0; ///< sample index; may lie outside the trace
    double reference_dB =
        0.0; ///< level of the backscatter line, taken to where return loss is seen from
    double backscatter_dB = 0.0; ///< coefficient of the fibre, dB at 1 ns, negative
    double launch = 0.0; ///< samples of light at the reference that belong to the fibre before the
                         ///< section: half a pulse behind its foot, where there is such a fibre
};

/// A peak that went beyond what the receiver can show.
struct SaturatedPeak
{
    double from = 0.0; ///< first sample index of the peak
    double to = 0.0; ///< first index behind it
    Line fibre; ///< the backscatter before the peak, taken in place of its samples
    double reflectance_dB = 0.0; ///< what is stated for it instead
};

/// The fibre between two events, which hide some of it: there the lines beside them stand for it.
struct FibreBetween
{
    double from = 0.0; ///< sample index at which its start is seen, half a pulse behind the foot
    double to = 0.0; ///< and its end
    Line behind; ///< behind the event at its start, through what is seen of the fibre
    Line before; ///< before the event at its end
    double backscatter_dB = 0.0; ///< coefficient of the fibre, dB at 1 ns, negative
};

/// Optical return loss of a section, dB, positive: backscatter and reflections together.
///
/// RL = -10 log10(10^(B/10) dt (sum 10^((L - reference) / 5) - launch)) with dt the round-trip
/// sample interval in ns; the width of the pulse cancels. Seen from the start of the section where
/// the reference is the line at the start, from the port where it is the line at the port. NaN
/// without samples or where an argument is not finite.
[[nodiscard]] double returnLoss_dB(const Trace& trace, const ReturnLossSection& section);

/// The same with saturated peaks put right: the samples of each, as far as they lie in the section,
/// are replaced by its line, and 10^(R/10) 10^(-2A/10) is added for its reflectance R behind the
/// one-way loss A from the reference to the peak's first sample. A peak that begins outside the
/// section changes nothing. Peaks do not overlap.
[[nodiscard]] double returnLoss_dB(const Trace& trace, const ReturnLossSection& section,
                                   gsl::span<const SaturatedPeak> peaks);

/// That of the fibre between two events, seen from its start: without their reflections, but with
/// what else reflects between them. NaN where an argument is not finite.
[[nodiscard]] double fibreReturnLoss_dB(const Trace& trace, const FibreBetween& fibre);

/// The same with peaks put right where the fibre is seen, as above; one of a reflectance of -inf is
/// left out, as an echo is.
[[nodiscard]] double fibreReturnLoss_dB(const Trace& trace, const FibreBetween& fibre,
                                        gsl::span<const SaturatedPeak> peaks);

} // namespace otdr
