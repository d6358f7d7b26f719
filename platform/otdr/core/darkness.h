#pragma once

#include <cstddef>

namespace otdr {

class Trace;

/// What a stretch of a record shows where it may be dark.
struct Darkness
{
    /// Whether it is noise, and not light with noise on it.
    bool isNoise = false;

    /// Whether most of its samples stand at its least level: what is stored where no light
    /// is.
    bool isEmpty = false;

    double rms_dB = 0.0; ///< level of the RMS noise, if it is noise
    double median_dB = 0.0;
    double least_dB = 0.0;
    double most_dB = 0.0; ///< hardly a sample of it is stronger
};

/// Of the samples first .. last - 1, or of some thousand spread over them. first < last.
[[nodiscard]] Darkness darknessOf(const Trace& trace, std::size_t first, std::size_t last);

/// Whether the samples first .. last - 1 scatter or differ from their neighbours as they do in
/// noise alone, or most of them stand at one level, near the least of the record. first < last.
[[nodiscard]] bool isDark(const Trace& trace, std::size_t first, std::size_t last);

/// The number of samples that were measured: all but those that fill the record up behind them, of
/// one value behind noise or of no count at all.
[[nodiscard]] std::size_t measuredSamples(const Trace& trace);

} // namespace otdr
