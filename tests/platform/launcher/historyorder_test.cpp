#include "platform/launcher/historyorder.h"

#include <gtest/gtest.h>

namespace {

TEST(HistoryOrder, LeavesTheEntriesAloneWhileNothingWasUsed)
{
    EXPECT_EQ(historyOrder({0, 0, 0}, 3), QVector<int>({0, 1, 2}));
    EXPECT_EQ(historyOrder({}, 3), QVector<int>());
}

TEST(HistoryOrder, OffersTheMostUsedFirst)
{
    EXPECT_EQ(historyOrder({0, 2, 0, 5, 1}, 2), QVector<int>({3, 1, 0, 2, 4}));
    EXPECT_EQ(historyOrder({0, 2, 0, 5, 1}, 9), QVector<int>({3, 1, 4, 0, 2}));
}

TEST(HistoryOrder, LetsTheEarlierOfEquallyUsedLead)
{
    EXPECT_EQ(historyOrder({1, 3, 0, 3}, 1), QVector<int>({1, 0, 2, 3}));
}

TEST(HistoryOrder, OffersThemAsTheyStandWhereNoneAreWanted)
{
    EXPECT_EQ(historyOrder({0, 2, 7}, 0), QVector<int>({0, 1, 2}));
    EXPECT_EQ(historyOrder({0, 2, 7}, -1), QVector<int>({0, 1, 2}));
}

} // namespace
