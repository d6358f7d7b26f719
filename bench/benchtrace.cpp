#include "bench/benchtrace.h"

#include "platform/otdr/core/snapshot.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <map>
#include <random>
#include <utility>

namespace {

std::vector<std::uint16_t> countsOf(std::size_t samples, unsigned int seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> noise;
    std::vector<std::uint16_t> counts(samples);
    for (std::size_t i = 0; i < samples; ++i) {
        const double place = static_cast<double>(i) / static_cast<double>(samples);
        const double line_dB = 40.0 - 15.0 * place - 3.0 * seed;
        const double level_dB =
            place < 0.8 ? line_dB + 0.05 * noise(random) : std::max(0.0, 8.0 + 3.0 * noise(random));
        const bool reflection = i == samples / 3 || i == samples / 2;
        counts[i] = static_cast<std::uint16_t>(65535 - 1000 * (reflection ? 45.0 : level_dB));
    }
    return counts;
}

} // namespace

Reflectogram benchTraceOf(const std::vector<std::uint16_t>& counts)
{
    const QTemporaryDir dir;
    const QString name = dir.filePath("trace.bin");
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = kBenchRange_m / 0.1 / static_cast<double>(counts.size());
    snapshot.wavelength_nm = 1550;
    snapshot.pulse_ns = 100;
    snapshot.samples = otdr::RawSamples(counts);
    const std::vector<std::byte> bytes = otdr::encodeSnapshot(snapshot);
    QFile file(name);
    file.open(QIODevice::WriteOnly);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    file.close();
    return Reflectogram(name, WfMeasParams());
}

const Reflectogram& benchTrace(std::size_t samples, unsigned int seed)
{
    static std::map<std::pair<std::size_t, unsigned int>, Reflectogram> made;
    Reflectogram& refl = made[{samples, seed}];
    if (!refl.isValid()) {
        refl = benchTraceOf(countsOf(samples, seed));
    }
    return refl;
}
