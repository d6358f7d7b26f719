#include "platform/otdr/core/noise.h"

#include "platform/otdr/core/darkness.h"
#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/lightfalls.h"
#include "platform/otdr/core/scatter.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace otdr {

namespace {

constexpr std::size_t kShortestBlock = 256;
constexpr std::size_t kMostBlocks = 512;

/// An event disturbs the second differences over three pulses: too few to move the median of these.
constexpr double kBlockPulses = 10.0;
constexpr std::size_t kDifferencesPerBlock = 256;
constexpr std::size_t kFewestDifferences = 64;

/// So many differences of neighbours tell by what steps a trace was measured.
constexpr std::size_t kFewestSteps = 8;
constexpr double kSameStep = 0.2;

/// Scatter beyond which the logarithm of noisy light says nothing.
constexpr double kMostSigma_dB = 5.0;

/// By so much a block exceeds the next one by chance.
constexpr double kTooMuch = 1.4;

/// Across a fall of the light nothing is told of the scatter, for so many pulses behind its middle.
constexpr double kFallPulses = 2.0;

/// Fewer second differences tell no scatter.
constexpr std::size_t kFewestBetween = 16;

/// The noise floor is sought in the last tenth of a record.
constexpr std::size_t kFloorPart = 10;

/// Of a record that ends soon behind the fibre a smaller part may be darker; so many samples and
/// pulses tell it, for the noise of neighbours is alike.
constexpr double kFewestFloor = 48.0;
constexpr double kFewestFloorPulses = 5.0;

/// Fibre that tells the noise scatters less than this, and stands so much above the least level.
constexpr double kFibreSigma_dB = 0.15;
constexpr double kLight_dB = 3.0;

/// Whether both halves of a stretch are as dark: no light stands in one of them.
bool isEven(const Trace& trace, std::size_t first, std::size_t last)
{
    const std::size_t middle = first + (last - first) / 2;
    return std::abs(darknessOf(trace, first, middle).rms_dB
                    - darknessOf(trace, middle, last).rms_dB)
        < kLight_dB;
}

/// What neighbours tell of the steps that a trace was measured in.
struct Rounding
{
    bool isCoarse = false; ///< most neighbours are equal
    double scatter_dB = 0.0; ///< what it scatters by, where most of the others differ by much the
                             ///< same, which is the step then; else 0
};

Rounding roundingOf(const Trace& trace, std::size_t first, std::size_t last, std::size_t stride)
{
    const RawSamples& counts = trace.samples();
    std::vector<int> steps;
    std::size_t pairs = 0;
    for (std::size_t i = first; i + 1 < last; i += stride) {
        const int step = std::abs(int {counts[i + 1]} - int {counts[i]});
        if (step > 0) {
            steps.push_back(step);
        }
        ++pairs;
    }
    Rounding rounding;
    rounding.isCoarse = pairs > 0 && 2 * steps.size() <= pairs;
    if (rounding.isCoarse && steps.size() >= kFewestSteps) {
        const double step = medianOf(steps);
        const auto alike = std::count_if(steps.begin(), steps.end(), [&](int other) {
            return std::abs(other - step) < kSameStep * step;
        });
        const bool isStep = 2 * static_cast<std::size_t>(alike) > steps.size();
        rounding.scatter_dB = isStep ? step * trace.dbPerCount() / std::sqrt(12.0) : 0.0;
    }
    return rounding;
}

/// What the samples first .. last - 1 scatter by, dB, by differences over a pulse.
double scatterWithin_dB(const Trace& trace, double pulse, std::size_t first, std::size_t last)
{
    const auto lag = static_cast<std::size_t>(std::max(1.0, std::round(pulse)));
    const double sigma = scatterOf_dB(trace, first, last, lag);
    return std::clamp(sigma, NoiseProfile::kLeastSigma_dB, kMostSigma_dB);
}

} // namespace

NoiseProfile::NoiseProfile(const Trace& trace, double pulse, std::size_t first, std::size_t last,
                           std::vector<Disturbance> events, double reach)
    : first(std::min(first, trace.size()))
    , last(std::clamp(last, this->first, trace.size()))
    , events(std::move(events))
    , reach(reach)
{
    measureScatter(trace, pulse);
    breakAtFalls(trace, pulse);
    if (!sigmas.empty()) {
        levelOut(trace);
    }
    measureFloor(trace, pulse);
    measureCorrelation(trace, pulse);
}

/// Whether an event stands between two indices.
bool NoiseProfile::isDisturbed(double from, double to) const
{
    const auto next =
        std::lower_bound(events.begin(), events.end(), from,
                         [](const Disturbance& event, double index) { return event.to < index; });
    return next != events.end() && next->from < to;
}

void NoiseProfile::measureScatter(const Trace& trace, double pulse)
{
    const std::size_t n = last - first;
    blockSize =
        std::max({kShortestBlock, n / kMostBlocks, static_cast<std::size_t>(kBlockPulses * pulse)});
    const std::size_t lag = std::clamp<std::size_t>(
        static_cast<std::size_t>(std::lround(pulse * reach)), 1, std::max<std::size_t>(1, n / 8));
    const std::size_t stride = std::max<std::size_t>(1, blockSize / kDifferencesPerBlock);
    std::vector<int> differences;
    for (std::size_t begin = first; begin < last; begin += blockSize) {
        differences.clear();
        const std::size_t end = std::min(last, begin + blockSize);
        // A short last block looks further back.
        const std::size_t from = end - std::min(end - first, blockSize);
        for (std::size_t i = std::max(from, first + lag); i < end && i + lag < last; i += stride) {
            const auto middle = static_cast<double>(i);
            const auto reach = static_cast<double>(lag);
            if (!isDisturbed(middle - reach, middle + reach)) {
                differences.push_back(secondDifferenceAt(trace, i, lag));
            }
        }
        double sigma = sigmas.empty() ? kLeastSigma_dB : sigmas.back();
        if (differences.size() >= kFewestDifferences || sigmas.empty()) {
            sigma = differences.empty() ? kLeastSigma_dB : scatterBy_dB(trace, differences);
        }
        const Rounding rounding = roundingOf(trace, from, end, stride);
        coarseBlocks += rounding.isCoarse ? 1 : 0;
        const double least = std::max(kLeastSigma_dB, rounding.scatter_dB);
        sigmas.push_back(std::clamp(sigma, least, kMostSigma_dB));
    }
}

/// Behind a splitter the light is so much weaker that the scatter changes within a pulse: the
/// blocks on both sides are told by the samples up to the falls, and so is what lies between two.
void NoiseProfile::breakAtFalls(const Trace& trace, double pulse)
{
    const std::vector<double> seen = lightFalls(trace, pulse, first, last, blockSize);
    const auto size = static_cast<double>(blockSize);
    std::optional<double> since; // the fall before told it of what is so near
    auto from = static_cast<double>(first);
    for (std::size_t i = 0; i < seen.size() && sigmas.size() > 1; ++i) {
        const double fall = seen[i];
        const double next = i + 1 < seen.size() ? seen[i + 1] : static_cast<double>(last) + pulse;
        const std::size_t block = intervalOf(fall);
        const bool isFirst = falls.empty() || intervalOf(falls.back()) < block;
        const double seenBefore =
            scatterBetween(trace, pulse, std::max(from, fall - size), fall - pulse)
                .value_or(since.value_or(sigmas[block]));
        // No place between two blocks has less than their own.
        const double before = isFirst ? seenBefore : std::max(seenBefore, beforeFalls.back());
        from = fall + kFallPulses * pulse;
        const auto behind = scatterBetween(trace, pulse, from, std::min(next - pulse, fall + size));
        since = std::clamp(behind.value_or(before * weakerBehind(trace, pulse, fall)),
                           kLeastSigma_dB, kMostSigma_dB);
        if (*since > before) {
            sigmas[block] = isFirst ? before : sigmas[block];
            sigmas[block + 1] = *since;
            falls.push_back(fall);
            beforeFalls.push_back(before);
        }
    }
}

/// Between the middles of which blocks an index lies: of this one and the next.
std::size_t NoiseProfile::intervalOf(double index) const
{
    const double place =
        (index - static_cast<double>(first)) / static_cast<double>(blockSize) - 0.5;
    return static_cast<std::size_t>(
        std::clamp(std::floor(place), 0.0, static_cast<double>(sigmas.size() - 2)));
}

/// Scatter of the samples between two indices; empty where there are too few.
std::optional<double> NoiseProfile::scatterBetween(const Trace& trace, double pulse, double from,
                                                   double to) const
{
    const auto lag = static_cast<std::size_t>(std::max(1.0, std::round(pulse)));
    const double begin = std::max(from, static_cast<double>(first));
    const double end = std::min(to, static_cast<double>(last));
    if (end - begin < static_cast<double>(2 * lag + kFewestBetween)) {
        return std::nullopt;
    }
    return scatterWithin_dB(trace, pulse, static_cast<std::size_t>(begin),
                            static_cast<std::size_t>(end));
}

/// By how much weaker the light is behind a fall; NaN where nothing is left of the stretch there.
double NoiseProfile::weakerBehind(const Trace& trace, double pulse, double fall) const
{
    const auto place = [&](double index) {
        return static_cast<std::size_t>(
            std::clamp(index, static_cast<double>(first), static_cast<double>(last)));
    };
    const auto level = [&](double from) {
        return trace.meanLevel_dB(place(from), place(from + std::max(1.0, pulse)));
    };
    return powerRatio(level(fall - 1.5 * pulse - 1.0) - level(fall + 0.5 * pulse + 1.0));
}

/// Stronger light scatters less, in decibels: where a nearer block, with more light, scatters more
/// than the next one, that is the launch or an event and no noise.
void NoiseProfile::levelOut(const Trace& trace)
{
    for (std::size_t block = sigmas.size() - 1; block-- > 0;) {
        const std::size_t begin = first + block * blockSize;
        const std::size_t end = std::min(last, begin + 2 * blockSize);
        const std::size_t middle = begin + blockSize;
        const bool isNoise = sigmas[block + 1] > 2.0 * kLeastSigma_dB;
        if (isNoise && sigmas[block] > kTooMuch * sigmas[block + 1]
            && trace.meanLevel_dB(begin, middle) >= trace.meanLevel_dB(middle, end)) {
            sigmas[block] = sigmas[block + 1];
        }
    }
}

// Light that falls as exp(-x) scatters, in decibels, by exp(x) more: geometric means between the
// middles of the blocks, and the same on to the ends of the stretch.
double NoiseProfile::sigma_dB(double index) const
{
    if (sigmas.empty()) {
        return kMostSigma_dB;
    }
    if (sigmas.size() == 1) {
        return sigmas.front();
    }
    const auto from = static_cast<double>(first);
    const double within =
        index > from ? std::min(index, static_cast<double>(last)) : from; // of NaN, the first
    const std::size_t k = intervalOf(within);
    if (!falls.empty()) {
        const auto next = std::upper_bound(falls.begin(), falls.end(), within);
        const auto isHere = [&](std::vector<double>::const_iterator fall) {
            return fall != falls.end() && intervalOf(*fall) == k;
        };
        const bool isBehind = next != falls.begin() && isHere(std::prev(next));
        if (isHere(next)) {
            return isBehind ? beforeFalls[static_cast<std::size_t>(next - falls.begin())]
                            : sigmas[k];
        }
        if (isBehind) {
            return sigmas[k + 1];
        }
    }
    const double place = (within - from) / static_cast<double>(blockSize) - 0.5;
    const double part = place - static_cast<double>(k);
    const double sigma = sigmas[k] * std::pow(sigmas[k + 1] / sigmas[k], part);
    return std::clamp(sigma, kLeastSigma_dB, kMostSigma_dB);
}

double NoiseProfile::leastSigma_dB(double from, double to) const
{
    double least = std::min(sigma_dB(from), sigma_dB(to));
    const auto begin = static_cast<double>(first);
    const auto size = static_cast<double>(blockSize);
    for (double block = std::max(0.0, std::ceil((from - begin) / size - 0.5));
         block < static_cast<double>(sigmas.size()) && begin + (block + 0.5) * size < to;
         block += 1.0) {
        least = std::min(least, sigmas[static_cast<std::size_t>(block)]);
    }
    return least;
}

void NoiseProfile::measureFloor(const Trace& trace, double pulse)
{
    const std::size_t n = trace.size();
    if (n < kFloorPart) {
        return;
    }
    Darkness dark = darknessOf(trace, n - n / kFloorPart, n);
    const auto fewest =
        static_cast<std::size_t>(std::max(kFewestFloor, kFewestFloorPulses * pulse));
    for (std::size_t part = 2 * kFloorPart; n / part >= fewest; part *= 2) {
        const Darkness last = darknessOf(trace, n - n / part, n);
        const bool isDarker = last.rms_dB < dark.rms_dB - kLight_dB;
        const bool isConstant = last.most_dB <= last.least_dB;
        if (((last.isNoise && (isDarker || !dark.isNoise)) || (isConstant && isDarker))
            && isEven(trace, n - n / part, n)) {
            dark = last;
        }
    }
    // Of a record that ends soon behind the stretch, most of what is looked at last is fibre.
    const bool endsSoon = 2 * (n - last) < blockSize && !sigmas.empty();
    const double scatter =
        endsSoon ? sigmas.back() : scatterWithin_dB(trace, pulse, n - std::min(n, blockSize), n);
    rms = dark.isNoise ? dark.rms_dB : dark.median_dB + levelOfRatio_dB(scatter / kDbPerNeper);
    if (dark.isEmpty) {
        rms = std::max(rms, dark.median_dB);
    }
    // Whatever light scatters by is no less than the noise makes it. Where samples stand at the
    // least that the record can hold there is no light.
    std::vector<double> limits;
    for (std::size_t block = 0; block < sigmas.size(); ++block) {
        const std::size_t begin = first + block * blockSize;
        const double level = trace.meanLevel_dB(begin, std::min(last, begin + blockSize));
        if (sigmas[block] > 2.0 * kLeastSigma_dB && sigmas[block] < kFibreSigma_dB
            && level > dark.least_dB + kLight_dB) {
            limits.push_back(level + levelOfRatio_dB(sigmas[block] / kDbPerNeper));
        }
    }
    if (limits.size() >= 4) {
        rms = std::min(rms, medianOf(limits) + 1.0);
    }
}

} // namespace otdr
