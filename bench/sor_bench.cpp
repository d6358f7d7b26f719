#include "platform/otdr/core/atomicfile.h"
#include "platform/otdr/core/crc16.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/sorwriter.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kSamples = 58'500; // makes a file of about 118 KB

/// A trace of falling level with a dozen events, as an instrument would save it.
otdr::sor::File typicalTrace()
{
    otdr::sor::File file;
    file.hasGen = file.hasSup = file.hasFxd = true;
    file.gen.wavelength_nm = 1550;
    file.sup.supplier = "Bench ";
    file.fxd.pulses = {{100, 250'000, kSamples}};
    file.fxd.groupIndex = 146'800;
    // Not 0, so that the axis has something to check.
    file.fxd.frontPanelOffset = 25'000;
    file.keyEvents.emplace();
    for (int i = 0; i < 12; ++i) {
        otdr::sor::KeyEvent event;
        event.number = static_cast<std::uint16_t>(i + 1);
        event.position = 100'000 * i;
        event.code = {i % 3 == 0 ? '1' : '0', i == 11 ? 'E' : 'F', '9', '9', '9', '9'};
        file.keyEvents->events.push_back(event);
    }
    std::vector<std::uint16_t> raw(kSamples);
    for (std::size_t i = 0; i < kSamples; ++i) {
        raw[i] = static_cast<std::uint16_t>(20'000 + i / 2 + i * 7919 % 13);
    }
    file.data.samples = otdr::RawSamples(raw);
    return file;
}

/// The trace as a file on disk, there for as long as the program runs.
const std::string& typicalFile()
{
    static const struct OnDisk
    {
        OnDisk()
        {
            const auto bytes = otdr::encodeSor(typicalTrace());
            if (!bytes || !otdr::writeFileAtomically(path, *bytes)) {
                throw std::runtime_error("cannot write " + path);
            }
        }

        ~OnDisk() { std::remove(path.c_str()); }

        std::string path = "/tmp/sor_bench-" + std::to_string(::getpid()) + ".sor";
    } file;

    return file.path;
}

std::vector<std::byte> readWhole(const std::string& path)
{
    const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);

    struct stat status
    {
    };

    ::fstat(handle, &status);
    std::vector<std::byte> bytes(static_cast<std::size_t>(status.st_size));
    const ssize_t count = ::read(handle, bytes.data(), bytes.size());
    ::close(handle);
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return bytes;
}

void countBytes(benchmark::State& state, std::size_t each)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(each) * state.iterations());
}

// The yardstick of the two below: the same bytes into a fresh buffer, and nothing else.
void readTheBytesAlone118KB(benchmark::State& state)
{
    const std::string& path = typicalFile();
    std::size_t size = 0;
    for (auto _ : state) {
        const auto bytes = readWhole(path);
        size = bytes.size();
        benchmark::DoNotOptimize(bytes.data());
    }
    countBytes(state, size);
}

BENCHMARK(readTheBytesAlone118KB);

void readSorFile118KB(benchmark::State& state, bool verifyChecksum)
{
    const std::string& path = typicalFile();
    double level = 0.0;
    for (auto _ : state) {
        const auto file = otdr::readSorFile(path, {verifyChecksum});
        level += otdr::sor::level_dB(*file, file->data.samples[kSamples / 2]);
        benchmark::DoNotOptimize(level);
    }
    countBytes(state, readWhole(path).size());
}

BENCHMARK_CAPTURE(readSorFile118KB, withoutChecksum, false);
BENCHMARK_CAPTURE(readSorFile118KB, withChecksum, true);

void crc16Of118KB(benchmark::State& state)
{
    const auto bytes = readWhole(typicalFile());
    for (auto _ : state) {
        benchmark::DoNotOptimize(otdr::crc16(bytes, 0xFFFF));
    }
    countBytes(state, bytes.size());
}

BENCHMARK(crc16Of118KB);

void checkTheAxis(benchmark::State& state)
{
    const auto file = otdr::readSorFile(typicalFile(), {false});
    for (auto _ : state) {
        benchmark::DoNotOptimize(otdr::sor::axisOf(*file).firstSample_ns);
    }
}

BENCHMARK(checkTheAxis);

void encodeAnew118KB(benchmark::State& state)
{
    const otdr::sor::File file = typicalTrace();
    for (auto _ : state) {
        benchmark::DoNotOptimize(otdr::encodeSor(file)->data());
    }
    countBytes(state, readWhole(typicalFile()).size());
}

BENCHMARK(encodeAnew118KB);

} // namespace
