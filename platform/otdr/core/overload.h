#pragma once

namespace otdr {

class Trace;

/// What overloads the receiver shows the same level wherever it does so. That level, dB, where a
/// record shows it: its highest samples stand there for a part of a pulse in more than one place.
/// +inf where it shows none. pulse: its width, samples, > 0.
[[nodiscard]] double overloadLevel_dB(const Trace& trace, double pulse);

} // namespace otdr
