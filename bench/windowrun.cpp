#include "bench/windowrun.h"

#include "tests/support/contents.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QThread>

using testing_support::contents;

namespace {

constexpr int kPatience_ms = 30'000;

/// Time on a processor, ns; that of the main thread.
qint64 cpuTime_ns(qint64 process)
{
    return contents(QString("/proc/%1/schedstat").arg(process)).split(' ').first().toLongLong();
}

/// Of all its threads, in ticks of the system.
qint64 ticks(qint64 process)
{
    constexpr int kUser = 11; // fields behind the name, which is in brackets
    constexpr int kSystem = 12;
    const QByteArray content = contents(QString("/proc/%1/stat").arg(process));
    const QList<QByteArray> fields = content.mid(content.lastIndexOf(')') + 2).split(' ');
    return fields.value(kUser).toLongLong() + fields.value(kSystem).toLongLong();
}

void waitUntilIdle(qint64 process)
{
    constexpr int kLook_ms = 100;
    constexpr int kStill = 4; ///< looks without a tick in between
    for (int still = 0; still < kStill; ++still) {
        const qint64 before = ticks(process);
        QThread::msleep(kLook_ms);
        still = ticks(process) == before ? still : -1;
    }
}

long value_KB(const QByteArray& rollup, const QByteArray& name)
{
    const int at = rollup.indexOf('\n' + name + ':');
    if (at < 0) {
        return 0;
    }
    const int from = at + name.size() + 2;
    return rollup.mid(from, rollup.indexOf('\n', from) - from)
        .simplified()
        .split(' ')
        .first()
        .toLong();
}

} // namespace

WindowRun runWindow(const QStringList& command, const QString& pluginDir, bool rests)
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_PLUGIN_PATH", pluginDir);
    environment.insert("QT_QPA_GENERIC_PLUGINS", "paintteller");
    program.setProcessEnvironment(environment);
    program.setStandardErrorFile(QProcess::nullDevice());

    WindowRun run;
    QElapsedTimer time;
    time.start();
    program.start(command.first(), command.mid(1));
    while (!program.canReadLine() && program.waitForReadyRead(kPatience_ms)) { }
    run.wall_ms = static_cast<double>(time.nsecsElapsed()) / 1e6;
    run.cpu_ms = static_cast<double>(cpuTime_ns(program.processId())) / 1e6;
    const QByteArray said = program.readLine();
    if (said != "painted\n") {
        run.problem = command.first() + " showed no window; " + QString::fromLocal8Bit(said);
    } else if (rests) {
        waitUntilIdle(program.processId());
        const QByteArray rollup =
            contents(QString("/proc/%1/smaps_rollup").arg(program.processId()));
        run.resident_KB = value_KB(rollup, "Rss");
        run.share_KB = value_KB(rollup, "Pss");
    }
    program.terminate();
    program.waitForFinished(kPatience_ms);
    return run;
}
