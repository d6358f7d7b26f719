#pragma once

#include "programs/wfgather/fibre.h"
#include "programs/wfgather/sampling.h"
#include "programs/wfgather/tracesource.h"

#include <cstdint>
#include <random>
#include <vector>

namespace gather {

/// Dynamic range that a fibre file's figure (20 us, 3 minutes) means for another pulse and time, dB
/// of the trace.
///
/// 8.5 log10 of the ratio of the pulses, 2.5 log10 of that of the times: the first fits what
/// instruments of one family reach with their pulses, the second is white noise.
[[nodiscard]] double dynamicRange_dB(double quoted_dB, double pulse_ns, double time_s);

/// How a fibre is to be measured.
struct SimulationRequest
{
    TraceParams params; ///< of the trace, as they will be announced
    double reference_s = 15.0; ///< averaging time for which levels are laid out, > 0
    std::uint64_t seed = 1;
};

/// A measurement of a simulated fibre: the power that is free of noise is computed once, then every
/// shot adds it and its noise to the accumulators.
///
/// Time is the fibre's own (its group index), the range that of the announced index and helix, as
/// on an instrument: an index that is not the fibre's puts events elsewhere. Levels are laid out so
/// that the RMS noise of the whole measurement stands at 6 dB and the backscatter at the port as
/// far above as the dynamic range; it is kept within 10 .. 50 dB, so that a saturated peak still
/// fits into 16 bits. The same request gives the same samples.
class SimulatedTrace : public TraceSource
{
public:
    SimulatedTrace(const Fibre& fibre, const SimulationRequest& request);

    [[nodiscard]] TraceParams params() const override { return announced; }

    void measure(double time_s) override;
    void restart() override;
    [[nodiscard]] otdr::Snapshot snapshot() const override;

    /// Level of the backscatter at the port, dB.
    [[nodiscard]] double launchLevel_dB() const { return launch_dB; }

private:
    void addNoise(double amount);

    TraceParams announced;
    Sampling sampling;
    std::vector<double> power; ///< free of noise; the backscatter at the port is 1
    std::vector<double> accumulator; ///< sum over the shots, in steps of the converter
    double rate = 1.0; ///< shots a second
    double shotNoise = 0.0; ///< RMS of one shot; also the converter's step
    double correlation = 0.0; ///< of the noise of neighbouring samples
    double launch_dB = 0.0;
    std::uint32_t shots = 0;
    std::mt19937_64 generator;
    std::normal_distribution<double> gaussian;
};

} // namespace gather
