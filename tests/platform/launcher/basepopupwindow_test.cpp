#include "platform/launcher/basepopupwindow.h"

#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QtTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class Popup : public testing::Test
{
protected:
    Popup()
        : screen(QGuiApplication::primaryScreen()->availableGeometry())
    {
        page.resize(400, 300);
        page.show();
        auto* column = new QVBoxLayout(&popup);
        for (QPushButton* button : {first, second}) {
            column->addWidget(button);
        }
    }

    const QRect screen;
    QWidget page;
    BasePopupWindow popup {&page};
    QPushButton* first = new QPushButton("first");
    QPushButton* second = new QPushButton("second");
};

TEST_F(Popup, IsShownWhereAndAsLargeAsAsked)
{
    popup.showWithoutCaller(QPoint(30, 40), QSize(200, 150));
    EXPECT_TRUE(popup.isVisible());
    EXPECT_EQ(popup.geometry(), QRect(30, 40, 200, 150));
}

TEST_F(Popup, StaysOnTheScreen)
{
    popup.showWithoutCaller(screen.bottomRight(), QSize(200, 150));
    EXPECT_TRUE(screen.contains(popup.geometry())) << "at " << popup.x() << " " << popup.y();
}

TEST_F(Popup, StandsBesideItsCaller)
{
    auto* caller = new QPushButton(&page);
    caller->setGeometry(20, 10, 100, 44);
    popup.showAtCaller(*caller, QSize(200, 150));
    EXPECT_EQ(popup.pos(), caller->mapToGlobal(QPoint(0, 44)));
}

TEST_F(Popup, GivesTheKeysToItsFirstUsableControlEachTime)
{
    first->setEnabled(false);
    popup.showWithoutCaller(QPoint(30, 40), QSize(200, 150));
    EXPECT_EQ(popup.focusWidget(), second);
    popup.close();
    first->setEnabled(true);
    popup.showWithoutCaller(QPoint(30, 40), QSize(200, 150));
    EXPECT_EQ(popup.focusWidget(), first);
}

TEST_F(Popup, ClosesByATapBesideItAndByEscape)
{
    popup.showWithoutCaller(QPoint(30, 40), QSize(200, 150));
    QTest::mouseClick(popup.windowHandle(), Qt::LeftButton, {}, QPoint(20, 75));
    EXPECT_TRUE(popup.isVisible());
    QTest::mouseClick(popup.windowHandle(), Qt::LeftButton, {}, QPoint(300, 75));
    EXPECT_FALSE(popup.isVisible());
    popup.showWithoutCaller(QPoint(30, 40), QSize(200, 150));
    QTest::keyClick(popup.windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(popup.isVisible());
}

} // namespace
