#include "app/host.h"

#include "app/frame.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/launcherplugininterface.h"
#include "platform/launcher/pluginmodel.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/otdr/reflectogram.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QThreadPool>

Host::Host() = default;

Host::~Host()
{
    outer.reset(); // the frame lets the window go before the plugin deletes it
    if (plugin != nullptr) {
        plugin->release();
    }
    // Nothing of the plugin may run once its code is gone: neither what it computes in the
    // background nor what waits to be deleted.
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    loader.unload(); // deletes the plugin, which leaves its configuration to be deleted
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString Host::pluginPath()
{
    const QString programs = QCoreApplication::applicationDirPath();
    const QString name = "waveform.so";
    for (const QString& dir : {programs + "/../lib", programs + "/../lib/waveform"}) {
        if (QFileInfo::exists(dir + "/" + name)) {
            return QFileInfo(dir + "/" + name).canonicalFilePath();
        }
    }
    return programs + "/../lib/" + name;
}

QString Host::load()
{
    loader.setFileName(pluginPath());
    QObject* instance = loader.instance();
    if (instance == nullptr) {
        return loader.errorString();
    }
    plugin = qobject_cast<LauncherPluginInterface*>(instance);
    if (plugin == nullptr || plugin->window() == nullptr) {
        return QString("%1 is no plugin of this application").arg(pluginPath());
    }
    outer = std::make_unique<Frame>(plugin->window(), plugin->myKeeper());
    plugin->window()->show();
    emit plugin->window()->setTitle(plugin->name());
    return {};
}

PluginWindow* Host::window() const
{
    return plugin->window();
}

PluginModel* Host::model() const
{
    return plugin->model();
}

AbstractKeeper* Host::keeper() const
{
    return plugin->myKeeper();
}

QStringList Host::open(const QStringList& files)
{
    QStringList problems;
    for (const QString& file : files) {
        const Reflectogram refl(file);
        if (!refl.isValid()) {
            problems << refl.error(); // which names the file
        } else {
            keeper()->loadFile(file);
        }
    }
    return problems;
}
