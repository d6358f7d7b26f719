#include "storage/keeper.h"

#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/filedialog.h"
#include "platform/launcher/zuconfig.h"
#include "platform/launcher/zuconfigmodel.h"
#include "platform/launcher/zulauncherconfig.h"
#include "platform/otdr/errorwords.h"
#include "platform/otdr/notewords.h"
#include "platform/otdrconfig/otdrconfig.h"
#include "refls/reflstablemodel.h"
#include "storage/configfile.h"
#include "storage/driveask.h"
#include "storage/savethread.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <QPointer>

namespace Waveform {

namespace {

constexpr unsigned long kSavePoll_ms = 5;

/// How long a user who wants to quit waits for a report and for the copies, and whoever asks for
/// the answer of a drive.
constexpr int kLeaveAfter_ms = 5000;

QString subPath()
{
    return ZuLauncherConfig("paths", "otdr").toString();
}

bool copiesToFlash()
{
    return ZuLauncherConfig("flash", "save").toBool();
}

QString storePath()
{
    return QDir::homePath() + "/" + subPath();
}

/// A path as the user knows it: without the home directory.
QString shownPath(const QString& path)
{
    const QString home = qEnvironmentVariable("HOME");
    return home.isEmpty() ? path : QString(path).remove(home + "/"); // not every separator
}

} // namespace

Keeper::Keeper(CardController* card, ReflsTableModel* refls, QObject* parent)
    : AbstractKeeper(parent)
    , card(card)
    , refls(refls)
    , nameConverter(std::make_shared<FileNameConverter>())
{
    connect(refls, SIGNAL(mainReflChanged( Reflectogram )), SLOT(onChangeMainRefl( Reflectogram )));
    connect(refls, SIGNAL(allReflsDeleted()), SLOT(offerSave())); // no word of the main trace then
}

void Keeper::setMeasModel(Model* newModel)
{
    model = newModel;
    if (model != nullptr) {
        connect(model, SIGNAL(started( MeasModel* )), SLOT(started()));
        connect(model, SIGNAL(stopped( MeasModel* )), SLOT(stopped()));
    }
}

QString Keeper::storeDir() const
{
    QString dir = storePath();
    if (!makeDirectory(dir, patienceOf(kLeaveAfter_ms)).value_or(false)) {
        qDebug().noquote() << "Can't create directory " + dir + " " + "for saving";
    }
    return dir;
}

QString Keeper::flashcardDir() const
{
    return ZuLauncherConfig("flash", "dir").toString() + "/" + subPath();
}

bool Keeper::fileExists(const QString& name) const
{
    return isAnyTaken({nameConverter->convert(name)});
}

bool Keeper::wouldReplace(const QString& name) const
{
    QStringList names {name};
    const QStringList added = suffixes(refls->association(refls->mainRefl()));
    for (const QString& suffix : added) {
        names << name + suffix;
    }
    names.removeDuplicates();
    return isAnyTaken(names);
}

bool Keeper::isAnyTaken(const QStringList& names) const
{
    QStringList dirs {storePath()};
    if (copiesToFlash()) {
        dirs << flashcardDir();
    }
    QStringList paths;
    for (const QString& dir : qAsConst(dirs)) {
        for (const QString& name : names) {
            paths << dir + "/" + name + ".sor" << dir + "/" + name + ".html";
        }
    }
    // Of a drive that does not answer nobody knows: better a question than a file that was lost.
    return isAnyThere(paths, patienceOf(kLeaveAfter_ms)).value_or(true);
}

QString Keeper::reportAutoName() const
{
    const Reflectogram main = refls->mainRefl();
    if (!main.isValid()) {
        return {};
    }
    if (!main.isMeasured()) {
        return QFileInfo(main.fileName()).completeBaseName();
    }
    QString scheme = config() != nullptr
        ? config()->setting("reflNameScheme", "AdvancedParams")->value().toString()
        : QString();
    if (scheme.isEmpty()) {
        scheme = OTDR::kDefaultReflNameScheme;
    }
    if (refls->association(main).size() > 1) {
        scheme.remove("_wavelength"); // saving adds it to each file itself
    }
    QString name;
    WfMeasParams params = main.parameters();
    OTDR::constructReflName(name, scheme, params, -1, config(), false);
    return name;
}

QString Keeper::auxFileName(const QString& fileName, const QString& extension)
{
    const QFileInfo file(fileName);
    return file.path() + "/" + file.completeBaseName() + "." + extension;
}

QString Keeper::reportTemplate(const QString& localeName)
{
    const QString language = localeName.size() < 5 ? QString() : QString(localeName).remove(3, 3);
    QString path = ZuConfig("zuotdr", "report", language + "template").toString();
    if (!QFile::exists(path)) {
        path = ZuConfig("zuotdr", "report", "template").toString();
    }
    return path;
}

int Keeper::doSave(const QString& name)
{
    const QString fileName = nameConverter->convert(name);
    const QList<Reflectogram> group = refls->association(refls->mainRefl());
    if (fileName.isEmpty() || group.isEmpty()) {
        return -1;
    }
    const QPointer<Keeper> alive(this);
    const QStringList suffix = suffixes(group);
    QDeadlineTimer leaveBy(QDeadlineTimer::Forever);
    int result = 0;
    for (int i = 0; i < group.size(); ++i) {
        const QString base = storeDir() + "/" + fileName + suffix[i];
        if (!alive) {
            return -1;
        }
        const bool ok = saveOne(group[i], base, leaveBy);
        if (!alive) {
            return -1;
        }
        emit showNotification(ok ? savedMessage(base) : tr("Failed to save reports!"));
        if (ok) {
            saveComplied(base);
        } else {
            result = -1;
        }
    }
    return result;
}

QStringList Keeper::suffixes(const QList<Reflectogram>& group)
{
    if (group.size() == 1) {
        return {QString()};
    }
    QStringList suffixes;
    QHash<int, int> times;
    for (const Reflectogram& refl : group) {
        const int time = ++times[refl.wavelength()];
        const QString suffix = "_" + QString::number(refl.wavelength()) + "nm";
        suffixes << (time == 1 ? suffix : suffix + "_" + QString::number(time));
    }
    return suffixes;
}

/// Saves one trace while the event loop turns, in which even the keeper may go. The time for that
/// runs from when the user wants to leave.
bool Keeper::saveOne(const Reflectogram& refl, const QString& base, QDeadlineTimer& leaveBy)
{
    const QPointer<Keeper> alive(this);
    SaveThread thread;
    thread.refl = refl;
    thread.sor = base + ".sor";
    thread.html = auxFileName(thread.sor, "html");
    thread.templ = reportTemplate(QLocale::system().name());
    if (copiesToFlash()) {
        thread.flashDir = flashcardDir();
    }
    emit setWaitWindowVisible(true);
    thread.start();
    while (!thread.isFinished()) {
        if (alive && isQuitWanted() && leaveBy.isForever()) {
            leaveBy = QDeadlineTimer(kLeaveAfter_ms);
        }
        if (!alive || leaveBy.hasExpired()) {
            thread.requestInterruption();
        }
        QCoreApplication::processEvents();
        thread.wait(kSavePoll_ms);
    }
    if (alive) {
        emit setWaitWindowVisible(false);
    }
    return thread.result == 0;
}

QString Keeper::savedMessage(const QString& base) const
{
    const QString sor = base + ".sor";
    QString message = tr("Reports was saved to:\n") + shownPath(sor) + "\n"
        + shownPath(auxFileName(sor, "html")) + "\n";
    if (copiesToFlash()) {
        message += tr("\nReports automatically copied to USB-flash:\n") + flashcardDir();
    }
    return message;
}

void Keeper::saveComplied(const QString& fileName)
{
    OTDR::incrementReflIndex(config(), true);
    emit saved(fileName);
}

bool Keeper::limitReached()
{
    if (refls->rowCount() < maxRefls) {
        return false;
    }
    emit showNotification(
        tr("Only 4 reflectograms can be loaded at the same time.\nPlease, remove one or more from "
           "the \"Reflectograms\" table"));
    return true;
}

int Keeper::doLoad()
{
    if (limitReached()) {
        return -1;
    }
    const QPointer<Keeper> alive(this);
    const QVector<FileDialog::Place> known = places();
    if (!alive) {
        return -1;
    }
    const QStringList files = FileDialog::getOpenFileNames(
        nullptr, {tr("Open reflectogram"), known, ".sor", maxRefls - refls->rowCount(), "loaded"});
    if (!alive) {
        return -1;
    }
    QStringList problems;
    QStringList damages;
    for (const QString& file : files) {
        damages << loadOne(file);
        if (refls->isNewRefl(file)) {
            problems << errorWords(Reflectogram(file).error()); // which names the file
        }
    }
    problems.removeAll(QString()); // nobody listens to what is to be loaded
    tell(problems + damages);
    return files.size() > problems.size() ? 0 : -1;
}

/// \return what the user should know of the trace that came of a file; most often nothing
QString Keeper::loadOne(const QString& file)
{
    const bool wasNew = refls->isNewRefl(file);
    emit loadRefl(file);
    return wasNew && !refls->isNewRefl(file) ? damageWords(refls->mainRefl()) : QString();
}

void Keeper::tell(QStringList lines)
{
    lines.removeAll(QString());
    if (!lines.isEmpty()) {
        emit showNotification(lines.join("\n"));
    }
}

/// Where traces to load may lie.
QVector<FileDialog::Place> Keeper::places() const
{
    QVector<FileDialog::Place> places {{tr("Storage"), storeDir()}};
    const QString drive = ZuLauncherConfig("flash", "dir").toString();
    const std::function<bool()> isGivenUp = patienceOf(kLeaveAfter_ms); // with both together
    // Traces of other instruments lie where their makers put them.
    for (const QString& dir : {drive + "/" + subPath(), drive}) {
        if (!drive.isEmpty() && isAnyThere({dir + "/."}, isGivenUp).value_or(false)) {
            places.append({tr("Flash drive"), dir});
            break;
        }
    }
    return places;
}

int Keeper::doLoadFile(const QString& file)
{
    if (limitReached()) {
        return -1;
    }
    tell({loadOne(file)});
    return 0;
}

void Keeper::started()
{
    measRunning = true;
    setMeasStartDate(QDateTime::currentDateTime());
    enableSave(false);
    enableLoad(false);
    emit setTitle(tr("Waveform"));
}

void Keeper::started(QString /*channel*/)
{
    started();
}

void Keeper::stopped()
{
    setMeasStopDate(QDateTime::currentDateTime());
    if (!saveConfig(configFileName())) {
        qDebug() << "config was not saved";
    }
    measRunning = false;
    enableLoad(true);
    offerSave();
}

void Keeper::stopped(QString /*channel*/)
{
    stopped();
}

void Keeper::updated(QVariantMap& /*map*/, QString /*channel*/) { }

void Keeper::setEventsFindingStatus(bool inProgress)
{
    eventsFinding = inProgress;
    offerSave();
}

void Keeper::offerSave()
{
    onChangeMainRefl(refls->mainRefl());
}

void Keeper::onChangeMainRefl(Reflectogram refl)
{
    enableSave(!eventsFinding && refl.isValid());
}

QString Keeper::configFileName() const
{
    return model != nullptr ? model->tmpFileName("/wf.cfg") : QString();
}

bool Keeper::saveConfig(const QString& fileName) const
{
    QVariantMap map = card->config();
    map["measStopDate"] = measStopDate().toString(Qt::ISODate);
    return writeConfigFile(fileName, map);
}

QVariantMap Keeper::unserialize(const QString& fileName)
{
    return readConfigFile(fileName);
}

WfMeasParams Keeper::wfMeasParams(const QVariantMap& map)
{
    WfMeasParams params;
    params.ior = map.value("ior").toDouble();
    params.helix = map.value("helix").toDouble();
    params.distance = map.value("distance").toDouble();
    params.wavelength = static_cast<quint16>(map.value("wavelength").toInt());
    params.pulse = static_cast<quint16>(map.value("pulse").toInt());
    params.rbs = map.value("rbs").toDouble();
    params.duration = map.value("duration").toInt();
    return params;
}

} // namespace Waveform
