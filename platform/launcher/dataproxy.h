#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

/// An observer of running values: register it with the card controller for a channel and connect to
/// updated().
class DataProxy : public QObject
{
    Q_OBJECT

public:
    explicit DataProxy(QObject* parent = nullptr);

    /// Passes the values on. Receivers must be connected directly: the map travels by reference.
    void emitUpdated(QVariantMap& map, const QString& channel);

signals:
    void updated(QVariantMap& map, const QString& channel);
};
