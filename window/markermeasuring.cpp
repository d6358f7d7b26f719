#include "window/markermeasuring.h"

#include "plot/plot.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "refls/reflstablemodel.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "twomarkers/twomarkersview.h"
#include "window/canvascontrols.h"
#include "window/measview.h"
#include "window/pagegeometry.h"

#include <QFontInfo>
#include <QGridLayout>
#include <QResizeEvent>
#include <QVBoxLayout>

namespace Waveform {

MarkerMeasuring::MarkerMeasuring(QObject* window)
    : QObject(window)
{
}

void MarkerMeasuring::initTwoMarkers(Plot* newPlot, CanvasControls* newCanvas, const MeasView* bar,
                                     const ReflsTableModel* refls)
{
    plot = newPlot;
    canvas = newCanvas;
    twoMarkersView = new TwoMarkersView(plot->canvas());
    twoMarkersView->attachToPlot(plot);
    model = new TwoMarkersModel(parent());
    model->setUseLSA(bar->isUsingLsa());
    const char* mainChanged = SIGNAL(mainReflChanged( Reflectogram ));
    connect(refls, mainChanged, twoMarkersView, SLOT(onMainReflChanged( Reflectogram )));
    connect(refls, mainChanged, model, SLOT(setReflectogram( Reflectogram )));
    connect(refls, SIGNAL(allReflsDeleted()), SLOT(onAllReflsDeleted()));
    connect(refls, mainChanged, parent(), SLOT(rescalePlot( Reflectogram )));
    connect(bar, SIGNAL(usingLSAChanged( bool )), model, SLOT(setUseLSA( bool )));
    connect(bar, SIGNAL(visibility2pChanged( bool )), twoMarkersView, SLOT(setVisible( bool )));
    connect(bar, SIGNAL(visibilityChanged( bool )), twoMarkersView, SLOT(setVisible( bool )));
    connect(bar, SIGNAL(needMarkersOnScreen()), twoMarkersView, SLOT(moveMarkersToScreen()));
    twoMarkersView->setModel(model);
    canvas->legendLayout()->insertWidget(0, twoMarkersView->results());
    usualLetters = QFontInfo(twoMarkersView->results()->font()).pixelSize();
    arrangeResults(plot->canvas()->height());
    plot->canvas()->installEventFilter(this); // before the canvas is laid out for a new size
    twoMarkersView->hide();
    raiseMarkers();
    followMarkers(bar);
}

/// On a low canvas the results reach down to the knobs, which must still be seen and taken.
void MarkerMeasuring::raiseMarkers()
{
    const auto markers = plot->canvas()->findChildren<QmPlotMarker*>();
    for (QmPlotMarker* marker : markers) {
        marker->raise();
    }
}

bool MarkerMeasuring::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize) {
        arrangeResults(static_cast<QResizeEvent*>(event)->size().height());
    }
    return QObject::eventFilter(watched, event);
}

/// On a canvas that is too low even for small letters the last rows are cut off: better than all
/// of them squeezed.
void MarkerMeasuring::arrangeResults(int canvasHeight)
{
    constexpr int kEdge = 6;
    TwoMarkersResultWidget& results = *twoMarkersView->results();
    auto& rows = *qobject_cast<QGridLayout*>(results.layout());
    QFont font = results.font();
    font.setPixelSize(
        pagegeometry::letterHeight(canvasHeight, rows.rowCount(), 2 * kEdge, usualLetters));
    results.setFont(font);
    rows.setContentsMargins(kEdge, kEdge, kEdge, kEdge);
    results.setMinimumHeight(rows.minimumSize().height());
}

void MarkerMeasuring::followMarkers(const MeasView* bar)
{
    connect(bar, SIGNAL(visibilityChanged( bool )), SLOT(showInOverview()));
    const auto markers = plot->canvas()->findChildren<QmPlotMarker*>();
    for (const QmPlotMarker* marker : markers) {
        connect(marker, SIGNAL(movedTo( QmPlotMarker*, double )), SLOT(showInOverview()));
    }
}

void MarkerMeasuring::measureAgain()
{
    model->calculate();
}

/// The set says no more of its main trace then.
void MarkerMeasuring::onAllReflsDeleted()
{
    twoMarkersView->onMainReflChanged(Reflectogram());
    model->setReflectogram(Reflectogram());
}

void MarkerMeasuring::showInOverview()
{
    QList<QmPlotMarker*> shown;
    const auto markers = plot->canvas()->findChildren<QmPlotMarker*>();
    for (QmPlotMarker* marker : markers) {
        if (!marker->isHidden()) {
            shown << marker;
        }
    }
    canvas->miniPlot()->setMarkers(shown);
}

} // namespace Waveform
