#pragma once

#include "platform/otdr/core/eventdetection.h"

#include <string>

namespace testing_support {

/// A letter for each event that was detected, in order: start, reflective, not reflective, port,
/// end.
inline std::string kindsOf(const otdr::Detection& detection)
{
    std::string kinds;
    for (const otdr::DetectedEvent& event : detection.events) {
        kinds += "srnpe"[static_cast<int>(event.kind)];
    }
    return kinds;
}

} // namespace testing_support
