#include "window/countdown.h"

#include <gmock/gmock.h>

namespace {

using Waveform::countdownCaption;
using Waveform::realtimeCaption;

TEST(Countdown, BelowAMinuteShowsSecondsWithTwoDigits)
{
    EXPECT_EQ(countdownCaption(1550, 59), "1550 nm\n59");
    EXPECT_EQ(countdownCaption(1310, 5), "1310 nm\n05");
    EXPECT_EQ(countdownCaption(1310, 0), "1310 nm\n00");
}

TEST(Countdown, FromAMinuteShowsMinutesPaddedByABlank)
{
    EXPECT_EQ(countdownCaption(1550, 60), "1550 nm\n 1:00");
    EXPECT_EQ(countdownCaption(1550, 61), "1550 nm\n 1:01");
    EXPECT_EQ(countdownCaption(1550, 754), "1550 nm\n12:34");
}

TEST(Countdown, HoursAreNotShown)
{
    EXPECT_EQ(countdownCaption(1550, 3600), "1550 nm\n 0:00");
    EXPECT_EQ(countdownCaption(1550, 3661), "1550 nm\n 1:01");
}

TEST(Countdown, RealtimeShowsInfinityAndNoUnit)
{
    EXPECT_EQ(realtimeCaption(1625), QString("1625\n") + QChar(0x221E));
}

} // namespace
