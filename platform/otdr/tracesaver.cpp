#include "platform/otdr/tracesaver.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/loss.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/storedthresholds.h"
#include "platform/otdr/reflectogram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

template <typename Integer>
Integer rounded(double value)
{
    if (!std::isfinite(value)) {
        return 0;
    }
    return static_cast<Integer>(
        std::llround(std::clamp(value, static_cast<double>(std::numeric_limits<Integer>::min()),
                                static_cast<double>(std::numeric_limits<Integer>::max()))));
}

std::string text(const QByteArray& bytes)
{
    // Strings of a trace file end at a zero byte, and an empty one is written as one blank.
    const std::string kept(bytes.constData());
    return kept.empty() ? std::string(" ") : kept;
}

/// Metres of fibre for a nanosecond. A file knows no helix factor: its lengths are those of the
/// fibre, where ours are those of the cable.
double fibreMetresPerNs(const TraceState& state)
{
    return otdr::metresPerNs(state.ior);
}

std::int32_t countsOf(const TraceState& state, double distance_m)
{
    return rounded<std::int32_t>(distance_m / state.metresPerNs() / otdr::kCountNs);
}

void encodeCode(const Event& event, otdr::sor::KeyEvent& out)
{
    const bool reflective = event.type == Event::Reflective || Event::isKnown(event.reflectance);
    out.code[0] = event.saturated ? '2' : reflective ? '1' : '0';
    out.code[1] = event.type == Event::SpanEnd ? 'E' : 'F';
}

/// The fibre that the loss of an event was measured by, so that other software finds the same loss.
/// Where an event does not tell, that between its neighbours, a dead zone behind each.
std::array<std::int32_t, 5> markersOf(const TraceState& state, const Event& event,
                                      const otdr::sor::KeyEvent* before, const Event* next)
{
    const auto toldOr = [&state](double distance_m, std::int32_t otherwise) {
        return Event::isKnown(distance_m) ? countsOf(state, distance_m) : otherwise;
    };
    const double deadZone_m = otdr::kDeadZonePulses * state.pulse_ns * state.metresPerNs();
    const std::int32_t at = countsOf(state, event.coordinate);
    const std::int32_t from =
        std::min(at, toldOr(event.beforeFrom, before != nullptr ? before->markers[2] : at));
    const std::int32_t behind =
        std::max(at, toldOr(event.behindFrom, countsOf(state, event.coordinate + deadZone_m)));
    const std::int32_t to = std::max(
        behind,
        toldOr(event.behindTo, next != nullptr ? countsOf(state, next->coordinate) : behind));
    return {from, at, behind, to, at};
}

otdr::sor::KeyEvents keyEventsOf(const TraceState& state)
{
    otdr::sor::KeyEvents block;
    QList<Event> events;
    std::copy_if(state.events.begin(), state.events.end(), std::back_inserter(events),
                 [](const Event& event) { return event.type != Event::Fiber; });
    const double cablePerFibre = state.metresPerNs() / fibreMetresPerNs(state);
    for (int i = 0; i < events.size(); ++i) {
        const Event& event = events.at(i);
        otdr::sor::KeyEvent out;
        out.number = static_cast<std::uint16_t>(i + 1);
        out.position = countsOf(state, event.coordinate);
        out.attenuation = rounded<std::int16_t>(event.attenuationBefore * cablePerFibre * 1000.0);
        out.loss = rounded<std::int16_t>(event.loss * 1000.0);
        out.reflectance = rounded<std::int32_t>(event.reflectance * 1000.0);
        encodeCode(event, out);
        out.markers = markersOf(state, event, i == 0 ? nullptr : &block.events.back(),
                                i + 1 == events.size() ? nullptr : &events.at(i + 1));
        out.comment = " ";
        block.events.push_back(out);
    }
    return block;
}

otdr::sor::SpanSummary summaryOf(const TraceState& state)
{
    otdr::sor::SpanSummary summary;
    const KeyEventsBlock* figures = state.sor ? state.sor->keyEvents() : nullptr;
    const double end_m = state.endOfFibre_m();
    summary.lossEnd = end_m > 0.0 ? countsOf(state, end_m) : 0;
    summary.returnLossEnd = summary.lossEnd;
    if (figures != nullptr) {
        summary.totalLoss = rounded<std::int32_t>(figures->totalLoss * 1000.0);
        summary.returnLoss = rounded<std::uint16_t>(figures->orl * 1000.0);
    }
    return summary;
}

otdr::sor::SupParams supParamsOf(const SupParamsBlock& sup)
{
    return {text(sup.supplierName), text(sup.mainframeId),  text(sup.mainframeSerial),
            text(sup.moduleId),     text(sup.moduleSerial), text(sup.softwareRevision),
            text(sup.other)};
}

otdr::sor::File newFile(const TraceState& state)
{
    const FxdParamsBlock& fxd = state.sor->fxdParams();
    const otdr::TraceAxis& axis = state.trace->axis();
    otdr::sor::File file;
    file.gen.wavelength_nm = static_cast<std::uint16_t>(state.wavelength_nm);
    file.gen.buildCondition = {'B', 'C'};
    for (std::string* blank :
         {&file.gen.cableId, &file.gen.fibreId, &file.gen.locationA, &file.gen.locationB,
          &file.gen.cableCode, &file.gen.operatorName, &file.gen.comment}) {
        *blank = " ";
    }
    file.fxd.dateTime_s = rounded<std::uint32_t>(static_cast<double>(fxd.dateTime));
    file.fxd.actualWavelength = rounded<std::uint16_t>(fxd.wavelength * 10.0);
    file.fxd.acquisitionOffset = rounded<std::int32_t>(axis.firstSample_ns / otdr::kCountNs);
    const double step_counts = axis.sampleInterval_ns / otdr::kCountNs;
    file.fxd.pulses.push_back({rounded<std::uint16_t>(state.pulse_ns),
                               rounded<std::uint32_t>(step_counts * 10000.0),
                               static_cast<std::uint32_t>(state.trace->size())});
    file.fxd.groupIndex = rounded<std::uint32_t>(state.ior * 1e5);
    file.fxd.backscatter = rounded<std::uint16_t>(-10.0 * state.backscatter_dB);
    file.fxd.averages = fxd.averages;
    file.fxd.averagingTime = rounded<std::uint16_t>(10.0 * fxd.averagingTime);
    file.fxd.acquisitionRange =
        rounded<std::uint32_t>(step_counts * static_cast<double>(state.trace->size()));
    file.fxd.acquisitionRangeDistance =
        rounded<std::int32_t>(10.0 * static_cast<double>(state.trace->size())
                              * axis.sampleInterval_ns * fibreMetresPerNs(state));
    file.fxd.noiseFloorScale = 1000;
    otdr::sor::storeThresholds(otdr::DetectionSettings(), file); // its events were found with these
    file.data.scaleFactor =
        rounded<std::uint16_t>(state.trace->dbPerCount() / otdr::kUsualDbPerCount * 1000.0);
    file.data.samples = state.trace->samples();
    return file;
}

/// Gives a file another group index: its times stay, and what it tells by the metre follows.
void changeIndex(otdr::sor::File& file, double ior)
{
    const double shrink = otdr::sor::groupIndex(file) / ior;
    file.fxd.groupIndex = rounded<std::uint32_t>(ior * 1e5);
    for (std::int32_t* distance :
         {&file.gen.userOffsetDistance, &file.fxd.acquisitionOffsetDistance,
          &file.fxd.acquisitionRangeDistance}) {
        *distance = rounded<std::int32_t>(*distance * shrink);
    }
    if (file.keyEvents) {
        for (otdr::sor::KeyEvent& event : file.keyEvents->events) {
            if (Event::isKnown(otdr::sor::attenuation_dBPerKm(event))) {
                event.attenuation = rounded<std::int16_t>(event.attenuation / shrink);
            }
        }
    }
}

} // namespace

otdr::sor::File toSorFile(const TraceState& state)
{
    const bool isNew = !state.file;
    otdr::sor::File file = isNew ? newFile(state) : *state.file;
    if (isNew || state.supParamsChanged) {
        file.sup = supParamsOf(state.sor->supParams());
    }
    if (!isNew && state.ior != otdr::sor::groupIndex(*state.file)) {
        changeIndex(file, state.ior);
    }
    if (isNew || state.processing != Reflectogram::FromFile) {
        file.keyEvents = keyEventsOf(state);
        file.keyEvents->summary = summaryOf(state);
    }
    return file;
}
