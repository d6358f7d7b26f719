#include "platform/otdr/core/eventfit.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace otdr {

namespace {

/// Nothing stands higher above the fibre than this; of samples that do, the power would have no
/// number.
constexpr double kBrightest_dB = 100.0;

/// Light that is left where the lines tell none.
constexpr double kLeastPart = 1e-6;

/// A ramp is sought in so many dead zones before its place and behind it.
constexpr double kGapsBefore = 2.0;
constexpr double kGapsBehind = 3.0;

/// A reflection, so many pulses before its place and, with so many dead zones, a pulse behind it.
constexpr double kPeakPulses = 2.0;
constexpr double kPeakGaps = 2.0;

/// Places are sought on a grid of so many to the pulse, and of so many samples at least, and then
/// between its points by so many golden sections.
constexpr double kPlacesPerPulse = 6.0;
constexpr double kFinestGrid = 0.25;
constexpr int kSections = 10;

/// Long pulses are fitted by so many means each.
constexpr double kMeansPerPulse = 16.0;

/// The end's fall tells its foot down to this part of the light, for so many pulses, where it has
/// left the fibre by so many standard deviations; the part is looked up in the ramp by so many
/// halvings.
constexpr double kFallenPart = 0.3;
constexpr double kEndPulses = 2.0;
constexpr double kFallSigmas = 4.0;
constexpr double kLeastSlope = 1e-9;
constexpr int kHalvings = 30;

/// A fit as good as this is beyond what samples tell.
constexpr double kLeastSquares = 1e-12;

/// The least of a function of the place, sought on a grid and then between its neighbours.
template <typename Function>
double leastOf(Function&& cost, double from, double to, double step)
{
    double best = from;
    double least = cost(from);
    for (double at = from + step; at <= to; at += step) {
        const double value = cost(at);
        if (value < least) {
            least = value;
            best = at;
        }
    }
    constexpr double kGolden = 0.6180339887498949;
    double a = best - step;
    double b = best + step;
    double c = b - kGolden * (b - a);
    double d = a + kGolden * (b - a);
    double atC = cost(c);
    double atD = cost(d);
    for (int i = 0; i < kSections; ++i) {
        if (atC < atD) {
            b = d;
            d = c;
            atD = atC;
            c = b - kGolden * (b - a);
            atC = cost(c);
        } else {
            a = c;
            c = d;
            atC = atD;
            d = a + kGolden * (b - a);
            atD = cost(d);
        }
    }
    return 0.5 * (a + b);
}

/// Step of the grid on which a place is sought, samples.
double gridFor(double pulse)
{
    return std::max(kFinestGrid, pulse / kPlacesPerPulse);
}

/// Samples around a place, or means of a few each where the pulse is long.
struct Stretch
{
    std::vector<double> at;
    std::vector<double> level_dB;

    /// Samples for each value.
    [[nodiscard]] double step() const { return width; }

    /// How many values lie at an index or before it.
    [[nodiscard]] std::size_t valuesUpTo(double index) const
    {
        return static_cast<std::size_t>(std::upper_bound(at.begin(), at.end(), index) - at.begin());
    }

    Stretch(const FibreTrace& trace, double from, double to)
    {
        const double step = std::max(1.0, std::floor(trace.scale().pulse / kMeansPerPulse));
        width = step;
        const double end = std::min(to, trace.size());
        for (double i = std::max(0.0, std::ceil(from)); i + step <= end; i += step) {
            at.push_back(i + 0.5 * (step - 1.0));
            level_dB.push_back(step > 1.0 ? trace.mean_dB(i, i + step)
                                          : trace.samples().level_dB(static_cast<std::size_t>(i)));
        }
    }

private:
    double width = 1.0;
};

/// The ramp between two lines as a stretch would show it. While the pulse passes an event, powers
/// of both sides add: each line by the part of the pulse that is still, or already, on its side.
class Ramp
{
public:
    Ramp(const PulseShape& shape, const Stretch& stretch, const Line& before, const Line& behind)
        : shape(shape)
        , stretch(stretch)
        , fallBefore(shape, -before.slope_dB * kNepersPerDb)
        , fallBehind(shape, -behind.slope_dB * kNepersPerDb)
    {
        left.reserve(stretch.at.size());
        for (const double at : stretch.at) {
            left.push_back(std::exp((behind.at(at) - before.at(at)) * kNepersPerDb));
        }
    }

    /// Power at a value of the stretch over that of the line before.
    [[nodiscard]] double part(double foot, std::size_t k) const
    {
        const PulseShape::Passed passed = shape.passed(stretch.at[k] - foot);
        return std::max(kLeastPart,
                        1.0 - PulseShape::step(passed, fallBefore)
                            + PulseShape::step(passed, fallBehind) * left[k]);
    }

    /// The same where the ramp is over.
    [[nodiscard]] double partBehind(std::size_t k) const { return std::max(kLeastPart, left[k]); }

    /// Values that the change does not reach, and those up to where it is over.
    [[nodiscard]] std::size_t valuesBefore(double foot) const { return stretch.valuesUpTo(foot); }

    [[nodiscard]] std::size_t valuesWithin(double foot) const
    {
        return stretch.valuesUpTo(foot + shape.over());
    }

private:
    const PulseShape& shape;
    const Stretch& stretch;
    PulseShape::Fall fallBefore;
    PulseShape::Fall fallBehind;
    std::vector<double> left; ///< power of the line behind over that of the line before
};

/// What a ramp leaves of a stretch. Most values lie before it or behind it, where the same is left
/// wherever its foot is sought.
class RampMisfit
{
public:
    RampMisfit(const PulseShape& shape, const Stretch& stretch, const Line& before,
               const Line& behind)
        : ramp(shape, stretch, before, behind)
        , squaresBefore(1, 0.0)
    {
        const std::size_t size = stretch.at.size();
        over.reserve(size);
        offBehind.reserve(size);
        squaresBefore.reserve(size + 1);
        for (std::size_t k = 0; k < size; ++k) {
            over.push_back((stretch.level_dB[k] - before.at(stretch.at[k])) * kNepersPerDb);
            offBehind.push_back(over[k] - std::log(ramp.partBehind(k)));
            squaresBefore.push_back(squaresBefore[k] + over[k] * over[k]);
        }
    }

    /// Sum of squares with the foot at a place, dB squared.
    [[nodiscard]] double at(double foot) const
    {
        const std::size_t within = ramp.valuesWithin(foot);
        std::size_t k = ramp.valuesBefore(foot);
        double squares = squaresBefore[k];
        for (; k < within; ++k) {
            const double off = over[k] - std::log(ramp.part(foot, k));
            squares += off * off;
        }
        for (; k < over.size(); ++k) {
            squares += offBehind[k] * offBehind[k];
        }
        return squares / (kNepersPerDb * kNepersPerDb);
    }

private:
    Ramp ramp;
    std::vector<double> over; ///< nepers above the line before
    std::vector<double> offBehind; ///< and above the line behind
    std::vector<double> squaresBefore; ///< of the values before each
};

/// Light on a ramp: what a stretch shows, as powers over that of the line before, because light
/// adds and levels do not.
class LightOnRamp
{
public:
    LightOnRamp(const FibreTrace& trace, const Stretch& stretch, const Line& before,
                const Line& behind)
        : shape(trace.shape())
        , stretch(stretch)
        , ramp(trace.shape(), stretch, before, behind)
        , decay(-before.slope_dB * kNepersPerDb)
        , squaresBefore(1, 0.0)
    {
        power.reserve(stretch.at.size());
        rise.reserve(stretch.at.size());
        squaresBefore.reserve(stretch.at.size() + 1);
        for (std::size_t k = 0; k < stretch.at.size(); ++k) {
            const double above = stretch.level_dB[k] - before.at(stretch.at[k]);
            power.push_back(std::exp(std::min(above, kBrightest_dB) * kNepersPerDb));
            rise.push_back(std::exp(decay * (stretch.at[k] - stretch.at.front())));
            const double over = power.back() - 1.0;
            squaresBefore.push_back(squaresBefore.back() + over * over);
        }
    }

    /// What is left with the best light at a foot, and without any.
    struct Fit
    {
        double light = 0.0; ///< of the reflection, by the fibre before it
        double shown = 0.0; ///< how many values show it, weighed
        double squares = 0.0;
        double plainSquares = 0.0;
    };

    [[nodiscard]] Fit at(double foot) const
    {
        Fit result;
        double product = 0.0;
        const std::size_t within = ramp.valuesWithin(foot);
        std::size_t k = ramp.valuesBefore(foot);
        result.plainSquares = squaresBefore[k];
        // What a reflector sends back stays the same while the pulse passes it; the line falls. It
        // is told by the fibre around the reflector, seen half a pulse behind the foot.
        const double seen = foot + 0.5 * shape.pulse();
        const double unit = power.empty() ? 1.0 : std::exp(-decay * (seen - stretch.at.front()));
        const auto add = [&](double ramped) {
            const double part = unit * rise[k] * shape.peak(stretch.at[k] - foot);
            const double over = power[k] - ramped;
            product += part * over;
            result.shown += part * part;
            result.plainSquares += over * over;
        };
        for (; k < within; ++k) {
            add(ramp.part(foot, k));
        }
        for (; k < power.size(); ++k) {
            add(ramp.partBehind(k));
        }
        result.light = result.shown > 0.0 ? std::max(0.0, product / result.shown) : 0.0;
        result.squares = std::max(0.0, result.plainSquares - result.light * product);
        return result;
    }

private:
    const PulseShape& shape;
    const Stretch& stretch;
    Ramp ramp;
    double decay; ///< of the line before, nepers by the sample
    std::vector<double> power;
    std::vector<double> rise; ///< of a constant light over that line, from the first value on
    std::vector<double> squaresBefore; ///< of the values before each, over the line before
};

/// What a fit of a reflection near `at` looks at.
Stretch stretchAround(const FibreTrace& trace, double at, const Line& before, const Line& behind)
{
    const double w = trace.scale().pulse;
    return {trace, std::max(at - kPeakPulses * w, before.first()),
            std::min(at + w + kPeakGaps * trace.gap(), behind.last() + 1.0)};
}

/// Where within a pulse of `at` least is left, of what the fit tells there.
double bestFoot(const LightOnRamp& fits, double at, double pulse, double LightOnRamp::Fit::*squares)
{
    return leastOf([&](double foot) { return fits.at(foot).*squares; }, at - pulse, at + pulse,
                   gridFor(pulse));
}

/// Of a mean over its values: by how many, one at least.
double valuesOf(const Stretch& stretch)
{
    return static_cast<double>(std::max<std::size_t>(1, stretch.at.size()));
}

} // namespace

PeakFit fitPeak(const FibreTrace& trace, double at, const Line& before, const Line& behind)
{
    const Stretch stretch = stretchAround(trace, at, before, behind);
    const LightOnRamp fits(trace, stretch, before, behind);
    const double foot = bestFoot(fits, at, trace.scale().pulse, &LightOnRamp::Fit::squares);
    const LightOnRamp::Fit best = fits.at(foot);
    const double samples = std::max(1.0, best.shown * stretch.step());
    return {foot, std::log1p(best.light) / kNepersPerDb,
            trace.noise().sigma_dB(foot) * std::sqrt(trace.noise().correlation() / samples),
            std::sqrt(best.squares / valuesOf(stretch)) / kNepersPerDb};
}

double gainOverRamp(const FibreTrace& trace, const PeakFit& fit, double at, const Line& before,
                    const Line& behind)
{
    const Stretch stretch = stretchAround(trace, at, before, behind);
    const LightOnRamp fits(trace, stretch, before, behind);
    const double foot = bestFoot(fits, at, trace.scale().pulse, &LightOnRamp::Fit::plainSquares);
    const double left = fits.at(fit.foot).squares;
    const double gained = fits.at(foot).plainSquares - left;
    return std::sqrt(std::max(0.0, gained) / std::max(kLeastSquares, left / valuesOf(stretch)));
}

double rampSamples(const FibreTrace& trace)
{
    return (kGapsBefore + kGapsBehind) * trace.gap();
}

StepFit fitStep(const FibreTrace& trace, const PulseShape& shape, double at, double reach,
                const Line& before, const Line& behind)
{
    const double gap = trace.gap();
    const Stretch stretch(trace, std::max(at - kGapsBefore * gap, before.first()),
                          std::min(at + kGapsBehind * gap, behind.last() + 1.0));
    const RampMisfit misfit(shape, stretch, before, behind);
    const double foot = leastOf([&](double place) { return misfit.at(place); }, at - reach,
                                at + reach, gridFor(trace.scale().pulse));
    const double squares = misfit.at(foot);
    return {foot, squares, std::sqrt(squares / valuesOf(stretch))};
}

double footOfFall(const FibreTrace& trace, double at, const Line& before)
{
    const double w = trace.scale().pulse;
    const double sigma = trace.noise().sigma_dB(at - w);
    double sum = 0.0;
    double weights = 0.0;
    const auto first = static_cast<std::size_t>(std::max(0.0, std::ceil(at)));
    for (std::size_t i = first; i < trace.samples().size(); ++i) {
        const auto behind = static_cast<double>(i);
        const double left = powerRatio(trace.samples().level_dB(i) - before.at(behind));
        if (left < kFallenPart || behind > at + kEndPulses * w) {
            break;
        }
        // The inverse of the ramp: where the shape leaves this part.
        double low = 0.0;
        double high = trace.shape().extent();
        for (int k = 0; k < kHalvings; ++k) {
            const double middle = 0.5 * (low + high);
            (1.0 - trace.shape().step(middle) > left ? low : high) = middle;
        }
        const double slope = std::max(kLeastSlope, 1.0 - left);
        const double weight = left < 1.0 - kFallSigmas * sigma ? slope : 0.0;
        sum += weight * (behind - high);
        weights += weight;
    }
    return weights > 0.0 ? sum / weights : at;
}

} // namespace otdr
