#pragma once

#include "platform/launcher/zusetting.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class CardController;

/// The configuration of one module ("zuotdr"), shared by all who use it.
///
/// Values belong to sections ("MeasParams") and are kept in the module's configuration file; values
/// for one run stand before the stored ones and are never stored. A value of a table is answered as
/// the table has it (the number 100), one of a range as a number, any other as it is stored: as
/// text.
class ZuConfigModel : public QObject
{
    Q_OBJECT

public:
    ~ZuConfigModel() override;

    /// The module's shared model, and one user more: each user gives it back once with freeLater().
    /// The first one writes the defaults that are missing.
    static ZuConfigModel* instance(CardController* card, const QString& module);

    /// One user less; without any the model is deleted when control returns to the event loop.
    void freeLater();

    /// Whether accepted changes are announced to the card controller (off at first).
    void setUseController(bool use);

    /// Whether accepted changes are stored (on at first); otherwise they last as long as this
    /// model.
    void setUseConfigFile(bool use);

    /// The value in force, or fallback where there is none.
    [[nodiscard]] QVariant value(const QString& section, const QString& key,
                                 const QVariant& fallback = {}) const;

    /// The binding object of a value: the same one for the same names, owned by the model.
    ZuSetting* setting(const QString& key, const QString& section);

    /// Makes each setting in use of these keys emit changed() once, in the order of the keys; one
    /// without a value emits nothing.
    void throwData(const QStringList& keys);

private:
    friend class ZuSetting;
    ZuConfigModel(CardController* card, QString module);

    void writeMissingDefaults();
    void offer(ZuSetting* setting, const QVariant& value);
    void keep(const QString& path, const QVariant& value);

    QPointer<CardController> card;
    QString module;
    QList<ZuSetting*> settings; // in the order in which they were asked for
    QVariantMap unstored; // changes made while the file is not used
    int users = 0;
    bool useController = false;
    bool useConfigFile = true;
};
