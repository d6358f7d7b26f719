#include "programs/wfgather/run.h"

#include "programs/wfgather/analysis.h"
#include "programs/wfgather/sources.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace gather {

namespace {

using Seconds = std::chrono::duration<double>;

/// A realtime run has no end of its own; even as fast as possible it leaves time for others.
constexpr double kShortestRealtimeRefresh_s = 0.02;

/// Two times closer than this are the same: sums of refreshes are not exact.
constexpr double kSameTime_s = 1e-6;

} // namespace

Run::Run(const Settings& settings, const Equipment& with)
    : settings(settings)
    , with(with)
{
}

std::optional<otdr::Error> Run::execute(const std::vector<std::unique_ptr<TraceSource>>& sources)
{
    with.messages.gatherStarts();
    with.messages.tracesPrepared(sources.size());
    for (std::size_t i = 0; i < sources.size() && !isInterrupted(); ++i) {
        with.messages.traceStarts(i + 1, sources.size(), sources[i]->params());
        if (std::optional<otdr::Error> error = measureTrace(*sources[i])) {
            return error;
        }
        with.messages.traceEnds();
        analyseTrace(*sources[i]);
    }
    with.messages.gatherEnds();
    return std::nullopt;
}

std::optional<otdr::Error> Run::measureTrace(TraceSource& source)
{
    traceStart = StopSignal::Clock::now();
    measured_s = 0.0;
    const double step_s = settings.isRealtime() ? kRealtimeRefresh_s : kRefresh_s;
    do {
        if (std::optional<otdr::Error> error = refresh(source, measured_s + step_s)) {
            return error;
        }
    } while (!isComplete() && !isInterrupted());
    return std::nullopt;
}

void Run::analyseTrace(const TraceSource& source)
{
    with.messages.analysisStarts();
    if (with.messages.isConnected()) {
        for (const Event& event : analyse(source.snapshot(), source.params())) {
            with.messages.eventFound(event.toString().toStdString());
        }
    }
    with.messages.analysisEnds();
}

/// Whether the trace has been measured for its time.
bool Run::isComplete() const
{
    return !settings.isRealtime() && measured_s >= settings.duration_s - kSameTime_s;
}

bool Run::isInterrupted()
{
    return with.stop.raised() || !with.messages.isConnected();
}

std::optional<otdr::Error> Run::refresh(TraceSource& source, double until_s)
{
    if (settings.isRealtime()) {
        source.restart();
    }
    const double reached_s = waitFor(until_s);
    source.measure(reached_s - measured_s);
    measured_s = reached_s;

    otdr::Snapshot snapshot = source.snapshot();
    snapshot.sequence = ++sequence;
    if (std::optional<otdr::Error> error = with.file.write(otdr::encodeSnapshot(snapshot))) {
        return error;
    }
    // The tick first: when the reader finds the snapshot it knows how long that was measured.
    const int elapsed_s = static_cast<int>(measured_s + kSameTime_s);
    const int remaining_s = settings.isRealtime() ? 0 : settings.duration_s - elapsed_s;
    with.messages.tick(remaining_s, elapsed_s);
    with.messages.waitUntilRead();
    if (!with.messages.isConnected()) {
        return std::nullopt; // by now the directory may be that of another reader's run
    }
    return with.file.publish();
}

/// Lets the time pass until so much of the trace has been measured. Answers the measuring time that
/// was reached: less where a stop came before, yet more than there was.
double Run::waitFor(double until_s)
{
    double wall_s = until_s * settings.timeScale;
    if (settings.isRealtime()) {
        const double steps = std::round(until_s / kRealtimeRefresh_s);
        wall_s = std::max(wall_s, steps * kShortestRealtimeRefresh_s);
    }
    const auto due =
        traceStart + std::chrono::duration_cast<StopSignal::Clock::duration>(Seconds(wall_s));
    const bool stopped = with.stop.waitUntil(due);
    if (!stopped || settings.timeScale <= 0.0) {
        return until_s;
    }
    const double passed_s = Seconds(StopSignal::Clock::now() - traceStart).count();
    constexpr double kShortest_s = 1e-3;
    return std::clamp(passed_s / settings.timeScale, measured_s + kShortest_s, until_s);
}

} // namespace gather
