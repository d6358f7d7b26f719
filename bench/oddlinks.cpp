#include "bench/oddlinks.h"

#include "bench/accuracylinks.h"
#include "bench/oddnetworks.h"
#include "bench/oddparts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace accuracy {

namespace {

using gather::FibreEvent;
using gather::Spectrum;

// Events close to each other

OddLink dense(Random& random, double pulse_ns, double longest_m, double range_dB)
{
    const double pulse_m = metresOfPulse(pulse_ns);
    std::vector<double> places {pulse_m * draw(random, 8.0, 12.0)};
    while (places.size() < 25 && places.back() < longest_m) {
        places.push_back(places.back() + pulse_m * draw(random, 3.0, 10.0));
    }
    OddLink link = plain(random, pulse_ns, range_dB, places.back());
    places.pop_back();
    for (const double at_m : places) {
        const double loss_dB = draw(random, 0.05, 0.5);
        const double kind = draw(random, 0.0, 1.0);
        link.fibre.events.push_back(kind < 0.3
                                        ? connector(at_m, loss_dB, draw(random, -65.0, -45.0))
                                        : FibreEvent {at_m, Spectrum(loss_dB), {}, "splice"});
    }
    return link;
}

/// Some events, and one a few pulses in front of the end.
OddLink shortEnd(Random& random, const Spectrum& end)
{
    OddLink link = usual(random);
    const double length_m = link.fibre.length_m();
    const double at_m =
        length_m - metresOfPulse(link.instrument.pulse_ns) * draw(random, 2.0, 10.0);
    auto& events = link.fibre.events;
    const double free_m = 20.0 * metresOfPulse(link.instrument.pulse_ns);
    events.erase(std::remove_if(events.begin(), events.end(),
                                [&](const FibreEvent& event) {
                                    return event.at_m > 0.0 && event.at_m > at_m - free_m;
                                }),
                 events.end());
    FibreEvent last {at_m, Spectrum(draw(random, 0.05, 0.5)), {}, "splice"};
    if (happens(random, 0.5)) {
        last = {at_m, Spectrum(draw(random, 0.02, 0.3)), Spectrum(draw(random, -70.0, -55.0)),
                "connector"};
    }
    events.push_back(last);
    link.fibre.endReflectance_dB = end;
    return link;
}

/// A link of a few pulses: a patch cord or a pigtail, or a pulse that is too long for it. Some
/// ports do not reflect.
OddLink fewPulses(Random& random, double perPulse)
{
    const double pulse_ns = drawLog(random, 10.0, 1000.0);
    const double pulse_m = metresOfPulse(pulse_ns);
    std::vector<double> places;
    double at_m = 0.0;
    for (int events = static_cast<int>(draw(random, 0.0, 3.99)); events > 0; --events) {
        at_m += pulse_m * draw(random, 3.5, 12.0);
        places.push_back(at_m);
    }
    const double length_m = at_m + pulse_m * draw(random, 3.5, 15.0);
    OddLink link = plain(random, pulse_ns, draw(random, 20.0, 40.0), length_m);
    link.instrument.samplesPerPulse = perPulse;
    if (happens(random, 0.3)) {
        link.fibre.events.clear();
    }
    for (const double place_m : places) {
        link.fibre.events.push_back(drawEvent(random, place_m));
    }
    return link;
}

// Other fibres

/// Sections of a fibre each, joined as told.
OddLink joined(Random& random, double slopeFrom, double slopeTo, double scatterFrom_dB,
               double scatterTo_dB)
{
    OddLink link = usual(random);
    auto& fibre = link.fibre;
    const double length_m = fibre.length_m();
    const int count = static_cast<int>(draw(random, 3.0, 6.99));
    fibre.sections.clear();
    fibre.events.erase(std::remove_if(fibre.events.begin(), fibre.events.end(),
                                      [](const FibreEvent& event) { return event.at_m > 0.0; }),
                       fibre.events.end());
    double scatter_dB = kBackscatter_dB;
    double sign = happens(random, 0.5) ? 1.0 : -1.0;
    for (int i = 0; i < count; ++i) {
        fibre.sections.push_back({length_m / count * draw(random, 0.7, 1.3),
                                  Spectrum(draw(random, slopeFrom, slopeTo)),
                                  Spectrum(scatter_dB)});
        // The trace shows half of it.
        scatter_dB += sign * 2.0 * draw(random, scatterFrom_dB, scatterTo_dB);
        sign = -sign;
    }
    return link;
}

OddLink oneSlope(Random& random)
{
    OddLink link = usual(random);
    const Spectrum slope(draw(random, 0.16, 0.5));
    for (gather::Section& section : link.fibre.sections) {
        section.attenuation_dBPerKm = slope;
    }
    return link;
}

OddLink multimode(Random& random)
{
    OddLink link = plain(random, 10.0, 16.0, draw(random, 300.0, 2000.0));
    link.wavelength_nm = 850;
    link.fibre.sections.front().attenuation_dBPerKm = Spectrum(2.5);
    double at_m = draw(random, 30.0, 150.0);
    for (; at_m < link.fibre.length_m() - 20.0; at_m += draw(random, 30.0, 500.0)) {
        link.fibre.events.push_back(drawEvent(random, at_m));
    }
    return link;
}

// Other receivers

OddLink withTail(Random& random, double height)
{
    constexpr double kMostPart = 0.05;
    OddLink link = usual(random);
    Tail& tail = link.instrument.slow;
    tail.pulses = drawLog(random, 3.0, 30.0);
    tail.part = std::min(kMostPart, height / -std::expm1(-1.0 / tail.pulses));
    return link;
}

OddLink withUndershoot(Random& random)
{
    OddLink link = usual(random);
    link.instrument.undershoot_dB = draw(random, 0.1, 0.5);
    link.instrument.undershootPulses = draw(random, 1.0, 4.0);
    return link;
}

OddLink withReceiver(Random& random, double from, double to)
{
    OddLink link = usual(random);
    link.instrument.timeConstant = drawLog(random, from, to);
    return link;
}

OddLink withOverload(Random& random, double above_dB)
{
    OddLink link = usual(random);
    link.instrument.overload_dB = above_dB;
    return link;
}

// Other digitisers

OddLink withQuantum(Random& random, double quantum_dB)
{
    OddLink link = usual(random);
    link.instrument.quantum_dB = quantum_dB;
    link.instrument.countsQuanta = happens(random, 0.5);
    return link;
}

OddLink withSamples(Random& random, double perPulse)
{
    OddLink link = usual(random);
    link.instrument.samplesPerPulse = perPulse;
    return link;
}

OddLink withNoise(Random& random, NoiseKind kind)
{
    OddLink link = usual(random);
    link.instrument.noise = kind;
    link.instrument.smoothed = 3.0 + 2.0 * std::floor(draw(random, 0.0, 3.999));
    return link;
}

OddLink smoothedWhole(Random& random)
{
    OddLink link = usual(random);
    link.instrument.samplesPerPulse = draw(random, 8.0, 20.0);
    link.instrument.wholeSmoothed = 3.0 + 2.0 * std::floor(draw(random, 0.0, 3.999));
    return link;
}

OddLink withOffset(Random& random, double offset)
{
    OddLink link = usual(random);
    link.instrument.offset = offset;
    return link;
}

OddLink withFloor(Random& random)
{
    OddLink link = usual(random);
    link.instrument.floor_dB = draw(random, -3.0, 1.5);
    return link;
}

OddLink endsSoon(Random& random)
{
    OddLink link = usual(random);
    link.instrument.times = 1.0;
    link.instrument.behind = 10.0;
    return link;
}

OddLink endsLate(Random& random)
{
    OddLink link = usual(random);
    link.instrument.times = 20.0;
    return link;
}

OddLink beginsEarly(Random& random)
{
    OddLink link = usual(random);
    link.instrument.before = drawLog(random, 1.0, 30.0);
    return link;
}

OddLink withFading(Random& random, double fading_dB)
{
    OddLink link = usual(random);
    link.instrument.fading_dB = fading_dB;
    return link;
}

} // namespace

const std::vector<OddRow>& oddRows()
{
    static const std::vector<OddRow> all = {
        {"dense 500 ns", [](Random& r) { return dense(r, 500.0, 30e3, 22.0); }},
        {"dense 1 us", [](Random& r) { return dense(r, 1000.0, 30e3, 24.0); }},
        {"dense 2.5 us", [](Random& r) { return dense(r, 2500.0, 60e3, 28.0); }},
        {"dense 20 us", [](Random& r) { return dense(r, 20000.0, 150e3, 45.0); }},
        {"short end open", [](Random& r) { return shortEnd(r, Spectrum(-14.7)); }},
        {"short end cut", [](Random& r) { return shortEnd(r, Spectrum(draw(r, -60., -35.))); }},
        {"short end dark", [](Random& r) { return shortEnd(r, Spectrum()); }},
        {"few pulses", [](Random& r) { return fewPulses(r, 10.0); }},
        {"few, 100 samples", [](Random& r) { return fewPulses(r, 100.0); }},
        {"one slope", oneSlope},
        {"slopes joined", [](Random& r) { return joined(r, 0.16, 0.5, 0.0, 0.0); }},
        {"gains joined", [](Random& r) { return joined(r, 0.17, 0.36, 0.05, 0.5); }},
        {"multimode 10 ns", multimode},
        {"tail 1e-4", [](Random& r) { return withTail(r, 1e-4); }},
        {"tail 1e-3", [](Random& r) { return withTail(r, 1e-3); }},
        {"tail 1e-2", [](Random& r) { return withTail(r, 1e-2); }},
        {"undershoot", withUndershoot},
        {"fast receiver", [](Random& r) { return withReceiver(r, 0.01, 0.04); }},
        {"slow receiver", [](Random& r) { return withReceiver(r, 0.15, 0.6); }},
        {"overload 5 dB", [](Random& r) { return withOverload(r, 5.0); }},
        {"overload 10 dB", [](Random& r) { return withOverload(r, 10.0); }},
        {"overload 25 dB", [](Random& r) { return withOverload(r, 25.0); }},
        {"quanta 0.001 dB", [](Random& r) { return withQuantum(r, 0.001); }},
        {"quanta 0.005 dB", [](Random& r) { return withQuantum(r, 0.005); }},
        {"quanta 0.01 dB", [](Random& r) { return withQuantum(r, 0.01); }},
        {"quanta 0.02 dB", [](Random& r) { return withQuantum(r, 0.02); }},
        {"quanta 0.05 dB", [](Random& r) { return withQuantum(r, 0.05); }},
        {"0.5 samples", [](Random& r) { return withSamples(r, 0.5); }},
        {"1 sample", [](Random& r) { return withSamples(r, 1.0); }},
        {"2 samples", [](Random& r) { return withSamples(r, 2.0); }},
        {"5 samples", [](Random& r) { return withSamples(r, 5.0); }},
        {"20 samples", [](Random& r) { return withSamples(r, 20.0); }},
        {"60 samples", [](Random& r) { return withSamples(r, 60.0); }},
        {"noise smoothed", [](Random& r) { return withNoise(r, NoiseKind::Smoothed); }},
        {"noise red", [](Random& r) { return withNoise(r, NoiseKind::Red); }},
        {"noise blue", [](Random& r) { return withNoise(r, NoiseKind::Blue); }},
        {"trace smoothed", smoothedWhole},
        {"offset -3 sigma", [](Random& r) { return withOffset(r, -3.0); }},
        {"offset -1 sigma", [](Random& r) { return withOffset(r, -1.0); }},
        {"offset +1 sigma", [](Random& r) { return withOffset(r, 1.0); }},
        {"offset +3 sigma", [](Random& r) { return withOffset(r, 3.0); }},
        {"noise cut off", withFloor},
        {"ends soon", endsSoon},
        {"ends late", endsLate},
        {"begins early", beginsEarly},
        {"fading 0.005 dB", [](Random& r) { return withFading(r, 0.005); }},
        {"fading 0.01 dB", [](Random& r) { return withFading(r, 0.01); }},
        {"fading 0.03 dB", [](Random& r) { return withFading(r, 0.03); }},
        {"between fibres", betweenFibres},
        {"pair at port", pairAtPort},
        {"patch panels", patchPanels},
        {"bends", bent},
        {"drop of 8", [](Random& r) { return oneDrop(r, 10.5); }},
        {"drop of 32", [](Random& r) { return oneDrop(r, 17.0); }},
        {"all drops of 8", allDrops},
        {"no event", noEvent},
        {"no fibre", noFibre},
        {"break at port", breakAtPort},
        {"bright port", breakAtBrightPort},
        {"break behind", breakBehindCord},
    };
    return all;
}

} // namespace accuracy
