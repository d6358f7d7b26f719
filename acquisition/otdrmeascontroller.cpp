#include "acquisition/otdrmeascontroller.h"

#include "acquisition/gathermessages.h"
#include "acquisition/gatherpatience.h"
#include "platform/launcher/programs.h"

#include <QDebug>

#include <cstdio>

namespace {

constexpr int kStartTimeout_ms = 1000;
constexpr int kLastPatience_ms = 500;

/// What is kept of standard error: its last line is what the user is told.
constexpr int kMostErrors = 4096;

/// The first word of a message body, which is removed from it; a null character where there is
/// none.
QChar takeMarker(QStringList& body)
{
    return body.isEmpty() ? QChar() : body.takeFirst().at(0);
}

bool isOneOf(const QString& word, const char* characters)
{
    return QLatin1String(characters).contains(word.at(0));
}

/// The word after the first word equal to key; the first word where the key is absent.
QString valueOf(const QString& key, const QStringList& words)
{
    const int at = words.indexOf(key);
    return words.value(at < 0 ? 0 : at + 1);
}

} // namespace

OtdrMeasController::OtdrMeasController(QObject* parent)
    : QObject(parent)
{
    init();
}

OtdrMeasController::OtdrMeasController(QString snapshotFileName, QString configFileName,
                                       QString cardInterfaceName, QString pollerInterfaceName,
                                       QString errLogFileName, QObject* parent)
    : QObject(parent)
    , snapshotFileName(std::move(snapshotFileName))
    , configFileName(std::move(configFileName))
    , cardIfaceName(std::move(cardInterfaceName))
    , pollerIfaceName(std::move(pollerInterfaceName))
    , errLogFileName(std::move(errLogFileName))
{
    init();
}

OtdrMeasController::~OtdrMeasController()
{
    process->disconnect(this);
    if (process->state() != QProcess::NotRunning) {
        process->terminate();
        if (!process->waitForFinished(kLastPatience_ms)) {
            process->kill();
            process->waitForFinished(kLastPatience_ms);
        }
    }
}

void OtdrMeasController::init()
{
    num = 0;
    from = 0;
    isRunning = false;
    process = new QProcess(this);
    connect(process, SIGNAL(readyRead()), SLOT(readGatherOutput()));
    connect(process, SIGNAL(readyReadStandardError()), SLOT(readErrors()));
    connect(process,
            SIGNAL(error( QProcess::ProcessError )), SLOT(onError( QProcess::ProcessError )));
    connect(process, SIGNAL(finished( int )), SLOT(onFinished()));

    patienceLeft = new GatherPatience(this);
    connect(patienceLeft, SIGNAL(silent()), SLOT(onSilence()));
    connect(patienceLeft, SIGNAL(disobedient()), SLOT(endByForce()));
    connect(process, SIGNAL(finished( int )), patienceLeft, SLOT(forget()));
}

QString OtdrMeasController::program() const
{
    return programPath("wfgather");
}

QStringList OtdrMeasController::arguments() const
{
    return {"-o", snapshotFileName, "-c", configFileName};
}

void OtdrMeasController::waitForEnded(int timeout_ms)
{
    if (isRunning || process->state() == QProcess::NotRunning) {
        return;
    }
    if (!process->waitForFinished(timeout_ms)) {
        process->kill();
        process->waitForFinished(kLastPatience_ms);
    }
}

void OtdrMeasController::setStartParams(QString snapshotFileName, QString configFileName,
                                        QString cardInterfaceName, QString pollerInterfaceName,
                                        QString errLogFileName)
{
    setSnapshotFileName(snapshotFileName);
    setConfigFileName(configFileName);
    setCardIfaceName(cardInterfaceName);
    setPollerIfaceName(pollerInterfaceName);
    setErrLogFileName(errLogFileName);
}

void OtdrMeasController::setSnapshotFileName(QString name)
{
    snapshotFileName = name;
}

void OtdrMeasController::setConfigFileName(QString name)
{
    configFileName = name;
}

void OtdrMeasController::setCardIfaceName(QString name)
{
    cardIfaceName = name;
}

void OtdrMeasController::setPollerIfaceName(QString name)
{
    pollerIfaceName = name;
}

void OtdrMeasController::setErrLogFileName(QString name)
{
    errLogFileName = name;
}

void OtdrMeasController::discardRest()
{
    discarding = true;
    if (process->state() != QProcess::NotRunning) {
        patienceLeft->expectObedience();
    }
}

/// The first thing that tells how the run ends is how it ended.
void OtdrMeasController::settle(GatherOutcome::Kind kind)
{
    if (ending.kind != GatherOutcome::Pending) {
        return;
    }
    ending.kind = kind;
    ending.exitCode = process->exitCode();
    ending.lastWords = lastLineOf(errors);
}

int OtdrMeasController::start()
{
    ending = GatherOutcome();
    errors.clear();
    discarding = false;
    patienceLeft->forget();
    process->start(program(), arguments(), QIODevice::ReadWrite);
    if (process->waitForStarted(kStartTimeout_ms)) {
        isRunning = true;
        patienceLeft->listenOn();
        return 0;
    }
    settle(GatherOutcome::FailedToStart);
    qCritical() << "int OtdrMeasController::start()" << process->errorString()
                << static_cast<int>(process->error());
    isRunning = false;
    emit finished();
    return -1;
}

int OtdrMeasController::start(QString snapshotFileName, QString configFileName,
                              QString cardInterfaceName, QString pollerInterfaceName,
                              QString errLogFileName)
{
    setStartParams(snapshotFileName, configFileName, cardInterfaceName, pollerInterfaceName,
                   errLogFileName);
    return start();
}

int OtdrMeasController::stop()
{
    if (process->state() != QProcess::NotRunning) {
        settle(GatherOutcome::Stopped);
        askToEnd();
    }
    return process->exitCode();
}

void OtdrMeasController::askToEnd()
{
    process->terminate();
    patienceLeft->expectObedience();
}

void OtdrMeasController::endByForce()
{
    if (ending.kind == GatherOutcome::Stopped && isRunning) {
        ending.kind = GatherOutcome::Forced;
    }
    process->kill();
}

void OtdrMeasController::onSilence()
{
    // Who was busy for long may find the time over before having read what came meanwhile.
    process->waitForReadyRead(0);
    if (isRunning && !patienceLeft->isListening()) {
        settle(GatherOutcome::Silent);
        askToEnd();
    }
}

/// What the program says of its trouble goes where it would go without us.
void OtdrMeasController::readErrors()
{
    const QByteArray bytes = process->readAllStandardError();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    errors = (errors + bytes).right(kMostErrors);
}

void OtdrMeasController::readGatherOutput()
{
    const QByteArray bytes = process->readAllStandardOutput();
    if (qEnvironmentVariableIsSet("WAVEFORM_SHOW_GATHER")) {
        qDebug() << "wfgather:" << bytes;
    }
    const QStringList messages = gatherMessages(bytes);
    for (const QString& message : messages) {
        if (discarding) {
            return;
        }
        preprocessMsg(QString(message).remove(';'));
    }
}

void OtdrMeasController::preprocessMsg(QString msg)
{
    const QStringList words = msg.split(' ', Qt::SkipEmptyParts);
    if (words.size() < 2) {
        return;
    }
    const QStringList body = words.mid(2); // the first word is free, the second is the class
    if (isRunning && !body.isEmpty() && isOneOf(words.at(1), "GMAC")
        && isOneOf(body.first(), "{*}")) {
        patienceLeft->listenOn();
    }
    switch (words.at(1).at(0).unicode()) {
    case 'G':
        readGatherMsg(body);
        break;
    case 'M':
        readMeasMsg(body);
        break;
    case 'A':
        readAnalisisMsg(body);
        break;
    case 'C':
        readConfigMsg(body);
        break;
    default:
        break;
    }
}

void OtdrMeasController::readGatherMsg(QStringList msg)
{
    const QChar marker = takeMarker(msg);
    if (marker == '{') {
        emit started();
    } else if (marker == '}') {
        settle(GatherOutcome::Announced);
        onFinished();
    }
}

void OtdrMeasController::readMeasMsg(QStringList msg)
{
    const QChar marker = takeMarker(msg);
    if (marker == '{') {
        readTraceStart(msg);
    } else if (marker == '}') {
        emit measFinished(num);
    } else if (marker == '*') {
        readTick(msg);
    }
}

void OtdrMeasController::readTraceStart(QStringList words)
{
    if (words.isEmpty()) {
        return;
    }
    const QStringList numbers = words.takeFirst().split('/', Qt::SkipEmptyParts);
    num = numbers.value(0).toInt();
    from = numbers.value(1).toInt();
    params.wavelength = valueOf("wavelength", words).toUShort();
    params.duration = valueOf("duration", words).toInt();
    params.ior = valueOf("ior", words).toDouble();
    params.helix = valueOf("helix", words).toDouble();
    params.distance = valueOf("distance", words).toDouble();
    params.pulse = valueOf("pulse", words).toUShort();
    params.rbs = valueOf("rbs", words).toDouble();
    emit measStarted(num, from, params);
}

void OtdrMeasController::readTick(const QStringList& words)
{
    QVariantMap map;
    for (int i = 0; i + 1 < words.size(); i += 2) {
        map[words.at(i)] = words.at(i + 1);
    }
    if (map.contains("RT")) {
        emit measTick(map.value("RT").toInt(), params.wavelength);
    }
    emit measTick(map);
}

void OtdrMeasController::readAnalisisMsg(QStringList msg)
{
    const QChar marker = takeMarker(msg);
    if (marker == '{') {
        emit analisisStarted();
    } else if (marker == '}') {
        emit analisisFinished();
    } else if (marker == '*') {
        emit wfEventFound(msg.join(' '));
    }
}

void OtdrMeasController::readConfigMsg(QStringList msg)
{
    if (takeMarker(msg) == '*') {
        emit trailsPrepared(msg.value(0).toInt());
    }
}

void OtdrMeasController::onError(QProcess::ProcessError processError)
{
    settle(processError == QProcess::FailedToStart ? GatherOutcome::FailedToStart
                                                   : GatherOutcome::Crashed);
    patienceLeft->stopListening();
    qCritical() << "void OtdrMeasController::onError(QProcess::ProcessError)"
                << process->errorString() << process->exitCode();
    isRunning = false;
    emit error();
}

void OtdrMeasController::onFinished()
{
    settle(GatherOutcome::Exited);
    patienceLeft->stopListening();
    isRunning = false;
    emit finished();
}
