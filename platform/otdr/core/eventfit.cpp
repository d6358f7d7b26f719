#include "platform/otdr/core/eventfit.h"

#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace otdr {

namespace {

/// A change so small that its mixture is known without a logarithm.
constexpr double kSmall_dB = 0.4;

double power(double level_dB)
{
    return std::pow(10.0, level_dB / 5.0);
}

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
    for (int i = 0; i < 10; ++i) {
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

/// Samples around a place, or means of a few each where the pulse is long.
struct Stretch
{
    std::vector<double> at;
    std::vector<double> level_dB;

    /// Samples for each value.
    [[nodiscard]] double step() const { return width; }

    Stretch(const FibreTrace& trace, double from, double to)
    {
        constexpr double kPerPulse = 16.0;
        const double step = std::max(1.0, std::floor(trace.scale().pulse / kPerPulse));
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

/// How much of the way from one line to another is done where the ramp is at `part`: powers of both
/// sides mix within the pulse, not levels. To the second order of a small change, else by the
/// logarithm.
class Mixture
{
public:
    explicit Mixture(double change_dB)
        : isSmall(std::abs(change_dB) < kSmall_dB)
        , rest(power(-change_dB))
        , logRest(std::log(rest))
    {
    }

    [[nodiscard]] double at(double part) const
    {
        return isSmall ? part + 0.5 * part * (1.0 - part) * logRest
                       : std::log1p(part * (rest - 1.0)) / logRest;
    }

private:
    bool isSmall;
    double rest;
    double logRest;
};

/// What a stretch shows above the ramp between two lines.
class Ramp
{
public:
    Ramp(const Line& before, const Line& behind, double at)
        : before(before)
        , behind(behind)
        , mixture(before.at(at) - behind.at(at))
    {
    }

    [[nodiscard]] double level_dB(const PulseShape& shape, double foot, double index) const
    {
        const double mixed = mixture.at(shape.step(index - foot));
        // While the pulse passes, the fibre on either side that is still seen lies, in the middle,
        // half as far away as the sample has moved on.
        const double from = foot + shape.centre() - 0.5 * shape.pulse();
        const double to = from + shape.pulse();
        const double near = index > from ? 0.5 * (index + from) : index;
        const double far = index < to ? 0.5 * (index + to) : index;
        return before.at(near) * (1.0 - mixed) + behind.at(far) * mixed;
    }

private:
    Line before;
    Line behind;
    Mixture mixture;
};

} // namespace

PeakFit fitPeak(const FibreTrace& trace, double at, const Line& before, const Line& behind)
{
    const double w = trace.scale().pulse;
    const PulseShape& shape = trace.shape();
    const Stretch stretch(trace, at - 2.0 * w, at + w + 2.0 * trace.gap());
    const Ramp ramp(before, behind, at);
    double height = 0.0;
    double shown = 0.0;
    const auto cost = [&](double foot) {
        double fit = 0.0;
        double norm = 0.0;
        double all = 0.0;
        for (std::size_t k = 0; k < stretch.at.size(); ++k) {
            const double part = shape.peak(stretch.at[k] - foot);
            const double over = stretch.level_dB[k] - ramp.level_dB(shape, foot, stretch.at[k]);
            fit += part * over;
            norm += part * part;
            all += over * over;
        }
        shown = norm;
        height = norm > 0.0 ? std::max(0.0, fit / norm) : 0.0;
        return all - height * fit;
    };
    const double foot = leastOf(cost, at - w, at + w, std::max(0.25, w / 6.0));
    const double squares = cost(foot);
    const double samples = shown * stretch.step();
    const auto values = static_cast<double>(std::max<std::size_t>(1, stretch.at.size()));
    return {foot, height,
            trace.noise().sigma_dB(foot)
                * std::sqrt(trace.noise().correlation() / std::max(1.0, samples)),
            std::sqrt(std::max(0.0, squares) / values)};
}

StepFit fitStep(const FibreTrace& trace, const PulseShape& shape, double at, double reach,
                const Line& before, const Line& behind)
{
    const double gap = trace.gap();
    const Stretch stretch(trace, at - 2.0 * gap, at + 3.0 * gap);
    const Ramp ramp(before, behind, at);
    const auto cost = [&](double foot) {
        double squares = 0.0;
        for (std::size_t k = 0; k < stretch.at.size(); ++k) {
            const double off = stretch.level_dB[k] - ramp.level_dB(shape, foot, stretch.at[k]);
            squares += off * off;
        }
        return squares;
    };
    const double foot =
        leastOf(cost, at - reach, at + reach, std::max(0.25, trace.scale().pulse / 6.0));
    const double squares = cost(foot);
    const auto values = static_cast<double>(std::max<std::size_t>(1, stretch.at.size()));
    return {foot, squares, std::sqrt(squares / values)};
}

double footOfFall(const FibreTrace& trace, double at, const Line& before)
{
    const double w = trace.scale().pulse;
    const double sigma = trace.noise().sigma_dB(at - w);
    double sum = 0.0;
    double weights = 0.0;
    const auto first = static_cast<std::size_t>(std::max(0.0, std::ceil(at)));
    for (std::size_t i = first; i < trace.samples().size(); ++i) {
        const double behind = static_cast<double>(i);
        const double left = power(trace.samples().level_dB(i) - before.at(behind));
        if (left < 0.3 || behind > at + 2.0 * w) {
            break;
        }
        // The inverse of the ramp: where the shape leaves this part.
        double low = 0.0;
        double high = trace.shape().extent();
        for (int k = 0; k < 30; ++k) {
            const double middle = 0.5 * (low + high);
            (1.0 - trace.shape().step(middle) > left ? low : high) = middle;
        }
        const double slope = std::max(1e-9, (1.0 - left));
        const double weight = left < 1.0 - 4.0 * sigma ? slope : 0.0;
        sum += weight * (behind - high);
        weights += weight;
    }
    return weights > 0.0 ? sum / weights : at;
}

} // namespace otdr
