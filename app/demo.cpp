#include "app/demo.h"

#include "app/eventstext.h"
#include "app/frame.h"
#include "app/picture.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/nameprompt.h"
#include "platform/otdr/reflectogram.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QPushButton>
#include <QTextStream>
#include <QTimer>

namespace {

/// Answers the questions of a save when nobody is there to do so.
class FixedName : public NamePrompt
{
public:
    std::optional<QString> askName(const QString& /*proposed*/) override { return "demo"; }

    bool askOverwrite(const QString& /*name*/) override { return true; }
};

} // namespace

Demo::Demo(Host& host, const QString& dir)
    : host(host)
    , dir(dir)
{
}

void Demo::start()
{
    auto* model = qobject_cast<MeasModel*>(host.model());
    auto* window = qobject_cast<MeasWindow*>(host.window());
    if (!QDir().mkpath(dir)) {
        leave(QString("cannot make the directory %1").arg(dir));
        return;
    }
    if (model == nullptr || window == nullptr || host.keeper() == nullptr) {
        leave("the plugin cannot measure");
        return;
    }
    // What is queued by the end of the run (notifications, the last repaint) comes before the end
    // of the demo.
    connect(model, qOverload<MeasModel*>(&MeasModel::stopped), this, &Demo::finish,
            Qt::QueuedConnection);
    window->actionButton()->click();
}

void Demo::finish()
{
    if (done) {
        return;
    }
    const QString failure = qobject_cast<MeasModel*>(host.model())->failure();
    if (!failure.isEmpty()) {
        leave(failure);
        return;
    }
    if (!host.keeper()->isSaveEnabled()) {
        leave("the measurement left no trace");
        return;
    }
    savePicture(*host.frame(), dir + "/window.png") ? leave(saveTrace())
                                                    : leave("cannot write window.png");
}

QString Demo::saveTrace()
{
    host.keeper()->setNamePrompt(std::make_unique<FixedName>());
    host.keeper()->save();
    QStringList saved;
    QDirIterator found(QDir::homePath(), {"demo*.sor"}, QDir::Files, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        saved << found.next();
    }
    if (saved.isEmpty()) {
        return "the trace was not saved";
    }
    QStringList tables;
    for (const QString& file : qAsConst(saved)) {
        for (const char* extension : {".sor", ".html", ".png"}) {
            const QString name = QFileInfo(file).completeBaseName() + extension;
            const QString target = dir + "/" + name;
            QFile::remove(target);
            if (!QFile::copy(QFileInfo(file).path() + "/" + name, target)) {
                return QString("cannot write %1").arg(target);
            }
            QTextStream(stdout) << target << "\n";
        }
        tables << eventsText(Reflectogram(file));
    }
    QTextStream(stdout) << "\n" << tables.join("\n");
    return {};
}

void Demo::leave(const QString& problem)
{
    done = true;
    if (!problem.isEmpty()) {
        QTextStream(stderr) << "waveform: " << problem << "\n";
    }
    const int code = problem.isEmpty() ? 0 : 1;
    QTimer::singleShot(0, qApp, [code] { QCoreApplication::exit(code); });
}
