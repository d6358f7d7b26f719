#pragma once

#include "platform/otdr/core/result.h"
#include "programs/wfgather/tracesource.h"

#include <string>

namespace gather {

/// A trace file that is served as if it were being measured: the samples are there from the first
/// refresh on.
class ReplayedTrace : public TraceSource
{
public:
    ReplayedTrace(TraceParams params, otdr::Snapshot served);

    [[nodiscard]] TraceParams params() const override { return announced; }

    void measure(double /*time_s*/) override { }

    void restart() override { }

    [[nodiscard]] otdr::Snapshot snapshot() const override { return served; }

private:
    TraceParams announced;
    otdr::Snapshot served;
};

/// What a trace file (.sor) is served as.
struct Replay
{
    TraceParams params;
    otdr::Snapshot snapshot;
};

/// Reads the trace file to serve. Errors as those of otdr::readSorFile().
///
/// Samples, group index, wavelength, pulse, backscatter coefficient, range and averaging time are
/// the file's; what it does not tell is taken from `wanted`, and the helix factor always, for a
/// trace file has none. 0 m is where it is in the file. Samples of another scale than 1000 counts a
/// decibel are brought to that.
[[nodiscard]] otdr::Result<Replay> readReplay(const std::string& path, const TraceParams& wanted);

} // namespace gather
