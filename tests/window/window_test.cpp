#include "platform/launcher/controlbottompanel.h"
#include "tests/support/paintcounter.h"
#include "tests/window/screen.h"
#include "window/window.h"

#include <QProgressBar>

namespace {

using namespace testing_support; // the fixture and the builders

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

TEST_F(Screen, EveryConnectionTakesButThatOfTheEndedDrag)
{
    EXPECT_EQ(messages().count("QObject::connect"), 1);
    EXPECT_TRUE(logged("No such slot Waveform::Window::rescalePlot("));
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
    const QSignalSpy maps(plot(), SIGNAL(transformMapsChanged(QwtScaleMap, QwtScaleMap)));
    const QSignalSpy sampled(shownCurves()[0], SIGNAL(dataChanged()));
    plot()->shiftScale(QPoint(20, 0));
    EXPECT_EQ(sampled.size(), 1);
    window->resize(900, 500);
    QCoreApplication::processEvents();
    EXPECT_GE(sampled.size(), 2);
    EXPECT_FALSE(maps.isEmpty());
}

TEST_F(Screen, NewMainTraceTellsTheOverlays)
{
    qRegisterMetaType<QwtScaleMap>("QwtScaleMap");
    const QSignalSpy maps(plot(), SIGNAL(transformMapsChanged(QwtScaleMap, QwtScaleMap)));
    load("a.sor");
    EXPECT_FALSE(maps.isEmpty());
    const int before = maps.size();
    load("b.sor");
    EXPECT_GT(maps.size(), before);
}

TEST_F(Screen, PanningEndsHalfAScreenBehindTheMainTrace)
{
    const double last = load("a.sor").maxdist();
    plot()->setAxisScale(QwtPlot::xBottom, 0.0, 100.0);
    plot()->shiftScale(QPoint(10'000'000, 0));
    EXPECT_NEAR(view().right(), last + 50.0, 1e-6);
}

TEST_F(Screen, RegionThatComesByASignalIsPainted)
{
    PaintCounter item;
    item.attach(plot());
    plot()->replot();
    QCoreApplication::processEvents();
    item.count = 0;
    window->replot();
    QCoreApplication::processEvents();
    EXPECT_GT(item.count, 0);
    item.count = 0;
    emit plot()->scaledTo(QRectF(0.0, 0.0, 100.0, 50.0));
    QCoreApplication::processEvents();
    EXPECT_GT(item.count, 0);
    item.detach();
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

TEST_F(Screen, TraceThatIsMarkedTakesThePlaceOfADeletedMainOne)
{
    load("a.sor");
    load("b.sor");
    const Reflectogram last = load("c.sor");
    refls()->setMainRefl(1);
    refls()->deleteRefl(0); // the mark stays on row 1, which is that of the last trace now
    ASSERT_EQ(refls()->mainRefl(), last);
    refls()->deleteRefl(0);
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_EQ(refls()->mainRefl(), last);
    EXPECT_EQ(shownCurves()[0]->reflectogram(), last);
    EXPECT_EQ(shownCurves()[0]->z(), 100.0);
    EXPECT_EQ(shownTicks(), 3);
    EXPECT_TRUE(window->findChild<QPushButton*>("zoomOffButton")->isVisible());
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
    const ReflCurve* curve = shownCurves().last();
    ASSERT_EQ(curve->reflectogram(), second);
    EXPECT_NEAR(curve->sample(static_cast<int>(curve->dataSize()) - 1).x(), last / 1.02, 1e-6);
    EXPECT_EQ(refls()->refls()[0].helix(), 0.0);
}

TEST_F(Screen, HelixFactorWithoutATraceIsOnlyStored)
{
    configure("helix", 1.0);
    EXPECT_EQ(model->helix(), 1.0);
}

TEST_F(Screen, StandsAModelOfAnotherKindAndNone)
{
    load("a.sor");
    MeasModel other(&card);
    window->setModel(&other);
    other.start(0);
    other.stop(QString());
    EXPECT_EQ(shownCurves().size(), 1);
    window->setModel(nullptr);
    press();
    EXPECT_FALSE(model->running());
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
