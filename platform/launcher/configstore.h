#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

/// The configuration files, one for each module, and the values for this run in front of them.
///
/// GUI thread only. The file is looked at at each call, so that nothing goes stale; all values are
/// text.
namespace configstore {

/// "waveform" in the user's configuration directory: XDG_CONFIG_HOME where it is an absolute path,
/// else what the platform says. The environment is read at each call.
[[nodiscard]] QString directory();
[[nodiscard]] QString fileName(const QString& module);

/// Path is "Group/key". Invalid where there is no value.
[[nodiscard]] QVariant value(const QString& module, const QString& path);
[[nodiscard]] QVariantMap values(const QString& module);

/// The value in the file, whatever this run was given.
[[nodiscard]] QVariant stored(const QString& module, const QString& path);

/// Stores values; the file is replaced whole or not at all. Values of this run under the same names
/// end. Where the file cannot be written that is logged once and the values last as long as the
/// process. \return whether they reached the disk
bool store(const QString& module, const QVariantMap& values);

/// As store(), but leaves what this run was given in force: for defaults.
bool storeBehind(const QString& module, const QVariantMap& values);

void setForThisRun(const QString& module, const QString& path, const QVariant& value);
void clearThisRun();

} // namespace configstore
