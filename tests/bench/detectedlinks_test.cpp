#include "bench/accuracylinks.h"
#include "bench/instrument.h"
#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/trace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using gather::Spectrum;

constexpr int kDetectedWavelength_nm = 1550;

/// Connectors that overload the receiver with losses some pulses behind them.
gather::Fibre fibreOfBrightConnectors()
{
    gather::Fibre fibre;
    fibre.ior = Spectrum(accuracy::kIor);
    fibre.sections = {{80000.0, Spectrum(0.24), Spectrum(accuracy::kBackscatter_dB)}};
    fibre.events = {{0.0, Spectrum(0.0), Spectrum(-55.0), "connector"},
                    {22500.0, Spectrum(0.43), Spectrum(-20.8), "connector"},
                    {23970.0, Spectrum(0.07), {}, "splice"},
                    {38200.0, Spectrum(0.3), Spectrum(-21.1), "connector"},
                    {44760.0, Spectrum(0.17), {}, "splice"},
                    {60440.0, Spectrum(0.14), Spectrum(-34.7), "connector"},
                    {62280.0, Spectrum(-0.08), {}, "splice"}};
    return fibre;
}

accuracy::Instrument overloadedInstrument()
{
    accuracy::Instrument instrument;
    instrument.pulse_ns = 3000.0;
    instrument.samplesPerPulse = 6.44;
    instrument.range_dB = 32.5;
    instrument.overload_dB = 6.3;
    instrument.recovery = 1.5;
    instrument.times = 1.8;
    return instrument;
}

/// What is known of the losses of events and sections together, dB.
double sumOfLosses_dB(const otdr::Detection& found)
{
    double sum = 0.0;
    for (const otdr::DetectedEvent& event : found.events) {
        sum += std::isnan(event.loss_dB) || event.echo ? 0.0 : event.loss_dB;
    }
    for (const otdr::DetectedSection& section : found.sections) {
        sum += std::isnan(section.loss_dB) ? 0.0 : section.loss_dB;
    }
    return sum;
}

/// Reflections with no fibre between them are one group and have one loss, also where they came
/// that close to each other when their places were told for the last time.
TEST(DetectedLinks, LossesAddUpBehindReflectionsThatOverloadTheReceiver)
{
    const accuracy::Instrument instrument = overloadedInstrument();
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937_64 random(seed);
        const accuracy::Record record =
            accuracy::record(fibreOfBrightConnectors(), kDetectedWavelength_nm, instrument, random);
        const otdr::Trace trace(otdr::RawSamples(record.counts), record.dbPerCount, record.axis);
        const otdr::Detection found = otdr::detectEvents(
            trace,
            {instrument.pulse_ns, otdr::metresPerNs(accuracy::kIor), instrument.backscatter_dB});
        EXPECT_NEAR(sumOfLosses_dB(found), found.spanLoss_dB, 0.001) << seed;
    }
}

} // namespace
