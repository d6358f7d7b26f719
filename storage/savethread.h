#pragma once

#include "platform/otdr/reflectogram.h"

#include <QString>
#include <QStringList>
#include <QThread>

namespace Waveform {

/// Writes one trace to its file, has its report made, and copies both to the flash drive, off the
/// GUI thread.
///
/// Fill in the members, start, wait; they are not to be touched in between. A report generator or a
/// copy that does not come to an end is killed on requestInterruption(); the trace is whole by
/// then.
class SaveThread : public QThread
{
    Q_OBJECT

public:
    Reflectogram refl;
    QString sor; ///< path of the trace file to write
    QString html; ///< path of the report to write
    QString flashDir; ///< directory on the flash drive; empty where no copy is wanted
    QString templ; ///< path of the report's template; empty for the generator's own
    int result = -1; ///< of the last step, 0 for success; an invalid trace is never saved

    /// The command line of the report generator.
    [[nodiscard]] static QStringList reportArguments(const QString& sor, const QString& html,
                                                     const QString& templ);

    /// Runs the report generator to its end. Its exit code; -1 where it crashed or was killed, -2
    /// where it could not be started.
    int generateReport(const QString& sor, const QString& html, const QString& templ);

    /// Copies trace, report and the report's picture to the flash drive, as many of them as can be.
    /// Whether all were.
    [[nodiscard]] bool copyFiles() const;

signals:
    void saved(QString sor, QString html, bool success);

protected:
    void run() override;

private:
    [[nodiscard]] int execute(const QString& program, const QStringList& arguments) const;
    [[nodiscard]] bool copyToFlash(const QString& path) const;
};

} // namespace Waveform
