#include "storage/drivecopy.h"

#include "platform/otdr/wholefile.h"
#include "storage/apart.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

namespace Waveform {

namespace {

/// What the process says of a copy that is made; anything else is why it is not.
constexpr char kCopied = '\0';

QString reasonOf(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

/// What the system knows of a file; empty where there is none.
std::optional<struct stat> statOf(const QByteArray& path)
{
    struct stat known
    {
    };

    return ::stat(path.constData(), &known) == 0 ? std::optional(known) : std::nullopt;
}

/// Two names of one file, links and mounts looked through.
bool isSameFile(const QByteArray& a, const QByteArray& b)
{
    const auto first = statOf(a);
    const auto second = statOf(b);
    return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
}

/// A drive that is new has no directory for copies yet. Where none is mounted none is made: copies
/// would go to the disk below.
void makeDirectoryOnDrive(const QString& path)
{
    const QByteArray drive = QFile::encodeName(QFileInfo(path).path());
    const auto mounted = statOf(drive);
    const auto below = statOf(drive + "/..");
    if (mounted && below && mounted->st_dev != below->st_dev) {
        ::mkdir(QFile::encodeName(path).constData(), ACCESSPERMS); // what fails, the copy tells
    }
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
    QString reason = count < 0 ? reasonOf(errno) : QString();
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
    QString unread = readWhole(from, bytes);
    if (!unread.isEmpty()) {
        return unread;
    }
    makeDirectoryOnDrive(QFileInfo(target).path());
    if (::unlink(to.constData()) != 0 && errno != ENOENT) {
        return reasonOf(errno);
    }
    return OTDR::writeWholeFile(target, bytes);
}

} // namespace

QString copyToDrive(const QString& path, const QString& target,
                    const std::function<bool()>& isGivenUp)
{
    const auto work = [&path, &target] {
        const QByteArray reason = copy(path, target).toUtf8();
        return reason.isEmpty() ? QByteArray(1, kCopied) : reason;
    };
    const ToldApart told = doApart(work, isGivenUp);
    if (!told.problem.isEmpty()) {
        return told.problem;
    }
    return told.bytes == QByteArray(1, kCopied) ? QString() : QString::fromUtf8(told.bytes);
}

} // namespace Waveform
