#include "programs/wfgather/simulatedtrace.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/trace.h"
#include "programs/wfgather/linkresponse.h"
#include "programs/wfgather/receiver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace gather {

namespace {

// The measurement whose dynamic range data sheets quote.
constexpr double kQuotedPulse_ns = 20000.0;
constexpr double kQuotedTime_s = 180.0;

// Layout of the level axis, dB.
constexpr double kNoiseLevel_dB = 6.0;
constexpr double kLowestLaunch_dB = 10.0;
constexpr double kHighestLaunch_dB = 50.0;

constexpr double kCountsPerDb = 1000.0;
constexpr double kMostCounts = 65535.0;

/// Pause between the end of a record and the next shot.
constexpr double kPause_ns = 10000.0;

double rangeTime_ns(const TraceParams& params)
{
    return params.distance_m / otdr::metresPerNs(params.ior, params.helix_percent);
}

/// Raw count of a level; where there is no signal, that of no signal.
std::uint16_t rawCount(double level_dB)
{
    const double counts = std::clamp(std::round(level_dB * kCountsPerDb), 0.0, kMostCounts);
    return static_cast<std::uint16_t>(otdr::kNoSignal - static_cast<int>(counts));
}

} // namespace

double dynamicRange_dB(double quoted_dB, double pulse_ns, double time_s)
{
    return quoted_dB + 8.5 * std::log10(pulse_ns / kQuotedPulse_ns)
        + 2.5 * std::log10(time_s / kQuotedTime_s);
}

SimulatedTrace::SimulatedTrace(const Fibre& fibre, const SimulationRequest& request)
    : announced(request.params)
    , sampling(samplingFor(rangeTime_ns(announced), announced.pulse_ns))
    , power(detect(responseOf(fibre, announced.wavelength_nm), announced.pulse_ns, sampling))
    , accumulator(sampling.count, 0.0)
    , rate(1e9 / (rangeTime_ns(announced) + kPause_ns))
    , correlation(std::exp(-sampling.interval_ns / timeConstant_ns(announced.pulse_ns)))
{
    const double quoted_dB = fibre.dynamicRange_dB.at(announced.wavelength_nm);
    const double range_dB = dynamicRange_dB(quoted_dB, announced.pulse_ns, request.reference_s);
    launch_dB = std::clamp(kNoiseLevel_dB + range_dB, kLowestLaunch_dB, kHighestLaunch_dB);
    shotNoise = std::pow(10.0, -range_dB / 5.0) * std::sqrt(rate * request.reference_s);
    // Two wavelengths of one run see noise of their own.
    std::seed_seq seed {static_cast<std::uint32_t>(request.seed),
                        static_cast<std::uint32_t>(request.seed >> 32U),
                        static_cast<std::uint32_t>(announced.wavelength_nm)};
    generator.seed(seed);
}

void SimulatedTrace::measure(double time_s)
{
    const double most = std::numeric_limits<std::uint32_t>::max() - shots;
    const double added = std::min(std::max(1.0, std::round(time_s * rate)), most);
    for (std::size_t i = 0; i < accumulator.size(); ++i) {
        accumulator[i] += added / shotNoise * power[i];
    }
    addNoise(std::sqrt(added));
    shots += static_cast<std::uint32_t>(added);
}

/// The converter's step is the noise of one shot, which dithers it: what the accumulators hold are
/// whole steps. What the rounding of each shot adds is counted in the dynamic range.
void SimulatedTrace::addNoise(double amount)
{
    // The low-pass that rounds the signal also makes neighbours alike; the RMS stays.
    const double fresh = std::sqrt(1.0 - correlation * correlation);
    double noise = gaussian(generator);
    for (double& sum : accumulator) {
        sum = std::round(sum + amount * noise);
        noise = correlation * noise + fresh * gaussian(generator);
    }
}

void SimulatedTrace::restart()
{
    std::fill(accumulator.begin(), accumulator.end(), 0.0);
    shots = 0;
}

otdr::Snapshot SimulatedTrace::snapshot() const
{
    const double perShot = shotNoise / std::max(1U, shots);
    std::vector<std::uint16_t> counts(accumulator.size(), otdr::kNoSignal);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (accumulator[i] > 0.0) {
            counts[i] = rawCount(launch_dB + 5.0 * std::log10(accumulator[i] * perShot));
        }
    }
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = sampling.interval_ns;
    snapshot.averages = shots;
    snapshot.pulse_ns = static_cast<std::uint32_t>(announced.pulse_ns);
    snapshot.wavelength_nm = static_cast<std::uint16_t>(announced.wavelength_nm);
    snapshot.countsPerDb = static_cast<std::uint16_t>(kCountsPerDb);
    snapshot.samples = otdr::RawSamples(counts);
    return snapshot;
}

} // namespace gather
