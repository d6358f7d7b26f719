#pragma once

#include "platform/otdr/core/fibretrace.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace testing_support {

constexpr double kPulse = 20.0; ///< samples; of most of these fibres
constexpr double kSudden_dB = 3.0; ///< a change that may be an end

/// Darkness of 2 dB: every other sample shows no signal.
inline double dark_dB(double index)
{
    return static_cast<int>(index) % 2 == 0 ? 2.0 : 0.0;
}

/// A trace drawn from a formula, and what the search asks of it: the truth is the formula itself.
class DrawnFibre
{
public:
    using Level = std::function<double(double index)>; ///< dB

    /// Levels are rounded to thousandths of a decibel. `sigma_dB`: Gaussian noise on them.
    DrawnFibre(std::size_t samples, const otdr::SearchScale& scale, const Level& level,
               double sigma_dB = 0.0, std::uint64_t seed = 1)
        : drawn(traceOf(samples, level, sigma_dB, seed))
        , searched(*drawn, scale)
    {
    }

    [[nodiscard]] const otdr::FibreTrace& operator*() const { return searched; }

    [[nodiscard]] const otdr::FibreTrace* operator->() const { return &searched; }

    [[nodiscard]] otdr::FibreTrace& changed() { return searched; }

private:
    static std::shared_ptr<const otdr::Trace> traceOf(std::size_t samples, const Level& level,
                                                      double sigma_dB, std::uint64_t seed)
    {
        std::mt19937_64 random(seed);
        std::normal_distribution<double> noise;
        std::vector<std::uint16_t> counts(samples);
        for (std::size_t i = 0; i < samples; ++i) {
            const double scatter = sigma_dB > 0.0 ? sigma_dB * noise(random) : 0.0;
            const double raw = otdr::kNoSignal - 1000.0 * (level(static_cast<double>(i)) + scatter);
            counts[i] =
                static_cast<std::uint16_t>(std::lround(std::min(65535.0, std::max(0.0, raw))));
        }
        return std::make_shared<const otdr::Trace>(otdr::RawSamples(counts), otdr::kUsualDbPerCount,
                                                   otdr::TraceAxis {});
    }

    std::shared_ptr<const otdr::Trace> drawn;
    otdr::FibreTrace searched;
};

/// A scale whose receiver suits its pulse, with lines as long as the trace and no kilometres.
inline otdr::SearchScale scaleOf(double pulse, double kilometre = 0.0)
{
    return {pulse, 0.08 * pulse, 1e6, kilometre};
}

/// Fibre at 30 dB but for these stretches, with a pulse of 20 samples.
struct Raised
{
    double from;
    double to;
    double height_dB;
};

inline DrawnFibre withRaised(const std::vector<Raised>& stretches)
{
    return {4000, scaleOf(20.0), [=](double i) {
                double level = 30.0;
                for (const Raised& one : stretches) {
                    level += i >= one.from && i < one.to ? one.height_dB : 0.0;
                }
                return level;
            }};
}

/// The straight line at a level.
inline otdr::Line flatLine(double level_dB)
{
    otdr::Line line;
    line.level_dB = level_dB;
    line.samples = 20000; // more than any of these fibres has
    return line;
}

/// Level at an index of fibre that goes over from one level to another behind a foot, with a
/// reflection of a height, dB above the first, on it: powers add.
inline double eventLevel_dB(const otdr::PulseShape& shape, double behindFoot, double before_dB,
                            double behind_dB, double height_dB = 0.0)
{
    const double first = std::pow(10.0, before_dB / 5.0);
    const double second = std::pow(10.0, behind_dB / 5.0);
    const double light = (std::pow(10.0, height_dB / 5.0) - 1.0) * first;
    const double step = shape.step(behindFoot);
    return 5.0
        * std::log10(first * (1.0 - step) + second * step + light * shape.peak(behindFoot) + 1e-9);
}

struct DrawnEvent
{
    double at; ///< index of its foot
    double loss_dB;
    double height_dB = 0.0; ///< of a reflection, above the fibre before it
};

/// By how much events change the level of fibre at an index, dB.
inline double eventsLevel_dB(const otdr::PulseShape& shape, double index,
                             const std::vector<DrawnEvent>& events)
{
    double level_dB = 0.0;
    for (const DrawnEvent& event : events) {
        level_dB += eventLevel_dB(shape, index - event.at, 0.0, -event.loss_dB, event.height_dB);
    }
    return level_dB;
}

} // namespace testing_support
