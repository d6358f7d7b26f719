#pragma once

#include "platform/otdr/core/linefit.h"
#include "platform/otdr/core/noise.h"
#include "platform/otdr/core/pulseshape.h"

#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace otdr {

class Trace;

/// What limits and weighs the search for events on one trace.
struct SearchScale
{
    double pulse = 1.0; ///< width of the pulse, samples
    double timeConstant = 0.0; ///< of the receiver, samples
    double longestWindow = 0.0; ///< of a line beside an event, samples
    double kilometre = 0.0; ///< samples in a kilometre; 0 where it is not known

    /// Fibre falls by no more than this from one sample to the next, dB.
    double steepest_dB = std::numeric_limits<double>::infinity();
};

/// A line through the fibre on one side of an event, with its standard error.
struct SideLine
{
    Line line;
    double sigma_dB = 0.0; ///< of a sample about it
    double weight = 1.0; ///< by how much the noise of neighbours is alike, see NoiseProfile
    double slopeError_dB = 0.0; ///< standard error of the slope, by the sample
    double surest = 0.0; ///< from its middle to where its level is known best, samples

    [[nodiscard]] double at(double index) const { return line.at(index); }

    /// Standard error of the line at an index, dB: that where it is surest, s sqrt(m / N), and that
    /// of its slope, s sqrt(m / Sxx), times the distance from there.
    [[nodiscard]] double errorAt_dB(double index) const;
};

/// A trace with its noise and the shape of its pulse: what every step of the search asks.
class FibreTrace
{
public:
    /// Refers to the trace, which must outlive it.
    FibreTrace(const Trace& trace, const SearchScale& scale);

    [[nodiscard]] const Trace& samples() const { return *trace; }

    [[nodiscard]] const NoiseProfile& noise() const { return scatter; }

    [[nodiscard]] const PulseShape& shape() const { return pulseShape; }

    [[nodiscard]] const SearchScale& scale() const { return limits; }

    [[nodiscard]] double size() const;

    /// Level from which on the receiver is overloaded, dB; +inf where the record does not show it.
    [[nodiscard]] double overload_dB() const { return mostLight_dB; }

    /// Index at which light begins.
    [[nodiscard]] double launch() const { return begin; }

    /// Takes the noise from what lies before this index.
    void endNoiseAt(double index);

    /// The noise of what lies between events, in order, before an index, see NoiseProfile for the
    /// reach.
    [[nodiscard]] NoiseProfile noiseBetween(std::vector<Disturbance> events, double end,
                                            double reach = 1.0) const;

    /// Takes another noise.
    void setNoise(NoiseProfile noise) { scatter = std::move(noise); }

    /// Takes another time constant of the receiver, samples.
    void setTimeConstant(double samples);

    /// Whether a line falls more steeply than any fibre, chance considered: it is the tail of
    /// something.
    [[nodiscard]] bool isSteep(const SideLine& line) const;

    /// Samples behind the foot of an event without a reflection until the fibre is undisturbed.
    [[nodiscard]] double gap() const { return deadZone; }

    /// The line through from <= i < to. Empty with fewer than two samples.
    [[nodiscard]] std::optional<SideLine> fit(double from, double to) const;

    /// The same with a slope known from elsewhere and its standard error, for stretches too short
    /// to tell their own. Empty without samples.
    [[nodiscard]] std::optional<SideLine> fitWithSlope(double from, double to, double slope_dB,
                                                       double slopeError_dB) const;

    /// Mean level of from <= i < to, dB; NaN without samples.
    [[nodiscard]] double mean_dB(double from, double to) const;

    /// Slope of the fibre between two indices, dB by the sample: the median of what pieces of it
    /// tell; 0 where it is too short for one.
    [[nodiscard]] double usualSlope_dB(double from, double to) const;

    /// The first index behind `from` at which the trace has come down to the fibre that follows it,
    /// but for so much, dB, or what chance makes it; at most `longest` samples behind it.
    [[nodiscard]] double settledFrom(double from, double longest,
                                     double tolerance_dB = 0.001) const;

private:
    /// Samples of which a mean is one side of a piece that tells a slope.
    [[nodiscard]] double slopeLength(double from, double to) const;

    /// Whether a stretch lies above the fibre that follows it.
    [[nodiscard]] bool isTail(double from, double to, double tolerance_dB) const;

    const Trace* trace;
    SearchScale limits;
    double begin;
    double mostLight_dB;
    NoiseProfile scatter;
    PulseShape pulseShape;
    double deadZone;
};

} // namespace otdr
