#pragma once

#include "platform/otdr/core/eventsites.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <vector>

namespace testing_support {

constexpr double kSitesPulse = 20.0;

/// Fibre of 6000 samples that falls by 0.0005 dB from one to the next.
inline DrawnFibre fibreWith(const std::vector<DrawnEvent>& events, double sigma_dB = 0.0)
{
    const otdr::PulseShape shape(kSitesPulse, 0.08 * kSitesPulse);
    return {6000, scaleOf(kSitesPulse, 2000.0),
            [=](double i) { return 40.0 - 0.0005 * i + eventsLevel_dB(shape, i, events); },
            sigma_dB};
}

inline otdr::Site siteAt(const DrawnFibre& fibre, double at)
{
    otdr::Site site;
    site.at = at;
    site.behind = at + fibre->gap();
    return site;
}

inline otdr::Site peakAt(const DrawnFibre& fibre, double at, double height_dB)
{
    otdr::Site site = siteAt(fibre, at);
    site.peak = otdr::PeakGroup {{at}, {height_dB}, site.behind};
    site.peakStatistic = 10.0;
    return site;
}

inline std::vector<double> placesOf(const otdr::EventSites& sites)
{
    std::vector<double> places;
    for (const otdr::Site& site : sites.sites()) {
        places.push_back(site.at);
    }
    return places;
}

} // namespace testing_support
