#pragma once

#include <QStringList>

#include <functional>
#include <optional>

namespace Waveform {

/// Whether one of these is there, be it a file or a directory.
///
/// Asked apart, as copyToDrive() copies: a drive may hang, and who asks is the window. Nothing
/// where there is no answer, as when isGivenUp ended the wait.
[[nodiscard]] std::optional<bool> isAnyThere(const QStringList& paths,
                                             const std::function<bool()>& isGivenUp);

/// Makes a directory with its parents where it is not there; asked in the same way.
/// \return whether it is there now
[[nodiscard]] std::optional<bool> makeDirectory(const QString& path,
                                                const std::function<bool()>& isGivenUp);

/// An isGivenUp that waits so long and lets the window live meanwhile. In its events even whoever
/// asks may go.
[[nodiscard]] std::function<bool()> patienceOf(int time_ms);

} // namespace Waveform
