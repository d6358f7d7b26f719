#include "window/window.h"

#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfigmodel.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "refls/reflstablemodel.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <qwt_plot_marker.h>
#include <qwt_scale_div.h>

#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>
#include <memory>

namespace {

using namespace testing_support; // doubles, builder and units
using Waveform::Model;
using Waveform::Plot;
using Waveform::ReflsTableModel;
using Waveform::Window;

class Screen : public testing::Test
{
protected:
    Screen()
        : config(ZuConfigModel::instance(&card, "zuotdr"))
    {
        window = std::make_unique<Window>(config);
        model = std::make_unique<Model>(&card);
        window->setModel(model.get());
        window->resize(800, 480);
        window->show();
        QCoreApplication::processEvents();
        stopped = std::make_unique<QSignalSpy>(model.get(), SIGNAL(stopped( MeasModel* )));
    }

    ~Screen() override
    {
        window.reset();
        model.reset();
        config->freeLater();
    }

    Plot* plot() const { return window->findChild<Plot*>(); }
    ReflsTableModel* refls() const { return window->reflsTableModel(); }
    QPushButton* action() const { return window->actionButton(); }
    QString warning() const { return window->notification()->text(); }

    QList<ReflCurve*> shownCurves() const
    {
        QList<ReflCurve*> found;
        for (QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotCurve)) {
            if (auto* curve = dynamic_cast<ReflCurve*>(item)) {
                found << curve;
            }
        }
        return found;
    }

    int shownTicks() const
    {
        int count = 0;
        for (const QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotMarker)) {
            count += item->isVisible() ? 1 : 0;
        }
        return count;
    }

    QRectF view() const
    {
        plot()->updateAxes();
        const QwtScaleDiv& x = plot()->axisScaleDiv(QwtPlot::xBottom);
        const QwtScaleDiv& y = plot()->axisScaleDiv(QwtPlot::yLeft);
        return { x.lowerBound(), y.lowerBound(), x.upperBound() - x.lowerBound(),
                 y.upperBound() - y.lowerBound() };
    }

    Reflectogram load(const QString& name, const SorSketch& sketch = SorSketch::plain())
    {
        refls()->addReflFromFile(files.write(name, sketch));
        return refls()->mainRefl();
    }

    void configure(const char* key, const QVariant& value)
    {
        config->setting(key, "MeasParams")->tryChange(value);
    }

    void press() { QTest::mouseClick(action(), Qt::LeftButton); }

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

    void runToEnd(const QString& script)
    {
        programs.make("wfgather", script);
        press();
        ASSERT_TRUE(QTest::qWaitFor([this] { return stopped->size() > 0; }, 15000));
        QTest::qWait(100);
    }

    const AcquisitionDir directory;
    const ConfigHome home;
    const FakePrograms programs;
    TraceFiles files;
    CardController card;
    ZuConfigModel* config;
    std::unique_ptr<Window> window;
    std::unique_ptr<Model> model;
    std::unique_ptr<QSignalSpy> stopped;
    int snapshots = 0;
};

const char* const kOneTrace = "printf '1 G {;'; sleep 0.1; %1 %2 printf '3 M * RT 14 ET 1;'; "
                              "sleep 0.1; printf '4 M };5 A {;6 A };7 G };'";

TEST_F(Screen, IsLaidOutForTheInstrument)
{
    EXPECT_TRUE(window->isScalable());
    EXPECT_EQ(window->findChild<ControlBottomPanel*>()->height(), 78);
    EXPECT_EQ(action()->size(), QSize(100, 52));
    EXPECT_EQ(window->findChild<QProgressBar*>(QString(), Qt::FindDirectChildrenOnly), nullptr);
    EXPECT_EQ(window->size(), QSize(800, 480));
    EXPECT_TRUE(plot()->axisEnabled(QwtPlot::xBottom));
    EXPECT_TRUE(plot()->axisEnabled(QwtPlot::yLeft));
    EXPECT_EQ(view(), QRectF(0.0, 0.0, 10000.0, 50.0));
}

TEST_F(Screen, FirstTraceIsShownWhole)
{
    const Reflectogram refl = load("a.sor");
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_EQ(shownCurves()[0]->reflectogram(), refl);
    EXPECT_NEAR(view().width(), refl.maxdist(), 1e-6);
    EXPECT_EQ(view().x(), 0.0);
    EXPECT_EQ(view().height(), 50.0);
    EXPECT_EQ(shownCurves()[0]->color(), refls()->getColor(refl));
}

TEST_F(Screen, ViewStaysWhenAnotherTraceBecomesMain)
{
    load("a.sor");
    plot()->setAxisScale(QwtPlot::xBottom, 100.0, 300.0);
    plot()->replot();
    load("b.sor");
    EXPECT_EQ(view().x(), 100.0);
    EXPECT_EQ(view().width(), 200.0);
}

TEST_F(Screen, MainCurveLiesOnTop)
{
    load("a.sor");
    load("b.sor");
    ASSERT_EQ(shownCurves().size(), 2);
    const auto zOf = [this](int row) {
        for (const ReflCurve* curve : shownCurves()) {
            if (curve->reflectogram() == refls()->refls()[row]) {
                return curve->z();
            }
        }
        return 0.0;
    };
    EXPECT_EQ(zOf(0), 20.0);
    EXPECT_EQ(zOf(1), 100.0);
    refls()->setMainRefl(0);
    EXPECT_EQ(zOf(0), 100.0);
    EXPECT_EQ(zOf(1), 20.0);
    EXPECT_EQ(shownCurves().size(), 2) << "a curve was made twice";
}

TEST_F(Screen, EventsOfTheMainTraceHaveTicks)
{
    load("a.sor");
    EXPECT_EQ(shownTicks(), 3);
    SorSketch bare = SorSketch::plain();
    bare.keyEvents.events.resize(1);
    load("b.sor", bare);
    EXPECT_EQ(shownTicks(), 1);
    refls()->deleteAllRefls();
    EXPECT_EQ(shownTicks(), 0);
}

TEST_F(Screen, CurvesCoverTheViewAndOneWidthOnEachSide)
{
    load("a.sor");
    QMetaObject::invokeMethod(window.get(), "rescalePlot",
                              Q_ARG(QRectF, QRectF(1000.0, 0.0, 500.0, 50.0)));
    const ReflCurve* curve = shownCurves()[0];
    const double step = refls()->mainRefl().smpl2dist(1.0);
    EXPECT_NEAR(curve->sample(0).x(), 500.0, step);
    EXPECT_NEAR(curve->sample(static_cast<int>(curve->dataSize()) - 1).x(), 2000.0, step);
}

TEST_F(Screen, RegionOfNegativeWidthIsCoveredFromOneWidthBefore)
{
    load("a.sor");
    QMetaObject::invokeMethod(window.get(), "rescalePlot",
                              Q_ARG(QRectF, QRectF(1500.0, 50.0, -500.0, -50.0)));
    const ReflCurve* curve = shownCurves()[0];
    const double step = refls()->mainRefl().smpl2dist(1.0);
    EXPECT_NEAR(curve->sample(0).x(), 1000.0, step);
    EXPECT_NEAR(curve->sample(static_cast<int>(curve->dataSize()) - 1).x(), 1500.0, step);
}

TEST_F(Screen, PanAndResizeSampleTheCurvesAnewAndTellTheOverlays)
{
    qRegisterMetaType<QwtScaleMap>("QwtScaleMap");
    load("a.sor");
    const QSignalSpy maps(plot(), SIGNAL(transformMapsChanged( QwtScaleMap, QwtScaleMap )));
    const QSignalSpy sampled(shownCurves()[0], SIGNAL(dataChanged()));
    plot()->shiftScale(QPoint(20, 0));
    EXPECT_EQ(sampled.size(), 1);
    window->resize(900, 500);
    QCoreApplication::processEvents();
    EXPECT_GE(sampled.size(), 2);
    EXPECT_FALSE(maps.isEmpty());
}

TEST_F(Screen, DeletedTraceLeavesThePlot)
{
    load("a.sor");
    const Reflectogram second = load("b.sor");
    refls()->deleteRefl(1);
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_NE(shownCurves()[0]->reflectogram(), second);
    EXPECT_EQ(shownTicks(), 3);
    refls()->deleteRefl(0);
    EXPECT_TRUE(shownCurves().isEmpty());
    EXPECT_EQ(shownTicks(), 0);
}

TEST_F(Screen, DeletingAllEmptiesThePlot)
{
    load("a.sor");
    load("b.sor");
    refls()->deleteAllRefls();
    EXPECT_TRUE(shownCurves().isEmpty());
    const Reflectogram next = load("c.sor");
    EXPECT_NEAR(view().width(), next.maxdist(), 1e-6);
}

TEST_F(Screen, HelixFactorIsThatOfTheMainTrace)
{
    load("a.sor");
    const Reflectogram second = load("b.sor");
    const double last = second.maxdist();
    configure("helix", 2.0);
    EXPECT_EQ(second.helix(), 2.0);
    EXPECT_NEAR(second.maxdist(), last / 1.02, 1e-6);
    EXPECT_EQ(refls()->refls()[0].helix(), 0.0);
}

TEST_F(Screen, HelixFactorWithoutATraceIsOnlyStored)
{
    configure("helix", 1.0);
    EXPECT_TRUE(shownCurves().isEmpty());
}

TEST_F(Screen, RealtimeStartsUpTo275NsWithOneWavelength)
{
    configure("duration", 0);
    configure("pulse", 275);
    runToEnd("printf '1 G {;2 G };'");
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_EQ(warning(), "");
}

TEST_F(Screen, RealtimeWithALongerPulseIsRefused)
{
    configure("duration", 0);
    ZuConfig("zuotdr", "MeasParams", "pulse").store(276);
    press();
    EXPECT_FALSE(model->running());
    EXPECT_EQ(warning(),
              "In realtime mode you need sets pulse 275 ns or lesser. \n Also you must choose one of "
              "wavelength, not both in same time ");
}

TEST_F(Screen, RealtimeWithBothWavelengthsIsRefusedAtAnyPulse)
{
    configure("duration", 0);
    configure("pulse", 10);
    configure("wavelength", "all");
    press();
    EXPECT_FALSE(model->running());
    EXPECT_FALSE(warning().isEmpty());
}

TEST_F(Screen, PressThatCouldStartNothingDoesNotStopARun)
{
    programs.make("wfgather", "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;2 M * RT 1;'; "
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
    ASSERT_TRUE(QTest::qWaitFor([this] { return stopped->size() > 0; }, 10000));
}

TEST_F(Screen, RunShowsItsTraceInThePlotAndOnTheButton)
{
    programs.make("wfgather",
                  QString(kOneTrace)
                      .arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km)))
                      + "; sleep 0.2");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return action()->text() == "1550 nm\n14"; }, 5000))
        << qPrintable(action()->text());
    EXPECT_TRUE(action()->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([this] { return stopped->size() > 0; }, 10000));
    ASSERT_EQ(refls()->rowCount(), 1);
    EXPECT_TRUE(refls()->mainRefl().isMeasured());
    EXPECT_EQ(refls()->mainRefl().wavelength(), 1550);
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_TRUE(action()->isEnabled());
    EXPECT_EQ(action()->text(), "Start");
}

TEST_F(Screen, RefreshUpdatesTheTraceAndAddsNone)
{
    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550),
                                    snapshot(TraceBuilder().fibre(2_km))
                                        + snapshot(TraceBuilder().fibre(3_km))));
    EXPECT_EQ(refls()->rowCount(), 1);
    EXPECT_NEAR(refls()->mainRefl().maxdist(), 3000.0, 15.0);
    EXPECT_EQ(shownCurves().size(), 1);
}

TEST_F(Screen, TwoWavelengthsOfARunBelongTogether)
{
    QString script = "printf '1 G {;'; sleep 0.1;";
    script += traceStart(1, 2, 1310) + snapshot(TraceBuilder().fibre(2_km))
        + "printf '4 M };5 A {;6 A };'; sleep 0.1;";
    script += traceStart(2, 2, 1550) + snapshot(TraceBuilder().fibre(2_km))
        + "printf '4 M };5 A {;6 A };7 G };'";
    runToEnd(script);
    ASSERT_EQ(refls()->rowCount(), 2);
    EXPECT_EQ(refls()->association(refls()->refls()[0]).size(), 2);
    EXPECT_EQ(refls()->association(refls()->refls()[1]).size(), 2);
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Screen, MainTraceOfARunCarriesTheInstrument)
{
    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km))));
    EXPECT_EQ(refls()->mainRefl().sorData()->supParams().moduleId, model->supParams().moduleId);
}

TEST_F(Screen, ReturnLossOfAMeasuredTraceIsComputed)
{
    runToEnd(QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km))));
    const Reflectogram refl = refls()->mainRefl();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return refl.sorData()->keyEvents() != nullptr; }, 5000));
}

TEST_F(Screen, NextRunReplacesMeasuredTracesAndKeepsLoadedOnes)
{
    const Reflectogram loaded = load("a.sor");
    const QString script
        = QString(kOneTrace).arg(traceStart(1, 1, 1550), snapshot(TraceBuilder().fibre(2_km)));
    runToEnd(script);
    const Reflectogram first = refls()->mainRefl();
    stopped->clear();
    runToEnd(script);
    ASSERT_EQ(refls()->rowCount(), 2);
    EXPECT_EQ(refls()->refls()[0], loaded);
    EXPECT_NE(refls()->refls()[1], first);
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Screen, OnlyTheMeasuredCurveIsShownDuringARun)
{
    load("a.sor");
    programs.make("wfgather",
                  "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
                      + snapshot(TraceBuilder().fibre(2_km)) + "sleep 0.5; printf '4 M };7 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 2; }, 5000));
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_TRUE(shownCurves()[0]->reflectogram().isMeasured());
    ASSERT_TRUE(QTest::qWaitFor([this] { return stopped->size() > 0; }, 10000));
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Screen, EventsOfTheRunStandOnItsTrace)
{
    runToEnd("printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
             + snapshot(TraceBuilder().fibre(2_km))
             + "printf '4 M };5 A {;6 A * s position 0;7 A * n position 900 loss 0.1;8 A };9 G };'");
    EXPECT_EQ(refls()->mainRefl().getEventList().size(), 2);
    EXPECT_EQ(shownTicks(), 2);
}

TEST_F(Screen, BrokenSnapshotIsNoTraceAndHarmsNoLoadedOne)
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

TEST_F(Screen, TraceDeletedDuringItsRunIsNotMissed)
{
    programs.make("wfgather", "printf '1 G {;'; sleep 0.1;" + traceStart(1, 1, 1550)
                      + snapshot(TraceBuilder().fibre(2_km))
                      + "sleep 0.5; printf '4 M };5 A {;6 A };7 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return refls()->rowCount() == 1; }, 5000));
    refls()->deleteAllRefls();
    ASSERT_TRUE(QTest::qWaitFor([this] { return stopped->size() > 0; }, 10000));
    EXPECT_EQ(refls()->rowCount(), 0);
}

TEST_F(Screen, FailedStartWarnsOnceAndIsIdleAgain)
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

TEST_F(Screen, RefusedFibreCheckWarnsAndIsIdleAgain)
{
    card.setRefusal("check fiber", -3);
    expectWarning("can not start");
    press();
    EXPECT_TRUE(warning().contains("check fiber"));
    EXPECT_TRUE(action()->isEnabled());
}

TEST_F(Screen, CardPulledDuringARunIsTold)
{
    programs.make("wfgather", "trap 'printf \"9 G };\"; exit 0' TERM; printf '1 G {;'; "
                              "while true; do sleep 0.05; done");
    press();
    QTest::qWait(200);
    card.unplug();
    ASSERT_TRUE(QTest::qWaitFor([this] { return stopped->size() > 0; }, 10000));
    QTest::qWait(50);
    EXPECT_FALSE(warning().isEmpty());
    EXPECT_TRUE(action()->isEnabled());
}

TEST_F(Screen, MayBeClosedDuringARun)
{
    programs.make("wfgather", "trap '' TERM; printf '1 G {;'; while true; do sleep 0.05; done");
    press();
    QTest::qWait(200);
    window.reset();
    model.reset();
}

TEST_F(Screen, WaitWindowIsShownAndHidden)
{
    window->setWaitWindowVisible(true);
    const auto isWaiting = [this] {
        for (const QDialog* dialog : window->findChildren<QDialog*>()) {
            if (dialog->isVisible() && dialog->isModal()) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(isWaiting());
    window->setWaitWindowVisible(false);
    EXPECT_FALSE(isWaiting());
}

} // namespace
