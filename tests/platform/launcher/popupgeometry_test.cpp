#include "platform/launcher/popupgeometry.h"

#include <gtest/gtest.h>

namespace {

const QRect kScreen(0, 0, 800, 480);

TEST(PopupGeometry, KeepsAPlaceThatFits)
{
    EXPECT_EQ(popupgeometry::keptInside(kScreen, QRect(10, 20, 200, 210)), QPoint(10, 20));
    EXPECT_EQ(popupgeometry::keptInside(kScreen, QRect(600, 270, 200, 210)), QPoint(600, 270));
}

TEST(PopupGeometry, MovesNoFurtherThanNeeded)
{
    EXPECT_EQ(popupgeometry::keptInside(kScreen, QRect(650, 300, 200, 210)), QPoint(600, 270));
    EXPECT_EQ(popupgeometry::keptInside(kScreen, QRect(-5, -7, 200, 210)), QPoint(0, 0));
    const QRect second(800, 100, 800, 480);
    EXPECT_EQ(popupgeometry::keptInside(second, QRect(1500, 50, 200, 210)), QPoint(1400, 100));
}

TEST(PopupGeometry, StartsAtTheCornerWhatDoesNotFit)
{
    EXPECT_EQ(popupgeometry::keptInside(kScreen, QRect(300, 300, 900, 500)), QPoint(0, 0));
}

TEST(PopupGeometry, StandsAboveItsCallerOrBelowWhereThatHasMoreRoom)
{
    const QSize size(120, 230);
    EXPECT_EQ(popupgeometry::beside(kScreen, QRect(300, 420, 140, 44), size), QPoint(300, 190));
    EXPECT_EQ(popupgeometry::beside(kScreen, QRect(300, 10, 140, 44), size), QPoint(300, 54));
    EXPECT_EQ(popupgeometry::beside(kScreen, QRect(760, 420, 140, 44), size), QPoint(680, 190));
}

TEST(PopupGeometry, PutsAtMostFourChoicesInAColumn)
{
    EXPECT_EQ(popupgeometry::choiceColumns(0), 1);
    EXPECT_EQ(popupgeometry::choiceColumns(4), 1);
    EXPECT_EQ(popupgeometry::choiceColumns(5), 2);
    EXPECT_EQ(popupgeometry::choiceColumns(8), 2);
    EXPECT_EQ(popupgeometry::choiceColumns(11), 3);
}

} // namespace
