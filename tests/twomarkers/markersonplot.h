#pragma once

#include "plot/plot.h"
#include "plot/plotlinewidget.h"
#include "plot/qmplotmarker.h"
#include "tests/plot/finger.h"
#include "tests/support/finish.h"
#include "tests/twomarkers/measuredtrace.h"
#include "tests/twomarkers/shownvalue.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "twomarkers/twomarkersview.h"

#include <QThreadPool>
#include <QtTest>

#include <gmock/gmock.h>

namespace testing_support {

/// A shown plot of 0 to 5 km with a view on its canvas, hidden as the window hides it, and a model
/// that measures 4 km of fibre.
class MarkersOnPlot : public testing::Test
{
protected:
    MarkersOnPlot()
        : view(new Waveform::TwoMarkersView(plot.canvas())) // owned by the canvas
        , model(nullptr)
        , finger(plot)
    {
        const auto markers = plot.canvas()->findChildren<QmPlotMarker*>();
        EXPECT_EQ(markers.size(), 2);
        a = markers.first();
        b = markers.last();
        view->attachToPlot(&plot);
        view->setModel(&model);
        view->hide();
        line = plot.canvas()->findChild<PlotLineWidget*>();
        plot.enableAxis(QwtPlot::xBottom, true);
        plot.enableAxis(QwtPlot::yLeft, true);
        plot.setAxisScale(QwtPlot::yLeft, 0.0, 50.0);
        plot.setAxisScale(QwtPlot::xBottom, 0.0, 5000.0);
    }

    ~MarkersOnPlot() override { QThreadPool::globalInstance()->waitForDone(); }

    void showPlot()
    {
        plot.resize(800, 480);
        plot.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&plot));
        see(0.0, 5000.0);
    }

    void showAll()
    {
        showPlot();
        view->show();
        model.setReflectogram(
            files.measured(TraceBuilder().fibre(4_km).noise(0.05_dB, 9), plainFibre()));
    }

    void see(double from_m, double to_m)
    {
        plot.setAxisScale(QwtPlot::xBottom, from_m, to_m);
        plot.replot();
        plot.emitTransformMaps();
    }

    [[nodiscard]] static int lineColumn(const QmPlotMarker* marker)
    {
        return marker->x() + QmMarker::markerBorder;
    }

    [[nodiscard]] double columnOf(double distance_m) const
    {
        return plot.canvasMap(QwtPlot::xBottom).transform(distance_m);
    }

    [[nodiscard]] double distanceAt(int column) const
    {
        return plot.canvasMap(QwtPlot::xBottom).invTransform(column);
    }

    void drag(QmPlotMarker* marker, int dx)
    {
        finger.press(*marker, QPoint(14, marker->height() - 26));
        finger.moveBy(dx);
        finger.release();
    }

    void turnWheel(int delta)
    {
        const QPoint at(400, 200);
        QWheelEvent event(at, plot.mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        event.ignore();
        EXPECT_TRUE(view->eventFilter(&plot, &event));
        EXPECT_TRUE(event.isAccepted());
    }

    [[nodiscard]] QString value(int row) const { return shownValue(view->results(), row); }

    TraceFiles files;
    Waveform::Plot plot;
    Waveform::TwoMarkersView* view;
    Waveform::TwoMarkersModel model;
    Finger finger;
    QmPlotMarker* a = nullptr;
    QmPlotMarker* b = nullptr;
    PlotLineWidget* line = nullptr;
};

} // namespace testing_support
