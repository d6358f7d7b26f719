#pragma once

#include "programs/wfgather/fibre.h"

#include <cstddef>
#include <vector>

namespace accuracy {

/// How an instrument sees a link. Places and lengths in samples.
struct Sight
{
    double interval_ns = 1.0; ///< round trip
    double firstSample_ns = 0.0;
    double pulse = 1.0;
    double gap = 1.0; ///< behind an event, until its ramp is over
    double launch_dB = 0.0; ///< level of the fibre at the port
    double noise_dB = 0.0; ///< level of light as strong as the RMS noise
    double correlation = 1.0; ///< what it makes of the variance of a mean
    double rounding_dB = 0.00029; ///< RMS, here of counts of 0.001 dB
    double run = 1.0; ///< samples that are rounded to the same count where there is no noise
    double fading_dB = 0.0; ///< RMS of coherent noise, alike for a pulse
    double offset = 0.0; ///< of darkness from no light, by the noise
    double overload_dB = 1e9; ///< above the port, from here on light is clipped
    double recovery = 0.0; ///< until the fibre is seen again behind what overloads
    double tailPart = 0.0; ///< of all light, that comes late
    double tailSamples = 1.0; ///< time constant of its coming
    double leastEcho_dB = -1e9; ///< echoes of a lower level are none
};

/// A link of which all is known, as an instrument sees it.
class KnownLink
{
public:
    /// Time constants of its recovery after which a receiver is back from an overload: less than
    /// 0.0001 of it is left.
    static constexpr double kRecovered = 10.0;

    KnownLink(const gather::Fibre& fibre, int wavelength_nm, const Sight& sight);

    /// All that there is to see, in order: what neither takes light nor reflects it is none.
    [[nodiscard]] const std::vector<gather::TruthEvent>& truth() const { return events; }

    [[nodiscard]] double indexOf(const gather::TruthEvent& event) const;
    [[nodiscard]] double metresOf(double index) const;
    [[nodiscard]] double endOf() const;
    [[nodiscard]] double portIndex() const;

    /// Width in samples.
    [[nodiscard]] double pulse() const { return sight.pulse; }

    /// Level of the fibre just before a place, free of noise, dB.
    [[nodiscard]] double levelBefore(double index) const;

    /// What the instrument shows of a level, dB; that of no light shows its offset.
    [[nodiscard]] double shown_dB(double level_dB) const;

    /// Loss of an event as the instrument shows it, dB.
    [[nodiscard]] double shownLoss_dB(std::size_t k) const;

    /// Height of the reflection of an event above the fibre, dB; 0 where it has none.
    [[nodiscard]] double heightOf(const gather::TruthEvent& event) const;

    /// Reflectance of an event as an instrument tells it that takes the fibre before it for one of
    /// the usual backscatter coefficient, dB; NaN where it has none.
    [[nodiscard]] double shownReflectance_dB(const gather::TruthEvent& event) const;

    /// More light than the instrument shows.
    [[nodiscard]] bool overloads(const gather::TruthEvent& event) const;

    /// Standard deviation of a sample at a level, dB.
    [[nodiscard]] double sigmaAt(double level_dB) const;

    /// Samples of undisturbed fibre on both sides of a true event, and those behind it that hold
    /// the receiver's recovery and light that comes late.
    struct Sides
    {
        double left = 0.0;
        double right = 0.0;
        double late = 0.0;
    };

    [[nodiscard]] Sides sidesOf(std::size_t k) const;

    /// Standard error of the loss by the two lines that the fibre allows, dB.
    [[nodiscard]] double boundOf(std::size_t k, const Sides& sides) const;

    /// Return loss of the fibre between two places, without reflections, seen from behind what
    /// stands at the first, dB.
    [[nodiscard]] double returnLossBetween(double from, double to, double backscatter_dB) const;

    /// Attenuation of the fibre between two places, dB/km; NaN where it is not the same everywhere
    /// there.
    [[nodiscard]] double attenuationBetween(double from, double to) const;

    /// Standard error of an attenuation by a line through what is seen of the fibre between two
    /// events, dB/km.
    [[nodiscard]] double attenuationBound(double from, double to) const;

private:
    [[nodiscard]] const gather::Section& sectionAt(double index) const;
    [[nodiscard]] double varianceAt(double level_dB) const;
    [[nodiscard]] bool isNothing(const gather::TruthEvent& event) const;
    [[nodiscard]] double lateBehind(const gather::TruthEvent& event) const;

    gather::Fibre fibre;
    int wavelength_nm;
    Sight sight;
    std::vector<gather::TruthEvent> events;
    std::vector<double> joints; ///< where fibres of different slopes meet
};

} // namespace accuracy
