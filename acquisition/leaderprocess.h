#pragma once

#include <QProcess>

/// A child process that leads a process group of its own, so that it can be ended with all its
/// children.
class LeaderProcess : public QProcess
{
public:
    explicit LeaderProcess(QObject* parent);

    /// SIGTERM for the whole group; nothing where the process does not run.
    void terminate();

protected:
    void setupChildProcess() override;
};
