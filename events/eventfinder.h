#pragma once

#include "platform/otdr/event.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wf_packet_header.h"
#include "platform/otdr/wfmeasparams.h"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>

/// Finds the events of a stored trace: runs the event finder program on the trace file and measures
/// what it names.
///
/// One run at a time; a run that fails leaves receivers with the list they have. A program that
/// crashes ends the run twice, as a failure and as an end. One that floods its output is killed,
/// and so has crashed.
class EventFinder : public QObject
{
    Q_OBJECT

public:
    explicit EventFinder(QObject* parent = nullptr);

    /// Ends a program that still runs, without a word.
    ~EventFinder() override;

    /// Starts looking for the events of a snapshot file measured with these parameters. Returns at
    /// once; not to be called during a run.
    void run(QString fileName, WfMeasParams params);

public slots:
    /// Ends the run; where there is none, says that it has ended.
    /// \return the exit code of the process
    int stop();
    void emitFinished();

signals:
    void started();
    void finished();
    void error();
    void worksNow(bool);
    void eventListReady(EventList list);
    void eventListReady(EventCoordList list);

protected slots:
    void onEvFindFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void onError(QProcess::ProcessError err);

private slots:
    void limitOutput();
    void keepErrors();

private:
    [[nodiscard]] EventList parse(QByteArray output) const;
    void addSpanStartEvent(EventList& list) const;
    void calcEventsProperties(EventList& list);
    void logFailure(int exitCode, QProcess::ExitStatus exitStatus) const;

    QProcess* process;
    QString program;
    QByteArray errors; ///< the end of what the program wrote to its standard error
    WfMeasParams params;
    wf_packet_header header;
    Reflectogram trace;
    EventList events; ///< the last result
};

/// The coordinates of the events, m, in the order of the list.
[[nodiscard]] EventCoordList eventCoordList(EventList list);
