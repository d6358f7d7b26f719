#include "app/host.h"

#include "app/environment.h"
#include "app/filename.h"
#include "app/frame.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/launcherplugininterface.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/pluginmodel.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/otdr/errorwords.h"
#include "platform/otdr/reflectogram.h"

#include <QFileInfo>
#include <QThreadPool>

#include <malloc.h>

namespace {

/// So many traces may be loaded at a time; the one after them is refused with words.
constexpr int kMostTraces = 4;

/// A message is to be read on a small screen.
constexpr int kMostLines = 5;

/// Runs, saves and loads allocate and free pictures and traces by the megabyte, and the allocator
/// keeps what was freed: on an instrument that is used for days, as much as all the rest takes.
void giveMemoryBack()
{
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

} // namespace

Host::Host()
    : names(Environment::temporaryDir())
{
}

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
    const QString path = pluginPath();
    if (!QFileInfo::exists(path)) {
        return tr("the plugin %1 is missing").arg(path);
    }
    loader.setFileName(path);
    QObject* instance = loader.instance();
    if (instance == nullptr) {
        return tr("the plugin %1 cannot be loaded: %2").arg(path, loader.errorString());
    }
    plugin = qobject_cast<LauncherPluginInterface*>(instance);
    if (plugin == nullptr || plugin->window() == nullptr) {
        return tr("%1 is no plugin of this application").arg(path);
    }
    outer = std::make_unique<Frame>(plugin->window(), plugin->myKeeper());
    // When the drop is over: who drags waits for its end.
    QObject::connect(
        outer.get(), &Frame::dropped, outer.get(),
        [this](const QStringList& files, const QStringList& elsewhere) {
            takeDropped(files, elsewhere);
        },
        Qt::QueuedConnection);
    if (const auto* model = qobject_cast<MeasModel*>(plugin->model())) {
        QObject::connect(model, qOverload<MeasModel*>(&MeasModel::stopped), outer.get(),
                         giveMemoryBack, Qt::QueuedConnection);
    }
    if (const AbstractKeeper* keeper = plugin->myKeeper()) {
        QObject::connect(
            keeper, &AbstractKeeper::busyChanged, outer.get(),
            [](bool busy) {
                if (!busy) {
                    giveMemoryBack();
                }
            },
            Qt::QueuedConnection);
    }
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
    if (!files.isEmpty() && (keeper() == nullptr || !keeper()->isLoadEnabled())) {
        return {tr("Traces can be opened when what is under way now has ended.")};
    }
    QStringList problems;
    int opened = 0;
    for (const QString& file : files) {
        const QString openable = names.openable(file);
        const Reflectogram refl(openable);
        if (!refl.isValid()) {
            const QString error = errorWords(refl.error()); // which names the file
            problems << QString(error).replace(openable, filename::shown(file));
        } else if (opened <= kMostTraces) { // further ones would be refused in the same words
            keeper()->loadFile(openable);
            ++opened;
        }
    }
    return problems;
}

void Host::tell(const QStringList& problems)
{
    if (problems.isEmpty()) {
        return;
    }
    QStringList lines = problems.mid(0, kMostLines);
    const int more = problems.size() - lines.size();
    if (more > 0) {
        lines << tr("... and %1 more").arg(more);
    }
    outer->tell(lines.join('\n'));
}

void Host::takeDropped(const QStringList& files, const QStringList& elsewhere)
{
    QStringList problems = open(files);
    for (const QString& place : elsewhere) {
        problems << tr("%1: not a file of this machine").arg(place);
    }
    tell(problems);
}
