#include "platform/launcher/zuconfig.h"

#include "platform/launcher/configstore.h"

#include <utility>

namespace {

QString pathOf(const QString& group, const QString& key)
{
    return group.isEmpty() ? key : group + QLatin1Char('/') + key;
}

} // namespace

ZuConfig::ZuConfig(QString module, QString group, QString key)
    : module(std::move(module))
    , group(std::move(group))
    , key(std::move(key))
{
}

QVariantMap ZuConfig::values() const
{
    const QVariantMap all = configstore::values(module);
    if (group.isEmpty()) {
        return all;
    }
    QVariantMap chosen;
    for (auto it = all.constBegin(); it != all.constEnd(); ++it) {
        if (it.key().startsWith(group + QLatin1Char('/'))) {
            chosen.insert(it.key(), it.value());
        }
    }
    return chosen;
}

QVariant ZuConfig::value() const
{
    return configstore::value(module, pathOf(group, key));
}

QString ZuConfig::toString() const
{
    return value().toString();
}

bool ZuConfig::store(const QVariant& value)
{
    return !key.isEmpty() && configstore::store(module, {{pathOf(group, key), value}});
}

void ZuConfig::setForThisRun(const QString& module, const QString& group, const QString& key,
                             const QVariant& value)
{
    configstore::setForThisRun(module, pathOf(group, key), value);
}

void ZuConfig::clearThisRun()
{
    configstore::clearThisRun();
}
