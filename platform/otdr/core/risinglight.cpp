#include "platform/otdr/core/risinglight.h"

#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

/// Light rises within this part of a pulse, and by more than so many sigmas where no more is asked.
constexpr double kRiseSigmas = 10.0;
constexpr double kRisePulses = 0.35;

/// Half a pulse, and no fewer samples, is fibre where it falls by less than this within a pulse.
constexpr double kLevelPulses = 0.5;
constexpr double kFewestLevel = 5.0;
constexpr double kLevel_dB = 0.05;

} // namespace

std::vector<double> risesBetween(const FibreTrace& trace, double foot, double to)
{
    const double risen = std::max(trace.shape().riseTo(0.99), 0.5 * trace.scale().pulse);
    return risesIn(trace, foot + risen, to);
}

std::vector<double> risesIn(const FibreTrace& trace, double from, double to)
{
    // Between them the light may fall for good, and scatter more from there on.
    const double sigma = std::max(trace.noise().sigma_dB(from), trace.noise().sigma_dB(to));
    return risesIn(trace, from, to, std::max(kPlainRise_dB, kRiseSigmas * sigma));
}

std::vector<double> risesIn(const FibreTrace& trace, double from, double to, double least_dB)
{
    const double w = trace.scale().pulse;
    const auto level = [&](std::size_t i) { return trace.samples().level_dB(i); };
    const auto lag = static_cast<std::size_t>(std::max(1.0, std::round(kRisePulses * w)));
    const auto end = static_cast<std::size_t>(
        std::clamp(to, 0.0, std::max(0.0, trace.size() - 1.0 - static_cast<double>(lag))));
    std::vector<double> feet;
    auto i = lag + static_cast<std::size_t>(std::max(0.0, from));
    for (; i < end; ++i) {
        if (level(i + lag) - level(i) < least_dB || level(i) - level(i - lag) > 0.25 * least_dB) {
            continue;
        }
        std::size_t next = i + lag;
        while (next > i && level(next - 1) - level(i) > 0.25 * least_dB) {
            --next;
        }
        feet.push_back(static_cast<double>(next) - 0.5);
        i = next + lag + static_cast<std::size_t>(0.5 * w);
    }
    return feet;
}

std::optional<double> fibreBeforeRise(const FibreTrace& trace, double from, double to)
{
    const double w = trace.scale().pulse;
    const double length = std::max(kFewestLevel, kLevelPulses * w);
    for (const double foot : risesIn(trace, from, to)) {
        const double begin = foot - 1.0 - length;
        const auto line = begin < from ? std::nullopt : trace.fit(begin, begin + length);
        if (line && std::abs(line->line.slope_dB) * w < kLevel_dB) {
            return begin;
        }
    }
    return std::nullopt;
}

std::optional<double> firstPeak(const FibreTrace& trace, double from, double to, const Line& fibre)
{
    const double sigma = trace.noise().sigma_dB(to - trace.scale().pulse);
    const double least = std::max(kPlainRise_dB, kRiseSigmas * sigma);
    std::optional<double> first;
    double top = 0.0;
    for (auto i = static_cast<std::size_t>(std::max(0.0, from)); static_cast<double>(i) < to; ++i) {
        const auto index = static_cast<double>(i);
        const double over = trace.samples().level_dB(i) - fibre.at(index);
        if (!first && over > least) {
            first = index;
        }
        top = std::max(top, over);
        if (first && over < top - least) {
            return first;
        }
    }
    return std::nullopt;
}

} // namespace otdr
