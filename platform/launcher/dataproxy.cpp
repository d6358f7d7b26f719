#include "platform/launcher/dataproxy.h"

DataProxy::DataProxy(QObject* parent)
    : QObject(parent)
{
}

void DataProxy::emitUpdated(QVariantMap& map, const QString& channel)
{
    emit updated(map, channel);
}
