#include "platform/launcher/cardmodel.h"

#include "platform/launcher/cardcontroller.h"

CardModel::CardModel(CardController* card, QObject* parent)
    : PluginModel(parent)
    , card(card)
{
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
