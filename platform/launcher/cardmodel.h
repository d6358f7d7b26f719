#pragma once

#include "platform/launcher/pluginmodel.h"

#include <QPointer>
#include <QVariantMap>

class CardController;

/// A model that works with the measurement card.
class CardModel : public PluginModel
{
    Q_OBJECT

public:
    /// \param card may be null; it is not owned
    explicit CardModel(CardController* card, QObject* parent = nullptr);

    [[nodiscard]] CardController* cardController() const;

public slots:
    /// The work has started, or has ended, on a channel (empty: the only one).
    virtual void started(const QString& channel) = 0;
    virtual void stopped(const QString& channel) = 0;

    /// Running values arrived on a channel.
    virtual void updated(QVariantMap& map, const QString& channel) = 0;

protected:
    /// Takes from the running values what the model wants to keep.
    virtual void doParse(QVariantMap& map) = 0;

    /// Announces with cardLost() that the card went during the work: once, however often it is
    /// called before the next work begins.
    void cardDisconnected();

    /// A new loss of the card may be announced again.
    void expectCard();

signals:
    void cardLost();

private:
    QPointer<CardController> card;
    bool lossAnnounced = false;
};
