#include "platform/launcher/measmodel.h"

#include "platform/launcher/cardcontroller.h"

#include <cmath>

MeasModel::MeasModel(CardController* card, QObject* parent)
    : CardModel(card, parent)
{
    if (card != nullptr) {
        connect(card, &CardController::disconnected, this, &MeasModel::onCardUnplugged);
    }
}

bool MeasModel::running() const
{
    return runs;
}

int MeasModel::start(unsigned int /*mode*/)
{
    started(QString());
    return 0;
}

int MeasModel::stop(const QString& reason)
{
    stopped(reason);
    return 0;
}

int MeasModel::duration() const
{
    return measuredSeconds;
}

bool MeasModel::isStarted() const
{
    return runs;
}

QString MeasModel::failure() const
{
    return failureText;
}

void MeasModel::init()
{
    if (!initialised) {
        initialised = true;
        doInit();
    }
}

void MeasModel::started(const QString& /*channel*/)
{
    if (runs) {
        return;
    }
    runs = true;
    measuredSeconds = 0;
    failureText.clear();
    expectCard();
    emit started(this);
}

void MeasModel::stopped(const QString& /*channel*/)
{
    if (!runs) {
        return;
    }
    runs = false;
    emit stopped(this);
}

void MeasModel::updated(QVariantMap& map, const QString& /*channel*/)
{
    const auto elapsed = map.constFind(QStringLiteral("ET"));
    if (elapsed != map.constEnd()) {
        // The acquisition program's text: anything may stand there. A day is far beyond any
        // measurement.
        constexpr double kDaySeconds = 86400.0;
        const double seconds = elapsed->toDouble();
        measuredSeconds =
            std::isfinite(seconds) ? static_cast<int>(qBound(0.0, seconds, kDaySeconds)) : 0;
    }
    doParse(map);
    emit refreshed(this);
}

void MeasModel::doParse(QVariantMap& /*map*/) { }

void MeasModel::doInit() { }

void MeasModel::updated(QVariantMap& map)
{
    updated(map, QString());
}

void MeasModel::configUpdated(QVariantMap& map)
{
    doParse(map);
}

void MeasModel::setFailure(const QString& text)
{
    failureText = text;
}

void MeasModel::onCardUnplugged()
{
    if (runs || running()) {
        stop(QString());
        cardDisconnected();
    }
}
