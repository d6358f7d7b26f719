#pragma once

#include "platform/otdr/core/snapshot.h"

#include <QStringList>
#include <QTemporaryDir>

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace wfgather_test {

/// Settings of a simulation that is the same each time and does not wait.
constexpr const char* kFast = "[Simulation]\nseed=7\ntimeScale=0\n";

inline void sleep_ms(int time)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(time));
}

/// A directory for one run of the acquisition program: settings, snapshot.
class RunDirectory
{
public:
    /// Writes the settings file.
    explicit RunDirectory(const std::string& settings);

    [[nodiscard]] std::string path(const char* name) const;

    [[nodiscard]] std::string snapshotPath() const { return path("snapshot.bin"); }

    [[nodiscard]] std::string settingsPath() const { return path("settings"); }

    /// The snapshot that stands there now; none where there is no good one.
    [[nodiscard]] std::optional<otdr::Snapshot> snapshot() const;

    /// Names in the directory, hidden ones too, and in a folder of it.
    [[nodiscard]] QStringList names(const char* folder = "") const;

private:
    QTemporaryDir directory;
};

/// The acquisition program with its standard output on a pipe in packet mode: what it writes at
/// once is read at once, and nothing else with it.
class GatherProcess
{
public:
    /// fileLimit: no file may grow beyond so many bytes; 0 for no limit.
    explicit GatherProcess(const RunDirectory& directory, std::size_t fileLimit = 0);
    GatherProcess(const GatherProcess&) = delete;
    GatherProcess& operator=(const GatherProcess&) = delete;
    ~GatherProcess();

    /// The next thing written, within ten seconds; empty at the end.
    std::string next();

    /// Reads messages, without their counters and ends, until one begins with the text, that one
    /// included. Whatever does not look like one whole message is left as it is.
    std::vector<std::string> readTo(const std::string& beginning);

    /// All messages to the end.
    std::vector<std::string> rest() { return readTo("nothing begins so"); }

    /// Whether something has been written that was not read.
    [[nodiscard]] bool hasUnread() const;

    void signal(int number) const;
    void closeOutput();

    /// Waits for the end, at most ten seconds. The exit code; minus the signal that killed it.
    int wait();

    /// Standard error, once it has ended.
    [[nodiscard]] std::string errors() const;

private:
    void becomeProgram(const RunDirectory& directory, std::size_t fileLimit, int output) const;

    std::string errorPath;
    pid_t child = -1;
    int output = -1;
};

/// The messages without those of the events that the analysis has found.
std::vector<std::string> withoutEvents(std::vector<std::string> messages);

/// What the messages of the events say, in order.
std::vector<std::string> eventsIn(const std::vector<std::string>& messages);

/// Only the letters and braces of messages, "M { 1/2 wavelength ..." as "M { 1/2".
std::vector<std::string> shortened(const std::vector<std::string>& messages);

} // namespace wfgather_test
