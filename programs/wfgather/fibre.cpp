#include "programs/wfgather/fibre.h"

#include "platform/otdr/core/constants.h"
#include "programs/wfgather/linkresponse.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace gather {

namespace {

/// A change of the backscatter coefficient less than this is none.
constexpr double kSameBackscatter_dB = 1e-9;

/// The length of the sections before a place, summed up by the file's writer and by us.
constexpr double kSamePlace_m = 1e-6;

bool isSamePlace(double one_m, double other_m)
{
    return std::abs(one_m - other_m) < kSamePlace_m;
}

/// Change of the backscatter coefficient at a place: behind it less before it; 0 within a section.
double backscatterStep_dB(const Fibre& fibre, double at_m, int wavelength_nm)
{
    double border_m = 0.0;
    for (std::size_t i = 0; i + 1 < fibre.sections.size(); ++i) {
        border_m += fibre.sections[i].length_m;
        if (isSamePlace(border_m, at_m)) {
            return fibre.sections[i + 1].backscatter_dB.at(wavelength_nm)
                - fibre.sections[i].backscatter_dB.at(wavelength_nm);
        }
    }
    return 0.0;
}

/// Borders of sections where the backscatter changes and the file names no event.
std::vector<FibreEvent> joints(const Fibre& fibre, int wavelength_nm)
{
    std::vector<FibreEvent> found;
    double border_m = 0.0;
    for (const Section& section : fibre.sections) {
        border_m += section.length_m;
        const bool named =
            std::any_of(fibre.events.begin(), fibre.events.end(),
                        [&](const FibreEvent& event) { return isSamePlace(event.at_m, border_m); });
        const double step_dB = backscatterStep_dB(fibre, border_m, wavelength_nm);
        if (!named && std::abs(step_dB) > kSameBackscatter_dB) {
            found.push_back({border_m, Spectrum(0.0), {}, "joint"});
        }
    }
    return found;
}

} // namespace

double Fibre::length_m() const
{
    double length = 0.0;
    for (const Section& section : sections) {
        length += section.length_m;
    }
    return length;
}

std::vector<TruthEvent> truthOf(const Fibre& fibre, int wavelength_nm)
{
    const double metres = otdr::metresPerNs(fibre.ior.at(wavelength_nm));
    std::vector<FibreEvent> events = fibre.events;
    const std::vector<FibreEvent> unnamed = joints(fibre, wavelength_nm);
    events.insert(events.end(), unnamed.begin(), unnamed.end());
    std::vector<TruthEvent> truth;
    for (const FibreEvent& event : events) {
        TruthEvent one;
        one.at_m = event.at_m;
        one.time_ns = event.at_m / metres;
        one.loss_dB = event.loss_dB.at(wavelength_nm);
        // The trace counts one-way decibels: half of the step of the coefficient.
        one.apparentLoss_dB =
            one.loss_dB - backscatterStep_dB(fibre, event.at_m, wavelength_nm) / 2.0;
        one.reflectance_dB = event.reflectance_dB.at(wavelength_nm);
        one.kind = event.kind;
        truth.push_back(one);
    }
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const double length = fibre.length_m();
    truth.push_back({length, length / metres, kNone, kNone,
                     fibre.endReflectance_dB.at(wavelength_nm), false, true, "end"});
    for (const Reflection& echo : responseOf(fibre, wavelength_nm).reflections) {
        if (echo.ghost) {
            truth.push_back({echo.at_ns * metres, echo.at_ns, 0.0, 0.0,
                             10.0 * std::log10(echo.power), true, false, "ghost"});
        }
    }
    std::stable_sort(truth.begin(), truth.end(), [](const TruthEvent& a, const TruthEvent& b) {
        return a.time_ns < b.time_ns;
    });
    return truth;
}

} // namespace gather
