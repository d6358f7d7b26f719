#include "platform/otdr/core/eventsearch.h"

#include "platform/otdr/core/eventfit.h"
#include "platform/otdr/core/eventscan.h"
#include "platform/otdr/core/fibrebehind.h"
#include "platform/otdr/core/reflectance.h"
#include "platform/otdr/core/risinglight.h"
#include "platform/otdr/core/timeconstant.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

namespace otdr {

namespace {

/// Scans offer more than is kept.
constexpr double kScanPart = 0.8;

/// Rounds of scanning what lies between the events found so far.
constexpr int kRounds = 3;

/// A receiver slower or faster than was thought by this factor is believed.
constexpr double kOtherReceiver = 2.0;

/// The flank of a reflection is read above so many dead zones of the fibre before it.
constexpr double kBeforePeakGaps = 6.0;

/// Losses that stand out by this many standard errors show the receiver; a few of them do. Another
/// time constant is taken if it leaves a tenth less, and less by so many standard deviations.
constexpr double kClear = 20.0;
constexpr std::size_t kMostClear = 4;
constexpr double kTrialFactor = 1.8;
constexpr double kFastestPulses = 0.01;
constexpr double kSlowestPulses = 2.0;
constexpr double kClearlyBetter = 0.1;
constexpr double kPlainlyBetter = 0.25;
constexpr double kChance = 5.0;
constexpr double kLeastSquares = 1e-12;

/// Noise that has passed the receiver is alike over so many of its time constants.
constexpr double kAlikeConstants = 2.0;

/// Reflections from this height on need no closer look; lower ones must have the shape of a pulse
/// between lines of so many dead zones, but for so many sigmas or this part of their height.
constexpr double kHigh_dB = 1.5;
constexpr double kBesideGaps = 2.0;
constexpr double kMisfit = 2.0;
constexpr double kMisfitPart = 0.2;

/// However weak a reflection may be that is listed, it stands as high as this: fibre is not even.
constexpr double kLeastPeak_dB = 0.02;

/// From this height on a reflection that is not listed tells the fibre on both sides, where the
/// light rises: looked at so many pulses behind its foot, for twice as long.
constexpr double kPlainPeak_dB = 0.2;
constexpr double kRisenPulses = 0.25;

/// Where a scan for reflections with lines on both sides has no room for the first, dead zones.
constexpr double kUnscannedGaps = 1.5;

/// Lines beside an event are sought in no less, however far apart the samples lie.
constexpr double kFewestSamples = 8.0;

/// From this wavelength on no fibre falls as steeply as those for 850 nm do.
constexpr int kLongWaves_nm = 1200;

SearchScale scaleOf(const Trace& trace, const Measurement& measurement,
                    const DetectionSettings& settings)
{
    const double interval_ns = trace.axis().sampleInterval_ns;
    const double spacing_m = interval_ns * measurement.metresPerNs;
    SearchScale scale;
    scale.pulse = std::max(1.0, measurement.pulse_ns / interval_ns);
    scale.timeConstant = std::max(PulseShape::kUsualTimeConstant * scale.pulse,
                                  PulseShape::kShortestTimeConstant_ns / interval_ns);
    scale.kilometre = spacing_m > 0.0 ? 1000.0 / spacing_m : 0.0;
    if (scale.kilometre > 0.0 && measurement.wavelength_nm >= kLongWaves_nm) {
        scale.steepest_dB = kSteepFibre_dBPerKm / scale.kilometre;
    }
    const auto size = static_cast<double>(trace.size());
    scale.longestWindow = spacing_m > 0.0
        ? std::min(size, std::max(kFewestSamples, settings.longestWindow_m / spacing_m))
        : size;
    return scale;
}

} // namespace

EventSearch::EventSearch(const Trace& trace, const Measurement& measurement,
                         const DetectionSettings& settings)
    : measurement(measurement)
    , settings(settings)
    , fibre(trace, scaleOf(trace, measurement, settings))
    , ends(findFibre(fibre, settings.end_dB))
    , sites(fibre, ends.first, ends.end)
{
    fibre.endNoiseAt(ends.end);
    forgetPlaces(); // what rises near the end is told by that noise
    learnFromPeaks();
    findAll();
    for (int round = 0; round < kRounds && learnNoise(); ++round) {
        findAll();
    }
    lookCloser();
    if (learnFromSteps()) {
        findAll();
    }
    if (sites.dropTails()) {
        sites.dropUnlikely(settings.loss_dB, settings.significance);
    }
    sites.lengthenLines();
    sites.takeTailsAway(settings.loss_dB, settings.significance);
}

/// The receiver as the reflections of the trace show it, where they do.
void EventSearch::learnFromPeaks()
{
    std::vector<double> constants;
    std::vector<Site> found = peaks({ends.first, ends.first, ends.end});
    std::sort(found.begin(), found.end(),
              [](const Site& one, const Site& other) { return one.at < other.at; });
    double from = ends.first;
    for (const Site& site : found) {
        const auto before =
            fibre.fit(std::max(from, site.at - kBeforePeakGaps * fibre.gap()), site.at - 1.0);
        const auto one = before ? timeConstantOf(fibre, *site.peak, before->line) : std::nullopt;
        if (one) {
            constants.push_back(*one);
        }
        from = site.behind;
    }
    if (constants.empty()) {
        return;
    }
    // A receiver that recovers from an overload is slower than it is.
    const double fastest = *std::min_element(constants.begin(), constants.end());
    const double shown = std::max(fastest, PulseShape::kUsualTimeConstant * fibre.scale().pulse);
    slowestByPeaks = kOtherReceiver * shown;
    const double thought = fibre.scale().timeConstant;
    if (shown > kOtherReceiver * thought || kOtherReceiver * shown < thought) {
        beginWith(shown);
    }
}

/// Begins anew with another time constant of the receiver, samples.
void EventSearch::beginWith(double timeConstant)
{
    fibre.setTimeConstant(timeConstant);
    const double end = ends.end;
    ends = findFibre(fibre, settings.end_dB);
    if (std::abs(ends.end - end) > fibre.gap()) {
        fibre.endNoiseAt(ends.end);
    }
    forgetPlaces();
}

/// Up to where the fibre is seen: what rises in the dead zone before the end is told with it.
double EventSearch::fibreEnd() const
{
    const std::vector<double> rises =
        risesIn(fibre, std::max(ends.first, ends.end - fibre.gap()), ends.end);
    return rises.empty() ? ends.end : std::min(rises.front(), ends.end);
}

void EventSearch::forgetPlaces()
{
    sites = EventSites(fibre, ends.first, fibreEnd());
    scannedForPeaks.clear();
    scannedForSteps.clear();
}

/// What the ramps at the clearest losses leave with a time constant: mean logarithm of squares.
double EventSearch::misfit(const std::vector<const Site*>& clear, double timeConstant) const
{
    const PulseShape shape(fibre.scale().pulse, timeConstant);
    double sum = 0.0;
    for (const Site* site : clear) {
        const StepFit fit =
            fitStep(fibre, shape, site->at, fibre.gap(), site->left->line, site->right->line);
        sum += std::log(std::max(fit.squares, kLeastSquares));
    }
    return sum / static_cast<double>(clear.size());
}

/// The longest time constant that a ramp may show, samples. What falls more slowly than reflections
/// let the receiver do is a tail, unless noise is alike for as long: then the instrument smooths
/// what it does not take for a reflection.
double EventSearch::slowestReceiver() const
{
    return std::min(kSlowestPulses * fibre.scale().pulse,
                    std::max(slowestByPeaks, fibre.noise().correlation() / kAlikeConstants));
}

/// The receiver with which the ramps at these losses fit best, from this one on: by steps while
/// they fit better, for the misfit has one least, then between the steps.
EventSearch::Receiver EventSearch::bestReceiver(const std::vector<const Site*>& clear,
                                                const Receiver& first) const
{
    const double fastest = PulseShape::kUsualTimeConstant * fibre.scale().pulse;
    const double slowest = slowestReceiver();
    Receiver best = first;
    const auto isBetter = [&](double trial) {
        const double left = misfit(clear, trial);
        const bool fitsBetter = left < best.misfit;
        best = fitsBetter ? Receiver {trial, left} : best;
        return fitsBetter;
    };
    for (double trial = first.timeConstant * kTrialFactor; trial < slowest && isBetter(trial);) {
        trial *= kTrialFactor;
    }
    for (double trial = first.timeConstant; trial > fastest;) {
        trial = std::max(fastest, trial / kTrialFactor);
        trial = isBetter(trial) ? trial : fastest;
    }
    const double between = std::sqrt(kTrialFactor);
    for (const double trial : {best.timeConstant * between, best.timeConstant / between}) {
        if (trial > fastest && trial < slowest) {
            isBetter(trial);
        }
    }
    return sharperReceiver(clear, best);
}

/// Another receiver that is faster than suits the pulse, if that leaves plainly less; else the
/// same.
EventSearch::Receiver EventSearch::sharperReceiver(const std::vector<const Site*>& clear,
                                                   const Receiver& usual) const
{
    Receiver best {usual.timeConstant, usual.misfit - kPlainlyBetter};
    const double pulse = fibre.scale().pulse;
    for (double part = PulseShape::kUsualTimeConstant / kTrialFactor; part > kFastestPulses;
         part /= kTrialFactor) {
        const double left = misfit(clear, part * pulse);
        best = left < best.misfit ? Receiver {part * pulse, left} : best;
    }
    return best.misfit < usual.misfit - kPlainlyBetter ? best : usual;
}

/// The receiver as the clearest losses show it. False where it is the one in use.
bool EventSearch::learnFromSteps()
{
    std::vector<const Site*> clear;
    for (const Site& site : sites.sites()) {
        if (!site.peak && site.left && site.right && site.statistic() > kClear) {
            clear.push_back(&site);
        }
    }
    std::sort(clear.begin(), clear.end(),
              [](const Site* a, const Site* b) { return a->statistic() > b->statistic(); });
    clear.resize(std::min(clear.size(), kMostClear));
    if (clear.empty()) {
        return false;
    }
    const double now = fibre.scale().timeConstant;
    const Receiver before {now, misfit(clear, now)};
    const Receiver best = bestReceiver(clear, before);
    // Of n samples that are no more than noise, one more parameter takes a part of 1 / n in the
    // mean.
    const double alike = std::clamp(kAlikeConstants * now, 1.0, fibre.noise().correlation());
    const double byChance =
        kChance * kChance * alike / (static_cast<double>(clear.size()) * rampSamples(fibre));
    const bool isOther = best.misfit < before.misfit - std::max(kClearlyBetter, byChance);
    if (isOther) {
        beginWith(best.timeConstant);
    }
    return isOther;
}

/// Where reflections of a stretch may stand, strongest first, and then what rises where lines on
/// both sides have no room: on a tail, and nearer to it than the windows of the scan are long.
std::vector<Candidate> EventSearch::offeredPeaks(const Stretch& stretch) const
{
    const double w = fibre.scale().pulse;
    std::vector<Candidate> offered =
        scanPeaks(fibre, stretch.clear, stretch.to, settings.significance);
    const double unscanned = stretch.clear + kUnscannedGaps * fibre.gap();
    for (const double foot : risesIn(fibre, stretch.from - w, std::min(stretch.to, unscanned))) {
        offered.push_back({foot, 0.0, w}); // how much it stands out is seen later
    }
    return offered;
}

/// Reflections of a stretch, strongest first, each as far as the next one lets it be seen.
std::vector<Site> EventSearch::peaks(const Stretch& stretch) const
{
    std::vector<Site> found;
    const double w = fibre.scale().pulse;
    for (const Candidate& one : offeredPeaks(stretch)) {
        const bool isKnown = std::any_of(found.begin(), found.end(), [&](const Site& site) {
            return one.at > site.at - w && one.at < site.behind + w;
        });
        if (isKnown) {
            continue;
        }
        double from = one.at - stretch.clear > fibre.gap() ? stretch.clear : stretch.from;
        double to = stretch.to;
        for (const Site& site : found) {
            from = site.behind <= one.at ? std::max(from, site.behind) : from;
            to = site.at > one.at ? std::min(to, site.at) : to;
        }
        if (isBehindALoss(fibre, one.at, from) && risesIn(fibre, one.at - w, one.at + w).empty()) {
            continue;
        }
        Site site = measured(one, from, to);
        if (site.at >= stretch.to) {
            continue; // what stands there is the end's
        }
        if (isReflection(site, from, to)) {
            found.push_back(site);
        }
    }
    return found;
}

/// The reflection that a candidate stands for, as it is between two indices.
Site EventSearch::measured(const Candidate& one, double from, double to) const
{
    Site site;
    site.peak = measurePeak(fibre, one.at, from, to);
    dropLowFeet(*site.peak, soughtHeight_dB());
    site.at = site.peak->feet.front();
    site.behind = site.peak->behind;
    site.peakStatistic =
        std::max(one.statistic, site.peak->height_dB() / fibre.noise().sigma_dB(site.at));
    return site;
}

/// Whether what was measured is a reflection that is looked for; takes foot and height of a low one
/// by its whole shape.
bool EventSearch::isReflection(Site& site, double from, double to) const
{
    return (site.peak->height_dB() > kHigh_dB || isLowPeak(site, from, to))
        && (site.peak->height_dB() >= listedHeight_dB() || rises(site, from));
}

/// Whether the shape of a pulse between two short lines is what stands at a place with a low
/// peak; takes its foot and height.
bool EventSearch::isLowPeak(Site& site, double from, double to) const
{
    const double gap = fibre.gap();
    const auto before = fibre.fit(std::max(from, site.at - kBesideGaps * gap), site.at - 1.0);
    const auto behind = fibre.fit(site.at + gap, std::min(to, site.at + (1.0 + kBesideGaps) * gap));
    if (!before || !behind || before->line.samples < 4 || behind->line.samples < 4) {
        return false;
    }
    const PeakFit fit = fitPeak(fibre, site.at, before->line, behind->line);
    const double sigma = fibre.noise().sigma_dB(site.at);
    const bool fits = fit.scatter_dB < std::max(kMisfit * sigma, kMisfitPart * fit.height_dB);
    if (!fits || fit.height_dB < soughtHeight_dB()
        || fit.height_dB < settings.significance * fit.error_dB || fit.foot <= from) {
        return false;
    }
    site.at = fit.foot;
    site.behind = std::max(site.behind, fit.foot + gap);
    site.peakStatistic = std::max(site.peakStatistic, fit.height_dB / fit.error_dB);
    site.peak = PeakGroup {{fit.foot}, {fit.height_dB}, site.behind};
    return true;
}

/// Whether the light itself rises above the fibre before a place, and not only above what a ramp
/// leaves of it.
bool EventSearch::rises(const Site& site, double from) const
{
    const double w = fibre.scale().pulse;
    const double foot = highestFoot(*site.peak);
    const double begin = foot + kRisenPulses * w;
    const double end = begin + std::max(1.0, 2.0 * kRisenPulses * w);
    const double middle = 0.5 * (begin + end);
    const auto before = fibre.fit(std::max(from, foot - kBesideGaps * fibre.gap()), foot - 1.0);
    if (!before) {
        return false;
    }
    const double error_dB =
        fibre.noise().sigma_dB(middle) * std::sqrt(fibre.noise().correlation() / (end - begin));
    return fibre.mean_dB(begin, end) - before->at(middle)
        > std::max(kLeastPeak_dB, settings.significance * error_dB);
}

/// The stretches between the places found so far that have not been scanned, but for a dead zone at
/// their ends; they are taken for scanned now.
std::vector<EventSearch::Stretch> EventSearch::notYetIn(std::vector<Stretch>& scanned) const
{
    std::vector<Stretch> open;
    for (std::size_t k = 0; k <= sites.sites().size(); ++k) {
        const Stretch stretch {sites.fibreFrom(k), sites.lineFrom(k), sites.fibreTo(k)};
        const bool isDone = std::any_of(scanned.begin(), scanned.end(), [&](const Stretch& other) {
            return std::abs(other.from - stretch.from) < fibre.gap()
                && std::abs(other.clear - stretch.clear) < fibre.gap()
                && std::abs(other.to - stretch.to) < fibre.gap();
        });
        if (!isDone) {
            open.push_back(stretch);
        }
    }
    scanned.insert(scanned.end(), open.begin(), open.end());
    return open;
}

/// Reflections between the places found so far.
void EventSearch::addPeaks()
{
    std::vector<Site> found;
    for (const Stretch& stretch : notYetIn(scannedForPeaks)) {
        const std::vector<Site> some = peaks(stretch);
        found.insert(found.end(), some.begin(), some.end());
    }
    sites.add(found);
}

/// Height of the weakest reflection that is sought: from a plain one the fibre on both sides is
/// told, listed or not.
double EventSearch::soughtHeight_dB() const
{
    return std::min(listedHeight_dB(), kPlainPeak_dB);
}

/// Height of the weakest reflection that is listed.
double EventSearch::listedHeight_dB() const
{
    return std::isnan(measurement.backscatter_dB)
        ? kLeastPeak_dB
        : std::max(kLeastPeak_dB,
                   peakHeight_dB(settings.reflectance_dB, measurement.backscatter_dB,
                                 measurement.pulse_ns));
}

/// What the scans offer between the places found so far.
void EventSearch::addSteps()
{
    std::vector<Site> found;
    for (const Stretch& stretch : notYetIn(scannedForSteps)) {
        for (const Candidate& one :
             scanSteps(fibre, stretch.from, stretch.to, kScanPart * settings.significance)) {
            Site site;
            site.standAt(one.at, fibre.gap());
            found.push_back(site);
        }
    }
    sites.add(found);
}

/// What the scans offer is added, and dropped again unless it holds between its neighbours.
void EventSearch::findAll()
{
    addPeaks();
    for (int round = 0; round < kRounds; ++round) {
        const std::size_t before = sites.sites().size();
        addSteps();
        sites.dropUnlikely(settings.loss_dB, kScanPart * settings.significance);
        sites.remeasurePeaks(soughtHeight_dB());
        sites.refine(fibre.gap());
        sites.mergePairs();
        sites.findCloseChanges(settings.significance);
        sites.findLossesInTails();
        sites.findReflections(listedHeight_dB(), settings.significance);
        addPeaks();
        sites.refine(0.5 * fibre.scale().pulse);
        sites.dropLowPeaks(soughtHeight_dB());
        sites.dropUnlikely(settings.loss_dB, settings.significance);
        if (sites.sites().size() == before) {
            break;
        }
    }
    sites.divideAtBends(settings.loss_dB, settings.significance);
    sites.refine(fibre.gap());
    // When no place moves any more: those that are one group are told by the fibre between them.
    sites.joinCrowded();
    sites.hideLowPeaks(listedHeight_dB());
    sites.dropUnlikely(settings.loss_dB, settings.significance);
}

} // namespace otdr
