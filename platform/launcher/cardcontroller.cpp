#include "platform/launcher/cardcontroller.h"

#include "platform/launcher/controllercommand.h"
#include "platform/launcher/dataproxy.h"
#include "platform/launcher/settingrules.h"
#include "platform/launcher/zuconfig.h"

namespace {

const QString kModule = QStringLiteral("zuotdr");

/// The simulated card's answer to a command; a null text for a command that it does not know.
QString simulatedAnswer(const QString& command)
{
    if (command == QLatin1String("check fiber")) {
        return QStringLiteral("ok");
    }
    if (command == QLatin1String("version")) {
        return QStringLiteral("MCU 1.4\nFPGA 2.7");
    }
    if (command == QLatin1String("scale")) {
        return QStringLiteral("1.000");
    }
    if (command == QLatin1String("dzbox")) {
        return QStringLiteral("0");
    }
    return {};
}

QVariant configured(const QString& key, const QVariant& fallback = {})
{
    const QString path = QStringLiteral("MeasParams/") + key;
    QVariant value = ZuConfig(kModule, QStringLiteral("MeasParams"), key).value();
    if (!value.isValid()) {
        value = settingrules::defaults(kModule).value(path, fallback);
    }
    return settingrules::canonical(path, value);
}

} // namespace

CardController::CardController(QObject* parent)
    : QObject(parent)
    , cardRevision(QStringLiteral("3.0"))
{
}

CardController::~CardController() = default;

bool CardController::noCard() const
{
    return !plugged;
}

QString CardController::name() const
{
    return QStringLiteral("otdr");
}

QString CardController::revision() const
{
    return plugged ? cardRevision : QString();
}

QString CardController::serial() const
{
    return plugged ? QStringLiteral("SIM-0001") : QString();
}

QVariantMap CardController::config() const
{
    QVariantMap map;
    for (const char* key : {"helix", "distance", "wavelength", "pulse", "duration"}) {
        map.insert(QLatin1String(key), configured(QLatin1String(key)));
    }
    const bool at1550 = map.value(QStringLiteral("wavelength")).toInt() == 1550;
    map.insert(QStringLiteral("ior"), configured(QLatin1String(at1550 ? "ior1550" : "ior1310")));
    // The coefficient that measurements start from until a trace brings its own, dB at 1 ns.
    map.insert(QStringLiteral("rbs"), configured(QStringLiteral("rbs"), -66.3));
    return map;
}

QList<DataProxy*> CardController::dataProxies(const QString& channel) const
{
    QList<DataProxy*> proxies;
    for (const Observer& observer : observers) {
        if (observer.channel == channel && observer.proxy) {
            proxies << observer.proxy;
        }
    }
    return proxies;
}

int CardController::doCommand(ControllerCommand& command)
{
    command.setUpdate({});
    if (!plugged) {
        return NoCard;
    }
    const int refusal = refusals.value(command.name(), 0);
    if (refusal != 0) {
        return refusal;
    }
    const QString answer = simulatedAnswer(command.name());
    if (answer.isNull()) {
        return UnknownCommand;
    }
    if (command.wantsUpdate()) {
        command.setUpdate(answer);
    }
    return 0;
}

QString CardController::doCommandGetUpdate(const QString& name)
{
    ControllerCommand command(name, true);
    return doCommand(command) < 0 ? QString() : command.update();
}

void CardController::registerProxy(const QString& channel, DataProxy* proxy)
{
    if (proxy != nullptr && !dataProxies(channel).contains(proxy)) {
        observers.append({channel, proxy});
    }
}

void CardController::updateConfig(QVariantMap& map)
{
    emit configUpdated(map);
}

void CardController::plug()
{
    if (!plugged) {
        plugged = true;
        emit connected(this);
    }
}

void CardController::unplug()
{
    if (plugged) {
        plugged = false;
        emit disconnected(this);
    }
}

void CardController::setRevision(const QString& hardwareRevision)
{
    cardRevision = hardwareRevision;
}

void CardController::setRefusal(const QString& command, int code)
{
    if (code < 0) {
        refusals.insert(command, code);
    } else {
        refusals.remove(command);
    }
}
