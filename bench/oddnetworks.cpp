#include "bench/oddnetworks.h"

#include "bench/accuracylinks.h"
#include "bench/oddparts.h"
#include "platform/otdr/core/constants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace accuracy {

using gather::FibreEvent;
using gather::Spectrum;

OddLink betweenFibres(Random& random)
{
    OddLink link = usual(random);
    auto& fibre = link.fibre;
    const double launch_m = drawLog(random, 100.0, 1000.0);
    const double receive_m = drawLog(random, 100.0, 1000.0);
    for (FibreEvent& event : fibre.events) {
        event.at_m += event.at_m > 0.0 ? launch_m : 0.0;
    }
    const double link_m = fibre.length_m();
    const gather::Section first = fibre.sections.front();
    const gather::Section last = fibre.sections.back();
    const auto behindPort = std::find_if(fibre.events.begin(), fibre.events.end(),
                                         [](const FibreEvent& event) { return event.at_m > 0.0; });
    fibre.events.insert(behindPort, drawConnector(random, launch_m));
    fibre.events.push_back(drawConnector(random, launch_m + link_m));
    fibre.sections.insert(fibre.sections.begin(),
                          {launch_m, Spectrum(draw(random, 0.18, 0.21)), first.backscatter_dB});
    fibre.sections.push_back({receive_m, last.attenuation_dBPerKm, last.backscatter_dB});
    return link;
}

OddLink pairAtPort(Random& random)
{
    OddLink link = usual(random);
    auto& events = link.fibre.events;
    const double at_m = draw(random, 1.0, 5.0);
    const auto behindPort = std::find_if(events.begin(), events.end(),
                                         [](const FibreEvent& event) { return event.at_m > 0.0; });
    events.insert(behindPort, drawConnector(random, at_m));
    return link;
}

OddLink patchPanels(Random& random)
{
    const double pulse_ns = happens(random, 0.5) ? 10.0 : 100.0;
    const double pulse_m = metresOfPulse(pulse_ns);
    OddLink link = plain(random, pulse_ns, 20.0, pulse_m * draw(random, 1000.0, 2000.0));
    const double length_m = link.fibre.length_m();
    for (const double part : {0.2, 0.45, 0.7}) {
        double at_m = length_m * (part + draw(random, 0.0, 0.15));
        const int count = static_cast<int>(draw(random, 3.0, 6.99));
        for (int i = 0; i < count; ++i) {
            link.fibre.events.push_back(drawConnector(random, at_m));
            at_m += pulse_m * draw(random, 0.5, 4.0);
        }
    }
    return link;
}

OddLink bent(Random& random)
{
    OddLink link = usual(random);
    link.wavelength_nm = happens(random, 0.5) ? 1310 : 1625;
    for (FibreEvent& event : link.fibre.events) {
        if (event.kind == "splice") {
            event.kind = "bend";
            event.loss_dB = Spectrum({{1310, 0.0}, {1625, draw(random, 0.1, 1.5)}});
        }
    }
    return link;
}

OddLink oneDrop(Random& random, double loss_dB)
{
    constexpr std::array<double, 3> kPulses_ns {30.0, 100.0, 275.0};
    const double pulse_ns = kPulses_ns[static_cast<std::size_t>(draw(random, 0.0, 2.999))];
    const double feeder_m = draw(random, 1000.0, 10000.0);
    const double drop_m = drawLog(random, 10.0, 300.0);
    OddLink link = plain(random, pulse_ns, loss_dB + 10.0, feeder_m + drop_m);
    if (happens(random, 0.7)) {
        link.fibre.events.push_back(drawEvent(random, feeder_m * draw(random, 0.2, 0.8)));
    }
    link.fibre.events.push_back(
        {feeder_m, Spectrum(loss_dB + draw(random, -0.3, 0.5)),
         happens(random, 0.5) ? Spectrum(draw(random, -60.0, -45.0)) : Spectrum(), "splitter"});
    return link;
}

/// What ends takes its share of the light.
OddLink allDrops(Random& random)
{
    constexpr int kDrops = 8;
    const double feeder_m = draw(random, 1000.0, 10000.0);
    std::vector<double> ends_m(kDrops);
    for (double& end_m : ends_m) {
        end_m = feeder_m + drawLog(random, 10.0, 300.0);
    }
    std::sort(ends_m.begin(), ends_m.end());
    OddLink link = plain(random, happens(random, 0.5) ? 10.0 : 30.0, 22.0, ends_m.back());
    const double splitter_dB = 10.5 - 5.0 * std::log10(kDrops);
    link.fibre.events.push_back({feeder_m, Spectrum(splitter_dB), {}, "splitter"});
    for (int left = kDrops - 1; left > 0; --left) {
        const double reflectance_dB = draw(random, -55.0, -14.7) - 10.0 * std::log10(left + 1.0);
        link.fibre.events.push_back(connector(ends_m[static_cast<std::size_t>(kDrops - 1 - left)],
                                              5.0 * std::log10((left + 1.0) / left),
                                              reflectance_dB));
    }
    return link;
}

OddLink noEvent(Random& random)
{
    OddLink link = usual(random);
    link.fibre.events.clear();
    link.fibre.sections = {
        {link.fibre.length_m(), Spectrum(draw(random, 0.18, 0.21)), Spectrum(kBackscatter_dB)}};
    addPort(random, link.fibre);
    return link;
}

namespace {

/// Leaves so much fibre and no event, in a record that is as long as before.
void shorten(OddLink& link, double length_m)
{
    const double range_ns = link.fibre.length_m() / otdr::metresPerNs(kIor);
    link.fibre.events.clear();
    link.fibre.sections = {{length_m, Spectrum(0.2), Spectrum(kBackscatter_dB)}};
    link.instrument.behind = range_ns / link.instrument.pulse_ns;
}

} // namespace

OddLink noFibre(Random& random)
{
    OddLink link = usual(random);
    shorten(link, draw(random, 0.5, 2.0));
    link.fibre.endReflectance_dB = Spectrum(draw(random, -60.0, -14.0));
    return link;
}

OddLink breakAtPort(Random& random)
{
    OddLink link = usual(random);
    shorten(link, metresOfPulse(link.instrument.pulse_ns) * drawLog(random, 3.0, 30.0));
    addPort(random, link.fibre);
    return link;
}

OddLink breakAtBrightPort(Random& random)
{
    OddLink link = breakAtPort(random);
    for (FibreEvent& event : link.fibre.events) {
        event.reflectance_dB = Spectrum(draw(random, -35.0, -20.0));
    }
    return link;
}

OddLink breakBehindCord(Random& random)
{
    OddLink link = breakAtPort(random);
    const double cord_m = link.fibre.length_m() * draw(random, 0.3, 0.7);
    link.fibre.events.push_back(drawConnector(random, cord_m));
    return link;
}

} // namespace accuracy
