// Who listens to whom. A connection that can be taken away was there.

#include "events/eventmarkersview.h"
#include "plot/qmminiplot.h"
#include "plot/qmpanner.h"
#include "plot/qmplotmarker.h"
#include "plot/qmplotzoomer.h"
#include "tests/support/metamethods.h"
#include "tests/window/screen.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersview.h"
#include "window/measview.h"
#include "window/window.h"

namespace {

using namespace testing_support; // the fixture

class Connected : public Screen
{
protected:
    struct Link
    {
        QObject* from;
        const char* signal;
        QObject* to;
        const char* slot; ///< or a signal that it is forwarded to
    };

    template <typename T>
    T* part(const QString& name = QString()) const
    {
        T* found = window->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << qPrintable(name);
        return found;
    }

    /// Everything that was connected, in any order.
    static void expectAll(std::initializer_list<Link> links)
    {
        for (const Link& link : links) {
            ASSERT_NE(link.from, nullptr) << link.signal;
            ASSERT_NE(link.to, nullptr) << link.slot;
            EXPECT_TRUE(QObject::disconnect(link.from, link.signal, link.to, link.slot))
                << link.signal << " is not connected to " << link.slot;
        }
    }

    /// A text of the analysis that the action button shows.
    bool isAnimated() const { return action()->text().startsWith("Events"); }
};

TEST_F(Connected, WindowFollowsItsModel)
{
    QObject* from = model.get();
    QObject* to = window.get();
    expectAll({
        {from,
         SIGNAL(measured(QString, WfMeasParams)), to, SLOT(updateMeased(QString, WfMeasParams))},
             {from,
              SIGNAL(measTick(int, int)), to, SLOT(updateCountdownText(int, int))},
                  {from,
                   SIGNAL(analisisFinished()), to, SLOT(analyseFinished())},
                          {from,
                           SIGNAL(eventListReady(EventList)), part<EventMarkersView>(),
                                  SLOT(setMarkers(EventList))},
                                  {from,
                                   SIGNAL(eventListReady(EventList)), to,
                                          SLOT(setEventListToMainRefl(EventList))},
                                          {from,
                                           SIGNAL(measStarted()), to, SLOT(oneReflMeasStarted())},
                                                  {from,
                                                   SIGNAL(measFinished()), to,
                                                          SLOT(oneReflMeasFinished())},
                                                          {from,
                                                           SIGNAL(setActionButtonEnabled(bool)),
                                                                  action(), SLOT(setEnabled(bool))},
                                                          });
}

TEST_F(Connected, AnimationFollowsTheModel)
{
    emit model->analisisStarted();
    EXPECT_TRUE(isAnimated());
    emit static_cast<MeasModel*>(model.get())->stopped(model.get());
    const QString text = action()->text();
    QTest::qWait(600);
    EXPECT_EQ(action()->text(), text);
}

TEST_F(Connected, WindowFollowsTheSetOfTraces)
{
    QObject* to = window.get();
    const char* mainChanged = SIGNAL(mainReflChanged(Reflectogram));
    expectAll({
        {refls(),
         SIGNAL(reflDeleted(Reflectogram)), to, SLOT(deleteRefl(Reflectogram))},
                {refls(), mainChanged, to, SLOT(setMainRefl(Reflectogram))},
                 {refls(),
                  SIGNAL(allReflsDeleted()), to, SLOT(deleteAllRefls())},
                         {refls(), mainChanged, part<Waveform::TwoMarkersModel>(),
                          SLOT(setReflectogram(Reflectogram))},
                          {refls(), mainChanged, to, SLOT(rescalePlot(Reflectogram))},
                          });
}

TEST_F(Connected, WindowFollowsTheConfiguration)
{
    auto* bar = part<MeasView>();
    ZuSetting* mode = config->setting("MeasMode", "AdvancedParams");
    expectAll({
        {config->setting("helix", "MeasParams"),
         SIGNAL(changed(double)), window.get(), SLOT(setHelix(double))},
                {config->setting("HardwareRevision", "CardInfo"),
                 SIGNAL(changed(double)), window.get(), SLOT(onChangeCardRevision(double))},
                        {mode,
                         SIGNAL(changed(int)), bar, SLOT(setMode(int))},
                                {bar,
                                 SIGNAL(modeChanged(int)), mode, SLOT(tryChange(int))},
                                });
}

TEST_F(Connected, OverviewAndButtonsFollowTheZoomer)
{
    auto* zoomer = part<QmPlotZoomer>();
    auto* overview = part<QmMiniPlot>();
    auto* off = part<QPushButton>("zoomOffButton");
    auto* in = part<QPushButton>("zoomInButton");
    auto* out = part<QPushButton>("zoomOutButton");
    expectAll({
        {plot(),
         SIGNAL(scaledTo(QRectF)), overview, SLOT(highlightArea(QRectF))},
             {zoomer,
              SIGNAL(newBounds(QRectF)), window.get(), SLOT(rescalePlot(QRectF))},
                  {zoomer,
                   SIGNAL(newBounds(QRectF)), overview, SLOT(highlightArea(QRectF))},
                       {zoomer,
                        SIGNAL(maxScaledOut()), overview, SLOT(nohl())},
                            {off,
                             SIGNAL(clicked()), zoomer, SLOT(zoomOff())},
                                    {in,
                                     SIGNAL(clicked()), zoomer, SLOT(zoomIn())},
                                            {out,
                                             SIGNAL(clicked()), zoomer, SLOT(zoomOut())},
                                                    {zoomer,
                                                     SIGNAL(disableZoomIn(bool)), in,
                                                            SLOT(setHidden(bool))},
                                                            {zoomer,
                                                             SIGNAL(disableZoomOut(bool)), out,
                                                                    SLOT(setHidden(bool))},
                                                                    {zoomer,
                                                                     SIGNAL(disableZoomOut(bool)),
                                                                            overview,
                                                                            SLOT(setHidden(bool))},
                                                                    });
}

TEST_F(Connected, MarkersFollowTheBar)
{
    auto* bar = part<MeasView>();
    auto* view = part<Waveform::TwoMarkersView>();
    expectAll({
        {bar,
         SIGNAL(usingLSAChanged(bool)), part<Waveform::TwoMarkersModel>(), SLOT(setUseLSA(bool))},
                {bar,
                 SIGNAL(visibility2pChanged(bool)), view, SLOT(setVisible(bool))},
                        {bar,
                         SIGNAL(visibilityChanged(bool)), view, SLOT(setVisible(bool))},
                                {bar,
                                 SIGNAL(needMarkersOnScreen()), view, SLOT(moveMarkersToScreen())},
                                });
}

TEST_F(Connected, PlotFollowsTheFingerAndTheEndOfADragDoesNothing)
{
    load("a.sor");
    auto* panner = part<QmPanner>();
    const QSignalSpy sampled(shownCurves()[0], SIGNAL(dataChanged()));
    emit panner->moved(QPoint(50, 0));
    EXPECT_EQ(sampled.size(), 0);
    EXPECT_EQ(window->metaObject()->indexOfSlot("rescalePlot()"), -1);
    expectAll({{panner, SIGNAL(moving(QPoint)), plot(), SLOT(shiftScale(QPoint))}});
}

TEST_F(Connected, ModelThatIsGivenTwiceIsFollowedOnce)
{
    window->setModel(model.get());
    emit model->analisisStarted();
    EXPECT_EQ(action()->text(), "Events.  ") << "two steps were made at once";
    emit model->analisisFinished();
    action()->setEnabled(true);
    programs.make("wfgather", "printf '1 G {;2 G };'");
    press();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !stopped->isEmpty(); }, 15'000));
    EXPECT_EQ(action()->text(), "Start");
}

TEST_F(Connected, ModelThatWasReplacedIsNotFollowed)
{
    Model other(&card);
    window->setModel(&other);
    action()->setText("Start");
    emit model->analisisStarted();
    emit model->measTick(7, 1550);
    emit model->setActionButtonEnabled(false);
    EXPECT_EQ(action()->text(), "Start");
    EXPECT_TRUE(action()->isEnabled());
    emit other.measTick(7, 1550);
    EXPECT_EQ(action()->text(), "1550 nm\n07");
    window->setModel(nullptr);
    emit other.measTick(6, 1550);
    EXPECT_EQ(action()->text(), "1550 nm\n07") << "a window without a model follows one";
}

TEST_F(Connected, SignalsAndSlotsAreTheAgreedOnesInTheirOrder)
{
    const QStringList agreed = {
        "signal mainReflName(QString name)",
        "signal realtimeParamsValid()",
        "public setWaitWindowVisible(bool visible)",
        "public updateCountdownText(int rTime, int wavelength)",
        "public oneReflMeasStarted()",
        "public oneReflMeasFinished()",
        "protected startstop()",
        "protected measStarted()",
        "protected measStopped()",
        "protected analyseFinished()",
        "protected setActionButtonText(QString text)",
        "protected deleteAllRefls()",
        "protected deleteRefl(Reflectogram refl)",
        "protected setMainRefl(Reflectogram refl)",
        "protected setEventListToMainRefl(EventList events)",
        "protected updateMeased(QString reflFileName, WfMeasParams params)",
        "protected setIor(double ior)",
        "protected setHelix(double helix)",
        "protected setDistance(double xMax)",
        "protected raisePlotControls()",
        "protected rescalePlot(Reflectogram refl)",
        "protected rescalePlot(QRectF region)",
        "protected changeMainCurve(ReflCurve* curve)",
        "protected showMarkersTable()",
        "protected setHiddenNonMainCurves(bool hidden)",
        "protected installEventFilter(QObject* fltObj)",
        "protected onChangeCardRevision(double rev)",
    };
    EXPECT_EQ(agreedMethods(Window::staticMetaObject, agreed), agreed);
}

} // namespace
