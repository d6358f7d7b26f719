#pragma once

#include "platform/otdr/core/result.h"
#include "platform/otdr/usualfibre.h"
#include "programs/wfgather/tracesource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gather {

/// What the settings file asks for. The initial values are those of keys that are missing: what the
/// application stores at its first start.
struct Settings
{
    // Section MeasParams
    int duration_s = 15; ///< for each trace; 0 = realtime, until it is stopped
    int pulse_ns = 100;
    double distance_m = 10000.0;
    std::vector<int> wavelengths_nm {1310}; ///< in the order of their traces
    double ior1310 = OTDR::usualFibre(1310).groupIndex;
    double ior1550 = OTDR::usualFibre(1550).groupIndex;
    double helix_percent = 0.0;
    std::optional<double> backscatter_dB; ///< announced instead of the fibre's

    // Section Simulation
    std::string fibre; ///< path of a fibre file; empty: the built-in demo link
    std::string replay; ///< path of a trace file to be served instead; empty: none
    std::optional<std::uint64_t> seed; ///< none: another one in each run
    double timeScale = 1.0; ///< seconds of wall time for one of measuring

    [[nodiscard]] bool isRealtime() const { return duration_s == 0; }

    /// What a trace at a wavelength is to be announced with, the backscatter coefficient aside
    /// where none is set. The group index is that set for the nearer one of 1310 and 1550 nm.
    [[nodiscard]] TraceParams paramsAt(int wavelength_nm) const;
};

/// Reads a settings file, an INI file with the sections MeasParams (duration, pulse, distance,
/// wavelength, ior1310, ior1550, helix, rbs) and Simulation (fibre, replay, seed, timeScale).
///
/// Numbers have a decimal point. A wavelength is rounded to whole nm and a pulse cut to whole ns,
/// as the application does; "all" is 1310 and then 1550 nm. An error names the key and what it may
/// be: CannotOpen, CannotRead, TooLarge, Damaged.
[[nodiscard]] otdr::Result<Settings> readSettings(const std::string& path);

} // namespace gather
