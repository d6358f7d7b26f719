#include "window/runtraces.h"

#include "plot/plot.h"
#include "refls/reflstablemodel.h"
#include "window/curveset.h"

#include <QDebug>
#include <QtConcurrentRun>

namespace Waveform {

RunTraces::RunTraces(Plot* plot, CurveSet* curves, ReflsTableModel* refls)
    : plot(plot)
    , curves(curves)
    , refls(refls)
{
}

void RunTraces::begin()
{
    const QList<Reflectogram> loaded = refls->refls(); // deleting changes the list and the curves
    for (const Reflectogram& refl : loaded) {
        if (refl.isMeasured()) {
            refls->deleteRefl(refl);
        }
    }
    curves->detachAll();
    measCurve = nullptr;
}

void RunTraces::traceStarted()
{
    prevMeasCurve = measCurve;
    measCurve = nullptr;
}

void RunTraces::traceFinished()
{
    if (measCurve == nullptr) {
        return;
    }
    Reflectogram refl = measCurve->reflectogram();
    QtConcurrent::run([refl]() mutable { refl.fillOrl(); });
    if (prevMeasCurve != nullptr) {
        refls->associate(refl, prevMeasCurve->reflectogram());
    }
}

void RunTraces::takeSnapshot(const QString& file, const WfMeasParams& params)
{
    if (measCurve != nullptr) {
        Reflectogram refl = measCurve->reflectogram();
        refl.updateFromFile(file, params);
        measCurve->setReflectogram(plot->clip(), refl);
        return;
    }
    const Reflectogram refl(file, params);
    if (!refl.isValid()) {
        qDebug() << "void Waveform::Window::updateMeased(QString, WfMeasParams)" << refl.error();
        return;
    }
    refls->addRefl(refl); // the window makes its curve the main one
    measCurve = curves->main();
}

void RunTraces::end()
{
    curves->attachAllBut(measCurve);
    const ReflCurve* shown = measCurve != nullptr ? measCurve.data() : curves->main();
    if (shown != nullptr) {
        refls->setMainRefl(shown->reflectogram());
    }
}

} // namespace Waveform
