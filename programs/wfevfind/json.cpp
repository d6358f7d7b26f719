#include "programs/wfevfind/json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <cmath>

namespace evfind {

namespace {

QJsonValue number(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonArray eventsOf(const Findings& found)
{
    QJsonArray events;
    for (std::size_t i = 0; i < found.samples.size(); ++i) {
        const Event& event = found.events[static_cast<int>(i)];
        events.append(QJsonObject {
            {"kind", QString(QLatin1Char(event.type))},
            {"sample", static_cast<qint64>(found.samples[i])},
            {"distance_m", number(event.coordinate)},
            {"loss_db", number(event.loss)},
            {"reflectance_db", number(event.reflectance)},
            {"attenuation_before_db_per_km", number(event.attenuationBefore)},
        });
    }
    return events;
}

} // namespace

QByteArray jsonOf(const Findings& found)
{
    const TraceState& trace = found.trace;
    const double metresPerNs = trace.metresPerNs();
    const double end_m = trace.endOfFibre_m();
    const QJsonObject object {
        {"file", QString::fromUtf8(found.file.c_str())},
        {"samples", static_cast<qint64>(trace.trace->size())},
        {"spacing_m", number(trace.trace->axis().sampleInterval_ns * metresPerNs)},
        {"noise_floor_db", number(found.detection.noiseFloor_dB)},
        {"fibre_end_m", end_m < 0.0 ? QJsonValue() : number(end_m)},
        {"span_loss_db", number(found.figures.totalLoss)},
        {"orl_db", number(found.figures.orl)},
        {"events", eventsOf(found)},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace evfind
