#include "fuzz/detectioninput.h"

#include "platform/otdr/core/bytes.h"
#include "platform/otdr/core/constants.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace fuzz {

namespace {

/// The next number; `otherwise` where it is not finite.
double finiteOr(otdr::ByteReader& reader, double otherwise)
{
    std::uint64_t bits = 0;
    double value = 0.0;
    reader.read(bits);
    std::memcpy(&value, &bits, sizeof(value));
    return std::isfinite(value) ? value : otherwise;
}

void write(otdr::ByteWriter& writer, double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    writer.write(bits);
}

} // namespace

DetectionInput::DetectionInput(gsl::span<const std::byte> bytes)
{
    otdr::ByteReader reader(bytes);
    // What the reader of snapshots refuses does not come as far as the search.
    const double interval = finiteOr(reader, interval_ns);
    interval_ns = interval > 0.0 ? interval : interval_ns;
    firstSample_ns = finiteOr(reader, firstSample_ns);
    reader.read(pulse_ns);
    reader.read(scaleFactor);
    reader.read(backscatter);
    reader.read(groupIndex);
    counts = otdr::RawSamples::fromLittleEndian(reader.take(2 * kMostSamples));
}

double DetectionInput::dbPerCount() const
{
    return std::max<unsigned>(scaleFactor, 1) * otdr::kUsualDbPerCount / 1000.0;
}

otdr::TraceAxis DetectionInput::axis() const
{
    return {interval_ns, firstSample_ns};
}

otdr::Measurement DetectionInput::measurement() const
{
    otdr::Measurement measurement;
    measurement.pulse_ns = pulse_ns;
    measurement.wavelength_nm = 1550;
    // An index that cannot be is replaced before the search, as it is when a file is read.
    constexpr unsigned kLowest = 13000;
    constexpr unsigned kHighest = 17000;
    measurement.metresPerNs =
        otdr::metresPerNs(std::clamp<unsigned>(groupIndex, kLowest, kHighest) / 1e4);
    measurement.backscatter_dB =
        backscatter == 0 ? std::numeric_limits<double>::quiet_NaN() : backscatter / -10.0;
    return measurement;
}

std::vector<std::byte> encodeDetectionInput(const std::vector<std::uint16_t>& counts)
{
    otdr::ByteWriter writer;
    write(writer, 10.0);
    write(writer, 0.0);
    writer.write(std::uint32_t {100});
    writer.write(std::uint16_t {1000});
    writer.write(std::uint16_t {795});
    writer.write(std::uint16_t {14680});
    for (const std::uint16_t count : counts) {
        writer.write(count);
    }
    return writer.release();
}

} // namespace fuzz
