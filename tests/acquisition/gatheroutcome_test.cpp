#include "acquisition/gatheroutcome.h"

#include <gmock/gmock.h>

namespace {

TEST(GatherOutcome, LastLineIsTheLastThatSaysSomething)
{
    EXPECT_EQ(lastLineOf(""), "");
    EXPECT_EQ(lastLineOf("\n \n"), "");
    EXPECT_EQ(lastLineOf("one"), "one");
    EXPECT_EQ(lastLineOf("one\ntwo\n\n"), "two");
    EXPECT_EQ(lastLineOf("one\r\ntwo\r\n"), "two");
}

TEST(GatherOutcome, LastLineCanBeShown)
{
    EXPECT_EQ(lastLineOf("a\tb\x1b[31mc\x07"), "a b[31mc");
    EXPECT_EQ(lastLineOf(QByteArray(100000, 'x')).size(), 200);
    EXPECT_TRUE(lastLineOf(QByteArray(100000, 'x')).endsWith("x..."));
    EXPECT_EQ(lastLineOf(QByteArray(200, 'x')), QString(200, 'x'));
    EXPECT_EQ(lastLineOf(QByteArray("a\0b", 3)), "ab");
}

TEST(GatherOutcome, ProperEndIsNoFailure)
{
    for (const auto kind : {GatherOutcome::Pending, GatherOutcome::Announced,
                            GatherOutcome::Stopped, GatherOutcome::FailedToStart}) {
        EXPECT_EQ(whatWentWrong({kind, 1, "words"}), "");
    }
}

TEST(GatherOutcome, FailureIsToldWithWhatTheProgramSaidOfIt)
{
    EXPECT_EQ(whatWentWrong({GatherOutcome::Exited, 3, "wfgather: no light"}),
              "The acquisition program failed (code 3): wfgather: no light");
    EXPECT_EQ(whatWentWrong({GatherOutcome::Exited, 3, {}}),
              "The acquisition program failed (code 3).");
    EXPECT_EQ(whatWentWrong({GatherOutcome::Exited, 0, "words"}),
              "The acquisition program ended before the measurement was complete.");
    EXPECT_EQ(whatWentWrong({GatherOutcome::Crashed, 0, "no memory"}),
              "The acquisition program crashed: no memory");
    EXPECT_EQ(whatWentWrong({GatherOutcome::Silent, 0, {}}),
              "The acquisition program did not answer any more and was ended.");
    EXPECT_EQ(whatWentWrong({GatherOutcome::Forced, 0, {}}),
              "The acquisition program did not stop when it was told to and was ended.");
}

} // namespace
