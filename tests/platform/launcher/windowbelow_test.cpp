#include "platform/launcher/basepopupwindow.h"
#include "platform/launcher/windowbelow.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace {

TEST(WindowBelow, IsTheActiveOne)
{
    QWidget window;
    window.show();
    EXPECT_EQ(windowBelow(&window), &window);
    EXPECT_EQ(windowBelow(nullptr), nullptr);
}

TEST(WindowBelow, IsNoPopUpButTheWindowThatOpenedIt)
{
    QWidget window;
    QWidget opener(&window);
    BasePopupWindow popup(&opener);
    window.show();
    popup.showWithoutCaller({10, 10}, {100, 100});
    EXPECT_EQ(windowBelow(&popup), &window) << "open";
    popup.hide();
    EXPECT_EQ(windowBelow(&popup), &window) << "closed";
}

TEST(WindowBelow, IsNoneWhereOnlyHiddenOnesAre)
{
    QWidget window;
    EXPECT_EQ(windowBelow(&window), nullptr);
}

} // namespace
