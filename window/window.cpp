#include "window/window.h"

#include "acquisition/model.h"
#include "events/eventmarkersview.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/waitwnd.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfigmodel.h"
#include "platform/otdr/decimize.h"
#include "plot/plot.h"
#include "plot/qmpanner.h"
#include "plot/qmplotzoomer.h"
#include "plot/reflcurve.h"
#include "refls/reflstablemodel.h"
#include "window/countdown.h"
#include "window/ui_canvas.h"

#include <QApplication>
#include <QGridLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QtConcurrent>

#include <algorithm>
#include <cmath>

namespace Waveform {

namespace {

constexpr int kBottomPanelHeight = 78;
const QSize kActionButtonSize(100, 52);

const QSize kLeastPlotSize(200, 150);

/// Longest pulse that realtime can show at its refresh rate, ns.
constexpr int kLongestRealtimePulse_ns = 275;

constexpr int kZoomButtonHeight = 52;
constexpr int kZoomButtonAlpha = 128;
constexpr double kZoomFactor = 2.0;
constexpr double kLeastSpan_m = 0.5;
constexpr double kLeastSpan_dB = 0.05;

/// A view narrower than this many samples shows nothing more.
constexpr double kLeastSamples = 5.0;

constexpr double kCurveZ = 20.0;
constexpr double kMainCurveZ = 100.0;

} // namespace

Window::Window(ZuConfigModel* config, QWidget* parent)
    : MeasWindow(parent)
    , config(config)
{
    waitWindow = new WaitWnd(this);
    warning = new WarningWindow(this);
    alignElements();
    removeProgress();
    initReflsTable();
    pageLayout()->setRowStretch(1, 1);
    plot = new Plot(this);
    addWidget(plot);
    connect(config->setting("helix", "MeasParams"),
            SIGNAL(changed( double )), SLOT(setHelix( double )));
    setupPlot();
    setupPanner();
    setupZoomer();
    initEventMarkersView();
    raisePlotControls();
    setupEventFilters();
}

Window::~Window()
{
    eventMarkers->setCurve(nullptr);
    clearCurves(); // while the plot that shows them still stands
}

void Window::alignElements()
{
    bottomPanel()->setFixedHeight(kBottomPanelHeight);
    actionButton()->setFixedSize(kActionButtonSize);
    bottomPanel()->setActionWidget(actionButton(), Qt::AlignBottom | Qt::AlignRight);
}

void Window::removeProgress()
{
    pageLayout()->removeWidget(progressWidget());
    delete progressWidget();
}

void Window::initReflsTable()
{
    reflsModel = new ReflsTableModel(this);
    connect(reflsModel, SIGNAL(reflDeleted( Reflectogram )), SLOT(deleteRefl( Reflectogram )));
    connect(reflsModel, SIGNAL(mainReflChanged( Reflectogram )), SLOT(setMainRefl( Reflectogram )));
    connect(reflsModel, SIGNAL(allReflsDeleted()), SLOT(deleteAllRefls()));
}

void Window::setupPlot()
{
    plot->setMinimumSize(kLeastPlotSize); // its own wish does not fit a small screen
    canvasUi = std::make_unique<Ui_Canvas>();
    canvasUi->setupUi(plot->canvas());
    canvasUi->miniPlot->hide();
    setupZoomButtons();
    connect(plot, SIGNAL(scaledTo( QRectF )), canvasUi->miniPlot, SLOT(highlightArea( QRectF )));
    connect(plot, SIGNAL(scaledTo( QRectF )), SLOT(rescalePlot( QRectF )));
    connect(plot, SIGNAL(resized()), SLOT(rescaleCurrentView()));
    connect(reflsModel, SIGNAL(mainReflChanged( Reflectogram )), SLOT(rescalePlot( Reflectogram )));
}

void Window::setupZoomButtons()
{
    QPalette translucent = canvasUi->zoomOffButton->palette();
    QColor button = translucent.color(QPalette::Button);
    button.setAlpha(kZoomButtonAlpha);
    translucent.setBrush(QPalette::Button, button);
    const int rows = canvasUi->zoomLayout->rowCount();
    for (int row = 0; row < rows; ++row) {
        QWidget* widget = canvasUi->zoomLayout->itemAtPosition(row, 0)->widget();
        widget->hide();
        widget->setMinimumHeight(kZoomButtonHeight);
        widget->setPalette(translucent);
        // Keeps the row's height while its button is hidden.
        canvasUi->zoomLayout->addItem(
            new QSpacerItem(1, kZoomButtonHeight, QSizePolicy::Fixed, QSizePolicy::Fixed), row, 1);
    }
}

void Window::setupPanner()
{
    auto* panner = new QmPanner(plot->canvas());
    // The first one does not take: the end of a drag needs no sampling beyond that of its steps.
    connect(panner, SIGNAL(moved( QPoint )), SLOT(rescalePlot( )));
    connect(panner, SIGNAL(moving( QPoint )), plot, SLOT(shiftScale( QPoint )));
}

void Window::setupZoomer()
{
    zoomer = new QmPlotZoomer(plot);
    zoomer->setZoomInFactor(kZoomFactor);
    zoomer->setZoomOutFactor(kZoomFactor);
    zoomer->setMinRange(kLeastSpan_m);
    zoomer->setMinYRange(kLeastSpan_dB);
    QWidget* miniPlot = canvasUi->miniPlot;
    connect(zoomer, SIGNAL(newBounds( QRectF )), SLOT(rescalePlot( QRectF )));
    connect(zoomer, SIGNAL(newBounds( QRectF )), miniPlot, SLOT(highlightArea( QRectF )));
    connect(zoomer, SIGNAL(maxScaledOut()), miniPlot, SLOT(nohl()));
    connect(canvasUi->zoomOffButton, SIGNAL(clicked()), zoomer, SLOT(zoomOff()));
    connect(canvasUi->zoomInButton, SIGNAL(clicked()), zoomer, SLOT(zoomIn()));
    connect(canvasUi->zoomOutButton, SIGNAL(clicked()), zoomer, SLOT(zoomOut()));
    connect(zoomer, SIGNAL(disableZoomIn( bool )), canvasUi->zoomInButton, SLOT(setHidden( bool )));
    connect(zoomer,
            SIGNAL(disableZoomOut( bool )), canvasUi->zoomOutButton, SLOT(setHidden( bool )));
    connect(zoomer, SIGNAL(disableZoomOut( bool )), miniPlot, SLOT(setHidden( bool )));
}

void Window::raisePlotControls()
{
    canvasUi->zoomInButton->raise();
    canvasUi->zoomOutButton->raise();
    canvasUi->zoomOffButton->raise();
}

void Window::setupEventFilters()
{
    installEventFilter(zoomer);
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
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        QApplication::instance()->notify(this, event);
    }
    return false;
}

void Window::initEventMarkersView()
{
    eventMarkers = new EventMarkersView(this);
    eventMarkers->attach(plot);
}

void Window::setModel(PluginModel* newModel)
{
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
    connect(model,
            SIGNAL(measured( QString, WfMeasParams )), SLOT(updateMeased( QString, WfMeasParams )));
    connect(model, SIGNAL(measTick( int, int )), SLOT(updateCountdownText( int, int )));
    setDistance(model->distance());
    plot->setAxisScale(QwtPlot::xBottom, 0.0, model->distance());
    plot->setAxisScale(QwtPlot::yLeft, Plot::kMinY, Plot::kMaxY);
    plot->enableAxis(QwtPlot::xBottom, true);
    plot->enableAxis(QwtPlot::yLeft, true);
    connect(model, SIGNAL(analisisFinished()), SLOT(analyseFinished()));
    connect(model, SIGNAL(eventListReady( EventList )), SLOT(setEventListToMainRefl( EventList )));
    connect(model, SIGNAL(measStarted()), SLOT(oneReflMeasStarted()));
    connect(model, SIGNAL(measFinished()), SLOT(oneReflMeasFinished()));
    connect(model,
            SIGNAL(setActionButtonEnabled( bool )), actionButton(), SLOT(setEnabled( bool )));
}

void Window::setWaitWindowVisible(bool visible)
{
    waitWindow->setVisible(visible);
}

void Window::showWarning(const QString& text)
{
    warning->show(text, QString());
}

void Window::setActionButtonText(QString text)
{
    actionButton()->setText(text);
}

QString Window::configured(const QString& key) const
{
    return config->value("MeasParams", key).toString();
}

bool Window::realtimeAllowed() const
{
    return configured("pulse").toInt() <= kLongestRealtimePulse_ns
        && configured("wavelength") != "all";
}

void Window::startstop()
{
    const bool realtime = configured("duration").toInt() == 0;
    if (!realtime || realtimeAllowed()) {
        MeasWindow::startstop();
        return;
    }
    if (model != nullptr && model->running()) {
        return; // a press that could start nothing does not stop the run either
    }
    showWarning(tr("In realtime mode you need sets pulse 275 ns or lesser. \n Also you must choose "
                   "one of wavelength, not both in same time "));
}

void Window::measStarted()
{
    eventMarkers->setVisible(false);
    eventMarkers->clear();
    MeasWindow::measStarted();
    const QList<Reflectogram> loaded =
        reflsModel->refls(); // deleting changes the list and the curves
    for (const Reflectogram& refl : loaded) {
        if (refl.isMeasured()) {
            reflsModel->deleteRefl(refl);
        }
    }
    for (ReflCurve* curve : qAsConst(curves)) {
        curve->detach();
    }
    eventMarkers->setVisible(false); // deleting the main trace may have shown those of another
    if (model != nullptr) {
        setDistance(model->distance());
    }
    measCurve = nullptr;
    zoomer->zoomOff();
    plot->replot();
}

void Window::measStopped()
{
    MeasWindow::measStopped();
    if (curves.isEmpty()) {
        return;
    }
    for (ReflCurve* curve : qAsConst(curves)) {
        if (curve != measCurve) {
            curve->attach(plot);
        }
    }
    const ReflCurve* shown = measCurve != nullptr ? measCurve : mainCurve;
    if (shown != nullptr) {
        reflsModel->setMainRefl(shown->reflectogram());
    }
    if (model != nullptr) {
        reflsModel->mainRefl().setSupParams(model->supParams());
    }
    reflsModel->update();
    eventMarkers->setVisible(true);
    plot->replot();
}

void Window::oneReflMeasStarted()
{
    prevMeasCurve = measCurve;
    measCurve = nullptr;
}

void Window::oneReflMeasFinished()
{
    if (measCurve == nullptr) {
        return;
    }
    Reflectogram refl = measCurve->reflectogram();
    QtConcurrent::run([refl]() mutable { refl.fillOrl(); });
    if (prevMeasCurve != nullptr) {
        reflsModel->associate(refl, prevMeasCurve->reflectogram());
    }
}

void Window::updateMeased(QString reflFileName, WfMeasParams params)
{
    if (measCurve == nullptr) {
        const Reflectogram refl(reflFileName, params);
        if (!refl.isValid()) {
            qDebug() << "void Waveform::Window::updateMeased(QString, WfMeasParams)"
                     << refl.error();
            return;
        }
        reflsModel->addRefl(refl); // comes back through setMainRefl
        measCurve = mainCurve;
    } else {
        Reflectogram refl = measCurve->reflectogram();
        refl.updateFromFile(reflFileName, params);
        measCurve->setReflectogram(plot->clip(), refl);
    }
    canvasUi->zoomOffButton->show();
    if (measCurve != nullptr) {
        fillMiniPlot(measCurve->reflectogram(), params.distance);
    }
    plot->replot();
}

void Window::updateCountdownText(int rTime, int wavelength)
{
    const bool realtime = configured("duration").toInt() == 0;
    setActionButtonText(realtime ? realtimeCaption(wavelength)
                                 : countdownCaption(wavelength, rTime));
    actionButton()->setEnabled(true);
}

void Window::setMainRefl(Reflectogram refl)
{
    if (!refl.isValid()) {
        return;
    }
    const bool first = curves.isEmpty();
    ReflCurve* curve = curveOf(refl);
    if (curve == nullptr) {
        curve = new ReflCurve(plot->clip(), refl, reflsModel->getColor(refl));
        curve->attach(plot);
        curves << curve;
    }
    setDistance(refl.maxdist());
    if (first) {
        zoomer->zoomOff();
    }
    changeMainCurve(curve);
}

void Window::changeMainCurve(ReflCurve* curve)
{
    mainCurve = curve;
    canvasUi->zoomOffButton->setVisible(mainCurve != nullptr);
    if (mainCurve == nullptr) {
        canvasUi->miniPlot->setSamples(QPolygonF());
    } else {
        fillMiniPlot(mainCurve->reflectogram(), mainCurve->reflectogram().maxdist());
        for (ReflCurve* other : qAsConst(curves)) {
            other->setZ(kCurveZ);
        }
        mainCurve->setZ(kMainCurveZ);
        eventMarkers->setVisible(true);
    }
    showMarkersTable();
}

void Window::showMarkersTable()
{
    eventMarkers->setCurve(mainCurve);
    if (mainCurve == nullptr) {
        eventMarkers->setVisible(false);
    }
}

void Window::setEventListToMainRefl(EventList events)
{
    reflsModel->mainRefl().setEventList(events, Reflectogram::FromAcquisition);
    eventMarkers->placeMarkers(true);
    reflsModel->update();
}

void Window::deleteRefl(Reflectogram refl)
{
    if (ReflCurve* curve = curveOf(refl)) {
        curve->detach();
        curves.removeAll(curve);
        if (curve == mainCurve) {
            changeMainCurve(nullptr);
        }
        eraseCurve(curve);
        plot->replot();
    }
}

void Window::eraseCurve(ReflCurve* curve)
{
    // A message of the acquisition program that comes late must not meet a curve that is gone.
    if (measCurve == curve) {
        measCurve = nullptr;
    }
    if (prevMeasCurve == curve) {
        prevMeasCurve = nullptr;
    }
    delete curve;
}

void Window::clearCurves()
{
    const QList<ReflCurve*> gone = curves;
    curves.clear();
    for (ReflCurve* curve : gone) {
        curve->detach();
        eraseCurve(curve);
    }
}

void Window::deleteAllRefls()
{
    changeMainCurve(nullptr);
    clearCurves();
    canvasUi->miniPlot->hide();
    plot->replot();
}

ReflCurve* Window::curveOf(const Reflectogram& refl) const
{
    for (ReflCurve* curve : curves) {
        if (curve->reflectogram() == refl) {
            return curve;
        }
    }
    return nullptr;
}

void Window::setHelix(double helix)
{
    if (mainCurve == nullptr) {
        return;
    }
    Reflectogram refl = mainCurve->reflectogram();
    refl.setHelix(helix);
    mainCurve->scale(plot->clip());
    plot->replot();
    fillMiniPlot(refl, refl.maxdist());
}

void Window::setDistance(double xMax)
{
    constexpr double kSpan_dB = Plot::kMaxY - Plot::kMinY;
    canvasUi->miniPlot->setScales(QRectF(0.0, Plot::kMaxY, xMax, -kSpan_dB), false);
    zoomer->setMaxRect(QRectF(0.0, Plot::kMinY, xMax, kSpan_dB));
    plot->setMaxX(xMax);
}

void Window::fillMiniPlot(const Reflectogram& refl, double upTo_m)
{
    const wf_clip_t whole {0.0, upTo_m, canvasUi->miniPlot->width()};
    canvasUi->miniPlot->setSamples(Decimize(refl, false)(whole), true);
}

void Window::rescaleCurrentView()
{
    rescalePlot(zoomer->currentRect());
}

void Window::rescalePlot(Reflectogram refl)
{
    zoomer->setMinRange(std::max(kLeastSpan_m, kLeastSamples * refl.smpl2dist(1.0)));
    rescalePlot(zoomer->currentRect());
}

void Window::rescalePlot(QRectF region)
{
    const double x = region.x();
    const double width = region.width();
    const double margin = std::abs(width);
    const wf_clip_t clip {x - margin, x + width + margin, 3 * plot->canvas()->width()};
    for (ReflCurve* curve : qAsConst(curves)) {
        curve->scale(clip);
    }
    if (sender() != nullptr) {
        plot->replot();
    }
    plot->emitTransformMaps();
}

} // namespace Waveform
