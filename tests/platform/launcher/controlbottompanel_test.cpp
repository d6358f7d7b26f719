#include "platform/launcher/controlbottompanel.h"

#include <QPushButton>

#include <gtest/gtest.h>

TEST(ControlBottomPanel, ShowsPrependedWidgetsInReverseOrder)
{
    ControlBottomPanel panel;
    QList<QWidget*> boxes;
    for (int i = 0; i < 4; ++i) {
        boxes << new QPushButton;
        panel.prependWidget(boxes.last(), 140, 0);
    }
    panel.resize(800, 78);
    panel.show();
    for (int i = 1; i < 4; ++i) {
        EXPECT_LT(boxes.at(i)->x(), boxes.at(i - 1)->x());
        EXPECT_GE(boxes.at(i)->width(), 140);
    }
}

TEST(ControlBottomPanel, ShowsAddedWidgetsInOrderWithTheirGaps)
{
    ControlBottomPanel panel;
    auto* first = new QPushButton;
    auto* second = new QPushButton;
    auto* last = new QPushButton;
    for (QWidget* one : {first, second, last}) {
        one->setFixedWidth(140);
    }
    panel.addWidget(first, 140, 0);
    panel.addSpacer(50);
    panel.addWidget(second, 140, 0);
    panel.addSpacer(0);
    panel.addWidget(last, 140, 0);
    panel.resize(1000, 78);
    panel.show();
    EXPECT_GE(second->x() - first->geometry().right(), 50);
    EXPECT_LT(second->x() - first->geometry().right(), 80);
    EXPECT_GT(last->geometry().right(), 980); // the gap took the free width
}

TEST(ControlBottomPanel, KeepsTheActionAtTheRightEndAndAlignsIt)
{
    ControlBottomPanel panel;
    auto* action = new QPushButton;
    action->setFixedSize(100, 52);
    panel.addWidget(new QPushButton, 140, 0);
    panel.setActionWidget(action);
    panel.addWidget(new QPushButton, 140, 0);
    panel.setFixedHeight(100);
    panel.resize(800, 100);
    panel.show();
    EXPECT_GT(action->geometry().right(), 780);
    panel.setActionWidget(action, Qt::AlignBottom);
    panel.hide();
    panel.show();
    EXPECT_GT(action->geometry().bottom(), 90);
    EXPECT_EQ(panel.findChildren<QPushButton*>().size(), 3);
}

TEST(ControlBottomPanel, TakesNothingForAWidget)
{
    ControlBottomPanel panel;
    panel.addWidget(nullptr, 140, 0);
    panel.prependWidget(nullptr, 140, 0);
    panel.setActionWidget(nullptr);
    EXPECT_TRUE(panel.findChildren<QWidget*>().isEmpty());
}
