// How alike the noise of neighbouring samples is, and what fibre strays by beyond its noise.

#include "platform/otdr/core/noise.h"
#include "platform/otdr/core/scatter.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace otdr {

namespace {

/// Correlation shows in means over so many pulses, and samples: receivers and filters make
/// neighbours alike, no further ones.
constexpr double kMeanPulses = 2.0;
constexpr double kShortestMean = 32.0;
constexpr std::size_t kFewestBends = 48;

/// Differences over a lag are taken at so many places at most; where the scatter is no more than so
/// many times what rounding makes it, they tell nothing of neighbours.
constexpr std::size_t kMostDifferences = 16384;
constexpr double kRoundings = 10.0;

/// What scatters by more than so many times the roundings is noise for the greater part.
constexpr double kNoisyRoundings = 3.0;

/// Variance that rounding to whole counts adds to a second difference: (1 + 4 + 1) / 12.
constexpr double kRoundingOfDifference = 0.5;

/// Time constants of noise that are tried, samples, and from one to the next.
constexpr double kShortestLikeness = 0.2;
constexpr double kLikenessFactor = 1.1;

/// Beyond this scatter the logarithm of noisy light has a shape of its own, dB.
constexpr double kLogarithmic_dB = 0.3;

/// Median of the square of a standard normal variable.
constexpr double kMedianOfSquare = 0.4549;

/// Fewer differences tell nothing.
constexpr std::size_t kFewestDifferences = 64;

} // namespace

std::vector<NoiseProfile::Bend> NoiseProfile::bendsOf(const Trace& trace, std::size_t length) const
{
    std::vector<Bend> bends;
    const std::size_t stride =
        std::max<std::size_t>(1, length * (1 + (last - first) / length / 4096) / 2);
    for (std::size_t i = first + length; i + 2 * length <= last; i += stride) {
        const std::size_t middle = i + length / 2;
        const double sigma = sigma_dB(static_cast<double>(middle));
        const auto fall =
            std::lower_bound(falls.begin(), falls.end(), static_cast<double>(i - length));
        const bool isBroken = fall != falls.end() && *fall < static_cast<double>(i + 2 * length);
        if (sigma < kLogarithmic_dB && !isBroken) {
            const double bend = trace.meanLevel_dB(i - length, i)
                - 2.0 * trace.meanLevel_dB(i, i + length)
                + trace.meanLevel_dB(i + length, i + 2 * length);
            bends.push_back({sigma, bend * bend / 6.0});
        }
    }
    std::sort(bends.begin(), bends.end(),
              [](const Bend& a, const Bend& b) { return a.sigma < b.sigma; });
    return bends;
}

/// Variance of the second differences over a lag, by that of a sample as it was measured, by their
/// median. NaN where noise hardly shows.
double NoiseProfile::differenceOver(const Trace& trace, std::size_t lag) const
{
    std::vector<double> values;
    double rounding = 0.0;
    const std::size_t stride = 1 + (last - first) / kMostDifferences;
    for (std::size_t i = first + lag; i + lag < last; i += stride) {
        const double sigma = sigma_dB(static_cast<double>(i));
        if (sigma > kRoundings * kLeastSigma_dB && sigma < kLogarithmic_dB) {
            values.push_back(secondDifferenceAt(trace, i, lag) * trace.dbPerCount() / sigma);
            rounding += std::pow(trace.dbPerCount() / sigma, 2.0) * kRoundingOfDifference;
        }
    }
    if (values.size() < kFewestDifferences) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const double median = medianOf(values) / kMedianOfNormal;
    rounding /= static_cast<double>(values.size());
    return std::max(rounding, median * median - rounding);
}

/// On a record of few pulses there are few bends, and events disturb many of the differences over a
/// pulse; over some samples they do not. Noise behind a single pole is alike by c = exp(-lag / tau)
/// over a lag, and its second differences vary by 6 - 8 c + 2 c^2: the time constant is the one
/// with which this fits best over lags of 1, 2, 4 .. samples, by ratios.
std::optional<NoiseProfile::Likeness> NoiseProfile::likenessByLags(const Trace& trace,
                                                                   double pulse) const
{
    std::vector<double> logarithms;
    for (std::size_t lag = 1; 2.0 * static_cast<double>(lag) <= pulse; lag *= 2) {
        logarithms.push_back(std::log(differenceOver(trace, lag)));
    }
    double least = std::numeric_limits<double>::infinity();
    double level = 0.0;
    double best = 0.0;
    for (double tau = kShortestLikeness; tau < pulse; tau *= kLikenessFactor) {
        double sum = 0.0;
        double squares = 0.0;
        for (std::size_t k = 0; k < logarithms.size(); ++k) {
            const double c = std::exp(-std::ldexp(1.0, static_cast<int>(k)) / tau);
            const double off = logarithms[k] - std::log(2.0 * (1.0 - c) * (3.0 - c));
            sum += off;
            squares += off * off;
        }
        const auto n = static_cast<double>(logarithms.size());
        if (squares - sum * sum / n < least) {
            least = squares - sum * sum / n;
            level = sum / n;
            best = std::exp(-1.0 / tau);
        }
    }
    if (!std::isfinite(least)) {
        return std::nullopt;
    }
    return Likeness {(1.0 + best) / (1.0 - best), std::exp(0.5 * level)};
}

void NoiseProfile::measureCorrelation(const Trace& trace, double pulse)
{
    const double length = std::max(kShortestMean, std::ceil(kMeanPulses * pulse));
    const std::vector<Bend> bends = bendsOf(trace, static_cast<std::size_t>(length));
    if (bends.size() < kFewestBends) {
        if (const auto likeness = likenessByLags(trace, pulse)) {
            alike = likeness->correlation;
            for (std::vector<double>* some : {&sigmas, &beforeFalls}) {
                for (double& sigma : *some) {
                    sigma = std::max(kLeastSigma_dB, sigma * std::min(1.0, likeness->scatter));
                }
            }
        }
        return;
    }
    // Of the third that scatters most, those of which it is noise: roundings are not alike.
    const auto third = bends.end() - static_cast<std::ptrdiff_t>(bends.size() / 3);
    const auto noisy = std::find_if(bends.begin(), bends.end(), [](const Bend& bend) {
        return bend.sigma > kNoisyRoundings * kLeastSigma_dB;
    });
    const bool isFew = bends.end() - noisy < static_cast<std::ptrdiff_t>(kFewestBends);
    std::vector<double> values;
    for (auto bend = isFew ? third : std::max(third, noisy); bend != bends.end(); ++bend) {
        values.push_back(bend->square / (bend->sigma * bend->sigma / length));
    }
    alike = std::clamp(medianOf(values) / kMedianOfSquare, 1.0, length);
    if (isFew && noisy != bends.end()) {
        const auto likeness = likenessByLags(trace, pulse);
        alike = likeness ? likeness->correlation : alike;
    }
    values.clear();
    for (auto bend = bends.begin();
         bend != bends.begin() + static_cast<std::ptrdiff_t>(bends.size() / 3); ++bend) {
        values.push_back(bend->square
                         - kMedianOfSquare * alike * bend->sigma * bend->sigma / length);
    }
    isWanderKnown = true;
    wander = std::sqrt(std::max(0.0, medianOf(values) / kMedianOfSquare));
}

} // namespace otdr
