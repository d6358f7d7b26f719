#pragma once

#include "platform/launcher/measplugin.h"

class ZuConfigModel;

namespace Waveform {

/// What the launcher loads: makes the application's model, window and keeper and wires them
/// together.
class Plugin : public MeasPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "waveform.launcher.LauncherPluginInterface2/1.0")
    Q_INTERFACES(LauncherPluginInterface)

public:
    Plugin();
    ~Plugin() override;

    PluginWindow* createWindow() override;
    AbstractKeeper* createKeeper() override;
    CardModel* createCardModel() override;

private:
    ZuConfigModel* config = nullptr;
};

} // namespace Waveform
