#include "twomarkers/twomarkersresult.h"

#include "platform/otdr/screennumber.h"

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
        text = text.arg(screennumber::general(value));
    }
    return text;
}

QString TwoMarkersResult::formatted(Field field) const
{
    switch (field) {
    case A:
        return screennumber::fixed(xA, 1) + tr(" m");
    case B:
        return screennumber::fixed(xB, 1) + tr(" m");
    case Length:
        return screennumber::fixed(length(), 1) + tr(" m");
    case Loss:
        return screennumber::fixed(loss(), 2) + tr(" dB");
    case Attenuation:
        return screennumber::fixed(attenuation(), 3) + tr(" dB/km");
    case Reflection:
        return loss() >= 0.0 ? QString("-") : screennumber::fixed(reflection, 2) + tr(" dB");
    case ORL:
        return screennumber::fixed(orl, 2) + tr(" dB");
    }
    return {};
}

} // namespace Waveform
