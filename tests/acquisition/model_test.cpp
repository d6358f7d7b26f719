#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/dataproxy.h"
#include "platform/launcher/zuconfigmodel.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QSettings>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace testing_support; // doubles, builder and units
using Waveform::Model;

const char* const kTraceStart = "printf '2 M { 1/1 wavelength 1550 duration 15 ior 1.4682 helix 0 "
                                "distance 5000 pulse 100 rbs -81.9;';";

class Measurement : public testing::Test
{
protected:
    Measurement()
        : config(ZuConfigModel::instance(&card, "zuotdr"))
    {
        make();
    }

    ~Measurement() override
    {
        model.reset();
        config->freeLater();
    }

    void make()
    {
        model = std::make_unique<Model>(&card);
        measured =
            std::make_unique<QSignalSpy>(model.get(), SIGNAL(measured(QString, WfMeasParams)));
        started = std::make_unique<QSignalSpy>(model.get(), SIGNAL(started(MeasModel*)));
        stopped = std::make_unique<QSignalSpy>(model.get(), SIGNAL(stopped(MeasModel*)));
    }

    /// Shell words that put a snapshot of this fibre in place as the acquisition program does.
    QString putSnapshot(const TraceBuilder& builder)
    {
        const QString made = files.writeSnapshot(QString("made%1.bin").arg(++snapshots), builder);
        return QString("mkdir -p /tmp/user/.wfgather; cp %1 /tmp/user/.wfgather/new; "
                       "mv /tmp/user/.wfgather/new /tmp/user/wfsnapshot.bin;")
            .arg(made);
    }

    void put(const TraceBuilder& builder)
    {
        QProcess::execute("/bin/sh", {"-c", putSnapshot(builder)});
    }

    bool waitForStop()
    {
        return QTest::qWaitFor([this] { return !stopped->isEmpty(); }, 15000);
    }

    QStringList leftSettings()
    {
        return QDir(QDir::tempPath()).entryList({"otdrcfg-*"}, QDir::Files);
    }

    const AcquisitionDir directory;
    const ConfigHome home;
    const FakePrograms programs;
    TraceFiles files;
    CardController card;
    ZuConfigModel* config;
    std::unique_ptr<Model> model;
    std::unique_ptr<QSignalSpy> measured;
    std::unique_ptr<QSignalSpy> started;
    std::unique_ptr<QSignalSpy> stopped;
    int snapshots = 0;
};

TEST_F(Measurement, StartsFromTheInitialParameters)
{
    const WfMeasParams params = model->currentParams();
    EXPECT_EQ(params.ior, 1.5);
    EXPECT_EQ(params.helix, 0.0);
    EXPECT_EQ(params.distance, 10000.0);
    EXPECT_EQ(params.wavelength, 1310);
    EXPECT_EQ(params.pulse, 1000);
    EXPECT_EQ(params.rbs, -66.3);
    EXPECT_EQ(params.duration, 15);
    EXPECT_FALSE(model->running());
}

TEST_F(Measurement, TemporaryFilesLieInTheUsersDirectory)
{
    EXPECT_EQ(model->tempDir().absolutePath(), "/tmp/user");
    EXPECT_EQ(model->tmpFileName("/wf.cfg"), "/tmp/user/wf.cfg");
    EXPECT_EQ(model->waveformSnapshotName(), "/tmp/user/wfsnapshot.bin");
}

TEST_F(Measurement, TemporaryDirectoryIsMadeForAnotherUser)
{
    const QString user = "waveform-test-user";
    qputenv("USER", user.toLatin1());
    EXPECT_EQ(model->tempDir().absolutePath(), "/tmp/" + user);
    EXPECT_TRUE(QDir("/tmp/" + user).exists());
    QDir().rmdir("/tmp/" + user);
}

TEST_F(Measurement, TemporaryDirectoryThatCannotBeMadeFallsBackToItsParent)
{
    qputenv("USER", "no/such/parent");
    EXPECT_EQ(model->tempDir().absolutePath(), "/tmp");
    EXPECT_TRUE(logged("tempDir : Can't create directory ' \"/tmp/no/such/parent\" '"))
        << qPrintable(messages());
    EXPECT_TRUE(logged("tempDir : Using ' \"/tmp\" ' as temporary dir"));
}

TEST_F(Measurement, OldErrorLogIsRemoved)
{
    const QString name = "/tmp/user/wfgather.log";
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    model->setTmpFiles();
    EXPECT_FALSE(QFile::exists(name));
}

TEST_F(Measurement, ConfiguredParametersAreRead)
{
    config->setting("pulse", "MeasParams")->tryChange(30);
    config->setting("wavelength", "MeasParams")->tryChange(1550);
    config->setting("distance", "MeasParams")->tryChange(20000);
    EXPECT_EQ(model->pulse(), 30);
    EXPECT_EQ(model->wavelength(), 1550);
    EXPECT_EQ(model->distance(), 20000.0);
    EXPECT_EQ(model->setting("nothing", "MeasParams", "2.5"), 2.5);
}

TEST_F(Measurement, WavelengthIsRoundedPulseIsTruncatedAndBothWavelengthsReadZero)
{
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("1549.5");
    ZuConfig("zuotdr", "MeasParams", "pulse").store("99.9");
    EXPECT_EQ(model->wavelength(), 1550);
    EXPECT_EQ(model->pulse(), 99);
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("1549.4");
    EXPECT_EQ(model->wavelength(), 1549);
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("all");
    EXPECT_EQ(model->wavelength(), 0);
}

TEST_F(Measurement, ConfiguredNonsenseStaysWithinSixteenBits)
{
    const std::pair<const char*, int> cases[] = {
        {"1e9", 65535}, {"-5", 0}, {"nan", 0}, {"blue", 0}, {"65535", 65535}};
    for (const auto& [text, number] : cases) {
        ZuConfig("zuotdr", "MeasParams", "pulse").store(text);
        ZuConfig("zuotdr", "MeasParams", "wavelength").store(text);
        EXPECT_EQ(model->pulse(), number) << text;
        EXPECT_EQ(model->wavelength(), number) << text;
    }
}

TEST_F(Measurement, WhatIsNotConfiguredHasItsDefault)
{
    QFile::remove(home.file("zuotdr"));
    EXPECT_EQ(model->wavelength(), 1310);
    EXPECT_EQ(model->pulse(), 100);
    EXPECT_EQ(model->ior(), 1.49);
    EXPECT_EQ(model->helix(), 0.0);
    EXPECT_EQ(model->distance(), 75000.0);
    EXPECT_STREQ(Waveform::defRBS, "-66.30");
    EXPECT_STREQ(Waveform::defDuration, "15");
}

TEST_F(Measurement, GroupIndexIsThatOf1310WhateverTheWavelength)
{
    ZuConfig("zuotdr", "MeasParams", "ior1310").store("1.4711");
    ZuConfig("zuotdr", "MeasParams", "ior1550").store("1.4822");
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("1550");
    EXPECT_EQ(model->ior(), 1.4711);
}

TEST_F(Measurement, SettingsFileHoldsTheWholeConfiguration)
{
    config->setting("pulse", "MeasParams")->tryChange(30);
    ZuConfig::setForThisRun("zuotdr", "Simulation", "seed", 7);
    const QString one = model->summCfgFileName();
    const QString two = model->summCfgFileName();
    EXPECT_NE(one, two);
    EXPECT_TRUE(one.startsWith("/tmp/otdrcfg-"));
    const QSettings written(one, QSettings::NativeFormat);
    EXPECT_EQ(written.value("MeasParams/pulse").toInt(), 30);
    EXPECT_EQ(written.value("Simulation/seed").toInt(), 7);
    QFile::remove(one);
    QFile::remove(two);
}

TEST_F(Measurement, SnapshotCheckTellsMissingEmptyNewAndKnown)
{
    EXPECT_EQ(model->checkWFSnapshot(), 3);
    QFile file(AcquisitionDir::snapshot());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(model->checkWFSnapshot(), 3);
    file.write("one");
    file.flush();
    EXPECT_EQ(model->checkWFSnapshot(), 0);
    EXPECT_EQ(model->checkWFSnapshot(), 1);
    file.write("two");
    file.flush();
    EXPECT_EQ(model->checkWFSnapshot(), 0);
}

TEST_F(Measurement, SameSnapshotIsAnnouncedOnceAndAnewAfterAStart)
{
    QFile file(AcquisitionDir::snapshot());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("one");
    file.close();
    QMetaObject::invokeMethod(model.get(), "notifyMeasured");
    QMetaObject::invokeMethod(model.get(), "notifyMeasured");
    ASSERT_EQ(measured->size(), 1);
    EXPECT_EQ(measured->first().first().toString(), AcquisitionDir::snapshot());

    programs.make("wfgather", "printf '1 G {;2 G };'");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    measured->clear();
    QMetaObject::invokeMethod(model.get(), "notifyMeasured");
    EXPECT_EQ(measured->size(), 1);
}

TEST_F(Measurement, EmptySnapshotIsNotAnnounced)
{
    QFile file(AcquisitionDir::snapshot());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    QMetaObject::invokeMethod(model.get(), "notifyMeasured");
    EXPECT_EQ(measured->size(), 0);
}

TEST_F(Measurement, RunAnnouncesItsTraceWithItsParameters)
{
    programs.make("wfgather",
                  QString("printf '1 G {;'; sleep 0.1; %1 sleep 0.2; %2 sleep 0.2; "
                          "printf '3 M * RT 14 ET 1;'; sleep 0.1; "
                          "printf '4 M };5 A {;6 A };7 G };'")
                      .arg(kTraceStart, putSnapshot(TraceBuilder().fibre(2_km))));
    QSignalSpy events(model.get(), SIGNAL(eventListReady(EventList)));
    QSignalSpy ticks(model.get(), SIGNAL(measTick(int, int)));
    QSignalSpy button(model.get(), SIGNAL(setActionButtonEnabled(bool)));
    ASSERT_EQ(model->start(0), 0);
    EXPECT_TRUE(model->running());
    ASSERT_TRUE(waitForStop());
    QTest::qWait(50);

    EXPECT_EQ(started->size(), 1);
    EXPECT_EQ(stopped->size(), 1);
    ASSERT_EQ(measured->size(), 1);
    const auto params = measured->first().at(1).value<WfMeasParams>();
    EXPECT_EQ(params.wavelength, 1550);
    EXPECT_EQ(params.distance, 5000.0);
    EXPECT_EQ(params.duration, 0); // no second had been measured yet
    EXPECT_EQ(events.size(), 1);
    ASSERT_EQ(ticks.size(), 1);
    EXPECT_EQ(ticks.first(), QVariantList({14, 1550}));
    EXPECT_EQ(model->duration(), 1);
    ASSERT_EQ(button.size(), 1);
    EXPECT_FALSE(button.first().first().toBool());
    EXPECT_FALSE(model->running());
}

TEST_F(Measurement, EventsOfTheLastAnalysisComeAsOneList)
{
    programs.make(
        "wfgather",
        QString(
            "printf '1 G {;1 A {;1 A * n position 7;'; %1 sleep 0.1; %2 sleep 0.1; printf '4 M };5 "
            "A {;"
            "6 A * s position 0;7 A * r position 1000 loss 0.25 reflectance -45.5;8 A };9 G };'")
            .arg(kTraceStart, putSnapshot(TraceBuilder().fibre(2_km))));
    QSignalSpy lists(model.get(), SIGNAL(eventListReady(EventList)));
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    ASSERT_EQ(lists.size(), 1);
    const auto events = lists.first().first().value<EventList>();
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events[0].type, Event::SpanStart);
    EXPECT_EQ(events[1].position, 1000);
    EXPECT_EQ(events[1].reflectance, -45.5);
    // Without a coordinate of its own the event stands where the trace has its sample.
    EXPECT_NEAR(events[1].coordinate, 1000 * 10.0 * 0.299792458 / (2 * 1.4682), 1e-6);
}

TEST_F(Measurement, SnapshotOutsideARunIsNotAnnounced)
{
    put(TraceBuilder().fibre(1_km));
    QTest::qWait(200);
    EXPECT_EQ(measured->size(), 0);
    QFile::remove(AcquisitionDir::snapshot());
    QTest::qWait(100);
    EXPECT_FALSE(logged("no refl file"));
}

TEST_F(Measurement, ChangeOfTheDirectoryWithoutASnapshotIsOnlyLogged)
{
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1; touch /tmp/user/other; sleep 0.2; "
                  "rm /tmp/user/other; printf '2 G };'");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    EXPECT_TRUE(logged("no refl file"));
    EXPECT_EQ(measured->size(), 0);
}

TEST_F(Measurement, DirectoryRemovedBetweenRunsIsMadeAndWatchedAgain)
{
    QDir(AcquisitionDir::path()).removeRecursively();
    ASSERT_TRUE(QTest::qWaitFor([] { return !QDir(AcquisitionDir::path()).exists(); }, 1000));
    QTest::qWait(50); // until the watcher knows
    programs.make("wfgather",
                  QString("printf '1 G {;'; %1 sleep 0.1; %2 sleep 0.2; printf '7 G };'")
                      .arg(kTraceStart, putSnapshot(TraceBuilder().fibre(2_km))));
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(measured->size(), 1);
}

TEST_F(Measurement, SettingsFileIsThereDuringTheRunAndGoneAfterIt)
{
    const QStringList before = leftSettings();
    const QString copy = files.path("settings");
    programs.make("wfgather", "cp \"$4\" " + copy + "; printf '1 G {;2 G };'");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    EXPECT_TRUE(QSettings(copy, QSettings::NativeFormat).contains("MeasParams/pulse"));
    EXPECT_EQ(leftSettings(), before);
}

TEST_F(Measurement, CardThatRefusesTheFibreCheckStopsTheStart)
{
    card.setRefusal("check fiber", -7);
    expectWarning("virtual int Waveform::Model::start(unsigned int) can not start \"check fiber\"");
    EXPECT_EQ(model->start(0), -7);
    EXPECT_FALSE(model->running());
    EXPECT_EQ(started->size(), 1);
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_TRUE(model->failure().contains("check fiber"));
}

TEST_F(Measurement, SettingsFileOfARefusedStartIsRemovedByTheNext)
{
    const QStringList before = leftSettings();
    card.setRefusal("check fiber", -7);
    expectWarning("can not start");
    model->start(0);
    expectWarning("can not start");
    model->start(0);
    EXPECT_EQ(leftSettings().size(), before.size() + 1);
    model.reset();
    EXPECT_EQ(leftSettings(), before);
}

TEST_F(Measurement, MissingProgramFailsTheStartAndLeavesTheModelIdleOnce)
{
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    expectWarning("int OtdrMeasController::start()");
    expectWarning("can not start");
    EXPECT_EQ(model->start(0), -1);
    EXPECT_TRUE(logged("can not start \"" + programs.path("wfgather")
                       + "\" -w \"/tmp/user/wfsnapshot.bin\" -i \"/tmp/otdrcfg-"))
        << qPrintable(messages());
    EXPECT_FALSE(model->running());
    EXPECT_EQ(started->size(), 1);
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_TRUE(model->failure().contains("wfgather"));
}

TEST_F(Measurement, ProgramThatDiesStopsTheRunOnce)
{
    programs.make("wfgather", "printf '1 G {;'; sleep 0.1; kill -KILL $$");
    ASSERT_EQ(model->start(0), 0);
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    ASSERT_TRUE(waitForStop());
    QTest::qWait(100);
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_FALSE(model->running());
}

TEST_F(Measurement, NextRunMayBeStartedRightAfterTheLastMessageOfTheOld)
{
    programs.make("wfgather", "printf '1 G {;2 G };'; sleep 0.3");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    stopped->clear();
    programs.make("wfgather", "printf '1 G {;'; sleep 0.5; printf '2 G };'");
    ASSERT_EQ(model->start(0), 0);
    QTest::qWait(200);
    EXPECT_TRUE(model->running()) << "the end of the old process stopped the new run";
    EXPECT_EQ(stopped->size(), 0);
    ASSERT_TRUE(waitForStop());
}

TEST_F(Measurement, TicksReachTheObserversOfTheCard)
{
    DataProxy proxy;
    card.registerProxy("I", &proxy);
    QVariantMap seen;
    QObject::connect(&proxy, &DataProxy::updated, [&](QVariantMap& map, const QString& channel) {
        EXPECT_EQ(channel, "I");
        seen = map;
    });
    programs.make("wfgather", "printf '1 G {;2 M * RT 3 X 4;3 G };'");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(seen.value("X").toString(), "4");
}

TEST_F(Measurement, CardPulledDuringARunStopsItAndIsReportedOnce)
{
    QSignalSpy lost(model.get(), SIGNAL(cardLost()));
    programs.make("wfgather",
                  "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;'; "
                  "while true; do sleep 0.05; done");
    ASSERT_EQ(model->start(0), 0);
    QTest::qWait(200);
    card.unplug();
    ASSERT_TRUE(waitForStop());
    QTest::qWait(100);
    EXPECT_EQ(lost.size(), 1);
    EXPECT_TRUE(logged("void Waveform::Model::onGatherFinished() cadr disconnected"));
}

TEST_F(Measurement, CardThatComesBackIsUsedAgain)
{
    card.unplug();
    card.setRevision("9.9");
    card.plug();
    EXPECT_TRUE(model->supParams().moduleId.endsWith(" 9.9"));
    EXPECT_EQ(config->value("CardInfo", "HardwareRevision").toString(), "9.9");
    programs.make("wfgather", "printf '1 G {;2 G };'");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(waitForStop());
    EXPECT_FALSE(logged("cadr disconnected"));
}

TEST_F(Measurement, SupplierParametersComeFromEnvironmentAndCard)
{
    qputenv("VENDOR_SUPPLIER_NAME", "Supplier");
    qputenv("DEVICE_PLATFORM_NAME", "Platform");
    make();
    const SupParamsBlock sup = model->supParams();
    EXPECT_EQ(sup.supplierName, "Supplier");
    EXPECT_EQ(sup.mainframeId, "Platform "); // no information file here
    EXPECT_EQ(sup.mainframeSerial, "");
    EXPECT_EQ(sup.moduleId, ("Zu-" + card.name().toUpper() + " " + card.revision()).toLatin1());
    EXPECT_EQ(sup.moduleSerial, card.serial().toLatin1());
    EXPECT_TRUE(sup.softwareRevision.contains('/'));
    EXPECT_FALSE(sup.softwareRevision.contains("MCU"));
    EXPECT_FALSE(sup.softwareRevision.contains("FPGA"));
    EXPECT_TRUE(sup.other.startsWith("Calibration info: "));
    qunsetenv("VENDOR_SUPPLIER_NAME");
    qunsetenv("DEVICE_PLATFORM_NAME");
}

TEST_F(Measurement, SnapshotOfAnEarlierProcessIsClearedAway)
{
    put(TraceBuilder().fibre(1_km));
    model->init();
    EXPECT_FALSE(QFile::exists(AcquisitionDir::snapshot()));
}

} // namespace
