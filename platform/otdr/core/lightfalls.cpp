#include "platform/otdr/core/lightfalls.h"

#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace otdr {

namespace {

/// A fall is one of so much, dB, within so many pulses.
constexpr double kFall_dB = 1.0;
constexpr double kFallPulses = 2.0;

/// The light is looked at in steps of this many pulses.
constexpr double kStepPulses = 0.25;

class FallSearch
{
public:
    FallSearch(const Trace& trace, double pulse, std::size_t first, std::size_t last)
        : trace(trace)
        , w(std::max(1.0, std::round(pulse)))
        , first(static_cast<double>(first))
        , last(static_cast<double>(last))
    {
    }

    /// Whether the light behind a stretch is so much weaker than before it that a fall may be
    /// there.
    [[nodiscard]] bool mayFall(double from, double to) const
    {
        const double beside = 0.25 * (to - from);
        return level(from - beside, beside) - level(to, beside) > kFall_dB;
    }

    /// Adds the falls between two indices. What the light was before is the least of so many
    /// samples in front of them, and of all since: each fall is thus seen once, from its own level.
    void add(double from, double to, double reach, std::vector<double>& falls) const
    {
        double before = std::numeric_limits<double>::infinity();
        for (double at = from - reach; at < from; at += w) {
            before = std::min(before, level(at, w));
        }
        double most = kFall_dB;
        double place = 0.0;
        const double step = std::max(1.0, kStepPulses * w);
        for (double at = from; at < to; at += step) {
            before = std::min(before, level(at - w, w));
            const double fallen = before - level(at + (kFallPulses - 1.0) * w, w);
            if (fallen > most) {
                most = fallen;
                place = at + 0.5 * w;
            }
            if (most > kFall_dB && (fallen < kFall_dB || at + step >= to)) {
                falls.push_back(place);
                most = kFall_dB;
            }
        }
    }

    /// A fall is seen from so far.
    [[nodiscard]] double margin() const { return (kFallPulses + 1.0) * w; }

private:
    /// Of the samples from an index on, or of as many as the stretch has there.
    [[nodiscard]] double level(double begin, double length) const
    {
        const double from = std::clamp(begin, first, std::max(first, last - length));
        const double to = std::min(from + length, last);
        return trace.meanLevel_dB(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
    }

    const Trace& trace;
    double w;
    double first;
    double last;
};

} // namespace

std::vector<double> lightFalls(const Trace& trace, double pulse, std::size_t first,
                               std::size_t last, std::size_t reach)
{
    std::vector<double> falls;
    const FallSearch search(trace, pulse, first, last);
    const auto length = static_cast<double>(reach);
    double begin = 0.0;
    double end = -1.0; // of the stretch that was found last
    const auto addStretch = [&] {
        if (end > begin) {
            search.add(begin, end, length, falls);
        }
    };
    for (double from = static_cast<double>(first); from < static_cast<double>(last);
         from += length) {
        if (!search.mayFall(from, from + length)) {
            continue;
        }
        if (from - search.margin() > end) {
            addStretch();
            begin = from - search.margin();
        }
        end = from + length + search.margin();
    }
    addStretch();
    return falls;
}

} // namespace otdr
