#include "acquisition/model.h"

#include "acquisition/gatheroutcome.h"
#include "acquisition/gatherpatience.h"
#include "acquisition/otdrmeascontroller.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/controllercommand.h"
#include "platform/launcher/dataproxy.h"
#include "platform/launcher/zuconfig.h"
#include "platform/launcher/zuconfigmodel.h"
#include "platform/otdr/errorwords.h"
#include "platform/otdr/otdr.h"
#include "platform/otdrconfig/otdrconfig.h"
#include "platform/sysinfo/sysinforeader.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSettings>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>

namespace Waveform {

const char* const defPulse = "100";
const char* const defIOR = "1.49";
const char* const defHelix = "0";
const char* const defDistance = "75000";
const char* const defRBS = "-66.30";
const char* const defDuration = "15";
const char* const defWavelength = "1310";

namespace {

// The acquisition program of the instrument works for the user "user"; its directory is watched by
// this name.
const char* const kWatchedDirectory = "/tmp/user";
const char* const kWatchedSnapshot = "/tmp/user/wfsnapshot.bin";
const char* const kPlatformInfo = "/sys/devices/platform/pmmcu.0/info";

constexpr int kEndedProcessPatience_ms = 1000;

/// No fibre has so many events; a program that tells more has lost its way.
constexpr int kMostEvents = 10000;

/// Truncated to what 16 bits hold; 0 for what is negative or no number.
quint16 toUint16(double value)
{
    return value > 0.0 ? static_cast<quint16>(std::min(value, 65535.0)) : 0;
}

QByteArray ascii(const QString& text)
{
    return text.toLatin1();
}

} // namespace

Model::Model(CardController* card)
    : MeasModel(card)
    , watcher(std::make_unique<QFileSystemWatcher>())
{
    supBlock = std::make_unique<SupParamsBlock>();
    onCardConnected(card);
    cardConnected = card != nullptr && !card->noCard();
    if (card != nullptr) {
        connect(card, SIGNAL(configUpdated( QVariantMap& )), SLOT(configUpdated( QVariantMap& )));
        connect(card,
                SIGNAL(connected( CardController* )), SLOT(onCardConnected( CardController* )));
        connect(card,
                SIGNAL(disconnected( CardController* )),
                       SLOT(onCardDisconnected( CardController* )));
    }
    initWfMeasController();
    preformSupplierParameters(card);
    setTmpFiles();
    watcher->addPath(kWatchedDirectory);
}

Model::~Model()
{
    Model::stop(QString());
    removeSettingsFile();
    if (config != nullptr) {
        config->freeLater();
    }
    delete controller; // ends its process while the rest of the model still stands
}

void Model::initWfMeasController()
{
    controller = new OtdrMeasController(this);
    connect(watcher.get(),
            SIGNAL(directoryChanged( const QString& )), SLOT(directoryChanged( const QString& )));
    connect(controller, SIGNAL(started()), SLOT(onGatherStarted()));
    connect(controller, SIGNAL(measTick( QVariantMap& )), SLOT(updated( QVariantMap& )));
    connect(controller, SIGNAL(finished()), SLOT(onGatherFinished()));
    connect(controller, SIGNAL(error()), SLOT(onGatherFinished()));
    connect(controller, SIGNAL(measTick( int, int )), SIGNAL(measTick( int, int )));
    connect(controller, SIGNAL(analisisStarted()), SIGNAL(analisisStarted()));
    connect(controller, SIGNAL(analisisStarted()), SLOT(onAnalisisStarted()));
    connect(controller, SIGNAL(analisisFinished()), SIGNAL(analisisFinished()));
    connect(controller, SIGNAL(analisisFinished()), SLOT(onAnalisisFinished()));
    connect(controller, SIGNAL(wfEventFound( QString )), SLOT(onEventFound( QString )));
    connect(controller,
            SIGNAL(measStarted( int, int, WfMeasParams )),
                   SLOT(onMeasStarted( int, int, WfMeasParams )));
    connect(controller, SIGNAL(measFinished( int )), SLOT(onMeasFinished( int )));
}

bool Model::running() const
{
    return controller->running();
}

int Model::start(unsigned int /*mode*/)
{
    if (running()) { // another run would take this one's settings file and process from it
        qDebug() << "virtual int Waveform::Model::start(unsigned int)"
                 << "is running";
        setFailure(tr("A measurement is running already."));
        return -1;
    }
    // After its last message the process of the old run lives on for a moment; its end must not
    // fall into this run.
    controller->waitForEnded(kEndedProcessPatience_ms);
    watchAgain();

    MeasModel::started(QString());
    snapshotChecksum = -1;
    traceIsOpen = false;
    trouble.clear();
    removeSettingsFile();
    controller->setConfigFileName(summCfgFileName());

    ControllerCommand command("check fiber", false);
    CardController* card = cardController();
    const int refused = card != nullptr ? card->doCommand(command) : CardController::NoCard;
    if (refused < 0) {
        qCritical() << "virtual int Waveform::Model::start(unsigned int)"
                    << "can not start" << command.name();
        setFailure(
            refused == CardController::NoCard
                ? tr("There is no measurement card.")
                : tr("The measurement card refused the command \"%1\".").arg(command.name()));
        MeasModel::stopped(QString());
        return refused;
    }
    controller->patience().setPace(setting("timeScale", "Simulation", "1"));
    const int result = controller->start();
    if (result != 0) {
        qCritical() << "virtual int Waveform::Model::start(unsigned int)"
                    << "can not start" << controller->program() << "-w" << snapshotName << "-i"
                    << controller->configFile();
        setFailure(
            tr("The acquisition program %1 could not be started.").arg(controller->program()));
    }
    return result;
}

/// A directory that was removed since the last run is no longer watched, even if it was made again.
void Model::watchAgain()
{
    static_cast<void>(tempDir()); // makes it where it is missing
    if (!watcher->directories().contains(kWatchedDirectory)
        && !watcher->addPath(kWatchedDirectory)) {
        qDebug() << "virtual int Waveform::Model::start(unsigned int)"
                 << "can not watch" << QString(kWatchedDirectory);
    }
}

int Model::stop(const QString& /*reason*/)
{
    controller->stop();
    return 0;
}

void Model::doInit()
{
    if (QFile::exists(snapshotName)) {
        QFile::remove(snapshotName);
    }
}

void Model::stopped(const QString& /*channel*/)
{
    removeSettingsFile();
    MeasModel::stopped(QString());
}

void Model::removeSettingsFile()
{
    const QString name = controller->configFile();
    if (!name.isEmpty() && QFile::exists(name)) {
        QFile::remove(name);
    }
}

void Model::updated(QVariantMap& map)
{
    MeasModel::updated(map, QString());
    if (CardController* card = cardController()) {
        const QList<DataProxy*> proxies = card->dataProxies("I");
        for (DataProxy* proxy : proxies) {
            proxy->emitUpdated(map, "I");
        }
    }
}

quint16 Model::pulse() const
{
    return toUint16(setting("pulse", "MeasParams", defPulse));
}

quint16 Model::wavelength() const
{
    return toUint16(std::floor(setting("wavelength", "MeasParams", defWavelength) + 0.5));
}

double Model::distance() const
{
    return setting("distance", "MeasParams", defDistance);
}

double Model::helix() const
{
    return setting("helix", "MeasParams", defHelix);
}

double Model::ior() const
{
    return setting("ior1310", "MeasParams", defIOR);
}

double Model::setting(QString key, QString section, QString def) const
{
    if (config == nullptr) {
        return def.toDouble();
    }
    return config->value(section, key, QVariant(def)).toString().toDouble();
}

QString Model::summCfgFileName() const
{
    const quint32 number = QRandomGenerator::global()->generate() >> 1U;
    QString name = QDir::tempPath() + QDir::separator() + "otdrcfg-" + QString::number(number);
    const QVariantMap values = ZuConfig("zuotdr", "").values();
    QSettings file(name, QSettings::NativeFormat);
    for (auto value = values.begin(); value != values.end(); ++value) {
        file.setValue(value.key(), value.value());
    }
    file.sync();
    return name;
}

QDir Model::tempDir() const
{
    QDir dir(QDir::tempPath() + "/" + qEnvironmentVariable("USER"));
    if (dir.exists()) {
        return dir;
    }
    if (dir.mkdir(dir.absolutePath())) {
        QFile::setPermissions(dir.absolutePath(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    } else {
        qDebug() << "tempDir"
                 << ": Can't create directory '" << dir.absolutePath() << "'";
        dir.setPath(QDir::tempPath());
        qDebug() << "tempDir"
                 << ": Using '" << dir.absolutePath() << "' as temporary dir";
    }
    return dir;
}

QString Model::tmpFileName(const QString& name) const
{
    return tempDir().absolutePath() + name;
}

QString Model::waveformSnapshotName() const
{
    return tmpFileName("/wfsnapshot.bin");
}

void Model::setTmpFiles()
{
    snapshotName = waveformSnapshotName();
    controller->setSnapshotFileName(snapshotName);
    const QString errorLog = tempDir().absolutePath() + "/wfgather.log";
    QFile::remove(errorLog);
    controller->setErrLogFileName(errorLog);
}

int Model::checkWFSnapshot()
{
    const QFileInfo info(snapshotName);
    if (!info.exists() || info.size() <= 0) {
        return NoSnapshot;
    }
    QFile file(snapshotName);
    if (info.size() > Reflectogram::largestSnapshot_bytes() || !file.open(QIODevice::ReadOnly)) {
        return UnreadableSnapshot;
    }
    const QByteArray bytes = file.readAll();
    const int checksum = qChecksum(bytes.constData(), static_cast<uint>(bytes.size()));
    if (checksum == snapshotChecksum) {
        return SameSnapshot;
    }
    snapshotChecksum = checksum;
    return NewSnapshot;
}

WfMeasParams Model::paramsForWindow() const
{
    WfMeasParams measuredSoFar = currentParams();
    measuredSoFar.duration = duration();
    return measuredSoFar;
}

int Model::notifyMeasured()
{
    const WfMeasParams now = paramsForWindow();
    const int check = checkWFSnapshot();
    if (check == NewSnapshot) {
        emit measured(snapshotName, now);
    }
    return check;
}

void Model::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == timerId) {
        notifyMeasured();
    }
}

void Model::directoryChanged(QString /*directory*/)
{
    if (!running()) {
        return;
    }
    if (!QFile::exists(kWatchedSnapshot)) {
        qDebug() << "no refl file";
        return;
    }
    const WfMeasParams now = paramsForWindow();
    if (running()) {
        emit measured(snapshotName, now);
    }
}

void Model::onGatherStarted()
{
    started(QString());
    emit setActionButtonEnabled(false);
}

void Model::onMeasStarted(int /*num*/, int /*from*/, WfMeasParams newParams)
{
    params = newParams;
    trace = Reflectogram(); // events are not measured against the trace before
    traceIsOpen = true;
    emit measStarted();
}

void Model::onMeasFinished(int /*num*/)
{
    traceIsOpen = false;
    if (!trace.updateFromFile(snapshotName, params)) {
        noteTrouble(tr("The measured trace cannot be used: %1").arg(errorWords(trace.error())));
        trace = Reflectogram(); // its events are not measured against the trace before
    }
    emit measFinished();
}

void Model::onAnalisisStarted()
{
    events.clear();
}

void Model::onEventFound(QString event)
{
    if (events.size() < kMostEvents) {
        events.append(OTDR::createEventFromString(event, trace));
    }
}

void Model::onAnalisisFinished()
{
    emit eventListReady(events);
}

void Model::noteTrouble(const QString& text)
{
    if (trouble.isEmpty()) {
        trouble = text;
    }
}

void Model::onGatherFinished()
{
    controller->discardRest();
    GatherOutcome outcome = controller->outcome();
    if (traceIsOpen && outcome.kind == GatherOutcome::Announced) {
        outcome.kind = GatherOutcome::Exited; // an end in the middle is none, whatever it says
        outcome.exitCode = 0;
    }
    noteTrouble(whatWentWrong(outcome));
    if (isStarted()) {
        setFailure(trouble);
    }
    stopped(QString());
    if (!cardConnected) {
        qDebug() << "void Waveform::Model::onGatherFinished()"
                 << "cadr disconnected";
        cardDisconnected();
    }
}

void Model::onCardConnected(CardController* card)
{
    cardConnected = true;
    formSupplierParameters(card);
    ZuConfigModel* previous = config;
    config = ZuConfigModel::instance(card, "zuotdr");
    config->setUseController(false);
    config->setUseConfigFile(true);
    if (previous != nullptr) {
        previous->freeLater(); // the same shared model: one use less
    }
    OTDR::updateCardInfoConfig(card, config);
}

void Model::onCardDisconnected(CardController* /*card*/)
{
    cardConnected = false;
}

void Model::preformSupplierParameters(CardController* /*card*/)
{
    supBlock->supplierName = ascii(qEnvironmentVariable("VENDOR_SUPPLIER_NAME"));
    supBlock->mainframeId = ascii(qEnvironmentVariable("DEVICE_PLATFORM_NAME") + " "
                                  + SysinfoReader::hwrev(kPlatformInfo));
    supBlock->mainframeSerial = ascii(SysinfoReader::serial(kPlatformInfo));
}

void Model::formSupplierParameters(CardController* card)
{
    if (card == nullptr) {
        return;
    }
    supBlock->moduleId = ascii("Zu-" + card->name().toUpper() + " " + card->revision());
    supBlock->moduleSerial = ascii(card->serial());
    QString software = SysinfoReader::releaseVersion() + card->doCommandGetUpdate("version");
    software.replace("MCU ", "/").replace("\nFPGA ", "/");
    supBlock->softwareRevision = ascii(software);
    supBlock->other = ascii("Calibration info: " + card->doCommandGetUpdate("scale") + " "
                            + card->doCommandGetUpdate("dzbox"));
}

} // namespace Waveform
