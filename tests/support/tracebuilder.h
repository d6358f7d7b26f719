#pragma once

#include "platform/otdr/core/trace.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace testing_support {

struct Length
{
    double m = 0.0;
};

struct Decibels
{
    double dB = 0.0;
};

constexpr Length operator""_km(long double value)
{
    return {static_cast<double>(value) * 1000.0};
}

constexpr Length operator""_km(unsigned long long value)
{
    return {static_cast<double>(value) * 1000.0};
}

constexpr Length operator""_m(long double value)
{
    return {static_cast<double>(value)};
}

constexpr Length operator""_m(unsigned long long value)
{
    return {static_cast<double>(value)};
}

constexpr Decibels operator""_dB(long double value)
{
    return {static_cast<double>(value)};
}

constexpr Decibels operator""_dB(unsigned long long value)
{
    return {static_cast<double>(value)};
}

/// Makes the trace of a fibre from what happens along it, drawn straight in decibels: a sloping
/// line, steps that take one pulse, rectangular peaks of one pulse. What was put in is the truth to
/// be found again.
///
///     TraceBuilder().fibre(10_km).splice(2_km, 0.3_dB).noise(0.02_dB, 7).build()
class TraceBuilder
{
public:
    // The set-up, before or after the events.
    TraceBuilder& sampling(double interval_ns); ///< round trip; 10 to begin with
    TraceBuilder& pulse(double width_ns); ///< 100 to begin with
    TraceBuilder& launch(Decibels level); ///< of the fibre at 0 m; 45 dB to begin with
    TraceBuilder& attenuation(Decibels perKilometre); ///< 0.2 dB/km to begin with
    TraceBuilder& fibre(Length length); ///< 10 km to begin with; behind it there is no signal
    TraceBuilder& front(std::size_t samples); ///< dark samples before 0 m
    TraceBuilder& behind(std::size_t samples); ///< samples behind the end of the fibre
    TraceBuilder& noise(Decibels sigma,
                        std::uint64_t seed); ///< Gaussian, in decibels, on the fibre
    /// What noise looks like on a logarithmic scale, in the place of no signal at all: every other
    /// sample about the given level, the rest at the ceiling. Wants noise().
    TraceBuilder& noiseFloor(Decibels level);

    TraceBuilder& splice(Length at, Decibels loss);
    TraceBuilder& reflection(Length at, Decibels height); ///< above the fibre before it
    TraceBuilder& connector(Length at, Decibels loss, Decibels height);
    TraceBuilder& reflectingEnd(Decibels height); ///< of the fibre; above the fibre before it

    [[nodiscard]] std::vector<std::uint16_t> counts() const;
    [[nodiscard]] std::shared_ptr<const otdr::Trace> build() const;

    [[nodiscard]] double metresPerNs() const;
    [[nodiscard]] double indexOf(Length at) const; ///< sample index of a distance
    [[nodiscard]] double pulseSamples() const;

    /// Level without noise at a distance on the fibre, dB.
    [[nodiscard]] double trueLevel_dB(Length at) const;

private:
    struct Happening
    {
        Length at;
        Decibels loss;
        Decibels height;
    };

    double interval_ns = 10.0;
    double pulse_ns = 100.0;
    Decibels launchLevel {45.0};
    Decibels perKilometre {0.2};
    Length length {10000.0};
    std::size_t frontSamples = 0;
    std::size_t behindSamples = 0;
    Decibels sigma;
    std::uint64_t seed = 1;
    Decibels floorLevel;
    Decibels endHeight;
    std::vector<Happening> happenings;
};

} // namespace testing_support
