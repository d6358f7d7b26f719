#pragma once

#include <QString>

namespace Waveform {

/// Caption of the action button during a timed measurement: the wavelength, and the seconds left
/// below it.
[[nodiscard]] QString countdownCaption(int wavelength_nm, int remaining_s);

/// The same in realtime, which has no end.
[[nodiscard]] QString realtimeCaption(int wavelength_nm);

} // namespace Waveform
