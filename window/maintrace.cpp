#include "window/maintrace.h"

#include "events/eventmarkersview.h"
#include "events/eventstablemodel.h"
#include "plot/plot.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotzoomer.h"
#include "window/canvascontrols.h"
#include "window/curveset.h"

#include <QPushButton>

namespace Waveform {

MainTrace::MainTrace(const Parts& parts)
    : on(parts)
{
}

void MainTrace::show(const Reflectogram& refl, const QColor& color)
{
    if (!refl.isValid()) {
        return;
    }
    const bool first = on.curves->isEmpty();
    ReflCurve* curve = on.curves->find(refl);
    if (curve == nullptr) {
        curve = on.curves->add(refl, color);
    }
    on.canvas->setDistance(refl.maxdist());
    if (first) {
        on.canvas->zoomer()->zoomOff();
    }
    change(curve);
}

void MainTrace::change(ReflCurve* curve)
{
    on.curves->setMain(curve);
    on.canvas->zoomOffButton()->setVisible(curve != nullptr);
    if (curve == nullptr) {
        on.canvas->miniPlot()->setSamples(QPolygonF());
    } else {
        fillOverview(curve->reflectogram());
        on.eventMarkers->setVisible(true);
    }
    showEvents();
}

void MainTrace::showEvents()
{
    ReflCurve* curve = on.curves->main();
    if (curve == nullptr) {
        on.eventsModel->clear();
        on.eventMarkers->setCurve(nullptr);
        on.eventMarkers->setVisible(false);
    } else {
        on.eventsModel->setReflectogram(curve->reflectogram());
        on.eventMarkers->setCurve(curve);
    }
}

void MainTrace::remove(const Reflectogram& refl)
{
    ReflCurve* curve = on.curves->find(refl);
    if (curve == nullptr) {
        return;
    }
    on.curves->take(curve);
    if (curve == on.curves->main()) {
        change(nullptr);
    }
    delete curve;
    if (on.curves->isEmpty()) {
        on.canvas->offerNothing();
    }
    on.plot->replot();
}

void MainTrace::removeAll()
{
    change(nullptr);
    on.curves->clear();
    on.canvas->miniPlot()->setSamples(QPolygonF());
    on.canvas->offerNothing();
    on.plot->replot();
}

void MainTrace::setIor(double ior)
{
    if (const ReflCurve* curve = on.curves->main()) {
        Reflectogram(curve->reflectogram()).setIOR(ior); // a handle: the curve's trace follows
        sampleAnew();
    }
}

void MainTrace::setHelix(double helix_percent)
{
    if (const ReflCurve* curve = on.curves->main()) {
        Reflectogram(curve->reflectogram()).setHelix(helix_percent);
        sampleAnew();
    }
}

/// The trace got another distance scale.
void MainTrace::sampleAnew()
{
    ReflCurve* curve = on.curves->main();
    on.canvas->setDistance(curve->reflectogram().maxdist());
    curve->scale(on.plot->clip());
    on.plot->replot();
    fillOverview(curve->reflectogram());
    on.eventsModel->setReflectogram(curve->reflectogram());
}

void MainTrace::fillOverview(const Reflectogram& refl)
{
    on.canvas->fillMiniPlot(refl, refl.maxdist());
}

} // namespace Waveform
