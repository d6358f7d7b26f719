#pragma once

#include "platform/otdr/event.h"

namespace testing_support {

/// An event of which only the kind and the sample matter.
inline Event eventAt(Event::Type type, long position)
{
    Event event(type, 0, 10);
    event.position = position;
    return event;
}

} // namespace testing_support
