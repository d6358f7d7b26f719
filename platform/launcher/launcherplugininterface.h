#pragma once

#include <QString>
#include <QtPlugin>

class AbstractKeeper;
class CardController;
class PluginIcon;
class PluginModel;
class PluginWindow;
class QWidget;

/// How a host talks to a plugin that it has loaded.
class LauncherPluginInterface
{
public:
    LauncherPluginInterface() = default;
    LauncherPluginInterface(const LauncherPluginInterface&) = delete;
    LauncherPluginInterface& operator=(const LauncherPluginInterface&) = delete;
    virtual ~LauncherPluginInterface() = default;

    [[nodiscard]] virtual QString name() const = 0; ///< shown by the host
    [[nodiscard]] virtual QString category() const = 0; ///< such as "otdr"

    /// The plugin's objects, made at the first call and owned by the plugin; null where there is
    /// none.
    virtual PluginModel* model() = 0;
    virtual PluginWindow* window() = 0;
    virtual AbstractKeeper* myKeeper() = 0;
    virtual PluginIcon* icon() = 0;
    virtual QWidget* status() = 0;

    virtual void showWindow() = 0;
    [[nodiscard]] virtual bool isOptionsOpen() const = 0;

    /// The measurement card that the plugin works with; never null.
    [[nodiscard]] virtual CardController* card() const = 0;

    /// Deletes keeper, window and model, in this order; a host calls it before it unloads the
    /// plugin. The plugin makes none of them again.
    virtual void release() = 0;
};

#define LauncherPluginInterface_iid "waveform.launcher.LauncherPluginInterface2/1.0"
Q_DECLARE_INTERFACE(LauncherPluginInterface, LauncherPluginInterface_iid)
