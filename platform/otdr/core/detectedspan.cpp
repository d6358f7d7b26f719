#include "platform/otdr/core/detectedspan.h"

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/fibretrace.h"
#include "platform/otdr/core/returnloss.h"

#include <gsl/span>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <vector>

namespace otdr {

namespace {

/// Return loss counts what the receiver still shows of the end this many pulses behind its foot.
constexpr double kEndTailPulses = 2.5;

class Span
{
public:
    Span(const FibreTrace& fibre, const Measurement& measurement, Detection& found)
        : fibre(fibre)
        , measurement(measurement)
        , found(found)
    {
    }

    /// An echo loses nothing: the loss of a group that one stands first in is that of the first
    /// that is none.
    void passLossesOn()
    {
        auto& events = found.events;
        for (std::size_t i = 0; i + 1 < events.size(); ++i) {
            DetectedEvent& echo = events[i];
            DetectedEvent& next = events[i + 1];
            if (!echo.echo || echo.group != next.group || std::isnan(echo.loss_dB)) {
                continue;
            }
            const double seen = seenAt(next.index);
            next.loss_dB = echo.before.at(seen) - echo.behind.at(seen);
            next.lossError_dB = echo.lossError_dB;
            next.stepStatistic = echo.stepStatistic;
            echo.loss_dB = DetectedEvent::kUnknown;
            echo.lossError_dB = DetectedEvent::kUnknown;
            echo.stepStatistic = 0.0;
        }
    }

    void addSections()
    {
        const auto& events = found.events;
        std::size_t from = 0;
        for (std::size_t to = 1; to < events.size(); ++to) {
            if (events[to].echo
                || (events[to].group != 0 && events[to].group == events[from].group)) {
                continue;
            }
            DetectedSection section;
            section.from = events[from].index;
            section.to = events[to].index;
            measureSection(from, to, section);
            found.sections.push_back(section);
            from = to;
        }
    }

    void addSpan()
    {
        const auto& events = found.events;
        found.noiseFloor_dB = fibre.noise().rms_dB();
        const auto start = std::find_if(events.begin(), events.end(), [](const auto& event) {
            return event.kind == DetectedEvent::Kind::Start;
        });
        if (start == events.end() || start->behind.samples == 0) {
            return;
        }
        // What a launch fibre is for: it shows what is lost at the start, which is of the span.
        const bool showsLoss = !std::isnan(start->loss_dB);
        const double level_dB =
            (showsLoss ? start->before : start->behind).at(seenAt(start->index));
        const double launch = start->before.samples > 0 ? fibre.shape().centre() : 0.0;
        const DetectedEvent& last = events.back();
        const DetectedEvent& limit = limitOfSpan();
        if (limit.before.samples > 0) {
            found.spanLoss_dB = level_dB - limit.before.at(seenAt(limit.index));
        }
        std::vector<SaturatedPeak> saturated;
        const double tail = kEndTailPulses * fibre.scale().pulse;
        for (const DetectedEvent& event : events) {
            if (event.saturated() && event.before.samples > 0 && event.index >= start->index) {
                saturated.push_back({event.index, std::max(event.index + tail, event.behindFrom),
                                     event.before, event.reflectance_dB});
            }
        }
        const ReturnLossSection span {start->index, last.index + tail, level_dB,
                                      measurement.backscatter_dB, launch};
        found.returnLoss_dB = returnLoss_dB(fibre.samples(), span, saturated);
    }

private:
    /// The fibre between two events, which echoes only lie between.
    void measureSection(std::size_t fromEvent, std::size_t toEvent, DetectedSection& section) const
    {
        const DetectedEvent& from = found.events[fromEvent];
        const Line& near = from.behind;
        const Line& far = found.events[toEvent].before;
        if (near.samples == 0 || far.samples == 0) {
            section.attenuation_dBPerKm = slopeOf(near.samples > 0 ? near : far);
            return;
        }
        const double start = seenAt(section.from);
        const double end = seenAt(section.to);
        section.loss_dB = near.at(start) - far.at(end);
        section.attenuation_dBPerKm = perKilometre(section.loss_dB / (end - start));
        const gsl::span<const DetectedEvent> echoes(&from + 1, toEvent - fromEvent - 1);
        section.returnLoss_dB =
            fibreReturnLoss_dB(fibre.samples(), {start, end, near, far, measurement.backscatter_dB},
                               withoutLight(echoes));
    }

    /// Attenuation by a line alone.
    [[nodiscard]] double slopeOf(const Line& line) const
    {
        return line.samples > 2 ? perKilometre(-line.slope_dB)
                                : DetectedSection().attenuation_dBPerKm;
    }

    /// Of a loss from sample to sample; unknown without a scale of distances.
    [[nodiscard]] double perKilometre(double perSample_dB) const
    {
        return measurement.metresPerNs > 0.0 ? perSample_dB * fibre.scale().kilometre
                                             : DetectedSection().attenuation_dBPerKm;
    }

    /// Echoes as peaks of which nothing counts.
    [[nodiscard]] static std::vector<SaturatedPeak>
    withoutLight(gsl::span<const DetectedEvent> echoes)
    {
        std::vector<SaturatedPeak> peaks;
        for (const DetectedEvent& echo : echoes) {
            if (echo.before.samples > 0) {
                peaks.push_back({echo.index, echo.behindFrom, echo.before,
                                 -std::numeric_limits<double>::infinity()});
            }
        }
        return peaks;
    }

    using Place = std::vector<DetectedEvent>::const_iterator;

    /// The first event of the group of one that is no echo, but for echoes.
    [[nodiscard]] Place firstOfGroup(Place event) const
    {
        return std::find_if(found.events.begin(), found.events.end(), [&](const auto& other) {
            return !other.echo && other.group == event->group;
        });
    }

    /// The event up to which the span is measured: the last one that fibre shows in front of, the
    /// end but for what may hide it.
    [[nodiscard]] const DetectedEvent& limitOfSpan() const
    {
        const auto end = firstOfGroup(std::prev(found.events.end()));
        for (Place event = end; event != found.events.begin();) {
            const Place to = event;
            do {
                --event;
            } while (event->echo && event != found.events.begin());
            if (to->before.samples > 0 && event->behind.samples > 0) {
                return *to;
            }
            event = firstOfGroup(event);
        }
        return *end;
    }

    /// Where both sides of a place are seen, see EventSites.
    [[nodiscard]] double seenAt(double index) const { return index + fibre.shape().centre(); }

    const FibreTrace& fibre;
    const Measurement& measurement;
    Detection& found;
};

} // namespace

void measureSpan(const FibreTrace& fibre, const Measurement& measurement, Detection& found)
{
    Span span(fibre, measurement, found);
    span.passLossesOn();
    span.addSections();
    span.addSpan();
}

} // namespace otdr
