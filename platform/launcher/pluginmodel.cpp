#include "platform/launcher/pluginmodel.h"

PluginModel::PluginModel(QObject* parent)
    : QObject(parent)
{
}
