#pragma once

#include "plot/qmplotmarker.h"
#include "tests/support/tracefiles.h"
#include "twomarkers/twomarkersmodel.h"

#include <QSignalSpy>
#include <QWidget>

#include <gmock/gmock.h>

namespace testing_support {

/// Parameters of the fibre that the tests draw.
inline WfMeasParams plainFibre()
{
    WfMeasParams params;
    params.ior = 1.468;
    params.rbs = -81.9;
    return params;
}

/// Makes results readable for spies, where no view has done so yet.
inline int registerResults()
{
    return qRegisterMetaType<Waveform::TwoMarkersResult>("TwoMarkersResult");
}

/// A model with its two markers, which stand where they are put to the millimetre: they are not on
/// the screen.
class MeasuredTrace : public testing::Test
{
protected:
    MeasuredTrace()
        : resultType(registerResults())
        , markerA(&canvas)
        , markerB(&canvas)
        , model(nullptr)
        , results(&model, SIGNAL(resultsChanged(TwoMarkersResult)))
                  , orls(&model, SIGNAL(orlChanged( double )))
    {
        model.setMarkers({&markerA, &markerB});
    }

    void put(double a_m, double b_m)
    {
        markerA.setXValue(a_m);
        markerB.setXValue(b_m);
    }

    [[nodiscard]] Waveform::TwoMarkersResult measured(double a_m, double b_m)
    {
        put(a_m, b_m);
        model.calculate();
        return last();
    }

    [[nodiscard]] Waveform::TwoMarkersResult last() const
    {
        return results.isEmpty() ? Waveform::TwoMarkersResult()
                                 : results.last().first().value<Waveform::TwoMarkersResult>();
    }

    int resultType;
    TraceFiles files;
    QWidget canvas;
    QmPlotMarker markerA;
    QmPlotMarker markerB;
    Waveform::TwoMarkersModel model;
    QSignalSpy results;
    QSignalSpy orls;
};

} // namespace testing_support
