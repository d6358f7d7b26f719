// The measurement model's promises to the window and the keeper, one by one.

#include "acquisition/model.h"
#include "acquisition/otdrmeascontroller.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/dataproxy.h"
#include "platform/launcher/zuconfigmodel.h"
#include "platform/sysinfo/sysinforeader.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/metamethods.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTimerEvent>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace testing_support; // doubles, builder and units
using Waveform::Model;

/// Writes down what the model announces, as long as it lives.
void writeDown(Model& model, QStringList& all)
{
    const auto note = [&](auto signal, const QString& text) {
        QObject::connect(&model, signal, [&all, text] { all << text; });
    };
    note(qOverload<MeasModel*>(&MeasModel::started), "started");
    note(&Model::measStarted, "trace");
    note(&Model::measFinished, "trace end");
    note(&Model::analisisStarted, "analysis");
    note(&Model::analisisFinished, "analysis end");
    note(qOverload<MeasModel*>(&MeasModel::stopped), "stopped");
    QObject::connect(&model, &Model::setActionButtonEnabled,
                     [&](bool on) { all << (on ? "button on" : "button off"); });
    QObject::connect(&model, &Model::measTick, [&](int rTime, int wavelength) {
        all << QString("%1 %2").arg(rTime).arg(wavelength);
    });
    QObject::connect(&model, &Model::eventListReady,
                     [&](const EventList& list) { all << QString("%1 events").arg(list.size()); });
}

class ModelRules : public testing::Test
{
protected:
    ModelRules() { make(); }

    void make()
    {
        model = std::make_unique<Model>(&card);
        measured =
            std::make_unique<QSignalSpy>(model.get(), SIGNAL(measured(QString, WfMeasParams)));
        stopped = std::make_unique<QSignalSpy>(model.get(), SIGNAL(stopped(MeasModel*)));
    }

    void run(const QString& script)
    {
        programs.make("wfgather", script);
        ASSERT_EQ(model->start(0), 0);
        waitForStop();
    }

    void waitForStop() const
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !stopped->isEmpty(); }, 15'000));
    }

    /// Shell words that rename a copy of a file to the snapshot's place.
    QString rename(const QString& file) const
    {
        return QString("mkdir -p /tmp/user/.wfgather; cp %1 /tmp/user/.wfgather/new; "
                       "mv /tmp/user/.wfgather/new %2; sleep 0.2;")
            .arg(file, AcquisitionDir::snapshot());
    }

    int notify() const
    {
        int result = -1;
        QMetaObject::invokeMethod(model.get(), "notifyMeasured", Q_RETURN_ARG(int, result));
        return result;
    }

    static void writeSnapshot(const QByteArray& bytes)
    {
        QFile file(AcquisitionDir::snapshot());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    const AcquisitionDir directory;
    const ConfigHome home;
    const FakePrograms programs;
    TraceFiles files;
    CardController card;
    std::unique_ptr<Model> model;
    std::unique_ptr<QSignalSpy> measured;
    std::unique_ptr<QSignalSpy> stopped;
};

TEST_F(ModelRules, SignalsAndSlotsAreTheAgreedOnes)
{
    const QStringList signalsInOrder = {
        "signal measured(QString reflFileName, WfMeasParams params)",
        "signal measTick(int rTime, int wavelength)",
        "signal analisisStarted()",
        "signal analisisFinished()",
        "signal eventListReady(EventList _evList)",
        "signal measStarted()",
        "signal measFinished()",
        "signal setActionButtonEnabled(bool enabled)",
    };
    EXPECT_EQ(agreedMethods(Model::staticMetaObject, signalsInOrder), signalsInOrder);
    const QMetaObject& type = Model::staticMetaObject;
    for (const char* slot :
         {"stopped(QString)", "onCardConnected(CardController*)",
          "onCardDisconnected(CardController*)", "onGatherStarted()",
          "onMeasStarted(int,int,WfMeasParams)", "onMeasFinished(int)", "onAnalisisStarted()",
          "onEventFound(QString)", "onAnalisisFinished()", "onGatherFinished()", "notifyMeasured()",
          "updated(QVariantMap&)", "directoryChanged(QString)"}) {
        EXPECT_GE(type.indexOfSlot(slot), 0) << slot;
    }
}

TEST_F(ModelRules, FollowsItsControllerAndItsCard)
{
    auto* controller = model->findChild<OtdrMeasController*>();
    ASSERT_NE(controller, nullptr);
    EXPECT_EQ(controller->parent(), model.get());
    const std::pair<const char*, const char*> links[] = {
        {SIGNAL(started()), SLOT(onGatherStarted())},
            {SIGNAL(measTick(QVariantMap&)), SLOT(updated(QVariantMap&))},
                {SIGNAL(finished()), SLOT(onGatherFinished())},
                    {SIGNAL(error()), SLOT(onGatherFinished())},
                        {SIGNAL(measTick(int, int)), SIGNAL(measTick(int, int))},
                            {SIGNAL(analisisStarted()), SIGNAL(analisisStarted())},
                                {SIGNAL(analisisStarted()), SLOT(onAnalisisStarted())},
                                    {SIGNAL(analisisFinished()), SIGNAL(analisisFinished())},
                                            {SIGNAL(analisisFinished()), SLOT(onAnalisisFinished())},
                                                {SIGNAL(wfEventFound(QString)),
                                                    SLOT(onEventFound(QString))},
                                                    {SIGNAL(measStarted(int, int, WfMeasParams)),
                                                            SLOT(onMeasStarted(int, int, WfMeasParams))},
                                                            {SIGNAL(measFinished(int)),
                                                                    SLOT(onMeasFinished(int))},
                                                            };
    for (const auto& [signal, slot] : links) {
        EXPECT_TRUE(QObject::disconnect(controller, signal, model.get(), slot)) << signal << slot;
    }
    const std::pair<const char*, const char*> ofTheCard[] = {
        {SIGNAL(configUpdated(QVariantMap&)), SLOT(configUpdated(QVariantMap&))},
                {SIGNAL(connected(CardController*)), SLOT(onCardConnected(CardController*))},
                        {SIGNAL(disconnected(CardController*)),
                                SLOT(onCardDisconnected(CardController*))},
                        };
    for (const auto& [signal, slot] : ofTheCard) {
        EXPECT_TRUE(QObject::disconnect(&card, signal, model.get(), slot)) << signal << slot;
    }
}

TEST_F(ModelRules, DefaultsAreGivenAsText)
{
    EXPECT_STREQ(Waveform::defPulse, "100");
    EXPECT_STREQ(Waveform::defIOR, "1.49");
    EXPECT_STREQ(Waveform::defHelix, "0");
    EXPECT_STREQ(Waveform::defDistance, "75000");
    EXPECT_STREQ(Waveform::defRBS, "-66.30");
    EXPECT_STREQ(Waveform::defDuration, "15");
    EXPECT_STREQ(Waveform::defWavelength, "1310");
}

TEST_F(ModelRules, AnnouncesTheStepsOfARunInOrder)
{
    QStringList heard;
    writeDown(*model, heard);
    run("printf '1 G {;2 M { 1/1 wavelength 1550 duration 1 ior 1.5 helix 0 distance 5000 pulse "
        "100 "
        "rbs -80;3 M * RT 7;4 M };5 A {;6 A * s position 0;7 A };8 G };'");
    EXPECT_EQ(heard,
              QStringList({"started", "button off", "trace", "7 1550", "trace end", "analysis",
                           "analysis end", "1 events", "stopped"}));
}

TEST_F(ModelRules, ParametersAreThoseOfTheTraceInProgress)
{
    run("printf '1 G {;2 M { 1/1 wavelength 1550 duration 30 ior 1.46 helix 0.5 distance 5000 "
        "pulse 275 rbs -80;4 M };8 G };'");
    const WfMeasParams params = model->currentParams();
    EXPECT_EQ(params.wavelength, 1550);
    EXPECT_EQ(params.duration, 30) << "only what is announced carries the time measured";
    EXPECT_EQ(params.ior, 1.46);
    EXPECT_EQ(params.helix, 0.5);
    EXPECT_EQ(params.distance, 5000.0);
    EXPECT_EQ(params.pulse, 275);
    EXPECT_EQ(params.rbs, -80.0);
}

TEST_F(ModelRules, StartDuringARunIsRefusedAndTheRunGoesOn)
{
    const QString copy = files.path("settings");
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.6; cp \"$4\" " + copy + "; printf '2 G };'");
    ASSERT_EQ(model->start(0), 0);
    EXPECT_LT(model->start(0), 0);
    EXPECT_FALSE(model->failure().isEmpty());
    EXPECT_TRUE(model->running());
    EXPECT_EQ(stopped->size(), 0);
    waitForStop();
    EXPECT_TRUE(QFile::exists(copy)) << "the settings file of the run was taken from it";
    EXPECT_EQ(stopped->size(), 1);
    stopped->clear();
    run("printf '1 G {;2 G };'");
}

TEST_F(ModelRules, StopAnswersZeroWhetherSomethingRunsOrNot)
{
    EXPECT_EQ(model->stop(QString()), 0);
    programs.make("wfgather",
                  "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;'; "
                  "while true; do sleep 0.05; done");
    ASSERT_EQ(model->start(0), 0);
    QTest::qWait(200);
    EXPECT_EQ(model->stop(QString()), 0);
    waitForStop();
}

TEST_F(ModelRules, SettingsFileIsNamedByADecimalNumber)
{
    const QString name = model->summCfgFileName();
    EXPECT_TRUE(QRegularExpression("^/tmp/otdrcfg-[0-9]+$").match(name).hasMatch())
        << qPrintable(name);
    QFile::remove(name);
}

TEST_F(ModelRules, FilesOfTheRunAreHandedToTheController)
{
    const auto* controller = model->findChild<OtdrMeasController*>();
    EXPECT_EQ(controller->arguments().value(1), "/tmp/user/wfsnapshot.bin");
    EXPECT_EQ(model->tmpFileName("/a"), "/tmp/user/a");
}

TEST_F(ModelRules, SnapshotThatCannotBeReadIsToldApart)
{
    ASSERT_TRUE(QDir().mkdir(AcquisitionDir::snapshot())); // which root cannot open either
    EXPECT_EQ(model->checkWFSnapshot(), 2);
    EXPECT_EQ(notify(), 2);
    EXPECT_EQ(measured->size(), 0);
    QDir().rmdir(AcquisitionDir::snapshot());
}

TEST_F(ModelRules, NotificationAnswersWhatTheCheckFound)
{
    EXPECT_EQ(notify(), 3);
    writeSnapshot("one");
    EXPECT_EQ(notify(), 0);
    EXPECT_EQ(notify(), 1);
    ASSERT_EQ(measured->size(), 1);
    EXPECT_EQ(measured->first().at(1).value<WfMeasParams>().duration, model->duration());
}

TEST_F(ModelRules, OnlyItsOwnTimerLooksForASnapshot)
{
    writeSnapshot("one");
    QTimerEvent foreign(4711);
    QCoreApplication::sendEvent(model.get(), &foreign);
    EXPECT_EQ(measured->size(), 0);
    QTimerEvent own(-1); // no timer was started
    QCoreApplication::sendEvent(model.get(), &own);
    EXPECT_EQ(measured->size(), 1);
}

TEST_F(ModelRules, EverySnapshotOfARunIsAnnouncedEvenTheSameAgain)
{
    const QString file = files.writeSnapshot("same.bin", TraceBuilder().fibre(1_km));
    run("printf '1 G {;'; sleep 0.1;" + rename(file) + rename(file) + "printf '2 G };'");
    EXPECT_EQ(measured->size(), 2);
}

TEST_F(ModelRules, DirectoryOfTheUserNamedUserIsWatchedWhoeverRunsIt)
{
    const QByteArray other = "waveform-test-other";
    qputenv("USER", other);
    make();
    const QString file = files.writeSnapshot("one.bin", TraceBuilder().fibre(1_km));
    run("printf '1 G {;'; sleep 0.1;" + rename(file) + "printf '2 G };'");
    ASSERT_EQ(measured->size(), 1);
    EXPECT_EQ(measured->first().first().toString(), "/tmp/" + other + "/wfsnapshot.bin");
    QDir("/tmp/" + other).removeRecursively();
}

TEST_F(ModelRules, EndOfARunWithoutACardIsLoggedAndTold)
{
    const QSignalSpy lost(model.get(), SIGNAL(cardLost()));
    model->onGatherFinished();
    EXPECT_FALSE(logged("cadr disconnected"));
    card.unplug();
    model->onGatherFinished();
    EXPECT_TRUE(logged("void Waveform::Model::onGatherFinished() cadr disconnected"));
    EXPECT_EQ(lost.size(), 1);
}

TEST_F(ModelRules, CardThatIsMissingFromTheStartIsKnown)
{
    card.unplug();
    make();
    model->onGatherFinished();
    EXPECT_TRUE(logged("cadr disconnected"));
}

TEST_F(ModelRules, TicksReachAllObserversInTheirOrder)
{
    QStringList seen;
    DataProxy first;
    DataProxy second;
    DataProxy elsewhere;
    card.registerProxy("I", &first);
    card.registerProxy("I", &second);
    card.registerProxy("Q", &elsewhere);
    const auto note = [&](DataProxy& proxy, const QString& name) {
        QObject::connect(&proxy, &DataProxy::updated,
                         [&seen, name](QVariantMap&, const QString&) { seen << name; });
    };
    note(first, "first");
    note(second, "second");
    note(elsewhere, "elsewhere");
    QVariantMap map {{"ET", "5"}};
    QMetaObject::invokeMethod(model.get(), "updated", Q_ARG(QVariantMap&, map));
    EXPECT_EQ(seen, QStringList({"first", "second"}));
    EXPECT_EQ(model->duration(), 5) << "the base was not told";
}

TEST_F(ModelRules, ModuleIsDescribedWordForWord)
{
    const SupParamsBlock& sup = model->supParams();
    EXPECT_EQ(card.doCommandGetUpdate("version"), "MCU 1.4\nFPGA 2.7");
    EXPECT_EQ(sup.moduleId, "Zu-OTDR 3.0");
    EXPECT_EQ(sup.softwareRevision, SysinfoReader::releaseVersion().toLatin1() + "/1.4/2.7");
    EXPECT_EQ(sup.other, "Calibration info: 1.000 0");
}

TEST_F(ModelRules, InstrumentIsDescribedOnceAndTheModuleAtEachConnection)
{
    const QByteArray supplier = model->supParams().supplierName;
    qputenv("VENDOR_SUPPLIER_NAME", "Another");
    card.unplug();
    card.setRevision("7.7");
    card.plug();
    EXPECT_EQ(model->supParams().supplierName, supplier);
    EXPECT_EQ(model->supParams().moduleId, "Zu-OTDR 7.7");
    qunsetenv("VENDOR_SUPPLIER_NAME");
}

TEST_F(ModelRules, ConfigurationIsKeptInTheFileAndNotOnTheCard)
{
    int onTheCard = 0;
    QObject::connect(&card, &CardController::configUpdated, [&] { ++onTheCard; });
    auto* config = ZuConfigModel::instance(&card, "zuotdr");
    config->setting("pulse", "MeasParams")->tryChange(30);
    config->freeLater();
    EXPECT_EQ(onTheCard, 0);
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").value().toInt(), 30);
}

TEST_F(ModelRules, EndOfTheModelEndsItsRunAndLeavesNoSettingsFile)
{
    const QString told = files.path("told");
    programs.make("wfgather",
                  "echo \"$4\" > " + told + "; trap 'exit 0' TERM; printf '1 G {;'; "
                      + "while true; do sleep 0.05; done");
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFileInfo(told).size() > 0; }, 5000));
    QFile file(told);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString settings = QString::fromUtf8(file.readAll()).trimmed();
    ASSERT_TRUE(QFile::exists(settings));
    measured.reset();
    stopped.reset();
    model.reset();
    EXPECT_FALSE(QFile::exists(settings));
}

} // namespace
