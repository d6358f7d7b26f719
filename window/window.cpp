#include "window/window.h"

#include "acquisition/model.h"
#include "events/eventmarkersview.h"
#include "events/eventstablemodel.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/waitwnd.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfigmodel.h"
#include "plot/plot.h"
#include "plot/qmplotzoomer.h"
#include "refls/reflstablemodel.h"
#include "refls/reflstableview.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "twomarkers/twomarkersview.h"
#include "window/canvascontrols.h"
#include "window/countdown.h"
#include "window/curveset.h"
#include "window/distancenote.h"
#include "window/emptyhint.h"
#include "window/maintrace.h"
#include "window/markermeasuring.h"
#include "window/measview.h"
#include "window/panels.h"
#include "window/realtimerule.h"
#include "window/runtraces.h"
#include "window/settingspanel.h"

#include <QApplication>
#include <QGridLayout>
#include <QItemSelectionModel>
#include <QProgressBar>
#include <QPushButton>
#include <QResizeEvent>
#include <QScopedValueRollback>

namespace Waveform {

Window::Window(ZuConfigModel* config, QWidget* parent)
    : MeasWindow(parent)
    , config(config)
{
    constexpr int kAnimationPoints = 3;
    constexpr int kAnimationStep_ms = 500;
    waitWindow = new WaitWnd(this);
    warning = new WarningWindow(this);
    animator.setText(tr("Events"));
    animator.setPointsCount(kAnimationPoints);
    animator.setInterval(kAnimationStep_ms);
    connect(&animator, SIGNAL(newText( QString )), SLOT(setActionButtonText( QString )));
    alignElements();
    removeProgress();
    panels = new Panels(this);
    panels->init(config, pageLayout(), bottomPanel());
    settings = new SettingsPanel(bottomPanel(), this);
    settings->initSettings(config);
    plot = new Plot(this);
    addWidget(plot);
    connect(config->setting("helix", "MeasParams"),
            SIGNAL(changed( double )), SLOT(setHelix( double )));
    connect(config->setting("HardwareRevision", "CardInfo"),
            SIGNAL(changed( double )), SLOT(onChangeCardRevision( double )));
    setupPlot();
    initEventMarkersView();
    initTwoMarkers();
    panels->setupWrapPanel(pageLayout(), bottomPanel());
    panels->setTabOrder(canvas->buttons(), settings->boxes() << actionButton());
    emptyHint = new EmptyHint(plot->canvas(), reflsTableModel());
    emptyHint->heed(actionButton(), markerMeasuring->view()->results());
    raisePlotControls();
    setupEventFilters();
}

Window::~Window()
{
    eventMarkers->setCurve(nullptr);
    curves->clear(); // while the plot that shows them still stands
}

void Window::alignElements()
{
    constexpr int kBottomPanelHeight = 78;
    bottomPanel()->setFixedHeight(kBottomPanelHeight);
    bottomPanel()->setWindowTitle(tr("Settings"));
    actionButton()->setFixedSize(100, 52);
    bottomPanel()->setActionWidget(actionButton(), Qt::AlignBottom | Qt::AlignRight);
}

void Window::removeProgress()
{
    pageLayout()->removeWidget(progressWidget());
    delete progressWidget();
}

void Window::setupPlot()
{
    plot->setMinimumSize(200, 150); // its own wish does not fit a small screen
    curves = std::make_unique<CurveSet>(plot);
    run = std::make_unique<RunTraces>(plot, curves.get(), reflsTableModel());
    canvas = new CanvasControls(plot, this);
    canvas->setupPlot();
    // A pan and a new size ask for other samples as a zoom does.
    connect(plot, SIGNAL(scaledTo( QRectF )), SLOT(rescalePlot( QRectF )));
    connect(plot, SIGNAL(resized()), SLOT(rescaleCurrentView()));
    auto* distanceNote = new DistanceNote(plot->canvas());
    connect(reflsTableModel(),
            SIGNAL(mainReflChanged( Reflectogram )), distanceNote, SLOT(showFor( Reflectogram )));
    connect(reflsTableModel(), SIGNAL(allReflsDeleted()), distanceNote, SLOT(hide()));
    canvas->setupPanner();
    canvas->setupZoomer();
}

void Window::raisePlotControls()
{
    canvas->raise();
}

void Window::setupEventFilters()
{
    installEventFilter(markerMeasuring->view());
    installEventFilter(canvas->zoomer());
}

void Window::installEventFilter(QObject* fltObj)
{
    QObject::installEventFilter(fltObj);
    const QList<QObject*> all = findChildren<QObject*>();
    for (QObject* object : all) {
        object->installEventFilter(fltObj);
    }
}

QList<QObject*> Window::eventFilters() const
{
    return {const_cast<Window*>(this)};
}

bool Window::eventFilter(QObject* /*object*/, QEvent* event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (isKey && event != forwarded) { // what the window leaves comes up to the frame again
        const QScopedValueRollback<QEvent*> once(forwarded, event);
        QApplication::instance()->notify(this, event);
    }
    return false;
}

void Window::initEventMarkersView()
{
    eventMarkers = new EventMarkersView(this);
    eventMarkers->attach(plot);
    eventMarkers->setSelectionModel(panels->eventsModel()->selectionModel());
    mainTrace = std::make_unique<MainTrace>(
        MainTrace::Parts {plot, canvas, curves.get(), eventMarkers, panels->eventsModel()});
}

void Window::initTwoMarkers()
{
    markerMeasuring = new MarkerMeasuring(this);
    markerMeasuring->initTwoMarkers(plot, canvas, panels->measView(), reflsTableModel());
}

void Window::setModel(PluginModel* newModel)
{
    if (model != nullptr) { // the base lets it go only as far as the window itself follows it
        model->disconnect(&animator);
        model->disconnect(eventMarkers);
        model->disconnect(actionButton());
    }
    MeasWindow::setModel(newModel);
    if (newModel == nullptr) {
        return;
    }
    model = qobject_cast<Model*>(newModel);
    if (model != nullptr) {
        connectModel();
    }
}

void Window::connectModel()
{
    emptyHint->follow(model);
    connect(model,
            SIGNAL(measured( QString, WfMeasParams )), SLOT(updateMeased( QString, WfMeasParams )));
    connect(model, SIGNAL(measTick( int, int )), SLOT(updateCountdownText( int, int )));
    canvas->showRange(model->distance());
    connect(model, SIGNAL(analisisStarted()), &animator, SLOT(start()));
    connect(model, SIGNAL(analisisFinished()), SLOT(analyseFinished()));
    connect(model, SIGNAL(stopped( MeasModel* )), &animator, SLOT(stop()));
    connect(model,
            SIGNAL(eventListReady( EventList )), eventMarkers, SLOT(setMarkers( EventList )));
    connect(model, SIGNAL(eventListReady( EventList )), SLOT(setEventListToMainRefl( EventList )));
    connect(model, SIGNAL(measStarted()), SLOT(oneReflMeasStarted()));
    connect(model, SIGNAL(measFinished()), SLOT(oneReflMeasFinished()));
    connect(model,
            SIGNAL(setActionButtonEnabled( bool )), actionButton(), SLOT(setEnabled( bool )));
}

ReflsTableModel* Window::reflsTableModel() const
{
    return panels->reflsModel();
}

void Window::setWaitWindowVisible(bool visible)
{
    waitWindow->setVisible(visible);
}

void Window::showWarning(const QString& text)
{
    warning->show(text, QString());
}

void Window::replot()
{
    plot->replot();
}

void Window::setActionButtonText(QString text)
{
    actionButton()->setText(text);
}

QString Window::configured(const QString& key) const
{
    return config->value("MeasParams", key).toString();
}

void Window::startstop()
{
    const bool realtime = configured("duration").toInt() == 0;
    if (!realtime || realtimeAllowed(configured("pulse").toInt(), configured("wavelength"))) {
        MeasWindow::startstop();
    } else if (model == nullptr || !model->running()) {
        // During a run a press that could start nothing does not stop it either.
        showWarning(tr("In realtime mode you need sets pulse 275 ns or lesser. \n Also you must "
                       "choose one of wavelength, not both in same time "));
    }
}

void Window::measStarted()
{
    panels->reflsView()->setMenuDisabled(true);
    eventMarkers->setVisible(false);
    eventMarkers->clear();
    panels->eventsModel()->selectionModel()->clear(); // or its row would stay chosen without a mark
    warning->hide(); // what was wrong or done before is over
    MeasWindow::measStarted();
    settings->setEnabled(false);
    panels->setHeld(bottomPanel(), true);
    run->begin();
    eventMarkers->setVisible(false); // deleting the main trace may have shown those of another
    if (model != nullptr) {
        setDistance(model->distance());
    }
    canvas->zoomer()->zoomOff();
    if (curves->isEmpty()) {
        canvas->offerNothing();
    }
    replot();
}

void Window::measStopped()
{
    MeasWindow::measStopped();
    settings->setEnabled(true);
    panels->setHeld(bottomPanel(), false);
    if (curves->isEmpty()) {
        canvas->offerNothing();
        return; // the menu stays disabled
    }
    run->end();
    const Reflectogram main = reflsTableModel()->mainRefl();
    if (main.isValid() && !main.isMeasured()) { // the range is still that of a run without a trace
        setDistance(main.maxdist());
        canvas->zoomer()->zoomOff();
    }
    if (model != nullptr) {
        reflsTableModel()->mainRefl().setSupParams(model->supParams());
    }
    reflsTableModel()->update();
    eventMarkers->setVisible(true);
    replot();
    panels->reflsView()->setMenuDisabled(false);
}

void Window::analyseFinished()
{
    animator.stop();
    actionButton()->setEnabled(false);
}

void Window::oneReflMeasStarted()
{
    run->traceStarted();
}

void Window::oneReflMeasFinished()
{
    run->traceFinished();
}

void Window::updateMeased(QString reflFileName, WfMeasParams params)
{
    run->takeSnapshot(reflFileName, params);
    canvas->zoomOffButton()->show();
    if (run->current() != nullptr) {
        canvas->fillMiniPlot(run->current()->reflectogram(), params.distance);
        if (panels->reflsView()->isVisible()) { // a hidden table asks when it is shown
            reflsTableModel()->computeFigures(run->current()->reflectogram());
        }
    }
    markerMeasuring->measureAgain();
    replot();
}

void Window::updateCountdownText(int rTime, int wavelength)
{
    const bool timed = configured("duration").toInt() != 0;
    setActionButtonText(timed ? countdownCaption(wavelength, rTime) : realtimeCaption(wavelength));
    actionButton()->setEnabled(true);
}

void Window::setMainRefl(Reflectogram refl)
{
    mainTrace->show(refl, reflsTableModel()->getColor(refl));
}

void Window::changeMainCurve(ReflCurve* curve)
{
    mainTrace->change(curve);
}

void Window::showMarkersTable()
{
    mainTrace->showEvents();
}

void Window::setEventListToMainRefl(EventList events)
{
    if (model != nullptr && model->running() && run->current() == nullptr) {
        eventMarkers->placeMarkers(true); // of a trace that could not be used: no other's events
        return;
    }
    Reflectogram refl = reflsTableModel()->mainRefl();
    refl.setEventList(events, Reflectogram::FromAcquisition);
    eventMarkers->placeMarkers(true);
    reflsTableModel()->update();
    panels->eventsModel()->setReflectogram(refl);
    // What was computed when the trace was finished knew of no end of the fibre.
    reflsTableModel()->computeFigures(refl);
    markerMeasuring->measureAgain();
}

void Window::deleteRefl(Reflectogram refl)
{
    const ReflCurve* shown = curves->main();
    const bool wasMain = shown != nullptr && shown->reflectogram() == refl;
    mainTrace->remove(refl);
    if (wasMain) {
        announceMainRefl(refl);
    }
}

/// When a trace above the main one is deleted, the mark in the set stays on its row, and nobody is
/// told. Once the main trace of before is gone too, the marked one is to be the main one
/// everywhere: it could not be chosen, for the set holds it for that already.
void Window::announceMainRefl(const Reflectogram& deleted)
{
    const Reflectogram marked = reflsTableModel()->mainRefl();
    if (curves->main() == nullptr && marked.isValid() && marked != deleted) {
        reflsTableModel()->setMainRefl(-1);
        reflsTableModel()->setMainRefl(marked);
    }
}

void Window::deleteAllRefls()
{
    mainTrace->removeAll();
}

void Window::setHiddenNonMainCurves(bool hidden)
{
    curves->setHiddenNonMain(hidden);
}

void Window::setIor(double ior)
{
    mainTrace->setIor(ior);
    reflsTableModel()->update();
    markerMeasuring->measureAgain();
}

void Window::setHelix(double helix)
{
    mainTrace->setHelix(helix);
    reflsTableModel()->update();
    markerMeasuring->measureAgain();
}

void Window::onChangeCardRevision(double rev)
{
    settings->onChangeCardRevision(rev);
}

void Window::setDistance(double xMax)
{
    canvas->setDistance(xMax);
}

void Window::resizeEvent(QResizeEvent* event)
{
    MeasWindow::resizeEvent(event);
    panels->shareHeight(event->size().height());
}

void Window::rescaleCurrentView()
{
    rescalePlot(canvas->zoomer()->currentRect());
}

void Window::rescalePlot(Reflectogram refl)
{
    canvas->setSampleSpacing(refl.smpl2dist(1.0));
    rescalePlot(canvas->zoomer()->currentRect());
    const bool isMeasuring = model != nullptr && model->isStarted();
    if (refl.isValid() && !isMeasuring) { // a run keeps the view that it began with
        canvas->offer();
    }
}

void Window::rescalePlot(QRectF region)
{
    curves->sampleAround(region.x(), region.width());
    if (sender() != nullptr) {
        replot();
    }
    plot->emitTransformMaps();
}

} // namespace Waveform
