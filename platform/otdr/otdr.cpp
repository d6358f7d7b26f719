#include "platform/otdr/otdr.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/reflectogram.h"

#include <QStringList>

#include <cmath>
#include <cstring>
#include <map>

namespace {

bool isSnapshotHeader(const wf_packet_header& header)
{
    return std::memcmp(header.magic, "WFPK", 4) == 0;
}

bool isEventType(QChar c)
{
    return QString("srnpfe").contains(c);
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

    const std::map<QString, double*> fields = {
        {"coordinate", &event.coordinate},
        {"width", &event.width},
        {"loss", &event.loss},
        {"reflIn", &event.reflIn},
        {"reflOut", &event.reflOut},
        {"reflectance", &event.reflectance},
        {"orl", &event.orl},
        {"length", &event.length},
        {"attenuationBefore", &event.attenuationBefore},
        {"beforeFrom", &event.beforeFrom},
        {"behindFrom", &event.behindFrom},
        {"behindTo", &event.behindTo},
    };
    bool hasCoordinate = false;
    for (int i = 1; i + 1 < words.size(); i += 2) {
        const QString& key = words.at(i);
        const QString& value = words.at(i + 1);
        bool isNumber = false;
        if (key == "position") {
            const long position = value.toLong(&isNumber);
            event.position = isNumber ? position : event.position;
            continue;
        }
        if (key == "saturated") {
            event.saturated = value == "1";
            continue;
        }
        const auto field = fields.find(key);
        const double number = value.toDouble(&isNumber);
        if (field != fields.end() && isNumber && std::isfinite(number)) {
            *field->second = number;
            hasCoordinate = hasCoordinate || key == "coordinate";
        }
    }
    if (!hasCoordinate) {
        event.coordinate =
            smpl2meters(event.position, refl.dataSpacing(), refl.IOR(), refl.helix());
    }
    return event;
}

} // namespace OTDR
