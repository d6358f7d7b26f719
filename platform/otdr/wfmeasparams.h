#pragma once

#include <QMetaType>
#include <QtGlobal>

/// The parameters of a measurement, copied by value.
struct WfMeasParams
{
    double ior = 1.5; ///< group index of the fibre
    double helix = 0.0; ///< percent by which the fibre is longer than the cable
    double distance = 10000.0; ///< range, m
    quint16 wavelength = 1310; ///< nm
    quint16 pulse = 1000; ///< ns
    double rbs = -66.3; ///< backscatter coefficient, dB at 1 ns
    qint32 duration = 15; ///< averaging time, s; 0 means realtime

    friend bool operator==(const WfMeasParams& a, const WfMeasParams& b)
    {
        return a.ior == b.ior && a.helix == b.helix && a.distance == b.distance
            && a.wavelength == b.wavelength && a.pulse == b.pulse && a.rbs == b.rbs
            && a.duration == b.duration;
    }

    friend bool operator!=(const WfMeasParams& a, const WfMeasParams& b) { return !(a == b); }
};

Q_DECLARE_METATYPE(WfMeasParams)
