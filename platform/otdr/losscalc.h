#pragma once

class Reflectogram;

/// Loss of an event by two lines fitted to the fibre before and behind it: as the detection
/// measures it where it finds one there, or else by what fibre there is up to the next events.
class LossCalc
{
public:
    /// \param position sample index of the event, counted from the sample at 0 m
    LossCalc(long position, const Reflectogram& refl);

    [[nodiscard]] double loss() const
    {
        return loss_dB;
    } ///< dB, positive when power falls; NaN where one of the levels is, and but for the first of
      ///< several events in one dead zone

    [[nodiscard]] double reflIn() const
    {
        return in_dB;
    } ///< level of the line before, at the event, dB; NaN where none fits

    [[nodiscard]] double reflOut() const
    {
        return out_dB;
    } ///< level of the line behind, at the event, dB; NaN where none fits

private:
    double loss_dB;
    double in_dB;
    double out_dB;
};
