#include "bench/accuracylinks.h"
#include "bench/instrument.h"
#include "platform/otdr/core/linefit.h"
#include "platform/otdr/core/trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using accuracy::Instrument;
using accuracy::KnownLink;
using accuracy::Record;
using gather::Spectrum;

constexpr int kWavelength_nm = 1550;

gather::Fibre fibre()
{
    gather::Fibre fibre;
    fibre.ior = Spectrum(accuracy::kIor);
    fibre.sections = {{10000.0, Spectrum(0.2), Spectrum(accuracy::kBackscatter_dB)}};
    fibre.events = {{5000.0, Spectrum(0.5), Spectrum(-45.0), "connector"}};
    return fibre;
}

Instrument clean()
{
    Instrument instrument;
    instrument.pulse_ns = 500.0;
    instrument.range_dB = 35.0;
    instrument.behind = 100.0;
    return instrument;
}

Record recordWith(const Instrument& instrument)
{
    std::mt19937_64 random(1);
    return accuracy::record(fibre(), kWavelength_nm, instrument, random);
}

otdr::Trace traceOf(const Record& record)
{
    return {otdr::RawSamples(record.counts), record.dbPerCount, record.axis};
}

/// Standard deviation about the line through a stretch of the fibre.
double scatterOf(const Record& record, double from, double to)
{
    return otdr::fitLineBetween(traceOf(record), from, to)->sigma_dB;
}

TEST(Instrument, ShowsTheLevelsThatAreKnown)
{
    const Record record = recordWith(clean());
    const KnownLink known(fibre(), kWavelength_nm, record.sight);
    const otdr::Trace trace = traceOf(record);
    const double at = known.indexOf(known.truth().front());
    // What is seen of a sample comes from half a pulse nearer by, 0.01 dB stronger.
    const double half = 0.5 * record.sight.pulse;
    EXPECT_NEAR(trace.level_dB(static_cast<std::size_t>(at)), known.levelBefore(at - half), 0.003);
    const double behind = at + 5.0 * record.sight.pulse;
    EXPECT_NEAR(trace.levelAt_dB(behind), known.levelBefore(behind - half), 0.003);
    const double top = trace.levelAt_dB(at + 0.8 * record.sight.pulse);
    EXPECT_NEAR(top - known.levelBefore(at), known.heightOf(known.truth().front()), 0.1);
}

TEST(Instrument, BeginsInFrontOfThePort)
{
    Instrument early = clean();
    early.before = 10.0;
    const Record usual = recordWith(clean());
    const Record record = recordWith(early);
    EXPECT_DOUBLE_EQ(record.axis.firstSample_ns, -5000.0);
    EXPECT_EQ(record.counts.size(), usual.counts.size() + 80);
    EXPECT_NEAR(record.counts[80 + 400], usual.counts[400], 3);
}

TEST(Instrument, RoundsToItsQuanta)
{
    Instrument coarse = clean();
    coarse.quantum_dB = 0.05;
    const Record told = recordWith(coarse);
    EXPECT_TRUE(std::all_of(told.counts.begin(), told.counts.end(),
                            [](int count) { return (65535 - count) % 50 == 0; }));
    coarse.countsQuanta = true;
    const Record counted = recordWith(coarse);
    EXPECT_DOUBLE_EQ(counted.dbPerCount, 0.05);
    EXPECT_EQ((65535 - told.counts[400]) / 50, 65535 - counted.counts[400]);
}

TEST(Instrument, LetsTheFibreWaveAsToldAndAlikeForAPulse)
{
    Instrument fading = clean();
    fading.fading_dB = 0.03;
    const double from = 50.0;
    const double to = 750.0;
    EXPECT_LT(scatterOf(recordWith(clean()), from, to), 0.002);
    const Record record = recordWith(fading);
    EXPECT_NEAR(scatterOf(record, from, to), 0.03, 0.01);
    const otdr::Trace trace = traceOf(record);
    double near = 0.0;
    double far = 0.0;
    for (std::size_t i = 50; i < 700; ++i) {
        near += std::pow(trace.level_dB(i + 1) - trace.level_dB(i), 2.0);
        far += std::pow(trace.level_dB(i + 16) - trace.level_dB(i), 2.0);
    }
    EXPECT_LT(near, 0.3 * far);
}

TEST(Instrument, SwingsBelowTheLineBehindAReflection)
{
    Instrument swinging = clean();
    swinging.undershoot_dB = 0.4;
    const otdr::Trace with = traceOf(recordWith(swinging));
    const otdr::Trace without = traceOf(recordWith(clean()));
    const Record record = recordWith(clean());
    const KnownLink known(fibre(), kWavelength_nm, record.sight);
    const double at = known.indexOf(known.truth().front());
    const double pulse = record.sight.pulse;
    EXPECT_NEAR(with.levelAt_dB(at - pulse), without.levelAt_dB(at - pulse), 0.001);
    EXPECT_NEAR(with.levelAt_dB(at + 2.0 * pulse) - without.levelAt_dB(at + 2.0 * pulse), -0.3,
                0.05);
    EXPECT_NEAR(with.levelAt_dB(at + 40.0 * pulse), without.levelAt_dB(at + 40.0 * pulse), 0.002);
}

TEST(Instrument, LeavesALateTail)
{
    Instrument slow = clean();
    slow.slow = {0.01, 10.0};
    const otdr::Trace with = traceOf(recordWith(slow));
    const otdr::Trace without = traceOf(recordWith(clean()));
    const Record record = recordWith(clean());
    const KnownLink known(fibre(), kWavelength_nm, record.sight);
    const double at = known.indexOf(known.truth().front());
    const double pulse = record.sight.pulse;
    const double fibre_dB = without.levelAt_dB(at - pulse);
    const double light = std::pow(10.0, known.heightOf(known.truth().front()) / 5.0);
    // Of a pulse of light, so much of the part is left two pulses behind its end.
    const double left = 0.01 * light * -std::expm1(-0.1) * std::exp(-0.2);
    const double behind = without.levelAt_dB(at + 3.0 * pulse);
    const double tail_dB = 5.0 * std::log10(1.0 + left * std::pow(10.0, (fibre_dB - behind) / 5.0));
    EXPECT_NEAR(with.levelAt_dB(at + 3.0 * pulse) - behind, tail_dB, 0.2 * tail_dB);
}

TEST(Instrument, LiftsDarknessByItsOffset)
{
    Instrument lifted = clean();
    lifted.offset = 3.0;
    const Record record = recordWith(lifted);
    const otdr::Trace trace = traceOf(record);
    // The noise stands at 6 dB, and three times that light at 2.4 dB more.
    EXPECT_NEAR(trace.meanLevel_dB(trace.size() - 700, trace.size()), 8.3, 0.2);
}

TEST(Instrument, DrawsTheSameAgain)
{
    Instrument fading = clean();
    fading.fading_dB = 0.01;
    fading.noise = accuracy::NoiseKind::Red;
    EXPECT_EQ(recordWith(fading).counts, recordWith(fading).counts);
}

} // namespace
