#include "bench/knownsections.h"

#include "bench/knownlink.h"
#include "platform/otdr/core/eventdetection.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace accuracy {

namespace {

using gather::TruthEvent;

/// Where the true event is, or the port, that one was found of.
std::optional<double> truePlace(const KnownLink& known, double found)
{
    const auto isThere = [&](double index) {
        return std::abs(index - found) < 0.5 * known.pulse();
    };
    std::optional<double> place =
        isThere(known.portIndex()) ? std::optional<double>(known.portIndex()) : std::nullopt;
    for (const TruthEvent& event : known.truth()) {
        const double index = known.indexOf(event);
        place = !event.ghost && isThere(index) ? index : place;
    }
    return place;
}

bool isEmptyBetween(const KnownLink& known, double from, double to)
{
    const auto& events = known.truth();
    return std::none_of(events.begin(), events.end(), [&](const TruthEvent& event) {
        const double index = known.indexOf(event);
        return !event.ghost && index > from && index < to;
    });
}

} // namespace

SectionErrors sectionErrors(const KnownLink& known, const otdr::Detection& found,
                            double backscatter_dB)
{
    SectionErrors errors;
    for (const otdr::DetectedSection& section : found.sections) {
        const auto from = truePlace(known, section.from);
        const auto to = truePlace(known, section.to);
        if (!from || !to || !(*from < *to) || !isEmptyBetween(known, *from, *to)
            || std::isnan(section.returnLoss_dB)) {
            continue;
        }
        errors.returnLoss_dB.push_back(section.returnLoss_dB
                                       - known.returnLossBetween(*from, *to, backscatter_dB));
        const double attenuation =
            (section.attenuation_dBPerKm - known.attenuationBetween(*from, *to))
            / known.attenuationBound(*from, *to);
        if (!std::isnan(attenuation)) {
            errors.attenuation.push_back(attenuation);
        }
    }
    return errors;
}

} // namespace accuracy
