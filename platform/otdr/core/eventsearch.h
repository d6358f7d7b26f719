#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/eventscan.h"
#include "platform/otdr/core/eventsites.h"
#include "platform/otdr/core/fibreend.h"
#include "platform/otdr/core/fibretrace.h"

#include <limits>
#include <vector>

namespace otdr {

/// The search for the places of a trace where something happens.
///
/// First the ends of the fibre, then what stands above it, then what changes its level; between the
/// places found so far it is repeated until nothing is added. What the clearest reflections and
/// losses tell of the receiver is used for the others.
class EventSearch
{
public:
    /// Searches at once. The trace must outlive it.
    EventSearch(const Trace& trace, const Measurement& measurement,
                const DetectionSettings& settings);
    EventSearch(const EventSearch&) = delete; // the places refer to the trace beside them
    EventSearch& operator=(const EventSearch&) = delete;

    [[nodiscard]] const FibreTrace& trace() const { return fibre; }

    [[nodiscard]] const FibreExtent& extent() const { return ends; }

    [[nodiscard]] const EventSites& places() const { return sites; }

private:
    void learnFromPeaks();
    bool learnFromSteps();
    void beginWith(double timeConstant);
    [[nodiscard]] double misfit(const std::vector<const Site*>& clear, double timeConstant) const;

    struct Receiver
    {
        double timeConstant; ///< samples
        double misfit;
    };

    [[nodiscard]] double slowestReceiver() const;
    [[nodiscard]] Receiver bestReceiver(const std::vector<const Site*>& clear,
                                        const Receiver& first) const;
    [[nodiscard]] Receiver sharperReceiver(const std::vector<const Site*>& clear,
                                           const Receiver& usual) const;

    /// A stretch of fibre between two places; up to `clear` there is a tail on it.
    struct Stretch
    {
        double from;
        double clear;
        double to;
    };

    [[nodiscard]] std::vector<Candidate> offeredPeaks(const Stretch& stretch) const;
    [[nodiscard]] std::vector<Site> peaks(const Stretch& stretch) const;
    [[nodiscard]] Site measured(const Candidate& one, double from, double to) const;
    [[nodiscard]] bool isReflection(Site& site, double from, double to) const;
    [[nodiscard]] bool isLowPeak(Site& site, double from, double to) const;
    [[nodiscard]] bool rises(const Site& site, double from) const;
    [[nodiscard]] double soughtHeight_dB() const;
    [[nodiscard]] double listedHeight_dB() const;
    bool learnNoise();
    [[nodiscard]] double fibreEnd() const;
    void forgetPlaces();
    void lookCloser();
    [[nodiscard]] bool loses() const;
    [[nodiscard]] bool strayingHides(const NoiseProfile& noise) const;
    [[nodiscard]] std::vector<Disturbance> disturbances() const;
    void addPeaks();
    void addSteps();
    void findAll();

    [[nodiscard]] std::vector<Stretch> notYetIn(std::vector<Stretch>& scanned) const;

    Measurement measurement;
    DetectionSettings settings;
    FibreTrace fibre;
    FibreExtent ends;
    EventSites sites;
    /// Longest time constant of the receiver that reflections leave open, samples.
    double slowestByPeaks = std::numeric_limits<double>::infinity();
    std::vector<Stretch> scannedForPeaks;
    std::vector<Stretch> scannedForSteps;
};

} // namespace otdr
