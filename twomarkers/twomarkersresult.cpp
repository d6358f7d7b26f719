#include "twomarkers/twomarkersresult.h"

#include <QObject>

#include <cmath>

namespace Waveform {

TwoMarkersResult::TwoMarkersResult(double xA, double xB, double yA, double yB, double reflection,
                                   double orl)
    : xA(xA)
    , xB(xB)
    , yA(yA)
    , yB(yB)
    , reflection(reflection)
    , orl(orl)
{
}

double TwoMarkersResult::length() const
{
    return std::abs(static_cast<float>(xA - xB));
}

double TwoMarkersResult::attenuation() const
{
    const double length_m = length();
    return length_m > 0.0 ? loss() * 1000.0 / length_m : 0.0;
}

QString TwoMarkersResult::formatted() const
{
    // One at a time: each value takes the places of the lowest number that is left.
    QString text = QObject::tr("A: %1 m\nB: %2 m\nL: %3 m\nLoss: %4 dB\nAtt: %5 dB/km\n"
                               "Reflection: %5 dB\nORL: %6\n");
    for (const double value : {xA, xB, length(), loss(), attenuation(), reflection, orl}) {
        text = text.arg(value);
    }
    return text;
}

QString TwoMarkersResult::formatted(Field field) const
{
    switch (field) {
    case A:
        return QString::number(xA, 'f', 1) + tr(" m");
    case B:
        return QString::number(xB, 'f', 1) + tr(" m");
    case Length:
        return QString::number(length(), 'f', 1) + tr(" m");
    case Loss:
        return QString::number(loss(), 'f', 2) + tr(" dB");
    case Attenuation:
        return QString::number(attenuation(), 'f', 3) + tr(" dB/km");
    case Reflection:
        return loss() >= 0.0 ? QString("-") : QString::number(reflection, 'f', 2) + tr(" dB");
    case ORL:
        return QString::number(orl, 'f', 2) + tr(" dB");
    }
    return {};
}

} // namespace Waveform
