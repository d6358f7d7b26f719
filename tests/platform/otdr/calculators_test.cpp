#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/trace.h"
#include "platform/otdr/losscalc.h"
#include "platform/otdr/lsaline.h"
#include "platform/otdr/orlcalc.h"
#include "platform/otdr/reflcoefcalc.h"
#include "tests/support/tracefiles.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <thread>

namespace {

using namespace testing_support; // builder and units

WfMeasParams usualFibre()
{
    WfMeasParams params;
    params.ior = 1.468;
    params.rbs = -81.9;
    return params;
}

TEST(LossCalc, MeasuresASpliceFromTheLinesOnBothSides)
{
    const TraceFiles files;
    const Reflectogram refl =
        files.measured(TraceBuilder().fibre(4_km).splice(2_km, 0.3_dB), usualFibre());
    const long position = std::lround(2000.0 / refl.smpl2dist(1.0));
    const LossCalc calc(position, refl);
    EXPECT_NEAR(calc.loss(), 0.3, 0.002); // counts are whole thousandths
    EXPECT_NEAR(calc.reflIn(), 45.0 - 0.4, 0.002);
    EXPECT_NEAR(calc.reflOut(), 45.0 - 0.4 - 0.3, 0.002);
}

TEST(LossCalc, CountsPositionsFromZeroMetres)
{
    const TraceFiles files;
    const TraceBuilder builder = TraceBuilder().front(200).fibre(4_km).splice(2_km, 0.3_dB);
    const Reflectogram refl(files.writeSnapshot("dark.bin", builder, 10.0, -2000.0), usualFibre());
    const LossCalc calc(std::lround(2000.0 / refl.smpl2dist(1.0)), refl);
    EXPECT_NEAR(calc.loss(), 0.3, 0.002);
}

TEST(LossCalc, KeepsItsLinesClearOfNeighbouringEvents)
{
    const TraceFiles files;
    Reflectogram refl = files.measured(
        TraceBuilder().fibre(6_km).splice(2_km, 0.3_dB).splice(3_km, 1.0_dB), usualFibre());
    Event first(Event::NonReflective, 2000, 10);
    Event second(Event::NonReflective, 3000, 10);
    refl.setEventList({first, second});
    const LossCalc calc(std::lround(2000.0 / refl.smpl2dist(1.0)), refl);
    EXPECT_NEAR(calc.loss(), 0.3, 0.002);
}

/// A snapshot tells no events: what stands near by is found on the trace.
TEST(LossCalc, IsThatOfTheDetectionWhereNoListTellsTheNeighbours)
{
    struct Place
    {
        double at_m;
        double loss_dB;
    };

    const std::vector<Place> places {
        {900, 0.2}, {1500, 0.5}, {2100, 1.0}, {2500, 0.3}, {3300, 0.4}};
    TraceBuilder builder =
        TraceBuilder().fibre(4_km).behind(4000).noise(0.002_dB, 6).noiseFloor(8_dB);
    for (const Place& place : places) {
        builder.connector(Length {place.at_m}, Decibels {place.loss_dB}, 12_dB);
    }
    const TraceFiles files;
    const Reflectogram refl = files.measured(builder, usualFibre());
    for (const Place& place : places) {
        const long position = std::lround(builder.indexOf(Length {place.at_m}));
        const LossCalc calc(position, refl);
        EXPECT_NEAR(calc.loss(), place.loss_dB, 0.005) << place.at_m;
        EXPECT_NEAR(calc.reflIn(), builder.trueLevel_dB(Length {place.at_m - 1.0}), 0.005);
        EXPECT_NEAR(calc.reflOut(), calc.reflIn() - place.loss_dB, 0.005);
    }
    for (const double nothing_m : {1200.0, 1800.0, 2900.0}) {
        const LossCalc calc(std::lround(builder.indexOf(Length {nothing_m})), refl);
        EXPECT_NEAR(calc.loss(), 0.0, 0.005) << nothing_m;
    }
}

TEST(LossCalc, OfTheSecondEventInADeadZoneIsToldWithTheFirst)
{
    const TraceBuilder builder = TraceBuilder()
                                     .fibre(6_km)
                                     .behind(3000)
                                     .noise(0.002_dB, 7)
                                     .noiseFloor(8_dB)
                                     .connector(3_km, 0.3_dB, 12_dB)
                                     .connector(3012_m, 0.2_dB, 12_dB);
    const TraceFiles files;
    const Reflectogram refl = files.measured(builder, usualFibre());
    EXPECT_NEAR(LossCalc(std::lround(builder.indexOf(3_km)), refl).loss(), 0.5, 0.01);
    EXPECT_TRUE(std::isnan(LossCalc(std::lround(builder.indexOf(3012_m)), refl).loss()));
}

TEST(LossCalc, KnowsTheLevelBeforeTheEndThoughNoneIsBehind)
{
    const TraceFiles files;
    const Reflectogram refl = files.measured(
        TraceBuilder().fibre(4_km).behind(4000).noise(0.001_dB, 5).noiseFloor(10_dB), usualFibre());
    const LossCalc calc(std::lround(4000.0 / refl.smpl2dist(1.0)), refl);
    EXPECT_NEAR(calc.reflIn(), 45.0 - 0.8, 0.002);
    EXPECT_TRUE(std::isnan(calc.reflOut()));
    EXPECT_TRUE(std::isnan(calc.loss()));
}

TEST(LossCalc, IsUnknownWithoutATrace)
{
    const LossCalc calc(100, Reflectogram());
    EXPECT_TRUE(std::isnan(calc.loss()));
    EXPECT_TRUE(std::isnan(calc.reflIn()));
    EXPECT_TRUE(std::isnan(calc.reflOut()));
}

TEST(ReflcoefCalc, FindsTheReflectanceThatMadeThePeak)
{
    const double height_dB = otdr::peakHeight_dB(-45.0, -81.9, 100.0);
    const TraceFiles files;
    const Reflectogram refl = files.measured(
        TraceBuilder().fibre(4_km).reflection(2_km, Decibels {height_dB}), usualFibre());
    const double base_dB = 45.0 - 0.4;
    double peak_dB = 0.0;
    EXPECT_NEAR(ReflcoefCalc(refl)(2000.0, base_dB, peak_dB), -45.0, 0.01);
    EXPECT_NEAR(peak_dB, height_dB, 0.005);
    EXPECT_NEAR(ReflcoefCalc(refl)(2000.0, base_dB, 0), -45.0, 0.01);
}

TEST(ReflcoefCalc, IsUnknownWhereNothingStandsAboveTheBase)
{
    const TraceFiles files;
    const Reflectogram refl = files.measured(TraceBuilder().fibre(4_km), usualFibre());
    double peak_dB = 0.0;
    EXPECT_TRUE(std::isnan(ReflcoefCalc(refl)(2000.0, 60.0, peak_dB)));
    EXPECT_TRUE(std::isnan(peak_dB));
    EXPECT_TRUE(std::isnan(ReflcoefCalc(Reflectogram())(2000.0, 10.0, 0)));
}

TEST(OrlCalc, AgreesWithTheClosedFormOfUniformFibre)
{
    // Without reflections: the sum of a falling exponential from the start of the stretch.
    const TraceFiles files;
    const Reflectogram refl = files.measured(TraceBuilder().fibre(6_km), usualFibre());
    const double metresPerNs = refl.smpl2dist(1.0) / refl.dataSpacing();
    const double perMetre = 0.2 / 4342.9;
    const auto closedForm = [&](double length_m) {
        const double sum_ns =
            (1.0 - std::exp(-2.0 * perMetre * length_m)) / (2.0 * perMetre) / metresPerNs;
        return -10.0 * std::log10(std::pow(10.0, -8.19) * sum_ns);
    };
    ORLCalc calc(refl);
    EXPECT_NEAR(calc.recalculate(1000.0, 5000.0), closedForm(4000.0), 0.02);
    EXPECT_NEAR(calc.recalculate(5000.0, 1000.0), closedForm(4000.0), 0.02);
    EXPECT_NEAR(calc.recalculate(0.0, 1000.0), closedForm(1000.0), 0.02);
}

TEST(OrlCalc, IsUnknownWithoutATrace)
{
    ORLCalc calc {Reflectogram()};
    EXPECT_TRUE(std::isnan(calc.recalculate(0.0, 100.0)));
}

TEST(OrlCalc, IsUnknownWhereMoreLightWouldComeBackThanWentIn)
{
    const TraceFiles files;
    const Reflectogram dark = files.measured(
        TraceBuilder().launch(0_dB).attenuation(0_dB).fibre(6_km).reflection(3_km, 45.0_dB),
        usualFibre());
    EXPECT_TRUE(std::isnan(ORLCalc(dark).recalculate(1000.0, 5000.0)));
    EXPECT_GT(ORLCalc(dark).recalculate(4000.0, 5000.0), 0.0);
}

TEST(OrlCalc, TakesTheStatedReflectanceForASaturatedPeak)
{
    const TraceFiles files;
    Reflectogram refl =
        files.measured(TraceBuilder().fibre(6_km).reflection(3_km, 15.0_dB), usualFibre());
    ORLCalc calc(refl);
    const double seen = calc.recalculate(1000.0, 5000.0);
    Event clipped(Event::Reflective, 3000, 10);
    clipped.reflectance = -20.0;
    clipped.saturated = true;
    refl.setEventList({clipped});
    const double stated = calc.recalculate(1000.0, 5000.0);
    EXPECT_LT(stated, seen);
    EXPECT_NEAR(stated, 20.0 + 2 * 2 * 0.2, 0.3); // the peak behind 2 km there and back governs
}

// Under ThreadSanitizer this is the proof that markers and computation do not meet.
TEST(OrlCalc, MayComputeWhileTheTraceIsExchanged)
{
    const TraceFiles files;
    const Reflectogram one = files.measured(TraceBuilder().fibre(3_km), usualFibre());
    const Reflectogram two = files.plain();
    ORLCalc calc(one);
    std::atomic<bool> done {false};
    std::thread worker([&] {
        while (!done) {
            EXPECT_FALSE(std::isnan(calc.recalculate(100.0, 900.0)));
        }
    });
    for (int i = 0; i < 100; ++i) {
        calc.setReflectogram(i % 2 == 0 ? two : one);
    }
    done = true;
    worker.join();
}

TEST(LsaLine, ReproducesAStraightFibre)
{
    const TraceFiles files;
    const Reflectogram refl = files.measured(TraceBuilder().fibre(6_km), usualFibre());
    LSALine lsa(1000.0, 2000.0, refl);
    const QLineF line = lsa.updateLineX1X2(4000.0, 2000.0);
    EXPECT_EQ(line.x1(), 4000.0);
    EXPECT_EQ(line.x2(), 2000.0);
    EXPECT_NEAR(line.y1(), 45.0 - 0.8, 0.001);
    EXPECT_NEAR(line.y2(), 45.0 - 0.4, 0.001);
    EXPECT_EQ(lsa.line(), line);
}

TEST(LsaLine, AgreesWithAStraightSumOverNoisySamples)
{
    const TraceFiles files;
    const Reflectogram refl =
        files.measured(TraceBuilder().fibre(6_km).noise(0.05_dB, 3), usualFibre());
    const QLineF line = LSALine(1000.0, 5000.0, refl).line();

    const double step = refl.smpl2dist(1.0);
    long double n = 0;
    long double sx = 0;
    long double sy = 0;
    long double sxx = 0;
    long double sxy = 0;
    for (long i = std::lround(std::ceil(1000.0 / step)); static_cast<double>(i) * step <= 5000.0;
         ++i) {
        const long double x = i * static_cast<long double>(step);
        const long double y = refl.trace()->level_dB(static_cast<std::size_t>(i));
        n += 1;
        sx += x;
        sy += y;
        sxx += x * x;
        sxy += x * y;
    }
    const long double slope = (n * sxy - sx * sy) / (n * sxx - sx * sx);
    const long double offset = (sy - slope * sx) / n;
    EXPECT_NEAR(line.y1(), static_cast<double>(offset + slope * 1000.0L), 1e-6);
    EXPECT_NEAR(line.y2(), static_cast<double>(offset + slope * 5000.0L), 1e-6);
}

TEST(LsaLine, FallsBackToTheTraceBetweenTwoSamples)
{
    const TraceFiles files;
    const Reflectogram refl = files.measured(TraceBuilder().fibre(6_km), usualFibre());
    const double step = refl.smpl2dist(1.0);
    const QLineF line = LSALine(100.2 * step, 100.4 * step, refl).line();
    EXPECT_NEAR(line.y1(), refl.powerAtDist(100.2 * step), 1e-6);
    EXPECT_NEAR(line.y2(), refl.powerAtDist(100.4 * step), 1e-6);
    EXPECT_EQ(LSALine(0.0, 10.0, Reflectogram()).line(), QLineF(0.0, 0.0, 10.0, 0.0));
}

} // namespace
