// Writes the damaged files of tests/data/bad into a directory. Each is a sketch with one thing
// wrong.
#include "tests/support/sorsketch.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::SorSketch;

std::string directory;

void save(const std::string& name, const Bytes& bytes)
{
    std::ofstream(directory + "/" + name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

SorSketch small(int version = 2)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = version;
    sketch.samples = testing_support::fibreSamples(200, {0, 150}, 4, 150);
    return sketch;
}

Bytes withBody(std::size_t block, Bytes body)
{
    auto blocks = small().blocks();
    blocks[block].body = std::move(body);
    return SorSketch::assemble(2, blocks);
}

Bytes withByte(Bytes bytes, std::size_t at, unsigned value)
{
    bytes[at] = static_cast<std::byte>(value);
    return bytes;
}

Bytes cutTo(Bytes bytes, std::size_t size)
{
    bytes.resize(size);
    return bytes;
}

void saveBrokenMaps()
{
    save("empty.sor", {});
    save("text.sor", ByteSketch().text("distance_m,level_db\n0.000000,45.535\n").done);
    save("map-cut-short.sor", cutTo(small().build(), 40));
    save("map-of-65535-blocks.sor", withByte(withByte(small().build(), 10, 0xFF), 11, 0xFF));
    save("map-with-endless-name.sor",
         ByteSketch().string("Map").u16(200).u32(12).u16(2).text(std::string(300, 'A')).done);
    SorSketch old = small(1);
    save("version1-map-ends-elsewhere.sor", withByte(old.build(), 2, 0xFF));
    auto blocks = small().blocks();
    blocks[1].statedSize = 0xFFFFFFFF;
    save("block-of-4-gigabytes.sor", SorSketch::assemble(2, blocks));
}

void saveBrokenBlocks()
{
    auto blocks = small().blocks();
    save("no-samples-block.sor",
         SorSketch::assemble(2, {blocks[0], blocks[1], blocks[2], blocks[3]}));
    save("no-samples-in-block.sor", withBody(4, ByteSketch().u32(0).u16(1).u32(0).u16(1000).done));
    save("samples-more-than-file.sor",
         withBody(4, ByteSketch().u32(0xFFFFFFFF).u16(1).u32(0xFFFFFFFF).u16(1000).u16(5).done));
    save("sections-more-than-file.sor",
         withBody(4, ByteSketch().u32(3).u16(65'535).u32(1).u16(0).u16(5).done));
    save("events-more-than-block.sor", withBody(3, ByteSketch().u16(65'535).bytes(Bytes(60)).done));
    save("strings-without-end.sor", withBody(1, ByteSketch().text("supplier without end").done));
    Bytes fxd = small().blocks()[2].body;
    fxd[16] = fxd[17] = std::byte {0xFF};
    save("pulses-65535.sor", withBody(2, fxd));
    save("fixed-parameters-empty.sor", withBody(2, {}));
    save("cut-in-samples.sor", cutTo(small().build(), small().build().size() - 200));
    auto twice = blocks;
    twice.insert(twice.end(), blocks.begin(), blocks.end());
    save("every-block-twice.sor", SorSketch::assemble(2, twice));
}

void saveBrokenValues()
{
    SorSketch sketch = small();
    sketch.fxd.pulses[0] = {0, 0, 0};
    sketch.fxd.groupIndex = 0xFFFFFFFF;
    sketch.fxd.acquisitionRange = 0;
    sketch.scaleFactor = 0;
    save("scales-all-zero.sor", sketch.build());
    sketch = small();
    sketch.gen.userOffset = 0x7FFFFFFF;
    sketch.fxd.acquisitionOffset = -0x7FFFFFFF;
    sketch.fxd.frontPanelOffset = 0x7FFFFFFF;
    for (auto& event : sketch.keyEvents.events) {
        event.position = 0x7FFFFFFF;
        event.reflectance = -0x7FFFFFFF - 1;
    }
    save("positions-at-their-limits.sor", sketch.build());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("make_bad_traces DIRECTORY\n", stderr);
        return 2;
    }
    directory = argv[1];
    saveBrokenMaps();
    saveBrokenBlocks();
    saveBrokenValues();
    return 0;
}
