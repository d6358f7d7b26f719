#pragma once

#include "app/linkednames.h"

#include <QCoreApplication>
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
    Q_DECLARE_TR_FUNCTIONS(Host)

public:
    Host();

    /// Lets the plugin delete its objects, then unloads it.
    ~Host();

    /// \return an empty text, or why the plugin cannot be used, with the path that was tried
    [[nodiscard]] QString load();

    // Only after a good load().
    [[nodiscard]] Frame* frame() const { return outer.get(); }

    [[nodiscard]] PluginWindow* window() const;
    [[nodiscard]] PluginModel* model() const;
    [[nodiscard]] AbstractKeeper* keeper() const;

    /// Opens trace files within the limit of what may be loaded; names may be those of filename.h.
    /// \return a line for each file that is no trace, or one where none may be opened now
    [[nodiscard]] QStringList open(const QStringList& files);

    /// Tells the user such lines in one message: the first few, and how many more there are.
    void tell(const QStringList& problems);

    /// Where the plugin is looked for: beside the programs, or in the build tree.
    [[nodiscard]] static QString pluginPath();

private:
    void takeDropped(const QStringList& files, const QStringList& elsewhere);

    QPluginLoader loader;
    LinkedNames names;
    LauncherPluginInterface* plugin = nullptr;
    std::unique_ptr<Frame> outer;
};
