#pragma once

#include "tests/support/acquisitiondir.h"
#include "tests/support/tracefiles.h"

#include <QProcess>
#include <QTemporaryDir>

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

    Outcome run(const QStringList& arguments, const QString& programs = WAVEFORM_BIN)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("WAVEFORM_PROGRAMS", programs);
        environment.insert("HOME", dir.path());
        environment.remove("XDG_CONFIG_HOME");
        process.setProcessEnvironment(environment);
        process.start(program(), arguments);
        EXPECT_TRUE(process.waitForFinished(90'000));
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                process.readAllStandardOutput(), process.readAllStandardError()};
    }

    const AcquisitionDir directory;
    const QTemporaryDir dir;
    TraceFiles files;
};

} // namespace testing_support
