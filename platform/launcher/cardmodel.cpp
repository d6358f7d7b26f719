#include "platform/launcher/cardmodel.h"

#include "platform/launcher/cardcontroller.h"

#include <utility>

CardModel::CardModel(CardController* card, QString name, QObject* parent)
    : PluginModel(parent)
    , card(card)
    , modelName(std::move(name))
{
}

QString CardModel::name() const
{
    return modelName;
}

CardController* CardModel::cardController() const
{
    return card;
}

void CardModel::cardDisconnected()
{
    if (!lossAnnounced) {
        lossAnnounced = true;
        emit cardLost();
    }
}

void CardModel::expectCard()
{
    lossAnnounced = false;
}
