#pragma once

#include "platform/otdr/wfmeasparams.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

/// Runs the acquisition program and turns its messages into signals.
///
/// Messages are separated by ";". What one read delivers is taken as it is: a message cut by the
/// border between two reads arrives as two fragments, each judged alone.
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

    [[nodiscard]] QString snapshotFile() const { return snapshotFileName; }

    [[nodiscard]] QString configFile() const { return configFileName; }

    /// The program that start() runs, with its arguments.
    [[nodiscard]] QString program() const;
    [[nodiscard]] QStringList arguments() const;

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
    void started();
    void trailsPrepared(int count);
    void measStarted(int num, int from, WfMeasParams params);
    void measTick(int rTime, int wavelength);
    void measTick(QVariantMap& data);
    void measFinished(int num);
    void analisisStarted();
    void wfEventFound(QString event);
    void analisisFinished();
    void finished();
    void error();

private slots:
    void readGatherOutput();
    void preprocessMsg(QString msg);
    void readGatherMsg(QStringList msg);
    void readMeasMsg(QStringList msg);
    void readAnalisisMsg(QStringList msg);
    void readConfigMsg(QStringList msg);
    void onError(QProcess::ProcessError processError);
    void onFinished();

private:
    void init();
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
    QTimer* killTimer = nullptr; ///< runs from a stop until the program obeys
};
