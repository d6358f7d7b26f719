#include "platform/launcher/keysreturn.h"
#include "platform/launcher/warningwindow.h"

#include <QApplication>
#include <QDialog>
#include <QtTest>

#include <gtest/gtest.h>

namespace {

/// A window with a dialog over it that has the keys.
class ClosedDialog : public testing::Test
{
protected:
    void SetUp() override
    {
        window.show();
        open(dialog);
    }

    static void open(QDialog& one)
    {
        one.show();
        one.activateWindow();
        QCoreApplication::processEvents(); // both of the above make it active, one after the other
        ASSERT_TRUE(QTest::qWaitForWindowActive(&one));
    }

    [[nodiscard]] static bool becomesActive(const QWidget& one)
    {
        return QTest::qWaitFor([&one] { return one.isActiveWindow(); });
    }

    QWidget window;
    QDialog dialog {&window};
    const KeysReturn keys;
};

TEST_F(ClosedDialog, GivesTheKeysToItsWindow)
{
    QTest::keyClick(&dialog, Qt::Key_Escape);
    ASSERT_FALSE(dialog.isVisible());
    EXPECT_TRUE(becomesActive(window));
}

TEST_F(ClosedDialog, GivesTheKeysToItsWindowWhereItIsDeleted)
{
    auto* page = new QDialog(&window);
    open(*page);
    delete page;
    EXPECT_TRUE(becomesActive(window));
}

TEST_F(ClosedDialog, GivesTheKeysToTheDialogThatOpenedIt)
{
    QDialog about(&dialog);
    open(about);
    about.accept();
    EXPECT_TRUE(becomesActive(dialog));
}

TEST_F(ClosedDialog, GivesTheKeysToADialogWithoutWhichNothingGoesOn)
{
    QDialog question(&window);
    question.setModal(true);
    question.show();
    open(dialog);
    dialog.accept();
    EXPECT_TRUE(becomesActive(question));
}

TEST_F(ClosedDialog, LeavesTheKeysToTheNextOne)
{
    QDialog next(&window);
    QObject::connect(&dialog, &QDialog::finished, &next, [&next] { open(next); });
    dialog.accept();
    EXPECT_TRUE(becomesActive(next));
    QCoreApplication::processEvents();
    EXPECT_TRUE(next.isActiveWindow());
}

TEST_F(ClosedDialog, ThatHadNoKeysLeavesThemWhereTheyAre)
{
    window.activateWindow();
    ASSERT_TRUE(becomesActive(window));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(becomesActive(other));
    dialog.close();
    QTest::qWait(20);
    EXPECT_TRUE(other.isActiveWindow());
}

/// As a message: nobody asks for the keys in its name.
TEST(OpenedWindow, TakesTheKeysFromTheOneBelow)
{
    const KeysReturn keys;
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    WarningWindow message(&window);
    message.show("Saved to:\na.sor");
    EXPECT_TRUE(QTest::qWaitFor([&] { return message.isActiveWindow(); }));
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Return);
    EXPECT_FALSE(message.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isActiveWindow(); }));
}

TEST(OpenedWindow, HasItsTurnAfterADialogWithoutWhichNothingGoesOn)
{
    const KeysReturn keys;
    QWidget window;
    window.show();
    QDialog question(&window);
    question.setModal(true);
    question.show();
    WarningWindow message(&window);
    message.show("The measurement card was disconnected.");
    question.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return question.isActiveWindow(); }));
    question.accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return message.isActiveWindow(); }));
}

} // namespace
