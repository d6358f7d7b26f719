#include "platform/launcher/waitwnd.h"

#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

TEST(WaitWnd, TakesTheInputOfAllOthersUntilItIsHidden)
{
    WaitWnd window;
    window.setVisible(true);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(window.isModal());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    window.close();
    EXPECT_TRUE(window.isVisible());
    window.setVisible(false);
    EXPECT_FALSE(window.isVisible());
}

TEST(WaitWnd, SaysThatTheUserHasToWait)
{
    const WaitWnd window;
    EXPECT_EQ(window.findChild<QLabel*>()->text(), QString::fromUtf8("Please wait…"));
}
