// What the window does at the steps of a run, told by the model's signals alone.

#include "plot/plot.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "plot/qmplotzoomer.h"
#include "tests/support/paintcounter.h"
#include "tests/window/screen.h"
#include "twomarkers/twomarkersmodel.h"
#include "window/measview.h"

#include <QThreadPool>

namespace {

using namespace testing_support; // the fixture, builders and units

class RunSteps : public Screen
{
protected:
    ~RunSteps() override { QThreadPool::globalInstance()->waitForDone(); }

    QPushButton* fullView() const { return window->findChild<QPushButton*>("zoomOffButton"); }

    Waveform::TwoMarkersModel* markersModel(const Window& from) const
    {
        return from.findChild<Waveform::TwoMarkersModel*>();
    }

    void arrive(const TraceBuilder& builder, double firstSample_ns = 0.0)
    {
        const QString name = files.writeSnapshot(QString("made%1.bin").arg(++snapshots), builder,
                                                 10.0, firstSample_ns);
        emit model->measured(name, WfMeasParams());
    }

    int snapshots = 0;
};

TEST_F(RunSteps, TickSetsTheCaptionAndEnablesTheButton)
{
    action()->setEnabled(false);
    emit model->measTick(61, 1550);
    EXPECT_EQ(action()->text(), "1550 nm\n 1:01");
    EXPECT_TRUE(action()->isEnabled());
    configure("duration", 0);
    emit model->measTick(0, 1310);
    EXPECT_EQ(action()->text(), QString("1310\n") + QChar(0x221E));
}

TEST_F(RunSteps, MeasuredTraceOffersItsFullViewAndEverySnapshotDoes)
{
    emit model->measStarted();
    arrive(TraceBuilder().fibre(2_km));
    EXPECT_TRUE(fullView()->isVisible());
    fullView()->hide();
    arrive(TraceBuilder().fibre(2_km).splice(1_km, 1_dB));
    EXPECT_TRUE(fullView()->isVisible());
    EXPECT_EQ(refls()->rowCount(), 1);
}

TEST_F(RunSteps, EndOfATraceWithoutASnapshotChangesNothing)
{
    const Reflectogram loaded = load("a.sor");
    emit model->measStarted();
    emit model->measFinished();
    emit model->measStarted();
    arrive(TraceBuilder().fibre(2_km));
    emit model->measFinished();
    ASSERT_EQ(refls()->rowCount(), 2);
    EXPECT_EQ(refls()->association(loaded).size(), 1);
    EXPECT_EQ(refls()->association(refls()->mainRefl()).size(), 1)
        << "the trace before had no snapshot";
}

TEST_F(RunSteps, MainTraceOfARunCarriesEveryFieldOfTheInstrument)
{
    qputenv("VENDOR_SUPPLIER_NAME", "Supplier");
    model->preformSupplierParameters(&card);
    load("a.sor");
    model->started(QString());
    model->stopped(QString());
    const SupParamsBlock of = refls()->mainRefl().sorData()->supParams();
    const SupParamsBlock& wanted = model->supParams();
    EXPECT_EQ(of.supplierName, "Supplier");
    EXPECT_EQ(of.mainframeId, wanted.mainframeId);
    EXPECT_EQ(of.mainframeSerial, wanted.mainframeSerial);
    EXPECT_EQ(of.moduleId, wanted.moduleId);
    EXPECT_EQ(of.moduleSerial, wanted.moduleSerial);
    EXPECT_EQ(of.softwareRevision, wanted.softwareRevision);
    EXPECT_EQ(of.other, wanted.other);
    qunsetenv("VENDOR_SUPPLIER_NAME");
}

TEST_F(RunSteps, RunWithoutATraceGivesALoadedOneItsFullViewBack)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.pulses[0].dataSpacing *= 40;
    sketch.fxd.acquisitionRange *= 40;
    const Reflectogram loaded = load("long.sor", sketch);
    const QRectF whole = view();
    ASSERT_GT(whole.width(), 2.0 * model->distance());
    model->started(QString());
    model->stopped(QString());
    ASSERT_EQ(refls()->mainRefl(), loaded);
    EXPECT_EQ(view(), whole);
    QTest::mouseClick(fullView(), Qt::LeftButton);
    EXPECT_EQ(view(), whole);
}

TEST_F(RunSteps, ViewOfTheMeasuredTraceStaysAtTheStop)
{
    model->started(QString());
    emit model->measStarted();
    arrive(TraceBuilder().fibre(2_km));
    QTest::mouseClick(window->findChild<QPushButton*>("zoomInButton"), Qt::LeftButton);
    const QRectF chosen = view();
    ASSERT_LT(chosen.width(), model->distance());
    model->stopped(QString());
    EXPECT_EQ(view(), chosen);
}

TEST_F(RunSteps, ControlsOfTheViewStayAsTheRunBeganAndFitTheMainTraceAfterIt)
{
    const auto* stepOut = window->findChild<QPushButton*>("zoomOutButton");
    const auto* overview = window->findChild<QmMiniPlot*>();
    load("short.sor");
    model->started(QString());
    arrive(TraceBuilder().fibre(10_km)); // a little shorter than the range in view
    EXPECT_FALSE(stepOut->isVisible());
    EXPECT_FALSE(overview->isVisible());
    model->stopped(QString());
    refls()->setMainRefl(0);
    QTest::mouseClick(fullView(), Qt::LeftButton);
    refls()->setMainRefl(1);
    EXPECT_TRUE(stepOut->isVisible()) << "half of the measured trace is out of view";
    EXPECT_TRUE(overview->isVisible());
    QTest::mouseClick(fullView(), Qt::LeftButton);
    refls()->setMainRefl(0);
    ASSERT_TRUE(stepOut->isVisible());
    refls()->setMainRefl(1);
    EXPECT_FALSE(stepOut->isVisible()) << "the whole trace is in view";
    EXPECT_FALSE(overview->isVisible());
}

TEST_F(RunSteps, StopShowsTheSetAnew)
{
    load("a.sor");
    model->started(QString());
    const QSignalSpy resets(refls(), SIGNAL(modelReset()));
    model->stopped(QString());
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(RunSteps, StopWithoutAMainTraceStands)
{
    load("a.sor");
    QMetaObject::invokeMethod(window.get(), "changeMainCurve",
                              Q_ARG(ReflCurve*, static_cast<ReflCurve*>(nullptr)));
    model->started(QString());
    EXPECT_EQ(shownCurves().size(), 0);
    model->stopped(QString());
    EXPECT_EQ(shownCurves().size(), 1);
}

TEST_F(RunSteps, InvalidTraceIsNoMainTrace)
{
    const Reflectogram loaded = load("a.sor");
    const QRectF before = view();
    QMetaObject::invokeMethod(window.get(), "setMainRefl", Q_ARG(Reflectogram, Reflectogram()));
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_EQ(shownCurves()[0]->reflectogram(), loaded);
    EXPECT_EQ(shownCurves()[0]->z(), 100.0);
    EXPECT_TRUE(fullView()->isVisible());
    EXPECT_EQ(view(), before);
}

TEST_F(RunSteps, MainTraceThatLeavesThePlotLeavesNone)
{
    const Reflectogram other = load("a.sor");
    const Reflectogram main = load("b.sor");
    QMetaObject::invokeMethod(window.get(), "deleteRefl", Q_ARG(Reflectogram, main));
    EXPECT_FALSE(fullView()->isVisible());
    EXPECT_EQ(shownTicks(), 0);
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_EQ(shownCurves()[0]->reflectogram(), other);
    QMetaObject::invokeMethod(window.get(), "deleteRefl", Q_ARG(Reflectogram, main)); // no more
    EXPECT_EQ(shownCurves().size(), 1);
}

TEST_F(RunSteps, RegionThatIsSetDirectlyTellsTheOverlaysAndIsNotPainted)
{
    qRegisterMetaType<QwtScaleMap>("QwtScaleMap");
    PaintCounter item; // without a trace, whose ticks ask for painting themselves
    item.attach(plot());
    plot()->replot();
    QTest::qWait(50); // until what was to be painted is painted
    item.count = 0;
    const QSignalSpy maps(plot(), SIGNAL(transformMapsChanged(QwtScaleMap, QwtScaleMap)));
    QMetaObject::invokeMethod(window.get(), "rescalePlot",
                              Q_ARG(QRectF, QRectF(100.0, 0.0, 50.0, 50.0)));
    EXPECT_EQ(maps.size(), 1);
    QTest::qWait(50);
    EXPECT_EQ(item.count, 0);
    item.detach();
}

TEST_F(RunSteps, CurvesHaveThreePointsForEachPixelOfTheCanvas)
{
    SorSketch dense = SorSketch::plain();
    dense.samples.clear();
    for (int i = 0; i < 30'000; ++i) {
        dense.samples.push_back(static_cast<std::uint16_t>(20'000 + (i * 7919) % 4000));
    }
    const Reflectogram refl = load("dense.sor", dense);
    const double width = refl.maxdist() / 4.0;
    QMetaObject::invokeMethod(window.get(), "rescalePlot",
                              Q_ARG(QRectF, QRectF(width, 0.0, width, 50.0)));
    const int points = 3 * plot()->canvas()->width();
    const wf_clip_t clip {0.0, 3.0 * width, points};
    EXPECT_EQ(static_cast<int>(shownCurves()[0]->dataSize()), Decimize(refl, true)(clip).size());
    EXPECT_NE(Decimize(refl, true)({0.0, 3.0 * width, points * 2 / 3}).size(),
              Decimize(refl, true)(clip).size())
        << "the trace is too short to tell";
}

TEST_F(RunSteps, FittedLineIsWantedAsTheBarSaysFromTheStart)
{
    EXPECT_FALSE(markersModel(*window)->usesLSA());
    config->setting("MeasMode", "AdvancedParams")->tryChange(1);
    EXPECT_TRUE(markersModel(*window)->usesLSA());
    expectWarning("No such slot Waveform::Window::rescalePlot(");
    const Window again(config);
    EXPECT_TRUE(markersModel(again)->usesLSA());
}

TEST_F(RunSteps, ModeThatChangesWhileItsBarIsHiddenShowsNoMarkers)
{
    load("a.sor");
    config->setting("MeasMode", "AdvancedParams")->tryChange(1);
    for (const auto* marker : window->findChildren<QmPlotMarker*>()) {
        EXPECT_FALSE(marker->isVisible());
    }
}

TEST_F(RunSteps, TraceThatEndsBeforeZeroKeepsTheAxisRightWayRound)
{
    arrive(TraceBuilder().fibre(1_km), -1e6);
    ASSERT_EQ(refls()->rowCount(), 1);
    ASSERT_LT(refls()->mainRefl().maxdist(), 0.0);
    EXPECT_EQ(view(), QRectF(0.0, 0.0, 0.5, 50.0));
    load("a.sor"); // the view may be zoomed out to a good one
    QTest::mouseClick(fullView(), Qt::LeftButton);
    EXPECT_NEAR(view().width(), refls()->mainRefl().maxdist(), 1e-6);
}

TEST_F(RunSteps, RangeThatIsNoDistanceGivesAViewThatCanBeDrawn)
{
    for (const char* range : {"-5", "0", "nan", "inf", "1e300", "far"}) {
        ZuConfig("zuotdr", "MeasParams", "distance").store(range);
        window->setModel(model.get());
        plot()->replot();
        EXPECT_EQ(view().x(), 0.0) << range;
        EXPECT_GT(view().width(), 0.0) << range;
        EXPECT_LE(view().width(), 1e7) << range;
        model->started(QString());
        EXPECT_GT(view().width(), 0.0) << range;
        EXPECT_LE(view().width(), 1e7) << range;
        model->stopped(QString());
    }
}

} // namespace
