#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/returnloss.h"
#include "platform/otdr/core/trace.h"
#include "tests/support/tracebuilder.h"
#include "tests/support/uniformreturnloss.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using otdr::FibreBetween;
using otdr::fibreReturnLoss_dB;
using otdr::fitLine;
using otdr::returnLoss_dB;
using otdr::ReturnLossSection;
using otdr::SaturatedPeak;
using otdr::Trace;
using namespace testing_support;

double uniformFibre(double length_km, double perKilometre_dB, double backscatter_dB)
{
    return uniformReturnLoss_dB(length_km * 1000.0, perKilometre_dB, backscatter_dB,
                                otdr::metresPerNs(otdr::kDefaultGroupIndex));
}

ReturnLossSection sectionOf(const TraceBuilder& builder, Length from, Length to, double backscatter)
{
    ReturnLossSection section;
    section.from = builder.indexOf(from);
    section.to = builder.indexOf(to);
    section.reference_dB = builder.trueLevel_dB(from);
    section.backscatter_dB = backscatter;
    return section;
}

struct ReturnLossRow
{
    double length_km;
    double at1310;
    double at1550;
};

TEST(ReturnLoss, OfAUniformFibreIsThatOfTheTable)
{
    // 0.34 dB/km and -79.5 dB at 1310 nm, 0.19 dB/km and -81.9 dB at 1550 nm; the table has a tenth
    // of a decibel.
    for (const ReturnLossRow& row :
         {ReturnLossRow {1, 39.9, 42.2}, ReturnLossRow {5, 34.2, 35.9},
          ReturnLossRow {20, 31.7, 32.2}, ReturnLossRow {50, 31.5, 31.5}}) {
        const Length length {row.length_km * 1000.0};
        TraceBuilder builder = TraceBuilder().fibre(length).launch(55_dB).attenuation(0.34_dB);
        EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 0_m, length, -79.5)),
                    row.at1310, 0.08);
        builder.attenuation(0.19_dB);
        EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 0_m, length, -81.9)),
                    row.at1550, 0.08);
    }
}

TEST(ReturnLoss, OfAUniformFibreIsTheIntegralOverItsBackscatter)
{
    for (const double length_km : {0.5, 3.0, 17.0, 80.0}) {
        const Length length {length_km * 1000.0};
        const TraceBuilder builder = TraceBuilder().fibre(length).attenuation(0.2_dB);
        EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 0_m, length, -81.9)),
                    uniformFibre(length_km, 0.2, -81.9), 0.01);
    }
}

TEST(ReturnLoss, DoesNotDependOnTheSampleInterval)
{
    for (const double interval_ns : {2.5, 10.0, 50.0}) {
        const TraceBuilder builder = TraceBuilder().fibre(10_km).sampling(interval_ns);
        EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 0_m, 10_km, -81.9)),
                    uniformFibre(10, 0.2, -81.9), 0.02);
    }
}

TEST(ReturnLoss, DoesNotDependOnWhereTheSectionLiesSeenFromItsStart)
{
    const TraceBuilder builder = TraceBuilder().fibre(60_km).front(300);
    EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 45_km, 55_km, -81.9)),
                uniformFibre(10, 0.2, -81.9), 0.01);
}

TEST(ReturnLoss, SeenFromThePortIsBetterByTheFibreBetween)
{
    const TraceBuilder builder = TraceBuilder().fibre(40_km);
    ReturnLossSection section = sectionOf(builder, 20_km, 30_km, -81.9);
    const double fromItsStart = returnLoss_dB(*builder.build(), section);
    section.reference_dB = builder.trueLevel_dB(0_km);
    EXPECT_NEAR(returnLoss_dB(*builder.build(), section), fromItsStart + 2.0 * 20.0 * 0.2, 0.001);
}

TEST(ReturnLoss, OfAStrongReflectionIsItsReflectance)
{
    const double height = otdr::peakHeight_dB(-14.7, -81.9, 100.0);
    const TraceBuilder builder =
        TraceBuilder().fibre(100_m).pulse(100).launch(30_dB).reflection(10_m, {height});
    // The peak as a whole is one pulse long: pulse and samples cancel. The fibre's share, some 50
    // dB, is too small to be seen.
    EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 5_m, 100_m, -81.9)), 14.7, 0.02);
}

TEST(ReturnLoss, AddsReflectionsAndFibreAsPowers)
{
    const double height = otdr::peakHeight_dB(-40.0, -81.9, 100.0);
    const TraceBuilder builder = TraceBuilder().fibre(10_km).pulse(100).reflection(5_km, {height});
    const double there = std::pow(10.0, (-40.0 - 2.0 * 5.0 * 0.2) / 10.0);
    const double fibre = std::pow(10.0, -uniformFibre(10, 0.2, -81.9) / 10.0);
    EXPECT_NEAR(returnLoss_dB(*builder.build(), sectionOf(builder, 0_m, 10_km, -81.9)),
                -10.0 * std::log10(there + fibre), 0.01);
}

TEST(ReturnLoss, TakesItsSectionWithoutTheLastBorder)
{
    const Trace trace(otdr::RawSamples(std::vector<std::uint16_t>(10, 55535)), 0.001, {1.0, 0.0});
    // Samples at the reference, 1 ns each: RL = -B - 10 log10(n).
    EXPECT_NEAR(returnLoss_dB(trace, {0.0, 10.0, 10.0, -80.0}), 70.0, 1e-9);
    EXPECT_NEAR(returnLoss_dB(trace, {3.0, 4.0, 10.0, -80.0}), 80.0, 1e-9);
    EXPECT_NEAR(returnLoss_dB(trace, {-100.0, 1e9, 10.0, -80.0}), 70.0, 1e-9);
}

/// Behind its foot a pulse still shows the launch fibre for half its length.
TEST(ReturnLoss, LeavesOutTheLightOfTheFibreBeforeIt)
{
    const Trace trace(otdr::RawSamples(std::vector<std::uint16_t>(10, 55535)), 0.001, {1.0, 0.0});
    EXPECT_NEAR(returnLoss_dB(trace, {0.0, 10.0, 10.0, -80.0, 9.0}), 80.0, 1e-9);
    EXPECT_NEAR(returnLoss_dB(trace, {0.0, 10.0, 10.0, -80.0, 2.5}), 80.0 - 10.0 * std::log10(7.5),
                1e-9);
    EXPECT_TRUE(std::isnan(returnLoss_dB(trace, {0.0, 10.0, 10.0, -80.0, 10.0})))
        << "nothing is left";
}

TEST(ReturnLoss, IsUnknownWhereItCannotBeTold)
{
    const auto trace = TraceBuilder().build();
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(std::isnan(returnLoss_dB(Trace({}, 0.001, {}), {0.0, 10.0, 40.0, -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {10.0, 10.0, 40.0, -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {20.0, 10.0, 40.0, -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {1e8, 1e9, 40.0, -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {std::nan(""), 10.0, 40.0, -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {0.0, 10.0, std::nan(""), -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {0.0, 10.0, 40.0, std::nan("")})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {0.0, 10.0, -infinite, -80.0})));
    EXPECT_TRUE(std::isnan(returnLoss_dB(*trace, {0.0, 10.0, infinite, -80.0})));
}

/// A trace whose receiver cuts a reflection off, and what is known of it.
struct Saturated
{
    TraceBuilder builder = TraceBuilder().fibre(10_km).pulse(100).reflection(4_km, 6_dB);
    std::shared_ptr<const Trace> trace = builder.build();
    SaturatedPeak peak;

    Saturated()
    {
        const double at = builder.indexOf(4_km);
        peak.from = at;
        peak.to = at + builder.pulseSamples();
        peak.fibre = *fitLine(*trace, 0, static_cast<std::size_t>(at) - 1);
        peak.reflectance_dB = -20.0;
    }
};

TEST(ReturnLoss, PutsTheStatedReflectanceInThePlaceOfASaturatedPeak)
{
    const Saturated saturated;
    const ReturnLossSection section = sectionOf(saturated.builder, 0_m, 10_km, -81.9);
    const double reflected = std::pow(10.0, (-20.0 - 2.0 * 4.0 * 0.2) / 10.0);
    const double fibre = std::pow(10.0, -uniformFibre(10, 0.2, -81.9) / 10.0);
    const double found = returnLoss_dB(*saturated.trace, section, {&saturated.peak, 1});
    EXPECT_NEAR(found, -10.0 * std::log10(reflected + fibre), 0.01);
    EXPECT_LT(found, returnLoss_dB(*saturated.trace, section) - 5.0);
}

TEST(ReturnLoss, OfASaturatedPeakThatIsNoneIsThatOfTheFibreAlone)
{
    Saturated saturated;
    saturated.peak.reflectance_dB = -300.0;
    const ReturnLossSection section = sectionOf(saturated.builder, 0_m, 10_km, -81.9);
    EXPECT_NEAR(returnLoss_dB(*saturated.trace, section, {&saturated.peak, 1}),
                uniformFibre(10, 0.2, -81.9), 0.01);
}

TEST(ReturnLoss, LeavesOutASaturatedPeakBesideTheSection)
{
    const Saturated saturated;
    for (const ReturnLossSection& section : {sectionOf(saturated.builder, 5_km, 9_km, -81.9),
                                             sectionOf(saturated.builder, 1_km, 4_km, -81.9)}) {
        EXPECT_DOUBLE_EQ(returnLoss_dB(*saturated.trace, section, {&saturated.peak, 1}),
                         returnLoss_dB(*saturated.trace, section));
    }
}

TEST(ReturnLoss, TakesSaturatedPeaksInAnyOrder)
{
    const Saturated saturated;
    SaturatedPeak second = saturated.peak;
    second.from = saturated.builder.indexOf(7_km);
    second.to = second.from + saturated.builder.pulseSamples();
    const ReturnLossSection section = sectionOf(saturated.builder, 0_m, 10_km, -81.9);
    const std::vector<SaturatedPeak> peaks {saturated.peak, second};
    const std::vector<SaturatedPeak> reversed {second, saturated.peak};
    const double found = returnLoss_dB(*saturated.trace, section, peaks);
    EXPECT_DOUBLE_EQ(found, returnLoss_dB(*saturated.trace, section, reversed));
    const double both = std::pow(10.0, (-20.0 - 1.6) / 10.0) + std::pow(10.0, (-20.0 - 2.8) / 10.0);
    const double fibre = std::pow(10.0, -uniformFibre(10, 0.2, -81.9) / 10.0);
    EXPECT_NEAR(found, -10.0 * std::log10(both + fibre), 0.01);
}

TEST(ReturnLoss, CutsASaturatedPeakAtTheEndOfTheSection)
{
    const Saturated saturated;
    ReturnLossSection section = sectionOf(saturated.builder, 0_m, 4_km, -81.9);
    section.to += 5.0; // half the peak
    const double reflected = std::pow(10.0, (-20.0 - 2.0 * 4.0 * 0.2) / 10.0);
    const double fibre = std::pow(10.0, -uniformFibre(4, 0.2, -81.9) / 10.0);
    EXPECT_NEAR(returnLoss_dB(*saturated.trace, section, {&saturated.peak, 1}),
                -10.0 * std::log10(reflected + fibre), 0.01);
}

TEST(ReturnLoss, ReplacesASaturatedPeakByALineWithoutSlope)
{
    std::vector<std::uint16_t> counts(100, 55535);
    std::fill(counts.begin() + 40, counts.begin() + 50, std::uint16_t {0});
    const Trace trace(otdr::RawSamples(counts), 0.001, {1.0, 0.0});
    const SaturatedPeak peak {40.0, 50.0, *fitLine(trace, 0, 40), -300.0};
    EXPECT_NEAR(returnLoss_dB(trace, {0.0, 100.0, 10.0, -80.0}, {&peak, 1}), 60.0, 1e-9);
}

TEST(ReturnLoss, IsUnknownWithAReflectanceThatIsNoNumber)
{
    Saturated saturated;
    saturated.peak.reflectance_dB = std::nan("");
    const ReturnLossSection section = sectionOf(saturated.builder, 0_m, 10_km, -81.9);
    EXPECT_TRUE(std::isnan(returnLoss_dB(*saturated.trace, section, {&saturated.peak, 1})));
}

/// 8.0005 km of fibre between events, seen from 3 km to 6 km; both ends lie between two samples.
FibreBetween fibreBetween(const TraceBuilder& builder, const Trace& trace)
{
    const auto line =
        fitLineBetween(trace, builder.indexOf(3_km), builder.indexOf(6_km)).value_or(otdr::Line());
    return {builder.indexOf(1000.2_m), builder.indexOf(9000.7_m), line, line, -81.9};
}

TEST(FibreReturnLoss, HoldsTheFibreThatEventsHideAndNotTheirReflections)
{
    for (const double interval_ns : {10.0, 250.0}) {
        const TraceBuilder builder = TraceBuilder()
                                         .fibre(10_km)
                                         .sampling(interval_ns)
                                         .pulse(5.0 * interval_ns)
                                         .reflection(1_km, 12_dB)
                                         .reflection(8900_m, 12_dB);
        const auto trace = builder.build();
        EXPECT_NEAR(fibreReturnLoss_dB(*trace, fibreBetween(builder, *trace)),
                    uniformFibre(8.0005, 0.2, -81.9), 0.002);
    }
}

TEST(FibreReturnLoss, OfOneWithoutAttenuationIsThatOfItsLength)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km).attenuation(0_dB);
    const auto trace = builder.build();
    const double time_ns = 8000.5 / builder.metresPerNs();
    EXPECT_NEAR(fibreReturnLoss_dB(*trace, fibreBetween(builder, *trace)),
                81.9 - 10.0 * std::log10(time_ns), 1e-6);
}

TEST(FibreReturnLoss, HoldsWhatReflectsWhereTheFibreIsSeen)
{
    const double height = otdr::peakHeight_dB(-40.0, -81.9, 100.0);
    const TraceBuilder bare = TraceBuilder().fibre(10_km).pulse(100);
    const TraceBuilder builder = TraceBuilder(bare).reflection(5_km, {height});
    const auto trace = builder.build();
    const double there = std::pow(10.0, (-40.0 - 2.0 * 3.9998 * 0.2) / 10.0);
    const double scattered = std::pow(10.0, -uniformFibre(8.0005, 0.2, -81.9) / 10.0);
    // The lines are those of the bare fibre: the one through a peak of 6 dB stands higher.
    EXPECT_NEAR(fibreReturnLoss_dB(*trace, fibreBetween(bare, *bare.build())),
                -10.0 * std::log10(there + scattered), 0.01);
}

TEST(FibreReturnLoss, LeavesOutPeaksThatAreNamedWhereTheFibreIsSeen)
{
    const TraceBuilder bare = TraceBuilder().fibre(10_km).pulse(100);
    const TraceBuilder builder = TraceBuilder(bare).reflection(5_km, 12_dB);
    const FibreBetween fibre = fibreBetween(bare, *bare.build());
    const double at = builder.indexOf(5_km);
    const double nothing = -std::numeric_limits<double>::infinity();
    const std::vector<SaturatedPeak> peaks {
        {at, at + builder.pulseSamples() + 1.0, fibre.behind, nothing}};
    const auto trace = builder.build();
    EXPECT_NEAR(fibreReturnLoss_dB(*trace, fibre, peaks), uniformFibre(8.0005, 0.2, -81.9), 0.002);
    EXPECT_LT(fibreReturnLoss_dB(*trace, fibre), uniformFibre(8.0005, 0.2, -81.9) - 1.0);
}

/// Where the lines begin and end beyond the fibre they meet in the middle of it.
TEST(FibreReturnLoss, OfOneThatIsNotSeenIsThatOfTheLines)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km).reflection(2500_m, 12_dB);
    const auto trace = builder.build();
    FibreBetween fibre = fibreBetween(builder, *trace);
    fibre.from = builder.indexOf(2480.2_m);
    fibre.to = builder.indexOf(2521.3_m);
    EXPECT_NEAR(fibreReturnLoss_dB(*trace, fibre), uniformFibre(0.0411, 0.2, -81.9), 0.002);
    fibre.before.level_dB -= 5.0; // half of it ten times weaker, there and back
    EXPECT_NEAR(fibreReturnLoss_dB(*trace, fibre),
                uniformFibre(0.0411, 0.2, -81.9) - 10.0 * std::log10(0.55), 0.005);
}

TEST(FibreReturnLoss, IsUnknownWithoutFibreOrNumbers)
{
    const TraceBuilder builder = TraceBuilder().fibre(10_km);
    const auto trace = builder.build();
    const auto without = [&](auto&& change) {
        FibreBetween fibre = fibreBetween(builder, *trace);
        change(fibre);
        return fibreReturnLoss_dB(*trace, fibre);
    };
    EXPECT_TRUE(std::isfinite(without([](FibreBetween&) {})));
    EXPECT_TRUE(std::isnan(without([](FibreBetween& fibre) { fibre.to = fibre.from; })));
    EXPECT_TRUE(std::isnan(without([](FibreBetween& fibre) { fibre.to = fibre.from - 5.0; })));
    EXPECT_TRUE(std::isnan(without([](FibreBetween& fibre) { fibre.from = std::nan(""); })));
    EXPECT_TRUE(std::isnan(without([](FibreBetween& fibre) { fibre.to = std::nan(""); })));
    EXPECT_TRUE(
        std::isnan(without([](FibreBetween& fibre) { fibre.behind.level_dB = std::nan(""); })));
    EXPECT_TRUE(
        std::isnan(without([](FibreBetween& fibre) { fibre.before.slope_dB = std::nan(""); })));
    EXPECT_TRUE(
        std::isnan(without([](FibreBetween& fibre) { fibre.backscatter_dB = std::nan(""); })));
}

} // namespace
