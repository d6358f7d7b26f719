#include "storage/drivecopy.h"

#include "platform/otdr/wholefile.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
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

/// How often a copy under way is looked at for a wish to end it.
constexpr int kLook_ms = 50;

/// How often a killed process is looked at for its end; one that hangs in the system has none.
constexpr int kLooksAfterKill = 10;

/// What the process says of a copy that is made; anything else is why it is not.
constexpr char kCopied = '\0';

QString reasonOf(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

/// Two names of one file, links and mounts looked through.
bool isSameFile(const QByteArray& a, const QByteArray& b)
{
    struct stat first
    {
    };

    struct stat second
    {
    };

    return ::stat(a.constData(), &first) == 0 && ::stat(b.constData(), &second) == 0
        && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

/// Why a file cannot be read; empty where the bytes are all of it.
QString readWhole(const QByteArray& path, QByteArray& bytes)
{
    const int file = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    std::array<char, 65536> part {};
    ssize_t count = file < 0 ? -1 : 1;
    while (count > 0 || (count < 0 && file >= 0 && errno == EINTR)) {
        count = ::read(file, part.data(), part.size());
        bytes.append(part.data(), static_cast<int>(std::max<ssize_t>(count, 0)));
    }
    const QString reason = count < 0 ? reasonOf(errno) : QString();
    if (file >= 0) {
        ::close(file);
    }
    return reason;
}

/// The copy as such, wherever it hangs. Why it failed; empty where it did not.
QString copy(const QString& path, const QString& target)
{
    const QByteArray from = QFile::encodeName(path);
    const QByteArray to = QFile::encodeName(target);
    if (isSameFile(from, to)) {
        return {}; // the drive is where everything is saved; to replace it would lose it
    }
    OTDR::removeLeftovers(QFileInfo(target).path());
    QByteArray bytes;
    const QString unread = readWhole(from, bytes);
    if (!unread.isEmpty()) {
        return unread;
    }
    if (::unlink(to.constData()) != 0 && errno != ENOENT) {
        return reasonOf(errno);
    }
    return OTDR::writeWholeFile(target, bytes);
}

/// The life of the process that copies. It has a heap and files and takes nothing else: the locks
/// of other threads stay taken in it.
[[noreturn]] void copyAndTell(int teller, const QString& path, const QString& target)
{
    // Nothing of the application's must stay open in a process that may hang for long: whoever
    // waits for the end of its output would wait for this one.
    ::dup2(teller, STDIN_FILENO);
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    const QByteArray reason = copy(path, target).toUtf8();
    const char copied = kCopied;
    const ssize_t told = reason.isEmpty()
        ? ::write(STDIN_FILENO, &copied, 1)
        : ::write(STDIN_FILENO, reason.constData(), static_cast<std::size_t>(reason.size()));
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
QByteArray listen(int listener, pid_t process, const std::function<bool()>& isGivenUp)
{
    QByteArray told;
    std::array<char, 1024> part {};
    pollfd look {listener, POLLIN, 0};
    for (;;) {
        if (::poll(&look, 1, kLook_ms) > 0) {
            const ssize_t count = ::read(listener, part.data(), part.size());
            if (count == 0 || (count < 0 && errno != EINTR)) {
                ::waitpid(process, nullptr, 0);
                return told;
            }
            told.append(part.data(), static_cast<int>(std::max<ssize_t>(count, 0)));
        } else if (isGivenUp()) {
            end(process);
            return "given up";
        }
    }
}

} // namespace

QString copyToDrive(const QString& path, const QString& target,
                    const std::function<bool()>& isGivenUp)
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return reasonOf(errno);
    }
    const auto [listener, teller] = ends;
    const pid_t process = ::fork();
    if (process == 0) {
        copyAndTell(teller, path, target);
    }
    const int whyNone = errno;
    ::close(teller);
    const QByteArray told =
        process > 0 ? listen(listener, process, isGivenUp) : QByteArray(std::strerror(whyNone));
    ::close(listener);
    if (told.isEmpty()) {
        return "it ended before it was done";
    }
    return told == QByteArray(1, kCopied) ? QString() : QString::fromUtf8(told);
}

} // namespace Waveform
