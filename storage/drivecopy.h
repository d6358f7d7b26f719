#pragma once

#include <QString>

#include <functional>

namespace Waveform {

/// Copies a file to a drive that may fail, be pulled or hang.
///
/// A file that stands under the target's name is removed first. Then the target is there whole and
/// flushed to the drive, or not at all; what an earlier copy left half done beside it is removed. A
/// target that is the file itself is left alone, which is a success. On a drive that is mounted the
/// target's directory is made where it is missing.
///
/// The drive is touched by a process of its own: a thread that hangs on a drive could not be ended,
/// nor the program with it. isGivenUp is asked now and then, and ends the wait. Blocks until then.
/// \return why there is no copy; empty where there is
[[nodiscard]] QString copyToDrive(const QString& path, const QString& target,
                                  const std::function<bool()>& isGivenUp);

} // namespace Waveform
