#include "programs/wfgather/sources.h"

#include "programs/wfgather/fibrefile.h"
#include "programs/wfgather/replayedtrace.h"
#include "programs/wfgather/simulatedtrace.h"

#include <random>

namespace gather {

namespace {

using Sources = std::vector<std::unique_ptr<TraceSource>>;

otdr::Result<Sources> replayFor(const Settings& settings)
{
    const TraceParams wanted = settings.paramsAt(settings.wavelengths_nm.front());
    const otdr::Result<Replay> replay = readReplay(settings.replay, wanted);
    if (!replay) {
        return replay.error();
    }
    Sources sources;
    sources.push_back(std::make_unique<ReplayedTrace>(replay->params, replay->snapshot));
    return sources;
}

otdr::Result<Sources> simulationFor(const Settings& settings)
{
    const otdr::Result<Fibre> fibre =
        settings.fibre.empty() ? demoFibre() : readFibreFile(settings.fibre);
    if (!fibre) {
        return fibre.error();
    }
    const std::uint64_t seed = settings.seed.value_or(std::random_device {}());
    Sources sources;
    for (const int wavelength : settings.wavelengths_nm) {
        SimulationRequest request;
        request.params = settings.paramsAt(wavelength);
        if (!settings.backscatter_dB) {
            request.params.backscatter_dB = fibre->sections.front().backscatter_dB.at(wavelength);
        }
        request.reference_s = settings.isRealtime() ? kRealtimeRefresh_s : settings.duration_s;
        request.seed = seed;
        sources.push_back(std::make_unique<SimulatedTrace>(*fibre, request));
    }
    return sources;
}

} // namespace

otdr::Result<Sources> sourcesFor(const Settings& settings)
{
    return settings.replay.empty() ? simulationFor(settings) : replayFor(settings);
}

} // namespace gather
