#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "tests/platform/otdr/core/drawnfibre.h"

#include <vector>

namespace testing_support {

/// 12,000 samples of a nanosecond and a decimetre each, as a receiver of this time constant shows
/// them.
inline DrawnFibre linkOf(const std::vector<DrawnEvent>& places, double timeConstant)
{
    const otdr::PulseShape shape(kPulse, timeConstant);
    return {12000, scaleOf(kPulse),
            [=](double i) { return 40.0 - 0.00003 * i + eventsLevel_dB(shape, i, places); }, 0.003};
}

inline otdr::Measurement measurement(double metresPerNs = 0.1)
{
    return {kPulse, metresPerNs, -80.0};
}

} // namespace testing_support
