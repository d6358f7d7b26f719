#include "platform/otdrconfig/otdrconfig.h"

#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/zuconfigmodel.h"

#include <QDateTime>
#include <QStringList>

namespace OTDR {

const char* const kDefaultReflNameScheme = "trace_wavelength_index";

namespace {

constexpr int kIndexWidth = 4;
constexpr int kLastIndexOfWidth = 9999;
constexpr int kLastIndex = 999999999; // what the setting takes

const QString kAdvanced = QStringLiteral("AdvancedParams");
const QString kIndexKey = QStringLiteral("reflIndex");

int runningIndex(const ZuConfigModel* config)
{
    const int index = config == nullptr ? 1 : config->value(kAdvanced, kIndexKey, 1).toInt();
    return qBound(1, index, kLastIndex);
}

QString configuredScheme(const ZuConfigModel* config)
{
    const QString fallback = QLatin1String(kDefaultReflNameScheme);
    const QString scheme = config == nullptr
        ? fallback
        : config->value(kAdvanced, QStringLiteral("reflNameScheme"), fallback).toString();
    return scheme.isEmpty() ? fallback : scheme;
}

/// What stands in the name for a word of the scheme; empty where it is left out.
QString part(const QString& word, const WfMeasParams& params, int index, bool withUnits)
{
    const auto with = [withUnits](const QString& number, const char* unit) {
        return withUnits ? number + QLatin1String(unit) : number;
    };
    if (word == QLatin1String("wavelength")) {
        return params.wavelength == 0 ? QString() : with(QString::number(params.wavelength), "nm");
    }
    if (word == QLatin1String("pulse")) {
        return with(QString::number(params.pulse), "ns");
    }
    if (word == QLatin1String("distance")) {
        return with(QString::number(params.distance, 'f', 0), "m");
    }
    if (word == QLatin1String("index")) {
        return QStringLiteral("%1").arg(index, kIndexWidth, 10, QLatin1Char('0'));
    }
    if (word == QLatin1String("date")) {
        return QDate::currentDate().toString(QStringLiteral("yyyyMMdd"));
    }
    if (word == QLatin1String("time")) {
        return QTime::currentTime().toString(QStringLiteral("HHmmss"));
    }
    return word;
}

} // namespace

void constructReflName(QString& name, QString& scheme, WfMeasParams& params, int index,
                       ZuConfigModel* config, bool withUnits)
{
    if (scheme.isEmpty()) {
        scheme = configuredScheme(config);
    }
    const int used = index < 0 ? runningIndex(config) : index;
    QStringList parts;
    const QStringList words = scheme.split(QLatin1Char('_'), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        parts << part(word, params, used, withUnits);
    }
    parts.removeAll(QString());
    name = parts.join(QLatin1Char('_'));
}

void incrementReflIndex(ZuConfigModel* config, bool wrap)
{
    if (config == nullptr) {
        return;
    }
    const int index = runningIndex(config);
    const int last = wrap ? kLastIndexOfWidth : kLastIndex;
    const int next = index >= last ? 1 : index + 1;
    config->setting(kIndexKey, kAdvanced)->tryChange(next);
}

void updateCardInfoConfig(CardController* card, ZuConfigModel* config)
{
    if (card == nullptr || config == nullptr || card->noCard()) {
        return;
    }
    const QString section = QStringLiteral("CardInfo");
    config->setting(QStringLiteral("HardwareRevision"), section)->tryChange(card->revision());
    config->setting(QStringLiteral("Serial"), section)->tryChange(card->serial());
    config->setting(QStringLiteral("Name"), section)->tryChange(card->name());
}

} // namespace OTDR
