#pragma once

#include "programs/wfgather/tracesource.h"

#include <cstddef>
#include <string>

namespace gather {

/// The messages of a run, as the reader of the standard output parses them.
///
/// Each begins with a running number and ends with ";" and a line feed, and leaves in one write: a
/// reader that is not behind gets it whole. SIGPIPE has to be ignored.
class MessageWriter
{
public:
    /// descriptor: to write to, stays open.
    explicit MessageWriter(int descriptor);

    void gatherStarts() { send("G {"); }

    void gatherEnds() { send("G }"); }

    void tracesPrepared(std::size_t count);

    /// number: from 1 on.
    void traceStarts(std::size_t number, std::size_t count, const TraceParams& params);

    void traceEnds() { send("M }"); }

    /// Time left and time measured of the current trace, whole seconds.
    void tick(int remaining_s, int elapsed_s);

    void analysisStarts() { send("A {"); }

    /// event: as Event::toString writes it.
    void eventFound(const std::string& event) { send("A * " + event); }

    void analysisEnds() { send("A }"); }

    /// The reader is still there. Once it has gone, nothing more is written.
    [[nodiscard]] bool isConnected() const { return connected; }

    /// Waits until the reader has taken everything or has gone, for at most a second. At once where
    /// the descriptor is no pipe.
    void waitUntilRead();

private:
    void send(const std::string& text);

    int descriptor;
    bool isPipe;
    bool connected = true;
    unsigned counter = 0;
};

} // namespace gather
