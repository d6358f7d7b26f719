#include "storage/savethread.h"

#include "platform/launcher/programs.h"
#include "platform/otdr/wholefile.h"
#include "storage/drivecopy.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace Waveform {

namespace {

/// How often a running generator is looked at for a wish to end it.
constexpr int kLook_ms = 50;

/// How long a killed generator may take to end; one that hangs in the system does not.
constexpr int kKilled_ms = 1000;

constexpr int kCrashed = -1;
constexpr int kNotStarted = -2;

} // namespace

void SaveThread::run()
{
    if (!refl.isValid()) {
        return;
    }
    if (refl.isMeasured()) {
        refl.fillOrl(); // the file has the figures, whether or not a table asked for them
    }
    OTDR::removeLeftovers(QFileInfo(sor).path()); // of saves that were killed
    QString reason;
    result = refl.save(sor, &reason);
    if (result != 0) {
        qDebug() << "can not save" << sor << reason;
    } else {
        result = generateReport(sor, html, templ);
    }
    if (result == 0 && !flashDir.isEmpty()) {
        static_cast<void>(copyFiles()); // all is saved, whatever becomes of the copy
    }
    emit saved(sor, html, result == 0);
}

QStringList SaveThread::reportArguments(const QString& sor, const QString& html,
                                        const QString& templ)
{
    QStringList arguments {"-i", sor, "-o", html};
    if (!templ.isEmpty()) {
        arguments << "-t" << templ;
    }
    return arguments;
}

int SaveThread::generateReport(const QString& sor, const QString& html, const QString& templ)
{
    const QString program = programPath("otdrreport");
    const QStringList arguments = reportArguments(sor, html, templ);
    const int code = execute(program, arguments);
    if (code == 0) {
        return code;
    }
    QDebug log = qDebug();
    log << "Report generator" << program << "with arguments" << arguments.join(", ");
    if (code == kCrashed) {
        log << "crashed";
    } else if (code == kNotStarted) {
        log << "can not be started";
    } else {
        log << "has return code" << code;
    }
    return code;
}

/// What QProcess::execute() does, but for the interruption: that one waits for ever.
int SaveThread::execute(const QString& program, const QStringList& arguments) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setStandardInputFile(QProcess::nullDevice()); // one that reads would wait for ever
    process.start(program, arguments);
    while (process.state() != QProcess::NotRunning && !process.waitForFinished(kLook_ms)) {
        if (isInterruptionRequested()) {
            process.kill();
            process.waitForFinished(kKilled_ms);
            return kCrashed;
        }
    }
    if (process.error() == QProcess::FailedToStart) {
        return kNotStarted;
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : kCrashed;
}

bool SaveThread::copyFiles() const
{
    const QFileInfo report(html);
    const QString picture = report.path() + QDir::separator() + report.completeBaseName() + ".png";
    bool copied = true;
    for (const QString& path : {sor, html, picture}) {
        copied = copyToFlash(path) && copied;
    }
    return copied;
}

bool SaveThread::copyToFlash(const QString& path) const
{
    const QString target = flashDir + QDir::separator() + QFileInfo(path).fileName();
    const QString reason = copyToDrive(path, target, [this] { return isInterruptionRequested(); });
    if (!reason.isEmpty()) {
        qDebug() << "can not copy" << path << "to" << target << reason;
    }
    return reason.isEmpty();
}

} // namespace Waveform
