#include "platform/otdr/core/soraxis.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace otdr::sor {

namespace {

constexpr double kCountsPerPulseNs = 5.0; // one way
constexpr std::ptrdiff_t kRiseSamples = 5; // the steepest rise comes up to this late
constexpr std::ptrdiff_t kLongestWindow = 200; // samples; keeps the check cheap on long pulses
constexpr std::size_t kMostEvents = 32;

constexpr double kVisibleRise_dB = 0.2;
constexpr double kClearRise_dB = 1.0;
constexpr double kClearDrop_dB = 3.0;
constexpr double kQuietSpread_dB = 1.0; // a level that varies by more than this is noise

using Index = std::ptrdiff_t;

/// The strongest, middle and weakest level of some samples, dB as raw counts have it: smaller is
/// stronger.
struct Level
{
    double strongest = 0.0;
    double middle = 0.0;
    double weakest = 0.0;

    [[nodiscard]] double spread() const { return weakest - strongest; }
};

/// What the samples show where an event should be.
enum class Evidence
{
    Nothing,
    Weak,
    Clear
};

class Evidences
{
public:
    Evidences(const DataPts& data, double pulseSamples)
        : samples(data.samples)
        , dbPerCount(data.scaleFactor / 1000.0 * kUsualDbPerCount)
        , width(std::clamp<Index>(std::lround(pulseSamples), 1, kLongestWindow))
    {
    }

    /// A rise to a peak at this index.
    Evidence edge(Index index)
    {
        const Index before = std::max<Index>(index - width - kRiseSamples, 0);
        if (!covers(before, index - 1) || !covers(index, index + 1)) {
            return Evidence::Nothing;
        }
        const Level left = levelOf(before, index - 1);
        const Index end = std::min<Index>(index + width + kRiseSamples + 1, size());
        const int peak = *std::min_element(samples.begin() + index, samples.begin() + end);
        const double rise = left.strongest - dbPerCount * peak;
        if (rise >= std::max(kClearRise_dB, 3.0 * left.spread())) {
            return Evidence::Clear;
        }
        return rise >= std::max(kVisibleRise_dB, left.spread()) ? Evidence::Weak
                                                                : Evidence::Nothing;
    }

    /// A drop from quiet fibre that begins within three pulse widths of this index.
    Evidence drop(Index index)
    {
        if (!covers(index - 3 * width, index - width)
            || !covers(index + 3 * width, index + 5 * width)) {
            return Evidence::Nothing;
        }
        const Level left = levelOf(index - 3 * width, index - width);
        const Level right = levelOf(index + 3 * width, index + 5 * width);
        const bool isDrop =
            left.spread() < kQuietSpread_dB && right.middle - left.middle >= kClearDrop_dB;
        return isDrop ? Evidence::Clear : Evidence::Nothing;
    }

private:
    [[nodiscard]] Index size() const { return static_cast<Index>(samples.size()); }

    [[nodiscard]] bool covers(Index from, Index to) const
    {
        return from >= 0 && from < to && to <= size();
    }

    Level levelOf(Index from, Index to)
    {
        window.assign(samples.begin() + from, samples.begin() + to);
        const auto middle = window.begin() + static_cast<Index>(window.size() / 2);
        std::nth_element(window.begin(), middle, window.end());
        return {dbPerCount * *std::min_element(window.begin(), middle + 1), dbPerCount * *middle,
                dbPerCount * *std::max_element(middle, window.end())};
    }

    const RawSamples& samples;
    double dbPerCount;
    Index width;
    std::vector<std::uint16_t> window;
};

/// How many events stand in the samples where a port position puts them.
struct Score
{
    int found = 0; ///< clearly or weakly
    int clear = 0;
};

Score scoreOf(const File& file, std::int64_t port, double step, Evidences& evidences)
{
    Score score;
    const auto count = [&score](Evidence evidence) {
        score.found += evidence != Evidence::Nothing ? 1 : 0;
        score.clear += evidence == Evidence::Clear ? 1 : 0;
    };
    const std::string kinds = eventKinds(file);
    const auto& events = file.keyEvents->events;
    for (std::size_t i = 0; i < std::min(events.size(), kMostEvents); ++i) {
        const double time = static_cast<double>(events[i].position) + file.gen.userOffset
            + static_cast<double>(port);
        const auto index = static_cast<Index>(std::llround(time / step));
        const bool isReflective = events[i].code[0] == '1' || events[i].code[0] == '2';
        if (isReflective || kinds[i] == 'r') {
            count(evidences.edge(index));
        }
        if (isFibreEnd(events[i])) {
            count(evidences.drop(index));
        }
    }
    return score;
}

std::int64_t statedPort(const File& file)
{
    const std::int64_t offset = file.fxd.acquisitionOffset;
    return offset != 0 ? -offset : std::int64_t {file.fxd.frontPanelOffset};
}

/// The other readings that put events elsewhere: further than three pulse widths from the stated
/// one. The last two: an acquisition offset of the other sign, and events that count from the port
/// whatever the user's zero is.
std::vector<std::int64_t> otherPorts(const File& file, double pulseCounts)
{
    const std::int64_t stated = statedPort(file);
    const std::int64_t panel = file.fxd.frontPanelOffset;
    const std::int64_t offset = file.fxd.acquisitionOffset;
    std::vector<std::int64_t> ports;
    for (const std::int64_t port :
         {std::int64_t {0}, panel, -panel, offset, stated - file.gen.userOffset}) {
        if (std::abs(static_cast<double>(port - stated)) > 3.0 * pulseCounts) {
            ports.push_back(port);
        }
    }
    return ports;
}

/// The port position that the samples speak for. Needs two clear pieces of evidence, and more than
/// twice of what speaks for the stated one, to leave that.
std::int64_t verifiedPort(const File& file, double step, double pulseCounts)
{
    const std::int64_t stated = statedPort(file);
    const auto others = otherPorts(file, pulseCounts);
    if (others.empty() || !file.keyEvents || !(step > 0.0) || !(pulseCounts > 0.0)) {
        return stated;
    }
    Evidences evidences(file.data, pulseCounts / step);
    int needed = std::max(2, 2 * scoreOf(file, stated, step, evidences).found + 1);
    std::int64_t best = stated;
    for (const std::int64_t port : others) {
        const int clear = scoreOf(file, port, step, evidences).clear;
        if (clear >= needed) {
            best = port;
            needed = clear + 1;
        }
    }
    return best;
}

} // namespace

Axis axisOf(const File& file)
{
    Axis axis;
    axis.sampleInterval_ns = sampleInterval_ns(file);
    const double pulse = pulse_ns(file);
    axis.port = verifiedPort(file, axis.sampleInterval_ns / kCountNs,
                             std::isnan(pulse) ? 0.0 : pulse * kCountsPerPulseNs);
    axis.firstSample_ns = -static_cast<double>(axis.port + file.gen.userOffset) * kCountNs;
    if (axis.port != statedPort(file)) {
        axis.note = "the events fit the samples with 0 m at sample "
            + std::to_string(std::llround(-axis.firstSample_ns / axis.sampleInterval_ns))
            + ", not where the offsets put it";
    }
    return axis;
}

} // namespace otdr::sor
