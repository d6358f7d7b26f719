#include "events/eventmarkersview.h"

#include "platform/otdr/otdr.h"
#include "plot/stackorder.h"

#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_symbol.h>
#include <qwt_text.h>

#include <QItemSelectionModel>
#include <QPolygonF>

#include <cmath>

namespace {

constexpr double kSamePlace_m = 0.01;

// The band over a fibre section: the main curve's colour, wide and translucent.
constexpr int kBandWidth_px = 9;
constexpr double kBandOpacity = 0.2;

/// Index of the first sample of a curve that is not before x; the number of samples where all are.
int firstNotBefore(const QwtPlotCurve& curve, double x)
{
    int low = 0;
    int high = static_cast<int>(curve.dataSize());
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (curve.sample(middle).x() < x) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

/// The sample of a curve on which a tick at a distance stands. Only for a curve that has samples.
QPointF snapped(const QwtPlotCurve& curve, double distance_m)
{
    const int count = static_cast<int>(curve.dataSize());
    const int next = firstNotBefore(curve, distance_m);
    if (next == count) {
        return curve.sample(count - 1);
    }
    const QPointF point = curve.sample(next);
    if (next == 0 || std::abs(point.x() - distance_m) < kSamePlace_m) {
        return point;
    }
    return curve.sample(firstNotBefore(curve, curve.sample(next - 1).x()));
}

QwtPlotCurve* newBand()
{
    auto* band =
        new QwtPlotCurve(QwtText()); // the view deletes it, or the plot that it is shown on
    band->setZ(stackorder::kFibreBand);
    band->setStyle(QwtPlotCurve::Sticks);
    band->setRenderHint(QwtPlotItem::RenderAntialiased, true);
    band->setCurveFitter(nullptr);
    return band;
}

} // namespace

EventMarkersView::EventMarkersView(QObject* parent)
    : QObject(parent)
    , fiberCurve(newBand())
{
}

EventMarkersView::~EventMarkersView()
{
    // A plot that died first took what was attached to it along.
    if (plot) {
        clearMarkers();
    }
    if (plot || !fiberShown) {
        delete fiberCurve;
    }
}

void EventMarkersView::attach(Waveform::Plot* newPlot)
{
    if (plot != nullptr) {
        disconnect(plot, SIGNAL(destroyed()), this, SLOT(onPlotDestroyed()));
    }
    plot = newPlot;
    if (plot != nullptr) {
        connect(plot, SIGNAL(destroyed()), SLOT(onPlotDestroyed()));
    }
}

void EventMarkersView::onPlotDestroyed()
{
    markers.clear();
    activeMarker = nullptr;
    if (fiberShown) {
        fiberCurve = newBand();
        fiberShown = false;
    }
}

void EventMarkersView::setCurve(ReflCurve* newCurve)
{
    clear();
    if (curve != nullptr) {
        disconnect(curve, SIGNAL(dataChanged()), this, SLOT(placeMarkers()));
    }
    curve = newCurve;
    if (curve != nullptr) {
        connect(curve, SIGNAL(dataChanged()), SLOT(placeMarkers()));
        placeMarkers();
    }
}

void EventMarkersView::setSelectionModel(QItemSelectionModel* model)
{
    if (selectionModel == model) {
        return;
    }
    const char* changed = SIGNAL(currentRowChanged( QModelIndex, QModelIndex ));
    if (selectionModel != nullptr) {
        disconnect(selectionModel, changed, this, SLOT(changeCurrentEvent( QModelIndex )));
    }
    selectionModel = model;
    if (selectionModel != nullptr) {
        connect(selectionModel, changed, SLOT(changeCurrentEvent( QModelIndex )));
    }
}

QwtSymbol* EventMarkersView::symbol(bool active) const
{
    return new QwtSymbol(QwtSymbol::VLine, QBrush(Qt::transparent),
                         QPen(Qt::red, 1.0, Qt::SolidLine), QSize(1, active ? 1000 : 100));
}

void EventMarkersView::changeCurrentEvent(const QModelIndex& index)
{
    setActiveMarker(index.row());
}

void EventMarkersView::setActiveMarker(int row)
{
    activeIndex = row;
    if (activeMarker != nullptr) {
        activeMarker->setSymbol(symbol(false));
        activeMarker = nullptr;
    }
    setActiveFiber(-1, -1);
    if (row >= 0 && row < markers.size()) {
        activeMarker = markers.at(row);
        if (activeMarker != nullptr) {
            activeMarker->setSymbol(symbol(true));
        } else {
            setActiveFiber(row - 1, row + 1);
        }
    }
    if (sender() != nullptr && plot != nullptr) {
        plot->replot();
    }
}

void EventMarkersView::setActiveFiber(int from, int to)
{
    fiberCurve->detach();
    fiberShown = false;
    const int count = markers.size();
    if (from < 0 || to < 0 || from >= count || to >= count || from == to) {
        return;
    }
    const QwtPlotMarker* first = markers.at(from);
    const QwtPlotMarker* last = markers.at(to);
    if (first == nullptr || last == nullptr) {
        return; // two sections side by side have no tick between them
    }
    QPolygonF band;
    const int end = firstNotBefore(*curve, last->xValue());
    for (int i = firstNotBefore(*curve, first->xValue()); i <= end; ++i) {
        band << curve->sample(i);
    }
    QPen pen = curve->pen();
    QColor colour = pen.color();
    colour.setAlphaF(kBandOpacity);
    pen.setColor(colour);
    pen.setWidth(kBandWidth_px);
    fiberCurve->setSamples(band);
    fiberCurve->setPen(pen);
    fiberCurve->attach(plot);
    fiberShown = true;
}

void EventMarkersView::placeMarkers()
{
    placeMarkers(false);
}

void EventMarkersView::placeMarkers(bool replot)
{
    place(curve != nullptr ? curve->reflectogram().getEventList() : EventList());
    if (replot && plot != nullptr) {
        plot->replot();
    }
}

void EventMarkersView::setMarkers(EventList events)
{
    place(events);
}

void EventMarkersView::place(const EventList& events)
{
    clearMarkers();
    if (curve == nullptr || plot == nullptr || !curve->reflectogram().isValid()
        || curve->dataSize() == 0) {
        setActiveFiber(-1, -1); // there are no ticks any more between which a band could lie
        return;
    }
    const Reflectogram& refl = curve->reflectogram();
    for (const Event& event : events) {
        markers << (event.type == Event::Fiber
                        ? nullptr
                        : newMarker(OTDR::smpl2meters(event.position, refl.dataSpacing(),
                                                      refl.IOR(), refl.helix())));
    }
    setActiveMarker(activeIndex);
}

QwtPlotMarker* EventMarkersView::newMarker(double distance_m) const
{
    auto* marker = new QwtPlotMarker; // clearMarkers() deletes it
    marker->setSymbol(symbol(false));
    marker->setValue(snapped(*curve, distance_m));
    marker->setZ(stackorder::kEventMark);
    marker->attach(plot);
    marker->setVisible(visible);
    return marker;
}

void EventMarkersView::setVisible(bool newVisible)
{
    visible = newVisible;
    for (QwtPlotMarker* marker : qAsConst(markers)) {
        if (marker != nullptr) {
            marker->setVisible(visible);
        }
    }
}

void EventMarkersView::clear()
{
    setActiveMarker(-1);
    clearMarkers();
}

void EventMarkersView::clearMarkers()
{
    activeMarker = nullptr;
    for (QwtPlotMarker* marker : qAsConst(markers)) {
        if (marker != nullptr) {
            marker->detach();
            delete marker;
        }
    }
    markers.clear();
}
