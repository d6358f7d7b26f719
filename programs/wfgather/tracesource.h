#pragma once

#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/usualfibre.h"

namespace gather {

/// What a trace is announced with. The reader takes distances and reflectances from these.
struct TraceParams
{
    int wavelength_nm = 1310;
    int duration_s = 15; ///< 0 in realtime
    double ior =
        OTDR::usualFibre(1310).groupIndex; ///< group index by which distances are to be shown
    double helix_percent = 0.0;
    double distance_m = 10000.0;
    int pulse_ns = 100;
    double backscatter_dB = OTDR::usualFibre(1310).backscatter_dB; ///< at 1 ns
};

/// One trace that is being measured.
class TraceSource
{
public:
    TraceSource() = default;
    TraceSource(const TraceSource&) = delete;
    TraceSource& operator=(const TraceSource&) = delete;
    virtual ~TraceSource() = default;

    [[nodiscard]] virtual TraceParams params() const = 0;

    /// Measures for a time, > 0 s, and averages with what there is.
    virtual void measure(double time_s) = 0;

    /// Forgets what has been averaged.
    virtual void restart() = 0;

    /// The trace as averaged so far. Its sequence number is left to the caller.
    [[nodiscard]] virtual otdr::Snapshot snapshot() const = 0;
};

} // namespace gather
