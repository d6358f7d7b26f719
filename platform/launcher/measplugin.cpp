#include "platform/launcher/measplugin.h"

#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/cardmodel.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/pluginicon.h"
#include "platform/launcher/pluginwindow.h"

#include <utility>

MeasPlugin::MeasPlugin(QString category)
    : pluginCategory(std::move(category))
{
}

MeasPlugin::~MeasPlugin()
{
    MeasPlugin::release();
}

PluginModel* MeasPlugin::model()
{
    if (modelStage == Stage::NotMade) {
        modelStage = Stage::Making;
        pluginModel = createModel();
        modelStage = Stage::Made;
        if (auto* measModel = qobject_cast<MeasModel*>(pluginModel.data())) {
            measModel->init();
        }
    }
    return pluginModel;
}

PluginWindow* MeasPlugin::window()
{
    if (windowStage == Stage::NotMade && modelStage != Stage::Making) {
        windowStage = Stage::Making;
        PluginModel* windowModel = model();
        pluginWindow = createWindow();
        windowStage = Stage::Made;
        if (pluginWindow) {
            pluginWindow->setModel(windowModel);
        }
    }
    return pluginWindow;
}

AbstractKeeper* MeasPlugin::myKeeper()
{
    const bool stillMaking = modelStage == Stage::Making || windowStage == Stage::Making;
    if (keeperStage == Stage::NotMade && !stillMaking) {
        keeperStage = Stage::Making;
        window();
        pluginKeeper = createKeeper();
        keeperStage = Stage::Made;
    }
    return pluginKeeper;
}

PluginIcon* MeasPlugin::icon()
{
    return GenericPlugin::icon();
}

QWidget* MeasPlugin::status()
{
    return GenericPlugin::status();
}

void MeasPlugin::showWindow()
{
    GenericPlugin::showWindow();
}

PluginModel* MeasPlugin::createModel()
{
    return createCardModel();
}

QString MeasPlugin::name() const
{
    return moduleName();
}

QString MeasPlugin::category() const
{
    return pluginCategory;
}

CardController* MeasPlugin::card() const
{
    return cardController;
}

void MeasPlugin::release()
{
    modelStage = Stage::Made;
    windowStage = Stage::Made;
    keeperStage = Stage::Made;
    delete pluginKeeper.data();
    delete pluginWindow.data();
    delete pluginModel.data();
}
