#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

class ZuConfigModel;

/// One value of a configuration model, for two-way binding: offer a new value with tryChange(),
/// follow changed().
///
/// All four forms of changed() are emitted together. The number forms of a text that is no number
/// are 0.
class ZuSetting : public QObject
{
    Q_OBJECT

public:
    [[nodiscard]] QString key() const;
    [[nodiscard]] QString section() const;

    /// The value in force: that of this run, else the stored one; invalid where there is neither.
    [[nodiscard]] QVariant value() const;

public slots:
    /// Offers a value. Accepted: stored, and changed() carries it. Equal to the value in force:
    /// nothing happens. Outside what the setting allows: refused, and changed() carries the old
    /// value so that the offering widget returns to it.
    void tryChange(const QVariant& value);
    void tryChange(int value);
    void tryChange(double value);
    void tryChange(const QString& value);

signals:
    void changed(const QVariant& value);
    void changed(int value);
    void changed(double value);
    void changed(const QString& value);

private:
    friend class ZuConfigModel;
    ZuSetting(ZuConfigModel* model, QString key, QString section);

    /// Emits all forms of the value in force; nothing where there is none.
    void announce();

    ZuConfigModel* model;
    QString settingKey;
    QString settingSection;
};
