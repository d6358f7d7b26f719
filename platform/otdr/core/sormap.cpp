#include "platform/otdr/core/sormap.h"

#include "platform/otdr/core/bytes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

namespace otdr::sor {

namespace {

constexpr std::size_t kSmallestFile = 12; // a map without entries
constexpr std::array<char, 4> kMapName {'M', 'a', 'p', '\0'};
constexpr unsigned kMostBlocks = 1024;
constexpr std::size_t kLongestName = 64;
constexpr std::size_t kFarthestOff = 64; // a name left out of the sizes, or counted twice
constexpr std::string_view kChecksum = "Cksum";
constexpr std::size_t kShortestSought = kChecksum.size(); // less may stand anywhere by chance

struct Entry
{
    std::string name;
    std::uint16_t revision = 0;
    std::uint32_t size = 0;
};

struct Head
{
    std::uint16_t revision = 0;
    std::uint32_t size = 0;
    std::uint16_t count = 0; ///< of blocks, the map included
};

Error notATrace(const char* why)
{
    return Error {ErrorCode::NotATrace, why, 0};
}

std::optional<Error> readEntries(ByteReader& reader, unsigned count, std::vector<Entry>& entries)
{
    entries.resize(count);
    for (Entry& entry : entries) {
        const std::size_t start = reader.position();
        reader.read(entry.name);
        reader.read(entry.revision);
        reader.read(entry.size);
        if (reader.isMissing()) {
            return Error {ErrorCode::Damaged, "the file ends within its map of blocks", start};
        }
        if (entry.name.size() > kLongestName) {
            return Error {ErrorCode::Damaged, "the map names a block with an impossible name",
                          start};
        }
    }
    return std::nullopt;
}

/// One more entry where it ends just where the map says that it ends itself: some count the blocks
/// without the map.
void readUncounted(ByteReader& reader, std::size_t mapSize, std::vector<Entry>& entries)
{
    ByteReader ahead = reader;
    std::vector<Entry> more;
    if (!readEntries(ahead, 1, more) && !more.front().name.empty() && ahead.position() == mapSize) {
        entries.push_back(std::move(more.front()));
        reader = ahead;
    }
}

/// Whether the block that begins here repeats this name, as all of version 2 do.
bool holdsName(gsl::span<const std::byte> bytes, std::size_t at, const std::string& name)
{
    const std::size_t head = name.size() + 1;
    return at <= bytes.size() && head <= bytes.size() - at
        && std::memcmp(bytes.data() + at, name.c_str(), head) == 0;
}

/// Where the first block begins: where the map says it ends, unless only its real end fits.
std::size_t firstBlock(gsl::span<const std::byte> bytes, const Head& head, std::size_t end,
                       const std::vector<Entry>& entries, std::vector<std::string>& notes)
{
    if (head.size == end) {
        return end;
    }
    const std::string name = entries.empty() ? std::string() : entries.front().name;
    const bool stated = head.size <= bytes.size()
        && (holdsName(bytes, head.size, name) || !holdsName(bytes, end, name));
    notes.emplace_back("the map does not end where it says; the blocks are taken from "
                       + std::string(stated ? "where it says" : "its real end"));
    return stated ? head.size : end;
}

/// Where a block begins: where the sizes before it put it, or else where its name stands close to
/// that, behind earliest. Names further away may be anything.
std::size_t startOf(gsl::span<const std::byte> bytes, const std::string& name, std::size_t expected,
                    std::size_t earliest)
{
    if (name.size() < kShortestSought || holdsName(bytes, expected, name)) {
        return expected;
    }
    for (std::size_t off = 1; off <= kFarthestOff; ++off) {
        if (holdsName(bytes, expected + off, name)) {
            return expected + off;
        }
        if (expected >= earliest + off && holdsName(bytes, expected - off, name)) {
            return expected - off;
        }
    }
    return expected;
}

/// Bytes of a block that begins at the end of the map so far: as many as it states, unless the next
/// one begins elsewhere.
std::size_t lengthOf(const Map& map, const Entry& entry, const Entry* next,
                     gsl::span<const std::byte> bytes, std::vector<std::string>& notes)
{
    const std::size_t room = bytes.size() - map.end;
    const bool isNamedSum = entry.name == kChecksum && holdsName(bytes, map.end, entry.name);
    const std::size_t least = isNamedSum ? kChecksum.size() + 1 + sizeof(std::uint16_t) : 0;
    const std::size_t length = std::min(std::max<std::size_t>(entry.size, least), room);
    if (next != nullptr) {
        const std::size_t expected = map.end + length;
        const std::size_t start = startOf(bytes, next->name, expected, map.end + 1);
        if (start != expected) {
            notes.emplace_back("the block \"" + next->name
                               + "\" does not stand where the map puts it; it was found close by");
            return start - map.end;
        }
    }
    if (entry.size > room) {
        notes.emplace_back("the file ends within the block \"" + entry.name + "\"");
    }
    return length;
}

void placeBlocks(Map& map, const std::vector<Entry>& entries, gsl::span<const std::byte> bytes,
                 std::vector<std::string>& notes)
{
    const bool hasNames =
        map.version == 2 && !entries.empty() && holdsName(bytes, map.end, entries.front().name);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = entries[i];
        if (entry.size > 0 && map.end == bytes.size()) {
            notes.emplace_back("the file ends before the block \"" + entry.name + "\"");
            continue;
        }
        if (findBlock(map.blocks, entry.name) != nullptr) {
            notes.emplace_back("the block \"" + entry.name
                               + "\" is there more than once; the first is used");
        }
        const Entry* next = hasNames && i + 1 < entries.size() ? &entries[i + 1] : nullptr;
        const std::size_t length = lengthOf(map, entry, next, bytes, notes);
        map.blocks.push_back({entry.name, entry.revision, map.end, length});
        map.end += length;
    }
}

} // namespace

Result<Map> readMap(gsl::span<const std::byte> bytes, std::vector<std::string>& notes)
{
    if (bytes.empty()) {
        return notATrace("the file is empty");
    }
    if (bytes.size() < kSmallestFile) {
        return notATrace("too short for a trace file");
    }
    Map map;
    map.version = std::memcmp(bytes.data(), kMapName.data(), kMapName.size()) == 0 ? 2 : 1;
    ByteReader reader(bytes);
    if (map.version == 2) {
        reader.take(kMapName.size());
    }
    Head head;
    reader.read(head.revision);
    reader.read(head.size);
    reader.read(head.count);
    if (map.version == 1 && (head.revision < 100 || head.revision > 199 || head.count == 0)) {
        return notATrace("not a trace file: there is no map of blocks at its start");
    }
    if (head.count > kMostBlocks) {
        return map.version == 1
            ? notATrace("not a trace file: there is no map of blocks at its start")
            : Error {ErrorCode::Damaged, "the map claims too many blocks", 10};
    }
    std::vector<Entry> entries;
    if (auto error = readEntries(reader, head.count > 0 ? head.count - 1U : 0U, entries)) {
        return map.version == 1 ? notATrace("not a trace file: its start is no map of blocks")
                                : *error;
    }
    readUncounted(reader, head.size, entries);
    if (map.version == 1 && reader.position() != head.size) {
        return notATrace("not a trace file: its start is no map of blocks");
    }
    map.end = firstBlock(bytes, head, reader.position(), entries, notes);
    placeBlocks(map, entries, bytes, notes);
    return map;
}

const RawBlock* findBlock(const std::vector<RawBlock>& blocks, std::string_view name)
{
    const auto found = std::find_if(blocks.begin(), blocks.end(),
                                    [name](const RawBlock& block) { return block.name == name; });
    return found == blocks.end() ? nullptr : &*found;
}

gsl::span<const std::byte> blockBytes(gsl::span<const std::byte> bytes, const RawBlock& block)
{
    if (block.offset > bytes.size() || block.size > bytes.size() - block.offset) {
        return {};
    }
    return bytes.subspan(block.offset, block.size);
}

gsl::span<const std::byte> blockBody(gsl::span<const std::byte> bytes, const RawBlock& block)
{
    const auto whole = blockBytes(bytes, block);
    const std::size_t head = block.name.size() + 1;
    const bool named =
        whole.size() >= head && std::memcmp(whole.data(), block.name.c_str(), head) == 0;
    return named ? whole.subspan(head) : whole;
}

bool isStandardBlock(std::string_view name)
{
    constexpr std::array<std::string_view, 7> kNames {
        "GenParams", "SupParams", "FxdParams", "KeyEvents", "LnkParams", "DataPts", "Cksum"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

} // namespace otdr::sor
