#include "platform/launcher/cardplugin.h"

#include "platform/launcher/cardcontroller.h"

CardPlugin::CardPlugin(QObject* parent)
    : GenericPlugin(parent)
    , cardController(new CardController(this))
{
}

CardPlugin::~CardPlugin() = default;
