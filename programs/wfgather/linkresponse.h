#pragma once

#include "programs/wfgather/fibre.h"

#include <vector>

namespace gather {

/// Backscatter that decays evenly between two times.
struct Stretch
{
    double from_ns = 0.0; ///< round trip
    double to_ns = 0.0;
    double power_perNs = 0.0; ///< at the beginning, per nanosecond of pulse
    double decay_perNs = 0.0; ///< the power falls as exp(-decay t)
};

/// A sharp reflection, or the echo of several.
struct Reflection
{
    double at_ns = 0.0; ///< round trip
    double power = 0.0; ///< at the port
    bool ghost = false;
};

/// What comes back from a fibre at one wavelength for an infinitely short pulse of unit power and
/// one nanosecond's energy. All powers are fractions of the power launched.
struct LinkResponse
{
    std::vector<Stretch> backscatter; ///< in order of time, without overlap
    std::vector<Reflection> reflections; ///< ghosts last
    double launch_perNs = 0.0; ///< backscatter at the port, per nanosecond of pulse
};

/// The response of a fibre: Rayleigh backscatter, reflections and the echoes between these.
///
/// Backscatter of a pulse of W ns is 10^(B/10) W, of a reflector 10^(R/10), each times the power
/// that the way there and back leaves. A reflector stands before the loss of its own event. Echoes
/// are those of three reflections (back, forth and back again); of very many reflectors the
/// strongest two dozen make them.
[[nodiscard]] LinkResponse responseOf(const Fibre& fibre, int wavelength_nm);

} // namespace gather
