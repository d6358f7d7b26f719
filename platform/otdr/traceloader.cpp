#include "platform/otdr/traceloader.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/tracefigures.h"
#include "platform/otdr/usualfibre.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

double orElse(double value, double otherwise)
{
    return std::isfinite(value) ? value : otherwise;
}

bool isSnapshot(const QString& fileName)
{
    QFile file(fileName);
    // A pipe of this name would keep the reader waiting.
    return QFileInfo(fileName).isFile() && file.open(QIODevice::ReadOnly) && file.read(4) == "WFPK";
}

QByteArray bytesOf(const std::string& text)
{
    return {text.data(), static_cast<int>(text.size())};
}

EventList eventsOf(const otdr::sor::File& file, const TraceState& state)
{
    EventList events;
    if (!file.keyEvents) {
        return events;
    }
    const std::string kinds = otdr::sor::eventKinds(file);
    const double interval_ns = state.trace->axis().sampleInterval_ns;
    for (std::size_t i = 0; i < file.keyEvents->events.size(); ++i) {
        const otdr::sor::KeyEvent& stored = file.keyEvents->events[i];
        Event event;
        event.type = static_cast<Event::Type>(kinds[i]);
        event.position = std::lround(stored.position * otdr::kCountNs / interval_ns);
        event.coordinate = stored.position * otdr::kCountNs * state.metresPerNs();
        event.width = state.pulse_ns * state.metresPerNs();
        event.loss = otdr::sor::loss_dB(stored);
        event.reflectance = otdr::sor::reflectance_dB(stored);
        event.attenuationBefore = otdr::sor::attenuation_dBPerKm(stored);
        event.saturated = otdr::sor::isSaturated(stored);
        events << event;
    }
    std::stable_sort(events.begin(), events.end());
    return events;
}

std::shared_ptr<const SorData> sorDataOf(const otdr::sor::File& file, const TraceState& state)
{
    auto sor = std::make_shared<SorData>();
    FxdParamsBlock fxd;
    fxd.dateTime = file.fxd.dateTime_s;
    fxd.wavelength = orElse(otdr::sor::actualWavelength_nm(file), 0.0);
    fxd.pulse = state.pulse_ns;
    fxd.ior = state.ior;
    fxd.backscatter = state.backscatter_dB;
    fxd.averages = file.fxd.averages;
    fxd.averagingTime = orElse(otdr::sor::averagingTime_s(file), 0.0);
    fxd.range = state.range_m;
    sor->setFxdParams(fxd, file.hasFxd);
    sor->setSupParams({bytesOf(file.sup.supplier), bytesOf(file.sup.mainframeId),
                       bytesOf(file.sup.mainframeSerial), bytesOf(file.sup.moduleId),
                       bytesOf(file.sup.moduleSerial), bytesOf(file.sup.softwareRevision),
                       bytesOf(file.sup.other)});
    if (file.keyEvents) {
        sor->setKeyEvents({otdr::sor::totalLoss_dB(file), otdr::sor::returnLoss_dB(file)});
    }
    return sor;
}

/// The fibre up to an event. A file tells it with the event.
Event fibreBetween(const Event& from, const Event& to)
{
    Event fibre;
    fibre.type = Event::Fiber;
    fibre.position = from.position;
    fibre.coordinate = from.coordinate;
    fibre.width = from.width;
    fibre.length = to.coordinate - from.coordinate;
    fibre.loss = to.attenuationBefore * fibre.length / 1000.0;
    return fibre;
}

/// Events with the fibre between them, as a measurement lists them. None between events at one
/// place.
EventList withFibre(const EventList& events)
{
    EventList all;
    for (const Event& event : events) {
        if (!all.isEmpty() && event.coordinate > all.last().coordinate) {
            const Event before = all.last();
            all << fibreBetween(before, event);
        }
        all << event;
    }
    return all;
}

/// A file tells nothing of the return loss of the fibre between its events: its trace does.
void addReturnLosses(TraceState& state)
{
    EventList events = state.events;
    for (int i = 1; i + 1 < events.size(); ++i) {
        if (events.at(i).type == Event::Fiber) {
            Event& fibre = events[i];
            fibre.orl = sectionReturnLoss_dB(state, events.at(i - 1), events.at(i + 1), fibre.loss);
        }
    }
    state.events = events;
}

otdr::Result<TraceState> loadSor(const QString& fileName)
{
    auto read = otdr::readSorFile(QFile::encodeName(fileName).toStdString());
    if (!read) {
        return read.error();
    }
    TraceState state;
    auto file = std::make_shared<const otdr::sor::File>(std::move(*read));
    const otdr::sor::Axis axis = otdr::sor::axisOf(*file);
    for (const std::string& note : file->notes) {
        state.notes << QString::fromStdString(note);
    }
    if (!axis.note.empty()) {
        state.notes << QString::fromStdString(axis.note);
    }
    // Without a spacing the axis counts samples: one metre each.
    const double index = otdr::sor::groupIndex(*file);
    const double interval_ns =
        axis.sampleInterval_ns > 0.0 ? axis.sampleInterval_ns : 1.0 / otdr::metresPerNs(index);
    state.trace = std::make_shared<const otdr::Trace>(
        file->data.samples, file->data.scaleFactor * otdr::kUsualDbPerCount / 1000.0,
        otdr::TraceAxis {interval_ns, orElse(axis.firstSample_ns, 0.0)});
    state.wavelength_nm = otdr::sor::nominalWavelength_nm(*file);
    state.pulse_ns = orElse(otdr::sor::pulse_ns(*file), 0.0);
    state.backscatter_dB = orElse(otdr::sor::backscatter_dB(*file),
                                  OTDR::usualFibre(state.wavelength_nm).backscatter_dB);
    state.ior = index;
    state.range_m = orElse(otdr::sor::range_m(*file), 0.0);
    state.duration_s =
        static_cast<int>(std::lround(orElse(otdr::sor::averagingTime_s(*file), 0.0)));
    state.events = withFibre(eventsOf(*file, state));
    addReturnLosses(state);
    state.processing = Reflectogram::FromFile;
    state.sor = sorDataOf(*file, state);
    state.file = std::move(file);
    return state;
}

otdr::Result<TraceState> loadSnapshot(const QString& fileName, const WfMeasParams* params)
{
    const auto read = otdr::readSnapshotFile(QFile::encodeName(fileName).toStdString());
    if (!read) {
        return read.error();
    }
    if (read->samples.empty()) { // refused as a .sor file without them is
        return otdr::Error {otdr::ErrorCode::Damaged,
                            QFile::encodeName(fileName).toStdString() + ": " + otdr::kNoSamples, 0};
    }
    TraceState state;
    state.trace = std::make_shared<const otdr::Trace>(
        read->samples, read->dbPerCount(),
        otdr::TraceAxis {read->sampleInterval_ns, read->firstSample_ns});
    state.wavelength_nm = read->wavelength_nm;
    state.pulse_ns = read->pulse_ns;
    if (params != nullptr) {
        state.backscatter_dB = params->rbs;
        state.ior = params->ior;
        state.helix_percent = params->helix;
        state.range_m = params->distance;
        state.duration_s = params->duration;
    } else {
        state.backscatter_dB = OTDR::usualFibre(state.wavelength_nm).backscatter_dB;
        state.ior = otdr::kDefaultGroupIndex;
        state.range_m =
            state.trace->distanceAt(static_cast<double>(state.trace->size()), state.metresPerNs());
        state.notes << QString("a snapshot tells no group index: %1 assumed").arg(state.ior);
    }
    // A message of the acquisition program may have said anything.
    if (!std::isfinite(state.ior) || state.ior < 1.0) {
        state.notes << QString("group index %1 cannot be: %2 assumed")
                           .arg(state.ior)
                           .arg(otdr::kDefaultGroupIndex);
        state.ior = otdr::kDefaultGroupIndex;
    }
    if (!std::isfinite(state.helix_percent) || state.helix_percent <= -100.0) {
        state.notes << QString("helix factor %1 cannot be: none assumed").arg(state.helix_percent);
        state.helix_percent = 0.0;
    }
    auto sor = std::make_shared<SorData>();
    sor->setFxdParams({QDateTime::currentSecsSinceEpoch(), static_cast<double>(state.wavelength_nm),
                       state.pulse_ns, state.ior, state.backscatter_dB, read->averages,
                       static_cast<double>(state.duration_s), state.range_m});
    state.sor = std::move(sor);
    return state;
}

} // namespace

otdr::Result<TraceState> loadTrace(const QString& fileName, const WfMeasParams* params)
{
    auto loaded = isSnapshot(fileName) ? loadSnapshot(fileName, params) : loadSor(fileName);
    if (loaded) {
        loaded->fileName = fileName;
    }
    return loaded;
}
