#include "platform/launcher/zuconfigmodel.h"

#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/configstore.h"
#include "platform/launcher/settingrules.h"

#include <QHash>

#include <utility>

namespace {

QHash<QString, ZuConfigModel*>& models()
{
    static QHash<QString, ZuConfigModel*> shared;
    return shared;
}

QString pathOf(const QString& section, const QString& key)
{
    return section + QLatin1Char('/') + key;
}

} // namespace

ZuConfigModel* ZuConfigModel::instance(CardController* card, const QString& module)
{
    ZuConfigModel*& model = models()[module];
    if (model == nullptr) {
        model = new ZuConfigModel(card, module);
        model->writeMissingDefaults();
    }
    if (model->card.isNull()) {
        model->card = card;
    }
    ++model->users;
    return model;
}

void ZuConfigModel::freeLater()
{
    if (users > 0 && --users == 0) {
        models().remove(module);
        deleteLater();
    }
}

ZuConfigModel::ZuConfigModel(CardController* card, QString module)
    : card(card)
    , module(std::move(module))
{
}

ZuConfigModel::~ZuConfigModel()
{
    if (models().value(module) == this) {
        models().remove(module);
    }
}

void ZuConfigModel::setUseController(bool use)
{
    useController = use;
}

void ZuConfigModel::setUseConfigFile(bool use)
{
    useConfigFile = use;
}

QVariant ZuConfigModel::value(const QString& section, const QString& key,
                              const QVariant& fallback) const
{
    const QString path = pathOf(section, key);
    const QVariant found =
        unstored.contains(path) ? unstored.value(path) : configstore::value(module, path);
    return found.isValid() ? settingrules::canonical(path, found) : fallback;
}

ZuSetting* ZuConfigModel::setting(const QString& key, const QString& section)
{
    for (ZuSetting* known : qAsConst(settings)) {
        if (known->key() == key && known->section() == section) {
            return known;
        }
    }
    auto* made = new ZuSetting(this, key, section);
    settings << made;
    return made;
}

void ZuConfigModel::throwData(const QStringList& keys)
{
    for (const QString& key : keys) {
        // A receiver may ask for a new setting: walk a copy.
        const QList<ZuSetting*> known = settings;
        for (ZuSetting* one : known) {
            if (one->key() == key) {
                one->announce();
            }
        }
    }
}

void ZuConfigModel::writeMissingDefaults()
{
    QVariantMap missing = settingrules::defaults(module);
    const QStringList paths = missing.keys();
    for (const QString& path : paths) {
        if (configstore::stored(module, path).isValid()) {
            missing.remove(path);
        }
    }
    if (!missing.isEmpty()) {
        configstore::storeBehind(module, missing);
    }
}

void ZuConfigModel::offer(ZuSetting* setting, const QVariant& value)
{
    const QString path = pathOf(setting->section(), setting->key());
    const QVariant old = setting->value();
    const QVariant offered = settingrules::canonical(path, value);
    if (old.isValid() && settingrules::equal(old, offered)) {
        return;
    }
    if (settingrules::isAllowed(path, offered)) {
        keep(path, offered);
    }
    setting->announce();
}

void ZuConfigModel::keep(const QString& path, const QVariant& value)
{
    if (useConfigFile) {
        unstored.remove(path);
        configstore::store(module, {{path, value}});
    } else {
        unstored.insert(path, value);
    }
    if (useController && card) {
        QVariantMap map {{path, value}};
        card->updateConfig(map);
    }
}
