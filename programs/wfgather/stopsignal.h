#pragma once

#include <chrono>
#include <csignal>

namespace gather {

/// SIGTERM and SIGINT, taken as the wish to stop rather than as the end of the process.
///
/// From its construction on the two signals stay blocked for the whole process: make it before any
/// thread is started.
class StopSignal
{
public:
    using Clock = std::chrono::steady_clock;

    StopSignal();

    /// Whether one of the signals has come, now or earlier.
    [[nodiscard]] bool raised();

    /// Sleeps until a time or until a signal comes, whichever is first; answers raised().
    bool waitUntil(Clock::time_point time);

private:
    sigset_t signalSet {};
    bool isRaised = false;
};

} // namespace gather
