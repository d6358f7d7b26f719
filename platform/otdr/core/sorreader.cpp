#include "platform/otdr/core/sorreader.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/sorchecksum.h"
#include "platform/otdr/core/sordecode.h"
#include "platform/otdr/core/sormap.h"
#include "platform/otdr/core/sorvalues.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <set>
#include <utility>

namespace otdr {

namespace {

using Bytes = std::vector<std::byte>;

/// Samples span the range to this part of it.
constexpr double kSameRange = 0.02;

// Short enough to need no memory itself.
constexpr const char* kNoMemory = "out of memory";

void decodeBlocks(sor::File& file)
{
    const gsl::span<const std::byte> bytes(*file.bytes);
    auto& notes = file.notes;
    if (const auto* block = findBlock(file.blocks, "GenParams")) {
        decodeGenParams(blockBody(bytes, *block), file.version, file.gen, notes);
        file.hasGen = true;
    }
    if (const auto* block = findBlock(file.blocks, "SupParams")) {
        decodeSupParams(blockBody(bytes, *block), file.sup, notes);
        file.hasSup = true;
    }
    if (const auto* block = findBlock(file.blocks, "FxdParams")) {
        decodeFxdParams(blockBody(bytes, *block), file.version, file.fxd, notes);
        file.hasFxd = true;
    }
    if (const auto* block = findBlock(file.blocks, "KeyEvents")) {
        file.keyEvents.emplace();
        decodeKeyEvents(blockBody(bytes, *block), file.version, *file.keyEvents, notes);
    }
    if (const auto* block = findBlock(file.blocks, "LnkParams")) {
        decodeLandmarks(blockBody(bytes, *block), file.landmarks, notes);
    }
    if (const auto* block = findBlock(file.blocks, "DataPts")) {
        decodeDataPts(blockBody(bytes, *block), file.data, notes);
    }
}

void noteBackscatter(sor::File& file)
{
    const double read_dB = sor::backscatter_dB(file);
    if (file.fxd.backscatter == 0 || read_dB == file.fxd.backscatter / -10.0) {
        return;
    }
    char text[16];
    std::snprintf(text, sizeof(text), "%.1f", read_dB);
    file.notes.emplace_back(
        "the backscatter coefficient is stored as " + std::to_string(file.fxd.backscatter)
        + (std::isnan(read_dB) ? ", which none is; the usual one is taken"
                               : "; it is read as " + std::string(text) + " dB"));
}

/// What the spacing tells beside what else there is.
void noteSpacings(sor::File& file)
{
    std::set<std::uint32_t> spacings;
    for (const sor::PulseEntry& pulse : file.fxd.pulses) {
        spacings.insert(pulse.dataSpacing);
    }
    spacings.erase(0);
    if (spacings.size() > 1) {
        file.notes.emplace_back("the samples are told to have several spacings; one is taken for "
                                "all of them");
    }
    // A spacing in another unit: what else the range and the samples differ by means nothing, and
    // fewer samples may have been cut off.
    const double range_ns = file.fxd.acquisitionRange * kCountNs;
    const double reach_ns =
        sor::sampleInterval_ns(file) * static_cast<double>(file.data.samples.size());
    const double tens = std::round(std::log10(reach_ns / range_ns));
    const double rest = reach_ns / range_ns / std::pow(10.0, tens);
    if (std::isfinite(tens) && tens > 0.0 && std::abs(rest - 1.0) < kSameRange) {
        file.notes.emplace_back("the data spacing is 1e" + std::to_string(std::lround(tens))
                                + " times what the range allows; distances may be wrong");
    }
}

/// Tells what the values will be read as where the file's own cannot be.
void noteSubstitutes(sor::File& file)
{
    if (!file.hasFxd) {
        file.notes.emplace_back("how the trace was measured is missing; distances are not known");
        return;
    }
    if (sor::groupIndex(file) != file.fxd.groupIndex / 1e5) {
        char text[16];
        std::snprintf(text, sizeof(text), "%.5f", sor::groupIndex(file));
        file.notes.emplace_back("the group index " + std::to_string(file.fxd.groupIndex)
                                + "e-5 is impossible; " + text + " is assumed");
    }
    noteBackscatter(file);
    noteSpacings(file);
    const std::uint32_t stated = file.fxd.pulses.empty() ? 0 : file.fxd.pulses.front().dataSpacing;
    const double interval_ns = sor::sampleInterval_ns(file);
    if (std::isnan(interval_ns)) {
        file.notes.emplace_back("the data spacing is 0; distances are not known");
    } else if (stated == 0) {
        file.notes.emplace_back(
            "the data spacing is 0; the range over the number of samples is taken");
    } else if (interval_ns < 0.5 * stated * 1e-4 * kCountNs) {
        file.notes.emplace_back(
            "the data spacing is ten times what the range allows; a tenth of it is taken");
    }
}

Result<sor::File> parse(std::shared_ptr<const Bytes> bytes, ReadOptions options)
{
    if (bytes->size() > kLargestSorFile) {
        return Error {ErrorCode::TooLarge, "larger than 64 MiB, which no trace file is", 0};
    }
    sor::File file;
    auto map = sor::readMap(*bytes, file.notes);
    if (!map) {
        return map.error();
    }
    file.version = map->version;
    file.blocks = std::move(map->blocks);
    file.bytes = std::move(bytes);
    decodeBlocks(file);
    if (file.data.samples.empty()) {
        return Error {ErrorCode::Damaged, kNoSamples, 0};
    }
    noteSubstitutes(file);
    if (map->end < file.bytes->size()) {
        file.notes.emplace_back(std::to_string(file.bytes->size() - map->end)
                                + " bytes follow the last block; they are kept");
    }
    const bool stored = findBlock(file.blocks, "Cksum") != nullptr;
    if (options.verifyChecksum) {
        file.checksum = sor::verifyChecksum(*file.bytes, file.blocks);
    } else {
        file.checksum = stored ? sor::Checksum::NotChecked : sor::Checksum::Missing;
    }
    return file;
}

/// An open file that closes itself.
class Descriptor
{
public:
    explicit Descriptor(const std::string& path)
        // Not blocking: a pipe without a writer is refused, not waited for.
        : handle(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }

    ~Descriptor()
    {
        if (handle >= 0) {
            ::close(handle);
        }
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const { return handle; }

private:
    int handle;
};

Error systemError(ErrorCode code, const std::string& path, int number)
{
    return Error {code, path + ": " + std::strerror(number), 0};
}

Result<std::shared_ptr<const Bytes>> readBytes(const std::string& path)
{
    const Descriptor descriptor(path);

    struct stat status
    {
    };

    if (descriptor.get() < 0 || ::fstat(descriptor.get(), &status) != 0) {
        return systemError(ErrorCode::CannotOpen, path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return Error {ErrorCode::CannotOpen, path + ": not a regular file", 0};
    }
    if (status.st_size > static_cast<off_t>(kLargestSorFile)) {
        return Error {ErrorCode::TooLarge, path + ": larger than 64 MiB, which no trace file is",
                      0};
    }
    auto bytes = std::make_shared<Bytes>(static_cast<std::size_t>(status.st_size));
    std::size_t done = 0;
    while (done < bytes->size()) {
        const ssize_t count = ::read(descriptor.get(), bytes->data() + done, bytes->size() - done);
        if (count < 0 && errno != EINTR) {
            return systemError(ErrorCode::CannotRead, path, errno);
        }
        if (count == 0) {
            bytes->resize(done); // someone shortened it meanwhile
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return std::shared_ptr<const Bytes>(std::move(bytes));
}

} // namespace

Result<sor::File> readSor(std::shared_ptr<const std::vector<std::byte>> bytes, ReadOptions options)
{
    if (!bytes) {
        return Error {ErrorCode::CannotRead, "no bytes", 0};
    }
    try {
        return parse(std::move(bytes), options);
    } catch (const std::exception&) {
        return Error {ErrorCode::TooLarge, kNoMemory, 0};
    }
}

Result<sor::File> readSorFile(const std::string& path, ReadOptions options)
{
    try {
        auto bytes = readBytes(path);
        if (!bytes) {
            return bytes.error();
        }
        auto file = parse(std::move(bytes.value()), options);
        if (!file) {
            return Error {file.error().code, path + ": " + file.error().message,
                          file.error().offset};
        }
        return file;
    } catch (const std::exception&) {
        return Error {ErrorCode::TooLarge, kNoMemory, 0};
    }
}

} // namespace otdr
