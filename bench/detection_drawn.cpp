// What the detection finds of events that are drawn into real traces: fibre, noise and receiver are
// real, and of the events the truth is known.
//
//   detection_drawn FILE.sor ...
//
// Each event is drawn alone, or with one other beside it, at three places of every piece of fibre
// that is long enough, with the shape of the pulse that the search has learnt from the trace. What
// a loss takes from the light it does not take from the noise. Losses are twice the least that the
// file's thresholds list, and 0.05 dB at least; reflections that they do not list count by their
// loss. An event counts as found where one is told within a pulse; what else is told, more than two
// pulses from what is told without the drawn event, is extra.

#include "bench/measuredfile.h"
#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/eventsearch.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/storedthresholds.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using otdr::DetectedEvent;
using otdr::Detection;

constexpr double kLeast_dB = 0.05;
constexpr double kExtra_dB = 0.03;

/// A piece of fibre has so many dead zones, and so many in front of an event and behind it.
constexpr double kPieceGaps = 24.0;
constexpr double kBesideGaps = 10.0;
constexpr double kParts[] = {0.37, 0.5, 0.71};

/// What is drawn: a loss, by the least that counts or in dB, and a reflection on it. Another event
/// that loses the least, with a reflection or without, may stand so many pulses behind it, or in
/// front where that is less than 0.
struct Kind
{
    const char* name;
    double least = 0.0;
    double loss_dB = 0.0;
    double height_dB = 0.0;
    double otherPulses = 0.0;
    double otherHeight_dB = 0.0;
};

struct DrawnEvent
{
    double at;
    double loss_dB;
    double height_dB;
};

constexpr std::array<Kind, 12> kKinds = {{{"least loss", 1.0},
                                          {"loss 0.3 dB", 0.0, 0.3},
                                          {"gain", -2.0},
                                          {"light 0.3 dB", 1.0, 0.0, 0.3},
                                          {"light 1 dB", 2.0, 0.0, 1.0},
                                          {"light 5 dB", 0.0, 0.3, 5.0},
                                          {"light 12 dB", 0.0, 0.3, 12.0},
                                          {"behind a loss", 1.0, 0.0, 0.0, -3.5, 0.0},
                                          {"before 3 dB", 1.0, 0.0, 0.0, 3.5, 3.0},
                                          {"behind 3 dB", 1.0, 0.0, 0.0, -3.5, 3.0},
                                          {"5 behind 3 dB", 1.0, 0.0, 0.0, -5.0, 3.0},
                                          {"5 behind 10 dB", 1.0, 0.0, 0.0, -5.0, 10.0}}};

struct Tally
{
    int drawn = 0;
    int found = 0;
    int extra = 0;
    int withinError = 0;
    int withinErrors = 0; ///< within two
    std::vector<double> placeOff; ///< pulses
    std::vector<double> lossOff_dB;
};

double quantile(std::vector<double> values, double part)
{
    if (values.empty()) {
        return std::nan("");
    }
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

class RealTrace
{
public:
    explicit RealTrace(const otdr::sor::File& file)
        : counts(file.data.samples.begin(), file.data.samples.end())
        , dbPerCount(measuredfile::dbPerCount(file))
        , axis(measuredfile::axis(file))
        , settings(otdr::sor::storedThresholds(file))
        , measurement(measuredfile::measurement(file))
        , plain(otdr::RawSamples(counts), dbPerCount, axis)
        , search(plain, measurement, settings)
        , before(otdr::detectEvents(plain, measurement, settings))
    {
    }

    void draw(const Kind& kind, Tally& tally) const
    {
        const double least_dB = std::max(kLeast_dB, 2.0 * settings.loss_dB);
        const double loss_dB = kind.loss_dB + kind.least * least_dB;
        for (const double at : places()) {
            std::vector<DrawnEvent> events {{at, loss_dB, kind.height_dB}};
            if (kind.otherPulses != 0.0) {
                const double other = at + kind.otherPulses * search.trace().scale().pulse;
                events.push_back({other, least_dB, kind.otherHeight_dB});
            }
            count(detectionWith(events), events, tally);
        }
    }

private:
    [[nodiscard]] std::vector<double> places() const
    {
        std::vector<double> marks = {search.extent().first};
        for (const DetectedEvent& event : before.events) {
            if (event.index > marks.front() && !event.echo) {
                marks.push_back(event.index);
            }
        }
        std::sort(marks.begin(), marks.end());
        const double gap = search.trace().gap();
        std::vector<double> found;
        for (std::size_t k = 1; k < marks.size(); ++k) {
            const double length = marks[k] - marks[k - 1];
            for (const double part : kParts) {
                const double beside = std::min(part, 1.0 - part) * length;
                if (length > kPieceGaps * gap && beside > kBesideGaps * gap) {
                    found.push_back(marks[k - 1] + part * length);
                }
            }
        }
        return found;
    }

    [[nodiscard]] Detection detectionWith(const std::vector<DrawnEvent>& events) const
    {
        const otdr::PulseShape& shape = search.trace().shape();
        const double first = std::min(events.front().at, events.back().at);
        const double fibre = otdr::powerRatio(plain.meanLevel_dB(
            static_cast<std::size_t>(first - shape.pulse()), static_cast<std::size_t>(first)));
        const double noise =
            std::isnan(before.noiseFloor_dB) ? 0.0 : otdr::powerRatio(before.noiseFloor_dB);
        std::mt19937_64 random(static_cast<std::uint64_t>(first));
        std::normal_distribution<double> normal;
        std::vector<std::uint16_t> drawn = counts;
        for (auto i = static_cast<std::size_t>(first); i < drawn.size(); ++i) {
            double kept = 1.0;
            double light = 0.0;
            for (const DrawnEvent& event : events) {
                const double behind = static_cast<double>(i) - event.at;
                kept *= 1.0 - shape.step(behind) * (1.0 - otdr::powerRatio(-event.loss_dB));
                light += (otdr::powerRatio(event.height_dB) - 1.0) * shape.peak(behind);
            }
            // The same noise as before on less light; a gain cannot take any from it.
            const double lost = std::sqrt(std::max(0.0, 1.0 - kept * kept));
            const double shown = kept * otdr::powerRatio(plain.level_dB(i)) + light * fibre
                + noise * lost * normal(random);
            const double raw =
                shown > 0.0 ? otdr::kNoSignal - otdr::levelOfRatio_dB(shown) / dbPerCount : 65535.0;
            drawn[i] = static_cast<std::uint16_t>(std::lround(std::clamp(raw, 0.0, 65535.0)));
        }
        return otdr::detectEvents(otdr::Trace(otdr::RawSamples(drawn), dbPerCount, axis),
                                  measurement, settings);
    }

    /// The first of the drawn events is looked for.
    void count(const Detection& detection, const std::vector<DrawnEvent>& events,
               Tally& tally) const
    {
        const double w = search.trace().scale().pulse;
        const auto awayFrom = [](const DetectedEvent& event, const DrawnEvent& one) {
            return std::abs(event.index - one.at);
        };
        const auto isDrawn = [&](const DetectedEvent& event) {
            return std::any_of(events.begin(), events.end(), [&](const DrawnEvent& one) {
                return awayFrom(event, one) <= std::max(w, 2.0);
            });
        };
        const DetectedEvent* nearest = nullptr;
        for (const DetectedEvent& event : detection.events) {
            const double away = awayFrom(event, events.front());
            if (away <= std::max(w, 2.0) && !event.echo) {
                const bool isNearer =
                    nearest == nullptr || away < awayFrom(*nearest, events.front());
                nearest = isNearer ? &event : nearest;
            }
            tally.extra += isListed(event) && !isDrawn(event) && !wasThere(event) ? 1 : 0;
        }
        ++tally.drawn;
        if (nearest != nullptr) {
            const double off_dB = std::abs(nearest->loss_dB - events.front().loss_dB);
            ++tally.found;
            tally.placeOff.push_back(awayFrom(*nearest, events.front()) / w);
            tally.lossOff_dB.push_back(off_dB);
            tally.withinError += off_dB < nearest->lossError_dB ? 1 : 0;
            tally.withinErrors += off_dB < 2.0 * nearest->lossError_dB ? 1 : 0;
        }
    }

    static bool isListed(const DetectedEvent& event)
    {
        return !event.echo && !(std::abs(event.loss_dB) < kExtra_dB);
    }

    [[nodiscard]] bool wasThere(const DetectedEvent& event) const
    {
        const double reach = std::max(2.0 * search.trace().scale().pulse, 4.0);
        return std::any_of(before.events.begin(), before.events.end(), [&](const auto& other) {
            return std::abs(other.index - event.index) <= reach;
        });
    }

    std::vector<std::uint16_t> counts;
    double dbPerCount;
    otdr::TraceAxis axis;
    otdr::DetectionSettings settings;
    otdr::Measurement measurement;
    otdr::Trace plain;
    otdr::EventSearch search;
    Detection before;
};

double percentOf(int part, int all)
{
    return 100.0 * part / std::max(1, all);
}

void print(const char* name, const Tally& tally)
{
    std::printf(
        "%-14s %4d/%-4d  extra %.2f  place %.2f %.2f pulses  loss %5.1f %5.1f mdB"
        "  %3.0f %% %3.0f %%\n",
        name, tally.found, tally.drawn, static_cast<double>(tally.extra) / std::max(1, tally.drawn),
        quantile(tally.placeOff, 0.5), quantile(tally.placeOff, 0.9),
        1000.0 * quantile(tally.lossOff_dB, 0.5), 1000.0 * quantile(tally.lossOff_dB, 0.9),
        percentOf(tally.withinError, tally.found), percentOf(tally.withinErrors, tally.found));
}

} // namespace

int main(int argc, char** argv)
{
    std::array<Tally, kKinds.size()> tallies;
    for (int i = 1; i < argc; ++i) {
        const auto file = otdr::readSorFile(argv[i]);
        if (!file) {
            std::printf("%s: %s\n", argv[i], file.error().message.c_str());
            continue;
        }
        const RealTrace trace(*file);
        for (std::size_t k = 0; k < kKinds.size(); ++k) {
            trace.draw(kKinds[k], tallies[k]);
        }
    }
    std::printf("drawn          found/all   extra a drawing, place and loss: median and 90 %%, "
                "within one, two errors\n");
    for (std::size_t k = 0; k < kKinds.size(); ++k) {
        print(kKinds[k].name, tallies[k]);
    }
    return 0;
}
