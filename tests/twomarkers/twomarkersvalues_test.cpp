// The figures between the markers against sums done sample by sample, and against closed forms.

#include "platform/otdr/core/trace.h"
#include "platform/otdr/tracestate.h"
#include "tests/twomarkers/measuredtrace.h"

#include <QThreadPool>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace testing_support; // builder and units
using Waveform::TwoMarkersResult;

/// A trace measured the long way, from its raw counts and its axis alone.
class SlowMeasurement
{
public:
    explicit SlowMeasurement(const Reflectogram& refl)
        : state(refl.state())
        , trace(*state->trace)
        , metresPerNs(0.299792458 / (2.0 * refl.IOR()) / (1.0 + refl.helix() / 100.0))
    {
    }

    /// Level between samples, in the single precision in which a trace tells it.
    [[nodiscard]] double level_dB(double distance_m) const
    {
        const double index =
            std::clamp(indexAt(distance_m), 0.0, static_cast<double>(trace.size() - 1));
        const auto before = static_cast<std::size_t>(index);
        const std::size_t behind = std::min(before + 1, trace.size() - 1);
        const double share = index - static_cast<double>(before);
        return static_cast<float>(sample_dB(before) * (1.0 - share) + sample_dB(behind) * share);
    }

    /// Level at `at` of the line through all samples from .. to, borders included.
    [[nodiscard]] double lineAt_dB(double from_m, double to_m, double at_m) const
    {
        return lineThrough(indexAt(std::min(from_m, to_m)), indexAt(std::max(from_m, to_m)),
                           indexAt(at_m));
    }

    /// Return loss of a stretch that starts on undisturbed fibre.
    [[nodiscard]] double returnLoss_dB(double from_m, double to_m) const
    {
        const double from = indexAt(from_m);
        const double to = indexAt(to_m);
        // The line of the fibre behind the start, taken back to it: from the end of a dead zone of
        // 1.4 pulses to the next event, 5 km at most.
        double limit = to;
        for (const Event& event : state->events) {
            const double index = indexAt(event.coordinate);
            if (event.type != Event::Fiber && index > from + 0.5 * pulseSamples()) {
                limit = std::min(limit, index);
            }
        }
        const double first = from + 1.4 * pulseSamples();
        const double longest = 5000.0 / metresPerNs / trace.axis().sampleInterval_ns;
        const double last = std::min(limit, std::ceil(first) + longest) - 1e-6;
        const double reference_dB = lineThrough(first, last, from);

        long double power = 0.0L;
        for (auto i = static_cast<std::size_t>(std::ceil(from)); static_cast<double>(i) < to; ++i) {
            power += std::pow(10.0L, (sample_dB(i) - reference_dB) / 5.0L);
        }
        const double coefficient = std::pow(10.0, state->backscatter_dB / 10.0);
        return -10.0
            * std::log10(coefficient * trace.axis().sampleInterval_ns * static_cast<double>(power));
    }

    [[nodiscard]] bool hasSaturatedEvent() const
    {
        return std::any_of(state->events.begin(), state->events.end(),
                           [](const Event& event) { return event.saturated; });
    }

    /// Places of the events that are none of fibre, m.
    [[nodiscard]] std::vector<double> events_m() const
    {
        std::vector<double> places;
        for (const Event& event : state->events) {
            if (event.type != Event::Fiber) {
                places.push_back(event.coordinate);
            }
        }
        return places;
    }

    [[nodiscard]] double pulse_m() const { return state->pulse_ns * metresPerNs; }

    /// Whether a distance is one of this trace's.
    [[nodiscard]] bool has(double distance_m) const
    {
        const double index = indexAt(distance_m);
        return index >= 0.0 && index <= static_cast<double>(trace.size() - 1);
    }

    /// A place near the given one that lies clear of the samples: whether a sample on the border
    /// counts is a matter of rounding.
    [[nodiscard]] double betweenSamples(double distance_m) const
    {
        const otdr::TraceAxis axis = trace.axis();
        const double index = std::floor(indexAt(distance_m)) + 0.37;
        return (index * axis.sampleInterval_ns + axis.firstSample_ns) * metresPerNs;
    }

private:
    [[nodiscard]] double indexAt(double distance_m) const
    {
        const otdr::TraceAxis axis = trace.axis();
        return (distance_m / metresPerNs - axis.firstSample_ns) / axis.sampleInterval_ns;
    }

    [[nodiscard]] double sample_dB(std::size_t i) const
    {
        return (65535 - trace.samples()[i]) * trace.dbPerCount();
    }

    [[nodiscard]] double pulseSamples() const
    {
        return state->pulse_ns / trace.axis().sampleInterval_ns;
    }

    [[nodiscard]] double lineThrough(double from, double to, double at) const
    {
        const auto first = static_cast<std::size_t>(std::max(0.0, std::ceil(from - 1e-9)));
        long double n = 0;
        long double sx = 0;
        long double sy = 0;
        for (std::size_t i = first; i < trace.size() && static_cast<double>(i) <= to + 1e-9; ++i) {
            n += 1;
            sx += i;
            sy += sample_dB(i);
        }
        const long double meanX = sx / n;
        const long double meanY = sy / n;
        long double sxx = 0;
        long double sxy = 0;
        for (std::size_t i = first; i < trace.size() && static_cast<double>(i) <= to + 1e-9; ++i) {
            sxx += (i - meanX) * (i - meanX);
            sxy += (i - meanX) * (sample_dB(i) - meanY);
        }
        return static_cast<double>(meanY + sxy / sxx * (at - meanX));
    }

    std::shared_ptr<const TraceState> state;
    const otdr::Trace& trace;
    double metresPerNs;
};

class TwoMarkersValues : public MeasuredTrace
{
protected:
    /// Two-point and line values of a stretch are those of the long way.
    void expectSlowValues(const SlowMeasurement& slow, double a_m, double b_m)
    {
        SCOPED_TRACE(testing::Message() << a_m << " m to " << b_m << " m");
        model.setUseLSA(false);
        const TwoMarkersResult points = measured(a_m, b_m);
        EXPECT_NEAR(points.yA, slow.level_dB(a_m), 1e-6);
        EXPECT_NEAR(points.yB, slow.level_dB(b_m), 1e-6);
        const double sign = a_m < b_m ? 1.0 : -1.0;
        EXPECT_NEAR(points.loss(), sign * (slow.level_dB(a_m) - slow.level_dB(b_m)), 1e-6);

        model.setUseLSA(true);
        const TwoMarkersResult line = last();
        EXPECT_NEAR(line.yA, slow.lineAt_dB(a_m, b_m, a_m), 1e-6);
        EXPECT_NEAR(line.yB, slow.lineAt_dB(a_m, b_m, b_m), 1e-6);
        const double length_m = std::abs(static_cast<float>(a_m - b_m));
        EXPECT_NEAR(line.attenuation(), line.loss() / length_m * 1000.0, 1e-6);
    }

    /// The return loss that is told for a stretch.
    [[nodiscard]] double toldOrl(double a_m, double b_m)
    {
        put(a_m, b_m);
        model.calculate();
        for (int round = 0; round < 3; ++round) {
            QThreadPool::globalInstance()->waitForDone();
            QCoreApplication::processEvents();
        }
        return orls.isEmpty() ? std::numeric_limits<double>::quiet_NaN()
                              : orls.last().first().toDouble();
    }
};

TEST_F(TwoMarkersValues, AgreeWithStraightSumsOnANoisyTrace)
{
    const Reflectogram refl = files.measured(TraceBuilder()
                                                 .fibre(20_km)
                                                 .noise(0.05_dB, 11)
                                                 .splice(4_km, 0.3_dB)
                                                 .connector(9_km, 0.2_dB, 8.0_dB),
                                             plainFibre());
    model.setReflectogram(refl);
    const SlowMeasurement slow(refl);
    expectSlowValues(slow, 1000.0, 3000.0);
    expectSlowValues(slow, 15000.0, 200.5);
    expectSlowValues(slow, 8999.0, 9004.0);
    expectSlowValues(slow, 0.0, refl.maxdist());
    expectSlowValues(slow, 5000.0, 5003.7);
    EXPECT_NEAR(toldOrl(1000.0, 3000.0), slow.returnLoss_dB(1000.0, 3000.0), 1e-3);
    EXPECT_NEAR(toldOrl(15000.0, 2500.0), slow.returnLoss_dB(2500.0, 15000.0), 1e-3);
}

TEST_F(TwoMarkersValues, AgreeWithStraightSumsOnRealTraces)
{
    if (realTraces().isEmpty()) {
        GTEST_SKIP() << "no real traces at hand";
    }
    int lines = 0;
    int returnLosses = 0;
    for (const QString& file : realTraces()) {
        SCOPED_TRACE(qPrintable(file));
        const Reflectogram refl(file);
        if (!refl.isValid()) {
            continue;
        }
        model.setReflectogram(refl);
        const SlowMeasurement slow(refl);
        const double end_m = refl.endOfFiber() > 0.0 ? refl.endOfFiber() : refl.maxdist();
        expectSlowValues(slow, 0.2 * end_m, 0.7 * end_m);
        expectSlowValues(slow, 0.61 * end_m, 0.05 * end_m);
        lines += 2;

        // From the middle of each long piece of fibre to just before the end of the next one.
        const std::vector<double> events = slow.events_m();
        for (std::size_t i = 0; i + 2 < events.size() && !slow.hasSaturatedEvent(); ++i) {
            const double from_m = slow.betweenSamples(0.5 * (events[i] + events[i + 1]));
            const double to_m = slow.betweenSamples(events[i + 2] - slow.pulse_m());
            const bool isLong = events[i + 1] - events[i] > 40.0 * slow.pulse_m();
            if (isLong && to_m > from_m && slow.has(to_m)) {
                EXPECT_NEAR(toldOrl(from_m, to_m), slow.returnLoss_dB(from_m, to_m), 1e-3)
                    << from_m << " m to " << to_m << " m";
                ++returnLosses;
            }
        }
    }
    EXPECT_GT(lines, 20);
    EXPECT_GT(returnLosses, 20);
}

struct Uniform
{
    double backscatter_dB;
    double attenuation_dBPerKm;
    double length_m;
    double orl_dB;
};

class UniformFibre : public TwoMarkersValues, public testing::WithParamInterface<Uniform>
{
};

TEST_P(UniformFibre, HasTheReturnLossOfTheTextbook)
{
    const Uniform& fibre = GetParam();
    WfMeasParams params = plainFibre();
    params.rbs = fibre.backscatter_dB;
    const Reflectogram refl = files.measured(
        TraceBuilder().attenuation({fibre.attenuation_dBPerKm}).fibre({fibre.length_m + 100.0}),
        params);
    model.setReflectogram(refl);
    const double orl = toldOrl(0.0, fibre.length_m);
    EXPECT_NEAR(orl, fibre.orl_dB, 0.06); // the table has one decimal

    // The same in closed form: a falling exponential, there and back.
    const double perMetre = fibre.attenuation_dBPerKm * 1e-3 * std::log(10.0) / 10.0;
    const double metresPerNs = 0.299792458 / (2.0 * params.ior);
    const double sum_ns =
        -std::expm1(-2.0 * perMetre * fibre.length_m) / (2.0 * perMetre) / metresPerNs;
    EXPECT_NEAR(orl, -fibre.backscatter_dB - 10.0 * std::log10(sum_ns), 5e-3);
}

// 1310 nm and 1550 nm; 50 km return all but as much as fibre without end.
INSTANTIATE_TEST_SUITE_P(
    Lengths, UniformFibre,
    testing::Values(Uniform {-79.5, 0.34, 1000.0, 39.9}, Uniform {-79.5, 0.34, 5000.0, 34.2},
                    Uniform {-79.5, 0.34, 20000.0, 31.7}, Uniform {-79.5, 0.34, 50000.0, 31.5},
                    Uniform {-81.9, 0.19, 1000.0, 42.2}, Uniform {-81.9, 0.19, 5000.0, 35.9},
                    Uniform {-81.9, 0.19, 20000.0, 32.2}, Uniform {-81.9, 0.19, 50000.0, 31.5}));

} // namespace
