#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

/// What the settings of module "zuotdr" may be. Names are full: "MeasParams/pulse".
namespace settingrules {

/// Whether the setting may take the value. A setting without a rule takes everything.
[[nodiscard]] bool isAllowed(const QString& path, const QVariant& value);

/// The value as the setting's table has it, as a number where the setting has a range; else as it
/// is.
[[nodiscard]] QVariant canonical(const QString& path, const QVariant& value);

/// Equal as numbers where one is a number and the other reads as one (a configuration file holds
/// text), else as texts: "3" is not "3.0".
[[nodiscard]] bool equal(const QVariant& a, const QVariant& b);

/// The settings that a first start writes.
[[nodiscard]] QVariantMap defaults(const QString& module);

} // namespace settingrules
