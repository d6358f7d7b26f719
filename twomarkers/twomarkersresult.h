#pragma once

#include <QCoreApplication>
#include <QLineF>
#include <QMetaType>
#include <QString>

namespace Waveform {

/// What was measured between two markers, A and B, which may stand in either order. Distances in m,
/// levels in dB.
struct TwoMarkersResult
{
    Q_DECLARE_TR_FUNCTIONS(TwoMarkersResult)

public:
    /// What is shown of a result, in the order of the lines on the screen.
    enum Field
    {
        A,
        B,
        Length,
        Loss,
        Attenuation,
        Reflection,
        ORL // NOLINT(readability-identifier-naming): a given name
    };

    TwoMarkersResult() = default;
    TwoMarkersResult(double xA, double xB, double yA, double yB, double reflection, double orl);

    /// m, in single precision: more digits than a distance has.
    [[nodiscard]] double length() const;

    [[nodiscard]] double leftX() const { return xA < xB ? xA : xB; }

    [[nodiscard]] double rightX() const { return xA > xB ? xA : xB; }

    [[nodiscard]] double leftY() const { return xA < xB ? yA : yB; } ///< with both at one place yB

    [[nodiscard]] double rightY() const { return xA > xB ? yA : yB; } ///< with both at one place yB

    /// Whether there is fibre between the markers, which has a return loss.
    [[nodiscard]] bool isStretch() const { return length() > 0.0 && leftX() >= 0.0; }

    /// dB, positive when power falls towards the right.
    [[nodiscard]] double loss() const { return leftY() - rightY(); }

    /// dB/km; 0 where there is no length.
    [[nodiscard]] double attenuation() const;

    /// The result as lines of text. Its template counts the attenuation twice, so that the lines of
    /// reflection and return loss show the value before theirs, and Qt warns of the last one.
    [[nodiscard]] QString formatted() const;

    /// One value with its unit; empty for what is no field.
    [[nodiscard]] QString formatted(Field field) const;

    double xA = 0.0;
    double xB = 0.0;
    double yA = 0.0;
    double yB = 0.0;
    double reflection = 0.0; ///< at the left marker, dB; 0 where it was not computed
    double orl = 0.0; ///< dB; 0 where it was not computed
    QLineF lsaLine; ///< m, dB, from marker A to marker B; null where the levels are the trace's own
};

} // namespace Waveform

Q_DECLARE_METATYPE(Waveform::TwoMarkersResult)
