#include "app/filelock.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

FileLock::~FileLock()
{
    release();
}

FileLock::Outcome FileLock::take(const QString& file)
{
    constexpr mode_t kOwnerOnly = 0600;
    release();
    // A child program must not inherit it: the lock would last as long as the child.
    descriptor = ::open(QFile::encodeName(file).constData(),
                        O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly);
    if (descriptor < 0) {
        return Outcome::NoFile;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        return Outcome::Taken;
    }
    const bool isHeld = errno == EWOULDBLOCK;
    release();
    return isHeld ? Outcome::HeldByOther : Outcome::NoFile;
}

void FileLock::release()
{
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}
