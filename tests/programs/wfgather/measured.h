#pragma once

#include "platform/otdr/core/loss.h"
#include "platform/otdr/core/trace.h"
#include "programs/wfgather/fibre.h"
#include "programs/wfgather/simulatedtrace.h"

#include <memory>
#include <vector>

namespace wfgather_test {

/// Fibre of one kind with the usual index, as quiet as a fibre file may ask for: 80 dB of range.
gather::Fibre uniformFibre(double length_m, double attenuation_dBPerKm = 0.2,
                           double backscatter_dB = -81.9);

/// The same with events put in; they have to come in order.
gather::Fibre fibreWith(std::vector<gather::FibreEvent> events, double length_m = 10000.0);

gather::FibreEvent splice(double at_m, double loss_dB);
gather::FibreEvent connector(double at_m, double loss_dB, double reflectance_dB);

/// How a test measures; 1550 nm, the index of the fibre.
struct Shot
{
    int pulse_ns = 100;
    double range_m = 20000.0;
    double time_s = 15.0;
    std::uint64_t seed = 1;
    int wavelength_nm = 1550;
};

gather::SimulationRequest request(const Shot& shot);

/// A simulated trace with what is needed to measure on it.
struct Measured
{
    std::shared_ptr<const otdr::Trace> trace;
    double metresPerSample = 0.0;
    double pulseSamples = 0.0;
    double launch_dB = 0.0; ///< where the simulator has laid the backscatter at the port

    [[nodiscard]] double indexOf(double at_m) const { return at_m / metresPerSample; }

    [[nodiscard]] otdr::EventSite site(double at_m, double left_m, double right_m) const;
};

Measured measure(const gather::Fibre& fibre, const Shot& shot = {});

constexpr double kIor = 1.4683;

} // namespace wfgather_test
