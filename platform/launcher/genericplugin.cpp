#include "platform/launcher/genericplugin.h"

#include "platform/launcher/pluginicon.h"
#include "platform/launcher/pluginwindow.h"

GenericPlugin::GenericPlugin(QObject* parent)
    : QObject(parent)
{
}

GenericPlugin::~GenericPlugin() = default;

PluginIcon* GenericPlugin::icon()
{
    if (!iconMade) {
        iconMade = true;
        pluginIcon = createIcon();
    }
    return pluginIcon;
}

QWidget* GenericPlugin::status()
{
    if (!statusMade) {
        statusMade = true;
        statusWidget = createStatus();
    }
    return statusWidget;
}

void GenericPlugin::showWindow()
{
    PluginWindow* shown = window();
    if (shown != nullptr) {
        shown->show();
        shown->raise();
        shown->activateWindow();
    }
}

PluginIcon* GenericPlugin::createIcon()
{
    return nullptr;
}

QWidget* GenericPlugin::createStatus()
{
    return nullptr;
}

void GenericPlugin::setIcon(PluginIcon* icon)
{
    iconMade = true;
    pluginIcon = icon;
}

QString GenericPlugin::moduleName() const
{
    return pluginName;
}

void GenericPlugin::setName(const QString& name)
{
    pluginName = name;
}
