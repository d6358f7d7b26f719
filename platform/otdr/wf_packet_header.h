#pragma once

#include <QString>

#include <cstdint>

/// The 48 bytes at the front of every snapshot file, as they stand there (little-endian).
struct wf_packet_header // NOLINT(readability-identifier-naming): a given name
{
    char magic[4] = {}; ///< "WFPK"
    std::uint16_t version = 0;
    std::uint16_t headerSize = 0;
    std::uint32_t samples = 0;
    std::uint32_t sequence = 0; ///< of this snapshot in the run
    double sampleInterval_ns = 0.0; ///< round trip
    double firstSample_ns = 0.0; ///< round trip; negative before the front panel
    std::uint32_t averages = 0;
    std::uint32_t pulse_ns = 0;
    std::uint16_t wavelength_nm = 0;
    std::uint16_t countsPerDb = 0;
    std::uint32_t crc32 = 0; ///< of the sample bytes

    /// Fills the header from the first 48 bytes of a file.
    ///
    /// Says nothing about success: a file that cannot be opened leaves the header as it is, a short
    /// one replaces as many bytes as it has; both are logged at debug level.
    void initFrom(QString fileName);
};

static_assert(sizeof(wf_packet_header) == 48,
              "the header is read into memory as it stands in the file");
