// The measurement model with the real acquisition program, in order even when the GUI is busy.

#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/settingrules.h"
#include "platform/launcher/zuconfig.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing_support::AcquisitionDir;
using testing_support::ConfigHome;
using Waveform::Model;

class RunRecorder : public QObject
{
    Q_OBJECT

public:
    RunRecorder(Model* model, unsigned long busy_ms)
        : busy_ms(busy_ms)
    {
        connect(model, SIGNAL(measStarted()), SLOT(traceStarted()));
        connect(model,
                SIGNAL(measured(QString, WfMeasParams)), SLOT(measured(QString, WfMeasParams)));
        connect(model, SIGNAL(measFinished()), SLOT(traceFinished()));
        connect(model, SIGNAL(analisisStarted()), SLOT(analysisStarted()));
        connect(model, SIGNAL(eventListReady(EventList)), SLOT(analysisFinished(EventList)));
    }

    /// Runs of the same step are one.
    QStringList steps;
    QList<WfMeasParams> params;
    QList<int> wavelengths;
    QList<EventList> events; ///< of each trace

public slots:

    void traceStarted() { note("start"); }

    void measured(QString file, WfMeasParams p)
    {
        const Reflectogram refl(file, p);
        EXPECT_TRUE(refl.isValid()) << qPrintable(refl.error());
        wavelengths << refl.wavelength();
        params << p;
        note("snapshot");
    }

    void traceFinished() { note("end"); }

    void analysisStarted() { note("analysis"); }

    void analysisFinished(EventList list)
    {
        events << list;
        note("events");
    }

private:
    void note(const QString& step)
    {
        if (steps.isEmpty() || steps.last() != step) {
            steps << step;
        }
        QThread::msleep(busy_ms); // a GUI that has something else to do
    }

    unsigned long busy_ms;
};

class RealGather : public testing::Test
{
protected:
    RealGather()
        : programsBefore(qgetenv("WAVEFORM_PROGRAMS"))
    {
        qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN);
        set("Simulation", "timeScale", 0);
        set("Simulation", "seed", 1);
        set("MeasParams", "duration", 3);
    }

    ~RealGather() override { qputenv("WAVEFORM_PROGRAMS", programsBefore); }

    static void set(const char* group, const char* key, const QVariant& value)
    {
        ZuConfig::setForThisRun("zuotdr", group, key, value);
    }

    void run(unsigned long busy_ms)
    {
        model = std::make_unique<Model>(&card);
        recorder = std::make_unique<RunRecorder>(model.get(), busy_ms);
        QSignalSpy stopped(model.get(), SIGNAL(stopped(MeasModel*)));
        ASSERT_EQ(model->start(0), 0);
        QThread::msleep(busy_ms);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 30'000));
        EXPECT_EQ(stopped.size(), 1);
    }

    const AcquisitionDir directory;
    const ConfigHome home;
    QByteArray programsBefore;
    CardController card;
    std::unique_ptr<Model> model;
    std::unique_ptr<RunRecorder> recorder;
};

/// What stands on the demo fibre behind its port, as its file says.
struct DemoFibre
{
    struct Place
    {
        double at_m = 0.0;
        bool reflects = false;
    };

    DemoFibre()
    {
        QFile file(WAVEFORM_FIBRES "/demo-link.json");
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QJsonObject fibre = QJsonDocument::fromJson(file.readAll()).object();
        const QJsonArray events = fibre["events"].toArray();
        for (const QJsonValue& value : events) {
            const double at_m = value["at_m"].toDouble();
            if (at_m > 0.0) {
                places << Place {at_m, value["reflectance_db"].isDouble()};
            }
        }
        double length_m = 0.0;
        const QJsonArray sections = fibre["sections"].toArray();
        for (const QJsonValue& section : sections) {
            length_m += section["length_m"].toDouble();
        }
        places << Place {length_m, true};
    }

    QList<Place> places;
};

const QStringList kOneTrace {"start", "snapshot", "end", "analysis", "events"};

TEST_F(RealGather, TraceStartSnapshotAndEndComeInOrder)
{
    for (int i = 0; i < 10; ++i) {
        run(0);
        EXPECT_EQ(recorder->steps, kOneTrace);
    }
}

TEST_F(RealGather, OrderHoldsWhileTheGuiIsBusyFor300Milliseconds)
{
    for (int i = 0; i < 3; ++i) {
        run(300);
        EXPECT_EQ(recorder->steps, kOneTrace);
    }
}

TEST_F(RealGather, BothWavelengthsComeInOrderEachWithItsAnalysis)
{
    set("MeasParams", "wavelength", "all");
    for (const unsigned long busy_ms : {0UL, 300UL}) {
        run(busy_ms);
        EXPECT_EQ(recorder->steps, kOneTrace + kOneTrace);
        ASSERT_FALSE(recorder->wavelengths.isEmpty());
        EXPECT_EQ(recorder->wavelengths.first(), 1310);
        EXPECT_EQ(recorder->wavelengths.last(), 1550);
    }
}

TEST_F(RealGather, LastSnapshotTellsTheWholeTimeMeasured)
{
    run(0);
    ASSERT_FALSE(recorder->params.isEmpty());
    EXPECT_EQ(recorder->params.last().duration, 3);
}

TEST_F(RealGather, FindsTheEventsOfTheFibreWithinAPulseAtBothWavelengths)
{
    set("MeasParams", "wavelength", "all");
    set("MeasParams", "duration", 15);
    set("MeasParams", "pulse", 100);
    set("MeasParams", "distance", 10000);
    run(0);
    const DemoFibre fibre;
    ASSERT_EQ(recorder->events.size(), 2);
    for (const EventList& list : qAsConst(recorder->events)) {
        ASSERT_FALSE(list.isEmpty());
        EXPECT_EQ(list.first().type, Event::SpanStart);
        EXPECT_EQ(list.last().type, Event::SpanEnd);
        EventList found;
        for (int i = 1; i < list.size(); ++i) {
            if (i % 2 == 1) {
                EXPECT_EQ(list[i].type, Event::Fiber) << "there is fibre between two events";
                EXPECT_GT(list[i].attenuation(), 0.1);
            } else {
                found << list[i];
            }
        }
        ASSERT_EQ(found.size(), fibre.places.size());
        for (int i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found[i].coordinate, fibre.places[i].at_m, found[i].width);
            EXPECT_NEAR(found[i].width, 10.2, 0.1);
            EXPECT_EQ(Event::isKnown(found[i].reflectance), fibre.places[i].reflects);
        }
    }
}

/// What the program announces each trace with that nobody has told it how to measure.
QList<QMap<QString, double>> announcedUntold()
{
    const QTemporaryDir dir;
    QFile settings(dir.filePath("settings"));
    EXPECT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write("[MeasParams]\nwavelength=all\n[Simulation]\ntimeScale=0\n");
    settings.close();
    QProcess gather;
    gather.start(WAVEFORM_BIN "/wfgather",
                 {"-o", dir.filePath("snapshot"), "-c", settings.fileName()});
    EXPECT_TRUE(gather.waitForFinished(30'000));
    QList<QMap<QString, double>> announced;
    const QStringList messages = QString::fromLatin1(gather.readAllStandardOutput()).split(';');
    for (const QString& message : messages) {
        const QStringList words = message.simplified().split(' ');
        if (words.size() > 4 && words[1] == "M" && words[2] == "{") {
            QMap<QString, double> values;
            for (int i = 4; i + 1 < words.size(); i += 2) {
                values[words[i]] = words[i + 1].toDouble();
            }
            announced << values;
        }
    }
    return announced;
}

TEST(GatherUntold, MeasuresWhatTheApplicationStoresAtItsFirstStartWhereNobodyTellsIt)
{
    const QVariantMap stored = settingrules::defaults("zuotdr");
    const QList<QMap<QString, double>> announced = announcedUntold();
    ASSERT_EQ(announced.size(), 2);
    for (const auto& trace : announced) {
        for (const QString key : {"duration", "pulse", "distance", "helix"}) {
            ASSERT_TRUE(trace.contains(key)) << qPrintable(key);
            EXPECT_EQ(trace[key], stored["MeasParams/" + key].toDouble()) << qPrintable(key);
        }
        const QString index = QString("MeasParams/ior%1").arg(trace["wavelength"]);
        ASSERT_TRUE(stored.contains(index)) << qPrintable(index);
        EXPECT_EQ(trace["ior"], stored[index].toDouble()) << qPrintable(index);
    }
}

TEST_F(RealGather, RealtimeRunsUntilItIsStopped)
{
    set("MeasParams", "duration", 0);
    set("Simulation", "timeScale", 1);
    model = std::make_unique<Model>(&card);
    recorder = std::make_unique<RunRecorder>(model.get(), 0);
    QSignalSpy stopped(model.get(), SIGNAL(stopped(MeasModel*)));
    QSignalSpy ticks(model.get(), SIGNAL(measTick(int, int)));
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder->params.size() >= 3; }, 10'000));
    ASSERT_FALSE(ticks.isEmpty());
    EXPECT_EQ(ticks.first().first().toInt(), 0);
    EXPECT_EQ(stopped.size(), 0);
    model->stop(QString());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 3000));
    EXPECT_EQ(recorder->steps, kOneTrace);
}

TEST_F(RealGather, StopInTheMiddleEndsTheTraceProperly)
{
    set("MeasParams", "duration", 600);
    set("MeasParams", "wavelength", "all");
    set("Simulation", "timeScale", 0.2);
    model = std::make_unique<Model>(&card);
    recorder = std::make_unique<RunRecorder>(model.get(), 0);
    QSignalSpy stopped(model.get(), SIGNAL(stopped(MeasModel*)));
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder->params.size() >= 2; }, 10'000));
    model->stop(QString());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 3000));
    EXPECT_EQ(recorder->steps, kOneTrace) << "the second wavelength was begun";
    EXPECT_FALSE(model->running());
}

TEST_F(RealGather, DirectoryRemovedAndMadeAgainIsWatchedByTheNextRun)
{
    run(0);
    QDir(AcquisitionDir::path()).removeRecursively();
    QCoreApplication::processEvents();
    QDir().mkpath(AcquisitionDir::path());
    QSignalSpy stopped(model.get(), SIGNAL(stopped(MeasModel*)));
    recorder->steps.clear();
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 30'000));
    EXPECT_EQ(recorder->steps, kOneTrace);
}

} // namespace

#include "realgather_test.moc"
