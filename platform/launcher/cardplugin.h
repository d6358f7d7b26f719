#pragma once

#include "platform/launcher/genericplugin.h"

class AbstractKeeper;
class CardController;
class CardModel;

/// The base of plugins that work with the measurement card; makes the controller and owns it.
class CardPlugin : public GenericPlugin
{
    Q_OBJECT

public:
    explicit CardPlugin(QObject* parent = nullptr);
    ~CardPlugin() override;

    virtual AbstractKeeper* createKeeper() = 0;
    virtual CardModel* createCardModel() = 0;

protected:
    /// Never null; lives as long as the plugin, longer than its model, window and keeper.
    CardController* const cardController;
};
