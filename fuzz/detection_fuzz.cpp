// The search for events on any samples: it ends, and what it finds lies on the trace, in order and
// without impossible numbers. An input is a header of 26 bytes, then samples.
#include "fuzz/claim.h"
#include "fuzz/detectioninput.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/trace.h"

#include <gsl/span>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

using fuzz::claim;

bool isInfinite(double value)
{
    return std::isinf(value);
}

void check(const otdr::DetectedEvent& event, const otdr::Trace& trace)
{
    claim(std::isfinite(event.index), "an event has a place");
    claim(event.index >= 0.0 && event.index <= static_cast<double>(trace.size() - 1),
          "an event lies on the trace");
    claim(!isInfinite(event.loss_dB) && !isInfinite(event.reflectance_dB)
              && !isInfinite(event.height_dB),
          "what is measured of an event is finite or unknown");
}

void check(const otdr::Detection& found, const otdr::Trace& trace)
{
    for (const otdr::DetectedEvent& event : found.events) {
        check(event, trace);
    }
    const auto isNearer = [](const otdr::DetectedEvent& a, const otdr::DetectedEvent& b) {
        return a.index < b.index;
    };
    claim(std::is_sorted(found.events.begin(), found.events.end(), isNearer),
          "events come in order");
    for (const otdr::DetectedSection& section : found.sections) {
        claim(section.from <= section.to, "a section ends behind its beginning");
        claim(!isInfinite(section.loss_dB) && !isInfinite(section.attenuation_dBPerKm)
                  && !isInfinite(section.returnLoss_dB),
              "what is measured of a section is finite or unknown");
    }
    claim(!isInfinite(found.end) && !isInfinite(found.spanLoss_dB)
              && !isInfinite(found.returnLoss_dB) && !isInfinite(found.noiseFloor_dB),
          "what is measured of the span is finite or unknown");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const gsl::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data), size);
    const fuzz::DetectionInput input(bytes);
    const otdr::Trace trace(input.samples(), input.dbPerCount(), input.axis());
    const otdr::Detection found = otdr::detectEvents(trace, input.measurement());
    if (trace.size() == 0) {
        claim(found.events.empty(), "nothing is found on nothing");
        return 0;
    }
    check(found, trace);
    return 0;
}
