#include "plugin/plugin.h"

#include "acquisition/model.h"
#include "platform/launcher/pluginicon.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfigmodel.h"
#include "refls/reflstablemodel.h"
#include "storage/keeper.h"
#include "window/window.h"

#include <QAbstractButton>

namespace Waveform {

Plugin::Plugin()
    : MeasPlugin("otdr")
{
    setName(tr("Waveform"));
    config = ZuConfigModel::instance(cardController, "zuotdr");
    config->setUseController(false);
    config->setUseConfigFile(true);
}

Plugin::~Plugin()
{
    release(); // model, window and keeper use the configuration
    if (config != nullptr) {
        config->freeLater();
        config = nullptr;
    }
}

CardModel* Plugin::createCardModel()
{
    return new Model(cardController);
}

PluginWindow* Plugin::createWindow()
{
    const PluginIcon* start = icon();
    const QAbstractButton* button = start != nullptr ? start->button() : nullptr;
    QWidget* parent = button != nullptr ? button->parentWidget() : nullptr;
    return new Window(config, parent);
}

AbstractKeeper* Plugin::createKeeper()
{
    auto* waveformModel = qobject_cast<Model*>(model());
    auto* waveformWindow = qobject_cast<Window*>(window());
    if (waveformWindow == nullptr) {
        return nullptr;
    }
    ReflsTableModel* refls = waveformWindow->reflsTableModel();
    auto* keeper = new Keeper(cardController, refls, this);
    keeper->setConfig(config);
    connect(keeper, SIGNAL(loadRefl( QString )), refls, SLOT(addReflFromFile( QString )));
    connect(keeper, SIGNAL(setTitle( QString )), window(), SIGNAL(setTitle( QString )));
    connect(keeper, SIGNAL(setTitle( QString )), window(), SLOT(setWindowTitle( QString )));
    connect(keeper,
            SIGNAL(setWaitWindowVisible( bool )), waveformWindow,
                   SLOT(setWaitWindowVisible( bool )));
    connect(keeper,
            SIGNAL(showNotification( QString )), waveformWindow->notification(),
                   SLOT(show( QString )), Qt::QueuedConnection);
    keeper->setMeasModel(waveformModel);
    return keeper;
}

} // namespace Waveform
