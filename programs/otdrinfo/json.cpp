#include "programs/otdrinfo/json.h"

#include "platform/otdr/core/sorvalues.h"
#include "programs/otdrinfo/text.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <cmath>

namespace otdrinfo {

namespace {

namespace sor = otdr::sor;

QJsonValue number(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonValue numberUnlessZero(double value)
{
    return value != 0.0 ? QJsonValue(value) : QJsonValue();
}

QJsonValue dateOf(const sor::File& file)
{
    if (file.fxd.dateTime_s == 0) {
        return {};
    }
    return QDateTime::fromSecsSinceEpoch(file.fxd.dateTime_s, Qt::UTC).toString(Qt::ISODate);
}

QJsonValue checksumOf(const sor::File& file)
{
    const auto verdict = sor::checksumVerdict(file);
    return verdict ? QJsonValue(*verdict) : QJsonValue();
}

QJsonArray eventsOf(const sor::File& file)
{
    QJsonArray events;
    const std::string kinds = sor::eventKinds(file);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const sor::KeyEvent& event = file.keyEvents->events[i];
        const bool hasDistance = file.hasFxd;
        events.append(QJsonObject {
            {"number", event.number},
            {"kind", QString(QChar::fromLatin1(kinds[i]))},
            {"code", QString::fromLatin1(sor::codeText(event).c_str(), 6)},
            {"distance_m", hasDistance ? number(sor::position_m(file, event)) : QJsonValue()},
            {"loss_db", number(sor::loss_dB(event))},
            {"reflectance_db", number(sor::reflectance_dB(event))},
            {"attenuation_before_db_per_km", number(sor::attenuation_dBPerKm(event))},
            {"comment", fromFile(event.comment)},
        });
    }
    return events;
}

} // namespace

QByteArray jsonOf(const std::string& path, const sor::File& file)
{
    const auto text = [&file](const std::string& field) {
        return file.hasSup ? QJsonValue(fromFile(field)) : QJsonValue();
    };
    const QJsonObject object {
        {"file", QString::fromUtf8(path.c_str())},
        {"format_version", file.version},
        {"supplier", text(file.sup.supplier)},
        {"mainframe", text(file.sup.mainframeId)},
        {"module", text(file.sup.moduleId)},
        {"wavelength_nm", numberUnlessZero(sor::nominalWavelength_nm(file))},
        {"pulse_ns", number(sor::pulse_ns(file))},
        {"ior", file.hasFxd ? number(sor::groupIndex(file)) : QJsonValue()},
        {"samples", static_cast<qint64>(file.data.samples.size())},
        {"spacing_m", number(sor::spacing_m(file))},
        {"range_m", number(sor::range_m(file))},
        {"averages", numberUnlessZero(file.fxd.averages)},
        {"averaging_time_s", number(sor::averagingTime_s(file))},
        {"date_utc", dateOf(file)},
        {"checksum_ok", checksumOf(file)},
        {"backscatter_db", number(sor::backscatter_dB(file))},
        {"total_loss_db", number(sor::totalLoss_dB(file))},
        {"orl_db", number(sor::returnLoss_dB(file))},
        {"fibre_end_m", file.hasFxd ? number(sor::fibreEnd_m(file)) : QJsonValue()},
        {"events", eventsOf(file)},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace otdrinfo
