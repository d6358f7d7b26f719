#include "platform/otdr/core/eventdetection.h"

#include "platform/otdr/core/darkness.h"
#include "platform/otdr/core/detectedspan.h"
#include "platform/otdr/core/echoes.h"
#include "platform/otdr/core/eventfit.h"
#include "platform/otdr/core/eventsearch.h"
#include "platform/otdr/core/heldtop.h"
#include "platform/otdr/core/peakheights.h"
#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/risinglight.h"
#include "platform/otdr/core/straying.h"
#include "platform/otdr/core/timeconstant.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace otdr {

namespace {

/// A launch that stands less than this above the fibre is not listed as a reflection.
constexpr double kLaunchPeak_dB = 0.3;

/// Where hardly any fibre can be seen before the end, its level is taken from so many pulses, and
/// no fewer samples.
constexpr double kLevelPulses = 0.4;
constexpr double kFewestLevel = 3.0;

/// The fall at the end has begun no earlier than this, nor than a pulse, before it was seen.
constexpr double kFallSamples = 2.0;

/// The group of the start and of what stands in its dead zone.
constexpr int kLaunch = -1;

/// What rises nearer to an event than this is the event's own reflection.
constexpr double kOwnRisePulses = 0.5;

/// Light that has fallen by this much is gone: what rises then is no reflection of the fibre.
constexpr double kGone_dB = 3.0;

/// The light of a reflection at the end up to this height is told by its whole shape.
constexpr double kLowLast_dB = 3.0;

/// A trace of fewer pulses or samples tells nothing.
constexpr double kFewestPulses = 8.0;
constexpr std::size_t kFewestSamples = 16;

/// The fibre between places.
std::vector<std::pair<double, double>> stretchesOf(const EventSites& sites)
{
    std::vector<std::pair<double, double>> stretches;
    for (std::size_t k = 0; k <= sites.sites().size(); ++k) {
        stretches.emplace_back(sites.lineFrom(k), sites.fibreTo(k));
    }
    return stretches;
}

/// Tells what a search has found, in the words of a Detection.
class Listing
{
public:
    Listing(const Trace& trace, const Measurement& measurement, const DetectionSettings& settings,
            const EventSearch& search)
        : trace(trace)
        , measurement(measurement)
        , settings(settings)
        , fibre(search.trace())
        , extent(search.extent())
        , sites(search.places())
        , straying(fibre, stretchesOf(sites))
    {
    }

    [[nodiscard]] Detection make()
    {
        list();
        markEchoes(result.events, fibre.scale().pulse, launchIndex());
        measureSpan(fibre, measurement, result);
        return std::move(result);
    }

private:
    [[nodiscard]] double reflectanceOf(double height_dB) const
    {
        return reflectance_dB(height_dB, measurement.backscatter_dB, measurement.pulse_ns);
    }

    [[nodiscard]] double startIndex() const
    {
        const double zero = -trace.axis().firstSample_ns / trace.axis().sampleInterval_ns;
        return std::clamp(zero, 0.0, static_cast<double>(trace.size() - 1));
    }

    [[nodiscard]] double launchIndex() const { return std::min(extent.launch, startIndex()); }

    void list()
    {
        listStart();
        int group = 0;
        for (const Site& site : sites.sites()) {
            if (!site.isBorder) {
                listSite(site, ++group);
            }
        }
        listEnd(++group);
        std::stable_sort(
            result.events.begin(), result.events.end(),
            [](const DetectedEvent& a, const DetectedEvent& b) { return a.index < b.index; });
        nameStart();
    }

    void listStart()
    {
        DetectedEvent start;
        start.kind = DetectedEvent::Kind::Start;
        start.evidence = DetectedEvent::Evidence::Place;
        start.index = startIndex();
        start.behindFrom = std::max(extent.first, start.index);
        const auto line = sites.fibre(0);
        if (line && std::abs(start.index - extent.launch) < fibre.gap()) {
            start.behind = line->line;
            launchPeak(start);
        }
        start.group = kLaunch;
        result.events.push_back(start);
        if (start.behind.samples > 0) {
            listInLaunch(start);
        }
    }

    /// Reflections within the dead zone of the port: a patch cord in front of the link.
    void listInLaunch(const DetectedEvent& start)
    {
        const double limit = sites.fibreTo(0) - kOwnRisePulses * fibre.scale().pulse;
        for (const double foot : risesBetween(fibre, extent.launch, extent.first)) {
            if (foot > limit) {
                break; // that of the first event behind the launch
            }
            const double level = start.behind.at(foot);
            const auto peak =
                peakAbove(trace, foot, foot + fibre.scale().pulse, level + kLaunchPeak_dB);
            if (peak) {
                DetectedEvent event = reflectionIn(start, DetectedEvent::Evidence::Foot, foot,
                                                   peak->level_dB - level);
                event.hidden_dB = hiddenAbove_dB(fibre, peak->index, std::nullopt);
                listInDeadZone(event);
            }
        }
    }

    /// A reflection in the dead zone of the start or the end: what is known of the fibre is the
    /// same for both.
    [[nodiscard]] DetectedEvent reflectionIn(const DetectedEvent& zone,
                                             DetectedEvent::Evidence evidence, double foot,
                                             double height_dB) const
    {
        DetectedEvent event = zone;
        event.index = foot;
        reflect(event, evidence, height_dB);
        return event;
    }

    /// What the user does not want listed is not, wherever it stands.
    void listInDeadZone(const DetectedEvent& event)
    {
        if (!(event.reflectance_dB < settings.reflectance_dB)) {
            result.events.push_back(event);
        }
    }

    void reflect(DetectedEvent& event, DetectedEvent::Evidence evidence, double height_dB) const
    {
        event.kind = DetectedEvent::Kind::Reflective;
        event.evidence = evidence;
        addLight(event, height_dB);
    }

    void addLight(DetectedEvent& event, double height_dB) const
    {
        event.height_dB = height_dB;
        event.reflectance_dB = reflectanceOf(height_dB);
    }

    /// The reflection of the port, where it stands above the fibre behind it.
    void launchPeak(DetectedEvent& start) const
    {
        const auto peak = peakAbove(trace, start.index, start.index + fibre.gap(),
                                    start.behind.at(start.index) + kLaunchPeak_dB);
        if (peak) {
            const double port_dB = start.behind.at(start.index + fibre.shape().centre());
            addLight(start, peak->level_dB - port_dB);
            const PeakGroup light {{start.index}, {start.height_dB}};
            start.hidden_dB =
                hiddenAbove_dB(fibre, peak->index, timeConstantOf(fibre, light, start.behind));
        }
    }

    /// What noise and the straying of the fibre make the lines on both sides differ by.
    [[nodiscard]] double lossErrorOf(const Site& site) const
    {
        return site.left && site.right
            ? std::hypot(site.error_dB, strayingOf(*site.left), strayingOf(*site.right))
            : site.error_dB;
    }

    [[nodiscard]] double strayingOf(const SideLine& side) const
    {
        return straying.ofLine_dB(static_cast<double>(side.line.samples));
    }

    void listSite(const Site& site, int group)
    {
        const bool reflects = site.reflects();
        const PeakGroup peak = reflects ? peakOf(site) : PeakGroup();
        const std::size_t feet = std::max<std::size_t>(1, peak.feet.size());
        for (std::size_t i = 0; i < feet; ++i) {
            DetectedEvent event;
            event.group = group;
            event.index = i == 0 ? site.foot() : peak.feet[i];
            event.behindFrom = std::max(site.behind, site.clear);
            event.peakStatistic = reflects ? site.peakStatistic : 0.0;
            if (site.left) {
                event.before = site.left->line;
            }
            if (site.right) {
                event.behind = site.right->line;
            }
            if (i == 0) {
                event.loss_dB = site.loss_dB;
                event.lossError_dB = lossErrorOf(site);
                event.stepStatistic = site.statistic();
            }
            if (reflects) {
                reflect(event, evidenceOf(i),
                        heightOfLight_dB(peak, i, fibre.shape(), lostAt(site, i)));
                event.hidden_dB = peak.hiddenAt_dB(i);
            } else if (site.loss_dB < 0.0) {
                event.kind = DetectedEvent::Kind::Gain;
            }
            result.events.push_back(event);
        }
    }

    /// The reflections of a place over all the fibre that is seen before it: when they were found,
    /// little of it was looked at.
    [[nodiscard]] PeakGroup peakOf(const Site& site) const
    {
        PeakGroup peak = *site.peak;
        if (site.left && !peak.seen.empty()) {
            measureHeights(fibre, site.left->line, peak);
        }
        return peak;
    }

    /// Of several reflections in a dead zone it is not known which loses how much: each its share.
    [[nodiscard]] static LostAtReflection lostAt(const Site& site, std::size_t i)
    {
        if (std::isnan(site.loss_dB)) {
            return {};
        }
        const double share_dB = site.loss_dB / static_cast<double>(site.peak->feet.size());
        return {static_cast<double>(i) * share_dB, share_dB};
    }

    void listEnd(int group)
    {
        DetectedEvent end;
        end.kind = DetectedEvent::Kind::End;
        end.group = group;
        end.index = extent.end;
        end.behindFrom = extent.lastLit;
        end.before = lineBeforeEnd();
        if (extent.kind == FibreExtent::End::OutOfRange) {
            end.evidence = DetectedEvent::Evidence::Range;
            result.events.push_back(end);
            return;
        }
        end.evidence = DetectedEvent::Evidence::Fall;
        const double w = fibre.scale().pulse;
        const double sigma = fibre.noise().sigma_dB(extent.end - w);
        const double least = end.before.at(extent.end) + std::max(0.1, 6.0 * sigma);
        const bool hasLine = end.before.samples > 0;
        if (hasLine && peakAbove(trace, extent.end, extent.end + 2.0 * w, least)) {
            listLastPeaks(end);
        } else {
            const double from = extent.end - std::min(kFallSamples, w);
            end.index = hasLine ? footOfFall(fibre, from, end.before) : extent.end;
            result.events.push_back(end);
        }
        result.end = result.events.back().index;
    }

    /// The fibre before the end; where little of it can be seen, its level.
    [[nodiscard]] Line lineBeforeEnd() const
    {
        if (const auto line = sites.fibre(sites.sites().size())) {
            return line->line;
        }
        const double seen = std::max(kFewestLevel, kLevelPulses * fibre.scale().pulse);
        const double from = std::max(extent.first, extent.end - seen);
        Line level;
        if (extent.end - from >= kFewestLevel) {
            level.level_dB = fibre.mean_dB(from, extent.end);
            level.centre = 0.5 * (from + extent.end);
            level.samples = static_cast<std::size_t>(extent.end - from);
        }
        return level;
    }

    /// The reflection of the end. Where others stand in its dead zone, they come first: that of the
    /// end is the last one that rises before the light is gone.
    void listLastPeaks(const DetectedEvent& end)
    {
        const double w = fibre.scale().pulse;
        const double to = std::max(extent.end + 4.0 * w, extent.lastFoot + w);
        const PeakGroup peak = peakBeforeEnd(end, extent.end, to);
        const double apart = peak.feet.front() - kOwnRisePulses * w;
        const double from = std::max(end.before.centre, apart - 2.0 * fibre.gap());
        if (const auto first = firstPeak(fibre, from, apart, end.before)) {
            const PeakGroup before = peakBeforeEnd(end, *first, apart);
            for (std::size_t i = 0; i < before.feet.size(); ++i) {
                listInDeadZone(lastPeak(end, before, i));
            }
        }
        std::size_t last = 0;
        while (last + 1 < peak.feet.size() && isLit(peak.feet[last + 1], end.before)) {
            listInDeadZone(lastPeak(end, peak, last));
            ++last;
        }
        DetectedEvent event = lastPeak(end, peak, last);
        event.kind = end.kind;
        event.evidence = end.evidence;
        addLight(event, heightOfLastLight_dB(end, peak, last));
        result.events.push_back(event);
    }

    /// Reflections in the dead zone of the end, all over the fibre before it: one may stand on the
    /// light of another.
    [[nodiscard]] PeakGroup peakBeforeEnd(const DetectedEvent& end, double at, double to) const
    {
        PeakGroup peak = measurePeak(fibre, at, end.before.centre, to);
        measureHeights(fibre, end.before, peak);
        return peak;
    }

    /// The light of the reflection at the end. That of a low one is told by its whole shape: it is
    /// highest where most of the fibre is still seen, and lasts when none of it is.
    [[nodiscard]] double heightOfLastLight_dB(const DetectedEvent& end, const PeakGroup& peak,
                                              std::size_t last) const
    {
        constexpr double kAll_dB = 100.0;
        const double height_dB = heightOfLight_dB(peak, last, fibre.shape(), {0.0, kAll_dB});
        if (height_dB > kLowLast_dB) {
            return height_dB;
        }
        Line nothing;
        nothing.level_dB = end.before.at(peak.feet[last]) - kAll_dB;
        nothing.centre = peak.feet[last];
        nothing.samples = fibre.samples().size();
        return fitPeak(fibre, peak.feet[last], end.before, nothing).height_dB;
    }

    /// One of the reflections in the dead zone of the end.
    [[nodiscard]] DetectedEvent lastPeak(const DetectedEvent& end, const PeakGroup& peak,
                                         std::size_t i) const
    {
        DetectedEvent event = reflectionIn(end, evidenceOf(i), peak.feet[i],
                                           heightOfLight_dB(peak, i, fibre.shape(), {}));
        event.hidden_dB = peak.hiddenAt_dB(i);
        return event;
    }

    /// Of the reflections of a group.
    [[nodiscard]] static DetectedEvent::Evidence evidenceOf(std::size_t i)
    {
        return i == 0 ? DetectedEvent::Evidence::Peak : DetectedEvent::Evidence::Foot;
    }

    /// Whether light of the fibre is still there at an index behind this line.
    [[nodiscard]] bool isLit(double index, const Line& before) const
    {
        return fibre.mean_dB(index - 1.0, index + 1.0) > before.at(index) - kGone_dB;
    }

    /// What stands at 0 m is the start of the span.
    void nameStart()
    {
        auto& events = result.events;
        const auto start = std::find_if(events.begin(), events.end(), [](const auto& event) {
            return event.kind == DetectedEvent::Kind::Start;
        });
        const double reach = fibre.gap();
        const auto same = std::find_if(events.begin(), events.end(), [&](const auto& event) {
            return event.group != kLaunch && event.kind != DetectedEvent::Kind::End
                && std::abs(event.index - start->index) < reach;
        });
        if (same == events.end()) {
            if (start->behind.samples == 0) {
                layOnFibre(*start);
            }
            return;
        }
        same->kind = DetectedEvent::Kind::Start;
        events.erase(start);
    }

    /// A start at which nothing is seen, as where the launch fibre is joined without a loss: the
    /// fibre that goes on over it tells its level.
    void layOnFibre(DetectedEvent& start) const
    {
        const auto& places = sites.sites();
        const auto next = std::find_if(places.begin(), places.end(),
                                       [&](const Site& site) { return site.foot() > start.index; });
        const auto k = static_cast<std::size_t>(std::distance(places.begin(), next));
        const double window = fibre.scale().longestWindow;
        const double from = std::max(sites.lineFrom(k), start.index - window);
        const double to = std::min(sites.fibreTo(k), start.index + window);
        const auto line =
            from < start.index && start.index < to ? fibre.fit(from, to) : std::nullopt;
        if (line) {
            start.before = line->line;
            start.behind = line->line;
        }
    }

    const Trace& trace;
    const Measurement& measurement;
    const DetectionSettings& settings;
    const FibreTrace& fibre;
    const FibreExtent& extent;
    const EventSites& sites;
    Straying straying;
    Detection result;
};

bool canBeSearched(const Trace& trace, const Measurement& measurement)
{
    const TraceAxis& axis = trace.axis();
    const double pulse = measurement.pulse_ns / axis.sampleInterval_ns;
    return trace.size() >= kFewestSamples && measurement.pulse_ns > 0.0
        && axis.sampleInterval_ns > 0.0 && std::isfinite(pulse) && trace.dbPerCount() > 0.0
        && std::isfinite(axis.firstSample_ns)
        && kFewestPulses * pulse <= static_cast<double>(trace.size());
}

} // namespace

Detection detectEvents(const Trace& trace, const Measurement& measurement,
                       const DetectionSettings& settings)
{
    const std::size_t measured = measuredSamples(trace);
    std::optional<Trace> part; // what was computed from the whole trace is used where it can be
    if (measured < trace.size()) {
        part.emplace(trace.samples().first(measured), trace.dbPerCount(), trace.axis());
    }
    const Trace& searched = part ? *part : trace;
    if (!canBeSearched(searched, measurement)) {
        return {};
    }
    const EventSearch search(searched, measurement, settings);
    return Listing(searched, measurement, settings, search).make();
}

} // namespace otdr
