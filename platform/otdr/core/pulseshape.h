#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace otdr {

/// What a receiver makes of a rectangular pulse, by the sample: how the trace goes over from one
/// level to another behind a loss, and how it rises and falls at a reflection.
///
/// The edges of the pulse are rounded by two boxes of a tenth of its width each, or of less where
/// the receiver is faster than suits the pulse, and by the single pole of the receiver. Nothing
/// changes before the event itself.
class PulseShape
{
public:
    /// Time constant of a receiver whose bandwidth suits the pulse, pulses, and the least that is
    /// thought of where the trace does not tell it.
    static constexpr double kUsualTimeConstant = 0.08;
    static constexpr double kShortestTimeConstant_ns = 1.0;

    /// pulse: width in samples, > 0; timeConstant: of the receiver, samples.
    PulseShape(double pulse, double timeConstant);

    /// Width in samples.
    [[nodiscard]] double pulse() const { return width; }

    /// Part of a change of level that shows `behind` samples behind the event; 0 before it, 1 far
    /// behind it.
    [[nodiscard]] double step(double behind) const { return at(steps, behind); }

    /// Fibre whose light falls as exp(-decay x) from sample to sample.
    class Fall
    {
    public:
        Fall(const PulseShape& shape, double decay);

    private:
        friend class PulseShape;
        double tilt; ///< decay within a pulse, as far as it is believed
        double whole; ///< what the pulse shows of such a fibre
    };

    /// What the pulse shows of a change of level at a place, for fibres that fall in any way.
    struct Passed
    {
        double part = 0.0;
        double moment = 0.0;
    };

    [[nodiscard]] Passed passed(double behind) const
    {
        const double part = step(behind);
        return {part, behind < lastArea ? behind * part - at(areas, behind) : delay};
    }

    /// As step() in a falling fibre: what the pulse has nearer by counts for more. To the first
    /// order of the decay within a pulse; steeper ones, by more than half of it, are taken for
    /// that.
    [[nodiscard]] static double step(const Passed& passed, const Fall& fall)
    {
        return std::clamp((passed.part + fall.tilt * passed.moment) / fall.whole, 0.0, 1.0);
    }

    [[nodiscard]] double step(double behind, double decay) const
    {
        return behind > 0.0 ? step(passed(behind), Fall(*this, decay)) : 0.0;
    }

    /// From so many samples behind an event on, nothing more changes.
    [[nodiscard]] double over() const { return lastArea; }

    /// Part of the height of a reflection that shows `behind` samples behind the reflector.
    [[nodiscard]] double peak(double behind) const
    {
        return at(rises, behind) - at(rises, behind - width);
    }

    /// Where the rising edge of a reflection reaches this part (0 .. 1) of its height, samples
    /// behind the reflector.
    [[nodiscard]] double riseTo(double part) const;

    /// Where half of a change of level shows, samples behind the event: as far as the fibre lies
    /// before a sample that it is seen in.
    [[nodiscard]] double centre() const { return half; }

    /// Behind an event by so many samples, 99.9 % of it are over.
    [[nodiscard]] double extent() const { return length; }

private:
    [[nodiscard]] double at(const std::vector<double>& table, double behind) const
    {
        if (!(behind > 0.0)) {
            return 0.0;
        }
        const double place = behind * cellsPerSample;
        const auto index = static_cast<std::size_t>(place);
        if (index + 1 >= table.size()) {
            return 1.0;
        }
        const double part = place - static_cast<double>(index);
        return table[index] + part * (table[index + 1] - table[index]);
    }

    double width;
    double cell; ///< samples between two entries of the tables
    double cellsPerSample;
    double length = 0.0;
    double half = 0.0;
    std::vector<double> rises; ///< the edge: what a step of the light becomes
    std::vector<double> steps; ///< its mean over the pulse
    std::vector<double> areas; ///< samples' worth of step up to each entry
    double lastArea = 0.0; ///< where the tables end
    double delay = 0.0; ///< by which a step comes late, in the mean
};

} // namespace otdr
