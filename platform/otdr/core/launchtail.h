#pragma once

#include "platform/otdr/core/shortfibre.h"

#include <optional>

namespace otdr {

/// The launch may disturb the receiver for this long, pulses.
constexpr double kLongestLaunchPulses = 30.0;

/// Tells the reflection of the port and its tail from the fibre behind it.
class LaunchTail
{
public:
    /// Refers to the trace. threshold_dB: a change of so much is sudden.
    LaunchTail(const FibreTrace& trace, double threshold_dB);

    /// The first index at which the launch is over; that of the first level light where the fibre
    /// changes suddenly before.
    [[nodiscard]] double over() const;

    /// Whether what stands from a reflection, the port's or one with its foot here, to an index is
    /// no more than its tail: light that falls all the way. Of the port, too little to tell is
    /// fibre, and so is what stays at its top for longer than an overload holds it there.
    [[nodiscard]] bool reaches(double foot, double to) const;

private:
    [[nodiscard]] double level(double index) const;
    [[nodiscard]] double risenTo(double level_dB, double from, double to) const;
    [[nodiscard]] std::optional<double> fallBehind(double top, double risen) const;
    [[nodiscard]] std::optional<double> fibreBeforeLoss(double settled, double most_dB) const;
    [[nodiscard]] bool isFibre(double top, double risen, double fallen) const;
    [[nodiscard]] double topOver(double foot, double to) const;

    const FibreTrace& trace;
    ShortFibre piece;
    double w;
};

} // namespace otdr
