// Trace files: whatever the bytes are, the reader answers, every value can be asked for, and what
// was read can be written and read again with the same values: as it came, with a changed text,
// with changed samples, and as a new file.
#include "fuzz/claim.h"
#include "fuzz/inputbytes.h"
#include "fuzz/samesor.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/sorwriter.h"

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace {

namespace sor = otdr::sor;
using fuzz::claim;

void askEverything(const sor::File& file)
{
    const sor::Axis axis = sor::axisOf(file);
    claim(!(axis.sampleInterval_ns <= 0.0), "samples lie one behind the other, or nothing is told");
    claim(std::isfinite(sor::groupIndex(file)), "a group index is always given");
    claim(file.data.scaleFactor != 0, "a sample has a level");
    (void)sor::nominalWavelength_nm(file);
    (void)sor::actualWavelength_nm(file);
    (void)sor::range_m(file);
    (void)sor::averagingTime_s(file);
    (void)sor::backscatter_dB(file);
    (void)sor::totalLoss_dB(file);
    (void)sor::returnLoss_dB(file);
    (void)sor::fibreEnd_m(file);
    (void)sor::checksumVerdict(file);
    claim(!std::isinf(sor::spacing_m(file)), "samples lie a distance apart, or nothing is told");
    claim(std::isfinite(sor::level_dB(file, file.data.samples[0])), "a count has a level");
    if (!file.keyEvents) {
        claim(sor::eventKinds(file).empty(), "without events there are no kinds");
        return;
    }
    claim(sor::eventKinds(file).size() == file.keyEvents->events.size(), "every event has a kind");
    for (const sor::KeyEvent& event : file.keyEvents->events) {
        claim(std::isfinite(sor::position_m(file, event)), "an event has a place");
        claim(sor::codeText(event).size() == event.code.size(), "a code is shown whole");
        claim(!std::isinf(sor::attenuation_dBPerKm(event)) && !std::isinf(sor::loss_dB(event))
                  && !(sor::reflectance_dB(event) > 0.0),
              "what an event tells is finite and of the right sign, or unknown");
        (void)sor::isSaturated(event);
    }
}

sor::File writtenAndRead(const sor::File& file)
{
    auto bytes = otdr::encodeSor(file);
    claim(bytes.ok(), "what was read can be written");
    auto read =
        otdr::readSor(std::make_shared<const fuzz::Bytes>(std::move(bytes.value())), {true});
    claim(read.ok(), "what was written can be read");
    return std::move(read.value());
}

void claimComesBack(const sor::File& file)
{
    fuzz::claimSameValues(file, writtenAndRead(file));
}

sor::File withChangedText(sor::File file)
{
    file.gen.comment += "!";
    return file;
}

sor::File withChangedSamples(sor::File file)
{
    std::vector<std::uint16_t> counts(file.data.samples.begin(), file.data.samples.end());
    counts.front() = static_cast<std::uint16_t>(counts.front() + 1);
    file.data.samples = otdr::RawSamples(counts);
    return file;
}

sor::File asNew(sor::File file)
{
    file.bytes = nullptr;
    file.blocks.clear();
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bytes = std::make_shared<const fuzz::Bytes>(fuzz::bytesOf(data, size));
    const auto read = otdr::readSor(bytes);
    if (!read) {
        claim(!read.error().message.empty(), "an error has words");
        return 0;
    }
    askEverything(*read);
    if (read->version == 2) {
        const auto same = otdr::encodeSor(*read);
        claim(same.ok() && *same == *bytes, "a file that nobody changed leaves as it came");
    } else {
        claimComesBack(*read);
    }
    claimComesBack(withChangedText(*read));
    claimComesBack(withChangedSamples(*read));
    claimComesBack(asNew(*read));
    claim(writtenAndRead(asNew(*read)).checksum == sor::Checksum::Matches,
          "what was written has its checksum");
    return 0;
}
