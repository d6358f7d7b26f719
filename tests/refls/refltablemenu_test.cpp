#include "refls/refltablemenu.h"
#include "tests/support/echo.h"
#include "tests/support/metamethods.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class Menu : public testing::Test
{
protected:
    Menu() { page.show(); }

    QList<QPushButton*> buttons() const { return menu.findChildren<QPushButton*>(); }

    int heightFor(int count) const
    {
        return count * 60 + menu.layout()->contentsMargins().bottom() * (count - 1)
            + 2 * menu.layout()->spacing();
    }

    QWidget page;
    ReflTableMenu menu {&page};
    QSignalSpy chosen {&menu, SIGNAL(clicked( int ))};
};

TEST_F(Menu, OffersItsActionsFromTopToBottom)
{
    menu.show(QPoint(20, 30));
    QStringList texts;
    int lastBottom = -1;
    for (const QPushButton* button : buttons()) {
        texts << button->text();
        EXPECT_GT(button->y(), lastBottom);
        lastBottom = button->geometry().bottom();
        EXPECT_EQ(button->baseSize(), QSize(195, 60));
        EXPECT_EQ(button->sizePolicy(),
                  QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
    }
    EXPECT_EQ(texts, QStringList({"Set as main", "Delete", "Delete all"}));
}

TEST_F(Menu, IsShownAtAPositionAndAsHighAsItsButtons)
{
    menu.show(QPoint(20, 30));
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(menu.geometry(), QRect(20, 30, 200, heightFor(3)));
}

TEST_F(Menu, MarginAndSpacingStandInTheirPlaces)
{
    menu.layout()->setContentsMargins(1, 2, 3, 5);
    menu.layout()->setSpacing(7);
    menu.show(QPoint(20, 30));
    EXPECT_EQ(menu.height(), 3 * 60 + 5 * 2 + 7 * 2);
}

TEST_F(Menu, ShrinksWithHiddenButtons)
{
    menu.setButtonHidden(true, 2);
    menu.setButtonHidden(true, 2);
    menu.setButtonHidden(true, 0);
    menu.show(QPoint(20, 30));
    EXPECT_TRUE(buttons()[0]->isHidden());
    EXPECT_FALSE(buttons()[1]->isHidden());
    EXPECT_EQ(menu.height(), heightFor(1));
    menu.close();
    menu.setButtonHidden(false, 0);
    menu.setButtonHidden(false, 1); // was not hidden
    menu.show(QPoint(20, 30));
    EXPECT_EQ(menu.height(), heightFor(2));
}

TEST_F(Menu, EnablesAndDisablesAButton)
{
    menu.setButtonEnabled(false, 1);
    EXPECT_FALSE(buttons()[1]->isEnabled());
    EXPECT_TRUE(buttons()[0]->isEnabled());
    menu.setButtonEnabled(true, 1);
    EXPECT_TRUE(buttons()[1]->isEnabled());
}

TEST_F(Menu, KnowsNoButtonsBeyondItsOwn)
{
    for (const int unknown : {-1, 3}) {
        menu.setButtonHidden(true, unknown);
        menu.setButtonEnabled(false, unknown);
    }
    menu.show(QPoint(20, 30));
    EXPECT_EQ(menu.height(), heightFor(3));
}

TEST_F(Menu, ClosesBeforeItTellsTheChoice)
{
    bool wasVisible = true;
    QObject::connect(&menu, &ReflTableMenu::clicked, [&] { wasVisible = menu.isVisible(); });
    for (int id = 0; id < 3; ++id) {
        menu.show(QPoint(20, 30));
        wasVisible = true;
        QTest::mouseClick(menu.windowHandle(), Qt::LeftButton, {},
                          buttons()[id]->geometry().center());
        EXPECT_FALSE(wasVisible);
        ASSERT_EQ(chosen.size(), id + 1);
        EXPECT_EQ(chosen.last().first().toInt(), id);
    }
}

TEST_F(Menu, WorksByKeys)
{
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        chosen.clear();
        menu.show(QPoint(20, 30));
        QTest::keyClick(menu.windowHandle(), Qt::Key_Tab);
        QTest::keyClick(menu.windowHandle(), static_cast<Qt::Key>(key));
        ASSERT_EQ(chosen.size(), 1) << key;
        EXPECT_EQ(chosen.first().first().toInt(), 1) << key;
    }
}

TEST_F(Menu, SpeaksTheUsersLanguage)
{
    const testing_support::Echo echo;
    const ReflTableMenu translated;
    QStringList texts;
    for (const QPushButton* button : translated.findChildren<QPushButton*>()) {
        texts << button->text();
    }
    EXPECT_EQ(texts, QStringList({"<Set as main>", "<Delete>", "<Delete all>"}));
}

TEST_F(Menu, SlotsAreTheAgreedOnes)
{
    const QStringList agreed = {
        "signal clicked(int id)",
        "public show(QPoint pos)",
        "public setButtonHidden(bool hidden, int idx)",
        "public setButtonEnabled(bool enabled, int idx)",
    };
    EXPECT_EQ(testing_support::agreedMethods(ReflTableMenu::staticMetaObject, agreed), agreed);
    EXPECT_GE(ReflTableMenu::staticMetaObject.indexOfSlot("buttonClicked(int)"), 0);
}

TEST_F(Menu, TapBesideItChoosesNothing)
{
    menu.show(QPoint(120, 130));
    QTest::mouseClick(menu.windowHandle(), Qt::LeftButton, {}, QPoint(-20, 10));
    EXPECT_FALSE(menu.isVisible());
    EXPECT_TRUE(chosen.isEmpty());
}

TEST_F(Menu, ButtonsAreLargeEnoughForAFinger)
{
    for (int hidden = 0; hidden < 3; ++hidden) {
        menu.show(QPoint(20, 30));
        for (const QPushButton* button : buttons()) {
            if (button->isVisible()) {
                EXPECT_GE(button->height(), 44);
                EXPECT_TRUE(menu.rect().contains(button->geometry()));
            }
        }
        menu.close();
        menu.setButtonHidden(true, hidden);
    }
}

} // namespace
