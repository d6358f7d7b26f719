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

/// Events that leave less than this part of the bends stand close to each other: shorter means tell
/// more of what lies between them.
constexpr double kCrowdedPart = 0.75;

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

/// Lower quartile of the square of a standard normal variable. Where squares are told to be this
/// many times smaller by their quartile than by their median, there are two kinds of them.
constexpr double kQuartileOfSquare = 0.1015;
constexpr double kTwoKinds = 8.0;

/// The square of a normal value, and what of its variance is known.
struct Square
{
    double value;
    double known;
};

/// The rest of the variance, by the square below which a part of them lies.
double restBy(const std::vector<Square>& squares, std::size_t divisor, double ofSquare)
{
    std::vector<double> rests;
    rests.reserve(squares.size());
    for (const Square& square : squares) {
        rests.push_back(square.value - ofSquare * square.known);
    }
    const auto place = rests.begin() + static_cast<std::ptrdiff_t>(rests.size() / divisor);
    std::nth_element(rests.begin(), place, rests.end());
    return *place / ofSquare;
}

/// What the variance of normal values exceeds the known part by. Where events stand so close that
/// they disturb more than half of the values, it is that of the others.
double restOfVariance(const std::vector<Square>& squares)
{
    std::vector<Square> whole = squares;
    for (Square& square : whole) {
        square.known = 0.0;
    }
    const bool hasTwoKinds =
        restBy(whole, 2, kMedianOfSquare) > kTwoKinds * restBy(whole, 4, kQuartileOfSquare);
    return hasTwoKinds ? restBy(squares, 4, kQuartileOfSquare)
                       : restBy(squares, 2, kMedianOfSquare);
}

} // namespace

/// From one bend to the next, samples.
std::size_t NoiseProfile::strideOfBends(std::size_t length) const
{
    return std::max<std::size_t>(1, length * (1 + (last - first) / length / 4096) / 2);
}

std::vector<NoiseProfile::Bend> NoiseProfile::bendsOf(const Trace& trace, std::size_t length) const
{
    std::vector<Bend> bends;
    const std::size_t stride = strideOfBends(length);
    for (std::size_t i = first + length; i + 2 * length <= last; i += stride) {
        const std::size_t middle = i + length / 2;
        const double sigma = sigma_dB(static_cast<double>(middle));
        const auto fall =
            std::lower_bound(falls.begin(), falls.end(), static_cast<double>(i - length));
        const bool isBroken = fall != falls.end() && *fall < static_cast<double>(i + 2 * length);
        if (sigma < kLogarithmic_dB && !isBroken
            && !isDisturbed(static_cast<double>(i - length), static_cast<double>(i + 2 * length))) {
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
        const auto reach = static_cast<double>(lag);
        if (sigma > kRoundings * kLeastSigma_dB && sigma < kLogarithmic_dB
            && !isDisturbed(static_cast<double>(i) - reach, static_cast<double>(i) + reach)) {
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
    auto length = static_cast<std::size_t>(
        std::max(kShortestMean * reach * reach, std::ceil(kMeanPulses * pulse * reach)));
    std::vector<Bend> bends = bendsOf(trace, length);
    const std::size_t all = (last - first) / strideOfBends(length);
    if (!events.empty()
        && static_cast<double>(bends.size()) < kCrowdedPart * static_cast<double>(all)) {
        length = (length + 1) / 2;
        bends = bendsOf(trace, length);
    }
    if (bends.size() >= kFewestBends) {
        measureLikeness(trace, pulse, bends, static_cast<double>(length));
        measureWander(bends, static_cast<double>(length));
        return;
    }
    if (const auto likeness = likenessByLags(trace, pulse)) {
        alike = likeness->correlation;
        for (std::vector<double>* some : {&sigmas, &beforeFalls}) {
            for (double& sigma : *some) {
                sigma = std::max(kLeastSigma_dB, sigma * std::min(1.0, likeness->scatter));
            }
        }
    }
}

/// Of the third of the bends that scatters most, those of which it is noise: roundings are not
/// alike.
void NoiseProfile::measureLikeness(const Trace& trace, double pulse, const std::vector<Bend>& bends,
                                   double length)
{
    const auto third = bends.end() - static_cast<std::ptrdiff_t>(bends.size() / 3);
    const auto noisy = std::find_if(bends.begin(), bends.end(), [](const Bend& bend) {
        return bend.sigma > kNoisyRoundings * kLeastSigma_dB;
    });
    isNoise = bends.end() - noisy >= static_cast<std::ptrdiff_t>(kFewestBends);
    std::vector<Square> squares;
    for (auto bend = isNoise ? std::max(third, noisy) : third; bend != bends.end(); ++bend) {
        squares.push_back({bend->square / (bend->sigma * bend->sigma / length), 0.0});
    }
    alike = std::clamp(restOfVariance(squares), 1.0, length);
    if (!isNoise && noisy != bends.end()) {
        const auto likeness = likenessByLags(trace, pulse);
        alike = likeness ? likeness->correlation : alike;
    }
}

/// Where it scatters least, means bend by more than their noise.
void NoiseProfile::measureWander(const std::vector<Bend>& bends, double length)
{
    std::vector<Square> squares;
    const auto third = bends.begin() + static_cast<std::ptrdiff_t>(bends.size() / 3);
    for (auto bend = bends.begin(); bend != third; ++bend) {
        squares.push_back({bend->square, alike * bend->sigma * bend->sigma / length});
    }
    isWanderKnown = true;
    wander = std::sqrt(std::max(0.0, restOfVariance(squares)));
}

} // namespace otdr
