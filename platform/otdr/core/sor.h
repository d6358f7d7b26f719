#pragma once

#include "platform/otdr/core/rawsamples.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace otdr::sor {

// The blocks of an OTDR trace file as plain values, in the units of the file. Strings are the bytes
// of the file (Latin-1), blanks included. Positions are counts of 100 ps of one-way propagation.

struct GenParams
{
    std::array<char, 2> language {'E', 'N'};
    std::string cableId;
    std::string fibreId;
    std::uint16_t fibreType = 0; ///< ITU-T number, 652 for G.652; 0 = not known. Version 2 only.
    std::uint16_t wavelength_nm = 0; ///< nominal
    std::string locationA;
    std::string locationB;
    std::string cableCode;
    std::array<char, 2> buildCondition {' ', ' '};
    std::int32_t userOffset =
        0; ///< from the port to the user's zero: the length of the launch fibre
    std::int32_t userOffsetDistance =
        0; ///< the same in tenths of the distance unit. Version 2 only.
    std::string operatorName;
    std::string comment;
};

struct SupParams
{
    std::string supplier;
    std::string mainframeId;
    std::string mainframeSerial;
    std::string moduleId;
    std::string moduleSerial;
    std::string softwareRevision;
    std::string other;
};

/// One pulse width of an acquisition with the samples taken with it.
struct PulseEntry
{
    std::uint16_t width_ns = 0;
    std::uint32_t dataSpacing = 0; ///< counts for 10 000 samples
    std::uint32_t samples = 0;
};

/// Pulse widths that a block may have; a greater number is taken for damage.
constexpr std::size_t kMostPulses = 64;

struct FxdParams
{
    std::uint32_t dateTime_s = 0; ///< since 1970-01-01 UTC
    std::array<char, 2> distanceUnit {'m', 't'}; ///< for display only
    std::uint16_t actualWavelength = 0; ///< 0.1 nm, or whole nm with some makers; see wavelength()
    std::int32_t acquisitionOffset = 0; ///< from the port to the first sample
    std::int32_t acquisitionOffsetDistance = 0; ///< Version 2 only.
    std::vector<PulseEntry> pulses;
    std::uint32_t groupIndex = 0; ///< x 1e-5
    std::uint16_t backscatter = 0; ///< -0.1 dB at 1 ns
    std::uint32_t averages = 0;
    std::uint16_t averagingTime = 0; ///< 0.1 s, or whole seconds with some makers. Version 2 only.
    std::uint32_t acquisitionRange = 0; ///< counts
    std::int32_t acquisitionRangeDistance = 0; ///< Version 2 only.
    std::int32_t frontPanelOffset = 0;
    std::uint16_t noiseFloor = 0;
    std::int16_t noiseFloorScale = 0;
    std::uint16_t powerOffset = 0;
    std::uint16_t lossThreshold = 0; ///< 0.001 dB
    std::uint16_t reflectanceThreshold = 0; ///< -0.001 dB
    std::uint16_t endThreshold = 0; ///< 0.001 dB
    std::array<char, 2> traceType {'S', 'T'}; ///< Version 2 only.
    std::array<std::int32_t, 4> window {}; ///< Version 2 only.
};

struct KeyEvent
{
    std::uint16_t number = 0;
    std::int32_t position = 0; ///< from the user's zero; negative in the launch fibre
    std::int16_t attenuation = 0; ///< of the fibre before the event, 0.001 dB/km; 0 = not measured
    std::int16_t loss = 0; ///< 0.001 dB; negative = gain
    std::int32_t reflectance = 0; ///< 0.001 dB as stored; reflectance_dB() interprets it
    std::array<char, 6> code {'0', 'F', '9', '9', '9', '9'};
    std::array<char, 2> technique {'L', 'S'};
    std::array<std::int32_t, 5> markers {}; ///< Version 2 only.
    std::string comment;
};

/// The end-to-end figures behind the event records.
struct SpanSummary
{
    std::int32_t totalLoss = 0; ///< 0.001 dB
    std::int32_t lossStart = 0;
    std::int32_t lossEnd = 0;
    std::uint16_t returnLoss = 0; ///< 0.001 dB; 0 = not measured
    std::int32_t returnLossStart = 0;
    std::int32_t returnLossEnd = 0;
};

struct KeyEvents
{
    std::vector<KeyEvent> events;
    SpanSummary summary;
};

struct Landmark
{
    std::uint16_t number = 0;
    std::array<char, 2> code {};
    std::int32_t position = 0;
    std::uint16_t relatedEvent = 0;
    std::int32_t longitude = 0;
    std::int32_t latitude = 0;
    std::int16_t fibreCorrection = 0;
    std::int32_t sheathEntering = 0;
    std::int32_t sheathLeaving = 0;
    std::array<char, 2> sheathUnit {};
    std::uint16_t modeFieldDiameter = 0;
    std::string comment;
};

struct DataPts
{
    std::uint16_t scaleFactor =
        1000; ///< x 1000; counts of later sections are brought to that of the first
    RawSamples samples; ///< all sections, in order
};

/// One block as it stands in the file.
struct RawBlock
{
    std::string name; ///< exact, trailing blanks included
    std::uint16_t revision = 200;
    std::size_t offset = 0; ///< in File::bytes
    std::size_t size = 0; ///< bytes of the whole block, its repeated name included
};

enum class Checksum
{
    Matches,
    NotComputed, ///< stored as 0
    Unknown, ///< neither of the recipes that are known gives the stored value
    Missing,
    NotChecked, ///< the caller did not ask
};

/// A trace file: the blocks as values, and the bytes they came from.
///
/// The writer compares the values with those bytes: a block that nobody changed leaves as it came.
struct File
{
    int version = 2; ///< of the file that was read
    GenParams gen;
    SupParams sup;
    FxdParams fxd;
    std::optional<KeyEvents> keyEvents;
    std::vector<Landmark> landmarks;
    DataPts data;
    bool hasGen = false; ///< the file holds the block; its values are the file's
    bool hasSup = false;
    bool hasFxd = false;

    std::vector<RawBlock> blocks; ///< all but the map, in file order
    std::shared_ptr<const std::vector<std::byte>> bytes; ///< the file as read; null for a new trace
    Checksum checksum = Checksum::Missing;
    std::vector<std::string> notes; ///< what was odd and what was assumed, in plain words
};

} // namespace otdr::sor
