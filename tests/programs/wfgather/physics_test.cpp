#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/linefit.h"
#include "platform/otdr/core/loss.h"
#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/returnloss.h"
#include "programs/wfgather/receiver.h"
#include "tests/programs/wfgather/measured.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// A simulated trace, measured as an instrument measures, gives back what was put into the fibre.

namespace {

using namespace wfgather_test;
using gather::Fibre;
using gather::Spectrum;

constexpr double kBackscatter_dB = -81.9;

/// Height of the peak of an event above the fibre before it, dB.
double heightOf(const Measured& measured, double at_m)
{
    const auto line = otdr::fibreBefore(*measured.trace, measured.site(at_m, at_m - 2000.0, at_m));
    const double foot = measured.indexOf(at_m);
    const double base = line ? line->at(foot) : NAN;
    const auto peak =
        otdr::peakAbove(*measured.trace, foot, foot + 1.5 * measured.pulseSamples, base);
    return peak ? peak->height_dB : NAN;
}

/// The line of the fibre near the port, taken to the port.
double portLevel(const Measured& measured)
{
    const auto line =
        otdr::fitLineBetween(*measured.trace, 3.0 * measured.pulseSamples, measured.indexOf(900.0));
    return line ? line->at(0.0) : NAN;
}

double returnLossOf(const Measured& measured, double backscatter_dB, double to_m)
{
    otdr::ReturnLossSection section;
    section.from = 0.0;
    section.to = measured.indexOf(to_m) + 5.0 * measured.pulseSamples;
    section.reference_dB = portLevel(measured);
    section.backscatter_dB = backscatter_dB;
    return otdr::returnLoss_dB(*measured.trace, section);
}

} // namespace

TEST(Physics, TheSlopeIsTheAttenuation)
{
    for (const double attenuation : {0.19, 0.34, 1.0}) {
        for (const int pulse : {10, 100, 1000, 10000}) {
            const Measured measured = measure(uniformFibre(15000.0, attenuation), {pulse});
            const auto line = otdr::fitLineBetween(*measured.trace, measured.indexOf(3000.0),
                                                   measured.indexOf(14500.0));
            ASSERT_TRUE(line);
            const double perKilometre = -line->slope_dB / measured.metresPerSample * 1000.0;
            EXPECT_NEAR(perKilometre / attenuation, 1.0, 0.01) << pulse << " ns";
        }
    }
}

TEST(Physics, TheBackscatterAtThePortIsWhereItWasLaid)
{
    for (const int pulse : {10, 100, 1000}) {
        const Measured measured = measure(uniformFibre(15000.0), {pulse});
        EXPECT_NEAR(portLevel(measured), measured.launch_dB, 0.03) << pulse << " ns";
    }
}

TEST(Physics, TheHeightOfAPeakGivesItsReflectanceBack)
{
    for (const double reflectance : {-42.0, -45.0, -50.0, -55.0, -65.0}) {
        for (const int pulse : {5, 10, 30, 100, 275, 1000}) {
            const double expected = otdr::peakHeight_dB(reflectance, kBackscatter_dB, pulse);
            if (expected < 0.5 || expected - 1.0 > gather::kSaturation_dB) {
                continue; // lost in the slope of the fibre, or saturated
            }
            // The loss of a connector weakens the backscatter under its peak, which low peaks feel.
            const double loss = expected > 3.0 ? 0.3 : 0.0;
            const Measured measured =
                measure(fibreWith({connector(5000.0, loss, reflectance)}), {pulse, 11000.0});
            const double found =
                otdr::reflectance_dB(heightOf(measured, 5000.0), kBackscatter_dB, pulse);
            EXPECT_NEAR(found, reflectance, 0.3) << reflectance << " dB, " << pulse << " ns";
        }
    }
}

TEST(Physics, TheReturnLossOfUniformFibreIsThatOfTheTable)
{
    struct Row
    {
        double length_m;
        double at1310_dB;
        double at1550_dB;
    };

    for (const Row& row : {Row {1000, 39.9, 42.2}, Row {5000, 34.2, 35.9}, Row {20000, 31.7, 32.2},
                           Row {50000, 31.5, 31.5}}) {
        const Shot shot {100, row.length_m * 1.2};
        const Measured at1310 = measure(uniformFibre(row.length_m, 0.34, -79.5), shot);
        const Measured at1550 = measure(uniformFibre(row.length_m, 0.19, -81.9), shot);
        EXPECT_NEAR(returnLossOf(at1310, -79.5, row.length_m), row.at1310_dB, 0.3);
        EXPECT_NEAR(returnLossOf(at1550, -81.9, row.length_m), row.at1550_dB, 0.3);
    }
}

TEST(Physics, TheReturnLossTakesReflectionsIn)
{
    for (const int pulse : {30, 100, 1000}) {
        const Measured measured =
            measure(fibreWith({connector(2000.0, 0.0, -45.0)}), {pulse, 12000.0});
        // Backscatter of 10 km and the reflector 0.8 dB of path behind the port.
        const double decay = 0.4 / 4342.944819 / 2.0 * 2.0 * otdr::metresPerNs(kIor);
        const double time = 10000.0 / otdr::metresPerNs(kIor);
        const double scattered =
            std::pow(10.0, kBackscatter_dB / 10.0) * -std::expm1(-decay * time) / decay;
        const double reflected = std::pow(10.0, (-45.0 - 0.8) / 10.0);
        const double expected = -10.0 * std::log10(scattered + reflected);
        EXPECT_NEAR(returnLossOf(measured, kBackscatter_dB, 10000.0), expected, 0.3) << pulse;
    }
}

TEST(Physics, TheLossOfAnEventComesBack)
{
    for (const double loss : {0.02, 0.3, 2.0}) {
        for (const int pulse : {30, 100, 1000}) {
            const Measured bare = measure(fibreWith({splice(5000.0, loss)}), {pulse, 12000.0});
            const Measured shiny =
                measure(fibreWith({connector(5000.0, loss, -50.0)}), {pulse, 12000.0});
            EXPECT_NEAR(otdr::eventLoss(*bare.trace, bare.site(5000, 1000, 9900)).loss_dB, loss,
                        0.005);
            // The slow tail of the peak lifts the beginning of the line behind it.
            EXPECT_NEAR(otdr::eventLoss(*shiny.trace, shiny.site(5000, 1000, 9900)).loss_dB, loss,
                        0.01);
        }
    }
}

TEST(Physics, AStrongerBackscatterBehindASpliceLooksLikeAGain)
{
    Fibre fibre = fibreWith({splice(5000.0, 0.04)}, 5000.0);
    fibre.sections.push_back({5000.0, Spectrum(0.2), Spectrum(kBackscatter_dB + 0.4)});
    const Measured measured = measure(fibre);
    const auto loss = otdr::eventLoss(*measured.trace, measured.site(5000, 1000, 9900));
    EXPECT_NEAR(loss.loss_dB, 0.04 - 0.2, 0.005);
}

TEST(Physics, AStepTakesOnePulse)
{
    const Measured measured = measure(fibreWith({splice(5000.0, 3.0)}), {1000, 12000.0});
    const double foot = measured.indexOf(5000.0);
    const double before = measured.trace->levelAt_dB(foot);
    const double after = measured.trace->levelAt_dB(foot + 1.4 * measured.pulseSamples);
    EXPECT_NEAR(measured.trace->levelAt_dB(foot - 2.0), before, 0.005);
    // 143 m of fibre later, the receiver settled to a few hundredths.
    EXPECT_NEAR(before - after, 3.0 + 0.2 * 0.143, 0.03);
    EXPECT_GT(measured.trace->levelAt_dB(foot + 0.5 * measured.pulseSamples), after + 0.5);
}

TEST(Physics, TheFibreEndsWhereItEnds)
{
    for (const int pulse : {10, 100, 1000}) {
        const Measured measured = measure(uniformFibre(5000.0), {pulse, 8000.0});
        const double foot = measured.indexOf(5000.0);
        const double before = measured.trace->levelAt_dB(foot - 1.0);
        // Half of the last pulse's backscatter is left half a pulse behind the end.
        const double halfPulse = foot + (0.5 + 0.1 + 0.08) * measured.pulseSamples;
        EXPECT_NEAR(before - measured.trace->levelAt_dB(halfPulse), 1.505, 0.35) << pulse;
        EXPECT_LT(measured.trace->levelAt_dB(foot + 12.0 * measured.pulseSamples), before - 10.0);
    }
}

TEST(Physics, AFibreLongerThanTheRangeIsSeenToTheLastSample)
{
    const Measured measured = measure(uniformFibre(50000.0), {100, 10000.0});
    const auto end = static_cast<double>(measured.trace->size() - 1);
    EXPECT_NEAR(measured.trace->levelAt_dB(end), measured.launch_dB - 2.0, 0.05);
    EXPECT_NEAR(end * measured.metresPerSample, 10000.0, measured.metresPerSample);
}

TEST(Physics, AGhostStandsAtItsPlaceWithItsStrength)
{
    Fibre fibre = fibreWith({connector(0.0, 0.0, -40.0)}, 3000.0);
    fibre.endReflectance_dB = Spectrum(-20.0);
    const Measured measured = measure(fibre, {100, 8000.0});
    const double foot = measured.indexOf(6000.0);
    const double power_dB = -20.0 - 20.0 - 40.0 - 2 * 1.2;
    const double expected = measured.launch_dB + (power_dB - kBackscatter_dB - 20.0) / 2.0;
    const auto peak =
        otdr::peakAbove(*measured.trace, foot - 20.0, foot + 1.5 * measured.pulseSamples, 0.0);
    ASSERT_TRUE(peak);
    EXPECT_NEAR(peak->level_dB, expected, 0.1);
    const auto risen = otdr::peakAbove(*measured.trace, foot - 100.0, foot - 1.0, expected - 5.0);
    EXPECT_FALSE(risen);
    EXPECT_GT(measured.trace->levelAt_dB(foot + 0.4 * measured.pulseSamples), expected - 1.0);
}

TEST(Physics, ASaturatedPeakHasAFlatTopAndALongerDeadZone)
{
    const auto deadZone = [](double reflectance) {
        const Measured measured =
            measure(fibreWith({connector(2000.0, 0.0, reflectance)}), {100, 5000.0});
        const auto line = otdr::fitLineBetween(*measured.trace, measured.indexOf(1000.0),
                                               measured.indexOf(1990.0));
        double i = measured.indexOf(2000.0) + 0.5 * measured.pulseSamples;
        while (measured.trace->levelAt_dB(i) > line->at(i) + 0.5) {
            i += 1.0;
        }
        return (i - measured.indexOf(2000.0)) / measured.pulseSamples;
    };
    EXPECT_LT(deadZone(-50.0), 2.0);
    EXPECT_GT(deadZone(-15.0), 4.0);

    const Measured saturated = measure(fibreWith({connector(2000.0, 0.0, -15.0)}), {100, 5000.0});
    const auto raw = saturated.trace->samples();
    const auto top = *std::min_element(raw.begin(), raw.end());
    const auto flat = static_cast<double>(std::count(raw.begin(), raw.end(), top));
    EXPECT_GT(flat, 0.7 * saturated.pulseSamples);
    EXPECT_NEAR(saturated.trace->toLevel_dB(top), saturated.launch_dB + gather::kSaturation_dB,
                0.002);
}

TEST(Physics, AnotherIndexThanTheFibresPutsEventsElsewhere)
{
    Fibre fibre = fibreWith({connector(5000.0, 0.0, -45.0)});
    fibre.ior = Spectrum(1.5);
    const Measured measured = measure(fibre, {100, 12000.0}); // announced with kIor
    const auto peak = otdr::peakAbove(*measured.trace, 100.0, measured.indexOf(9000.0), 0.0);
    ASSERT_TRUE(peak);
    const double at_m = static_cast<double>(peak->index) * measured.metresPerSample;
    EXPECT_NEAR(at_m, 5000.0 * 1.5 / kIor, 12.0); // the top lies within the pulse, 10.2 m long
}

TEST(Physics, EverythingFitsIntoTheLevelsOfASample)
{
    for (const double range : {5.0, 38.0, 45.0, 60.0, 80.0}) {
        for (const int pulse : {5, 100, 20000}) {
            Fibre fibre = fibreWith({connector(0.0, 0.0, -10.0)}, 3000.0);
            fibre.dynamicRange_dB = Spectrum(range);
            const Measured measured = measure(fibre, {pulse, 10000.0, 1800.0});
            EXPECT_GE(measured.launch_dB, 10.0);
            EXPECT_LE(measured.launch_dB + gather::kSaturation_dB, 65.0);
            const auto raw = measured.trace->samples();
            EXPECT_GT(*std::min_element(raw.begin(), raw.end()), 0);
        }
    }
}
