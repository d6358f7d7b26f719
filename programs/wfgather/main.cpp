#include "programs/wfgather/commandline.h"
#include "programs/wfgather/messagewriter.h"
#include "programs/wfgather/run.h"
#include "programs/wfgather/settings.h"
#include "programs/wfgather/snapshotfile.h"
#include "programs/wfgather/sources.h"
#include "programs/wfgather/stopsignal.h"

#include <QCoreApplication>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>

namespace {

int fail(const char* message)
{
    std::fprintf(stderr, "wfgather: %s\n", message);
    return 1;
}

int fail(const otdr::Error& error)
{
    return fail(error.message.c_str());
}

int measure(const gather::CommandLine& commandLine, gather::StopSignal& stop)
{
    const auto settings = gather::readSettings(commandLine.settings);
    if (!settings) {
        return fail(settings.error());
    }
    const auto sources = gather::sourcesFor(*settings);
    if (!sources) {
        return fail(sources.error());
    }
    gather::SnapshotFile file(commandLine.snapshot);
    if (const auto error = file.prepare()) {
        return fail(*error);
    }
    gather::MessageWriter messages(STDOUT_FILENO);
    gather::Run run(*settings, {messages, file, stop});
    if (const auto error = run.execute(*sources)) {
        return fail(*error);
    }
    return messages.isConnected() ? 0 : 1;
}

int answer(const gather::CommandLine& commandLine, gather::StopSignal& stop)
{
    switch (commandLine.form) {
    case gather::Form::ShowHelp:
        std::fputs(commandLine.message.c_str(), stdout);
        return 0;
    case gather::Form::ShowVersion:
        std::puts("wfgather " WAVEFORM_VERSION);
        return 0;
    case gather::Form::Wrong:
        std::fprintf(stderr, "wfgather: %s; see --help\n", commandLine.message.c_str());
        return 2;
    default:
        return measure(commandLine, stop);
    }
}

} // namespace

int main(int argc, char** argv)
{
    gather::StopSignal stop;
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ,
                SIG_IGN); // a file that may not grow is an error to be told, as a full disk is
    const QCoreApplication application(argc, argv);
    try {
        return answer(gather::parseCommandLine(argc, argv), stop);
    } catch (const std::exception& problem) { // memory that a measurement does not get
        return fail(problem.what());
    }
}
