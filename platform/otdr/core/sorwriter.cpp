#include "platform/otdr/core/sorwriter.h"

#include "platform/otdr/core/bytes.h"
#include "platform/otdr/core/sorchecksum.h"
#include "platform/otdr/core/sordecode.h"
#include "platform/otdr/core/sorencode.h"
#include "platform/otdr/core/sormap.h"
#include "platform/otdr/core/sorreader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

namespace otdr {

namespace {

using Bytes = std::vector<std::byte>;
using Span = gsl::span<const std::byte>;

constexpr std::uint16_t kRevision = 200;
constexpr std::string_view kChecksum = "Cksum";
constexpr std::size_t kMapHead = 12; // "Map" and its end, revision, size, number of blocks
constexpr std::size_t kMapEntry = 7; // end of the name, revision, size
constexpr std::size_t kMostEntries = 0xFFFF; // counted in 16 bits
constexpr std::array<std::string_view, 6> kOrder {"GenParams", "SupParams", "FxdParams",
                                                  "KeyEvents", "LnkParams", "DataPts"};

/// A block of the new file, its name included.
struct Piece
{
    std::string name;
    std::uint16_t revision = kRevision;
    Bytes bytes;
};

Bytes named(std::string_view name, Span body)
{
    ByteWriter writer;
    writer.reserve(name.size() + 1 + body.size());
    writer.writeString(std::string(name));
    writer.append(body);
    return writer.release();
}

bool isChanged(std::string_view name, const sor::File& file, const sor::File& original)
{
    if (name == "DataPts") {
        return file.data.scaleFactor != original.data.scaleFactor
            || file.data.samples != original.data.samples;
    }
    return encodeBody(name, file) != encodeBody(name, original);
}

/// What follows the last known field of a block, as it stood in the original.
Span unknownRest(std::string_view name, Span body)
{
    sor::File scratch;
    sor::Notes notes;
    std::size_t used = body.size();
    if (name == "GenParams") {
        used = decodeGenParams(body, 2, scratch.gen, notes);
    } else if (name == "SupParams") {
        used = decodeSupParams(body, scratch.sup, notes);
    } else if (name == "FxdParams") {
        used = decodeFxdParams(body, 2, scratch.fxd, notes);
    } else if (name == "KeyEvents") {
        used = decodeKeyEvents(body, 2, scratch.keyEvents.emplace(), notes);
    }
    return body.subspan(used);
}

/// Lays out the blocks of one file.
class Layout
{
public:
    explicit Layout(const sor::File& file)
        : file(file)
    {
        if (!file.bytes) {
            return;
        }
        auto read = readSor(file.bytes, {false});
        if (!read) {
            return;
        }
        original = std::move(read.value());
        for (const std::string_view name : kOrder) {
            if (isChanged(name, file, *original)) {
                changed.push_back(name);
            }
        }
    }

    [[nodiscard]] bool leavesAsItCame() const
    {
        const auto same = [](const sor::RawBlock& a, const sor::RawBlock& b) {
            return a.name == b.name && a.revision == b.revision && a.offset == b.offset
                && a.size == b.size;
        };
        return original && original->version == 2 && changed.empty()
            && std::equal(file.blocks.begin(), file.blocks.end(), original->blocks.begin(),
                          original->blocks.end(), same);
    }

    void build()
    {
        if (original && original->version == 2) {
            keepOrder();
        } else {
            layAnew();
        }
        if (std::none_of(pieces.begin(), pieces.end(), isChecksum)) {
            pieces.push_back({std::string(kChecksum), kRevision, {}});
        }
    }

    [[nodiscard]] Bytes bytes() const
    {
        ByteWriter writer;
        writeMap(writer);
        bool isSummed = false;
        for (const Piece& piece : pieces) {
            if (isChecksum(piece) && !isSummed) {
                isSummed = true;
                writer.writeString(piece.name);
                writer.write(sor::checksumOf(writer.bytes()));
            } else {
                writer.append(piece.bytes);
            }
        }
        if (original) {
            const auto& last = original->blocks.back();
            writer.append(Span(*file.bytes).subspan(last.offset + last.size));
        }
        return writer.release();
    }

    /// The makers' blocks that were left out, by name.
    [[nodiscard]] const std::vector<std::string>& dropped() const { return droppedNames; }

private:
    static bool isChecksum(const Piece& piece) { return piece.name == kChecksum; }

    [[nodiscard]] bool hasChanged(std::string_view name) const
    {
        return std::find(changed.begin(), changed.end(), name) != changed.end();
    }

    [[nodiscard]] bool hasPiece(std::string_view name) const
    {
        return std::any_of(pieces.begin(), pieces.end(),
                           [name](const Piece& piece) { return piece.name == name; });
    }

    /// A version 2 file: every block in its place.
    void keepOrder()
    {
        for (const sor::RawBlock& block : file.blocks) {
            const bool isFirst = !hasPiece(block.name);
            if (sor::isStandardBlock(block.name) && isFirst) {
                addStandard(block);
            } else {
                addVerbatim(block);
            }
        }
        for (const std::string_view name : kOrder) {
            if (hasChanged(name) && !hasPiece(name)) {
                const auto place = std::find_if(pieces.begin(), pieces.end(), isChecksum);
                pieces.insert(place,
                              {std::string(name), kRevision, named(name, encodeBody(name, file))});
            }
        }
    }

    /// A version 1 file or a new trace: the usual order, then what is not ours. What the file does
    /// not tell stays untold: a block of zeros would read as something told.
    void layAnew()
    {
        sor::File whole = file;
        sor::fillDistances(whole);
        for (const std::string_view name : kOrder) {
            if (name == "LnkParams") {
                layLandmarks();
            } else if (!original || hasChanged(name)
                       || findBlock(file.blocks, std::string(name)) != nullptr) {
                pieces.push_back(
                    {std::string(name), kRevision, named(name, encodeBody(name, whole))});
            }
        }
        if (!original) {
            return;
        }
        std::vector<std::string_view> seen;
        for (const sor::RawBlock& block : file.blocks) {
            const bool isFirst = std::find(seen.begin(), seen.end(), block.name) == seen.end();
            seen.emplace_back(block.name);
            if (!sor::isStandardBlock(block.name) || !isFirst) {
                addVerbatim(block);
            }
        }
    }

    /// As they stand, if nobody changed them: how other versions lay them out is not well known.
    void layLandmarks()
    {
        const std::string name("LnkParams");
        const sor::RawBlock* block = original ? findBlock(file.blocks, name) : nullptr;
        if (block != nullptr && !hasChanged(name)) {
            pieces.push_back({name, kRevision, named(name, blockBody(*file.bytes, *block))});
        } else if (!file.landmarks.empty()) {
            pieces.push_back({name, kRevision, named(name, encodeBody(name, file))});
        }
    }

    void addStandard(const sor::RawBlock& block)
    {
        if (!hasChanged(block.name)) {
            const Span whole = blockBytes(*file.bytes, block);
            pieces.push_back({block.name, block.revision, Bytes(whole.begin(), whole.end())});
            return;
        }
        Bytes body = encodeBody(block.name, file);
        const Span rest = unknownRest(block.name, blockBody(*file.bytes, block));
        body.insert(body.end(), rest.begin(), rest.end());
        pieces.push_back({block.name, kRevision, named(block.name, body)});
    }

    void addVerbatim(const sor::RawBlock& block)
    {
        const bool isMakers = !sor::isStandardBlock(block.name);
        if (isMakers && (hasChanged("DataPts") || hasChanged("KeyEvents"))) {
            droppedNames.push_back(block.name);
            return;
        }
        const Span whole = blockBytes(*file.bytes, block);
        const Span body = blockBody(*file.bytes, block);
        // Version 2 wants the name on every block; version 1 has it on some.
        const bool needsName = original->version == 1 && body.size() == whole.size();
        pieces.push_back({block.name, block.revision,
                          needsName ? named(block.name, body) : Bytes(whole.begin(), whole.end())});
    }

    void writeMap(ByteWriter& writer) const
    {
        std::size_t size = kMapHead;
        for (const Piece& piece : pieces) {
            size += piece.name.size() + kMapEntry;
        }
        writer.writeString("Map");
        writer.write(kRevision);
        writer.write(static_cast<std::uint32_t>(size));
        writer.write(static_cast<std::uint16_t>(pieces.size() + 1));
        bool isSummed = false;
        for (const Piece& piece : pieces) {
            const bool isSum = isChecksum(piece) && !isSummed;
            isSummed = isSummed || isSum;
            writer.writeString(piece.name);
            writer.write(piece.revision);
            writer.write(
                static_cast<std::uint32_t>(isSum ? kChecksum.size() + 3 : piece.bytes.size()));
        }
    }

    const sor::File& file;
    std::optional<sor::File> original; ///< as the bytes of the file have it
    std::vector<std::string_view> changed;
    std::vector<Piece> pieces;
    std::vector<std::string> droppedNames;
};

std::optional<Error> refuse(const sor::File& file)
{
    const bool fits = file.data.samples.size() <= kLargestSorFile / 2
        && file.fxd.pulses.size() <= sor::kMostPulses
        && (!file.keyEvents || file.keyEvents->events.size() <= kMostEntries)
        && file.landmarks.size() <= kMostEntries;
    if (fits) {
        return std::nullopt;
    }
    return Error {ErrorCode::TooLarge,
                  "more samples, events or pulse widths than a trace file can hold", 0};
}

Result<Bytes> encode(const sor::File& file, std::vector<std::string>* notes)
{
    if (auto error = refuse(file)) {
        return *error;
    }
    Layout layout(file);
    if (layout.leavesAsItCame()) {
        return *file.bytes;
    }
    layout.build();
    Bytes bytes = layout.bytes();
    if (bytes.size() > kLargestSorFile) {
        return Error {ErrorCode::TooLarge, "larger than a trace file may be", 0};
    }
    if (notes != nullptr && !layout.dropped().empty()) {
        std::string names;
        for (const std::string& name : layout.dropped()) {
            names += (names.empty() ? "\"" : ", \"") + name + "\"";
        }
        notes->push_back("samples or events were changed, so the maker's own blocks were left out: "
                         + names);
    }
    return bytes;
}

} // namespace

Result<std::vector<std::byte>> encodeSor(const sor::File& file, std::vector<std::string>* notes)
{
    try {
        return encode(file, notes);
    } catch (const std::exception&) {
        return Error {ErrorCode::TooLarge, "out of memory", 0};
    }
}

} // namespace otdr
