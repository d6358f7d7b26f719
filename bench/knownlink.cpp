#include "bench/knownlink.h"

#include "bench/accuracylinks.h"
#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/reflectance.h"

#include <algorithm>
#include <cmath>

namespace accuracy {

namespace {

using gather::TruthEvent;

constexpr double kLongestLine_m = 5000.0;
constexpr double kSamePlace = 1e-6; // samples

/// Light that comes late is gone when it lifts the fibre by no more than this.
constexpr double kHiddenTail_dB = 0.001;

/// Noise of less than this part of a count does not spread the samples over two counts.
constexpr double kNoiseThatSpreads = 0.3;

} // namespace

KnownLink::KnownLink(const gather::Fibre& fibre, int wavelength_nm, const Sight& sight)
    : fibre(fibre)
    , wavelength_nm(wavelength_nm)
    , sight(sight)
    , events(gather::truthOf(fibre, wavelength_nm))
{
    events.erase(std::remove_if(events.begin(), events.end(),
                                [this](const TruthEvent& event) { return isNothing(event); }),
                 events.end());
    double border_m = 0.0;
    for (const gather::Section& section : fibre.sections) {
        border_m += section.length_m;
        joints.push_back((border_m / otdr::metresPerNs(kIor) - sight.firstSample_ns)
                         / sight.interval_ns);
    }
    joints.pop_back(); // that is the end
}

bool KnownLink::isNothing(const TruthEvent& event) const
{
    if (event.ghost) { // its reflectance is told as if all light came back from it
        const double above_dB = event.reflectance_dB - kBackscatter_dB
            - 10.0 * std::log10(sight.pulse * sight.interval_ns);
        return sight.launch_dB + above_dB / 2.0 < sight.leastEcho_dB;
    }
    return !event.end && event.apparentLoss_dB == 0.0 && std::isnan(event.reflectance_dB);
}

double KnownLink::indexOf(const TruthEvent& event) const
{
    return (event.time_ns - sight.firstSample_ns) / sight.interval_ns;
}

double KnownLink::metresOf(double index) const
{
    return (index * sight.interval_ns + sight.firstSample_ns) * otdr::metresPerNs(kIor);
}

double KnownLink::endOf() const
{
    const auto end = std::find_if(events.begin(), events.end(),
                                  [](const TruthEvent& event) { return event.end; });
    return indexOf(*end);
}

double KnownLink::levelBefore(double index) const
{
    double level = sight.launch_dB;
    double at_m = 0.0;
    for (const gather::Section& section : fibre.sections) {
        const double to_m = std::min(at_m + section.length_m, metresOf(index));
        level -= section.attenuation_dBPerKm.at(wavelength_nm) * (to_m - at_m) / 1000.0;
        at_m = to_m;
    }
    for (const TruthEvent& event : events) {
        level -= !event.ghost && !event.end && indexOf(event) < index ? event.apparentLoss_dB : 0.0;
    }
    return level;
}

double KnownLink::shown_dB(double level_dB) const
{
    if (sight.offset == 0.0) {
        return level_dB;
    }
    const double light = std::pow(10.0, (level_dB - sight.noise_dB) / 5.0) + sight.offset;
    return sight.noise_dB + 5.0 * std::log10(std::max(light, 1e-3));
}

double KnownLink::shownLoss_dB(std::size_t k) const
{
    const double level = levelBefore(indexOf(events[k]));
    return sight.offset == 0.0 ? events[k].apparentLoss_dB
                               : shown_dB(level) - shown_dB(level - events[k].apparentLoss_dB);
}

double KnownLink::heightOf(const TruthEvent& event) const
{
    return std::isnan(event.reflectance_dB)
        ? 0.0
        : otdr::peakHeight_dB(event.reflectance_dB, kBackscatter_dB,
                              sight.pulse * sight.interval_ns);
}

const gather::Section& KnownLink::sectionAt(double index) const
{
    double border_m = 0.0;
    return *std::find_if(fibre.sections.begin(), fibre.sections.end() - 1,
                         [&](const gather::Section& section) {
                             border_m += section.length_m;
                             return metresOf(index) <= border_m;
                         });
}

double KnownLink::shownReflectance_dB(const TruthEvent& event) const
{
    const gather::Section& before = sectionAt(indexOf(event) - kSamePlace);
    return event.reflectance_dB - before.backscatter_dB.at(wavelength_nm) + kBackscatter_dB;
}

bool KnownLink::overloads(const TruthEvent& event) const
{
    return !event.ghost
        && heightOf(event) + levelBefore(indexOf(event)) > sight.launch_dB + sight.overload_dB;
}

double KnownLink::sigmaAt(double level_dB) const
{
    return std::hypot(otdr::kDbPerNeper
                          * std::pow(10.0, (sight.noise_dB - shown_dB(level_dB)) / 5.0),
                      sight.rounding_dB);
}

/// Samples behind an event until the receiver is back from its overload, and its late light gone.
double KnownLink::lateBehind(const TruthEvent& event) const
{
    if (event.ghost) {
        return 0.0;
    }
    const double most_dB = sight.launch_dB + sight.overload_dB - levelBefore(indexOf(event));
    const double light = std::pow(10.0, std::min(heightOf(event), most_dB) / 5.0) - 1.0;
    const double lifted_dB = otdr::kDbPerNeper * sight.tailPart * light;
    return std::max(overloads(event) ? sight.recovery : 0.0,
                    sight.tailSamples * std::log(std::max(1.0, lifted_dB / kHiddenTail_dB)));
}

KnownLink::Sides KnownLink::sidesOf(std::size_t k) const
{
    const double at = indexOf(events[k]);
    double from = 0.0;
    double to = endOf();
    for (const double joint : joints) {
        from = joint < at - kSamePlace ? std::max(from, joint) : from;
        to = joint > at + kSamePlace ? std::min(to, joint) : to;
    }
    double late = 0.0;
    for (std::size_t i = 0; i < events.size(); ++i) {
        const double other = indexOf(events[i]);
        if (i != k && std::abs(other - at) < kSamePlace) {
            continue; // at one place
        }
        const double tail = lateBehind(events[i]);
        from = i != k && other < at ? std::max(from, other + tail) : from;
        to = i != k && other > at ? std::min(to, other) : to;
        late = i == k ? tail : late;
    }
    const double longest = kLongestLine_m / (metresOf(1.0) - metresOf(0.0));
    return {std::min(longest, at - from - sight.gap), std::min(longest, to - at - late - sight.gap),
            late};
}

/// Of a mean over many samples, times their number.
double KnownLink::varianceAt(double level_dB) const
{
    const double sigma = sigmaAt(level_dB);
    const double count_dB = sight.rounding_dB * std::sqrt(12.0);
    const bool isSteady = sight.run > 1.0 && sigma < kNoiseThatSpreads * count_dB;
    const double alike = isSteady ? sight.rounding_dB * sight.rounding_dB * (sight.run - 1.0) : 0.0;
    return sigma * sigma * sight.correlation + alike
        + sight.fading_dB * sight.fading_dB * sight.pulse;
}

double KnownLink::boundOf(std::size_t k, const Sides& sides) const
{
    const double level = levelBefore(indexOf(events[k]));
    const auto variance = [&](double n, double away, double at_dB) {
        const double d = n / 2.0 + away;
        return varianceAt(at_dB) * (1.0 / n + 12.0 * d * d / (n * n * n));
    };
    return std::sqrt(
        variance(sides.left, 0.0, level)
        + variance(sides.right, sight.gap + sides.late, level - events[k].apparentLoss_dB));
}

double KnownLink::portIndex() const
{
    return -sight.firstSample_ns / sight.interval_ns;
}

double KnownLink::returnLossBetween(double from, double to, double backscatter_dB) const
{
    constexpr int kSteps = 4000;
    const double level = levelBefore(std::nextafter(from, to));
    const double step = (to - from) / kSteps;
    double sum = 0.0;
    for (int i = 0; i < kSteps; ++i) {
        sum += std::pow(10.0, (levelBefore(from + (i + 0.5) * step) - level) / 5.0);
    }
    return -backscatter_dB - 10.0 * std::log10(sum * step * sight.interval_ns);
}

double KnownLink::attenuationBetween(double from, double to) const
{
    const gather::Section& section = sectionAt(from + kSamePlace);
    const bool isOne = &section == &sectionAt(to - kSamePlace);
    return isOne ? section.attenuation_dBPerKm.at(wavelength_nm) : NAN;
}

double KnownLink::attenuationBound(double from, double to) const
{
    const double n = to - from - sight.gap;
    const double kilometre = 1000.0 / (metresOf(1.0) - metresOf(0.0));
    return std::sqrt(12.0 * varianceAt(levelBefore(0.5 * (from + to))) / (n * n * n)) * kilometre;
}

} // namespace accuracy
