// Settings files of the acquisition: they are read or refused with words, and what is read keeps to
// the ranges by which memory and time are bounded.
#include "fuzz/claim.h"
#include "platform/otdr/core/constants.h"
#include "programs/wfgather/sampling.h"
#include "programs/wfgather/settings.h"

#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdint>

namespace {

using fuzz::claim;

constexpr std::size_t kMostSamples = 131072;

/// A new name each time: QSettings keeps what it has read by its name.
QString nextName()
{
    static const QTemporaryDir dir;
    static unsigned long number = 0;
    return dir.filePath(QString::number(++number) + ".cfg");
}

void check(const gather::Settings& settings)
{
    claim(settings.duration_s >= 0, "measuring takes no negative time");
    claim(settings.timeScale >= 0.0, "time does not run backwards");
    claim(!settings.wavelengths_nm.empty(), "there is a trace to measure");
    claim(!settings.isRealtime() || settings.wavelengths_nm.size() == 1,
          "realtime has one wavelength");
    for (const int wavelength_nm : settings.wavelengths_nm) {
        const gather::TraceParams params = settings.paramsAt(wavelength_nm);
        claim(params.pulse_ns > 0 && params.distance_m > 0.0, "pulse and range are positive");
        const double range_ns =
            params.distance_m / otdr::metresPerNs(params.ior, params.helix_percent);
        const gather::Sampling sampling = gather::samplingFor(range_ns, params.pulse_ns);
        claim(sampling.count >= 2 && sampling.count <= kMostSamples, "the samples are bounded");
        claim(sampling.interval_ns > 0.0, "samples lie one behind the other");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QFile file(nextName());
    claim(file.open(QIODevice::WriteOnly), "the directory takes a file");
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    const auto settings = gather::readSettings(QFile::encodeName(file.fileName()).toStdString());
    file.remove();
    if (settings) {
        check(*settings);
    } else {
        claim(!settings.error().message.empty(), "an error has words");
    }
    return 0;
}
