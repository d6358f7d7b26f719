#pragma once

#include <QGenericPlugin>

/// Says "painted" on the standard output of the program that loads it, once a window is painted and
/// the event loop turns: the program itself has no code for that.
class PaintTeller : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "paintteller.json")

public:
    QObject* create(const QString& name, const QString& specification) override;
};
