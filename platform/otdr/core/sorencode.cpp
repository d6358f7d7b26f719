#include "platform/otdr/core/sorencode.h"

#include "platform/otdr/core/bytes.h"
#include "platform/otdr/core/sorvalues.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace otdr::sor {

namespace {

void writeText(ByteWriter& writer, const std::string& text)
{
    writer.writeString(text.empty() ? " " : text);
}

void encode(ByteWriter& writer, const GenParams& gen)
{
    writer.write(gen.language);
    writeText(writer, gen.cableId);
    writeText(writer, gen.fibreId);
    writer.write(gen.fibreType);
    writer.write(gen.wavelength_nm);
    writeText(writer, gen.locationA);
    writeText(writer, gen.locationB);
    writeText(writer, gen.cableCode);
    writer.write(gen.buildCondition);
    writer.write(gen.userOffset);
    writer.write(gen.userOffsetDistance);
    writeText(writer, gen.operatorName);
    writeText(writer, gen.comment);
}

void encode(ByteWriter& writer, const SupParams& sup)
{
    for (const std::string* text :
         {&sup.supplier, &sup.mainframeId, &sup.mainframeSerial, &sup.moduleId, &sup.moduleSerial,
          &sup.softwareRevision, &sup.other}) {
        writeText(writer, *text);
    }
}

void encodePulses(ByteWriter& writer, const std::vector<PulseEntry>& entries)
{
    // The format has no block without a pulse width.
    const std::vector<PulseEntry> pulses = entries.empty() ? std::vector<PulseEntry>(1) : entries;
    writer.write(static_cast<std::uint16_t>(pulses.size()));
    for (const PulseEntry& pulse : pulses) {
        writer.write(pulse.width_ns);
    }
    for (const PulseEntry& pulse : pulses) {
        writer.write(pulse.dataSpacing);
    }
    for (const PulseEntry& pulse : pulses) {
        writer.write(pulse.samples);
    }
}

void encode(ByteWriter& writer, const FxdParams& fxd)
{
    writer.write(fxd.dateTime_s);
    writer.write(fxd.distanceUnit);
    writer.write(fxd.actualWavelength);
    writer.write(fxd.acquisitionOffset);
    writer.write(fxd.acquisitionOffsetDistance);
    encodePulses(writer, fxd.pulses);
    writer.write(fxd.groupIndex);
    writer.write(fxd.backscatter);
    writer.write(fxd.averages);
    writer.write(fxd.averagingTime);
    writer.write(fxd.acquisitionRange);
    writer.write(fxd.acquisitionRangeDistance);
    writer.write(fxd.frontPanelOffset);
    writer.write(fxd.noiseFloor);
    writer.write(fxd.noiseFloorScale);
    writer.write(fxd.powerOffset);
    writer.write(fxd.lossThreshold);
    writer.write(fxd.reflectanceThreshold);
    writer.write(fxd.endThreshold);
    writer.write(fxd.traceType);
    writer.write(fxd.window);
}

void encode(ByteWriter& writer, const KeyEvents& keyEvents)
{
    writer.write(static_cast<std::uint16_t>(keyEvents.events.size()));
    for (const KeyEvent& event : keyEvents.events) {
        writer.write(event.number);
        writer.write(event.position);
        writer.write(event.attenuation);
        writer.write(event.loss);
        writer.write(event.reflectance);
        writer.write(event.code);
        writer.write(event.technique);
        writer.write(event.markers);
        writeText(writer, event.comment);
    }
    writer.write(keyEvents.summary.totalLoss);
    writer.write(keyEvents.summary.lossStart);
    writer.write(keyEvents.summary.lossEnd);
    writer.write(keyEvents.summary.returnLoss);
    writer.write(keyEvents.summary.returnLossStart);
    writer.write(keyEvents.summary.returnLossEnd);
}

void encode(ByteWriter& writer, const std::vector<Landmark>& landmarks)
{
    writer.write(static_cast<std::uint16_t>(landmarks.size()));
    for (const Landmark& mark : landmarks) {
        writer.write(mark.number);
        writer.write(mark.code);
        writer.write(mark.position);
        writer.write(mark.relatedEvent);
        writer.write(mark.longitude);
        writer.write(mark.latitude);
        writer.write(mark.fibreCorrection);
        writer.write(mark.sheathEntering);
        writer.write(mark.sheathLeaving);
        writer.write(mark.sheathUnit);
        writer.write(mark.modeFieldDiameter);
        writeText(writer, mark.comment);
    }
}

void encode(ByteWriter& writer, const DataPts& data)
{
    const auto count = static_cast<std::uint32_t>(data.samples.size());
    writer.reserve(12 + 2 * data.samples.size());
    writer.write(count);
    writer.write(std::uint16_t {1});
    writer.write(count);
    writer.write(data.scaleFactor);
    for (const std::uint16_t sample : data.samples) {
        writer.write(sample);
    }
}

double unitLength_m(std::array<char, 2> unit)
{
    const std::string_view name(unit.data(), unit.size());
    if (name == "km") {
        return 1000.0;
    }
    if (name == "ft") {
        return 0.3048;
    }
    if (name == "kf") {
        return 304.8;
    }
    return name == "mi" ? 1609.344 : 1.0;
}

void fillDistance(std::int32_t& distance, double counts, double tenthsPerCount)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if (distance == 0) {
        const double tenths = std::round(counts * tenthsPerCount);
        distance = static_cast<std::int32_t>(
            std::clamp<double>(tenths, double {Limits::min()}, double {Limits::max()}));
    }
}

} // namespace

void fillDistances(File& file)
{
    if (std::isnan(statedGroupIndex(file))) {
        return;
    }
    const double tenthsPerCount = 10.0 * metresPerCount(file) / unitLength_m(file.fxd.distanceUnit);
    fillDistance(file.gen.userOffsetDistance, file.gen.userOffset, tenthsPerCount);
    fillDistance(file.fxd.acquisitionOffsetDistance, file.fxd.acquisitionOffset, tenthsPerCount);
    fillDistance(file.fxd.acquisitionRangeDistance, file.fxd.acquisitionRange, tenthsPerCount);
}

std::vector<std::byte> encodeBody(std::string_view name, const File& file)
{
    ByteWriter writer;
    if (name == "GenParams") {
        encode(writer, file.gen);
    } else if (name == "SupParams") {
        encode(writer, file.sup);
    } else if (name == "FxdParams") {
        encode(writer, file.fxd);
    } else if (name == "KeyEvents") {
        encode(writer, file.keyEvents.value_or(KeyEvents {}));
    } else if (name == "LnkParams") {
        encode(writer, file.landmarks);
    } else if (name == "DataPts") {
        encode(writer, file.data);
    }
    return writer.release();
}

} // namespace otdr::sor
