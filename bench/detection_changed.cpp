// Whether the detection tells the same of real traces that were changed as little as another
// instrument or another setting changes them.
//
//   detection_changed [-v] FILE.sor ...
//
// Each row is a change, made to every trace. An event is kept where one is told within a pulse of
// it; new are events of 0.03 dB and more, and ends, that are not told of the trace as it is. With
// -v each of either kind is named.

#include "bench/measuredfile.h"
#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/storedthresholds.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using otdr::DetectedEvent;
using otdr::Detection;

constexpr double kNew_dB = 0.03;

/// Darkness at which a level is held: less light has no number.
constexpr double kDarkest_dB = -65.0;

/// Levels of a trace, and all that the search is told with them.
struct Record
{
    std::vector<double> levels_dB;
    double dbPerCount = 0.0;
    otdr::TraceAxis axis;
    otdr::Measurement measurement;
    otdr::DetectionSettings settings;

    [[nodiscard]] double metresAt(double index) const
    {
        return axis.distanceAt(index, measurement.metresPerNs);
    }

    [[nodiscard]] Detection detect() const
    {
        std::vector<std::uint16_t> counts;
        for (const double level : levels_dB) {
            const double raw = otdr::kNoSignal - level / dbPerCount;
            counts.push_back(
                static_cast<std::uint16_t>(std::lround(std::clamp(raw, 0.0, 65535.0))));
        }
        return otdr::detectEvents(otdr::Trace(otdr::RawSamples(counts), dbPerCount, axis),
                                  measurement, settings);
    }
};

/// A trace as it is, and what is told of it.
struct Original
{
    std::string name;
    Record record;
    Detection told;
};

using Change = std::function<Record(const Original&)>;

/// Every so many-th sample from one on.
Change sparse(std::size_t first, std::size_t step)
{
    return [=](const Original& from) {
        Record record = from.record;
        record.levels_dB.clear();
        for (std::size_t i = first; i < from.record.levels_dB.size(); i += step) {
            record.levels_dB.push_back(from.record.levels_dB[i]);
        }
        record.axis.firstSample_ns +=
            static_cast<double>(first) * from.record.axis.sampleInterval_ns;
        record.axis.sampleInterval_ns *= static_cast<double>(step);
        return record;
    };
}

/// Means of each sample and the next, at every so many-th of them.
Change means(std::size_t step)
{
    return [=](const Original& from) {
        const std::vector<double>& levels = from.record.levels_dB;
        Record record = from.record;
        record.levels_dB.clear();
        for (std::size_t i = 0; i + 1 < levels.size(); i += step) {
            record.levels_dB.push_back(0.5 * (levels[i] + levels[i + 1]));
        }
        record.axis.firstSample_ns += 0.5 * record.axis.sampleInterval_ns;
        record.axis.sampleInterval_ns *= static_cast<double>(step);
        return record;
    };
}

/// A sample between every two.
Record dense(const Original& from)
{
    const std::vector<double>& levels = from.record.levels_dB;
    Record record = from.record;
    record.levels_dB.clear();
    for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
        record.levels_dB.push_back(levels[i]);
        record.levels_dB.push_back(0.5 * (levels[i] + levels[i + 1]));
    }
    record.axis.sampleInterval_ns *= 0.5;
    return record;
}

/// Levels in steps of so many dB.
Change rounded(double step_dB)
{
    return [=](const Original& from) {
        Record record = from.record;
        for (double& level : record.levels_dB) {
            level = std::round(level / step_dB) * step_dB;
        }
        return record;
    };
}

/// More noise, by so much of the RMS of what is there.
Change noisier(double part, std::uint64_t seed)
{
    return [=](const Original& from) {
        Record record = from.record;
        std::mt19937_64 random(seed);
        std::normal_distribution<double> normal(0.0, part);
        const double rms =
            std::isnan(from.told.noiseFloor_dB) ? 0.0 : otdr::powerRatio(from.told.noiseFloor_dB);
        for (double& level : record.levels_dB) {
            const double power = otdr::powerRatio(level) + rms * normal(random);
            level = power > 0.0 ? std::max(kDarkest_dB, otdr::levelOfRatio_dB(power)) : kDarkest_dB;
        }
        return record;
    };
}

/// The record begins a pulse before 0 m.
Record withoutLaunchFibre(const Original& from)
{
    Record record = from.record;
    const double first =
        (-record.measurement.pulse_ns - record.axis.firstSample_ns) / record.axis.sampleInterval_ns;
    const auto left = static_cast<std::ptrdiff_t>(
        std::clamp(first, 0.0, static_cast<double>(record.levels_dB.size())));
    record.levels_dB.erase(record.levels_dB.begin(), record.levels_dB.begin() + left);
    record.axis.firstSample_ns += static_cast<double>(left) * record.axis.sampleInterval_ns;
    return record;
}

/// Only a part of what lies behind the end is left.
Change shorter(double part)
{
    return [=](const Original& from) {
        Record record = from.record;
        const auto size = static_cast<double>(record.levels_dB.size());
        if (!std::isnan(from.told.end)) {
            const double left = from.told.end + part * (size - from.told.end);
            record.levels_dB.resize(static_cast<std::size_t>(std::clamp(left, 0.0, size)));
        }
        return record;
    };
}

/// The pulse is told so many times as long as it is.
Change withPulse(double times)
{
    return [=](const Original& from) {
        Record record = from.record;
        record.measurement.pulse_ns *= times;
        return record;
    };
}

struct Row
{
    const char* name;
    std::vector<Change> changes;
};

std::vector<Row> rows()
{
    constexpr std::uint64_t kDraws = 20;
    Row little {"noise, 0.1 dB more", {}};
    for (std::uint64_t draw = 0; draw < kDraws; ++draw) {
        little.changes.push_back(noisier(0.35, 100 + draw));
    }
    return {{"every other sample", {sparse(0, 2), sparse(1, 2)}},
            {"means of two", {means(2)}},
            {"between two samples", {means(1)}},
            {"twice the samples", {dense}},
            {"steps of 0.005 dB", {rounded(0.005)}},
            {"steps of 0.01 dB", {rounded(0.01)}},
            little,
            {"noise, 1.5 dB more", {noisier(1.0, 7)}},
            {"noise, 2.5 dB more", {noisier(3.0, 7)}},
            {"no launch fibre", {withoutLaunchFibre}},
            {"half the darkness", {shorter(0.5)}},
            {"a tenth of it", {shorter(0.1)}},
            {"pulse told 0.8 times", {withPulse(0.8)}},
            {"pulse told 1.25 times", {withPulse(1.25)}}};
}

struct Tally
{
    int traces = 0;
    int told = 0;
    int kept = 0;
    int more = 0;
};

bool isToldAt(const Record& record, const Detection& told, double metres, double tolerance_m)
{
    return std::any_of(told.events.begin(), told.events.end(), [&](const DetectedEvent& event) {
        return !event.echo && std::abs(record.metresAt(event.index) - metres) <= tolerance_m;
    });
}

void name(const char* what, const Original& original, const DetectedEvent& event, double metres)
{
    std::printf("  %-5s %s  %.1f m  loss %.3f +- %.4f\n", what, original.name.c_str(), metres,
                event.loss_dB, event.lossError_dB);
}

/// tolerance: a pulse, and two samples at least.
void compare(const Original& original, const Record& changed, bool isNamed, Tally& tally)
{
    const Detection now = changed.detect();
    const double tolerance_m =
        std::max(original.record.measurement.pulse_ns, 2.0 * changed.axis.sampleInterval_ns)
        * changed.measurement.metresPerNs;
    ++tally.traces;
    for (const DetectedEvent& event : original.told.events) {
        const double metres = original.record.metresAt(event.index);
        if (event.echo || metres < changed.metresAt(0.0)) {
            continue;
        }
        const bool isKept = isToldAt(changed, now, metres, tolerance_m);
        ++tally.told;
        tally.kept += isKept ? 1 : 0;
        if (!isKept && isNamed) {
            name("lost", original, event, metres);
        }
    }
    for (const DetectedEvent& event : now.events) {
        const double metres = changed.metresAt(event.index);
        const bool isListed = !event.echo && !(std::abs(event.loss_dB) < kNew_dB);
        if (isListed && !isToldAt(original.record, original.told, metres, tolerance_m)) {
            ++tally.more;
            if (isNamed) {
                name("new", original, event, metres);
            }
        }
    }
}

Original originalOf(const std::string& path, const otdr::sor::File& file)
{
    Original original;
    original.name = path.substr(path.find_last_of('/') + 1);
    Record& record = original.record;
    record.dbPerCount = measuredfile::dbPerCount(file);
    record.axis = measuredfile::axis(file);
    record.measurement = measuredfile::measurement(file);
    record.settings = otdr::sor::storedThresholds(file);
    for (const std::uint16_t raw : file.data.samples) {
        record.levels_dB.push_back((otdr::kNoSignal - raw) * record.dbPerCount);
    }
    original.told = record.detect();
    return original;
}

} // namespace

int main(int argc, char** argv)
{
    bool isNamed = false;
    std::vector<Original> originals;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-v") == 0) {
            isNamed = true;
            continue;
        }
        const auto file = otdr::readSorFile(argv[i]);
        if (file) {
            originals.push_back(originalOf(argv[i], *file));
        } else {
            std::printf("%s: %s\n", argv[i], file.error().message.c_str());
        }
    }
    std::printf("%-22s %-9s  %s\n", "changed", "kept", "new a trace");
    for (const Row& row : rows()) {
        Tally tally;
        for (const Change& change : row.changes) {
            for (const Original& original : originals) {
                compare(original, change(original), isNamed, tally);
            }
        }
        std::printf("%-22s %4d/%-4d  %.2f\n", row.name, tally.kept, tally.told,
                    static_cast<double>(tally.more) / std::max(1, tally.traces));
    }
    return 0;
}
