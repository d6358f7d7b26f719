#pragma once

#include "app/filelock.h"

#include <QCoreApplication>
#include <QString>

/// The instrument's environment, set up on any machine: its user, its temporary directory, its
/// programs.
///
/// One instance at a time holds the temporary directory.
class Environment
{
    Q_DECLARE_TR_FUNCTIONS(Environment)

public:
    /// The directory in which acquisition and application meet.
    [[nodiscard]] static QString temporaryDir();

    /// Sets the variables and takes the temporary directory.
    /// \return an empty text, or why the application cannot start
    [[nodiscard]] QString enter();

    /// Whether what refused enter() is an instance that runs.
    [[nodiscard]] bool otherRuns() const { return otherHoldsIt; }

private:
    [[nodiscard]] static QString makeDirectory();

    FileLock lock;
    bool otherHoldsIt = false;
};
