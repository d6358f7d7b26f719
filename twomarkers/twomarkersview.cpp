#include "twomarkers/twomarkersview.h"

#include "plot/plot.h"
#include "plot/plotlinewidget.h"
#include "plot/qmplotmarker.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersresultwidget.h"

#include <qwt_interval.h>

#include <QKeyEvent>
#include <QWheelEvent>

#include <limits>

namespace Waveform {

TwoMarkersView::TwoMarkersView(QWidget* parent)
    : TwoMarkersView(false, parent)
{
}

TwoMarkersView::TwoMarkersView(bool useLSA, QWidget* parent)
    : QObject(parent)
    , markerA(new QmPlotMarker(parent))
    , markerB(new QmPlotMarker(parent))
    , resultWidget(new TwoMarkersResultWidget(parent))
    , lineWidget(new PlotLineWidget(parent))
    , useLSA(useLSA)
{
    init();
}

void TwoMarkersView::init()
{
    markers << markerA << markerB;
    markerA->setSymbol(QChar('A'));
    markerB->setSymbol(QChar('B'));
    markerB->installEventFilter(this); // to see the first show
    resultWidget->setWindowTitle(tr("Measurement"));
}

void TwoMarkersView::setModel(Waveform::TwoMarkersModel* newModel)
{
    model = newModel;
    model->setMarkers(markers);
    qRegisterMetaType<TwoMarkersResult>("TwoMarkersResult");
    for (QmPlotMarker* marker : qAsConst(markers)) {
        connect(marker, SIGNAL(movedTo( QmPlotMarker*, double )), model, SLOT(markerMoved( )));
    }
    connect(model,
            SIGNAL(resultsChanged( TwoMarkersResult )), resultWidget,
                   SLOT(setResult( TwoMarkersResult )));
    connect(model, SIGNAL(resultsChanged( TwoMarkersResult )), SLOT(setResult( TwoMarkersResult )));
    connect(model, SIGNAL(orlChanged( double )), resultWidget, SLOT(setORL( double )));
    connect(model, SIGNAL(orlChanged( double )), SLOT(onOrlChanged()));
    connect(model, SIGNAL(usingLSAChanged( bool )), SLOT(setUseLSA( bool )));
    setUseLSA(model->usesLSA());
}

void TwoMarkersView::attachToPlot(Waveform::Plot* newPlot)
{
    if (plot == newPlot) {
        return;
    }
    plot = newPlot;
    if (useLSA) {
        lineWidget->attach(plot);
    }
    for (QmPlotMarker* marker : qAsConst(markers)) {
        marker->attach(plot);
    }
    placeSideBySide();
}

void TwoMarkersView::placeSideBySide()
{
    markerA->moveBy(markerA->width());
    markerB->moveBy(markerA->width() + markerB->width());
    placedA_m = markerA->xValue();
    placedB_m = markerB->xValue();
}

/// Nobody has moved them since they were placed, or an empty trace has pulled them to its start.
bool TwoMarkersView::areUntouched() const
{
    const double a_m = markerA->xValue();
    const double b_m = markerB->xValue();
    return (a_m == placedA_m && b_m == placedB_m) || (a_m == 0.0 && b_m == 0.0);
}

/// Markers that were hidden when they were attached, on a canvas that had no size yet, have gone
/// back to 0 m with the first view that came.
void TwoMarkersView::placeAtFirstShow()
{
    if (wasShown || !plot) {
        return;
    }
    wasShown = true;
    if (markerA->xValue() != 0.0 || markerB->xValue() != 0.0) {
        return;
    }
    const QwtInterval shown = shownDistances();
    for (QmPlotMarker* marker : qAsConst(markers)) {
        marker->setXValue(shown.contains(0.0) ? 0.0 : shown.minValue());
    }
    placeSideBySide();
}

/// The interval of the distance axis as it was set last; from now on the markers know it, too.
QwtInterval TwoMarkersView::shownDistances()
{
    plot->updateAxes();
    for (QmPlotMarker* marker : qAsConst(markers)) {
        marker->setTransformMap(plot->canvasMap(QwtPlot::xBottom));
    }
    return plot->axisInterval(QwtPlot::xBottom);
}

void TwoMarkersView::moveMarkers(int dx)
{
    if (!isVisible()) {
        return;
    }
    for (QmPlotMarker* marker : qAsConst(markers)) {
        if (marker->isChecked()) {
            marker->moveBy(dx);
        }
    }
}

bool TwoMarkersView::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        moveMarkers(static_cast<QWheelEvent*>(event)->angleDelta().y());
        event->accept(); // or the parent of the widget would be offered it as well
        return true;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_PageUp && key != Qt::Key_PageDown) {
            break;
        }
        moveMarkers(key == Qt::Key_PageUp ? 1 : -1);
        event->accept();
        return true;
    }
    case QEvent::Show:
        if (watched == markerB) {
            placeAtFirstShow();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void TwoMarkersView::onWidgetShown(QWidget* w, bool visible)
{
    if (w == resultWidget) {
        setVisible(visible);
    }
}

bool TwoMarkersView::isVisible() const
{
    return resultWidget->isVisible();
}

void TwoMarkersView::setVisible(bool visible)
{
    resultWidget->setVisible(visible);
    markerA->setVisible(visible);
    markerB->setVisible(visible);
    if (useLSA) {
        lineWidget->setVisible(visible);
    }
}

void TwoMarkersView::setHidden(bool hidden)
{
    setVisible(!hidden);
}

void TwoMarkersView::hide()
{
    setVisible(false);
}

void TwoMarkersView::show()
{
    setVisible(true);
}

void TwoMarkersView::setUseLSA(bool use)
{
    if (use == useLSA) {
        return;
    }
    useLSA = use;
    if (plot) {
        lineWidget->attach(plot);
    }
}

void TwoMarkersView::setResult(TwoMarkersResult res)
{
    lineWidget->setLine(res.lsaLine);
    isStretchShown = res.isStretch();
    onOrlChanged();
}

/// Without a stretch no computation is asked for, and what one under way tells is of another.
void TwoMarkersView::onOrlChanged()
{
    if (!isStretchShown) {
        setORL(std::numeric_limits<double>::quiet_NaN());
    }
}

void TwoMarkersView::setORL(double orl)
{
    resultWidget->setORL(orl);
}

void TwoMarkersView::onMainReflChanged(Reflectogram refl)
{
    const bool isFirst = refl.isValid() && !hasTrace;
    hasTrace = refl.isValid();
    if (!isFirst || !areUntouched()) {
        return;
    }
    for (QmPlotMarker* marker : qAsConst(markers)) {
        marker->setXValue(0.0);
    }
    wasShown = false;
    if (markerB->isVisible()) {
        placeAtFirstShow();
    }
}

void TwoMarkersView::moveMarkersToScreen()
{
    if (!plot) {
        return;
    }
    const QwtInterval shown = shownDistances();
    if (!shown.contains(markerA->xValue())) {
        markerA->setXValue(shown.minValue());
        markerA->moveBy(markerA->width());
    }
    if (!shown.contains(markerB->xValue())) {
        markerB->setXValue(shown.maxValue());
        markerB->moveBy(-markerB->width());
    }
}

} // namespace Waveform
