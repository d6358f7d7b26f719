#include "platform/otdr/core/fibretrace.h"

#include "platform/otdr/core/darkness.h"
#include "platform/otdr/core/overload.h"
#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace otdr {

namespace {

/// Beyond the end of its ramp an event is given this much more, in samples: sampling is not
/// synchronous with it.
constexpr double kGapMargin = 2.0;

/// The dead zone of an event without a reflection ends where so much of the edge is over.
constexpr double kRisen = 0.99;

/// Tails are followed in steps of half a pulse: what lies there, by itself and with more behind it,
/// is compared with the fibre that follows, of some times its length, less where an event comes
/// next.
constexpr double kStepPulses = 0.5;
constexpr double kChunkPulses[] = {0.5, 1.5};
constexpr double kBehindLengths[] = {6.0, 1.5};
constexpr double kFewestSamples = 4.0;

/// Slopes are told by two means over so many dead zones and samples each, at so many places.
constexpr double kSlopeGaps = 4.0;
constexpr double kFewestSlope = 64.0;
constexpr double kMostSlopes = 1000.0;

/// In noise they are longer, until their median is known this well, as long as there are so many.
constexpr double kSlopeError_dBPerKm = 0.1;
constexpr double kFewestSlopes = 12.0;

/// Standard error of a median, by that of a mean.
constexpr double kMedianError = 1.25;

/// What no fibre exceeds, dB/km.
constexpr double kSteepest_dBPerKm = 5.0;

/// A tail has ended where it is no higher than chance (in standard errors) makes it.
constexpr double kChance = 2.5;

/// Light begins where it first comes within this much of what a quarter of the record's beginning
/// exceeds: fibre, and not its reflections.
constexpr double kLaunch_dB = 8.0;
constexpr double kLaunchPulses = 30.0;
constexpr double kLaunchSamples = 1000.0;

/// How dark it is before that, the end of a record tells: so much of it, and so many samples at
/// least, in so many parts. Light is brighter by this much.
constexpr std::size_t kDarkPart = 50;
constexpr std::size_t kDarkParts = 4;
constexpr std::size_t kFewestDark = 512;
constexpr double kAboveDark_dB = 3.0;

/// What rises to that has begun to do so within so much of a pulse.
constexpr double kEdgePulses = 0.5;

/// The first sample that is brighter than the record's darkness, and so is a pulse from there on:
/// noise has peaks. The first of all where there is none.
std::size_t firstLit(const Trace& trace, double pulse, double least_dB)
{
    const auto length = static_cast<std::size_t>(std::max(kFewestSamples, pulse));
    for (std::size_t i = 0; i < trace.size(); ++i) {
        if (trace.level_dB(i) > least_dB && trace.meanLevel_dB(i, i + length) > least_dB) {
            return i;
        }
    }
    return 0;
}

/// What stands above the darkness at the end of a record, dB; -inf where any part of that end is
/// not dark. In one of them an echo may stand.
double leastLight_dB(const Trace& trace)
{
    const std::size_t part = std::max(trace.size() / kDarkPart, kFewestDark) / kDarkParts;
    double dark_dB = std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < kDarkParts; ++k) {
        const std::size_t last = trace.size() - k * part;
        if (last < part || !isDark(trace, last - part, last)) {
            return -std::numeric_limits<double>::infinity();
        }
        dark_dB = std::min(dark_dB, darknessOf(trace, last - part, last).most_dB);
    }
    return dark_dB + kAboveDark_dB;
}

/// However sharp the edges seem, a weak tail may follow that only long lines show.
double deadZoneOf(const SearchScale& scale)
{
    const double slowest =
        std::max(scale.timeConstant, PulseShape::kUsualTimeConstant * scale.pulse);
    return PulseShape(scale.pulse, slowest).riseTo(kRisen) + scale.pulse + kGapMargin;
}

double launchOf(const Trace& trace, double pulse)
{
    if (trace.size() == 0) {
        return 0.0;
    }
    const std::size_t lit = firstLit(trace, pulse, leastLight_dB(trace));
    const auto edge = static_cast<std::size_t>(kEdgePulses * pulse);
    const std::size_t from = lit - std::min(lit, edge);
    const std::size_t to = from
        + static_cast<std::size_t>(std::min(static_cast<double>(trace.size() - from),
                                            kLaunchSamples + kLaunchPulses * pulse));
    std::vector<std::uint16_t> counts(trace.samples().begin() + from, trace.samples().begin() + to);
    // Counts grow as light gets weaker.
    const auto bright = counts.begin() + static_cast<std::ptrdiff_t>(counts.size() / 4);
    std::nth_element(counts.begin(), bright, counts.end());
    const double least = trace.toLevel_dB(*bright) - kLaunch_dB;
    for (std::size_t i = from; i < to; ++i) {
        if (trace.level_dB(i) > least) {
            return static_cast<double>(i);
        }
    }
    return 0.0;
}

} // namespace

double SideLine::errorAt_dB(double index) const
{
    const auto n = static_cast<double>(line.samples);
    return std::hypot(sigma_dB * std::sqrt(weight / n),
                      slopeError_dB * (index - line.centre - surest));
}

FibreTrace::FibreTrace(const Trace& trace, const SearchScale& scale)
    : trace(&trace)
    , limits(scale)
    , begin(launchOf(trace, scale.pulse))
    , mostLight_dB(overloadLevel_dB(trace, scale.pulse))
    , scatter(trace, scale.pulse, static_cast<std::size_t>(begin), trace.size())
    , pulseShape(scale.pulse, scale.timeConstant)
    , deadZone(deadZoneOf(scale))
{
}

void FibreTrace::endNoiseAt(double index)
{
    scatter = noiseBetween({}, index);
}

NoiseProfile FibreTrace::noiseBetween(std::vector<Disturbance> events, double end,
                                      double reach) const
{
    return {*trace,
            limits.pulse,
            static_cast<std::size_t>(begin),
            static_cast<std::size_t>(std::clamp(end, begin, size())),
            std::move(events),
            reach};
}

void FibreTrace::setTimeConstant(double samples)
{
    limits.timeConstant = samples;
    pulseShape = PulseShape(limits.pulse, samples);
    deadZone = deadZoneOf(limits);
}

double FibreTrace::size() const
{
    return static_cast<double>(trace->size());
}

std::optional<SideLine> FibreTrace::fit(double from, double to) const
{
    const std::optional<Line> line = fitLineBetween(*trace, from, to);
    if (!line) {
        return std::nullopt;
    }
    const double sigma = scatter.sigma_dB(line->centre);
    const double alike = scatter.correlation();
    const auto n = static_cast<double>(line->samples);
    return SideLine {*line, sigma, alike, sigma * std::sqrt(12.0 * alike / (n * (n * n - 1.0)))};
}

std::optional<SideLine> FibreTrace::fitWithSlope(double from, double to, double slope_dB,
                                                 double slopeError_dB) const
{
    const SampleRange range = samplesBetween(from, to, trace->size());
    if (range.empty()) {
        return std::nullopt;
    }
    Line line;
    line.samples = range.count();
    line.centre = 0.5 * static_cast<double>(range.first + range.last - 1);
    line.level_dB = mean_dB(from, to);
    line.slope_dB = slope_dB;
    line.sigma_dB = scatter.sigma_dB(line.centre);
    return SideLine {line, line.sigma_dB, scatter.correlation(), slopeError_dB};
}

double FibreTrace::mean_dB(double from, double to) const
{
    const SampleRange range = samplesBetween(from, to, trace->size());
    return trace->meanLevel_dB(range.first, range.last);
}

double FibreTrace::usualSlope_dB(double from, double to) const
{
    const double length = slopeLength(from, to);
    const double step = std::max(length, (to - from) / kMostSlopes);
    std::vector<double> slopes;
    for (double at = from; at + 2.0 * length <= to; at += step) {
        slopes.push_back((mean_dB(at + length, at + 2.0 * length) - mean_dB(at, at + length))
                         / length);
    }
    if (slopes.empty()) {
        return 0.0;
    }
    const auto middle = slopes.begin() + static_cast<std::ptrdiff_t>(slopes.size() / 2);
    std::nth_element(slopes.begin(), middle, slopes.end());
    return *middle;
}

/// Two means over n samples tell a slope to s sqrt(2 m / n) / n, and the median of some pieces is a
/// root of their number better.
double FibreTrace::slopeLength(double from, double to) const
{
    const double sigma = scatter.sigma_dB(0.5 * (from + to)) * std::sqrt(scatter.correlation());
    double length = std::max(kSlopeGaps * deadZone, kFewestSlope);
    const auto error_dB = [&] {
        const double pieces = std::min(kMostSlopes, (to - from) / length);
        return kMedianError * sigma * std::sqrt(2.0 / length) / length / std::sqrt(pieces);
    };
    while (error_dB() * limits.kilometre > kSlopeError_dBPerKm
           && to - from > 2.0 * kFewestSlopes * length) {
        length *= 2.0;
    }
    return length;
}

bool FibreTrace::isSteep(const SideLine& line) const
{
    return limits.kilometre > 0.0
        && -line.line.slope_dB * limits.kilometre
        > kSteepest_dBPerKm + 3.0 * line.slopeError_dB * limits.kilometre;
}

double FibreTrace::settledFrom(double from, double longest, double tolerance_dB) const
{
    const double step = std::max(kFewestSamples, kStepPulses * limits.pulse);
    double at = from;
    const auto isTailHere = [&] {
        return std::any_of(std::begin(kChunkPulses), std::end(kChunkPulses), [&](double pulses) {
            const double chunk = std::max(kFewestSamples, pulses * limits.pulse);
            return isTail(at, at + chunk, tolerance_dB);
        });
    };
    while (at < from + longest && isTailHere()) {
        at += step;
    }
    return std::min(at, from + longest);
}

bool FibreTrace::isTail(double from, double to, double tolerance_dB) const
{
    const double middle = 0.5 * (from + to);
    const bool isLong = to - from > limits.pulse;
    if (isLong && !(mean_dB(from, middle) > mean_dB(middle, to))) {
        return false; // what lifts its mean is not the tail but what comes behind
    }
    const double mean = mean_dB(from, to);
    const double centre = middle - 0.5;
    const double own = scatter.sigma_dB(centre) * std::sqrt(scatter.correlation() / (to - from));
    for (const double lengths : kBehindLengths) {
        const std::optional<SideLine> behind =
            fit(to, to + std::max(4.0 * kFewestSamples, lengths * (to - from)));
        if (!behind || std::isnan(mean)) {
            return false;
        }
        const double error = std::hypot(own, behind->errorAt_dB(centre));
        const bool isAbove = mean - behind->at(centre) > std::max(tolerance_dB, kChance * error);
        if (!isAbove && !isSteep(*behind)) {
            return false;
        }
    }
    return true;
}

} // namespace otdr
