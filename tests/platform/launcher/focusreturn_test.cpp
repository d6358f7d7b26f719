#include "platform/launcher/focusreturn.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QtTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// A window with three buttons, the one in the middle has the focus.
class LostFocus : public testing::Test
{
protected:
    void SetUp() override
    {
        auto* column = new QVBoxLayout(&window);
        for (QPushButton* button : {&before, &middle, &after}) {
            column->addWidget(button);
        }
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        middle.setFocus();
        QCoreApplication::processEvents();
        ASSERT_TRUE(middle.hasFocus());
    }

    /// Where a key goes that the user presses now.
    void press(Qt::Key key)
    {
        QWidget* focused = QApplication::focusWidget();
        QTest::keyClick(focused == nullptr ? &window : focused, key);
    }

    const FocusReturn focus;
    QWidget window;
    QPushButton before;
    QPushButton middle;
    QPushButton after;
};

TEST_F(LostFocus, OfAControlThatIsDisabledGoesToNoOtherAndComesBack)
{
    const QSignalSpy pressed(&after, &QPushButton::clicked);
    middle.setEnabled(false);
    press(Qt::Key_Space);
    EXPECT_TRUE(pressed.isEmpty());
    EXPECT_FALSE(after.hasFocus());
    QCoreApplication::processEvents();
    middle.setEnabled(true);
    EXPECT_TRUE(middle.hasFocus());
}

TEST_F(LostFocus, OfAControlThatIsHiddenGoesToNoOtherAndComesBack)
{
    const QSignalSpy pressed(&after, &QPushButton::clicked);
    middle.hide();
    press(Qt::Key_Space);
    EXPECT_TRUE(pressed.isEmpty());
    EXPECT_FALSE(after.hasFocus());
    QCoreApplication::processEvents();
    middle.show();
    EXPECT_TRUE(middle.hasFocus());
}

TEST_F(LostFocus, OfAControlWhoseParentIsDisabledComesBack)
{
    window.setEnabled(false);
    window.setEnabled(true);
    EXPECT_TRUE(middle.hasFocus());
}

TEST_F(LostFocus, StaysWhereTheUserHasMovedIt)
{
    middle.setEnabled(false);
    before.setFocus(Qt::MouseFocusReason);
    middle.setEnabled(true);
    EXPECT_TRUE(before.hasFocus());
}

TEST_F(LostFocus, IsLedOnByTabFromWhereItWas)
{
    middle.setEnabled(false);
    press(Qt::Key_Tab);
    EXPECT_TRUE(after.hasFocus());
    middle.setEnabled(true);
    EXPECT_TRUE(after.hasFocus());
}

TEST_F(LostFocus, IsLedBackByTabFromWhereItWas)
{
    middle.setEnabled(false);
    press(Qt::Key_Backtab);
    EXPECT_TRUE(before.hasFocus());
}

TEST_F(LostFocus, ThatTheUserMovedBeforehandIsNotTakenBack)
{
    press(Qt::Key_Tab);
    ASSERT_TRUE(after.hasFocus());
    QCoreApplication::processEvents();
    middle.setEnabled(false);
    middle.setEnabled(true);
    EXPECT_TRUE(after.hasFocus());
}

TEST_F(LostFocus, ComesBackAfterADialogAllTheSame)
{
    middle.setEnabled(false);
    QDialog dialog(&window);
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    dialog.accept();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    middle.setEnabled(true);
    EXPECT_TRUE(middle.hasFocus());
}

TEST_F(LostFocus, OfOneThatIsDeletedIsForgotten)
{
    auto* brief = new QPushButton(&window);
    brief->show();
    brief->setFocus();
    brief->setEnabled(false);
    delete brief;
    press(Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), nullptr);
}

TEST_F(LostFocus, OfAWindowBehindComesBackToo)
{
    QDialog dialog(&window);
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    middle.setEnabled(false);
    EXPECT_NE(window.focusWidget(), &after);
    middle.setEnabled(true);
    EXPECT_EQ(window.focusWidget(), &middle);
    dialog.accept();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(middle.hasFocus());
}

TEST_F(LostFocus, OfAWindowThatWasNeverActiveComesBackToo)
{
    QWidget behind;
    QPushButton first(&behind);
    QPushButton second(&behind);
    first.setFocus();
    behind.setAttribute(Qt::WA_ShowWithoutActivating);
    behind.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    first.setEnabled(false);
    first.setEnabled(true);
    EXPECT_EQ(behind.focusWidget(), &first);
}

} // namespace
