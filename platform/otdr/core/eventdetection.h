#pragma once

#include "platform/otdr/core/linefit.h"

#include <limits>
#include <vector>

namespace otdr {

class Trace;

/// What the search must know of the measurement.
struct Measurement
{
    double pulse_ns = 0.0; ///< width of the pulse, > 0
    double metresPerNs = 0.0; ///< of fibre for a nanosecond of round-trip time
    double backscatter_dB =
        std::numeric_limits<double>::quiet_NaN(); ///< coefficient at 1 ns; NaN where unknown
    int wavelength_nm = 0; ///< of the light; 0 where unknown
};

/// What counts as an event. The defaults suit single-mode links.
struct DetectionSettings
{
    double loss_dB = 0.015; ///< smaller changes of level are not listed
    double reflectance_dB = -70.0; ///< weaker reflections are not listed
    double end_dB = 3.0; ///< the fibre may end where the level falls by this much

    /// An event stands out by at least so many standard errors. 5 by chance: twice in a million
    /// tests, and a trace of 30,000 samples makes about ten thousand.
    double significance = 5.0;

    double longestWindow_m = 5000.0; ///< of the lines beside an event
};

/// An event that was found, with what speaks for it. Indices count samples of the trace and may be
/// fractional; a value that could not be measured is NaN.
struct DetectedEvent
{
    static constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

    enum class Kind
    {
        Start, ///< of the span: the port, or what stands at 0 m
        Reflective,
        NonReflective,
        Gain, ///< the level rises: the fibre behind scatters more
        End,
    };

    /// What made it an event.
    enum class Evidence
    {
        Place, ///< the start: nothing needs to be seen there
        Loss, ///< the lines on both sides differ
        Peak, ///< light stands above them
        Foot, ///< a further rise within the dead zone of the event before
        Fall, ///< light ends
        Range, ///< the record or its light ends before the fibre does
    };

    Kind kind = Kind::NonReflective;
    Evidence evidence = Evidence::Loss;
    double index = 0.0; ///< of its foot, where the trace begins to change
    double loss_dB = kUnknown; ///< one way; of a group of events, told at its first
    double lossError_dB = kUnknown; ///< standard error: by noise, and by what lines through fibre
                                    ///< of this trace stray from it
    double reflectance_dB = kUnknown;
    double height_dB = kUnknown; ///< of its light alone above the fibre before it
    double hidden_dB = 0.0; ///< the peak may be so much higher than an overloaded receiver shows
    bool echo = false; ///< light on a detour between reflections: nothing is there
    int group = 0; ///< events of one group share a dead zone and a loss

    double stepStatistic = 0.0; ///< loss over the error that noise makes
    double peakStatistic = 0.0; ///< height over its standard error: of a sample, of a mean over a
                                ///< pulse or of its whole shape, whichever tells most
    Line before; ///< the fibre before it; no samples where it could not be fitted
    Line behind;
    double behindFrom = 0.0; ///< index from which the fibre behind is undisturbed

    /// Whether height and reflectance are lower bounds.
    [[nodiscard]] bool saturated() const { return hidden_dB > 0.0; }
};

/// The fibre between two neighbouring events or groups of events.
struct DetectedSection
{
    double from = 0.0; ///< index of the event before
    double to = 0.0; ///< index of the event behind
    double loss_dB = DetectedEvent::kUnknown; ///< between the lines at both: losses of sections and
                                              ///< events add up to that of the span
    double attenuation_dBPerKm =
        DetectedEvent::kUnknown; ///< loss over length; where an event hides
                                 ///< one end, slope of the line at the other
    double returnLoss_dB = DetectedEvent::kUnknown; ///< seen from its start
};

/// All that was found on a trace.
struct Detection
{
    std::vector<DetectedEvent> events; ///< in order; the start first where it has an index
    std::vector<DetectedSection> sections; ///< in order; echoes do not divide them
    double noiseFloor_dB = DetectedEvent::kUnknown; ///< level of light as strong as the RMS noise
    double end = DetectedEvent::kUnknown; ///< index of the end of the fibre; NaN where the record
                                          ///< does not reach it
    double spanLoss_dB = DetectedEvent::kUnknown; ///< from the start to the end, or to what
                                                  ///< hides the fibre in front of it
    double returnLoss_dB = DetectedEvent::kUnknown; ///< of the span, seen from its start
};

/// Finds the events of a trace: start and end of the fibre, reflections, losses and gains.
///
/// Noise, its correlation and the end of the fibre are estimated from the trace itself. Peaks are
/// sought as light above the fibre on both sides, losses as a distance between lines on both sides,
/// each against its standard error; what a line through both sides explains is dropped again,
/// weakest first. Feet are fitted with the shape of the pulse, losses by least squares. The same
/// trace gives the same events. Cost: proportional to the number of samples. Nothing is found on a
/// trace shorter than eight pulses or without a pulse width.
[[nodiscard]] Detection detectEvents(const Trace& trace, const Measurement& measurement,
                                     const DetectionSettings& settings = {});

} // namespace otdr
