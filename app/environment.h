#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

/// The instrument's environment, set up on any machine: its user, its temporary directory, its
/// programs.
///
/// One instance at a time holds the temporary directory.
class Environment
{
public:
    /// The directory in which acquisition and application meet.
    [[nodiscard]] static QString temporaryDir();

    /// Sets the variables and takes the temporary directory.
    /// \return an empty text, or why the application cannot start
    [[nodiscard]] QString enter();

private:
    [[nodiscard]] static QString makeDirectory();

    std::unique_ptr<QLockFile> lock;
};
