#pragma once

#include <QPluginLoader>
#include <QString>
#include <QStringList>

#include <memory>

class AbstractKeeper;
class Frame;
class LauncherPluginInterface;
class PluginModel;
class PluginWindow;

/// Loads the plugin, calls its factories as a launcher does, and shows its window in a frame.
class Host
{
public:
    Host();

    /// Lets the plugin delete its objects, then unloads it.
    ~Host();

    /// \return an empty text, or why the plugin cannot be used
    [[nodiscard]] QString load();

    // Only after a good load().
    [[nodiscard]] Frame* frame() const { return outer.get(); }

    [[nodiscard]] PluginWindow* window() const;
    [[nodiscard]] PluginModel* model() const;
    [[nodiscard]] AbstractKeeper* keeper() const;

    /// Opens trace files within the limit of what may be loaded.
    /// \return a line for each file that is no trace
    [[nodiscard]] QStringList open(const QStringList& files);

    /// Where the plugin is looked for: beside the programs, or in the build tree.
    [[nodiscard]] static QString pluginPath();

private:
    QPluginLoader loader;
    LauncherPluginInterface* plugin = nullptr;
    std::unique_ptr<Frame> outer;
};
