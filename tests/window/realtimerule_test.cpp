#include "window/realtimerule.h"

#include <gmock/gmock.h>

namespace {

using Waveform::realtimeAllowed;

TEST(RealtimeRule, PulseUpTo275NsIsShort)
{
    EXPECT_TRUE(realtimeAllowed(275, "1550"));
    EXPECT_FALSE(realtimeAllowed(276, "1550"));
}

TEST(RealtimeRule, BothWavelengthsAreRefusedAtAnyPulse)
{
    EXPECT_FALSE(realtimeAllowed(5, "all"));
    EXPECT_TRUE(realtimeAllowed(5, "All")) << "no setting has this text";
}

} // namespace
