// The markers of the measurement while traces come and go.

#include "plot/qmmarker.h"
#include "plot/qmplotmarker.h"
#include "tests/support/finish.h"
#include "tests/twomarkers/shownvalue.h"
#include "tests/window/screen.h"
#include "twomarkers/twomarkersmodel.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "twomarkers/twomarkersview.h"

namespace {

using namespace testing_support; // the fixture and builders

class MarkersOfTraces : public Screen
{
protected:
    MarkersOfTraces()
        : markers(plot()->canvas()->findChildren<QmPlotMarker*>())
        , view(window->findChild<Waveform::TwoMarkersView*>())
    {
        view->show();
    }

    static SorSketch longTrace()
    {
        SorSketch sketch = SorSketch::plain();
        sketch.fxd.pulses[0].dataSpacing *= 40;
        sketch.fxd.acquisitionRange *= 40;
        return sketch;
    }

    [[nodiscard]] int column(int marker) const
    {
        return markers.at(marker)->x() + QmMarker::markerBorder;
    }

    [[nodiscard]] int columnOf(double distance_m) const
    {
        return qRound(plot()->canvasMap(QwtPlot::xBottom).transform(distance_m));
    }

    [[nodiscard]] double attenuation() const { return value(4).section(' ', 0, 0).toDouble(); }

    [[nodiscard]] QString value(int row) const { return shownValue(view->results(), row); }

    /// A snapshot of a fibre of 2 km that loses so much in each.
    void arrive(Decibels perKilometre)
    {
        const QString name =
            files.writeSnapshot(QString("lost%1.bin").arg(++snapshots),
                                TraceBuilder().fibre(2_km).attenuation(perKilometre));
        emit model->measured(name, WfMeasParams());
    }

    void expectSideBySide() const
    {
        EXPECT_NEAR(column(0), columnOf(0.0) + 29, 1);
        EXPECT_NEAR(column(1), columnOf(0.0) + 58, 1);
    }

    QList<QmPlotMarker*> markers;
    Waveform::TwoMarkersView* view;
    int snapshots = 0;
};

TEST_F(MarkersOfTraces, StandSideBySideOnTheFirstOneWhateverItsLength)
{
    load("long.sor", longTrace());
    ASSERT_GT(refls()->mainRefl().maxdist(), 50'000.0);
    finish();
    expectSideBySide();
}

TEST_F(MarkersOfTraces, StandSideBySideOnTheOneAfterADeletedOne)
{
    load("short.sor");
    finish();
    const QString before = value(6);
    ASSERT_TRUE(before.endsWith(" dB")) << qPrintable(before);
    refls()->deleteRefl(0);
    finish();
    EXPECT_EQ(value(6), "-");
    load("long.sor", longTrace());
    finish();
    expectSideBySide();
    EXPECT_NE(value(2), "0.0 m");
    EXPECT_NE(value(6), before);
}

TEST_F(MarkersOfTraces, MeasureNothingWhenAllAreDeleted)
{
    load("a.sor");
    load("b.sor");
    finish();
    ASSERT_NE(value(3), "0.00 dB");
    refls()->deleteAllRefls();
    finish();
    EXPECT_EQ(value(2), "0.0 m");
    EXPECT_EQ(value(3), "0.00 dB");
    EXPECT_EQ(value(6), "-");
    load("long.sor", longTrace());
    finish();
    expectSideBySide();
}

TEST_F(MarkersOfTraces, MeasureEachSnapshotOfTheTrace)
{
    emit model->measStarted();
    arrive(0.2_dB);
    markers.at(0)->setXValue(500.0);
    markers.at(1)->setXValue(1500.0);
    EXPECT_NEAR(attenuation(), 0.2, 0.01);
    arrive(0.4_dB);
    EXPECT_NEAR(attenuation(), 0.4, 0.01);
    finish();
}

TEST_F(MarkersOfTraces, MeasureTheLengthsThatTheHelixFactorLeaves)
{
    arrive(0.2_dB);
    markers.at(0)->setXValue(500.0);
    markers.at(1)->setXValue(1500.0);
    EXPECT_NEAR(attenuation(), 0.2, 0.01);
    configure("helix", 25.0); // a quarter more fibre in each metre of cable
    EXPECT_NEAR(attenuation(), 0.25, 0.01);
    QMetaObject::invokeMethod(window.get(), "setIor",
                              Q_ARG(double, refls()->mainRefl().IOR() / 1.25));
    EXPECT_NEAR(attenuation(), 0.2, 0.01);
    finish();
}

TEST_F(MarkersOfTraces, MeasureAnewOnceTheEventsAreFound)
{
    emit model->measStarted();
    arrive(0.2_dB);
    finish();
    const auto* measuring = window->findChild<Waveform::TwoMarkersModel*>();
    const QSignalSpy results(measuring, SIGNAL(resultsChanged( TwoMarkersResult )));
    emit model->measFinished();
    emit model->eventListReady({Event(Event::SpanStart, 0, 10), Event(Event::SpanEnd, 2000, 10)});
    EXPECT_EQ(results.size(), 1);
    finish();
}

} // namespace
