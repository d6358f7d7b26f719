#include "programs/otdrreport/templatevalues.h"

#include "programs/otdrreport/axisticks.h"
#include "programs/otdrreport/reporttext.h"

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace otdrreport {

namespace {

constexpr int kDistanceTicks = 10;
constexpr int kLevelTicks = 8;
/// How far apart numbers stand over the chart: a badge on a chart of a thousand pixels, and on that
/// of a phone.
constexpr double kMarksApart_percent = 1.8;
constexpr double kMarksApartOnPhone_percent = 4.6;

constexpr double kMetresPerKm = 1000.0;

QString tr(const char* text)
{
    return QCoreApplication::translate("Report", text);
}

/// Adds a value as text and, where it is known, as number.
void put(QVariantHash& values, const QString& name, const QString& unit, double value, int decimals)
{
    values[name] = shown(value, decimals);
    if (std::isfinite(value)) {
        values[name + "_" + unit] = value;
    }
}

/// A number for a script or a style: never grouped, never localised.
QString plain(double value)
{
    return QString::number(value, 'g', 12);
}

double unlessZero(double value)
{
    return value != 0.0 ? value : kUnknown;
}

QString kindName(const ReportedEvent& event)
{
    switch (event.kind) {
    case Event::SpanStart:
        return tr("Start of the span");
    case Event::Reflective:
        return tr("Reflective");
    case Event::Positive:
        return tr("Gainer");
    case Event::SpanEnd:
        return event.endsFibre ? tr("End of the fibre") : tr("End of the trace");
    default:
        return tr("Non-reflective");
    }
}

QVariantHash sectionValues(const ReportedSection& section)
{
    QVariantHash values;
    put(values, "start", "m", section.start_m, 1);
    put(values, "length", "m", section.length_m, 1);
    put(values, "loss", "db", section.loss_dB, 3);
    put(values, "attenuation", "db_per_km", section.attenuation_dBPerKm, 3);
    return values;
}

QVariantHash eventValues(const ReportedEvent& event, const TraceChart& chart)
{
    QVariantHash values {
        {"number", event.number},       {"kind", QString(QLatin1Char(event.kind))},
        {"kind_name", kindName(event)}, {"saturated", event.saturated},
        {"comment", event.comment},
    };
    put(values, "distance", "m", event.distance_m, 1);
    put(values, "loss", "db", event.loss_dB, 3);
    put(values, "reflectance", "db", event.reflectance_dB, 1);
    if (event.before.exists()) {
        values["section"] = sectionValues(event.before);
    }
    const double left_percent = chart.window.left_percent(event.distance_m);
    const bool isInside = left_percent >= 0.0 && left_percent <= 100.0;
    if (chart.hasDistances && isInside) {
        values["left_percent"] = QString::number(left_percent, 'f', 3);
        values["at_m"] = plain(event.distance_m);
    }
    return values;
}

/// The events, each with the row of its mark.
QVariantList eventList(const Report& report)
{
    QVector<double> places_percent;
    for (const ReportedEvent& event : report.events) {
        places_percent << report.chart.window.left_percent(event.distance_m);
    }
    const QVector<int> rows = markRows(places_percent, kMarksApart_percent);
    const QVector<int> narrow = markRows(places_percent, kMarksApartOnPhone_percent);
    QVariantList events;
    for (int i = 0; i < report.events.size(); ++i) {
        QVariantHash values = eventValues(report.events[i], report.chart);
        values["row"] = rows[i];
        values["row_narrow"] = narrow[i];
        events << values;
    }
    return events;
}

QVariantList tickValues(const QVector<AxisTick>& ticks, const ChartWindow& window, bool isDistance)
{
    QVariantList list;
    for (const AxisTick& tick : ticks) {
        const double place_percent =
            isDistance ? window.left_percent(tick.value) : window.top_percent(tick.value);
        list << QVariantHash {{"label", tick.label},
                              {"percent", QString::number(place_percent, 'f', 3)}};
    }
    return list;
}

QVariantHash chartValues(const TraceChart& chart)
{
    const ChartWindow& window = chart.window;
    const bool inKm = window.end_m - window.start_m >= 2.0 * kMetresPerKm;
    const double unit_m = inKm ? kMetresPerKm : 1.0;
    const QVector<AxisTick> distances = chart.hasDistances
        ? axisTicks(window.start_m, window.end_m, kDistanceTicks, unit_m)
        : QVector<AxisTick>();
    return {
        {"width", TraceChart::kWidth},
        {"height", TraceChart::kHeight},
        {"path", QString::fromLatin1(chart.path)},
        {"distance_unit",
         !chart.hasDistances ? ""
             : inKm          ? "km"
                             : "m"},
        {"distance_ticks", tickValues(distances, window, true)},
        {"level_ticks",
         tickValues(axisTicks(window.low_dB, window.high_dB, kLevelTicks, 1.0), window, false)},
        {"start_m", plain(window.start_m)},
        {"end_m", plain(window.end_m)},
        {"low_db", plain(window.low_dB)},
        {"high_db", plain(window.high_dB)},
        {"samples", QString::fromLatin1(chart.samples.counts.toBase64())},
        {"samples_first_m", plain(chart.samples.first_m)},
        {"samples_step_m", plain(chart.samples.step_m)},
        {"samples_per_step", chart.samples.perStep},
        {"samples_db_per_count", plain(chart.samples.dbPerCount)},
    };
}

/// Texts as a template wants them: it takes a QStringList of more than one for empty.
QVariantList textValues(const QStringList& texts)
{
    QVariantList values;
    for (const QString& text : texts) {
        values << text;
    }
    return values;
}

QVariantHash traceValues(const Report& report)
{
    QVariantHash values {
        {"file", report.fileName},
        {"cable", report.cable},
        {"fibre", report.fibre},
        {"from", report.from},
        {"to", report.to},
        {"operator", report.operatorName},
        {"comment", report.comment},
        {"date",
         report.date_s == 0 ? dash()
                            : QDateTime::fromSecsSinceEpoch(report.date_s, Qt::UTC)
                                  .toString("yyyy-MM-dd HH:mm:ss")},
        {"notes", textValues(report.notes)},
        {"has_event_comments",
         std::any_of(report.events.begin(), report.events.end(),
                     [](const ReportedEvent& event) { return !event.comment.isEmpty(); })},
    };
    return values;
}

QVariantHash instrumentValues(const Report& report)
{
    return {
        {"supplier", report.supplier},
        {"mainframe", report.mainframe},
        {"mainframe_serial", report.mainframeSerial},
        {"module", report.module},
        {"module_serial", report.moduleSerial},
        {"software", report.software},
    };
}

QVariantHash parameterValues(const Report& report)
{
    QVariantHash values;
    put(values, "wavelength", "nm", unlessZero(report.wavelength_nm), 0);
    put(values, "source", "nm", report.source_nm, 1);
    put(values, "pulse", "ns", report.pulse_ns, 0);
    put(values, "ior", "value", report.ior, 5);
    put(values, "backscatter", "db", report.backscatter_dB, 1);
    put(values, "range", "m", report.range_m, 1);
    put(values, "spacing", "m", report.spacing_m, 4);
    put(values, "samples", "count", static_cast<double>(report.samples), 0);
    put(values, "averages", "count", unlessZero(report.averages), 0);
    put(values, "averaging_time", "s", report.averagingTime_s, 1);
    return values;
}

QVariantHash summaryValues(const Report& report)
{
    QVariantHash values;
    put(values, "length", "m", report.spanLength_m, 1);
    put(values, "length_in_km", "km", report.spanLength_m / kMetresPerKm, 3);
    put(values, "loss", "db", report.spanLoss_dB, 3);
    put(values, "orl", "db", report.spanReturnLoss_dB, 2);
    put(values, "attenuation", "db_per_km", report.spanAttenuation_dBPerKm, 3);
    return values;
}

} // namespace

QVariantHash templateValues(const Report& report, const QByteArray& png, const QString& pictureName)
{
    return {
        {"trace", traceValues(report)},
        {"instrument", instrumentValues(report)},
        {"parameters", parameterValues(report)},
        {"summary", summaryValues(report)},
        {"events", eventList(report)},
        {"chart", chartValues(report.chart)},
        {"picture",
         QVariantHash {{"file", printable(pictureName)},
                       {"data", "data:image/png;base64," + QString::fromLatin1(png.toBase64())}}},
    };
}

} // namespace otdrreport
