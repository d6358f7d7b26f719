#include "app/environment.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

constexpr mode_t kOwnerOnly = 0700;

} // namespace

QString Environment::temporaryDir()
{
    return "/tmp/user";
}

QString Environment::enter()
{
    qputenv("USER", "user");
    qunsetenv("TMPDIR");
    if (!qEnvironmentVariableIsSet("WAVEFORM_PROGRAMS")) {
        const QString beside = QCoreApplication::applicationDirPath();
        if (QFileInfo(beside + "/wfgather").isExecutable()) {
            qputenv("WAVEFORM_PROGRAMS", QFile::encodeName(beside));
        }
    }
    QString problem = makeDirectory();
    if (!problem.isEmpty()) {
        return problem;
    }
    const FileLock::Outcome outcome = lock.take(temporaryDir() + "/.waveform.lock");
    otherHoldsIt = outcome == FileLock::Outcome::HeldByOther;
    if (otherHoldsIt) {
        return tr("another instance of Waveform is running (it holds %1)").arg(temporaryDir());
    }
    if (outcome == FileLock::Outcome::NoFile) {
        return tr("cannot make a lock file in %1").arg(temporaryDir());
    }
    return {};
}

QString Environment::makeDirectory()
{
    const QByteArray path = QFile::encodeName(temporaryDir());
    if (::mkdir(path.constData(), kOwnerOnly) != 0 && errno != EEXIST) {
        return tr("cannot make %1: %2").arg(temporaryDir(), std::strerror(errno));
    }
    struct stat info = {};
    if (::lstat(path.constData(), &info) != 0) {
        return tr("cannot look at %1: %2").arg(temporaryDir(), std::strerror(errno));
    }
    // Anybody may make things in /tmp: what was made by others, or leads elsewhere, is not ours to
    // write into.
    if (S_ISLNK(info.st_mode)) {
        return tr("%1 is a link; remove it").arg(temporaryDir());
    }
    if (!S_ISDIR(info.st_mode)) {
        return tr("%1 is not a directory; remove it").arg(temporaryDir());
    }
    if (info.st_uid != ::geteuid()) {
        return tr("%1 belongs to another user").arg(temporaryDir());
    }
    if (::chmod(path.constData(), kOwnerOnly) != 0) {
        return tr("cannot protect %1: %2").arg(temporaryDir(), std::strerror(errno));
    }
    return {};
}
