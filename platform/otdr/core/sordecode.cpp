#include "platform/otdr/core/sordecode.h"

#include "platform/otdr/core/bytes.h"

#include <algorithm>
#include <cstdint>

namespace otdr::sor {

namespace {

constexpr std::uint16_t kDefaultScale = 1000;
constexpr std::size_t kSmallestEvent = 22;
constexpr std::size_t kSmallestLandmark = 30;

void noteMissing(const ByteReader& reader, const char* block, Notes& notes)
{
    if (reader.isMissing()) {
        notes.emplace_back("the block \"" + std::string(block)
                           + "\" ends early; its last fields are missing");
    }
}

unsigned pulseCount(std::uint16_t stated, Notes& notes)
{
    if (stated >= 1 && stated <= kMostPulses) {
        return stated;
    }
    notes.emplace_back("the number of pulse widths is " + std::to_string(stated)
                       + "; one is assumed");
    return 1;
}

/// Three arrays, each whole before the next: widths, spacings, sample counts.
void readPulses(ByteReader& reader, std::vector<PulseEntry>& pulses, Notes& notes)
{
    std::uint16_t stated = 0;
    if (!reader.read(stated)) {
        return;
    }
    pulses.resize(pulseCount(stated, notes));
    for (PulseEntry& pulse : pulses) {
        reader.read(pulse.width_ns);
    }
    for (PulseEntry& pulse : pulses) {
        reader.read(pulse.dataSpacing);
    }
    for (PulseEntry& pulse : pulses) {
        reader.read(pulse.samples);
    }
}

bool readEvent(ByteReader& reader, int version, KeyEvent& event)
{
    reader.read(event.number);
    reader.read(event.position);
    reader.read(event.attenuation);
    reader.read(event.loss);
    reader.read(event.reflectance);
    reader.read(event.code);
    reader.read(event.technique);
    if (version >= 2) {
        reader.read(event.markers);
    }
    const bool whole = !reader.isMissing();
    // A comment that is cut away whole does not make the event less known.
    reader.read(event.comment);
    return whole;
}

void readSummary(ByteReader& reader, SpanSummary& summary)
{
    reader.read(summary.totalLoss);
    reader.read(summary.lossStart);
    reader.read(summary.lossEnd);
    reader.read(summary.returnLoss);
    reader.read(summary.returnLossStart);
    reader.read(summary.returnLossEnd);
}

struct Section
{
    std::uint16_t scale = kDefaultScale;
    Body samples;
};

/// Of two numbers of samples the larger one that the block holds; the first where it holds neither.
std::uint32_t countThatFits(std::uint32_t first, std::uint32_t second, std::size_t bytes)
{
    const auto [fewer, more] = std::minmax(first, second);
    if (more <= bytes / 2) {
        return more;
    }
    return fewer <= bytes / 2 ? fewer : first;
}

/// The sections of a DataPts block, cut to what is there.
std::vector<Section> readSections(ByteReader& reader, Notes& notes)
{
    std::uint32_t total = 0;
    std::uint16_t stated = 0;
    reader.read(total);
    reader.read(stated);
    std::vector<Section> sections;
    std::uint64_t wanted = 0;
    std::uint64_t found = 0;
    // At least one is tried: the samples are worth more than the count.
    for (unsigned i = 0; i < std::max<unsigned>(stated, 1) && reader.remaining() > 0; ++i) {
        std::uint32_t count = 0;
        Section section;
        reader.read(count);
        reader.read(section.scale);
        if (reader.isMissing()) {
            break;
        }
        if (stated <= 1 && total > 0 && total != count) {
            const std::uint32_t taken = countThatFits(total, count, reader.remaining());
            notes.emplace_back("the samples are counted as " + std::to_string(total) + " and as "
                               + std::to_string(count) + "; " + std::to_string(taken)
                               + " are taken");
            count = taken;
        }
        section.samples = reader.take(2 * static_cast<std::size_t>(count));
        wanted += count;
        found += section.samples.size() / 2;
        sections.push_back(section);
    }
    if (found < wanted) {
        notes.emplace_back("of " + std::to_string(wanted) + " samples the file holds "
                           + std::to_string(found));
    }
    return sections;
}

std::uint16_t usableScale(std::uint16_t stated, Notes& notes)
{
    if (stated != 0) {
        return stated;
    }
    notes.emplace_back("the scale factor of the samples is 0; 1.000 is assumed");
    return kDefaultScale;
}

/// The finest scale of the sections that holds the counts of all of them.
std::uint16_t commonScale(const std::vector<Section>& sections)
{
    std::uint64_t most = 0; // in counts of a scale factor of one
    for (const Section& section : sections) {
        for (const std::uint16_t count : RawSamples::fromLittleEndian(section.samples)) {
            most = std::max<std::uint64_t>(most, std::uint64_t {count} * section.scale);
        }
    }
    std::uint16_t finest = 0xFFFF;
    for (const Section& section : sections) {
        if (section.scale < finest && most <= std::uint64_t {section.scale} * 0xFFFF) {
            finest = section.scale;
        }
    }
    return finest;
}

void appendScaled(const Section& section, std::uint16_t scale, std::vector<std::uint16_t>& counts)
{
    const RawSamples raw = RawSamples::fromLittleEndian(section.samples);
    for (const std::uint16_t count : raw) {
        const std::uint32_t scaled = (count * std::uint32_t {section.scale} + scale / 2U) / scale;
        counts.push_back(static_cast<std::uint16_t>(std::min<std::uint32_t>(scaled, 0xFFFF)));
    }
}

} // namespace

std::size_t decodeGenParams(Body body, int version, GenParams& gen, Notes& notes)
{
    ByteReader reader(body);
    reader.read(gen.language);
    reader.read(gen.cableId);
    reader.read(gen.fibreId);
    if (version >= 2) {
        reader.read(gen.fibreType);
    }
    reader.read(gen.wavelength_nm);
    reader.read(gen.locationA);
    reader.read(gen.locationB);
    reader.read(gen.cableCode);
    reader.read(gen.buildCondition);
    reader.read(gen.userOffset);
    if (version >= 2) {
        reader.read(gen.userOffsetDistance);
    }
    reader.read(gen.operatorName);
    reader.read(gen.comment);
    noteMissing(reader, "GenParams", notes);
    return reader.position();
}

std::size_t decodeSupParams(Body body, SupParams& sup, Notes& notes)
{
    ByteReader reader(body);
    for (std::string* text : {&sup.supplier, &sup.mainframeId, &sup.mainframeSerial, &sup.moduleId,
                              &sup.moduleSerial, &sup.softwareRevision, &sup.other}) {
        reader.read(*text);
    }
    noteMissing(reader, "SupParams", notes);
    return reader.position();
}

std::size_t decodeFxdParams(Body body, int version, FxdParams& fxd, Notes& notes)
{
    ByteReader reader(body);
    reader.read(fxd.dateTime_s);
    reader.read(fxd.distanceUnit);
    reader.read(fxd.actualWavelength);
    reader.read(fxd.acquisitionOffset);
    if (version >= 2) {
        reader.read(fxd.acquisitionOffsetDistance);
    }
    readPulses(reader, fxd.pulses, notes);
    reader.read(fxd.groupIndex);
    reader.read(fxd.backscatter);
    reader.read(fxd.averages);
    if (version >= 2) {
        reader.read(fxd.averagingTime);
    }
    reader.read(fxd.acquisitionRange);
    if (version >= 2) {
        reader.read(fxd.acquisitionRangeDistance);
    }
    reader.read(fxd.frontPanelOffset);
    reader.read(fxd.noiseFloor);
    reader.read(fxd.noiseFloorScale);
    reader.read(fxd.powerOffset);
    reader.read(fxd.lossThreshold);
    reader.read(fxd.reflectanceThreshold);
    reader.read(fxd.endThreshold);
    if (version >= 2) {
        reader.read(fxd.traceType);
        reader.read(fxd.window);
    }
    noteMissing(reader, "FxdParams", notes);
    return reader.position();
}

std::size_t decodeKeyEvents(Body body, int version, KeyEvents& keyEvents, Notes& notes)
{
    ByteReader reader(body);
    std::uint16_t count = 0;
    reader.read(count);
    keyEvents.events.reserve(std::min<std::size_t>(count, reader.remaining() / kSmallestEvent));
    for (unsigned i = 0; i < count; ++i) {
        KeyEvent event;
        if (!readEvent(reader, version, event)) {
            notes.emplace_back("of " + std::to_string(count) + " events the file holds "
                               + std::to_string(i));
            return reader.position();
        }
        keyEvents.events.push_back(std::move(event));
    }
    readSummary(reader, keyEvents.summary);
    noteMissing(reader, "KeyEvents", notes);
    return reader.position();
}

std::size_t decodeLandmarks(Body body, std::vector<Landmark>& landmarks, Notes& notes)
{
    ByteReader reader(body);
    std::uint16_t count = 0;
    reader.read(count);
    if (count > reader.remaining() / kSmallestLandmark) {
        notes.emplace_back("the landmarks are more than their block can hold; they are not shown");
        return body.size();
    }
    for (unsigned i = 0; i < count; ++i) {
        Landmark mark;
        reader.read(mark.number);
        reader.read(mark.code);
        reader.read(mark.position);
        reader.read(mark.relatedEvent);
        reader.read(mark.longitude);
        reader.read(mark.latitude);
        reader.read(mark.fibreCorrection);
        reader.read(mark.sheathEntering);
        reader.read(mark.sheathLeaving);
        reader.read(mark.sheathUnit);
        reader.read(mark.modeFieldDiameter);
        if (reader.isMissing()) {
            break;
        }
        reader.read(mark.comment);
        landmarks.push_back(std::move(mark));
    }
    noteMissing(reader, "LnkParams", notes);
    return reader.position();
}

std::size_t decodeDataPts(Body body, DataPts& data, Notes& notes)
{
    ByteReader reader(body);
    std::vector<Section> sections = readSections(reader, notes);
    if (sections.empty()) {
        return reader.position();
    }
    data.scaleFactor = usableScale(sections.front().scale, notes);
    if (sections.size() == 1) {
        data.samples = RawSamples::fromLittleEndian(sections.front().samples);
        return reader.position();
    }
    notes.emplace_back("the samples come in " + std::to_string(sections.size())
                       + " sections; they are joined");
    for (Section& section : sections) {
        section.scale = section.scale != 0 ? section.scale : data.scaleFactor;
    }
    data.scaleFactor = commonScale(sections);
    std::vector<std::uint16_t> counts;
    counts.reserve(body.size() / 2);
    for (const Section& section : sections) {
        appendScaled(section, data.scaleFactor, counts);
    }
    data.samples = RawSamples(counts);
    return reader.position();
}

} // namespace otdr::sor
