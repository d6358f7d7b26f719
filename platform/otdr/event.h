#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

#include <limits>

/// One event of a trace, or the stretch of fibre between two events.
///
/// A value that was not measured is NaN; see isKnown().
struct Event
{
    enum Type : char
    {
        SpanStart = 's',
        Reflective = 'r',
        NonReflective = 'n',
        Positive = 'p',
        Fiber = 'f',
        SpanEnd = 'e',
    };

    static constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

    Event() = default;

    /// An event at a coordinate, with the width of its pulse, both in whole metres.
    Event(Type type, long coordinate_m, long width_m);

    Type type = NonReflective;
    long position = 0; ///< sample index, counted from the sample at 0 m
    double coordinate = 0.0; ///< m
    double width = 0.0; ///< m
    double loss = kUnknown; ///< dB; of a fibre section: from its start to its end
    double reflIn = kUnknown; ///< level before the event, dB
    double reflOut = kUnknown; ///< level behind the event, dB
    double reflectance = kUnknown; ///< dB
    double orl = kUnknown; ///< return loss of a fibre section, dB
    double length = kUnknown; ///< of a fibre section, m
    double attenuationBefore = kUnknown; ///< of the fibre before the event, dB/km
    double beforeFrom = kUnknown; ///< the loss was measured by the fibre from here to the event, m
    double behindFrom = kUnknown; ///< and by that from here, m
    double behindTo = kUnknown; ///< to here, m
    bool saturated = false; ///< the receiver was: the reflectance is only a lower bound

    /// Attenuation of a fibre section, dB/km: its loss over its length. NaN where either is unknown
    /// or the length is 0.
    [[nodiscard]] double attenuation() const;

    /// One line that OTDR::createEventFromString reads back; keeps every field. No blank at either
    /// end.
    [[nodiscard]] QString toString() const;

    [[nodiscard]] static bool isKnown(double value);

    /// Same type, position and values; unknown equals unknown.
    friend bool operator==(const Event& a, const Event& b);

    friend bool operator!=(const Event& a, const Event& b) { return !(a == b); }

    /// Order along the fibre: by coordinate; at one coordinate a span start comes first, a span end
    /// last.
    friend bool operator<(const Event& a, const Event& b);
};

using EventList = QList<Event>;
using EventCoordList = QList<double>;

Q_DECLARE_METATYPE(Event)
Q_DECLARE_METATYPE(EventList)
Q_DECLARE_METATYPE(EventCoordList)
