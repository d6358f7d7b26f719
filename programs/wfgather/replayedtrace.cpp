#include "programs/wfgather/replayedtrace.h"

#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace gather {

namespace {

constexpr std::uint16_t kUsualScale = 1000;

/// Samples of a file whose scale factor is not the usual one, in counts of 0.001 dB. What the
/// levels count from means nothing: the weakest sample becomes that without signal, so that all
/// the others find room above it.
otdr::RawSamples rescaled(const otdr::sor::DataPts& data)
{
    const std::uint16_t weakest = *std::max_element(data.samples.begin(), data.samples.end());
    std::vector<std::uint16_t> counts(data.samples.size());
    std::transform(data.samples.begin(), data.samples.end(), counts.begin(), [&](auto raw) {
        const double level = (weakest - raw) * static_cast<double>(data.scaleFactor) / kUsualScale;
        const double shown = std::min<double>(std::round(level), otdr::kNoSignal);
        return static_cast<std::uint16_t>(otdr::kNoSignal - static_cast<int>(shown));
    });
    return otdr::RawSamples(counts);
}

double positiveOr(double value, double otherwise)
{
    return std::isfinite(value) && value > 0.0 ? value : otherwise;
}

TraceParams paramsOf(const otdr::sor::File& file, const TraceParams& wanted)
{
    using namespace otdr::sor;
    TraceParams params = wanted;
    params.ior = groupIndex(file);
    params.distance_m = positiveOr(range_m(file), wanted.distance_m);
    params.pulse_ns = static_cast<int>(std::lround(positiveOr(pulse_ns(file), wanted.pulse_ns)));
    params.wavelength_nm =
        nominalWavelength_nm(file) > 0 ? nominalWavelength_nm(file) : wanted.wavelength_nm;
    const double backscatter = backscatter_dB(file);
    params.backscatter_dB = backscatter < 0.0 ? backscatter : wanted.backscatter_dB;
    if (wanted.duration_s > 0) {
        const double time = positiveOr(averagingTime_s(file), wanted.duration_s);
        params.duration_s = std::max(1, static_cast<int>(std::lround(time)));
    }
    return params;
}

} // namespace

ReplayedTrace::ReplayedTrace(TraceParams params, otdr::Snapshot served)
    : announced(params)
    , served(std::move(served))
{
}

otdr::Result<Replay> readReplay(const std::string& path, const TraceParams& wanted)
{
    const auto file = otdr::readSorFile(path, {false});
    if (!file) {
        return file.error();
    }
    const otdr::sor::Axis axis = otdr::sor::axisOf(*file);
    Replay replay;
    replay.params = paramsOf(*file, wanted);
    otdr::Snapshot& snapshot = replay.snapshot;
    // Without a spacing the axis counts samples: one nanosecond each.
    snapshot.sampleInterval_ns = positiveOr(axis.sampleInterval_ns, 1.0);
    snapshot.firstSample_ns = std::isfinite(axis.firstSample_ns) ? axis.firstSample_ns : 0.0;
    snapshot.averages = file->fxd.averages;
    snapshot.pulse_ns = static_cast<std::uint32_t>(replay.params.pulse_ns);
    snapshot.wavelength_nm = static_cast<std::uint16_t>(replay.params.wavelength_nm);
    snapshot.countsPerDb = kUsualScale;
    snapshot.samples =
        file->data.scaleFactor == kUsualScale ? file->data.samples : rescaled(file->data);
    return replay;
}

} // namespace gather
