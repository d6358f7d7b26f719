#include "bench/accuracylinks.h"

#include "programs/wfgather/simulatedtrace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace accuracy {

namespace {

/// One of two, four, eight or sixteen ways, as data sheets have them.
gather::FibreEvent drawSplitter(std::mt19937_64& random, double at_m)
{
    constexpr std::array<double, 4> kLosses_dB {3.6, 7.2, 10.5, 13.8};
    gather::FibreEvent event;
    event.at_m = at_m;
    event.kind = "splitter";
    event.loss_dB =
        gather::Spectrum(kLosses_dB[static_cast<std::size_t>(draw(random, 0.0, 3.999))]);
    if (draw(random, 0.0, 1.0) < 0.5) {
        event.reflectance_dB = gather::Spectrum(draw(random, -60.0, -45.0));
    }
    return event;
}

} // namespace

const std::vector<Row>& rows()
{
    static const std::vector<Row> all = {
        {"access 10 ns", 10.0, 2.0, 6, 15.0, 60.0},
        {"access 30 ns", 30.0, 5.0, 6, 15.0, 120.0},
        {"metro 100 ns", 100.0, 15.0, 7, 15.0, 500.0},
        {"metro 500 ns", 500.0, 30.0, 8, 16.0, 1200.0},
        {"long haul 1 us", 1000.0, 40.0, 8, 17.0, 2500.0},
        {"long haul 2.5 us", 2500.0, 60.0, 8, 19.0, 4000.0},
        {"long haul 20 us", 20000.0, 120.0, 5, 30.0, 14000.0},
        {"clean 30 ns", 30.0, 5.0, 6, 28.0, 120.0},
        {"clean 500 ns", 500.0, 40.0, 10, 28.0, 1200.0},
        {"clean 2.5 us", 2500.0, 80.0, 10, 32.0, 4000.0},
        {"noisy 100 ns", 100.0, 12.0, 5, 9.0, 800.0},
        {"noisy 1 us", 1000.0, 30.0, 5, 11.0, 3000.0},
        {"split 30 ns", 30.0, 8.0, 4, 20.0, 60.0, true},
        {"split 100 ns", 100.0, 20.0, 4, 22.0, 150.0, true},
        {"split 275 ns", 275.0, 30.0, 4, 25.0, 300.0, true},
        {"split 1 us", 1000.0, 40.0, 4, 28.0, 1500.0, true},
    };
    return all;
}

double draw(std::mt19937_64& random, double from, double to)
{
    return from + (to - from) * std::uniform_real_distribution<double>()(random);
}

gather::FibreEvent drawEvent(std::mt19937_64& random, double at_m)
{
    gather::FibreEvent event;
    event.at_m = at_m;
    const double kind = draw(random, 0.0, 1.0);
    if (kind < 0.3) {
        event.kind = "connector";
        event.loss_dB = gather::Spectrum(draw(random, 0.05, 0.5));
        event.reflectance_dB = gather::Spectrum(draw(random, -65.0, -14.0));
    } else if (kind < 0.45) {
        event.kind = "bend";
        event.loss_dB = gather::Spectrum(draw(random, 0.05, 0.5));
    } else {
        event.kind = "splice";
        event.loss_dB = gather::Spectrum(0.02 * std::pow(25.0, draw(random, 0.0, 1.0)));
    }
    return event;
}

gather::Spectrum drawEnd(std::mt19937_64& random)
{
    const double end = draw(random, 0.0, 1.0);
    if (end < 0.4) {
        return gather::Spectrum(-14.7);
    }
    return end < 0.7 ? gather::Spectrum(draw(random, -60.0, -30.0)) : gather::Spectrum();
}

gather::Fibre drawLink(const Row& row, std::mt19937_64& random)
{
    gather::Fibre fibre;
    fibre.name = row.name;
    fibre.ior = gather::Spectrum(kIor);
    // The simulator is told what the range would be with 20 us and 3 minutes.
    fibre.dynamicRange_dB = gather::Spectrum(
        row.dynamicRange_dB - gather::dynamicRange_dB(0.0, row.pulse_ns, kMeasuring_s));
    const double length_m = row.length_km * 1000.0 * draw(random, 0.6, 0.9);
    std::vector<double> places;
    for (int tries = 0; tries < 100 && static_cast<int>(places.size()) < row.events; ++tries) {
        const double at_m = draw(random, row.shortest_m, length_m - row.shortest_m);
        const bool isFree = std::all_of(places.begin(), places.end(), [&](double other) {
            return std::abs(other - at_m) > row.shortest_m;
        });
        if (isFree) {
            places.push_back(at_m);
        }
    }
    std::sort(places.begin(), places.end());
    double sectionFrom_m = 0.0;
    double scatter_dB = kBackscatter_dB;
    const auto addSection = [&](double to_m) {
        fibre.sections.push_back({to_m - sectionFrom_m, gather::Spectrum(draw(random, 0.18, 0.21)),
                                  gather::Spectrum(scatter_dB)});
        sectionFrom_m = to_m;
    };
    const double splitter_m = row.isSplit ? places[static_cast<std::size_t>(
                                  draw(random, 0.0, 0.999) * static_cast<double>(places.size()))]
                                          : length_m;
    for (const double at_m : places) {
        const gather::FibreEvent event =
            at_m == splitter_m ? drawSplitter(random, at_m) : drawEvent(random, at_m);
        if (event.kind == "splice"
            && draw(random, 0.0, 1.0) < 0.25) { // another fibre: maybe a gainer
            addSection(at_m);
            scatter_dB = kBackscatter_dB + draw(random, -0.3, 0.3);
        }
        fibre.events.push_back(event);
    }
    addSection(length_m);
    fibre.endReflectance_dB = drawEnd(random);
    return fibre;
}

} // namespace accuracy
