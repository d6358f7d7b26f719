#pragma once

#include <QByteArray>
#include <QString>

namespace OTDR {

/// Writes a whole file or nothing, flushed to its device. Why it could not be; empty where it was.
[[nodiscard]] QString writeWholeFile(const QString& path, const QByteArray& bytes);

/// Removes from a directory what killed programs left of files that they were writing.
void removeLeftovers(const QString& directory);

} // namespace OTDR
