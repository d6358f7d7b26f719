#include "platform/launcher/touchkeyboard.h"
#include "tests/support/inlocale.h"

#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// Notes the key events that reach a widget.
class KeyLog : public QObject
{
public:
    bool eventFilter(QObject* /*object*/, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            keys << QKeySequence(key->key() | static_cast<int>(key->modifiers())).toString();
        }
        return false;
    }

    QStringList keys;
};

class OnScreenKeys : public testing::Test
{
protected:
    explicit OnScreenKeys(QLocale::Language language = QLocale::English)
        : locale(language)
        , edit(new QLineEdit(&page))
        , second(new QLineEdit(&page))
        , button(new QPushButton("x", &page))
        , keyboard(new TouchKeyboard(edit, &page))
    {
        auto* column = new QVBoxLayout(&page);
        for (QWidget* widget : {static_cast<QWidget*>(edit), static_cast<QWidget*>(second),
                                static_cast<QWidget*>(button), static_cast<QWidget*>(keyboard)}) {
            column->addWidget(widget);
        }
        page.resize(page.minimumSizeHint());
        page.show();
        page.activateWindow();
        edit->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&page));
    }

    /// Of those that are to be seen.
    QPushButton* key(const QString& text) const
    {
        for (QPushButton* one : keyboard->findChildren<QPushButton*>()) {
            if (one->isVisible() && (one->text() == text || one->accessibleName() == text)) {
                return one;
            }
        }
        ADD_FAILURE() << "no key " << text.toStdString();
        return nullptr;
    }

    void touch(const QStringList& keys) const
    {
        for (const QString& text : keys) {
            QTest::mouseClick(key(text), Qt::LeftButton);
        }
    }

    /// Every key has its text, and room for a finger.
    void expectWideEnough() const
    {
        EXPECT_LE(keyboard->width(), 780);
        EXPECT_LE(keyboard->height(), 300);
        for (const QPushButton* one : keyboard->findChildren<QPushButton*>()) {
            EXPECT_GE(one->width(), 44) << one->text().toStdString();
            EXPECT_GE(one->height(), 44) << one->text().toStdString();
            EXPECT_EQ(one->focusPolicy(), Qt::NoFocus);
            const int text = one->fontMetrics().horizontalAdvance(one->text());
            EXPECT_LE(text + 8, one->width()) << one->text().toStdString() << " is cut";
        }
    }

    const testing_support::InLocale locale;
    QWidget page;
    QLineEdit* edit;
    QLineEdit* second;
    QPushButton* button;
    TouchKeyboard* keyboard;
};

TEST_F(OnScreenKeys, TypeTheirCharacters)
{
    touch({"n", "o", "7", "_", "-", ".", "Space", "x"});
    EXPECT_EQ(edit->text(), "no7_-. x");
}

TEST_F(OnScreenKeys, SendWhatAHardwareKeyboardSends)
{
    KeyLog log;
    edit->installEventFilter(&log);
    touch({"a", "Shift", "B", "_", "Space", "Left"});
    EXPECT_EQ(log.keys, (QStringList {"A", "Shift+B", "_", "Space", "Left"}));
}

TEST_F(OnScreenKeys, MoveDeleteAndClear)
{
    touch({"a", "b", "c", "Left", "Left", "x", "Right", "Delete"});
    EXPECT_EQ(edit->text(), "axc");
    touch({"Clear"});
    EXPECT_EQ(edit->text(), "");
    touch({"Delete", "Left", "Clear", "q"}); // nothing to do on an empty line
    EXPECT_EQ(edit->text(), "q");
}

TEST_F(OnScreenKeys, TypeOverWhatIsSelected)
{
    edit->setText("trace_0001");
    edit->selectAll();
    touch({"z"});
    EXPECT_EQ(edit->text(), "z");
}

TEST_F(OnScreenKeys, GiveCapitalsWithShift)
{
    touch({"Shift", "A", "b"});
    EXPECT_EQ(edit->text(), "Ab");
    touch({"Shift", "Shift", "C", "D"});
    EXPECT_EQ(key("CAPS")->isChecked(), true);
    touch({"CAPS", "e"});
    EXPECT_EQ(edit->text(), "AbCDe");
    EXPECT_FALSE(key("Shift")->isChecked());
}

TEST_F(OnScreenKeys, TypeIntoTheLineThatHasTheFocus)
{
    second->setFocus();
    touch({"a"});
    EXPECT_EQ(second->text(), "a");
    EXPECT_EQ(edit->text(), "");
    EXPECT_TRUE(second->hasFocus()) << "a key took the focus";
}

TEST_F(OnScreenKeys, BringTheFocusBackToTheLine)
{
    button->setFocus();
    touch({"a"});
    EXPECT_EQ(edit->text(), "a");
    EXPECT_TRUE(edit->hasFocus());
}

TEST_F(OnScreenKeys, StandALineThatWent)
{
    delete edit;
    delete second;
    button->setFocus();
    touch({"a", "Clear"});
}

TEST_F(OnScreenKeys, AreWideEnoughForFingersOnASmallScreen)
{
    expectWideEnough();
}

TEST_F(OnScreenKeys, HaveLatinLettersAloneWhereNothingElseIsWritten)
{
    for (const QPushButton* one : keyboard->findChildren<QPushButton*>()) {
        EXPECT_NE(one->text(), QStringLiteral("АБВ"));
    }
}

class RussianKeys : public OnScreenKeys
{
protected:
    RussianKeys()
        : OnScreenKeys(QLocale::Russian)
    {
    }
};

TEST_F(RussianKeys, ChangeBetweenTheAlphabets)
{
    touch({"q", "АБВ", "ё", "Shift", "Ж", "5", "ABC", "w"});
    EXPECT_EQ(edit->text(), QStringLiteral("qёЖ5w"));
}

TEST_F(RussianKeys, KeepTheShiftInTheOtherAlphabet)
{
    touch({"Shift", "АБВ", "Щ", "щ"});
    EXPECT_EQ(edit->text(), QStringLiteral("Щщ"));
}

TEST_F(RussianKeys, AreWideEnoughForFingersInEitherAlphabet)
{
    const QSize latin = keyboard->size();
    expectWideEnough();
    touch({"АБВ"});
    expectWideEnough();
    EXPECT_EQ(keyboard->size(), latin) << "the window jumps";
}

TEST_F(OnScreenKeys, LeaveAHardwareKeyboardItsUse)
{
    touch({"a"});
    QTest::keyClicks(edit, "Bc");
    touch({"d"});
    EXPECT_EQ(edit->text(), "aBcd");
}

} // namespace
