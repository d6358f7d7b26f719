#include "platform/launcher/pluginwindow.h"

#include "platform/launcher/pluginmodel.h"

PluginWindow::PluginWindow(QWidget* parent)
    : QWidget(parent)
{
}

void PluginWindow::setModel(PluginModel* model)
{
    currentModel = model;
}

bool PluginWindow::isScalable() const
{
    return false;
}

QList<QObject*> PluginWindow::eventFilters() const
{
    return {};
}

PluginModel* PluginWindow::pluginModel() const
{
    return currentModel;
}
