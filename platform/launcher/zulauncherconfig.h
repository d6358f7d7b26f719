#pragma once

#include "platform/launcher/zuconfig.h"

/// A value of the launcher's own configuration, with its default where nothing is stored.
///
/// Defaults: "paths"/"otdr" is "otdr", "flash"/"save" is false, "flash"/"dir" is "/media/usb".
class ZuLauncherConfig
{
public:
    ZuLauncherConfig(const QString& group, const QString& key,
                     const QString& module = QStringLiteral("zu-launcher"));

    [[nodiscard]] QVariant value() const;
    [[nodiscard]] QString toString() const;
    [[nodiscard]] bool toBool() const;

    bool store(const QVariant& value);

private:
    QString path;
    ZuConfig config;
};
