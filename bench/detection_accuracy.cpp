// What the detection finds on simulated links whose truth is known, as a table.
//
//   detection_accuracy [TRACES]
//   detection_accuracy ROW LINK
//
// TRACES links are drawn for each row (25 without it), always the same ones. With the name of a row
// and the number of one of its links, what goes wrong there is told with all that was found. What
// is told of events is told of those that the row's noise lets be seen: steps of eight standard
// errors of the lines beside them, and of no less than the smallest loss that is listed; peaks of
// six standard deviations of a sample above the fibre; the end of the fibre where the fibre stands
// 3 dB above the noise there. "alone" are events with nothing else within four dead zones.

#include "bench/accuracyfigures.h"
#include "bench/accuracylinks.h"
#include "bench/knownlink.h"
#include "bench/knownsections.h"
#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/returnloss.h"
#include "platform/otdr/core/trace.h"
#include "programs/wfgather/fibre.h"
#include "programs/wfgather/receiver.h"
#include "programs/wfgather/simulatedtrace.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using accuracy::Figures;
using accuracy::kBackscatter_dB;
using accuracy::kIor;
using accuracy::kMeasuring_s;
using accuracy::KnownLink;
using accuracy::Row;
using gather::TruthEvent;
using otdr::DetectedEvent;

constexpr int kWavelength_nm = 1550;
constexpr double kFewestOfLine = 8.0; // samples
constexpr double kNoiseLevel_dB = 6.0; // of the simulated instrument

/// One link, its trace, what is on it and what was found.
class Link
{
public:
    Link(const Row& row, std::uint64_t seed)
        : row(row)
        , random(seed)
        , fibre(accuracy::drawLink(row, random))
        , source(fibre, requestFor(row, seed))
    {
        source.measure(kMeasuring_s);
        const otdr::Snapshot snapshot = source.snapshot();
        trace = std::make_unique<otdr::Trace>(
            snapshot.samples, snapshot.dbPerCount(),
            otdr::TraceAxis {snapshot.sampleInterval_ns, snapshot.firstSample_ns});
        interval_ns = snapshot.sampleInterval_ns;
        found = otdr::detectEvents(
            *trace, {row.pulse_ns, otdr::metresPerNs(kIor), kBackscatter_dB, kWavelength_nm});
        pulse = row.pulse_ns / interval_ns;
        const double tau = gather::timeConstant_ns(row.pulse_ns);
        const double alike = std::exp(-interval_ns / tau);
        correlation = (1.0 + alike) / (1.0 - alike);
        gap = 1.5 * pulse + 2.0;
        known = std::make_unique<KnownLink>(fibre, kWavelength_nm, sight());
    }

    void count(Figures& figures, bool prints)
    {
        std::vector<bool> isTrue(found.events.size(), false);
        const double limit = known->endOf();
        for (std::size_t k = 0; k < known->truth().size(); ++k) {
            const TruthEvent& event = known->truth()[k];
            const DetectedEvent* nearest = nearestTo(event, isTrue);
            if (event.ghost) {
                countGhost(k, nearest, figures);
            } else if (event.end) {
                countEnd(event, nearest, figures, prints);
            } else if (event.time_ns / interval_ns < limit) {
                countEvent(k, nearest, figures, prints);
            }
        }
        double sum = 0.0;
        for (std::size_t i = 0; i < found.events.size(); ++i) {
            const DetectedEvent& event = found.events[i];
            const bool counts = !isTrue[i] && !event.echo
                && event.kind != DetectedEvent::Kind::Start
                && event.evidence != DetectedEvent::Evidence::Range;
            figures.extra += counts ? 1 : 0;
            if (counts && prints) {
                std::printf("  extra at %.1f: loss %.4f T %.1f Tp %.1f R %.1f (end %.1f)\n",
                            event.index, event.loss_dB, event.stepStatistic, event.peakStatistic,
                            event.reflectance_dB, limit);
            }
            sum += std::isnan(event.loss_dB) || event.echo ? 0.0 : event.loss_dB;
        }
        for (const otdr::DetectedSection& section : found.sections) {
            sum += std::isnan(section.loss_dB) ? 0.0 : section.loss_dB;
        }
        if (!std::isnan(found.spanLoss_dB)) {
            figures.sumOff_dB.push_back(sum - found.spanLoss_dB);
        }
        countReturnLoss(figures);
        countSections(figures);
    }

    /// All that is on the link and all that was found.
    void print() const
    {
        for (const TruthEvent& event : known->truth()) {
            std::printf("  true  %9.1f  loss %8.4f  R %7.1f  level %6.2f%s%s\n",
                        known->indexOf(event), event.apparentLoss_dB, event.reflectance_dB,
                        known->levelBefore(known->indexOf(event)), event.ghost ? "  echo" : "",
                        event.end ? "  end" : "");
        }
        for (const DetectedEvent& event : found.events) {
            std::printf("  found %9.1f  loss %8.4f +- %.4f  R %7.1f  T %.1f  Tp %.1f%s\n",
                        event.index, event.loss_dB, event.lossError_dB, event.reflectance_dB,
                        event.stepStatistic, event.peakStatistic, event.echo ? "  echo" : "");
        }
    }

private:
    /// What a true event must look like on the trace.
    struct Expected
    {
        double level_dB = 0.0; ///< of the fibre before it
        double sigma_dB = 0.0; ///< of a sample there
        double bound_dB = 0.0; ///< standard error of its loss by the lines beside it, if any
        double height_dB = 0.0; ///< of its peak
        bool isPeak = false; ///< told by its peak; otherwise by its step
    };

    static gather::SimulationRequest requestFor(const Row& row, std::uint64_t seed)
    {
        gather::SimulationRequest request;
        request.params.wavelength_nm = kWavelength_nm;
        request.params.ior = kIor;
        request.params.distance_m = row.length_km * 1000.0;
        request.params.pulse_ns = static_cast<int>(row.pulse_ns);
        request.params.backscatter_dB = kBackscatter_dB;
        request.seed = seed;
        return request;
    }

    [[nodiscard]] accuracy::Sight sight() const
    {
        accuracy::Sight seen;
        seen.interval_ns = interval_ns;
        seen.pulse = pulse;
        seen.gap = gap;
        seen.launch_dB = source.launchLevel_dB();
        seen.noise_dB = kNoiseLevel_dB;
        seen.correlation = correlation;
        seen.overload_dB = gather::kSaturation_dB;
        seen.recovery = KnownLink::kRecovered * gather::kRecoveryPulses * pulse;
        seen.tailPart = gather::kTailPart;
        seen.tailSamples =
            gather::kTailTimeConstants * gather::timeConstant_ns(row.pulse_ns) / interval_ns;
        return seen;
    }

    /// The found event within a pulse of a true one; marks all there as true.
    [[nodiscard]] const DetectedEvent* nearestTo(const TruthEvent& event,
                                                 std::vector<bool>& isTrue) const
    {
        const DetectedEvent* nearest = nullptr;
        for (std::size_t i = 0; i < found.events.size(); ++i) {
            const double off = std::abs(found.events[i].index - known->indexOf(event));
            if (off <= std::max(pulse, 2.0)) {
                isTrue[i] = true;
                const bool isNearer =
                    nearest == nullptr || off < std::abs(nearest->index - known->indexOf(event));
                nearest = isNearer && found.events[i].kind != DetectedEvent::Kind::Start
                    ? &found.events[i]
                    : nearest;
            }
        }
        return nearest;
    }

    void countEvent(std::size_t k, const DetectedEvent* nearest, Figures& figures,
                    bool prints) const
    {
        const TruthEvent& event = known->truth()[k];
        const KnownLink::Sides sides = known->sidesOf(k);
        const double fewest = std::min(2.0 * gap, 4500.0 / known->metresOf(1.0));
        if (known->indexOf(event) < 3.0 * gap || sides.left < fewest
            || sides.right + sides.late < fewest) {
            return;
        }
        Expected expected;
        expected.level_dB = known->levelBefore(known->indexOf(event));
        expected.sigma_dB = known->sigmaAt(expected.level_dB);
        const bool hasLines = std::min(sides.left, sides.right) >= kFewestOfLine;
        expected.bound_dB = hasLines ? known->boundOf(k, sides) : NAN;
        expected.height_dB = known->heightOf(event);
        const bool isStep = std::abs(event.apparentLoss_dB) >= 8.0 * expected.bound_dB
            && std::abs(event.apparentLoss_dB) >= 0.02;
        expected.isPeak = expected.height_dB >= 6.0 * expected.sigma_dB
            && expected.level_dB > kNoiseLevel_dB + 3.0;
        if (!isStep && !expected.isPeak) {
            return;
        }
        (expected.isPeak ? figures.peaks : figures.steps) += 1;
        if (nearest != nullptr) {
            countFound(event, expected, *nearest, figures, prints);
        } else if (prints) {
            std::printf("  missed at %.1f: loss %.4f (%.1f bounds) height %.3f (%.1f sigma), "
                        "level %.1f\n",
                        known->indexOf(event), event.apparentLoss_dB,
                        event.apparentLoss_dB / expected.bound_dB, expected.height_dB,
                        expected.height_dB / expected.sigma_dB, expected.level_dB);
        }
    }

    void countFound(const TruthEvent& event, const Expected& expected, const DetectedEvent& nearest,
                    Figures& figures, bool prints) const
    {
        (expected.isPeak ? figures.peaksFound : figures.stepsFound) += 1;
        const double off = nearest.index - known->indexOf(event);
        if (expected.isPeak) {
            figures.peakOff.push_back(off);
            countReflectance(event, expected.height_dB, expected.sigma_dB, nearest, figures);
        } else {
            const double least = expected.sigma_dB * std::sqrt(pulse * correlation)
                / std::abs(event.apparentLoss_dB);
            figures.stepOff.push_back(off / least);
        }
        if (!std::isnan(nearest.loss_dB)) {
            figures.lossOff_dB.push_back(nearest.loss_dB - event.apparentLoss_dB);
            const double inBounds = (nearest.loss_dB - event.apparentLoss_dB) / expected.bound_dB;
            if (!std::isnan(inBounds)) {
                figures.lossOff.push_back(inBounds);
            }
            if (prints && std::abs(inBounds) > 5.0) {
                std::printf("  loss at %.1f: %.4f for %.4f, bound %.5f, off %.2f samples, h %.2f\n",
                            known->indexOf(event), nearest.loss_dB, event.apparentLoss_dB,
                            expected.bound_dB, off, expected.height_dB);
            }
        }
    }

    /// Of reflections that the receiver shows whole, and well above its noise.
    void countReflectance(const TruthEvent& event, double height_dB, double sigma_dB,
                          const DetectedEvent& nearest, Figures& figures) const
    {
        const bool counts = !known->overloads(event) && height_dB > 20.0 * sigma_dB
            && !std::isnan(nearest.reflectance_dB);
        if (counts) {
            figures.reflectanceOff_dB.push_back(nearest.reflectance_dB
                                                - known->shownReflectance_dB(event));
        }
    }

    void countEnd(const TruthEvent& event, const DetectedEvent* nearest, Figures& figures,
                  bool prints) const
    {
        const double level_dB = known->levelBefore(known->indexOf(event));
        if (level_dB < kNoiseLevel_dB + 3.0) {
            return;
        }
        ++figures.ends;
        const bool isFound = nearest != nullptr && nearest->kind == DetectedEvent::Kind::End;
        figures.endsFound += isFound ? 1 : 0;
        if (isFound) {
            countReflectance(event, known->heightOf(event), known->sigmaAt(level_dB), *nearest,
                             figures);
        }
        if (!isFound && prints) {
            std::printf("  end at %.1f missed, level %.1f; found %.1f\n", known->indexOf(event),
                        known->levelBefore(known->indexOf(event)), found.end);
        }
    }

    /// An echo is told from an event where it is told at all; where it is not, it is a false alarm.
    void countGhost(std::size_t k, const DetectedEvent* nearest, Figures& figures) const
    {
        const bool isAlone = std::none_of(
            known->truth().begin(), known->truth().end(), [&](const TruthEvent& other) {
                return !other.ghost
                    && std::abs(known->indexOf(other) - known->indexOf(known->truth()[k]))
                    < 2.0 * pulse + 2.0;
            });
        if (isAlone && nearest != nullptr) {
            ++figures.ghosts;
            figures.ghostsKnown += nearest->echo ? 1 : 0;
            figures.extra += nearest->echo ? 0 : 1;
        }
    }

    /// Against the sum over the true levels, where no peak is beyond what the receiver shows.
    void countReturnLoss(Figures& figures) const
    {
        double sum =
            std::pow(10.0, -0.1 * known->returnLossBetween(0.0, known->endOf(), kBackscatter_dB));
        bool isWhole = true;
        for (const TruthEvent& event : known->truth()) {
            if (event.ghost || std::isnan(event.reflectance_dB)) {
                continue;
            }
            const double index = known->indexOf(event);
            const double lost = source.launchLevel_dB() - known->levelBefore(index);
            const double height =
                otdr::peakHeight_dB(event.reflectance_dB, kBackscatter_dB, row.pulse_ns);
            isWhole = isWhole && height - lost < gather::kSaturation_dB;
            sum += std::pow(10.0, (event.reflectance_dB - 2.0 * lost) / 10.0);
        }
        if (isWhole && !std::isnan(found.returnLoss_dB)) {
            figures.returnLossOff_dB.push_back(found.returnLoss_dB + 10.0 * std::log10(sum));
        }
    }

    void countSections(Figures& figures) const
    {
        const auto append = [](const std::vector<double>& from, std::vector<double>& to) {
            to.insert(to.end(), from.begin(), from.end());
        };
        const accuracy::SectionErrors errors =
            accuracy::sectionErrors(*known, found, kBackscatter_dB);
        append(errors.returnLoss_dB, figures.sectionsReturnLossOff_dB);
        append(errors.attenuation, figures.attenuationOff);
    }

    Row row;
    std::mt19937_64 random;
    gather::Fibre fibre;
    gather::SimulatedTrace source;
    std::unique_ptr<otdr::Trace> trace;
    std::unique_ptr<KnownLink> known;
    otdr::Detection found;
    double interval_ns = 1.0;
    double pulse = 1.0;
    double correlation = 1.0;
    double gap = 1.0;
};

} // namespace

int main(int argc, char** argv)
{
    const std::string onlyRow = argc > 2 ? argv[1] : "";
    const int onlyLink = argc > 2 ? std::atoi(argv[2]) : -1;
    const int traces = argc == 2 ? std::max(1, std::atoi(argv[1])) : std::max(25, onlyLink);
    accuracy::printHead();
    for (const Row& row : accuracy::rows()) {
        if (!onlyRow.empty() && onlyRow != row.name) {
            continue;
        }
        Figures figures;
        for (int i = 1; i <= traces; ++i) {
            if (onlyLink >= 0 && i != onlyLink) {
                continue;
            }
            Link link(row, static_cast<std::uint64_t>(i));
            link.count(figures, onlyLink >= 0);
            if (onlyLink >= 0) {
                link.print();
            }
        }
        printRow(row.name, figures, onlyLink >= 0 ? 1 : traces);
    }
    return 0;
}
