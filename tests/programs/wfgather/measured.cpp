#include "tests/programs/wfgather/measured.h"

#include "platform/otdr/core/constants.h"

namespace wfgather_test {

using gather::Fibre;
using gather::FibreEvent;
using gather::Spectrum;

Fibre uniformFibre(double length_m, double attenuation_dBPerKm, double backscatter_dB)
{
    Fibre fibre;
    fibre.ior = Spectrum(kIor);
    fibre.sections = {{length_m, Spectrum(attenuation_dBPerKm), Spectrum(backscatter_dB)}};
    fibre.dynamicRange_dB = Spectrum(80.0);
    return fibre;
}

Fibre fibreWith(std::vector<FibreEvent> events, double length_m)
{
    Fibre fibre = uniformFibre(length_m);
    fibre.events = std::move(events);
    return fibre;
}

FibreEvent splice(double at_m, double loss_dB)
{
    return {at_m, Spectrum(loss_dB), {}, "splice"};
}

FibreEvent connector(double at_m, double loss_dB, double reflectance_dB)
{
    return {at_m, Spectrum(loss_dB), Spectrum(reflectance_dB), "connector"};
}

gather::SimulationRequest request(const Shot& shot)
{
    gather::SimulationRequest request;
    request.params.wavelength_nm = shot.wavelength_nm;
    request.params.ior = kIor;
    request.params.distance_m = shot.range_m;
    request.params.pulse_ns = shot.pulse_ns;
    request.reference_s = shot.time_s;
    request.seed = shot.seed;
    return request;
}

otdr::EventSite Measured::site(double at_m, double left_m, double right_m) const
{
    otdr::EventSite site;
    site.index = indexOf(at_m);
    site.pulse = pulseSamples;
    site.leftLimit = indexOf(left_m);
    site.rightLimit = indexOf(right_m);
    return site;
}

Measured measure(const Fibre& fibre, const Shot& shot)
{
    gather::SimulatedTrace simulated(fibre, request(shot));
    simulated.measure(shot.time_s);
    const otdr::Snapshot snapshot = simulated.snapshot();
    const otdr::TraceAxis axis {snapshot.sampleInterval_ns, snapshot.firstSample_ns};
    Measured measured;
    measured.trace =
        std::make_shared<const otdr::Trace>(snapshot.samples, snapshot.dbPerCount(), axis);
    measured.metresPerSample = snapshot.sampleInterval_ns * otdr::metresPerNs(kIor);
    measured.pulseSamples = shot.pulse_ns / snapshot.sampleInterval_ns;
    measured.launch_dB = simulated.launchLevel_dB();
    return measured;
}

} // namespace wfgather_test
