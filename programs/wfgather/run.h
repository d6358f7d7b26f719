#pragma once

#include "platform/otdr/core/result.h"
#include "programs/wfgather/messagewriter.h"
#include "programs/wfgather/settings.h"
#include "programs/wfgather/snapshotfile.h"
#include "programs/wfgather/stopsignal.h"
#include "programs/wfgather/tracesource.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace gather {

/// What a run works with; all of it outlives the run.
struct Equipment
{
    MessageWriter& messages;
    SnapshotFile& file;
    StopSignal& stop;
};

/// One run of the acquisition: its traces one after the other, refresh by refresh.
///
/// Every refresh puts a snapshot in place and then sends a tick; before a snapshot is put in place
/// the reader has taken all messages before it. In this way the start of a trace, its snapshots and
/// its end are seen in this order however busy the reader is. A stop ends the refresh of the moment
/// with what has been measured; the trace, its analysis and the run end as usual, and no further
/// trace is begun. The analysis finds the events of the trace as the last snapshot holds it.
class Run
{
public:
    Run(const Settings& settings, const Equipment& with);

    /// Runs to the end, to a stop, or until nobody reads (see MessageWriter::isConnected). An error
    /// where a snapshot cannot be written; the messages then stop where they are.
    [[nodiscard]] std::optional<otdr::Error>
    execute(const std::vector<std::unique_ptr<TraceSource>>& sources);

private:
    [[nodiscard]] std::optional<otdr::Error> measureTrace(TraceSource& source);
    [[nodiscard]] std::optional<otdr::Error> refresh(TraceSource& source, double until_s);
    void analyseTrace(const TraceSource& source);
    [[nodiscard]] double waitFor(double until_s);
    [[nodiscard]] bool isComplete() const;
    [[nodiscard]] bool isInterrupted();

    const Settings& settings;
    Equipment with;
    StopSignal::Clock::time_point traceStart;
    double measured_s = 0.0; ///< of the current trace
    std::uint32_t sequence = 0;
};

} // namespace gather
