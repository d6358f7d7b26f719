#pragma once

#include "platform/otdr/core/rawsamples.h"
#include "platform/otdr/core/result.h"

#include <gsl/span>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace otdr {

/// What the acquisition program writes after each refresh: a header of 48 bytes, then the samples.
struct Snapshot
{
    static constexpr std::size_t kHeaderSize = 48;
    static constexpr std::uint16_t kVersion = 1;

    /// As many samples as any trace file may hold: 64 MiB.
    static constexpr std::size_t kMostSamples = std::size_t {1} << 25;

    std::uint32_t sequence = 0; ///< of this snapshot in the run
    double sampleInterval_ns = 1.0; ///< round trip, > 0
    double firstSample_ns = 0.0; ///< round trip; negative before the front panel
    std::uint32_t averages = 0;
    std::uint32_t pulse_ns = 0;
    std::uint16_t wavelength_nm = 0;
    std::uint16_t countsPerDb = 1000; ///< > 0

    /// Counts below the reference, as in every trace. In the file they stand the other way up, as
    /// level counts, 65535 - raw.
    RawSamples samples;

    [[nodiscard]] double dbPerCount() const { return 1.0 / countsPerDb; }
};

/// Reads a whole snapshot file. NotATrace without the magic "WFPK"; Damaged where version, header
/// size, number of samples, length of the file, checksum, interval, first time or counts per dB
/// cannot be; TooLarge beyond kMostSamples.
[[nodiscard]] Result<Snapshot> readSnapshot(gsl::span<const std::byte> bytes);

/// Reads a snapshot from a regular file; errors as above, and CannotOpen, CannotRead. The size is
/// checked before anything is read.
[[nodiscard]] Result<Snapshot> readSnapshotFile(const std::filesystem::path& path);

/// The bytes of a snapshot file.
[[nodiscard]] std::vector<std::byte> encodeSnapshot(const Snapshot& snapshot);

} // namespace otdr
