#pragma once

#include "platform/otdr/core/sor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace testing_support {

using Bytes = std::vector<std::byte>;

/// How the maker of a sketched file fills its checksum.
enum class ChecksumRecipe
{
    FromFfff,
    FromZero,
    FromFfffBeforeBlock,
    FromZeroBeforeBlock,
    Zero,
    Private,
    NoBlock
};

/// Little-endian bytes, put together field by field. Knows nothing of the code under test.
class ByteSketch
{
public:
    ByteSketch& u16(unsigned value);
    ByteSketch& u32(std::int64_t value);
    ByteSketch& text(const std::string& value); ///< as it stands
    ByteSketch& string(const std::string& value); ///< with its zero byte
    ByteSketch& bytes(const Bytes& more);

    Bytes done;
};

/// A trace file as a maker would write it, with everything that a maker may do otherwise.
struct SorSketch
{
    struct Block
    {
        std::string name;
        Bytes body;
        bool hasName = true; ///< repeats its name, as all blocks of version 2 do
        unsigned revision = 200;
        std::int64_t statedSize = -1; ///< in the map, where it is to differ from the true one
    };

    int version = 2;
    otdr::sor::GenParams gen;
    otdr::sor::SupParams sup;
    otdr::sor::FxdParams fxd;
    otdr::sor::KeyEvents keyEvents;
    std::uint16_t scaleFactor = 1000;
    std::vector<std::uint16_t> samples;

    Bytes fxdPadding;
    Bytes keyEventsPadding;
    Bytes tail;
    std::vector<Block> makers; ///< behind DataPts
    ChecksumRecipe checksum = ChecksumRecipe::FromFfff;
    std::vector<std::string> leftOut; ///< names of blocks that are not written

    /// A version 2 trace of 4000 samples, 1 m apart or so: launch, splice at 1 km, reflective end
    /// at 3 km.
    static SorSketch plain();

    /// The plain one with this for each text that somebody may have typed.
    static SorSketch withTexts(const std::string& text);

    /// All blocks but the checksum, in the order of the file.
    [[nodiscard]] std::vector<Block> blocks() const;

    [[nodiscard]] Bytes build() const;
    [[nodiscard]] std::shared_ptr<const Bytes> share() const;

    /// Any blocks as a file of this version, map before them; nothing behind them.
    static Bytes assemble(int version, const std::vector<Block>& blocks);
};

/// An event as the tests write it down: position in counts, loss and reflectance in thousandths.
otdr::sor::KeyEvent keyEvent(int number, std::int32_t position, const std::string& code,
                             std::int16_t loss = 0, std::int32_t reflectance = 0);

/// Samples of a fibre: level falls by 1 raw count a sample from 20000, with peaks of so many
/// samples at the given indices (12 dB high), and noise that alternates near the ceiling from the
/// end on.
std::vector<std::uint16_t> fibreSamples(std::size_t size, const std::vector<std::size_t>& peaks,
                                        std::size_t peakWidth, std::size_t end,
                                        std::uint16_t ceiling = 65535);

/// CRC with the polynomial 0x1021 bit by bit.
std::uint16_t slowCrc16(const Bytes& bytes, std::size_t size, std::uint16_t start);

} // namespace testing_support
