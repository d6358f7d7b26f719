#include "platform/launcher/warningwindow.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

TEST(WarningWindow, ShowsATextWithoutBlocking)
{
    WarningWindow window;
    ASSERT_TRUE(QMetaObject::invokeMethod(&window, "show", Q_ARG(QString, "Saved to:\na.sor")));
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(window.isModal());
    EXPECT_EQ(window.text(), "Saved to:\na.sor");
    auto* ok = window.findChild<QPushButton*>();
    EXPECT_GE(ok->height(), 44);
    ok->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.text(), "");
}

TEST(WarningWindow, TakesATitle)
{
    WarningWindow window;
    window.show("text", "title");
    EXPECT_EQ(window.windowTitle(), "title");
    window.show("text", "");
    EXPECT_EQ(window.windowTitle(), "");
}

TEST(WarningWindow, LosesNoMessageThatComesWhileOneIsShown)
{
    WarningWindow window;
    window.show("first");
    window.show("second");
    window.show("first");
    EXPECT_EQ(window.text(), "first\n\nsecond");
    window.hide();
    window.show("third");
    EXPECT_EQ(window.text(), "third");
}

TEST(WarningWindow, ButtonStaysUnderTheFingerWhenAMessageIsAdded)
{
    WarningWindow window;
    const auto* ok = window.findChild<QPushButton*>();
    window.show("Saved to:\na.sor");
    window.move(200, 300);
    const QPoint stood = ok->mapToGlobal(ok->rect().center());
    const int height = window.height();
    window.show("Saved to:\nb.sor\n" + QString(100, 'W'));
    ASSERT_GT(window.height(), height);
    EXPECT_LE((ok->mapToGlobal(ok->rect().center()) - stood).manhattanLength(), 1);
}

/// Over the window that it belongs to, wherever the last one stood.
TEST(WarningWindow, NextMessageAfterOneThatGrewIsInTheMiddleAgain)
{
    QWidget parent;
    parent.setGeometry(0, 0, 600, 400);
    parent.show();
    WarningWindow window(&parent);
    window.show("first");
    window.show("second\n\nthird");
    window.hide();
    parent.move(150, 150);
    window.show("fourth");
    const QPoint off = window.frameGeometry().center() - parent.frameGeometry().center();
    EXPECT_LE(off.manhattanLength(), 4);
}

TEST(WarningWindow, GrowsNoFurtherThanTheEdgeOfTheScreen)
{
    WarningWindow window;
    window.show("first");
    window.move(0, 0);
    window.show("second\n\nthird");
    EXPECT_GE(window.frameGeometry().left(), 0);
    EXPECT_GE(window.frameGeometry().top(), 0);
}

TEST(WarningWindow, TakesNoMarkupFromATextThatCameFromOutside)
{
    WarningWindow window;
    window.show("<img src='/etc/passwd'>");
    EXPECT_EQ(window.findChild<QLabel*>()->textFormat(), Qt::PlainText);
}

TEST(WarningWindow, ClosesOnEscape)
{
    WarningWindow window;
    window.show("text");
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST(WarningWindow, BreaksALongPathInsteadOfCuttingIt)
{
    WarningWindow window;
    const QString text =
        "Saved to:\n" + QString(200, 'W') + ".sor\n" + QString(200, 'W') + ".html\n";
    window.show(text);
    const auto* label = window.findChild<QLabel*>();
    EXPECT_EQ(window.text(), text);
    EXPECT_LE(window.width(), 780);
    EXPECT_GE(label->height(), 9 * label->fontMetrics().height()) << "it stands on few lines";
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << "the end is cut";
    EXPECT_LE(window.height(), 460);
    EXPECT_LE(label->minimumSizeHint().width(), label->width());
    window.hide();
    window.show("short words");
    EXPECT_EQ(label->text(), "short words");
}

TEST(WarningWindow, NamesThatFitTheLineLeaveItsWidthAsItIs)
{
    WarningWindow window;
    window.show("Saved to:\na.sor");
    const int width = window.width();
    window.hide();
    const QString text = "Saved to:\notdr/trace_1310_0001.sor\notdr/trace_1310_0001.html\n";
    window.show(text);
    EXPECT_EQ(window.width(), width);
    EXPECT_EQ(window.findChild<QLabel*>()->text(), text);
}
