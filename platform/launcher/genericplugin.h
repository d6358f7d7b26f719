#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class PluginIcon;
class PluginModel;
class PluginWindow;

/// The base of all plugins: a window, a model, an icon and a status widget, each made by a factory
/// operation.
///
/// The order of the virtual operations is fixed.
class GenericPlugin : public QObject
{
    Q_OBJECT

public:
    explicit GenericPlugin(QObject* parent = nullptr);
    ~GenericPlugin() override;

    /// The plugin's window and model; null where there is none.
    virtual PluginWindow* window() = 0;
    virtual PluginModel* model() = 0;

    /// The plugin's entry on the host's start screen and its status widget, made at the first call;
    /// null where the plugin or the host has none. Both belong to whoever they were made on.
    virtual PluginIcon* icon();
    virtual QWidget* status();

    /// Whether the user may open the plugin's options.
    [[nodiscard]] virtual bool isOptionsOpen() const { return true; }

    /// Makes the window if need be, shows it and brings it to the front.
    virtual void showWindow();

    /// The factories; the base calls each at most once.
    virtual PluginWindow* createWindow() = 0;
    virtual PluginIcon* createIcon();
    virtual QWidget* createStatus();
    virtual PluginModel* createModel() = 0;

    /// Gives the plugin its icon before the window is made: for a host with a start screen. Not
    /// owned.
    void setIcon(PluginIcon* icon);

    [[nodiscard]] QString moduleName() const;

protected:
    /// The name that the host shows.
    void setName(const QString& name);

private:
    QString pluginName;
    QPointer<PluginIcon> pluginIcon;
    QPointer<QWidget> statusWidget;
    bool iconMade = false;
    bool statusMade = false;
};
