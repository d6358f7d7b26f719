#include "programs/otdrreport/report.h"

#include "platform/otdr/core/sorvalues.h"
#include "programs/otdrreport/reporttext.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace otdrreport {

namespace {

namespace sor = otdr::sor;

ReportedEvent eventOf(const sor::File& file, const sor::KeyEvent& stored, char kind)
{
    ReportedEvent event;
    event.number = stored.number;
    event.kind = kind;
    event.endsFibre = sor::isFibreEnd(stored);
    event.distance_m = file.hasFxd ? sor::position_m(file, stored) : kUnknown;
    // A file has no other word for "not measured".
    event.loss_dB = stored.loss == 0 ? kUnknown : sor::loss_dB(stored);
    event.reflectance_dB = sor::reflectance_dB(stored);
    event.saturated = sor::isSaturated(stored) && std::isfinite(event.reflectance_dB);
    event.before.attenuation_dBPerKm = sor::attenuation_dBPerKm(stored);
    event.comment = printable(stored.comment);
    return event;
}

/// Numbers of a file that do not count along the fibre would confuse the marks with each other.
void renumberUnlessRising(QVector<ReportedEvent>& events)
{
    const auto notRising = std::adjacent_find(
        events.begin(), events.end(),
        [](const ReportedEvent& a, const ReportedEvent& b) { return a.number >= b.number; });
    if (notRising == events.end() && (events.isEmpty() || events.first().number > 0)) {
        return;
    }
    for (int i = 0; i < events.size(); ++i) {
        events[i].number = i + 1;
    }
}

void measureSections(QVector<ReportedEvent>& events)
{
    double start_m = 0.0;
    for (int i = 0; i < events.size(); ++i) {
        ReportedSection& section = events[i].before;
        section.start_m = i == 0 ? std::min(0.0, events[i].distance_m) : start_m;
        section.length_m = events[i].distance_m - section.start_m;
        section.loss_dB = section.attenuation_dBPerKm * section.length_m / 1000.0;
        start_m = events[i].distance_m;
    }
}

QVector<ReportedEvent> eventsOf(const sor::File& file)
{
    QVector<ReportedEvent> events;
    const std::string kinds = sor::eventKinds(file);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        events << eventOf(file, file.keyEvents->events[i], kinds[i]);
    }
    if (file.hasFxd) { // otherwise no event has a place
        std::stable_sort(events.begin(), events.end(),
                         [](const ReportedEvent& a, const ReportedEvent& b) {
                             return a.distance_m < b.distance_m;
                         });
        measureSections(events);
    }
    renumberUnlessRising(events);
    return events;
}

void readTexts(const sor::File& file, Report& report)
{
    report.cable = printable(file.gen.cableId);
    report.fibre = printable(file.gen.fibreId);
    report.from = printable(file.gen.locationA);
    report.to = printable(file.gen.locationB);
    report.operatorName = printable(file.gen.operatorName);
    report.comment = printable(file.gen.comment);
    report.supplier = printable(file.sup.supplier);
    report.mainframe = printable(file.sup.mainframeId);
    report.mainframeSerial = printable(file.sup.mainframeSerial);
    report.module = printable(file.sup.moduleId);
    report.moduleSerial = printable(file.sup.moduleSerial);
    report.software = printable(file.sup.softwareRevision);
}

void readParameters(const sor::File& file, Report& report)
{
    report.date_s = file.fxd.dateTime_s;
    report.wavelength_nm = sor::nominalWavelength_nm(file);
    report.source_nm = sor::actualWavelength_nm(file);
    report.pulse_ns = sor::pulse_ns(file);
    report.ior = file.hasFxd ? sor::groupIndex(file) : kUnknown;
    report.backscatter_dB = sor::backscatter_dB(file);
    report.range_m = sor::range_m(file);
    report.spacing_m = sor::spacing_m(file);
    report.samples = file.data.samples.size();
    report.averages = file.fxd.averages;
    report.averagingTime_s = sor::averagingTime_s(file);
}

void readSpan(const sor::File& file, Report& report)
{
    report.spanLength_m = file.hasFxd ? sor::fibreEnd_m(file) : kUnknown;
    report.spanLoss_dB = sor::totalLoss_dB(file);
    report.spanReturnLoss_dB = sor::returnLoss_dB(file);
    if (report.spanLength_m > 0.0) {
        report.spanAttenuation_dBPerKm = report.spanLoss_dB / report.spanLength_m * 1000.0;
    }
}

} // namespace

Report reportOf(const TraceState& state)
{
    Report report;
    const sor::File& file = *state.file;
    report.fileName = printable(QFileInfo(state.fileName).fileName());
    readTexts(file, report);
    readParameters(file, report);
    readSpan(file, report);
    report.events = eventsOf(file);
    for (const QString& note : state.notes) {
        report.notes << printable(note);
    }
    const bool hasDistances = std::isfinite(report.spacing_m);
    QVector<double> places_m;
    for (const ReportedEvent& event : qAsConst(report.events)) {
        places_m << (hasDistances ? event.distance_m : kUnknown);
    }
    report.chart = chartOf(state, places_m, hasDistances ? report.spanLength_m : kUnknown);
    report.chart.hasDistances = hasDistances;
    return report;
}

} // namespace otdrreport
