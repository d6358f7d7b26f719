#include "storage/apart.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

namespace Waveform {

namespace {

/// How often it is asked for a wish to end the wait.
constexpr int kLook_ms = 50;

/// How often a killed process is looked at for its end; one that hangs in the system has none.
constexpr int kLooksAfterKill = 10;

/// The life of the process.
[[noreturn]] void workAndTell(int teller, const std::function<QByteArray()>& work)
{
    // Nothing of the application's must stay open in a process that may hang for long: whoever
    // waits for the end of its output would wait for this one.
    ::dup2(teller, STDIN_FILENO);
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    const QByteArray bytes = work();
    const ssize_t told =
        ::write(STDIN_FILENO, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    ::_exit(told > 0 ? 0 : 1);
}

/// Ends a process as far as it can be ended.
void end(pid_t process)
{
    ::kill(process, SIGKILL);
    const timespec look {0, kLook_ms * 1'000'000L};
    for (int i = 0; i < kLooksAfterKill && ::waitpid(process, nullptr, WNOHANG) == 0; ++i) {
        ::nanosleep(&look, nullptr);
    }
}

/// All that the process says, until its end or until it is given up.
ToldApart listen(int listener, pid_t process, const std::function<bool()>& isGivenUp)
{
    QByteArray told;
    std::array<char, 1024> part {};
    pollfd look {listener, POLLIN, 0};
    for (;;) {
        if (::poll(&look, 1, kLook_ms) > 0) {
            const ssize_t count = ::read(listener, part.data(), part.size());
            if (count == 0 || (count < 0 && errno != EINTR)) {
                ::waitpid(process, nullptr, 0);
                return {told, told.isEmpty() ? "it ended before it was done" : QString()};
            }
            told.append(part.data(), static_cast<int>(std::max<ssize_t>(count, 0)));
        } else if (isGivenUp()) {
            end(process);
            return {{}, "given up"};
        }
    }
}

} // namespace

ToldApart doApart(const std::function<QByteArray()>& work, const std::function<bool()>& isGivenUp)
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return {{}, QString::fromLocal8Bit(std::strerror(errno))};
    }
    const auto [listener, teller] = ends;
    const pid_t process = ::fork();
    if (process == 0) {
        workAndTell(teller, work);
    }
    const int whyNone = errno;
    ::close(teller);
    ToldApart told = process > 0 ? listen(listener, process, isGivenUp)
                                 : ToldApart {{}, QString::fromLocal8Bit(std::strerror(whyNone))};
    ::close(listener);
    return told;
}

} // namespace Waveform
