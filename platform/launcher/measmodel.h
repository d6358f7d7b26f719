#pragma once

#include "platform/launcher/cardmodel.h"

/// The base of measurement models: keeps the state of a run and announces it.
///
/// started(MeasModel*) and stopped(MeasModel*) are emitted only when that state really changes,
/// however often the virtual operations are called. A run ends when the card is unplugged.
class MeasModel : public CardModel
{
    Q_OBJECT

public:
    explicit MeasModel(CardController* card, QObject* parent = nullptr);

    /// Of the base: the state kept by started() and stopped().
    [[nodiscard]] bool running() const override;
    int start(unsigned int mode) override;
    int stop(const QString& reason) override;

    /// Whole seconds measured of the current trace: the value of key "ET" of the last running
    /// values, 0 from the beginning of a run.
    [[nodiscard]] int duration() const;

    /// Whether started() came without stopped() since.
    [[nodiscard]] bool isStarted() const;

    /// Why the last start failed, in words for the user; empty where the model has none.
    [[nodiscard]] QString failure() const;

    /// Calls doInit() at the first call; the plugin's base does so when it has made the model.
    void init();

public slots:
    void started(const QString& channel) override;
    void stopped(const QString& channel) override;

    /// Keeps "ET", lets doParse() take its part, then emits refreshed().
    void updated(QVariantMap& map, const QString& channel) override;

protected:
    void doParse(QVariantMap& map) override;

    /// Clears what a run of an earlier process has left. Nothing in the base.
    virtual void doInit();

protected slots:
    /// Running values without a channel.
    virtual void updated(QVariantMap& map);

    /// The card's configuration changed: handed to doParse().
    void configUpdated(QVariantMap& map);

protected:
    /// Says why a start fails; forgotten when the next run begins.
    void setFailure(const QString& text);

signals:
    void started(MeasModel* model);
    void stopped(MeasModel* model);
    void refreshed(MeasModel* model);

private:
    void onCardUnplugged();

    QString failureText;
    int measuredSeconds = 0;
    bool runs = false;
    bool initialised = false;
};
