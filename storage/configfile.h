#pragma once

#include <QString>
#include <QVariantMap>

namespace Waveform {

/// Writes a configuration map to a file. False where that fails, as for an empty name.
[[nodiscard]] bool writeConfigFile(const QString& fileName, const QVariantMap& map);

/// What writeConfigFile() wrote; an empty map where the file cannot be read.
[[nodiscard]] QVariantMap readConfigFile(const QString& fileName);

} // namespace Waveform
