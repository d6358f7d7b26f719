#include "acquisition/gathermessages.h"

#include <gmock/gmock.h>

namespace {

TEST(GatherMessages, AreWhatStandsBetweenTheSeparators)
{
    EXPECT_EQ(gatherMessages("1 G {;2 C * 3;"), QStringList({"1 G {", "2 C * 3"}));
    EXPECT_EQ(gatherMessages("1 G {;2 C"), QStringList({"1 G {", "2 C"}));
}

TEST(GatherMessages, EmptyOnesAreLeftOut)
{
    EXPECT_EQ(gatherMessages(";;1 G {;;"), QStringList({"1 G {"}));
    EXPECT_TRUE(gatherMessages(";").isEmpty());
    EXPECT_TRUE(gatherMessages("").isEmpty());
    EXPECT_TRUE(gatherMessages(QByteArray()).isEmpty());
}

TEST(GatherMessages, LineEndsCountAsBlanks)
{
    EXPECT_EQ(gatherMessages("1 M\n*\rRT;\r\n"), QStringList({"1 M * RT", "  "}));
}

TEST(GatherMessages, EndAtAZeroByte)
{
    EXPECT_EQ(gatherMessages(QByteArray("1 G {;2 C\0 * 3;", 16)), QStringList({"1 G {", "2 C"}));
}

TEST(GatherMessages, BytesThatAreNoTextSpoilOnlyTheirMessage)
{
    const QStringList messages = gatherMessages("\xC3\x28\xFF;5 M }");
    ASSERT_EQ(messages.size(), 2);
    EXPECT_EQ(messages.at(1), "5 M }");
}

} // namespace
