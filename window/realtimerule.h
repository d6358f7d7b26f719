#pragma once

#include <QString>

namespace Waveform {

/// Whether realtime can show such a measurement: its refresh rate leaves no time for long pulses
/// nor for two wavelengths.
/// \param pulse_ns, wavelength as they are configured
[[nodiscard]] bool realtimeAllowed(int pulse_ns, const QString& wavelength);

} // namespace Waveform
