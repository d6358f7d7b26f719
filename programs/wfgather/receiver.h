#pragma once

#include "programs/wfgather/linkresponse.h"
#include "programs/wfgather/sampling.h"

#include <vector>

namespace gather {

/// The receiver saturates this far above the backscatter at the port, dB of the trace.
constexpr double kSaturation_dB = 15.0;

/// Time constant of the receiver's recovery from saturation, pulse widths.
constexpr double kRecoveryPulses = 1.0;

/// Carriers that diffuse in the photodiode come late: this part of the signal, so many time
/// constants of the low-pass more slowly.
constexpr double kTailPart = 0.003;
constexpr double kTailTimeConstants = 8.0;

/// Time constant of the receiver's low-pass for a pulse: 8 % of its width, at least 1 ns.
///
/// So short that the top of a reflection is reached within the pulse: what is measured of its
/// height gives the reflectance back.
[[nodiscard]] double timeConstant_ns(double pulse_ns);

/// The power that the receiver sees of a fibre's response, free of noise, at the sampling times, as
/// a multiple of the backscatter at the port.
///
/// The response is convolved with the pulse (rectangular, its edges rounded over a fifth of its
/// width), passes the low-pass and a weak slow tail, is clipped where the receiver saturates, and
/// is stretched while it recovers from that. All of this is causal: a trace begins to change where
/// its event is. The energy of the pulse is that of the rectangle, so that backscatter of 10^(B/10)
/// a nanosecond stands at 10^(B/10) W and a reflector at 10^(R/10) above it. Cost: proportional to
/// the samples.
[[nodiscard]] std::vector<double> detect(const LinkResponse& response, double pulse_ns,
                                         const Sampling& sampling);

} // namespace gather
