#include "tests/support/sorsketch.h"

#include <algorithm>

namespace testing_support {

ByteSketch& ByteSketch::u16(unsigned value)
{
    done.push_back(static_cast<std::byte>(value & 0xFFU));
    done.push_back(static_cast<std::byte>(value >> 8U & 0xFFU));
    return *this;
}

ByteSketch& ByteSketch::u32(std::int64_t value)
{
    const auto bits = static_cast<std::uint32_t>(value);
    return u16(bits & 0xFFFFU).u16(bits >> 16U);
}

ByteSketch& ByteSketch::text(const std::string& value)
{
    for (const char character : value) {
        done.push_back(static_cast<std::byte>(character));
    }
    return *this;
}

ByteSketch& ByteSketch::string(const std::string& value)
{
    text(value);
    done.push_back(std::byte {0});
    return *this;
}

ByteSketch& ByteSketch::bytes(const Bytes& more)
{
    done.insert(done.end(), more.begin(), more.end());
    return *this;
}

namespace {

template <std::size_t n>
std::string characters(const std::array<char, n>& value)
{
    return {value.begin(), value.end()};
}

Bytes genBody(const SorSketch& sketch)
{
    const auto& gen = sketch.gen;
    ByteSketch bytes;
    bytes.text(characters(gen.language)).string(gen.cableId).string(gen.fibreId);
    if (sketch.version == 2) {
        bytes.u16(gen.fibreType);
    }
    bytes.u16(gen.wavelength_nm).string(gen.locationA).string(gen.locationB).string(gen.cableCode);
    bytes.text(characters(gen.buildCondition)).u32(gen.userOffset);
    if (sketch.version == 2) {
        bytes.u32(gen.userOffsetDistance);
    }
    bytes.string(gen.operatorName).string(gen.comment);
    return bytes.done;
}

Bytes supBody(const SorSketch& sketch)
{
    const auto& sup = sketch.sup;
    ByteSketch bytes;
    bytes.string(sup.supplier)
        .string(sup.mainframeId)
        .string(sup.mainframeSerial)
        .string(sup.moduleId);
    bytes.string(sup.moduleSerial).string(sup.softwareRevision).string(sup.other);
    return bytes.done;
}

Bytes fxdBody(const SorSketch& sketch)
{
    const auto& fxd = sketch.fxd;
    const bool isNew = sketch.version == 2;
    ByteSketch bytes;
    bytes.u32(fxd.dateTime_s).text(characters(fxd.distanceUnit)).u16(fxd.actualWavelength);
    bytes.u32(fxd.acquisitionOffset);
    if (isNew) {
        bytes.u32(fxd.acquisitionOffsetDistance);
    }
    bytes.u16(static_cast<unsigned>(fxd.pulses.size()));
    for (const auto& pulse : fxd.pulses) {
        bytes.u16(pulse.width_ns);
    }
    for (const auto& pulse : fxd.pulses) {
        bytes.u32(pulse.dataSpacing);
    }
    for (const auto& pulse : fxd.pulses) {
        bytes.u32(pulse.samples);
    }
    bytes.u32(fxd.groupIndex).u16(fxd.backscatter).u32(fxd.averages);
    if (isNew) {
        bytes.u16(fxd.averagingTime);
    }
    bytes.u32(fxd.acquisitionRange);
    if (isNew) {
        bytes.u32(fxd.acquisitionRangeDistance);
    }
    bytes.u32(fxd.frontPanelOffset)
        .u16(fxd.noiseFloor)
        .u16(static_cast<std::uint16_t>(fxd.noiseFloorScale));
    bytes.u16(fxd.powerOffset)
        .u16(fxd.lossThreshold)
        .u16(fxd.reflectanceThreshold)
        .u16(fxd.endThreshold);
    if (isNew) {
        bytes.text(characters(fxd.traceType));
        for (const auto corner : fxd.window) {
            bytes.u32(corner);
        }
    }
    return bytes.bytes(sketch.fxdPadding).done;
}

Bytes keyEventsBody(const SorSketch& sketch)
{
    ByteSketch bytes;
    bytes.u16(static_cast<unsigned>(sketch.keyEvents.events.size()));
    for (const auto& event : sketch.keyEvents.events) {
        bytes.u16(event.number)
            .u32(event.position)
            .u16(static_cast<std::uint16_t>(event.attenuation));
        bytes.u16(static_cast<std::uint16_t>(event.loss)).u32(event.reflectance);
        bytes.text(characters(event.code)).text(characters(event.technique));
        if (sketch.version == 2) {
            for (const auto marker : event.markers) {
                bytes.u32(marker);
            }
        }
        bytes.string(event.comment);
    }
    const auto& summary = sketch.keyEvents.summary;
    bytes.u32(summary.totalLoss)
        .u32(summary.lossStart)
        .u32(summary.lossEnd)
        .u16(summary.returnLoss);
    bytes.u32(summary.returnLossStart).u32(summary.returnLossEnd);
    return bytes.bytes(sketch.keyEventsPadding).done;
}

Bytes dataBody(const SorSketch& sketch)
{
    const auto size = static_cast<std::int64_t>(sketch.samples.size());
    ByteSketch bytes;
    bytes.u32(size).u16(1).u32(size).u16(sketch.scaleFactor);
    for (const auto sample : sketch.samples) {
        bytes.u16(sample);
    }
    return bytes.done;
}

Bytes wholeBlock(const SorSketch::Block& block)
{
    ByteSketch bytes;
    if (block.hasName) {
        bytes.string(block.name);
    }
    return bytes.bytes(block.body).done;
}

unsigned storedChecksum(ChecksumRecipe recipe, const Bytes& file, std::size_t block,
                        std::size_t value)
{
    switch (recipe) {
    case ChecksumRecipe::FromFfff:
        return slowCrc16(file, value, 0xFFFF);
    case ChecksumRecipe::FromZero:
        return slowCrc16(file, value, 0);
    case ChecksumRecipe::FromFfffBeforeBlock:
        return slowCrc16(file, block, 0xFFFF);
    case ChecksumRecipe::FromZeroBeforeBlock:
        return slowCrc16(file, block, 0);
    case ChecksumRecipe::Private:
        return slowCrc16(file, value, 0xFFFF) ^ 0x5A5AU;
    default:
        return 0;
    }
}

} // namespace

std::vector<SorSketch::Block> SorSketch::blocks() const
{
    const bool hasNames = version == 2;
    std::vector<Block> all {
        {"GenParams", genBody(*this), hasNames}, {"SupParams", supBody(*this), hasNames},
        {"FxdParams", fxdBody(*this), hasNames}, {"KeyEvents", keyEventsBody(*this), hasNames},
        {"DataPts", dataBody(*this), hasNames},
    };
    all.insert(all.end(), makers.begin(), makers.end());
    const auto isLeftOut = [this](const Block& block) {
        return std::find(leftOut.begin(), leftOut.end(), block.name) != leftOut.end();
    };
    all.erase(std::remove_if(all.begin(), all.end(), isLeftOut), all.end());
    return all;
}

Bytes SorSketch::assemble(int version, const std::vector<Block>& blocks)
{
    std::size_t mapSize = version == 2 ? 12 : 8;
    for (const Block& block : blocks) {
        mapSize += block.name.size() + 7;
    }
    ByteSketch file;
    if (version == 2) {
        file.string("Map");
    }
    file.u16(version == 2 ? 200 : 100).u32(static_cast<std::int64_t>(mapSize));
    file.u16(static_cast<unsigned>(blocks.size() + 1));
    for (const Block& block : blocks) {
        const auto size = static_cast<std::int64_t>(wholeBlock(block).size());
        file.string(block.name)
            .u16(block.revision)
            .u32(block.statedSize >= 0 ? block.statedSize : size);
    }
    for (const Block& block : blocks) {
        file.bytes(wholeBlock(block));
    }
    return file.done;
}

Bytes SorSketch::build() const
{
    std::vector<Block> all = blocks();
    if (checksum == ChecksumRecipe::NoBlock) {
        return ByteSketch().bytes(assemble(version, all)).bytes(tail).done;
    }
    all.push_back({"Cksum", Bytes(2), version == 2});
    Bytes file = assemble(version, all);
    const std::size_t value = file.size() - 2;
    const unsigned stored = storedChecksum(checksum, file, value - (version == 2 ? 6 : 0), value);
    file.resize(value);
    return ByteSketch().bytes(file).u16(stored).bytes(tail).done;
}

std::shared_ptr<const Bytes> SorSketch::share() const
{
    return std::make_shared<const Bytes>(build());
}

SorSketch SorSketch::withTexts(const std::string& text)
{
    SorSketch sketch = plain();
    sketch.gen.cableId = text;
    sketch.gen.fibreId = text;
    sketch.gen.locationA = text;
    sketch.gen.locationB = text;
    sketch.gen.operatorName = text;
    sketch.gen.comment = text;
    sketch.sup = {text, text, text, text, text, text, text};
    sketch.keyEvents.events[1].comment = text;
    return sketch;
}

SorSketch SorSketch::plain()
{
    SorSketch sketch;
    sketch.gen.cableId = "Cable 7 ";
    sketch.gen.fibreId = "12";
    sketch.gen.fibreType = 652;
    sketch.gen.wavelength_nm = 1550;
    sketch.gen.locationA = "North";
    sketch.gen.locationB = "South";
    sketch.gen.cableCode = " ";
    sketch.gen.buildCondition = {'C', 'C'};
    sketch.gen.operatorName = " ";
    sketch.gen.comment = "first light\r\n";
    sketch.sup = {"Sketch", "Main 1", "0001", "Module 2 ", "0002", "1.0", " "};
    sketch.fxd.dateTime_s = 1'700'000'000;
    sketch.fxd.actualWavelength = 15'500;
    sketch.fxd.pulses = {{100, 500'000, 4000}}; // 50 counts a sample, ten samples a pulse
    sketch.fxd.groupIndex = 146'800;
    sketch.fxd.backscatter = 815;
    sketch.fxd.averages = 4096;
    sketch.fxd.averagingTime = 300;
    sketch.fxd.acquisitionRange = 200'000;
    sketch.samples = fibreSamples(4000, {0, 3000}, 10, 3000);
    sketch.keyEvents.events = {keyEvent(1, 0, "1F9999", 0, -45'000),
                               keyEvent(2, 50'000, "0F9999", 120),
                               keyEvent(3, 150'000, "1E9999", 0, -14'700)};
    sketch.keyEvents.events[1].attenuation = 190;
    sketch.keyEvents.events[1].markers = {1000, 50'000, 51'000, 149'000, 50'000};
    sketch.keyEvents.summary = {3120, 0, 150'000, 32'500, 0, 150'000};
    return sketch;
}

otdr::sor::KeyEvent keyEvent(int number, std::int32_t position, const std::string& code,
                             std::int16_t loss, std::int32_t reflectance)
{
    otdr::sor::KeyEvent event;
    event.number = static_cast<std::uint16_t>(number);
    event.position = position;
    std::copy_n(code.begin(), std::min(code.size(), event.code.size()), event.code.begin());
    event.loss = loss;
    event.reflectance = reflectance;
    event.comment = " ";
    return event;
}

std::vector<std::uint16_t> fibreSamples(std::size_t size, const std::vector<std::size_t>& peaks,
                                        std::size_t peakWidth, std::size_t end,
                                        std::uint16_t ceiling)
{
    std::vector<std::uint16_t> samples(size);
    for (std::size_t i = 0; i < size; ++i) {
        const bool isNoise = i >= end;
        const std::size_t noise = i % 2 == 0 ? ceiling : ceiling - 5000 - i * 7919 % 4001;
        samples[i] = static_cast<std::uint16_t>(isNoise ? noise : 20'000 + i);
    }
    for (const std::size_t peak : peaks) {
        for (std::size_t i = peak; i < std::min(peak + peakWidth, size); ++i) {
            samples[i] = static_cast<std::uint16_t>(8000 + peak);
        }
    }
    return samples;
}

std::uint16_t slowCrc16(const Bytes& bytes, std::size_t size, std::uint16_t start)
{
    unsigned crc = start;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= std::to_integer<unsigned>(bytes[i]) << 8U;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc << 1U) ^ ((crc & 0x8000U) != 0 ? 0x11021U : 0U);
        }
    }
    return static_cast<std::uint16_t>(crc);
}

} // namespace testing_support
