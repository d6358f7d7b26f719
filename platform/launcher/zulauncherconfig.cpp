#include "platform/launcher/zulauncherconfig.h"

#include "platform/launcher/settingrules.h"

ZuLauncherConfig::ZuLauncherConfig(const QString& group, const QString& key, const QString& module)
    : path(group + QLatin1Char('/') + key)
    , config(module, group, key)
{
}

QVariant ZuLauncherConfig::value() const
{
    const QVariant stored = config.value();
    return stored.isValid() ? stored
                            : settingrules::defaults(QStringLiteral("zu-launcher")).value(path);
}

QString ZuLauncherConfig::toString() const
{
    return value().toString();
}

bool ZuLauncherConfig::toBool() const
{
    return value().toBool();
}

bool ZuLauncherConfig::store(const QVariant& value)
{
    return config.store(value);
}
