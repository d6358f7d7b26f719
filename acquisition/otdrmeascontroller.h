#pragma once

#include "acquisition/gatheroutcome.h"
#include "platform/otdr/wfmeasparams.h"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class GatherPatience;

/// Runs the acquisition program and turns its messages into signals.
///
/// Messages are separated by ";". What one read delivers is taken as it is: a message cut by the
/// border between two reads arrives as two fragments, each judged alone.
///
/// A program from which no message comes for a while is asked to end and, like one that does not
/// obey a stop, killed 5 s later.
class OtdrMeasController : public QObject
{
    Q_OBJECT

public:
    explicit OtdrMeasController(QObject* parent);
    OtdrMeasController(QString snapshotFileName, QString configFileName, QString cardInterfaceName,
                       QString pollerInterfaceName, QString errLogFileName, QObject* parent);

    /// Ends a program that still runs: asks, waits a moment, then kills.
    ~OtdrMeasController() override;

    /// From a successful start until the run ends or fails.
    [[nodiscard]] bool running() const { return isRunning; }

    [[nodiscard]] QString configFile() const { return configFileName; }

    /// The program that start() runs, with its arguments.
    [[nodiscard]] QString program() const;
    [[nodiscard]] QStringList arguments() const;

    /// How the last run ended.
    [[nodiscard]] GatherOutcome outcome() const { return ending; }

    /// How long a run may go without a message, and its program may take to leave.
    [[nodiscard]] GatherPatience& patience() { return *patienceLeft; }

    /// The run is over: what its program still says is not listened to, and if it does not leave it
    /// is killed 5 s later.
    void discardRest();

    /// Waits until the process of a run that has announced its end is gone, so that the next can
    /// start; kills one that stays.
    void waitForEnded(int timeout_ms);

public slots:
    void setStartParams(QString snapshotFileName, QString configFileName, QString cardInterfaceName,
                        QString pollerInterfaceName, QString errLogFileName);
    void setSnapshotFileName(QString name);
    void setConfigFileName(QString name);
    void setCardIfaceName(QString name);
    void setPollerIfaceName(QString name);
    void setErrLogFileName(QString name);

    /// \return 0, or -1 where the program does not start within a second
    int start();
    int start(QString snapshotFileName, QString configFileName, QString cardInterfaceName,
              QString pollerInterfaceName, QString errLogFileName);

    /// Asks the program to end; kills it where it has not done so 5 s later. Never waits.
    /// \return the exit code of the process so far
    int stop();

signals:
    // One for each message, in the order of the messages.
    void started();
    void trailsPrepared(int count); ///< so many traces are to be measured
    void measStarted(int num, int from, WfMeasParams params); ///< trace num of from, counted from 1
    void measTick(int rTime, int wavelength); ///< time left of the trace, s; nm
    void measTick(QVariantMap& data); ///< all that the message says: words and their values
    void measFinished(int num);
    void analisisStarted();
    void wfEventFound(QString event); ///< as OTDR::createEventFromString() reads it
    void analisisFinished();
    void finished(); ///< the end was announced, or the program is gone
    void error(); ///< the program did not start, or crashed

private slots:
    void readGatherOutput();
    void preprocessMsg(QString msg);
    void readGatherMsg(QStringList msg);
    void readMeasMsg(QStringList msg);
    void readAnalisisMsg(QStringList msg);
    void readConfigMsg(QStringList msg);
    void onError(QProcess::ProcessError processError);
    void onFinished();
    void readErrors();
    void onSilence();
    void endByForce();

private:
    void init();
    void settle(GatherOutcome::Kind kind);
    void askToEnd();
    void readTraceStart(QStringList words);
    void readTick(const QStringList& words);

    QString snapshotFileName;
    QString configFileName;
    QString cardIfaceName;
    QString pollerIfaceName;
    QString errLogFileName;
    QProcess* process = nullptr;
    int num = 0;
    int from = 0;
    WfMeasParams params;
    bool isRunning = false;
    GatherOutcome ending;
    QByteArray errors; ///< the end of what the program wrote to its standard error
    bool discarding = false;
    GatherPatience* patienceLeft = nullptr;
};
