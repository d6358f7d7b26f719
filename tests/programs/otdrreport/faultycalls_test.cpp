// The program meets a file system that fails it, or its end, at each call of its writing.

#include "tests/support/contents.h"
#include "tests/support/nthcall.h"
#include "tests/support/tracefiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>

namespace {

using testing_support::NthCall;
using testing_support::SorSketch;
using testing_support::TraceFiles;

const QStringList kNames {"out.html", "out.png"};

struct Fault
{
    const char* name;
    QString how;
    QByteArray reason; ///< on standard error
};

struct FaultyOutcome
{
    bool isKilled = false;
    int code = -1;
    QByteArray err;
    QStringList calls;
};

class FaultyReport : public testing::TestWithParam<Fault>
{
protected:
    FaultyReport() { QDir().mkpath(files.path("reports")); }

    [[nodiscard]] QString path(const QString& name) const { return files.path("reports/" + name); }

    [[nodiscard]] QByteArray contents(const QString& name) const
    {
        return testing_support::contents(path(name));
    }

    /// Writes the report where old files stand.
    FaultyOutcome run(int nth, const QString& how) const
    {
        for (const QString& name : kNames) {
            QFile file(path(name));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            file.write("old");
        }
        QProcess process;
        process.setProcessEnvironment(faults.start(nth, how));
        process.start(QStringLiteral(WAVEFORM_BIN "/otdrreport"),
                      {"-i", trace, "-o", path("out.html")});
        EXPECT_TRUE(process.waitForFinished(60'000)) << "it does not end";
        return {process.exitStatus() == QProcess::CrashExit, process.exitCode(),
                process.readAllStandardError(), faults.calls()};
    }

    void expectOldOrNew(const FaultyOutcome& outcome) const
    {
        for (const QString& name : kNames) {
            const bool isNew = contents(name) == wanted[name];
            EXPECT_TRUE(isNew || contents(name) == "old") << qPrintable(name);
            EXPECT_TRUE(isNew || outcome.isKilled || outcome.code != 0)
                << qPrintable(name) << " is not there, and nobody says so";
        }
    }

    TraceFiles files;
    const QString trace = files.write("in.sor", SorSketch::plain());
    const NthCall faults {{files.path("reports")}};
    QHash<QString, QByteArray> wanted;
};

TEST_P(FaultyReport, LeavesEachFileOldOrNewAndSaysWhy)
{
    const QStringList calls = run(0, "").calls;
    ASSERT_GE(calls.count("write"), kNames.size()) << qPrintable(calls.join(' '));
    for (const QString& name : kNames) {
        wanted[name] = contents(name);
        ASSERT_GT(wanted[name].size(), 1000);
    }
    for (int nth = 1; nth <= calls.size() && !HasFailure(); ++nth) {
        if (GetParam().how == "full" && calls[nth - 1] != "write") {
            continue;
        }
        SCOPED_TRACE(std::to_string(nth) + ": " + calls[nth - 1].toStdString());
        const FaultyOutcome outcome = run(nth, GetParam().how);
        ASSERT_GE(outcome.calls.size(), nth) << "the fault never came";
        EXPECT_EQ(outcome.isKilled, GetParam().reason.isEmpty());
        expectOldOrNew(outcome);
        if (outcome.isKilled || outcome.code == 0) {
            continue;
        }
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err.count('\n'), 1) << outcome.err.constData();
        EXPECT_TRUE(outcome.err.contains(GetParam().reason)) << outcome.err.constData();
        EXPECT_TRUE(QDir(files.path("reports"))
                        .entryList({".waveform-*"}, QDir::Files | QDir::Hidden)
                        .isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    OtdrReport, FaultyReport,
    testing::Values(Fault {"NoRoom", QString::number(ENOSPC), std::strerror(ENOSPC)},
                    Fault {"NoRoomFromHereOn", "full", std::strerror(ENOSPC)},
                    Fault {"BrokenDisk", QString::number(EIO), std::strerror(EIO)},
                    Fault {"Killed", "kill", ""}, Fault {"PowerCut", "power", ""}),
    [](const auto& info) { return info.param.name; });

} // namespace
