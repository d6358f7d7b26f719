#include "storage/savethread.h"

#include "platform/launcher/programs.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <unistd.h>

namespace Waveform {

namespace {

/// How often a running generator is looked at for a wish to end it.
constexpr int kLook_ms = 50;

constexpr int kCrashed = -1;
constexpr int kNotStarted = -2;

/// Waits until a file is on its device: whoever is told of the copy may pull the drive.
bool flush(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && ::fsync(file.handle()) == 0;
}

bool isSameFile(const QString& a, const QString& b)
{
    const QString real = QFileInfo(a).canonicalFilePath(); // empty where there is none
    return !real.isEmpty() && real == QFileInfo(b).canonicalFilePath();
}

bool copyTo(const QString& dir, const QString& path)
{
    const QString target = dir + QDir::separator() + QFileInfo(path).fileName();
    if (isSameFile(path, target)) {
        return true; // the drive is where everything is saved; to replace it would lose it
    }
    if (QFile::exists(target)) {
        QFile::remove(target);
    }
    QFile source(path);
    const bool copied = source.copy(target) && flush(target);
    if (!copied) {
        qDebug() << "can not copy" << path << "to" << target << source.errorString();
    }
    return copied;
}

} // namespace

void SaveThread::run()
{
    if (!refl.isValid()) {
        return;
    }
    if (refl.isMeasured()) {
        refl.fillOrl(); // the file has the figures, whether or not a table asked for them
    }
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
    process.start(program, arguments);
    while (process.state() != QProcess::NotRunning && !process.waitForFinished(kLook_ms)) {
        if (isInterruptionRequested()) {
            process.kill();
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
        copied = copyTo(flashDir, path) && copied;
    }
    return copied;
}

} // namespace Waveform
