#include "platform/otdr/losscalc.h"

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/loss.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/tracefigures.h"
#include "platform/otdr/tracestate.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/// A position is a whole sample.
constexpr double kWholeSample = 1.0;

double levelAt(const otdr::Line& line, double index)
{
    return line.samples > 0 ? line.at(index) : Event::kUnknown;
}

/// The event that was found at an index; null where there is none.
const otdr::DetectedEvent* foundAt(const otdr::Detection& found, double index, double reach)
{
    const auto away = [index](const otdr::DetectedEvent& event) {
        return std::abs(event.index - index);
    };
    const auto nearest = std::min_element(
        found.events.begin(), found.events.end(),
        [&](const auto& one, const auto& other) { return away(one) < away(other); });
    return nearest != found.events.end() && away(*nearest) <= reach ? &*nearest : nullptr;
}

/// Neighbours of a place that nothing was found at: the events of the list or, without one, those
/// that were found.
std::vector<double> neighbours(const TraceState& state, const otdr::Detection& found)
{
    std::vector<double> places = placesOf(state);
    if (places.empty()) {
        for (const otdr::DetectedEvent& event : found.events) {
            places.push_back(event.index);
        }
    }
    return places;
}

} // namespace

LossCalc::LossCalc(long position, const Reflectogram& refl)
    : loss_dB(Event::kUnknown)
    , in_dB(Event::kUnknown)
    , out_dB(Event::kUnknown)
{
    const auto state = refl.state();
    const auto found = refl.detection();
    if (!state || !state->trace || !found) {
        return;
    }
    const double index = state->indexAt(0.0) + static_cast<double>(position);
    const double reach = std::max(kWholeSample, kSameEventPulses * state->pulseSamples());
    if (const otdr::DetectedEvent* event = foundAt(*found, index, reach)) {
        in_dB = levelAt(event->before, index);
        loss_dB = event->loss_dB;
        // Loss is told where both sides are seen, behind the foot: of fibres that fall in different
        // ways the line behind would tell another one here.
        out_dB = Event::isKnown(loss_dB) ? in_dB - loss_dB : levelAt(event->behind, index);
        return;
    }
    const otdr::EventLoss measured =
        otdr::eventLoss(*state->trace, siteAmong(*state, index, neighbours(*state, *found)));
    loss_dB = measured.loss_dB;
    in_dB = measured.in_dB;
    out_dB = measured.out_dB;
}
