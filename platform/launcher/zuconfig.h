#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

/// A view of a module's configuration without its rules: the whole ("zuotdr", ""), a group, or one
/// value.
///
/// Every call reads what is in force at that moment, values for one run included.
class ZuConfig
{
public:
    ZuConfig(QString module, QString group, QString key = {});

    /// The values of the group, or of the whole module, by full name ("MeasParams/pulse").
    [[nodiscard]] QVariantMap values() const;

    /// The one value named at construction; invalid where there is none.
    [[nodiscard]] QVariant value() const;
    [[nodiscard]] QString toString() const;

    /// Stores the one value. \return whether it reached the disk; it is in force in this process in
    /// any case
    bool store(const QVariant& value);

    /// Sets a value for this run: seen by everyone, never stored, not checked against the module's
    /// tables. Give it before the configuration model is made: nobody is told of the change. A
    /// later change by the user ends it.
    static void setForThisRun(const QString& module, const QString& group, const QString& key,
                              const QVariant& value);
    static void clearThisRun();

private:
    QString module;
    QString group;
    QString key;
};
