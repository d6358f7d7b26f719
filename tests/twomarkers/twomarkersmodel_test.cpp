#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/reflcoefcalc.h"
#include "tests/support/metamethods.h"
#include "tests/support/tracefiles.h"
#include "tests/twomarkers/measuredtrace.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using namespace testing_support; // builder and units
using testing::ElementsAre;
using Waveform::TwoMarkersModel;
using Waveform::TwoMarkersResult;

class TwoMarkers : public MeasuredTrace
{
protected:
    void move() { QMetaObject::invokeMethod(&model, "markerMoved"); }
};

TEST_F(TwoMarkers, MeasureLengthLossAndAttenuationOfTheFibre)
{
    put(100.0, 1100.0);
    model.setReflectogram(
        files.measured(TraceBuilder().attenuation(0.35_dB).fibre(4_km), plainFibre()));
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(last().xA, 100.0);
    EXPECT_EQ(last().xB, 1100.0);
    EXPECT_NEAR(last().yA, 45.0 - 0.035, 0.001); // counts are whole thousandths
    EXPECT_EQ(last().length(), 1000.0);
    EXPECT_NEAR(last().loss(), 0.35, 0.001);
    EXPECT_NEAR(last().attenuation(), 0.35, 0.001);
    EXPECT_EQ(last().formatted(TwoMarkersResult::Reflection), "-");
    EXPECT_EQ(last().reflection, 0.0);
    EXPECT_EQ(last().orl, 0.0);
    EXPECT_TRUE(last().lsaLine.isNull());
}

TEST_F(TwoMarkers, MeasureTheSameWhenSwapped)
{
    model.setReflectogram(
        files.measured(TraceBuilder().attenuation(0.35_dB).fibre(4_km), plainFibre()));
    const TwoMarkersResult one = measured(100.0, 1100.0);
    const TwoMarkersResult other = measured(1100.0, 100.0);
    EXPECT_EQ(one.yA, other.yB);
    EXPECT_EQ(one.length(), other.length());
    EXPECT_EQ(one.loss(), other.loss());
    EXPECT_EQ(one.attenuation(), other.attenuation());
}

TEST_F(TwoMarkers, MeasureAnewWhenAMarkerMoves)
{
    model.setReflectogram(files.measured(TraceBuilder().fibre(4_km), plainFibre()));
    put(500.0, 2500.0);
    move();
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(last().length(), 2000.0);
}

TEST_F(TwoMarkers, TellOnlyTheirPlacesWithoutATrace)
{
    put(100.0, 1100.0);
    model.calculate();
    model.setUseLSA(true);
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(last().xA, 100.0);
    EXPECT_EQ(last().xB, 1100.0);
    EXPECT_EQ(last().yA, 0.0);
    EXPECT_EQ(last().yB, 0.0);
    EXPECT_TRUE(last().lsaLine.isNull());
    EXPECT_EQ(last().reflection, 0.0);
}

TEST_F(TwoMarkers, GoToZeroWithAnEmptyTrace)
{
    model.setReflectogram(files.measured(TraceBuilder().fibre(4_km), plainFibre()));
    put(100.0, 1100.0);
    model.setReflectogram(Reflectogram());
    EXPECT_EQ(markerA.xValue(), 0.0);
    EXPECT_EQ(markerB.xValue(), 0.0);
    EXPECT_EQ(last().length(), 0.0);
    EXPECT_EQ(last().yA, 0.0);
}

TEST_F(TwoMarkers, ArePulledIntoATraceThatIsGiven)
{
    const Reflectogram refl = files.measured(TraceBuilder().fibre(4_km), plainFibre());
    put(-5.0, 9000.0);
    model.setReflectogram(refl);
    EXPECT_EQ(markerA.xValue(), 0.0);
    EXPECT_EQ(markerB.xValue(), refl.maxdist());
    EXPECT_EQ(last().xA, 0.0);
    EXPECT_EQ(last().xB, refl.maxdist());
}

TEST_F(TwoMarkers, StayWhereTheyAreInsideATraceThatIsGiven)
{
    const Reflectogram refl = files.measured(TraceBuilder().fibre(4_km), plainFibre());
    put(0.0, refl.maxdist());
    model.setReflectogram(refl);
    EXPECT_EQ(markerA.xValue(), 0.0);
    EXPECT_EQ(markerB.xValue(), refl.maxdist());
}

TEST_F(TwoMarkers, OutsideTheTraceAreTakenAsTheyAreLater)
{
    const Reflectogram refl = files.measured(TraceBuilder().fibre(4_km), plainFibre());
    model.setReflectogram(refl);
    const TwoMarkersResult result = measured(-100.0, 9000.0);
    EXPECT_EQ(result.xA, -100.0);
    EXPECT_EQ(result.xB, 9000.0);
    EXPECT_EQ(result.yA, refl.powerAtDist(-100.0));
}

TEST_F(TwoMarkers, AtOnePlaceHaveNoLengthAndNoAttenuation)
{
    model.setReflectogram(files.measured(TraceBuilder().fibre(4_km), plainFibre()));
    const TwoMarkersResult result = measured(700.0, 700.0);
    EXPECT_EQ(result.length(), 0.0);
    EXPECT_EQ(result.attenuation(), 0.0);
    EXPECT_EQ(result.loss(), 0.0);
}

TEST_F(TwoMarkers, MeasureTheReflectionWhereTheLevelRises)
{
    const double height_dB = otdr::peakHeight_dB(-45.0, -81.9, 100.0);
    const Reflectogram refl = files.measured(
        TraceBuilder().fibre(4_km).reflection(2_km, Decibels {height_dB}), plainFibre());
    model.setReflectogram(refl);
    const TwoMarkersResult onPeak = measured(1999.0, 2005.0);
    EXPECT_LT(onPeak.loss(), 0.0);
    EXPECT_NEAR(onPeak.reflection, -45.0, 0.01);
    EXPECT_EQ(onPeak.formatted(TwoMarkersResult::Reflection), "-45.00 dB");
    EXPECT_NEAR(measured(2005.0, 1999.0).reflection, -45.0,
                0.01); // at the left one, whichever it is
    EXPECT_EQ(measured(1999.0, 2500.0).reflection, 0.0);
}

TEST_F(TwoMarkers, MeasureNoReflectionBeforeTheFibre)
{
    const TraceBuilder builder = TraceBuilder().front(100).fibre(4_km).reflection(0_km, 10.0_dB);
    model.setReflectogram(
        Reflectogram(files.writeSnapshot("front.bin", builder, 10.0, -1000.0), plainFibre()));
    const TwoMarkersResult result = measured(-50.0, 10.0);
    EXPECT_LT(result.loss(), 0.0);
    EXPECT_EQ(result.reflection, 0.0);
}

TEST_F(TwoMarkers, ReflectionCountsFromTheLineWhereThatIsTaken)
{
    const Reflectogram refl = files.measured(
        TraceBuilder().fibre(4_km).reflection(2_km, 20.0_dB).noise(0.2_dB, 3), plainFibre());
    model.setReflectogram(refl);
    const TwoMarkersResult plain = measured(1990.0, 2005.0);
    model.setUseLSA(true);
    const TwoMarkersResult fitted = last();
    ASSERT_LT(fitted.loss(), 0.0);
    ASSERT_GT(std::abs(plain.yA - fitted.yA), 0.01);
    double peak_dB = 0.0;
    EXPECT_EQ(fitted.reflection, ReflcoefCalc(refl)(1990.0, fitted.yA, peak_dB));
    EXPECT_NE(fitted.reflection, plain.reflection);
}

TEST_F(TwoMarkers, AreAtZeroOfATraceThatEndsBeforeTheFibre)
{
    const Reflectogram refl(
        files.writeSnapshot("front.bin", TraceBuilder().fibre(4_km), 10.0, -200'000.0),
        plainFibre());
    ASSERT_LT(refl.maxdist(), 0.0);
    put(100.0, -20.0);
    model.setReflectogram(refl);
    EXPECT_EQ(markerA.xValue(), 0.0); // first to its end, then to the front
    EXPECT_EQ(markerB.xValue(), 0.0);
}

TEST_F(TwoMarkers, ReflectionWithoutAPeakIsNoNumber)
{
    // The level rises a long way behind the left marker; at the marker the fibre only falls.
    const Reflectogram refl = files.measured(
        TraceBuilder().launch(30_dB).attenuation(5_dB).fibre(4_km).splice(3_km, Decibels {-15.0}),
        plainFibre());
    model.setReflectogram(refl);
    const TwoMarkersResult result = measured(1000.0, 3500.0);
    EXPECT_LT(result.loss(), 0.0);
    EXPECT_TRUE(std::isnan(result.reflection));
}

TEST_F(TwoMarkers, TakeTheirLevelsFromTheLineWhereThatIsWanted)
{
    const Reflectogram refl =
        files.measured(TraceBuilder().fibre(6_km).noise(0.1_dB, 5), plainFibre());
    model.setReflectogram(refl);
    const TwoMarkersResult plain = measured(1000.0, 5000.0);
    model.setUseLSA(true);
    const TwoMarkersResult fitted = last();
    EXPECT_EQ(fitted.lsaLine.p1(), QPointF(1000.0, fitted.yA));
    EXPECT_EQ(fitted.lsaLine.p2(), QPointF(5000.0, fitted.yB));
    EXPECT_NEAR(fitted.yA, 44.8, 0.02);
    EXPECT_NEAR(fitted.yB, 44.0, 0.02);
    EXPECT_GT(std::abs(plain.yA - fitted.yA), 0.001);
    model.setUseLSA(false);
    EXPECT_TRUE(last().lsaLine.isNull());
    EXPECT_EQ(last().yA, plain.yA);
}

TEST_F(TwoMarkers, LineRunsFromMarkerAToMarkerB)
{
    model.setReflectogram(files.measured(TraceBuilder().fibre(6_km), plainFibre()));
    model.setUseLSA(true);
    const QLineF line = measured(5000.0, 1000.0).lsaLine;
    EXPECT_EQ(line.x1(), 5000.0);
    EXPECT_EQ(line.x2(), 1000.0);
    EXPECT_LT(line.y1(), line.y2());
}

TEST_F(TwoMarkers, LineIsThatOfTheTraceGivenLast)
{
    put(1000.0, 5000.0);
    model.setUseLSA(true);
    model.setReflectogram(files.measured(TraceBuilder().fibre(6_km), plainFibre()));
    EXPECT_NEAR(last().attenuation(), 0.2, 0.001);
    model.setReflectogram(
        files.measured(TraceBuilder().fibre(6_km).attenuation(0.4_dB), plainFibre()));
    EXPECT_NEAR(last().attenuation(), 0.4, 0.001);
}

TEST_F(TwoMarkers, TellThatTheLineIsWantedBeforeTheyMeasure)
{
    model.setReflectogram(files.measured(TraceBuilder().fibre(6_km), plainFibre()));
    put(1000.0, 5000.0);
    QStringList told;
    QObject::connect(&model, &TwoMarkersModel::usingLSAChanged, &model,
                     [&](bool use) { told << (use ? "line" : "trace"); });
    QObject::connect(&model, &TwoMarkersModel::resultsChanged, &model,
                     [&](const TwoMarkersResult&) { told << "result"; });
    EXPECT_FALSE(model.usesLSA());
    model.setUseLSA(true);
    model.setUseLSA(true); // nothing new
    EXPECT_TRUE(model.usesLSA());
    model.setUseLSA(false);
    EXPECT_THAT(told, ElementsAre("line", "result", "trace", "result"));
}

TEST(TwoMarkersModel, MeasuresNothingWithFewerThanTwoMarkers)
{
    const TraceFiles files;
    QWidget canvas;
    QmPlotMarker only(&canvas);
    TwoMarkersModel model(nullptr);
    registerResults();
    QSignalSpy results(&model, SIGNAL(resultsChanged(TwoMarkersResult)));
    QSignalSpy usingLSA(&model, SIGNAL(usingLSAChanged( bool )));
    for (const QList<QmPlotMarker*>& markers : {QList<QmPlotMarker*>(), {&only}}) {
        model.setMarkers(markers);
        model.setReflectogram(files.plain());
        model.calculate();
        QMetaObject::invokeMethod(&model, "markerMoved");
    }
    EXPECT_EQ(results.size(), 0);
    model.setUseLSA(true);
    EXPECT_EQ(results.size(), 0);
    ASSERT_EQ(usingLSA.size(), 1);
    EXPECT_TRUE(usingLSA.first().first().toBool());
}

TEST(TwoMarkersModel, PullsALoneMarkerIntoTheTrace)
{
    const TraceFiles files;
    QWidget canvas;
    QmPlotMarker only(&canvas);
    TwoMarkersModel model(nullptr);
    model.setMarkers({&only});
    only.setXValue(1e6);
    const Reflectogram refl = files.plain();
    model.setReflectogram(refl);
    EXPECT_EQ(only.xValue(), refl.maxdist());
}

TEST(TwoMarkersModel, TakesTheTraceUntilTheLineIsMadeForTwoMarkers)
{
    const TraceFiles files;
    QWidget canvas;
    QmPlotMarker a(&canvas);
    QmPlotMarker b(&canvas);
    b.setXValue(1000.0);
    TwoMarkersModel model(true, nullptr);
    EXPECT_TRUE(model.usesLSA());
    registerResults();
    QSignalSpy results(&model, SIGNAL(resultsChanged(TwoMarkersResult)));
    const Reflectogram refl = files.plain();
    model.setReflectogram(refl); // no markers yet: no line
    model.setMarkers({&a, &b});
    model.calculate();
    model.setReflectogram(refl);
    ASSERT_EQ(results.size(), 2);
    EXPECT_TRUE(results.at(0).first().value<TwoMarkersResult>().lsaLine.isNull());
    EXPECT_FALSE(results.at(1).first().value<TwoMarkersResult>().lsaLine.isNull());
}

TEST(TwoMarkersModel, SignalsAndSlotsAreTheAgreedOnes)
{
    const QStringList agreed = {
        "signal resultsChanged(TwoMarkersResult result)",
        "signal usingLSAChanged(bool use)",
        "signal orlChanged(double orl)",
        "public setUseLSA(bool use)",
        "private markerMoved()",
        "private runORLCalculation()",
        "private throwORL()",
        "private runQueuedORLRecalculation()",
    };
    const QMetaObject& type = TwoMarkersModel::staticMetaObject;
    EXPECT_EQ(agreedMethods(type, agreed), agreed);
    EXPECT_GE(type.indexOfSlot("setReflectogram(Reflectogram)"), 0);
}

TEST(TwoMarkersModel, OutlivesItsMarkers)
{
    const TraceFiles files;
    TwoMarkersModel model(nullptr);
    registerResults();
    QSignalSpy results(&model, SIGNAL(resultsChanged(TwoMarkersResult)));
    {
        QWidget canvas;
        QmPlotMarker a(&canvas);
        QmPlotMarker b(&canvas);
        b.setXValue(1000.0);
        model.setMarkers({&a, &b});
        model.setReflectogram(files.plain());
    }
    EXPECT_EQ(results.size(), 1);
    model.setReflectogram(files.plain());
    model.setUseLSA(true);
    EXPECT_EQ(results.size(), 1);
}

} // namespace
