#pragma once

#include "acquisition/gatherpatience.h"
#include "acquisition/model.h"
#include "acquisition/otdrmeascontroller.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/zuconfig.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <fstream>
#include <memory>

namespace testing_support {

using Waveform::Model;

/// The measurement model with programs that fail; after each fault the model has to be idle, to
/// have said why, and to be good for the next run.
class FaultyRun : public testing::Test
{
protected:
    FaultyRun() { make(); }

    void make()
    {
        model = std::make_unique<Model>(&card);
        started = std::make_unique<QSignalSpy>(model.get(), SIGNAL(started(MeasModel*)));
        stopped = std::make_unique<QSignalSpy>(model.get(), SIGNAL(stopped(MeasModel*)));
        measured =
            std::make_unique<QSignalSpy>(model.get(), SIGNAL(measured(QString, WfMeasParams)));
    }

    GatherPatience& patience() const { return model->findChild<OtdrMeasController*>()->patience(); }

    static QString traceStart()
    {
        return "printf '2 M { 1/1 wavelength 1550 duration 15 ior 1.4682 helix 0 "
               "distance 5000 pulse 100 rbs -81.9;'; sleep 0.1;";
    }

    /// Shell words that put a file in place of the snapshot as the acquisition program does.
    static QString put(const QString& file)
    {
        return QString("mkdir -p /tmp/user/.wfgather; cp %1 /tmp/user/.wfgather/new; "
                       "mv /tmp/user/.wfgather/new /tmp/user/wfsnapshot.bin; sleep 0.1;")
            .arg(file);
    }

    QString snapshot(const TraceBuilder& builder = TraceBuilder().fibre(2_km))
    {
        return put(files.writeSnapshot(QString("made%1.bin").arg(++snapshots), builder));
    }

    bool waitForStop(int patience_ms = 15000) const
    {
        return QTest::qWaitFor([this] { return !stopped->isEmpty(); }, patience_ms);
    }

    /// Runs a script as the acquisition program to the end of the run; what the model says of it.
    QString failureOf(const QString& script)
    {
        programs.make("wfgather", script);
        return failureOfRun();
    }

    QString failureOfRun(int patience_ms = 15000)
    {
        started->clear();
        stopped->clear();
        measured->clear();
        EXPECT_EQ(model->start(0), 0);
        EXPECT_TRUE(waitForStop(patience_ms)) << "the run does not end";
        QTest::qWait(50); // what comes late must not make it a second end
        expectIdle();
        return model->failure();
    }

    void expectIdle() const
    {
        EXPECT_FALSE(model->running());
        EXPECT_FALSE(model->isStarted());
        EXPECT_EQ(started->size(), 1);
        EXPECT_EQ(stopped->size(), 1);
        const QString settings = model->findChild<OtdrMeasController*>()->configFile();
        EXPECT_FALSE(QFile::exists(settings)) << "the settings file is left";
    }

    static double residentMegabytes()
    {
        std::ifstream file("/proc/self/statm");
        double total = 0.0;
        double resident = 0.0;
        file >> total >> resident;
        return resident * 4096.0 / 1e6;
    }

    /// A run as it should be, with a double, and with time to begin in on a busy machine.
    void expectGoodRun()
    {
        patience().setSilenceLimit(30000);
        EXPECT_EQ(failureOf("printf '1 G {;'; sleep 0.1;" + traceStart() + snapshot()
                            + "printf '3 M * RT 14 ET 1;4 M };5 A {;6 A };7 G };'"),
                  "");
        EXPECT_EQ(measured->size(), 1);
    }

    /// The program that dies is logged.
    static void expectCrashLogged()
    {
        expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    }

    const AcquisitionDir directory;
    const ConfigHome home;
    const FakePrograms programs;
    TraceFiles files;
    CardController card;
    std::unique_ptr<Model> model;
    std::unique_ptr<QSignalSpy> started;
    std::unique_ptr<QSignalSpy> stopped;
    std::unique_ptr<QSignalSpy> measured;
    int snapshots = 0;
};

/// The same with the real acquisition program, as fast as it can.
class FaultyRealRun : public FaultyRun
{
protected:
    FaultyRealRun()
    {
        qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN); // until the doubles are put away
        set("Simulation", "timeScale", 0);
        set("Simulation", "seed", 1);
        set("MeasParams", "duration", 3);
    }

    static void set(const char* section, const char* key, const QVariant& value)
    {
        ZuConfig::setForThisRun("zuotdr", section, key, value);
    }

    void expectGoodRealRun()
    {
        EXPECT_EQ(failureOfRun(), "") << qPrintable(model->failure());
        EXPECT_GE(measured->size(), 1);
        const Reflectogram refl(AcquisitionDir::snapshot(), model->currentParams());
        EXPECT_TRUE(refl.isValid()) << qPrintable(refl.error());
    }
};

} // namespace testing_support
