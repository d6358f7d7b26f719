// What the detection finds on links, fibres and instruments of many kinds whose truth is known.
//
//   detection_fibres [LINKS]
//   detection_fibres ROW [LINK [FILE.sor]]
//
// LINKS links are drawn for each row (50 without it), always the same ones. With the name of a row,
// that row alone, and the links of it where something goes wrong; with the number of one of them,
// all that is there beside all that was found; with a file, its trace is written.
//
// A found event tells the true one nearest to it, within a pulse, and each tells one. Due are steps
// of eight standard errors of the lines that the fibre on both sides allows, a pulse of it at
// least, and of 0.02 dB; reflections of six standard deviations of a sample and 0.02 dB that have a
// pulse of fibre in front of them and nothing else within their dead zone; the end where the fibre
// stands 3 dB above the noise in front of it. A loss, with those of the events in its dead zone, is
// wrong by more than five such standard errors and 5 mdB; the reflectance of a reflection that is
// not overloaded, stands twenty standard deviations above the fibre and has nothing else within
// two dead zones, by more than 0.3 dB, and so the return loss of the fibre between two events.
// Extra is what is told where nothing is: all, and those of 0.03 dB.

#include "bench/accuracylinks.h"
#include "bench/instrument.h"
#include "bench/knownlink.h"
#include "bench/knownsections.h"
#include "bench/matching.h"
#include "bench/oddlinks.h"
#include "platform/otdr/core/atomicfile.h"
#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/sorwriter.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using accuracy::KnownLink;
using gather::TruthEvent;
using otdr::DetectedEvent;

constexpr int kUsualLinks = 50;
constexpr double kLeast_dB = 0.02; // that is due
constexpr double kExtra_dB = 0.03;
constexpr double kClearStep = 8.0; // standard errors
constexpr double kClearPeak = 6.0; // standard deviations
constexpr double kWrongLoss = 5.0; // standard errors
constexpr double kWrongLoss_dB = 0.005;
constexpr double kClearEnd_dB = 3.0;
constexpr double kWrongSum_dB = 0.001;
constexpr double kWhole = 20.0; // standard deviations
constexpr double kWrongReflectance_dB = 0.3;
constexpr double kWrongReturnLoss_dB = 0.3;

/// Sums over the links of a row.
struct Count
{
    int steps = 0;
    int stepsFound = 0;
    int peaks = 0;
    int peaksFound = 0;
    int ends = 0;
    int endsFound = 0;
    int extra = 0;
    int largeExtra = 0;
    int losses = 0;
    int wrongLosses = 0;
    int wrongSums = 0;
    int reflectances = 0;
    int wrongReflectances = 0;
    int returnLosses = 0;
    int wrongReturnLosses = 0;
};

class Link
{
public:
    Link(const accuracy::OddRow& row, int number)
        : random(static_cast<std::uint64_t>(number))
        , odd(row.draw(random))
        , record(accuracy::record(odd.fibre, odd.wavelength_nm, odd.instrument, random))
        , known(odd.fibre, odd.wavelength_nm, record.sight)
        , trace(otdr::RawSamples(record.counts), record.dbPerCount, record.axis)
        , found(otdr::detectEvents(trace,
                                   {odd.instrument.pulse_ns, otdr::metresPerNs(accuracy::kIor),
                                    odd.instrument.backscatter_dB, odd.wavelength_nm}))
    {
        match();
    }

    /// Prints what goes wrong, if asked.
    void count(Count& count, bool prints) const
    {
        for (std::size_t k = 0; k < known.truth().size(); ++k) {
            const TruthEvent& event = known.truth()[k];
            if (event.end) {
                countEnd(k, count, prints);
            } else if (!event.ghost) {
                countEvent(k, count, prints);
            }
            countReflectance(k, count, prints);
        }
        countExtra(count, prints);
        countSum(count, prints);
        countReturnLosses(count, prints);
    }

    void print() const
    {
        const accuracy::Instrument& with = odd.instrument;
        std::printf("  pulse %g ns, %g samples; range %.1f dB; tail %.2g of %.1f pulses; "
                    "undershoot %.2f dB of %.1f; constant %.3f; smoothed %g, %g; floor %.1f; "
                    "in quanta %d\n",
                    with.pulse_ns, with.samplesPerPulse, with.range_dB, with.slow.part,
                    with.slow.pulses, with.undershoot_dB, with.undershootPulses, with.timeConstant,
                    with.smoothed, with.wholeSmoothed, with.floor_dB, with.countsQuanta ? 1 : 0);
        for (std::size_t k = 0; k < known.truth().size(); ++k) {
            const TruthEvent& event = known.truth()[k];
            std::printf("  true  %9.1f  loss %8.4f  R %7.1f  height %6.2f  level %6.2f%s%s%s\n",
                        known.indexOf(event), event.end ? 0.0 : known.shownLoss_dB(k),
                        event.reflectance_dB, known.heightOf(event),
                        known.levelBefore(known.indexOf(event)), event.ghost ? "  echo" : "",
                        event.end ? "  end" : "", partner[k] < 0 ? "  not told" : "");
        }
        for (std::size_t i = 0; i < found.events.size(); ++i) {
            const DetectedEvent& event = found.events[i];
            std::printf(
                "  found %9.1f  loss %8.4f +- %.4f  R %7.1f  height %6.2f  T %.1f  Tp %.1f  "
                "group %d  evidence %d%s%s%s\n",
                event.index, event.loss_dB, event.lossError_dB, event.reflectance_dB,
                event.height_dB, event.stepStatistic, event.peakStatistic, event.group,
                static_cast<int>(event.evidence), event.echo ? "  echo" : "",
                event.kind == DetectedEvent::Kind::End ? "  end" : "", isTold[i] ? "" : "  extra");
        }
        std::printf("  noise %.2f dB, end %.1f\n", found.noiseFloor_dB, found.end);
    }

    bool write(const char* path) const
    {
        otdr::sor::File file;
        file.gen.wavelength_nm = static_cast<std::uint16_t>(odd.wavelength_nm);
        file.sup.supplier = "simulated";
        file.fxd.actualWavelength = static_cast<std::uint16_t>(10 * odd.wavelength_nm);
        file.fxd.groupIndex = static_cast<std::uint32_t>(std::lround(1e5 * accuracy::kIor));
        file.fxd.backscatter =
            static_cast<std::uint16_t>(std::lround(-10.0 * odd.instrument.backscatter_dB));
        // Counts of 100 ps one way: two of round trip are 0.2 ns.
        const double countsPerSample = 5.0 * record.axis.sampleInterval_ns;
        file.fxd.acquisitionOffset =
            static_cast<std::int32_t>(std::lround(5.0 * record.axis.firstSample_ns));
        file.fxd.acquisitionRange = static_cast<std::uint32_t>(
            std::lround(countsPerSample * static_cast<double>(record.counts.size())));
        file.fxd.pulses = {{static_cast<std::uint16_t>(odd.instrument.pulse_ns),
                            static_cast<std::uint32_t>(std::lround(1e4 * countsPerSample)),
                            static_cast<std::uint32_t>(record.counts.size())}};
        file.data.scaleFactor = static_cast<std::uint16_t>(
            std::lround(1000.0 * record.dbPerCount / otdr::kUsualDbPerCount));
        file.data.samples = otdr::RawSamples(record.counts);
        const auto bytes = otdr::encodeSor(file);
        return bytes && otdr::writeFileAtomically(path, *bytes);
    }

private:
    [[nodiscard]] double pulse() const { return known.pulse(); }

    /// What is listed tells events; what is left of it, echoes.
    void match()
    {
        isTold.assign(found.events.size(), false);
        partner.assign(known.truth().size(), -1);
        for (const bool ghosts : {false, true}) {
            std::vector<std::size_t> trueOnes;
            std::vector<double> truePlaces;
            for (std::size_t k = 0; k < known.truth().size(); ++k) {
                if (known.truth()[k].ghost == ghosts) {
                    trueOnes.push_back(k);
                    truePlaces.push_back(known.indexOf(known.truth()[k]));
                }
            }
            std::vector<std::size_t> foundOnes;
            std::vector<double> foundPlaces;
            for (std::size_t i = 0; i < found.events.size(); ++i) {
                if (!isTold[i] && found.events[i].echo == ghosts) {
                    foundOnes.push_back(i);
                    foundPlaces.push_back(found.events[i].index);
                }
            }
            const std::vector<int> pairs =
                accuracy::matched(foundPlaces, truePlaces, std::max(pulse(), 2.0));
            for (std::size_t k = 0; k < pairs.size(); ++k) {
                if (pairs[k] >= 0) {
                    const std::size_t i = foundOnes[static_cast<std::size_t>(pairs[k])];
                    partner[trueOnes[k]] = static_cast<int>(i);
                    isTold[i] = true;
                }
            }
        }
    }

    [[nodiscard]] const DetectedEvent* partnerOf(std::size_t k) const
    {
        return partner[k] < 0 ? nullptr : &found.events[static_cast<std::size_t>(partner[k])];
    }

    [[nodiscard]] bool isStepDue(std::size_t k, const KnownLink::Sides& sides) const
    {
        const double fewest = std::max(pulse(), 4.0);
        if (sides.left < fewest || sides.right < fewest) {
            return false;
        }
        const double loss_dB = std::abs(known.shownLoss_dB(k));
        return loss_dB >= kLeast_dB && loss_dB >= kClearStep * known.boundOf(k, sides);
    }

    [[nodiscard]] bool isPeakDue(std::size_t k, const KnownLink::Sides& sides) const
    {
        const TruthEvent& event = known.truth()[k];
        const double at = known.indexOf(event);
        const double level = known.levelBefore(at);
        const double height = known.heightOf(event);
        const double scatter = std::hypot(known.sigmaAt(level), record.sight.fading_dB);
        const bool isHidden =
            std::any_of(known.truth().begin(), known.truth().end(), [&](const TruthEvent& other) {
                const double behind = known.indexOf(other) - at;
                return &other != &event && behind >= 0.0 && behind < record.sight.gap;
            });
        return !isHidden && sides.left >= pulse() && height >= kClearPeak * scatter
            && height >= kLeast_dB && level > record.sight.noise_dB + kClearEnd_dB;
    }

    void countEvent(std::size_t k, Count& count, bool prints) const
    {
        const TruthEvent& event = known.truth()[k];
        const double at = known.indexOf(event);
        const KnownLink::Sides sides = known.sidesOf(k);
        const bool isStep = isStepDue(k, sides);
        const bool isPeak = isPeakDue(k, sides);
        if (at - known.portIndex() < 3.0 * record.sight.gap || at >= known.endOf()
            || !(isStep || isPeak)) {
            return;
        }
        const DetectedEvent* told = partnerOf(k);
        (isPeak ? count.peaks : count.steps) += 1;
        (isPeak ? count.peaksFound : count.stepsFound) += told != nullptr ? 1 : 0;
        if (told == nullptr) {
            if (prints) {
                std::printf("  missed at %.1f: loss %.4f (%.1f errors) height %.3f, level %.1f\n",
                            at, known.shownLoss_dB(k),
                            isStep ? known.shownLoss_dB(k) / known.boundOf(k, sides) : 0.0,
                            known.heightOf(event), known.levelBefore(at));
            }
        } else if (isStep && !std::isnan(told->loss_dB)) {
            countLoss(k, known.boundOf(k, sides), *told, count, prints);
        }
    }

    /// What is lost at a found event and at those that are told with it.
    [[nodiscard]] double lossOfGroup_dB(const DetectedEvent& told) const
    {
        const double reach = std::max(pulse(), 2.0);
        double to = told.index;
        for (const DetectedEvent& event : found.events) {
            to = event.group == told.group ? std::max(to, event.index) : to;
        }
        double sum = 0.0;
        for (std::size_t k = 0; k < known.truth().size(); ++k) {
            const TruthEvent& event = known.truth()[k];
            const double at = known.indexOf(event);
            const bool isOf = !event.end && at >= told.index - reach && at <= to + reach;
            sum += isOf ? known.shownLoss_dB(k) : 0.0;
        }
        return sum;
    }

    void countLoss(std::size_t k, double bound, const DetectedEvent& told, Count& count,
                   bool prints) const
    {
        const double true_dB = lossOfGroup_dB(told);
        const double off = told.loss_dB - true_dB;
        const bool isWrong = std::abs(off) > std::max(kWrongLoss * bound, kWrongLoss_dB);
        ++count.losses;
        count.wrongLosses += isWrong ? 1 : 0;
        if (isWrong && prints) {
            std::printf("  loss at %.1f: %.4f +- %.4f for %.4f, possible +- %.4f\n",
                        known.indexOf(known.truth()[k]), told.loss_dB, told.lossError_dB, true_dB,
                        bound);
        }
    }

    void countEnd(std::size_t k, Count& count, bool prints) const
    {
        const double at = known.indexOf(known.truth()[k]);
        const double fall = known.shown_dB(known.levelBefore(at))
            - std::max(record.sight.noise_dB, known.shown_dB(-100.0));
        if (fall < kClearEnd_dB) {
            return;
        }
        const double reach = std::max(pulse(), 2.0);
        const auto isAny = [&](auto holds) {
            return std::any_of(found.events.begin(), found.events.end(), holds);
        };
        // Of several events within a pulse of the end, the end may be told by any. Of no more than
        // a pigtail it need not be told, but nothing behind it may be.
        const bool isFound =
            at - known.portIndex() < pulse() ? !isAny([&](const DetectedEvent& event) {
                return event.index > at + reach && event.evidence != DetectedEvent::Evidence::Range;
            })
                                             : isAny([&](const DetectedEvent& event) {
                                                   return event.kind == DetectedEvent::Kind::End
                                                       && std::abs(event.index - at) <= reach;
                                               });
        ++count.ends;
        count.endsFound += isFound ? 1 : 0;
        if (!isFound && prints) {
            std::printf("  end at %.1f, level %.1f; told %.1f, %.1f pulses away\n", at,
                        known.levelBefore(at), found.end, (found.end - at) / pulse());
        }
    }

    void countExtra(Count& count, bool prints) const
    {
        for (std::size_t i = 0; i < found.events.size(); ++i) {
            const DetectedEvent& event = found.events[i];
            if (isTold[i] || event.echo || event.kind == DetectedEvent::Kind::Start
                || event.evidence == DetectedEvent::Evidence::Range) {
                continue;
            }
            const bool isSmall =
                std::abs(event.loss_dB) < kExtra_dB && !(event.height_dB >= kExtra_dB);
            count.extra += 1;
            count.largeExtra += isSmall ? 0 : 1;
            if (prints) {
                std::printf("  extra at %.1f: loss %.4f height %.3f T %.1f Tp %.1f\n", event.index,
                            event.loss_dB, event.height_dB, event.stepStatistic,
                            event.peakStatistic);
            }
        }
    }

    void countSum(Count& count, bool prints) const
    {
        double sum = 0.0;
        for (const DetectedEvent& event : found.events) {
            sum += std::isnan(event.loss_dB) || event.echo ? 0.0 : event.loss_dB;
        }
        for (const otdr::DetectedSection& section : found.sections) {
            sum += std::isnan(section.loss_dB) ? 0.0 : section.loss_dB;
        }
        if (std::abs(sum - found.spanLoss_dB) > kWrongSum_dB) {
            ++count.wrongSums;
            if (prints) {
                std::printf("  sum %.4f, span %.4f\n", sum, found.spanLoss_dB);
            }
        }
    }

    [[nodiscard]] bool isAlone(std::size_t k) const
    {
        const auto& events = known.truth();
        const double at = known.indexOf(events[k]);
        return std::count_if(events.begin(), events.end(),
                             [&](const TruthEvent& other) {
                                 return std::abs(known.indexOf(other) - at)
                                     < 2.0 * record.sight.gap;
                             })
            == 1;
    }

    /// That of the port stands on fibre that shows more or less of itself before it.
    void countReflectance(std::size_t k, Count& count, bool prints) const
    {
        const TruthEvent& event = known.truth()[k];
        const DetectedEvent* told = partnerOf(k);
        const double at = known.indexOf(event);
        if (event.ghost || told == nullptr || std::isnan(event.reflectance_dB)
            || std::isnan(told->reflectance_dB) || told->saturated() || known.overloads(event)
            || known.heightOf(event) < kWhole * known.sigmaAt(known.levelBefore(at))
            || at < known.portIndex() + record.sight.gap || !isAlone(k)) {
            return;
        }
        const double off = told->reflectance_dB - known.shownReflectance_dB(event);
        const bool isWrong = std::abs(off) > kWrongReflectance_dB;
        ++count.reflectances;
        count.wrongReflectances += isWrong ? 1 : 0;
        if (isWrong && prints) {
            std::printf("  reflectance at %.1f: %.2f for %.2f, height %.3f\n", at,
                        told->reflectance_dB, known.shownReflectance_dB(event),
                        known.heightOf(event));
        }
    }

    void countReturnLosses(Count& count, bool prints) const
    {
        for (const double off :
             accuracy::sectionErrors(known, found, odd.instrument.backscatter_dB).returnLoss_dB) {
            const bool isWrong = std::abs(off) > kWrongReturnLoss_dB;
            ++count.returnLosses;
            count.wrongReturnLosses += isWrong ? 1 : 0;
            if (isWrong && prints) {
                std::printf("  return loss of a section off by %.2f\n", off);
            }
        }
    }

    std::mt19937_64 random;
    accuracy::OddLink odd;
    accuracy::Record record;
    KnownLink known;
    otdr::Trace trace;
    otdr::Detection found;
    std::vector<bool> isTold; ///< of each found event: it tells a true one
    std::vector<int> partner; ///< of each true event: what tells it
};

bool isFlawless(const Count& count)
{
    return count.steps == count.stepsFound && count.peaks == count.peaksFound
        && count.ends == count.endsFound && count.extra == 0 && count.wrongLosses == 0
        && count.wrongSums == 0 && count.wrongReflectances == 0 && count.wrongReturnLosses == 0;
}

void printRow(const char* name, const Count& count, int links)
{
    std::printf("%-16s %4d/%-4d %4d/%-4d %3d/%-3d  %5.2f %5.2f  %4d/%-4d %3d  %3d/%-4d %3d/%-4d\n",
                name, count.stepsFound, count.steps, count.peaksFound, count.peaks, count.endsFound,
                count.ends, static_cast<double>(count.largeExtra) / links,
                static_cast<double>(count.extra) / links, count.wrongLosses, count.losses,
                count.wrongSums, count.wrongReflectances, count.reflectances,
                count.wrongReturnLosses, count.returnLosses);
}

/// One link, or all where its number is 0, of one row.
int tellRow(const std::string& name, int only, const char* path)
{
    for (const accuracy::OddRow& row : accuracy::oddRows()) {
        if (name != row.name) {
            continue;
        }
        Count sum;
        for (int i = std::max(1, only); i <= (only > 0 ? only : kUsualLinks); ++i) {
            const Link link(row, i);
            Count count;
            link.count(count, false);
            if (!isFlawless(count) || only > 0) {
                std::printf("link %d\n", i);
            }
            link.count(sum, true);
            if (only > 0) {
                link.print();
            }
            if (path != nullptr && !link.write(path)) {
                std::fprintf(stderr, "%s: cannot be written\n", path);
                return 1;
            }
        }
        printRow(row.name, sum, only > 0 ? 1 : kUsualLinks);
        return 0;
    }
    std::fprintf(stderr, "%s: no such row\n", name.c_str());
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    const int links = argc > 1 ? std::atoi(argv[1]) : kUsualLinks;
    const bool isRow =
        argc > 1 && std::string(argv[1]).find_first_not_of("0123456789") != std::string::npos;
    if (isRow) {
        return tellRow(argv[1], argc > 2 ? std::atoi(argv[2]) : 0, argc > 3 ? argv[3] : nullptr);
    }
    std::printf("                     steps     peaks    ends     extra      wrong    wrong  wrong "
                "   wrong\n"
                "                     found/due                 large   all  losses   sums   refl. "
                "   return losses\n");
    for (const accuracy::OddRow& row : accuracy::oddRows()) {
        Count count;
        for (int i = 1; i <= std::max(1, links); ++i) {
            Link(row, i).count(count, false);
        }
        printRow(row.name, count, std::max(1, links));
    }
    return 0;
}
