#pragma once

#include "tests/support/acquisitiondir.h"
#include "tests/support/tracefiles.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <gmock/gmock.h>

namespace testing_support {

struct Outcome
{
    int code = -1;
    QString out;
    QString err;
};

/// The application as a process, with a home directory of its own.
class Application : public testing::Test
{
protected:
    static QString program() { return QString(WAVEFORM_BIN) + "/waveform"; }

    Outcome run(const QStringList& arguments, const QString& programs = WAVEFORM_BIN) const
    {
        return start(program(), arguments, {{"WAVEFORM_PROGRAMS", programs}});
    }

    /// Runs a program to its end while the events of the test go on.
    /// \param changes of the environment; an empty value removes the variable
    Outcome start(const QString& path, const QStringList& arguments,
                  const QMap<QString, QString>& changes = {}) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", dir.path());
        environment.insert("XDG_RUNTIME_DIR", dir.path());
        environment.remove("XDG_CONFIG_HOME");
        for (auto it = changes.begin(); it != changes.end(); ++it) {
            environment.insert(it.key(), it.value());
            if (it.value().isEmpty()) {
                environment.remove(it.key());
            }
        }
        process.setProcessEnvironment(environment);
        process.start(path, arguments);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 90'000));
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                process.readAllStandardOutput(), process.readAllStandardError()};
    }

    const AcquisitionDir directory;
    const QTemporaryDir dir;
    TraceFiles files;
};

} // namespace testing_support
