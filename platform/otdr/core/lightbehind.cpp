#include "platform/otdr/core/lightbehind.h"

#include "platform/otdr/core/fibrebehind.h"

#include <algorithm>
#include <cmath>

namespace otdr {

namespace {

/// A receiver that was overloaded comes down within so many pulses.
constexpr double kLongestPeakPulses = 12.0;

/// A tail falls all the way, but for this much of noise, for longer than a pulse and so many
/// samples: what is shorter is the flank of a peak.
constexpr double kTailRise_dB = 0.5;
constexpr double kFewestTail = 8.0;

/// Light is even that changes by no more than this within so many pulses. It stands so far above
/// the RMS noise, and less of it for so many pulses behind its end.
constexpr double kEven_dB = 0.5;
constexpr int kEvenPulses = 5;
constexpr double kAboveNoise_dB = 2.0;
constexpr double kGonePulses = 3.0;

/// An echo of a fall stands within so many pulses of where light comes from that goes there twice.
constexpr double kEchoPulses = 4.0;

} // namespace

LightBehind::LightBehind(const FibreTrace& trace, double threshold_dB)
    : trace(trace)
    , w(trace.scale().pulse)
    , step(std::max(1.0, std::floor(w / 2.0)))
    , threshold_dB(threshold_dB)
{
}

double LightBehind::peakOver(double at) const
{
    const double base = trace.mean_dB(at - w, at);
    double last = at;
    for (double i = at; i < at + kLongestPeakPulses * w; i += 1.0) {
        last = trace.mean_dB(i, i + 1.0) > base + threshold_dB ? i : last;
        // What rises further behind, or again, is another reflection.
        if (i - last > (last > at ? 1.0 : kFallPulses + 1.0) * w) {
            break;
        }
    }
    return last;
}

double LightBehind::tailOver(double from, double at, double last) const
{
    const double most = trace.mean_dB(from - w, from) + threshold_dB;
    double lowest = trace.mean_dB(at, at + w);
    const auto fallsBy = [&](double i) {
        return i < at + 2.0 * w ? 0.0 : trace.mean_dB(i - 2.0 * w, i - w) - trace.mean_dB(i, i + w);
    };
    double i = at;
    for (; i < last && lowest > most; i += step) {
        const double level = trace.mean_dB(i, i + w);
        if (level > lowest + kTailRise_dB || fallsBy(i) > threshold_dB) {
            return at;
        }
        lowest = std::min(lowest, level);
    }
    return i < last && i - at > std::max(w, kFewestTail) ? i : at;
}

std::optional<double> LightBehind::endsSuddenly(double fall, double from, double last) const
{
    const double least = trace.noise().rms_dB() + kAboveNoise_dB;
    const double length = kEvenPulses * w;
    for (double at = from + length + kFallPulses * w; at < last; at += step) {
        if (trace.mean_dB(at - kFallPulses * w, at) < least) {
            return std::nullopt;
        }
        if (!isEvenBefore(at)) {
            continue;
        }
        const double top = peakOver(at);
        if (top > at && isEcho(fall, at)) {
            continue;
        }
        const double behind = (top > at ? flankOver(top) : top) + kFallPulses * w;
        const auto line = trace.fit(at - length, at);
        // What goes on falling as before has not ended, nor does light that rises by chance.
        const double expected =
            line ? std::min(line->at(at), line->at(behind + 0.5 * kGonePulses * w)) : least;
        if (expected - trace.mean_dB(behind, behind + kGonePulses * w) > threshold_dB) {
            return at;
        }
    }
    return std::nullopt;
}

/// Where light that falls behind the top of a peak does so no longer, the higher the later, or
/// hardly more of the record follows.
double LightBehind::flankOver(double top) const
{
    const double last = trace.size() - (kFallPulses + kGonePulses) * w - step;
    double i = top;
    while (i < last && trace.mean_dB(i, i + w) - trace.mean_dB(i + w, i + 2.0 * w) > kEven_dB) {
        i += step;
    }
    return i;
}

/// Light that goes from the port to the fall and back twice comes from twice as far.
bool LightBehind::isEcho(double fall, double at) const
{
    return std::abs((at - trace.launch()) - 2.0 * (fall - trace.launch())) < kEchoPulses * w;
}

bool LightBehind::isEvenBefore(double at) const
{
    double lowest = trace.mean_dB(at - w, at);
    double highest = lowest;
    for (int k = 2; k <= kEvenPulses; ++k) {
        const double level = trace.mean_dB(at - k * w, at - (k - 1) * w);
        lowest = std::min(lowest, level);
        highest = std::max(highest, level);
    }
    return highest - lowest < kEven_dB;
}

} // namespace otdr
