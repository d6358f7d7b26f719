// Events as text: any text gives an event, and an event that is written comes back as it was.
// The last byte says whether the rest is a text or the fields of an event.
#include "fuzz/claim.h"
#include "platform/otdr/otdr.h"
#include "platform/otdr/reflectogram.h"

#include <QString>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

namespace {

using fuzz::claim;

/// A finite number of any size, or unknown.
double anyValue(FuzzedDataProvider& input)
{
    const auto bytes = input.ConsumeBytes<std::uint8_t>(sizeof(double));
    double value = 0.0;
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::uint8_t*>(&value));
    return std::isfinite(value) ? value : Event::kUnknown;
}

Event anyEvent(FuzzedDataProvider& input)
{
    Event event;
    event.type = input.PickValueInArray({Event::SpanStart, Event::Reflective, Event::NonReflective,
                                         Event::Positive, Event::Fiber, Event::SpanEnd});
    event.position = input.ConsumeIntegral<long>();
    event.saturated = input.ConsumeBool();
    for (double* field : {&event.coordinate, &event.width}) { // these two are always known
        const double value = anyValue(input);
        *field = Event::isKnown(value) ? value : 0.0;
    }
    for (double* field :
         {&event.loss, &event.reflIn, &event.reflOut, &event.reflectance, &event.orl, &event.length,
          &event.attenuationBefore, &event.beforeFrom, &event.behindFrom, &event.behindTo}) {
        *field = anyValue(input);
    }
    return event;
}

void writeAndRead(const Event& event)
{
    const QString text = event.toString();
    claim(text == text.trimmed() && !text.contains(';') && !text.contains('\n'),
          "an event fits into one message");
    claim(OTDR::createEventFromString(text, Reflectogram()) == event, "an event comes back");
    (void)event.attenuation();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    if (input.ConsumeBool()) {
        writeAndRead(anyEvent(input));
    } else {
        const std::string text = input.ConsumeRemainingBytesAsString();
        const Event event =
            OTDR::createEventFromString(QString::fromStdString(text), Reflectogram());
        claim(std::isfinite(event.coordinate), "an event has a place");
        writeAndRead(event);
    }
    return 0;
}
