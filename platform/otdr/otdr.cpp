#include "platform/otdr/otdr.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/eventnumbers.h"
#include "platform/otdr/reflectogram.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

bool isSnapshotHeader(const wf_packet_header& header)
{
    return std::memcmp(header.magic, "WFPK", 4) == 0;
}

bool isEventType(QChar c)
{
    return QString("srnpfe").contains(c);
}

/// The number of an event that a word of its text stands for; null for a word that is not known.
double Event::*numberNamed(const QString& key)
{
    const auto* const known = std::find_if(std::begin(kEventNumbers), std::end(kEventNumbers),
                                           [&](const auto& one) { return key == one.first; });
    return known != std::end(kEventNumbers) ? known->second : nullptr;
}

/// Puts one value of a text into its event; false where it is none.
bool take(const QString& key, const QString& value, Event& event)
{
    bool isNumber = false;
    if (key == "position") {
        const long position = value.toLong(&isNumber);
        event.position = isNumber ? position : event.position;
        return isNumber;
    }
    if (key == "saturated") {
        event.saturated = value == "1";
        return true;
    }
    double Event::*const named = numberNamed(key);
    const double number = value.toDouble(&isNumber);
    if (named == nullptr || !isNumber || !std::isfinite(number)) {
        return false;
    }
    event.*named = number;
    return true;
}

} // namespace

namespace OTDR {

double smpl2meters(long sample, double spacing_ns, double ior, double helix_percent)
{
    return static_cast<double>(sample) * spacing_ns * otdr::metresPerNs(ior, helix_percent);
}

double smpl2meters(long sample, wf_packet_header header, WfMeasParams params)
{
    if (!isSnapshotHeader(header)) {
        return 0.0;
    }
    const double time_ns =
        header.firstSample_ns + static_cast<double>(sample) * header.sampleInterval_ns;
    return time_ns * otdr::metresPerNs(params.ior, params.helix);
}

double ns2meters(double time_ns, wf_packet_header header, WfMeasParams params)
{
    return isSnapshotHeader(header) ? time_ns * otdr::metresPerNs(params.ior, params.helix) : 0.0;
}

Event createEventFromString(QString text, Reflectogram refl)
{
    Event event;
    const QStringList words = text.split(' ', Qt::SkipEmptyParts);
    if (words.isEmpty() || words.at(0).size() != 1 || !isEventType(words.at(0).at(0))) {
        return event;
    }
    event.type = static_cast<Event::Type>(words.at(0).at(0).toLatin1());

    bool hasCoordinate = false;
    for (int i = 1; i + 1 < words.size(); i += 2) {
        const bool taken = take(words.at(i), words.at(i + 1), event);
        hasCoordinate = hasCoordinate || (taken && words.at(i) == "coordinate");
    }
    if (!hasCoordinate) {
        event.coordinate =
            smpl2meters(event.position, refl.dataSpacing(), refl.IOR(), refl.helix());
    }
    return event;
}

} // namespace OTDR
