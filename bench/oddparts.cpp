#include "bench/oddparts.h"

#include "bench/accuracylinks.h"
#include "platform/otdr/core/constants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

namespace accuracy {

using gather::FibreEvent;
using gather::Spectrum;

double drawLog(Random& random, double from, double to)
{
    return from * std::pow(to / from, draw(random, 0.0, 1.0));
}

bool happens(Random& random, double probability)
{
    return draw(random, 0.0, 1.0) < probability;
}

FibreEvent connector(double at_m, double loss_dB, double reflectance_dB)
{
    return {at_m, Spectrum(loss_dB), Spectrum(reflectance_dB), "connector"};
}

FibreEvent drawConnector(Random& random, double at_m)
{
    return {at_m, Spectrum(draw(random, 0.05, 0.5)), Spectrum(draw(random, -60.0, -35.0)),
            "connector"};
}

double metresOfPulse(double pulse_ns)
{
    return pulse_ns * otdr::metresPerNs(kIor);
}

void addPort(Random& random, gather::Fibre& fibre)
{
    fibre.events.insert(fibre.events.begin(), connector(0.0, 0.0, draw(random, -60.0, -35.0)));
}

namespace {

/// An instrument as usual, with sampling and record of one kind or another.
Instrument drawInstrument(Random& random, double pulse_ns, double range_dB)
{
    Instrument instrument;
    instrument.pulse_ns = pulse_ns;
    instrument.range_dB = range_dB;
    instrument.samplesPerPulse = drawLog(random, 4.0, 20.0);
    instrument.times = draw(random, 1.2, 2.0);
    instrument.behind = 200.0;
    return instrument;
}

} // namespace

OddLink usual(Random& random)
{
    constexpr std::array<const char*, 5> kNames {"access 30 ns", "metro 100 ns", "metro 500 ns",
                                                 "long haul 2.5 us", "clean 500 ns"};
    const std::string name = kNames[static_cast<std::size_t>(draw(random, 0.0, 4.999))];
    const auto row = std::find_if(rows().begin(), rows().end(),
                                  [&](const Row& one) { return name == one.name; });
    OddLink link;
    link.fibre = drawLink(*row, random);
    link.instrument = drawInstrument(random, row->pulse_ns, row->dynamicRange_dB);
    if (happens(random, 0.7)) {
        addPort(random, link.fibre);
    }
    return link;
}

OddLink plain(Random& random, double pulse_ns, double range_dB, double length_m)
{
    OddLink link;
    link.fibre.ior = Spectrum(kIor);
    link.fibre.sections.push_back(
        {length_m, Spectrum(draw(random, 0.18, 0.21)), Spectrum(kBackscatter_dB)});
    link.fibre.endReflectance_dB = drawEnd(random);
    link.instrument = drawInstrument(random, pulse_ns, range_dB);
    addPort(random, link.fibre);
    return link;
}

} // namespace accuracy
