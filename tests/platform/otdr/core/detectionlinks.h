#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/trace.h"

#include <memory>
#include <string>
#include <vector>

namespace testing_support {

/// A made-up link with what a detector has to do with: one thing each, or one crowd.
struct DetectionLink
{
    std::string name;
    std::shared_ptr<const otdr::Trace> trace;
    otdr::Measurement measurement;
};

[[nodiscard]] std::vector<DetectionLink> detectionLinks();

/// What the detection tells of a link, as lines of words and numbers; the first word is the name of
/// the link, numbers have six digits.
[[nodiscard]] std::vector<std::string> figuresOf(const DetectionLink& link);

} // namespace testing_support
