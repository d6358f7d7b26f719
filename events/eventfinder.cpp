#include "events/eventfinder.h"

#include "events/foundevents.h"
#include "platform/launcher/programs.h"

#include <QDebug>

namespace {

constexpr int kStopPatience_ms = 1000;

// A line is short, and no fibre has so many events; without limits a program gone wild would fill
// the memory.
constexpr qint64 kMostOutput = 1 << 20;
constexpr int kMostErrors = 1 << 16;

const char* textOf(QProcess::ProcessError error)
{
    switch (error) {
    case QProcess::FailedToStart:
        return "Event finder: Error! Process failed to start.";
    case QProcess::Crashed:
        return "Event finder: Error! Process crashed.";
    case QProcess::Timedout:
        return "Event finder: Error! Wait operation timed out.";
    case QProcess::ReadError:
        return "Event finder: Error! Process read error.";
    case QProcess::WriteError:
        return "Event finder: Error! Process write error.";
    case QProcess::UnknownError:
        break;
    }
    return "Event finder: Error! Unknown error.";
}

} // namespace

EventFinder::EventFinder(QObject* parent)
    : QObject(parent)
    , process(new QProcess(this))
    , program(programPath("wfevfind"))
{
    header.initFrom(QString()); // no file yet: logs so
    connect(process,
            SIGNAL(finished( int, QProcess::ExitStatus )),
                   SLOT(onEvFindFinished( int, QProcess::ExitStatus )));
    connect(process,
            SIGNAL(error( QProcess::ProcessError )), SLOT(onError( QProcess::ProcessError )));
    connect(process, SIGNAL(readyReadStandardOutput()), SLOT(limitOutput()));
    connect(process, SIGNAL(readyReadStandardError()), SLOT(keepErrors()));
}

EventFinder::~EventFinder()
{
    process->disconnect(this);
    if (process->state() != QProcess::NotRunning) {
        process->kill();
        process->waitForFinished(kStopPatience_ms);
    }
}

void EventFinder::run(QString fileName, WfMeasParams newParams)
{
    const QStringList arguments {"-i", fileName};
    params = newParams;
    trace = Reflectogram(); // events are not measured against the trace of the last run
    trace.updateFromFile(fileName, params);
    header.initFrom(fileName);
    events.clear();
    errors.clear();
    emit started();
    emit worksNow(true);
    process->start(program, arguments, QIODevice::ReadWrite);
}

int EventFinder::stop()
{
    if (process->state() != QProcess::NotRunning) {
        process->close();
        process->waitForFinished(kStopPatience_ms);
    } else {
        emitFinished();
    }
    return process->exitCode();
}

void EventFinder::emitFinished()
{
    emit finished();
    emit worksNow(false);
}

void EventFinder::onEvFindFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    emitFinished();
    if (exitStatus == QProcess::CrashExit || exitCode != 0) {
        logFailure(exitCode, exitStatus);
        return;
    }
    events = parse(process->readAllStandardOutput());
    addSpanStartEvent(events);
    calcEventsProperties(events);
    const EventList found = events;
    emit eventListReady(found);
    emit eventListReady(eventCoordList(found));
}

void EventFinder::logFailure(int exitCode, QProcess::ExitStatus exitStatus) const
{
    const QString said = QString::fromLocal8Bit(errors);
    if (exitStatus == QProcess::CrashExit) {
        qCritical() << "Event finder: Error! Process crashed!";
    } else {
        qWarning() << "Event finder: Error! Process return code:" << exitCode;
    }
    if (!said.isEmpty()) {
        qCritical() << "Error log" << said;
    }
}

void EventFinder::limitOutput()
{
    if (process->bytesAvailable() > kMostOutput) {
        process->kill();
    }
}

void EventFinder::keepErrors()
{
    errors = (errors + process->readAllStandardError()).right(kMostErrors);
}

void EventFinder::onError(QProcess::ProcessError err)
{
    qCritical() << textOf(err);
    emit error();
    emit worksNow(false);
}

EventList EventFinder::parse(QByteArray output) const
{
    return eventsFromOutput(output, {header, params});
}

void EventFinder::addSpanStartEvent(EventList& list) const
{
    list << spanStartEvent({header, params});
}

void EventFinder::calcEventsProperties(EventList& list)
{
    trace.setEventList(list); // what is measured beside one event keeps clear of the others
    measureEvents(list, trace);
}

EventCoordList eventCoordList(EventList list)
{
    EventCoordList coordinates;
    coordinates.reserve(list.size());
    for (const Event& event : qAsConst(list)) {
        coordinates << event.coordinate;
    }
    return coordinates;
}
