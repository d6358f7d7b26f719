#pragma once

#include <QString>

/// A file that one process at a time holds.
///
/// The system lets go of it when the process ends, however it ends: no lock is ever left over, and
/// whose it was need not be guessed from a number in the file. Nothing is flushed to the disk
/// either, for which a start had to wait some milliseconds. The file itself stays: whoever removed
/// it might remove one that another process has opened meanwhile.
class FileLock
{
public:
    enum class Outcome
    {
        Taken,
        HeldByOther, ///< or by another object of this process
        NoFile, ///< it cannot be made or opened
    };

    FileLock() = default;
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Takes the file, which is made where there is none; lets go of one that was held. Never
    /// waits.
    [[nodiscard]] Outcome take(const QString& file);
    void release();

private:
    int descriptor = -1;
};
