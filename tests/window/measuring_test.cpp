// The window while the acquisition program runs.

#include "events/eventstablemodel.h"
#include "events/eventstableview.h"
#include "plot/qmminiplot.h"
#include "tests/support/warnings.h"
#include "tests/window/screen.h"
#include "window/window.h"

#include <qwt_symbol.h>

#include <QItemSelectionModel>

namespace {

using namespace testing_support; // the fixture, doubles, builder and units

class Measuring : public Screen
{
protected:
    /// Shell words that put a snapshot in place as the acquisition program does.
    QString snapshot(const TraceBuilder& builder)
    {
        const QString made = files.writeSnapshot(QString("made%1.bin").arg(++snapshots), builder);
        return QString("mkdir -p /tmp/user/.wfgather; cp %1 /tmp/user/.wfgather/new; "
                       "mv /tmp/user/.wfgather/new /tmp/user/wfsnapshot.bin; sleep 0.2;")
            .arg(made);
    }

    static QString traceStart(int number, int of, int wavelength_nm)
    {
        return QString("printf '2 M { %1/%2 wavelength %3 duration 15 ior 1.468 helix 0 "
                       "distance 5000 pulse 100 rbs -81.9;'; sleep 0.1;")
            .arg(number)
            .arg(of)
            .arg(wavelength_nm);
    }

    bool waitForStop() const
    {
        return QTest::qWaitFor([this] { return !stopped->isEmpty(); }, 15000);
    }

    void runToEnd(const QString& script)
    {
        programs.make("wfgather", script);
        press();
        ASSERT_TRUE(waitForStop());
        QTest::qWait(100);
    }

    int snapshots = 0;
};

const char* const kOneTrace = "printf '1 G {;'; sleep 0.1; %1 %2 printf '3 M * RT 14 ET 1;'; "
                              "sleep 0.1; printf '4 M };5 A {;6 A };7 G };'";

TEST_F(Measuring, RealtimeStartsUpTo275NsWithOneWavelength)
{
    configure("duration", 0);
    configure("pulse", 275);
    runToEnd("printf '1 G {;2 G };'");
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_EQ(warning(), "");
}

TEST_F(Measuring, RealtimeWithALongerPulseIsRefused)
{
    configure("duration", 0);
    ZuConfig("zuotdr", "MeasParams", "pulse").store(276);
    press();
    EXPECT_FALSE(model->running());
    EXPECT_EQ(
        warning(),
        "In realtime mode you need sets pulse 275 ns or lesser. \n Also you must choose one of "
        "wavelength, not both in same time ");
}

TEST_F(Measuring, RealtimeWithBothWavelengthsIsRefusedAtAnyPulse)
{
    configure("duration", 0);
    configure("pulse", 10);
    configure("wavelength", "all");
    press();
    EXPECT_FALSE(model->running());
    EXPECT_FALSE(warning().isEmpty());
}

TEST_F(Measuring, PressThatCouldStartNothingDoesNotStopARun)
{
    programs.make("wfgather",
                  "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;2 M * RT 1;'; "
                  "while true; do sleep 0.05; done");
    press();
    QTest::qWait(200);
    ASSERT_TRUE(model->running());
    configure("duration", 0);
    ZuConfig("zuotdr", "MeasParams", "pulse").store(1000);
    press();
    QTest::qWait(200);
    EXPECT_TRUE(model->running());
    EXPECT_EQ(warning(), "");
    configure("duration", 15);
    press();
    ASSERT_TRUE(waitForStop());
}

TEST_F(Measuring, RunShowsItsTraceInThePlotAndOnTheButton)
{
    programs.make(
        "wfgather",
        QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km)))
            + "; sleep 0.2");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text() == "1550 nm\n14"; }, 5000))
        << qPrintable(action()->text());
    EXPECT_TRUE(action()->isEnabled());
    ASSERT_TRUE(waitForStop());
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_TRUE(refls()->mainRefl().isMeasured());
    EXPECT_EQ(refls()->mainRefl().wavelength(), 1550);
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_TRUE(action()->isEnabled());
    EXPECT_EQ(action()->text(), "Start");
}

TEST_F(Measuring, RefreshUpdatesTheTraceAndAddsNone)
{
    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550),
                                    snapshot(TraceBuilder().fibre(2_km))
                                        + snapshot(TraceBuilder().fibre(3_km))));
    EXPECT_EQ(refls()->rowCount(), 1);
    EXPECT_NEAR(refls()->mainRefl().maxdist(), 3000.0, 15.0);
    ASSERT_EQ(shownCurves().size(), 1);
    const ReflCurve* curve = shownCurves()[0];
    EXPECT_NEAR(curve->sample(static_cast<int>(curve->dataSize()) - 1).x(), 3000.0, 15.0);
}

TEST_F(Measuring, OverviewShowsEachSnapshot)
{
    const auto overview = [this] { return window->findChild<QmMiniPlot*>()->grab().toImage(); };
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
                      + snapshot(TraceBuilder().fibre(2_km)) + "sleep 0.4;"
                      + snapshot(TraceBuilder().fibre(2_km).splice(1_km, 10_dB))
                      + "printf '4 M };7 G };'");
    const QImage empty = overview();
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 1; }, 5000));
    const QImage first = overview();
    EXPECT_NE(first, empty);
    ASSERT_TRUE(waitForStop());
    EXPECT_NE(overview(), first);
}

TEST_F(Measuring, BeginsWithTheFullViewOfItsRange)
{
    load("a.sor");
    plot()->setAxisScale(QwtPlot::xBottom, 100.0, 300.0);
    plot()->setAxisScale(QwtPlot::yLeft, 10.0, 20.0);
    programs.make("wfgather", "printf '1 G {;2 G };'");
    press();
    EXPECT_EQ(view(), QRectF(0.0, 0.0, 10000.0, 50.0));
    ASSERT_TRUE(waitForStop());
}

TEST_F(Measuring, TicksAreHiddenDuringARunAndNoneIsCurrentAfterIt)
{
    const auto runWithoutTrace = [this] {
        programs.make("wfgather", "printf '1 G {;'; sleep 0.4; printf '2 G };'");
        press();
        QTest::qWait(150);
        EXPECT_EQ(shownTicks(), 0);
        ASSERT_TRUE(waitForStop());
        EXPECT_EQ(shownTicks(), 3);
        stopped->clear();
    };
    load("a.sor");
    auto* events = window->findChild<Waveform::EventsTableModel*>();
    QItemSelectionModel* selection = events->selectionModel();
    selection->setCurrentIndex(events->index(2, 0), QItemSelectionModel::Select);
    runWithoutTrace();
    EXPECT_FALSE(selection->hasSelection()) << "a row without a tall tick";
    EXPECT_FALSE(selection->currentIndex().isValid()) << "a touch on its row would do nothing";
    for (const QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotMarker)) {
        EXPECT_EQ(dynamic_cast<const QwtPlotMarker*>(item)->symbol()->size().height(), 100);
    }

    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km))));
    EXPECT_EQ(shownTicks(), 0) << "those of another than the main trace";
    stopped->clear();
    runWithoutTrace(); // the measured main trace goes at its start, and the loaded one follows it
}

TEST_F(Measuring, RowThatWasChosenBeforeARunWithoutATraceCanBeChosenAgain)
{
    load("a.sor");
    auto* table = window->findChild<Waveform::EventsTableView*>();
    table->selectRow(2);
    ASSERT_EQ(tallTicks(), 1);
    runToEnd("printf '1 G {;'; sleep 0.1; printf '2 G };'");
    EXPECT_FALSE(table->currentIndex().isValid()) << "no event is current after a run";
    EXPECT_EQ(tallTicks(), 0);
    table->selectRow(2);
    EXPECT_EQ(tallTicks(), 1);
}

TEST_F(Measuring, MeasuredTraceIsTheMainOneAtTheEndWhateverWasChosenMeanwhile)
{
    load("a.sor");
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
                      + snapshot(TraceBuilder().fibre(2_km)) + "sleep 0.4; printf '4 M };7 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 2; }, 5000));
    refls()->setMainRefl(0);
    ASSERT_TRUE(waitForStop());
    EXPECT_TRUE(refls()->mainRefl().isMeasured());
}

TEST_F(Measuring, TwoWavelengthsOfARunBelongTogether)
{
    QString script = "printf '1 G {;'; sleep 0.1;";
    script += traceStart(1, 2, 1310) + snapshot(TraceBuilder().fibre(2_km))
        + "printf '4 M };5 A {;6 A };'; sleep 0.1;";
    script += traceStart(2, 2, 1550) + snapshot(TraceBuilder().fibre(2_km))
        + "printf '4 M };5 A {;6 A };7 G };'";
    runToEnd(script);
    ASSERT_EQ(refls()->rowCount(), 2);
    const QList<Reflectogram> asMeasured = refls()->refls();
    EXPECT_EQ(refls()->association(asMeasured[0]), asMeasured);
    EXPECT_EQ(refls()->association(asMeasured[1]), asMeasured);
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Measuring, MainTraceOfARunCarriesTheInstrument)
{
    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km))));
    EXPECT_EQ(refls()->mainRefl().sorData()->supParams().moduleId, model->supParams().moduleId);
}

TEST_F(Measuring, ReturnLossOfAMeasuredTraceIsComputed)
{
    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km))));
    const Reflectogram refl = refls()->mainRefl();
    EXPECT_TRUE(QTest::qWaitFor([&] { return refl.sorData()->keyEvents() != nullptr; }, 5000));
}

TEST_F(Measuring, ReturnLossNeedsNoAnalysis)
{
    runToEnd("printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
             + snapshot(TraceBuilder().fibre(2_km)) + "printf '4 M };7 G };'");
    const Reflectogram refl = refls()->mainRefl();
    EXPECT_TRUE(QTest::qWaitFor([&] { return refl.sorData()->keyEvents() != nullptr; }, 5000));
}

TEST_F(Measuring, NextRunReplacesMeasuredTracesAndKeepsLoadedOnes)
{
    const Reflectogram loaded = load("a.sor");
    const QString script =
        QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km)));
    runToEnd(script);
    const Reflectogram first = refls()->mainRefl();
    stopped->clear();
    runToEnd(script);
    ASSERT_EQ(refls()->rowCount(), 2);
    EXPECT_EQ(refls()->refls()[0], loaded);
    EXPECT_NE(refls()->refls()[1], first);
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Measuring, OnlyTheMeasuredCurveIsShownDuringARun)
{
    load("a.sor");
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
                      + snapshot(TraceBuilder().fibre(2_km)) + "sleep 0.5; printf '4 M };7 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 2; }, 5000));
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_TRUE(shownCurves()[0]->reflectogram().isMeasured());
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Measuring, EventsOfTheRunStandOnItsTrace)
{
    runToEnd(
        "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
        + snapshot(TraceBuilder().fibre(2_km))
        + "printf '4 M };5 A {;6 A * s position 0;7 A * n position 900 loss 0.1;8 A };9 G };'");
    EXPECT_EQ(refls()->mainRefl().getEventList().size(), 2);
    EXPECT_EQ(shownTicks(), 2);
}

TEST_F(Measuring, BrokenSnapshotIsNoTraceAndHarmsNoLoadedOne)
{
    const Reflectogram loaded = load("a.sor");
    runToEnd("printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
             + "echo broken > /tmp/user/new; mv /tmp/user/new /tmp/user/wfsnapshot.bin; sleep 0.2;"
               "printf '4 M };9 G };'");
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_EQ(refls()->mainRefl(), loaded);
    EXPECT_TRUE(loaded.isValid());
    EXPECT_EQ(shownCurves().size(), 1);
}

TEST_F(Measuring, TraceDeletedDuringItsRunIsNotMissed)
{
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
                      + snapshot(TraceBuilder().fibre(2_km))
                      + "sleep 0.5; printf '4 M };5 A {;6 A };7 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 1; }, 5000));
    refls()->deleteAllRefls();
    ASSERT_TRUE(waitForStop());
    EXPECT_EQ(refls()->rowCount(), 0);
}

TEST_F(Measuring, FirstTraceDeletedDuringTheSecondBelongsToNothing)
{
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart(1, 2, 1310)
                      + snapshot(TraceBuilder().fibre(2_km)) + "printf '4 M };'; sleep 0.1;"
                      + traceStart(2, 2, 1550) + snapshot(TraceBuilder().fibre(2_km))
                      + "sleep 0.4; printf '4 M };7 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 2; }, 5000));
    refls()->deleteRefl(0);
    ASSERT_TRUE(waitForStop());
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_EQ(refls()->association(refls()->refls()[0]).size(), 1);
}

TEST_F(Measuring, FailedStartWarnsOnceAndIsIdleAgain)
{
    expectWarning("void OtdrMeasController::onError(QProcess::ProcessError)");
    expectWarning("int OtdrMeasController::start()");
    expectWarning("can not start");
    press();
    EXPECT_EQ(warning().count("wfgather"), 1) << qPrintable(warning());
    EXPECT_TRUE(action()->isEnabled());
    EXPECT_EQ(action()->text(), "Start");
    EXPECT_FALSE(model->running());
}

TEST_F(Measuring, RefusedFibreCheckWarnsAndIsIdleAgain)
{
    card.setRefusal("check fiber", -3);
    expectWarning("can not start");
    press();
    EXPECT_TRUE(warning().contains("check fiber"));
    EXPECT_TRUE(action()->isEnabled());
}

TEST_F(Measuring, CardPulledDuringARunIsTold)
{
    programs.make("wfgather",
                  "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;'; "
                  "while true; do sleep 0.05; done");
    press();
    QTest::qWait(200);
    card.unplug();
    ASSERT_TRUE(waitForStop());
    QTest::qWait(50);
    EXPECT_FALSE(warning().isEmpty());
    EXPECT_TRUE(action()->isEnabled());
}

TEST_F(Measuring, SaysNothingOfParametersThatCannotBeAndShowsTheTrace)
{
    runToEnd("printf '1 G {;2 M { 1/1 wavelength 1550 ior inf helix nan distance inf pulse 100 rbs "
             "nan;';"
             "sleep 0.1;"
             + snapshot(TraceBuilder().fibre(2_km)) + "printf '4 M };9 G };'");
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_NEAR(view().width(), 2000.0, 50.0);
}

TEST_F(Measuring, MayBeClosedDuringARun)
{
    programs.make("wfgather", "trap '' TERM; printf '1 G {;'; while true; do sleep 0.05; done");
    press();
    QTest::qWait(200);
    window.reset();
    model.reset();
}

} // namespace
