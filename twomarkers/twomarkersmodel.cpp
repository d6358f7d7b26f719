#include "twomarkers/twomarkersmodel.h"

#include "platform/otdr/lsaline.h"
#include "platform/otdr/orlcalc.h"
#include "platform/otdr/reflcoefcalc.h"
#include "plot/qmplotmarker.h"

#include <QFuture>
#include <QtConcurrentRun>

#include <utility>

namespace Waveform {

namespace {

/// A marker that is shown goes to a pixel column and takes the distance of that, which may lie
/// outside the trace again. Told once more, where it stands already, it keeps the distance as
/// given.
void put(QmPlotMarker& marker, double distance_m)
{
    marker.setXValue(distance_m);
    marker.setXValue(distance_m);
}

} // namespace

TwoMarkersModel::TwoMarkersModel(QObject* parent)
    : TwoMarkersModel(false, parent)
{
}

TwoMarkersModel::TwoMarkersModel(bool useLSA, QObject* parent)
    : QObject(parent)
    , useLSA(useLSA)
{
}

TwoMarkersModel::~TwoMarkersModel()
{
    if (orlWatcher) {
        orlWatcher->waitForFinished(); // the computation uses the calculator
    }
}

void TwoMarkersModel::setMarkers(const QList<QmPlotMarker*>& both)
{
    markers.clear();
    for (QmPlotMarker* marker : both) {
        markers << marker;
    }
}

void TwoMarkersModel::setORLCalc(std::unique_ptr<ORLCalc> calc)
{
    Q_ASSERT(!orlCalc);
    orlCalc = std::move(calc);
}

bool TwoMarkersModel::hasMarkers() const
{
    return markers.size() == 2 && markers.first() && markers.last();
}

void TwoMarkersModel::setReflectogram(Reflectogram newRefl)
{
    refl = newRefl;
    lsa.reset();
    for (const QPointer<QmPlotMarker>& marker : qAsConst(markers)) {
        if (marker && refl.maxdist() < marker->xValue()) {
            put(*marker, refl.maxdist());
        }
        if (marker && marker->xValue() < 0.0) {
            put(*marker, 0.0);
        }
    }
    if (hasMarkers()) {
        lsa = std::make_unique<LSALine>(markers.first()->xValue(), markers.last()->xValue(), refl);
    }
    if (orlCalc) {
        orlCalc->setReflectogram(refl);
    } else {
        orlCalc = std::make_unique<ORLCalc>(refl);
    }
    calculate();
}

void TwoMarkersModel::setUseLSA(bool use)
{
    if (use == useLSA) {
        return;
    }
    useLSA = use;
    emit usingLSAChanged(use);
    if (hasMarkers()) {
        calculate();
    }
}

void TwoMarkersModel::markerMoved()
{
    calculate();
}

void TwoMarkersModel::calculate()
{
    if (!hasMarkers()) {
        return;
    }
    TwoMarkersResult result;
    result.xA = markers.first()->xValue();
    result.xB = markers.last()->xValue();
    if (!refl.isValid()) {
        emit resultsChanged(result);
        return;
    }
    if (useLSA && lsa) {
        result.lsaLine = lsa->updateLineX1X2(result.xA, result.xB);
        result.yA = result.lsaLine.y1();
        result.yB = result.lsaLine.y2();
    } else {
        result.yA = refl.powerAtDist(result.xA);
        result.yB = refl.powerAtDist(result.xB);
    }
    requestORL(result);
    if (result.loss() < 0.0 && result.leftX() >= 0.0) {
        double peak_dB = 0.0; // the height matters to nobody here
        result.reflection = ReflcoefCalc(refl)(result.leftX(), result.leftY(), peak_dB);
    }
    emit resultsChanged(result);
}

void TwoMarkersModel::requestORL(const TwoMarkersResult& result)
{
    // Markers that the first trace pulls to its ends tell so before there is a calculator.
    if (!orlCalc || !result.isStretch()) {
        return;
    }
    if (!orlWatcher) {
        orlWatcher = std::make_unique<QFutureWatcher<double>>();
        connect(orlWatcher.get(), SIGNAL(finished()), SLOT(runQueuedORLRecalculation()));
        connect(orlWatcher.get(), SIGNAL(finished()), SLOT(throwORL()));
    }
    if (orlWatcher->isRunning()) {
        orlQueued = true;
    } else {
        runORLCalculation();
    }
}

void TwoMarkersModel::runORLCalculation()
{
    if (!hasMarkers()) {
        return; // they went while a request was queued
    }
    orlWatcher->setFuture(QtConcurrent::run(this, &TwoMarkersModel::doORLRecalculation,
                                            markers.first()->xValue(), markers.last()->xValue()));
}

double TwoMarkersModel::doORLRecalculation(double a_m, double b_m)
{
    return orlCalc->recalculate(a_m, b_m);
}

void TwoMarkersModel::runQueuedORLRecalculation()
{
    emit orlChanged(orlWatcher->future().result());
    if (orlQueued) {
        orlQueued = false;
        runORLCalculation();
    }
}

void TwoMarkersModel::throwORL()
{
    emit orlChanged(orlWatcher->future().result());
}

} // namespace Waveform
