#include "platform/otdr/core/snapshot.h"

#include "platform/otdr/core/bytes.h"
#include "platform/otdr/core/crc32.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

namespace otdr {

namespace {

constexpr std::array<char, 4> kMagic {'W', 'F', 'P', 'K'};

/// The 48 bytes in front of the samples, in the order of the file.
struct Header
{
    std::array<char, 4> magic = kMagic;
    std::uint16_t version = Snapshot::kVersion;
    std::uint16_t headerSize = Snapshot::kHeaderSize;
    std::uint32_t samples = 0;
    std::uint32_t sequence = 0;
    double sampleInterval_ns = 0.0;
    double firstSample_ns = 0.0;
    std::uint32_t averages = 0;
    std::uint32_t pulse_ns = 0;
    std::uint16_t wavelength_nm = 0;
    std::uint16_t countsPerDb = 0;
    std::uint32_t checksum = 0; ///< CRC-32 of the bytes of the samples
};

void read(ByteReader& in, double& value)
{
    std::uint64_t bits = 0;
    in.read(bits);
    std::memcpy(&value, &bits, sizeof(value));
}

void write(ByteWriter& out, double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    out.write(bits);
}

Header readHeader(gsl::span<const std::byte> bytes)
{
    ByteReader in(bytes);
    Header header;
    in.read(header.magic);
    in.read(header.version);
    in.read(header.headerSize);
    in.read(header.samples);
    in.read(header.sequence);
    read(in, header.sampleInterval_ns);
    read(in, header.firstSample_ns);
    in.read(header.averages);
    in.read(header.pulse_ns);
    in.read(header.wavelength_nm);
    in.read(header.countsPerDb);
    in.read(header.checksum);
    return header;
}

Error damaged(const std::string& what, std::size_t offset)
{
    return {ErrorCode::Damaged, "snapshot: " + what, offset};
}

Error tooLarge()
{
    return {ErrorCode::TooLarge,
            "snapshot: more than " + std::to_string(Snapshot::kMostSamples) + " samples", 8};
}

/// The error of a file, named by it.
Error inFile(const std::string& name, const Error& error)
{
    return {error.code, name + ": " + error.message, error.offset};
}

/// What is wrong with the front of a file of this size, if anything.
std::optional<Error> headerError(const Header& header, std::size_t fileSize)
{
    if (header.version != Snapshot::kVersion) {
        return damaged("unknown version", 4);
    }
    if (header.headerSize != Snapshot::kHeaderSize) {
        return damaged("impossible header size", 6);
    }
    if (header.samples > Snapshot::kMostSamples) {
        return tooLarge();
    }
    if (fileSize != Snapshot::kHeaderSize + std::size_t {2} * header.samples) {
        return damaged("the length of the file is not that of its samples", 8);
    }
    if (!std::isfinite(header.sampleInterval_ns) || header.sampleInterval_ns <= 0.0) {
        return damaged("impossible sample interval", 16);
    }
    if (!std::isfinite(header.firstSample_ns)) {
        return damaged("impossible time of the first sample", 24);
    }
    if (header.countsPerDb == 0) {
        return damaged("no counts per dB", 42);
    }
    return std::nullopt;
}

/// Level counts become counts below the reference and the other way round.
RawSamples turnedOver(const RawSamples& counts)
{
    std::vector<std::uint16_t> turned(counts.size());
    std::transform(counts.begin(), counts.end(), turned.begin(),
                   [](std::uint16_t count) { return static_cast<std::uint16_t>(65535 - count); });
    return RawSamples(turned);
}

} // namespace

Result<Snapshot> readSnapshot(gsl::span<const std::byte> bytes)
{
    const std::size_t known = std::min(bytes.size(), kMagic.size());
    if (known < kMagic.size() || std::memcmp(bytes.data(), kMagic.data(), known) != 0) {
        return Error {ErrorCode::NotATrace, "not a snapshot: no \"WFPK\" at the front", 0};
    }
    if (bytes.size() < Snapshot::kHeaderSize) {
        return damaged("the file ends inside its header", bytes.size());
    }
    const Header header = readHeader(bytes);
    if (const std::optional<Error> error = headerError(header, bytes.size())) {
        return *error;
    }
    const gsl::span<const std::byte> body = bytes.subspan(Snapshot::kHeaderSize);
    if (crc32(body) != header.checksum) {
        return damaged("the checksum does not fit the samples", 44);
    }
    Snapshot snapshot;
    snapshot.sequence = header.sequence;
    snapshot.sampleInterval_ns = header.sampleInterval_ns;
    snapshot.firstSample_ns = header.firstSample_ns;
    snapshot.averages = header.averages;
    snapshot.pulse_ns = header.pulse_ns;
    snapshot.wavelength_nm = header.wavelength_nm;
    snapshot.countsPerDb = header.countsPerDb;
    snapshot.samples = turnedOver(RawSamples::fromLittleEndian(body));
    return snapshot;
}

Result<Snapshot> readSnapshotFile(const std::filesystem::path& path)
{
    std::error_code failure;
    const std::string name = path.string();
    if (!std::filesystem::is_regular_file(path, failure)) {
        return Error {ErrorCode::CannotOpen, name + ": not a regular file", 0};
    }
    // The size is that of the open file: another may take its place at any moment.
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    if (!file || size < 0) {
        return Error {ErrorCode::CannotOpen, name + ": cannot be opened", 0};
    }
    if (static_cast<std::uintmax_t>(size) > Snapshot::kHeaderSize + 2 * Snapshot::kMostSamples) {
        return inFile(name, tooLarge());
    }
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) {
        return Error {ErrorCode::CannotRead, name + ": cannot be read", 0};
    }
    auto snapshot = readSnapshot(bytes);
    if (!snapshot) {
        return inFile(name, snapshot.error());
    }
    return snapshot;
}

std::vector<std::byte> encodeSnapshot(const Snapshot& snapshot)
{
    ByteWriter body;
    for (const std::uint16_t count : turnedOver(snapshot.samples)) {
        body.write(count);
    }
    ByteWriter out;
    out.write(kMagic);
    out.write(Snapshot::kVersion);
    out.write(static_cast<std::uint16_t>(Snapshot::kHeaderSize));
    out.write(static_cast<std::uint32_t>(snapshot.samples.size()));
    out.write(snapshot.sequence);
    write(out, snapshot.sampleInterval_ns);
    write(out, snapshot.firstSample_ns);
    out.write(snapshot.averages);
    out.write(snapshot.pulse_ns);
    out.write(snapshot.wavelength_nm);
    out.write(snapshot.countsPerDb);
    out.write(crc32(body.bytes()));
    out.append(body.bytes());
    return out.release();
}

} // namespace otdr
