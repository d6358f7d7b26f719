#include "tests/programs/wfgather/gatherprocess.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

namespace wfgather_test {

namespace {

constexpr int kPatience_ms = 10000;
constexpr const char* kProgram = WAVEFORM_BIN "/wfgather";
constexpr const char* kEventMessage = "A * ";

/// "12 M };\n" to "M }"; anything else stays.
std::string bodyOf(const std::string& packet)
{
    const std::size_t blank = packet.find(' ');
    const bool isWhole = blank != std::string::npos && blank > 0
        && packet.find_first_not_of("0123456789") == blank && packet.size() > blank + 3
        && packet.find(';') == packet.size() - 2 && packet.back() == '\n';
    return isWhole ? packet.substr(blank + 1, packet.size() - blank - 3) : packet;
}

bool isEvent(const std::string& message)
{
    return message.rfind(kEventMessage, 0) == 0;
}

} // namespace

RunDirectory::RunDirectory(const std::string& settings)
{
    QFile file(directory.filePath("settings"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(settings.c_str());
    EXPECT_TRUE(QDir(directory.path()).mkdir("run"));
}

std::string RunDirectory::path(const char* name) const
{
    const bool isSettings = std::string(name) == "settings";
    return directory.filePath(isSettings ? QString(name) : QString("run/") + name).toStdString();
}

std::optional<otdr::Snapshot> RunDirectory::snapshot() const
{
    const auto read = otdr::readSnapshotFile(snapshotPath());
    return read ? std::optional(*read) : std::nullopt;
}

QStringList RunDirectory::names(const char* folder) const
{
    return QDir(QString::fromStdString(path(folder)))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

GatherProcess::GatherProcess(const RunDirectory& directory, std::size_t fileLimit)
    : errorPath(directory.settingsPath() + ".err")
{
    std::array<int, 2> ends {};
    EXPECT_EQ(pipe2(ends.data(), O_DIRECT | O_CLOEXEC), 0);
    child = fork();
    if (child == 0) {
        becomeProgram(directory, fileLimit, ends[1]);
    }
    close(ends[1]);
    output = ends[0];
}

/// In the child.
void GatherProcess::becomeProgram(const RunDirectory& directory, std::size_t fileLimit,
                                  int standardOutput) const
{
    dup2(standardOutput, STDOUT_FILENO);
    dup2(open(errorPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    std::signal(SIGPIPE, SIG_DFL);
    if (fileLimit > 0) {
        const rlimit limit {fileLimit, fileLimit};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    execl(kProgram, kProgram, "-o", directory.snapshotPath().c_str(), "-c",
          directory.settingsPath().c_str(), nullptr);
    _exit(127);
}

GatherProcess::~GatherProcess()
{
    closeOutput();
    if (child > 0) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

std::string GatherProcess::next()
{
    pollfd readable {output, POLLIN, 0};
    if (poll(&readable, 1, kPatience_ms) <= 0) {
        ADD_FAILURE() << "nothing came";
        return {};
    }
    std::array<char, 4096> packet {};
    const ssize_t count = read(output, packet.data(), packet.size());
    return {packet.data(), static_cast<std::size_t>(std::max<ssize_t>(0, count))};
}

std::vector<std::string> GatherProcess::readTo(const std::string& beginning)
{
    std::vector<std::string> messages;
    while (true) {
        const std::string packet = next();
        if (packet.empty()) {
            return messages;
        }
        messages.push_back(bodyOf(packet));
        if (messages.back().rfind(beginning, 0) == 0) {
            return messages;
        }
    }
}

bool GatherProcess::hasUnread() const
{
    int count = 0;
    return ioctl(output, FIONREAD, &count) == 0 && count > 0;
}

void GatherProcess::signal(int number) const
{
    kill(child, number);
}

void GatherProcess::closeOutput()
{
    if (output >= 0) {
        close(output);
        output = -1;
    }
}

int GatherProcess::wait()
{
    int status = 0;
    for (int waited_ms = 0; waited_ms < kPatience_ms; ++waited_ms) {
        if (waitpid(child, &status, WNOHANG) == child) {
            child = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ADD_FAILURE() << "the program does not end";
    return -1000;
}

std::string GatherProcess::errors() const
{
    QFile file(QString::fromStdString(errorPath));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().toStdString();
}

std::vector<std::string> withoutEvents(std::vector<std::string> messages)
{
    messages.erase(std::remove_if(messages.begin(), messages.end(), isEvent), messages.end());
    return messages;
}

std::vector<std::string> eventsIn(const std::vector<std::string>& messages)
{
    std::vector<std::string> events;
    for (const std::string& message : messages) {
        if (isEvent(message)) {
            events.push_back(message.substr(std::strlen(kEventMessage)));
        }
    }
    return events;
}

std::vector<std::string> shortened(const std::vector<std::string>& messages)
{
    std::vector<std::string> result;
    result.reserve(messages.size());
    for (const std::string& message : messages) {
        result.push_back(message.substr(0, message.find(" wavelength")));
    }
    return result;
}

} // namespace wfgather_test
