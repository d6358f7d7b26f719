#include "acquisition/leaderprocess.h"

#include <QDebug>

#include <unistd.h>

#include <cerrno>
#include <csignal>

LeaderProcess::LeaderProcess(QObject* parent)
    : QProcess(parent)
{
}

void LeaderProcess::terminate()
{
    if (state() == QProcess::Running) {
        ::kill(static_cast<pid_t>(-processId()), SIGTERM);
    }
}

void LeaderProcess::setupChildProcess()
{
    // In the child the object knows no process id yet; 0 stands for the calling process.
    const auto pid = static_cast<pid_t>(processId());
    const int ret = ::setpgid(pid, pid);
    if (ret != 0) {
        qDebug() << "setupChildProcess"
                 << " : cannot change process group id. ret = " << ret << " errno = " << errno;
    }
}
